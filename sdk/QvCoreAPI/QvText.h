// The string_view kit every text reader shares: blanks, trimming, prefixes without regard to
// case, and line numbers of offsets. Views in, views out; nothing is copied.
#pragma once

#include <cstddef>
#include <string_view>

namespace qv {

// A blank within a line: space or tab.
inline bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// The index of the first character at or after `i` that is not a blank.
size_t SkipBlanks(std::string_view s, size_t i);
// Without the leading blanks; without the trailing blanks and carriage returns; both.
std::string_view TrimLeftView(std::string_view s);
std::string_view TrimRightView(std::string_view s);
std::string_view TrimView(std::string_view s);

// Prefix and suffix tests without regard to (ASCII) letter case.
bool StartsWithNoCase(std::string_view s, std::string_view prefix);
bool EndsWithNoCase(std::string_view s, std::string_view suffix);

// The 1-based line of byte `offset` in `text` (an offset past the end counts as the end).
int LineAt(std::string_view text, size_t offset);

}  // namespace qv
