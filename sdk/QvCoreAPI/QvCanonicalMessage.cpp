#include "QvCanonicalMessage.h"

#include "QvCounts.h"
#include "QvText.h"

namespace qv {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool StartsWithWord(std::string_view s, std::string_view word) {
  if (s.size() < word.size()) return false;
  for (size_t i = 0; i < word.size(); ++i)
    if ((s[i] | 0x20) != word[i]) return false;
  return s.size() == word.size() || IsBlank(s[word.size()]);
}

// Reads "[subcategory ]error|warning[ CODE]" (case ignored): the part between the origin's
// colon and the colon before the text.
bool ReadCategory(std::string_view head, TCanonicalMessage& m, bool originless) {
  for (size_t p = 0; p < head.size(); ++p) {
    if (p > 0 && !IsBlank(head[p - 1])) continue;
    std::string_view at = head.substr(p);
    size_t length = StartsWithWord(at, "error") ? 5 : StartsWithWord(at, "warning") ? 7 : 0;
    if (length == 0) continue;
    std::string_view code = TrimView(at.substr(length));
    if (code.find_first_of(" \t") != std::string_view::npos) continue;
    // Without an origin, a code must look like one (CS0103, MSB4018): "... returned Error code
    // : 1" is prose.
    if (originless && !code.empty() && code.find_first_of("0123456789") == std::string_view::npos)
      continue;
    m.Error = length == 5;
    m.Subcategory = TrimView(head.substr(0, p));
    m.Code = code;
    return true;
  }
  return false;
}

// Splits "FILE(LINE[,COL...])" into the file and its first two numbers.
void ReadOrigin(std::string_view origin, TCanonicalMessage& m) {
  m.Origin = origin;
  if (origin.empty() || origin.back() != ')') return;
  size_t open = origin.rfind('(');
  if (open == std::string_view::npos || open == 0) return;
  std::string_view position = origin.substr(open + 1, origin.size() - open - 2);
  for (char c : position)
    if (!IsDigit(c) && c != ',' && c != '-') return;
  size_t comma = position.find_first_of(",-");
  m.Line = ReadCount(position.substr(0, comma));
  if (comma != std::string_view::npos && position[comma] == ',')
    m.Column =
        ReadCount(position.substr(comma + 1, position.find_first_of(",-", comma + 1) - comma - 1));
  m.Origin = TrimView(origin.substr(0, open));
}

// MSBuild names the project behind a line as " [FILE.csproj]"; other bracketed text stays.
bool EndsWithProjectExtension(std::string_view name) {
  auto endsWith = [&](std::string_view tail) {
    if (name.size() <= tail.size()) return false;
    for (size_t i = 0; i < tail.size(); ++i)
      if ((name[name.size() - tail.size() + i] | 0x20) != tail[i]) return false;
    return true;
  };
  return endsWith("proj") || endsWith(".sln");
}

// Splits "origin: category: text": the origin ends at its first colon, or at the next one when
// the first belongs to a drive letter ("C:\\a.cs(1): error ..."); without an origin the line
// starts with the category. `rest` is the text after the category's colon.
bool ReadOriginAndCategory(std::string_view s, TCanonicalMessage& m, std::string_view& rest) {
  size_t first = s.find(':');
  if (first == std::string_view::npos) return false;
  size_t drive = s.size() > 2 && IsLetter(s[0]) && s[1] == ':' ? s.find(':', 2) : first;
  for (size_t colon : {drive, first}) {
    if (colon == std::string_view::npos) continue;
    std::string_view after = s.substr(colon + 1);
    size_t textColon = after.find(':');
    if (textColon != std::string_view::npos && ReadCategory(after.substr(0, textColon), m, false)) {
      ReadOrigin(TrimView(s.substr(0, colon)), m);
      rest = after.substr(textColon + 1);
      return true;
    }
  }
  if (!ReadCategory(s.substr(0, first), m, true)) return false;
  rest = s.substr(first + 1);
  return true;
}

}  // namespace

std::optional<TCanonicalMessage> ParseCanonicalMessage(std::string_view line) {
  std::string_view s = TrimView(line);
  size_t node = 0;
  while (node < s.size() && IsDigit(s[node]))
    ++node;
  if (node > 0 && node < s.size() && s[node] == '>') s = s.substr(node + 1);

  TCanonicalMessage m;
  std::string_view rest;
  if (!ReadOriginAndCategory(s, m, rest)) return std::nullopt;
  rest = TrimView(rest);
  if (size_t open = rest.rfind(" ["); open != std::string_view::npos && rest.back() == ']') {
    std::string_view project = rest.substr(open + 2, rest.size() - open - 3);
    if (EndsWithProjectExtension(project)) {
      m.Project = project;
      rest = TrimView(rest.substr(0, open));
    }
  }
  m.Text = rest;
  return m;
}

}  // namespace qv
