// Arbitrary bytes as a resource script for the VERSIONINFO reader: it reads or throws one
// of its own exceptions, never anything else.
#include "FuzzVersionInfo.h"
#include "QvExceptions.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qv::TStringList lines;
  if (!qvfuzz::LinesOf(data, size, lines)) return 0;
  qvfuzz::PlainVersionInfo info;
  try {
    qv::ReadVersionBlock(lines, info);
  } catch (const qv::Exception&) {
  }
  return 0;
}
