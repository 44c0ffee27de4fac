// Arbitrary bytes as a solution file, read from disk as the build action reads it: it opens
// or throws one of its own exceptions, never anything else.
#include <unistd.h>

#include <fstream>

#include "QvExceptions.h"
#include "Vsnetsln.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = "/tmp/qv-fuzz-" + std::to_string(getpid()) + ".sln";
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  try {
    auto solution = qv::OpenSolution(path, true);
    solution->GetProjects()->SortByDependency();
  } catch (const qv::Exception&) {
  }
  return 0;
}
