#include "QvClasses.h"

#include <algorithm>
#include <array>

#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qv {

// ---- UTF-16 <-> UTF-8 -------------------------------------------------------------------
// Lone surrogates are carried through as three-byte sequences (WTF-8) so that a UTF-16 file
// with a broken pair still comes back byte for byte.

namespace {

void AppendUtf8(std::string& out, uint32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

std::string Utf16ToUtf8(std::string_view bytes, bool bigEndian) {
  std::string out;
  out.reserve(bytes.size());
  auto unit = [&](size_t i) -> uint32_t {
    auto b0 = static_cast<unsigned char>(bytes[i]);
    auto b1 = static_cast<unsigned char>(bytes[i + 1]);
    return bigEndian ? (b0 << 8 | b1) : (b1 << 8 | b0);
  };
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    uint32_t u = unit(i);
    if (u >= 0xD800 && u < 0xDC00 && i + 3 < bytes.size()) {
      uint32_t lo = unit(i + 2);
      if (lo >= 0xDC00 && lo < 0xE000) {
        AppendUtf8(out, 0x10000 + ((u - 0xD800) << 10) + (lo - 0xDC00));
        i += 2;
        continue;
      }
    }
    AppendUtf8(out, u);
  }
  return out;
}

// Decodes one code point at s[i]; an invalid byte stands for itself (as Latin-1).
uint32_t NextCodePoint(std::string_view s, size_t& i) {
  auto b = [&](size_t k) { return static_cast<unsigned char>(s[k]); };
  unsigned char c = b(i);
  int len = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 0;
  if (len > 1 && i + len <= s.size()) {
    uint32_t cp = c & (0x7F >> len);
    bool ok = true;
    for (int k = 1; k < len && ok; ++k) {
      ok = (b(i + k) & 0xC0) == 0x80;
      cp = (cp << 6) | (b(i + k) & 0x3F);
    }
    if (ok) {
      i += len;
      return cp;
    }
  }
  ++i;
  return c;
}

std::string Utf8ToUtf16(std::string_view s, bool bigEndian) {
  std::string out;
  out.reserve(s.size() * 2);
  auto put = [&](uint32_t u) {
    char hi = static_cast<char>(u >> 8), lo = static_cast<char>(u & 0xFF);
    out += bigEndian ? hi : lo;
    out += bigEndian ? lo : hi;
  };
  for (size_t i = 0; i < s.size();) {
    uint32_t cp = NextCodePoint(s, i);
    if (cp >= 0x10000) {
      cp -= 0x10000;
      put(0xD800 + (cp >> 10));
      put(0xDC00 + (cp & 0x3FF));
    } else {
      put(cp);
    }
  }
  return out;
}

constexpr std::string_view kBomUtf8 = "\xEF\xBB\xBF";
constexpr std::string_view kBomUtf16LE = "\xFF\xFE";
constexpr std::string_view kBomUtf16BE = "\xFE\xFF";

std::string_view BreakText(TLineBreak b) {
  switch (b) {
    case TLineBreak::LF:
      return "\n";
    case TLineBreak::CRLF:
      return "\r\n";
    case TLineBreak::CR:
      return "\r";
    default:
      return "";
  }
}

// The position of `c` at or after `from`, or the size of `text` when there is none.
size_t FindFrom(std::string_view text, char c, size_t from) {
  size_t at = text.find(c, from);
  return at == std::string_view::npos ? text.size() : at;
}

}  // namespace

std::string_view DecodeText(std::string_view bytes, TTextFormat& format, std::string& decoded,
                            const std::string& fileName) {
  format = TTextFormat{};
  if (bytes.starts_with(kBomUtf8)) {
    format.Encoding = TTextEncoding::UTF8;
    return bytes.substr(3);
  }
  if (bytes.starts_with(kBomUtf16LE) || bytes.starts_with(kBomUtf16BE)) {
    bool be = bytes.starts_with(kBomUtf16BE);
    format.Encoding = be ? TTextEncoding::UTF16BE : TTextEncoding::UTF16LE;
    if (bytes.size() % 2 != 0)
      throw Exception("File \"" + fileName + "\" is not valid UTF-16 text (odd number of bytes)");
    decoded = Utf16ToUtf8(bytes.substr(2), be);
    return decoded;
  }
  return bytes;
}

namespace {

// Calls fn(line, break) for each line of `text`: a line ends at LF, CR LF or a lone CR; a last
// line without a break comes with TLineBreak::None.
template <class Fn>
void ForEachTextLine(std::string_view text, Fn&& fn) {
  size_t start = 0;
  // The next break of each kind is searched for (a fast forward scan) only once it is passed:
  // large files are mostly line text.
  size_t nextLF = FindFrom(text, '\n', 0), nextCR = FindFrom(text, '\r', 0);
  for (size_t i = 0; i < text.size(); ++i) {
    if (nextLF < i) nextLF = FindFrom(text, '\n', i);
    if (nextCR < i) nextCR = FindFrom(text, '\r', i);
    i = std::min(nextLF, nextCR);
    if (i >= text.size()) break;
    TLineBreak br = TLineBreak::LF;
    if (text[i] == '\r')
      br = (i + 1 < text.size() && text[i + 1] == '\n') ? TLineBreak::CRLF : TLineBreak::CR;
    fn(text.substr(start, i - start), br);
    if (br == TLineBreak::CRLF) ++i;
    start = i + 1;
  }
  if (start < text.size()) fn(text.substr(start), TLineBreak::None);
}

// A line list's error for a bad index.
[[noreturn]] void RaiseIndexError(int index) {
  throw EStringListError("List index out of bounds (" + std::to_string(index) + ")");
}

std::string ReadTextFileBytes(const std::string& fileName) {
  std::string bytes, error;
  if (!platform::ReadWholeFile(fileName, bytes, error))
    throw Exception("Cannot open file \"" + fileName + "\". " + error);
  return bytes;
}
}  // namespace

std::vector<TTextLine> DecodeTextFile(std::string_view bytes, TTextFormat& format,
                                      const std::string& fileName) {
  std::string decoded;
  std::string_view text = DecodeText(bytes, format, decoded, fileName);
  std::vector<TTextLine> lines;
  std::array<size_t, 4> breakCounts{};  // indexed by TLineBreak
  ForEachTextLine(text, [&](std::string_view line, TLineBreak br) {
    lines.push_back({std::string(line), br});
    ++breakCounts[static_cast<size_t>(br)];
  });
  format.FinalNewline = lines.empty() || lines.back().Break != TLineBreak::None;
  // The most frequent break wins; ties favour CR LF, then LF.
  format.DominantBreak = TLineBreak::CRLF;
  for (TLineBreak b : {TLineBreak::LF, TLineBreak::CR})
    if (breakCounts[static_cast<size_t>(b)] >
        breakCounts[static_cast<size_t>(format.DominantBreak)])
      format.DominantBreak = b;
  return lines;
}

TTextFileLines::TTextFileLines(const std::string& fileName)
    : TTextFileLines(ReadTextFileBytes(fileName), fileName) {}

TTextFileLines::TTextFileLines(std::string bytes, const std::string& fileName)
    : FBytes(std::move(bytes)) {
  TTextFormat format;
  std::string_view text = DecodeText(FBytes, format, FDecoded, fileName);
  FLines.reserve(std::count(text.begin(), text.end(), '\n') + 1);  // CR-only text grows it
  ForEachTextLine(text, [&](std::string_view line, TLineBreak) { FLines.push_back(line); });
}

std::string_view TTextFileLines::operator[](int index) const {
  if (index < 0 || index >= Count()) RaiseIndexError(index);
  return FLines[static_cast<size_t>(index)];
}

void TTextFileLines::DeleteFirst(int count) {
  FLines.erase(FLines.begin(), FLines.begin() + count);
}

std::string EncodeTextFile(const std::vector<TTextLine>& lines, const TTextFormat& format) {
  std::string text;
  size_t total = 0;
  for (const auto& l : lines)
    total += l.Text.size() + 2;
  text.reserve(total);
  for (size_t i = 0; i < lines.size(); ++i) {
    TLineBreak br = lines[i].Break;
    if (br == TLineBreak::None || br == TLineBreak::Default) br = format.DominantBreak;
    if (i + 1 == lines.size() && !format.FinalNewline) br = TLineBreak::None;
    text.append(lines[i].Text).append(BreakText(br));
  }
  switch (format.Encoding) {
    case TTextEncoding::Ansi:
      return text;
    case TTextEncoding::UTF8:
      return std::string(kBomUtf8) + text;
    case TTextEncoding::UTF16LE:
      return std::string(kBomUtf16LE) + Utf8ToUtf16(text, false);
    case TTextEncoding::UTF16BE:
      return std::string(kBomUtf16BE) + Utf8ToUtf16(text, true);
  }
  return text;
}

// ---- TStringList ------------------------------------------------------------------------

TStringList::TStringList(std::initializer_list<std::string> items) {
  for (const auto& s : items)
    Add(s);
}

void TStringList::CheckIndex(int index) const {
  if (index < 0 || index >= Count()) RaiseIndexError(index);
}

bool TStringList::SameItem(std::string_view a, std::string_view b) const {
  return CaseSensitive ? a == b : SameText(a, b);
}

const std::string& TStringList::operator[](int index) const {
  CheckIndex(index);
  return FItems[static_cast<size_t>(index)];
}

void TStringList::Put(int index, const std::string& s) {
  CheckIndex(index);
  FItems[static_cast<size_t>(index)] = s;
}

intptr_t TStringList::Objects(int index) const {
  CheckIndex(index);
  return FObjects[static_cast<size_t>(index)];
}

void TStringList::PutObject(int index, intptr_t obj) {
  CheckIndex(index);
  FObjects[static_cast<size_t>(index)] = obj;
}

int TStringList::AddObject(const std::string& s, intptr_t obj) {
  FItems.push_back(s);
  FObjects.push_back(obj);
  FBreaks.push_back(TLineBreak::Default);
  return Count() - 1;
}

void TStringList::Insert(int index, const std::string& s) {
  if (index < 0 || index > Count()) RaiseIndexError(index);
  auto at = static_cast<size_t>(index);
  FItems.insert(FItems.begin() + at, s);
  FObjects.insert(FObjects.begin() + at, 0);
  FBreaks.insert(FBreaks.begin() + at, TLineBreak::Default);
}

TLineBreak TStringList::LineBreak(int index) const {
  CheckIndex(index);
  return FBreaks[static_cast<size_t>(index)];
}

void TStringList::SetLineBreak(int index, TLineBreak br) {
  CheckIndex(index);
  FBreaks[static_cast<size_t>(index)] = br;
}

void TStringList::Delete(int index) {
  CheckIndex(index);
  auto at = static_cast<size_t>(index);
  FItems.erase(FItems.begin() + at);
  FObjects.erase(FObjects.begin() + at);
  FBreaks.erase(FBreaks.begin() + at);
}

void TStringList::Exchange(int i, int j) {
  CheckIndex(i);
  CheckIndex(j);
  auto a = static_cast<size_t>(i), b = static_cast<size_t>(j);
  std::swap(FItems[a], FItems[b]);
  std::swap(FObjects[a], FObjects[b]);
  std::swap(FBreaks[a], FBreaks[b]);
}

void TStringList::Clear() {
  FItems.clear();
  FObjects.clear();
  FBreaks.clear();
}

void TStringList::Assign(const TStringList& other) {
  if (this == &other) return;
  FItems = other.FItems;
  FObjects = other.FObjects;
  FBreaks = other.FBreaks;
  FFormat = other.FFormat;
  Delimiter = other.Delimiter;
  QuoteChar = other.QuoteChar;
  CaseSensitive = other.CaseSensitive;
}

void TStringList::AddStrings(const TStringList& other) {
  for (int i = 0; i < other.Count(); ++i)
    AddObject(other.FItems[i], other.FObjects[i]);
}

int TStringList::IndexOf(std::string_view s) const {
  for (size_t i = 0; i < FItems.size(); ++i)
    if (SameItem(FItems[i], s)) return static_cast<int>(i);
  return -1;
}

int TStringList::IndexOfName(std::string_view name) const {
  for (size_t i = 0; i < FItems.size(); ++i) {
    size_t eq = FItems[i].find('=');
    if (eq != std::string::npos && SameItem(std::string_view(FItems[i]).substr(0, eq), name))
      return static_cast<int>(i);
  }
  return -1;
}

std::string TStringList::Names(int index) const {
  const std::string& s = (*this)[index];
  size_t eq = s.find('=');
  return eq == std::string::npos ? std::string() : s.substr(0, eq);
}

std::string TStringList::ValueFromIndex(int index) const {
  const std::string& s = (*this)[index];
  size_t eq = s.find('=');
  return eq == std::string::npos ? std::string() : s.substr(eq + 1);
}

std::string TStringList::Values(std::string_view name) const {
  int i = IndexOfName(name);
  return i < 0 ? std::string() : ValueFromIndex(i);
}

void TStringList::SetValue(std::string_view name, const std::string& value) {
  int i = IndexOfName(name);
  if (value.empty()) {
    if (i >= 0) Delete(i);
    return;
  }
  std::string line = std::string(name) + "=" + value;
  if (i < 0)
    Add(line);
  else
    Put(i, line);
}

std::string TStringList::Text() const {
  std::string r;
  for (const auto& s : FItems)
    r.append(s).append("\r\n");
  return r;
}

void TStringList::SetText(std::string_view text) {
  Clear();
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\n' && text[i] != '\r') continue;
    Add(std::string(text.substr(start, i - start)));
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    start = i + 1;
  }
  if (start < text.size()) Add(std::string(text.substr(start)));
}

std::string TStringList::DelimitedText() const {
  auto needsQuotes = [this](const std::string& s) {
    return std::any_of(s.begin(), s.end(), [this](char c) {
      return static_cast<unsigned char>(c) <= ' ' || c == QuoteChar || c == Delimiter;
    });
  };
  if (FItems.size() == 1 && FItems[0].empty()) return std::string(2, QuoteChar);
  std::string r;
  for (size_t i = 0; i < FItems.size(); ++i) {
    if (i) r += Delimiter;
    const std::string& s = FItems[i];
    if (!needsQuotes(s)) {
      r += s;
      continue;
    }
    r += QuoteChar;
    for (char c : s) {
      if (c == QuoteChar) r += QuoteChar;
      r += c;
    }
    r += QuoteChar;
  }
  return r;
}

void TStringList::SetDelimitedText(std::string_view text) {
  Clear();
  auto isSpace = [](char c) {
    auto u = static_cast<unsigned char>(c);
    return u >= 1 && u <= ' ';
  };
  size_t p = 0, n = text.size();
  while (p < n && isSpace(text[p]))
    ++p;
  while (p < n && text[p] != '\0') {
    std::string item;
    if (text[p] == QuoteChar) {
      // A quoted item runs to the matching quote; two quote characters stand for one.
      ++p;
      while (p < n) {
        size_t quote = std::min(text.find(QuoteChar, p), n);
        item.append(text.substr(p, quote - p));
        p = quote;
        if (p == n) break;
        if (p + 1 < n && text[p + 1] == QuoteChar) {
          item += QuoteChar;
          p += 2;
          continue;
        }
        ++p;
        break;
      }
    } else {
      size_t b = p;
      while (p<n&& static_cast<unsigned char>(text[p])> ' ' && text[p] != Delimiter)
        ++p;
      item.assign(text.substr(b, p - b));
    }
    FItems.push_back(std::move(item));
    FObjects.push_back(0);
    FBreaks.push_back(TLineBreak::Default);
    while (p < n && isSpace(text[p]))
      ++p;
    if (p < n && text[p] == Delimiter) {
      if (p + 1 == n) Add("");
      do {
        ++p;
      } while (p < n && isSpace(text[p]));
    }
  }
}

std::string TStringList::CommaText() const {
  TStringList copy;
  copy.FItems = FItems;
  copy.Delimiter = ',';
  copy.QuoteChar = '"';
  return copy.DelimitedText();
}

void TStringList::SetCommaText(std::string_view text) {
  char d = Delimiter, q = QuoteChar;
  Delimiter = ',';
  QuoteChar = '"';
  SetDelimitedText(text);
  Delimiter = d;
  QuoteChar = q;
}

void TStringList::Sort() {
  std::vector<size_t> order(FItems.size());
  for (size_t i = 0; i < order.size(); ++i)
    order[i] = i;
  std::stable_sort(order.begin(), order.end(), [this](size_t a, size_t b) {
    return CaseSensitive ? FItems[a] < FItems[b] : CompareText(FItems[a], FItems[b]) < 0;
  });
  std::vector<std::string> items;
  std::vector<intptr_t> objects;
  std::vector<TLineBreak> breaks;
  for (size_t i : order) {
    items.push_back(std::move(FItems[i]));
    objects.push_back(FObjects[i]);
    breaks.push_back(FBreaks[i]);
  }
  FItems.swap(items);
  FObjects.swap(objects);
  FBreaks.swap(breaks);
}

void TStringList::LoadFromFile(const std::string& fileName) {
  std::string bytes = ReadTextFileBytes(fileName);
  TTextFormat format;
  std::vector<TTextLine> lines = DecodeTextFile(bytes, format, fileName);
  Clear();
  FItems.reserve(lines.size());
  for (auto& l : lines) {
    FItems.push_back(std::move(l.Text));
    FObjects.push_back(0);
    FBreaks.push_back(l.Break);
  }
  FFormat = format;
}

void TStringList::SaveToFile(const std::string& fileName) const {
  std::vector<TTextLine> lines;
  lines.reserve(FItems.size());
  for (size_t i = 0; i < FItems.size(); ++i)
    lines.push_back({FItems[i], FBreaks[i]});
  platform::AtomicWriteFile(fileName, EncodeTextFile(lines, FFormat));
}

}  // namespace qv
