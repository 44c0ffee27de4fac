// The line-level rules both VERSIONINFO readers share: finding the block's header, keyword
// tests on upper-cased lines, statement operands and quoted pieces.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "QvClasses.h"

namespace qv::rc {

// A header holds "VERSIONINFO" (exact case) and no double quote, so a string or a comment
// quoting the word does not count.
bool IsVersionInfoHeader(std::string_view line);
// Index of the first header line in `lines`, or -1.
int FindVersionInfoHeader(const TStringList& lines);

// Keyword found anywhere in an upper-cased line.
inline bool Has(std::string_view upper, std::string_view keyword) {
  return upper.find(keyword) != std::string_view::npos;
}
// END closes a block only as the whole trimmed line.
bool IsEndLine(std::string_view upper);

// A statement's operand: the trimmed line past the keyword's length, trimmed.
std::string Operand(std::string_view line, size_t keywordLength);
// The third and fourth characters of an operand (the digits after "0x"), at most two.
std::string_view TwoCharsAfterPrefix(std::string_view operand);
// Those two characters read as hexadecimal; 0 when they are not ("0x2L" gives "2L": 0).
int64_t TwoHexDigits(std::string_view operand);
// The n-th piece of `line` split at double quotes (1: the first quoted text, 3: the second);
// empty when the line has fewer.
std::string QuotedPiece(std::string_view line, int n);
// The Translation operands: the text after the name's closing quote, without a leading
// comma, split at commas and trimmed; at least two items.
std::vector<std::string> TranslationOperands(std::string_view line);

}  // namespace qv::rc
