#include "JsonLines.h"

#include <stdexcept>

namespace qvtest {

namespace {

struct Reader {
  std::string_view s;
  size_t i = 0;

  [[noreturn]] void Fail(const char* what) const {
    throw std::runtime_error(std::string("JSON: ") + what + " at " + std::to_string(i) + " in " +
                             std::string(s));
  }
  void Blanks() {
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t' || s[i] == '\r'))
      ++i;
  }
  void Expect(char c) {
    Blanks();
    if (i >= s.size() || s[i] != c) Fail("unexpected character");
    ++i;
  }
  static void Utf8(std::string& out, unsigned cp) {
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  std::string String() {
    Expect('"');
    std::string out;
    while (i < s.size() && s[i] != '"') {
      char c = s[i++];
      if (c != '\\') {
        out += c;
        continue;
      }
      if (i >= s.size()) Fail("unterminated escape");
      char e = s[i++];
      switch (e) {
        case 'n':
          out += '\n';
          break;
        case 'r':
          out += '\r';
          break;
        case 't':
          out += '\t';
          break;
        case 'b':
          out += '\b';
          break;
        case 'f':
          out += '\f';
          break;
        case 'u':
          if (i + 4 > s.size()) Fail("short \\u escape");
          Utf8(out, static_cast<unsigned>(std::stoul(std::string(s.substr(i, 4)), nullptr, 16)));
          i += 4;
          break;
        default:
          out += e;
      }
    }
    Expect('"');
    return out;
  }
  std::string Scalar() {
    Blanks();
    if (i < s.size() && s[i] == '"') return String();
    size_t b = i;
    while (i < s.size() && s[i] != ',' && s[i] != '}' && s[i] != ' ')
      ++i;
    if (b == i) Fail("missing value");
    return std::string(s.substr(b, i - b));
  }
};

}  // namespace

std::map<std::string, std::string> ParseFlatJson(std::string_view line) {
  Reader r{line};
  std::map<std::string, std::string> members;
  r.Expect('{');
  r.Blanks();
  if (r.i < line.size() && line[r.i] == '}') return members;
  for (;;) {
    std::string name = r.String();
    r.Expect(':');
    members[name] = r.Scalar();
    r.Blanks();
    if (r.i < line.size() && line[r.i] == ',') {
      ++r.i;
      continue;
    }
    r.Expect('}');
    return members;
  }
}

std::vector<std::map<std::string, std::string>> ParseJsonLines(std::string_view text) {
  std::vector<std::map<std::string, std::string>> events;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(start, end - start);
    if (line.find_first_not_of(" \t\r") != std::string_view::npos)
      events.push_back(ParseFlatJson(line));
    start = end + 1;
  }
  return events;
}

}  // namespace qvtest
