// Arbitrary bytes as a resource script for the VERSIONINFO writer. Oracle: a rewrite either
// throws and leaves the lines as they were, or keeps every line before the block and reads
// back with the numbers, flags and translation it was given.
#include <cstdlib>

#include "FuzzVersionInfo.h"
#include "QvExceptions.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qv::TStringList lines;
  if (!qvfuzz::LinesOf(data, size, lines)) return 0;
  qvfuzz::PlainVersionInfo info;
  auto expand = [](const std::string& s) { return s + "x"; };
  std::vector<std::string> block = qv::GenerateVersionBlock(info, expand, "Monday, May 4, 2009");
  qv::TStringList before;
  before.Assign(lines);
  try {
    qv::ReplaceVersionBlock(lines, block);
  } catch (const qv::Exception&) {
    if (!(lines == before)) std::abort();
    return 0;
  }
  int header = -1;
  for (int i = 0; i < lines.Count() && header < 0; ++i)
    if (lines[i] == "VS_VERSION_INFO VERSIONINFO") header = i;
  if (header < 1 || lines[header - 1] != "") std::abort();
  for (int i = 0; i + 1 < header; ++i)
    if (lines[i] != before[i]) std::abort();
  qvfuzz::PlainVersionInfo back;
  back.Numbers[0] = back.Locale = back.CodePage = 0;
  back.Debug = back.Special = back.Dll = false;
  qv::ReadVersionBlock(lines, back);
  if (back.Numbers[0] != 1 || back.Numbers[3] != 4 || back.Locale != 0x409 ||
      back.CodePage != 1200 || !back.Debug || !back.Special || back.Dll)
    std::abort();
  return 0;
}
