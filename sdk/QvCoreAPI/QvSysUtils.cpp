#include "QvSysUtils.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "QvExceptions.h"
#include "QvPlatform.h"

namespace qv {

namespace {
inline bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}
inline char Lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
}
inline char Upper(char c) {
  return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}
}  // namespace

std::string_view TrimmedView(std::string_view s) {
  size_t b = 0, e = s.size();
  while (b < e && IsBlank(s[b]))
    ++b;
  while (e > b && IsBlank(s[e - 1]))
    --e;
  return s.substr(b, e - b);
}

std::string Trim(std::string_view s) {
  return std::string(TrimmedView(s));
}

std::string TrimLeft(std::string_view s) {
  size_t b = 0;
  while (b < s.size() && IsBlank(s[b]))
    ++b;
  return std::string(s.substr(b));
}

std::string TrimRight(std::string_view s) {
  size_t e = s.size();
  while (e > 0 && IsBlank(s[e - 1]))
    --e;
  return std::string(s.substr(0, e));
}

std::string LowerCase(std::string_view s) {
  std::string r(s);
  for (char& c : r)
    c = Lower(c);
  return r;
}

std::string UpperCase(std::string_view s) {
  std::string r(s);
  for (char& c : r)
    c = Upper(c);
  return r;
}

bool SameText(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (Lower(a[i]) != Lower(b[i])) return false;
  return true;
}

int CompareText(std::string_view a, std::string_view b) {
  size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    unsigned char x = static_cast<unsigned char>(Lower(a[i]));
    unsigned char y = static_cast<unsigned char>(Lower(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

size_t FindText(std::string_view haystack, std::string_view needle) {
  if (needle.empty()) return 0;
  if (needle.size() > haystack.size()) return std::string_view::npos;
  for (size_t i = 0; i + needle.size() <= haystack.size(); ++i)
    if (SameText(haystack.substr(i, needle.size()), needle)) return i;
  return std::string_view::npos;
}

bool StartsStr(std::string_view prefix, std::string_view s) {
  return s.starts_with(prefix);
}
bool EndsStr(std::string_view suffix, std::string_view s) {
  return s.ends_with(suffix);
}
bool ContainsStr(std::string_view s, std::string_view part) {
  return s.find(part) != std::string_view::npos;
}

namespace {
bool ParseInt64(std::string_view s, int64_t& out) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
    s.remove_prefix(1);
  if (!s.empty() && s.front() == '+') s.remove_prefix(1);
  if (s.empty()) return false;
  auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
  return ec == std::errc() && p == s.data() + s.size();
}
}  // namespace

int64_t StrToInt64Def(std::string_view s, int64_t def) {
  int64_t v;
  return ParseInt64(s, v) ? v : def;
}

int StrToIntDef(std::string_view s, int def) {
  int64_t v;
  if (!ParseInt64(s, v) || v < INT32_MIN || v > INT32_MAX) return def;
  return static_cast<int>(v);
}

int64_t StrToInt64(std::string_view s) {
  int64_t v;
  if (!ParseInt64(s, v))
    throw EConvertError("'" + std::string(s) + "' is not a valid integer value");
  return v;
}

std::string IntToStr(int64_t v) {
  return std::to_string(v);
}

std::string IntToHex(int64_t v, int digits) {
  uint64_t u = v < 0 ? static_cast<uint32_t>(v) : static_cast<uint64_t>(v);
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  do {
    out.insert(out.begin(), kDigits[u & 0xF]);
    u >>= 4;
  } while (u != 0);
  if (static_cast<int>(out.size()) < digits)
    out.insert(0, static_cast<size_t>(digits) - out.size(), '0');
  return out;
}

int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool TryHexToInt(std::string_view s, int64_t& out) {
  if (s.empty() || s.size() > 16) return false;
  uint64_t v = 0;
  auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), v, 16);
  if (ec != std::errc() || p != s.data() + s.size()) return false;
  out = static_cast<int64_t>(v);
  return true;
}

int64_t StrToIntHexDef(std::string_view s, int64_t def) {
  std::string t = Trim(s);
  std::string_view v = t;
  int64_t out;
  if (StartsStr("$", v)) return TryHexToInt(v.substr(1), out) ? out : def;
  if (v.size() > 2 && v[0] == '0' && (v[1] == 'x' || v[1] == 'X'))
    return TryHexToInt(v.substr(2), out) ? out : def;
  return StrToInt64Def(v, def);
}

namespace {
std::string FormatTime(std::time_t t, const char* format) {
  std::tm tm = platform::LocalTime(t);
  char buf[128];
  size_t n = std::strftime(buf, sizeof buf, format, &tm);
  return std::string(buf, n);
}
}  // namespace

std::string LongDateText(std::time_t t) {
  // Windows' default long date: "dddd, MMMM d, yyyy" (no leading zero on the day).
  std::string day = FormatTime(t, "%d");
  if (day.size() == 2 && day[0] == '0') day.erase(0, 1);
  return FormatTime(t, "%A, %B ") + day + FormatTime(t, ", %Y");
}

std::string ShortTimeText(std::time_t t) {
  // Windows' default short time: "h:mm AM/PM".
  std::string hour = FormatTime(t, "%I");
  if (hour.size() == 2 && hour[0] == '0') hour.erase(0, 1);
  return hour + FormatTime(t, ":%M %p");
}

std::string BoolToStr(bool b) {
  return b ? "True" : "False";
}

bool StrToBoolDef(std::string_view s, bool def) {
  if (SameText(s, "True")) return true;
  if (SameText(s, "False")) return false;
  return def;
}

bool StrToBool(std::string_view s) {
  if (SameText(s, "True")) return true;
  if (SameText(s, "False")) return false;
  throw EConvertError("'" + std::string(s) + "' is not a valid boolean value");
}

namespace {
size_t LastDelimiter(std::string_view path) {
  for (size_t i = path.size(); i > 0; --i)
    if (IsPathDelimiter(path[i - 1])) return i - 1;
  return std::string_view::npos;
}
}  // namespace

std::string ExtractFilePath(std::string_view path) {
  size_t p = LastDelimiter(path);
  return p == std::string_view::npos ? std::string() : std::string(path.substr(0, p + 1));
}

std::string ExtractFileDir(std::string_view path) {
  size_t p = LastDelimiter(path);
  if (p == std::string_view::npos) return {};
  return std::string(path.substr(0, p == 0 ? 1 : p));
}

std::string ExtractFileName(std::string_view path) {
  size_t p = LastDelimiter(path);
  return std::string(p == std::string_view::npos ? path : path.substr(p + 1));
}

std::string ExtractFileExt(std::string_view path) {
  std::string name = ExtractFileName(path);
  size_t dot = name.rfind('.');
  return dot == std::string::npos ? std::string() : name.substr(dot);
}

std::string ChangeFileExt(std::string_view path, std::string_view ext) {
  std::string p(path);
  std::string oldExt = ExtractFileExt(path);
  p.resize(p.size() - oldExt.size());
  return p + std::string(ext);
}

std::string IncludeTrailingPathDelimiter(std::string_view path) {
  std::string r(path);
  if (r.empty() || !IsPathDelimiter(r.back())) r += platform::PathDelim;
  return r;
}

std::string ExcludeTrailingPathDelimiter(std::string_view path) {
  std::string r(path);
  if (!r.empty() && IsPathDelimiter(r.back())) r.pop_back();
  return r;
}

std::string StringReplaceAll(std::string_view s, std::string_view from, std::string_view to) {
  std::string r;
  r.reserve(s.size());
  size_t pos = 0;
  for (;;) {
    size_t hit = s.find(from, pos);
    if (hit == std::string_view::npos || from.empty()) break;
    r.append(s.substr(pos, hit - pos)).append(to);
    pos = hit + from.size();
  }
  r.append(s.substr(pos));
  return r;
}

}  // namespace qv
