#include "QvText.h"

#include <algorithm>

namespace qv {

namespace {
char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
}  // namespace

size_t SkipBlanks(std::string_view s, size_t i) {
  while (i < s.size() && IsBlank(s[i]))
    ++i;
  return i;
}

std::string_view TrimLeftView(std::string_view s) {
  return s.substr(std::min(SkipBlanks(s, 0), s.size()));
}

std::string_view TrimRightView(std::string_view s) {
  size_t n = s.size();
  while (n > 0 && (IsBlank(s[n - 1]) || s[n - 1] == '\r'))
    --n;
  return s.substr(0, n);
}

std::string_view TrimView(std::string_view s) {
  return TrimRightView(TrimLeftView(s));
}

bool StartsWithNoCase(std::string_view s, std::string_view prefix) {
  if (s.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i)
    if (Lower(s[i]) != Lower(prefix[i])) return false;
  return true;
}

bool EndsWithNoCase(std::string_view s, std::string_view suffix) {
  return s.size() >= suffix.size() && StartsWithNoCase(s.substr(s.size() - suffix.size()), suffix);
}

int LineAt(std::string_view text, size_t offset) {
  offset = std::min(offset, text.size());
  return 1 + static_cast<int>(std::count(text.begin(), text.begin() + offset, '\n'));
}

}  // namespace qv
