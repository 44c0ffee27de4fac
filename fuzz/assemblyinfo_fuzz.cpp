// The AssemblyInfo line rules on arbitrary text: every line is taken apart and rebuilt with
// its own value (which must give the same parts back), then the whole text is rewritten
// with every attribute switched on, and lines that are not attribute lines must come back
// unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "QvassemblyinfoRewriter.h"

using namespace qv;

namespace {
void CheckRoundTrip(const std::string& text) {
  std::optional<TQvAssemblyAttributeLine> line = ParseAssemblyAttributeLine(text);
  if (!line) return;
  std::optional<TQvAssemblyAttributeLine> again =
      ParseAssemblyAttributeLine(FormatAssemblyAttributeLine(*line, line->Value));
  if (!again || again->OpenBracket != line->OpenBracket || again->Prefix != line->Prefix ||
      again->Name != line->Name || again->Value != line->Value || again->Closing != line->Closing ||
      again->Quoted != line->Quoted)
    std::abort();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 64 * 1024) return 0;
  std::string input(reinterpret_cast<const char*>(data), size);
  TStringList lines;
  lines.SetText(input);
  for (const std::string& l : lines)
    CheckRoundTrip(l);
  TStringList rewritten;
  rewritten.Assign(lines);
  RewriteAssemblyInfo(
      rewritten, size % 2 == 0,
      [](TQvAssemblyAttribute a) -> std::optional<std::string> {
        return a == TQvAssemblyAttribute::aaVersion ? "2|1|40|0" : "v";
      },
      [](const std::string&) {});
  if (rewritten.Count() < lines.Count()) std::abort();
  for (int i = 0; i < lines.Count(); ++i)
    if (!ParseAssemblyAttributeLine(lines[i]) && rewritten[i] != lines[i]) std::abort();
  return 0;
}
