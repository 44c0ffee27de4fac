// Arbitrary bytes as a text file. Oracles: what decodes encodes back to the same bytes, so a
// file loaded and saved unchanged keeps every byte; the line views of a large file's reading
// are the decoded lines, and fail alike.
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
    try {
      qv::TTextFileLines views(std::string(bytes), "fuzz.txt");
    } catch (const qv::Exception&) {
      return 0;
    }
    std::abort();
  }
  if (qv::EncodeTextFile(lines, format) != bytes) std::abort();
  qv::TTextFileLines views(std::string(bytes), "fuzz.txt");
  if (views.Count() != static_cast<int>(lines.size())) std::abort();
  for (int i = 0; i < views.Count(); ++i)
    if (views[i] != lines[static_cast<size_t>(i)].Text) std::abort();
  return 0;
}
