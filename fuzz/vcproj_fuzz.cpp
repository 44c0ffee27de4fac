// Arbitrary bytes as a Visual C++ project file: the reader lists scripts or throws its
// "Error parsing project file" exception, never anything else.
#include "QvExceptions.h"
#include "VsnetslnVcproj.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    qv::ReadVcprojResourceScripts({reinterpret_cast<const char*>(data), size}, "fuzz.vcproj");
  } catch (const qv::Exception&) {
  }
  return 0;
}
