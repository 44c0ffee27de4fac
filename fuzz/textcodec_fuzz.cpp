// Arbitrary bytes as a text file. Oracle: what decodes encodes back to the same bytes, so a
// file loaded and saved unchanged keeps every byte.
#include <cstdlib>

#include "QvClasses.h"
#include "QvExceptions.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view bytes(reinterpret_cast<const char*>(data), size);
  qv::TTextFormat format;
  std::vector<qv::TTextLine> lines;
  try {
    lines = qv::DecodeTextFile(bytes, format, "fuzz.txt");
  } catch (const qv::Exception&) {
    return 0;
  }
  if (qv::EncodeTextFile(lines, format) != bytes) std::abort();
  return 0;
}
