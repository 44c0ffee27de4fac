// Arbitrary bytes as a registry export (.reg) standing in for the registry: it loads or
// throws its "FILE:LINE: reason" exception, and every value it loaded can be read.
#include "QvExceptions.h"
#include "QvRegistry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  try {
    auto reg = qv::TRegFileRegistry::LoadFromText(text, "fuzz.reg");
    std::string value;
    reg->ReadString(qv::TRegistryRoot::LocalMachine, "SOFTWARE\\Microsoft\\VisualStudio\\9.0",
                    "InstallDir", value);
  } catch (const qv::Exception&) {
  }
  return 0;
}
