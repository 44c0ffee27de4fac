#include "XmlSpans.h"

#include <algorithm>

namespace qvhost {

namespace {

// XML's white space, line breaks included.
bool IsXmlSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

size_t SkipXmlSpace(std::string_view text, size_t pos) {
  while (pos < text.size() && IsXmlSpace(text[pos]))
    ++pos;
  return pos;
}

// Past the first occurrence of `terminator` at or after `pos` (or the end of the text).
size_t SkipPast(std::string_view text, size_t pos, std::string_view terminator) {
  size_t at = text.find(terminator, pos);
  return at == std::string_view::npos ? text.size() : at + terminator.size();
}

size_t SkipName(std::string_view text, size_t pos) {
  while (pos < text.size() && !IsXmlSpace(text[pos]) && text[pos] != '=' && text[pos] != '>' &&
         text[pos] != '/')
    ++pos;
  return pos;
}

}  // namespace

TStartTag ScanStartTag(std::string_view text, size_t nameOffset) {
  TStartTag tag;
  tag.Begin = nameOffset > 0 ? nameOffset - 1 : 0;
  size_t pos = SkipName(text, nameOffset);
  while (pos < text.size()) {
    pos = SkipXmlSpace(text, pos);
    if (pos >= text.size()) break;
    if (text[pos] == '>') {
      tag.End = pos + 1;
      return tag;
    }
    if (text[pos] == '/') {
      tag.SelfClosing = true;
      tag.End = SkipPast(text, pos, ">");
      return tag;
    }
    pos = SkipXmlSpace(text, SkipName(text, pos));
    if (pos < text.size() && text[pos] == '=') pos = SkipXmlSpace(text, pos + 1);
    if (pos < text.size() && (text[pos] == '"' || text[pos] == '\''))
      pos = SkipPast(text, pos + 1, std::string_view(&text[pos], 1));
  }
  tag.End = text.size();
  return tag;
}

bool FindAttributeValue(std::string_view text, const TStartTag& tag, std::string_view name,
                        size_t& begin, size_t& end) {
  size_t pos = SkipName(text, tag.Begin + 1);
  while (pos < tag.End) {
    pos = SkipXmlSpace(text, pos);
    size_t nameEnd = SkipName(text, pos);
    if (nameEnd == pos) return false;  // reached ">" or "/>"
    size_t eq = SkipXmlSpace(text, nameEnd);
    size_t quote = SkipXmlSpace(text, eq + 1);
    if (quote >= tag.End) return false;
    size_t close = text.find(text[quote], quote + 1);
    if (close == std::string_view::npos || close >= tag.End) return false;
    if (text.substr(pos, nameEnd - pos) == name) {
      begin = quote + 1;
      end = close;
      return true;
    }
    pos = close + 1;
  }
  return false;
}

size_t EndTagBegin(std::string_view text, const TStartTag& tag) {
  if (tag.SelfClosing) return tag.End;
  int depth = 1;
  size_t pos = tag.End;
  while ((pos = text.find('<', pos)) != std::string_view::npos) {
    std::string_view rest = text.substr(pos);
    if (rest.starts_with("<!--")) {
      pos = SkipPast(text, pos, "-->");
    } else if (rest.starts_with("<![CDATA[")) {
      pos = SkipPast(text, pos, "]]>");
    } else if (rest.starts_with("<?")) {
      pos = SkipPast(text, pos, "?>");
    } else if (rest.starts_with("</")) {
      if (--depth == 0) return pos;
      pos = SkipPast(text, pos, ">");
    } else {
      TStartTag inner = ScanStartTag(text, pos + 1);
      if (!inner.SelfClosing) ++depth;
      pos = inner.End;
    }
  }
  return text.size();
}

size_t ElementEnd(std::string_view text, const TStartTag& tag) {
  if (tag.SelfClosing) return tag.End;
  return SkipPast(text, EndTagBegin(text, tag), ">");
}

std::string IndentBefore(std::string_view text, size_t pos) {
  size_t start = pos;
  while (start > 0 && (text[start - 1] == ' ' || text[start - 1] == '\t'))
    --start;
  if (start > 0 && text[start - 1] != '\n' && text[start - 1] != '\r') return {};
  return std::string(text.substr(start, pos - start));
}

std::string_view LineBreakOf(std::string_view text) {
  size_t lf = text.find('\n');
  return lf != std::string_view::npos && lf > 0 && text[lf - 1] == '\r' ? "\r\n" : "\n";
}

std::string EscapeXml(std::string_view s, bool attribute) {
  // Element content of blanks only would be dropped by the reader: write it as references.
  if (!attribute && !s.empty() && s.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    std::string r;
    for (char c : s)
      r += "&#" + std::to_string(static_cast<int>(c)) + ";";
    return r;
  }
  std::string r;
  r.reserve(s.size());
  for (char c : s) {
    switch (c) {
      case '&':
        r += "&amp;";
        break;
      case '<':
        r += "&lt;";
        break;
      case '>':
        r += "&gt;";
        break;
      case '"':
        r += attribute ? "&quot;" : "\"";
        break;
      case '\'':  // the attribute replaced may be delimited by either quote
        r += attribute ? "&apos;" : "'";
        break;
      case '\n':
        r += attribute ? "&#10;" : "\n";
        break;
      case '\r':
        r += "&#13;";
        break;  // a raw CR would come back as LF
      case '\t':
        r += attribute ? "&#9;" : "\t";
        break;
      default:
        r += c;
    }
  }
  return r;
}

}  // namespace qvhost
