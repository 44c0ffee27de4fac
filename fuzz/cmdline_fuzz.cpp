// Arbitrary text as a Windows command line for the runner's splitter: it splits anything,
// and the arguments never hold more characters than the text.
#include <cstdlib>

#include "QvProcess.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> args = qv::SplitCommandLine(text);
  size_t total = 0;
  for (const auto& a : args)
    total += a.size();
  if (total > text.size()) std::abort();
  return 0;
}
