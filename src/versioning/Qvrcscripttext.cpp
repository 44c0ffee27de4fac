#include "Qvrcscripttext.h"

#include <algorithm>

#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qv::rc {

bool IsVersionInfoHeader(std::string_view line) {
  return Has(line, "VERSIONINFO") && line.find('"') == std::string_view::npos;
}

int FindVersionInfoHeader(const TStringList& lines) {
  for (int i = 0; i < lines.Count(); ++i)
    if (IsVersionInfoHeader(lines[i])) return i;
  return -1;
}

bool IsEndLine(std::string_view upper) {
  return Trim(upper) == "END";
}

std::string Operand(std::string_view line, size_t keywordLength) {
  std::string t = Trim(line);
  return t.size() > keywordLength ? Trim(std::string_view(t).substr(keywordLength)) : "";
}

std::string_view TwoCharsAfterPrefix(std::string_view operand) {
  return operand.size() > 2 ? operand.substr(2, 2) : std::string_view();
}

int64_t TwoHexDigits(std::string_view operand) {
  int64_t v = 0;
  return TryHexToInt(TwoCharsAfterPrefix(operand), v) ? v : 0;
}

std::string QuotedPiece(std::string_view line, int n) {
  size_t start = 0;
  for (int piece = 0; piece < n; ++piece) {
    size_t q = line.find('"', start);
    if (q == std::string_view::npos) return {};
    start = q + 1;
  }
  size_t end = line.find('"', start);
  return std::string(line.substr(start, end == std::string_view::npos ? end : end - start));
}

std::vector<std::string> TranslationOperands(std::string_view line) {
  size_t open = line.find('"');
  size_t close = open == std::string_view::npos ? open : line.find('"', open + 1);
  std::string rest = close == std::string_view::npos ? "" : Trim(line.substr(close + 1));
  if (StartsStr(",", rest)) rest.erase(0, 1);
  std::vector<std::string> operands = Tokenize(rest, ",");
  operands.resize(std::max<size_t>(operands.size(), 2));
  return operands;
}

}  // namespace qv::rc
