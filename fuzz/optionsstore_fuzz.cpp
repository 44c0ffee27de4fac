// Arbitrary text as an option value. Oracle: what the options store saves, a new store
// loaded from the file reads back exactly, the other values of the section included.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "OptionsStore.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string value(reinterpret_cast<const char*>(data), size);
  // Option values are XML text: characters XML cannot carry are out of scope.
  for (unsigned char c : value)
    if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') return 0;
  static const std::string path = "/tmp/qv-fuzz-options-" + std::to_string(getpid()) + ".xml";
  std::remove(path.c_str());
  {
    qvhost::TOptionsStore store(path);
    store.Write("VisualStudioDotNet", "Before", "C:\\VS\\", "string");
    store.Write("VisualStudioDotNet", "Value", value, "string");
    store.Write("VisualStudioDotNet", "After", "3", "integer");
    store.Flush();
  }
  qvhost::TOptionsStore again(path);
  if (again.Read("VisualStudioDotNet", "Value", "<missing>") != value ||
      again.Read("VisualStudioDotNet", "Before", "") != "C:\\VS\\" ||
      again.Read("VisualStudioDotNet", "After", "") != "3")
    std::abort();
  return 0;
}
