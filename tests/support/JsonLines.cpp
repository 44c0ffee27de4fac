#include "JsonLines.h"

#include <cstring>
#include <stdexcept>

namespace qvtest {

std::map<std::string, std::string> ParseFlatJson(std::string_view s) {
  size_t i = 0;
  auto fail = [&](const char* what) {
    throw std::runtime_error(std::string("JSON: ") + what + " at " + std::to_string(i) + " in " +
                             std::string(s));
  };
  auto next = [&] {  // the next character that is not a blank, not consumed
    while (i < s.size() && strchr(" \t\r", s[i]))
      ++i;
    return i < s.size() ? s[i] : '\0';
  };
  auto expect = [&](char c) {
    if (next() != c) fail("unexpected character");
    ++i;
  };
  auto string = [&] {
    expect('"');
    std::string out;
    while (i < s.size() && s[i] != '"') {
      char c = s[i++];
      if (c != '\\') {
        out += c;
      } else if (i >= s.size()) {
        fail("unterminated escape");
      } else if (s[i] == 'u' && i + 5 <= s.size()) {
        // The host escapes control characters and bytes that are not UTF-8 as \u00XX.
        unsigned long byte = std::stoul(std::string(s.substr(i + 1, 4)), nullptr, 16);
        if (byte > 0xFF) fail("escape beyond one byte");
        out += static_cast<char>(byte);
        i += 5;
      } else {
        static const char kEscaped[] = "nrtbf", kMeant[] = "\n\r\t\b\f";
        const char* e = strchr(kEscaped, s[i]);
        out += e && *e ? kMeant[e - kEscaped] : s[i];
        ++i;
      }
    }
    expect('"');
    return out;
  };
  std::map<std::string, std::string> members;
  expect('{');
  if (next() == '}') return members;
  for (char sep = ','; sep == ','; sep = s[i++]) {
    std::string name = string();
    expect(':');
    if (next() == '"') {
      members[name] = string();
    } else {
      size_t b = i;
      while (i < s.size() && !strchr(",} ", s[i]))
        ++i;
      if (b == i) fail("missing value");
      members[name] = std::string(s.substr(b, i - b));
    }
    if (next() != ',' && next() != '}') fail("unexpected character");
  }
  return members;
}

std::vector<std::map<std::string, std::string>> ParseJsonLines(std::string_view text) {
  std::vector<std::map<std::string, std::string>> events;
  for (size_t start = 0, end; start < text.size(); start = end + 1) {
    end = std::min(text.find('\n', start), text.size());
    std::string_view line = text.substr(start, end - start);
    if (line.find_first_not_of(" \t\r") != std::string_view::npos)
      events.push_back(ParseFlatJson(line));
  }
  return events;
}

}  // namespace qvtest
