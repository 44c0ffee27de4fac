#include "QvUtils.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <unordered_map>

#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qv {

void LoadUnicodeFile(const std::string& fileName, TStringList& lines) {
  lines.LoadFromFile(fileName);
}

namespace {
bool IsForeignAbsolute(std::string_view p) {
  bool drive = p.size() >= 2 && p[1] == ':' &&
               ((p[0] >= 'A' && p[0] <= 'Z') || (p[0] >= 'a' && p[0] <= 'z'));
  bool unc = p.size() >= 2 && p[0] == '\\' && p[1] == '\\';
  return drive || unc;
}

std::string NativeSeparators(std::string_view p) {
  std::string r(p);
  for (char& c : r)
    if (IsPathDelimiter(c)) c = platform::PathDelim;
  return r;
}

// The root of an absolute native path: "" on POSIX (the separator that starts it), the
// drive (C:) or the server and share (\\server\share) on Windows.
std::string_view RootOf(std::string_view abs) {
#ifdef _WIN32
  if (abs.size() >= 2 && abs[1] == ':') return abs.substr(0, 2);
  if (abs.size() >= 2 && abs[0] == '\\' && abs[1] == '\\') {
    size_t server = abs.find('\\', 2);
    size_t share = server == std::string_view::npos ? server : abs.find('\\', server + 1);
    return abs.substr(0, share);
  }
#endif
  (void)abs;
  return {};
}

// Folds "." and ".." and repeated separators of an absolute native path.
std::string FoldPath(const std::string& abs) {
  std::string_view root = RootOf(abs);
  std::vector<std::string_view> parts;
  std::string_view s = std::string_view(abs).substr(root.size());
  size_t i = 0;
  while (i < s.size()) {
    size_t j = s.find(platform::PathDelim, i);
    if (j == std::string_view::npos) j = s.size();
    std::string_view part = s.substr(i, j - i);
    if (part == "..") {
      if (!parts.empty()) parts.pop_back();
    } else if (!part.empty() && part != ".") {
      parts.push_back(part);
    }
    i = j + 1;
  }
  std::string r(root);
  for (auto part : parts)
    r.append(1, platform::PathDelim).append(part);
  return r.size() == root.size() ? r + platform::PathDelim : r;
}

// `native` made absolute where it is rooted but has no drive (\src on Windows: on the current
// drive); unchanged elsewhere.
std::string OnCurrentDrive(std::string native) {
#ifdef _WIN32
  if (!native.empty() && native[0] == '\\' && (native.size() == 1 || native[1] != '\\'))
    return platform::CurrentDirectory().substr(0, 2) + native;
#endif
  return native;
}
}  // namespace

std::string ExpandRelativePath(std::string_view path, std::string_view base) {
  if (IsForeignAbsolute(path)) return std::string(path);
  std::string native = OnCurrentDrive(NativeSeparators(path));
  if (platform::IsAbsolutePath(native)) return FoldPath(native);
  std::string b = OnCurrentDrive(NativeSeparators(base));
  if (!platform::IsAbsolutePath(b)) {
    b = IncludeTrailingPathDelimiter(platform::CurrentDirectory()) + b;
  }
  return FoldPath(IncludeTrailingPathDelimiter(b) + native);
}

// ---- regular expressions ---------------------------------------------------------------

namespace {
struct CodeDeleter {
  void operator()(pcre2_code* c) const { pcre2_code_free(c); }
};
using CodePtr = std::shared_ptr<pcre2_code>;

CodePtr CompilePattern(std::string_view pattern, bool caseInsensitive) {
  thread_local std::unordered_map<std::string, CodePtr> cache;
  std::string key = (caseInsensitive ? "i:" : "c:") + std::string(pattern);
  if (auto it = cache.find(key); it != cache.end()) return it->second;
  int err = 0;
  PCRE2_SIZE offset = 0;
  uint32_t options = PCRE2_UTF | PCRE2_MATCH_INVALID_UTF | (caseInsensitive ? PCRE2_CASELESS : 0);
  pcre2_code* code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.data()), pattern.size(),
                                   options, &err, &offset, nullptr);
  if (!code) {
    PCRE2_UCHAR msg[256];
    pcre2_get_error_message(err, msg, sizeof msg);
    throw Exception("Invalid regular expression \"" + std::string(pattern) + "\" : " +
                    reinterpret_cast<char*>(msg) + " at offset " + std::to_string(offset));
  }
  pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
  if (cache.size() > 256) cache.clear();
  CodePtr ptr(code, CodeDeleter());
  cache.emplace(std::move(key), ptr);
  return ptr;
}
}  // namespace

struct TRegExpr::Impl {
  CodePtr Code;
  pcre2_match_data* Data = nullptr;
  std::string Subject;
  int Groups = 0;
  bool Matched = false;
  ~Impl() {
    if (Data) pcre2_match_data_free(Data);
  }
};

TRegExpr::TRegExpr(std::string_view pattern, bool caseInsensitive) : FImpl(new Impl) {
  FImpl->Code = CompilePattern(pattern, caseInsensitive);
  FImpl->Data = pcre2_match_data_create_from_pattern(FImpl->Code.get(), nullptr);
}
TRegExpr::~TRegExpr() = default;
TRegExpr::TRegExpr(TRegExpr&&) noexcept = default;
TRegExpr& TRegExpr::operator=(TRegExpr&&) noexcept = default;

bool TRegExpr::Exec(std::string_view subject) {
  FImpl->Subject.assign(subject);
  int rc = pcre2_match(FImpl->Code.get(), reinterpret_cast<PCRE2_SPTR>(FImpl->Subject.data()),
                       FImpl->Subject.size(), 0, 0, FImpl->Data, nullptr);
  FImpl->Matched = rc > 0;
  FImpl->Groups = rc > 0 ? rc : 0;
  return FImpl->Matched;
}

long TRegExpr::MatchPos(int n) const {
  if (!FImpl->Matched || n < 0 || n >= FImpl->Groups) return -1;
  PCRE2_SIZE* ov = pcre2_get_ovector_pointer(FImpl->Data);
  if (ov[2 * n] == PCRE2_UNSET) return -1;
  return static_cast<long>(ov[2 * n]);
}

std::string TRegExpr::Match(int n) const {
  long pos = MatchPos(n);
  if (pos < 0) return {};
  PCRE2_SIZE* ov = pcre2_get_ovector_pointer(FImpl->Data);
  return FImpl->Subject.substr(static_cast<size_t>(pos), ov[2 * n + 1] - ov[2 * n]);
}

int TRegExpr::GroupCount() const {
  uint32_t n = 0;
  pcre2_pattern_info(FImpl->Code.get(), PCRE2_INFO_CAPTURECOUNT, &n);
  return static_cast<int>(n);
}

bool ExecRegExpr(std::string_view pattern, std::string_view text) {
  CodePtr code = CompilePattern(pattern, false);
  thread_local pcre2_match_data* data = pcre2_match_data_create(32, nullptr);
  int rc = pcre2_match(code.get(), reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), 0, 0,
                       data, nullptr);
  return rc > 0 || rc == PCRE2_ERROR_NOMEMORY;  // NOMEMORY: matched, ovector too small
}

// ---- text helpers ----------------------------------------------------------------------

std::vector<std::string> Tokenize(std::string_view text, std::string_view delimiters, bool trim) {
  std::vector<std::string> tokens;
  if (text.empty()) return tokens;
  size_t start = 0;
  for (;;) {
    size_t end = text.find_first_of(delimiters, start);
    std::string_view tok = text.substr(start, end == std::string_view::npos ? end : end - start);
    tokens.push_back(trim ? Trim(tok) : std::string(tok));
    if (end == std::string_view::npos) break;
    start = end + 1;
  }
  return tokens;
}

std::string DoubleQuoteString(std::string_view s, bool onlyWhenNeeded) {
  if (onlyWhenNeeded && !s.empty() && s.find_first_of(" \t") == std::string_view::npos)
    return std::string(s);
  return "\"" + std::string(s) + "\"";
}

std::string GetQvAppPath() {
  return IncludeTrailingPathDelimiter(ExtractFilePath(platform::ExecutablePath()));
}

std::string GetTempFolder() {
  return platform::TempFolder();
}

std::string GetComputerNetName() {
  std::string name = platform::HostName();
  name = name.substr(0, name.find('.'));
  if (name.size() > 15) name.resize(15);
  return UpperCase(name);
}

namespace {
// Length of the valid UTF-8 sequence at s[i], or 0.
size_t Utf8Length(std::string_view s, size_t i) {
  auto c = static_cast<unsigned char>(s[i]);
  size_t len = c >= 0xF0 && c <= 0xF4 ? 4 : c >= 0xE0 ? 3 : c >= 0xC2 && c < 0xE0 ? 2 : 0;
  if (len == 0 || i + len > s.size()) return 0;
  for (size_t k = 1; k < len; ++k)
    if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return 0;
  return len;
}
}  // namespace

void AppendJsonString(std::string& r, std::string_view s) {
  static const char* hex = "0123456789abcdef";
  r += '"';
  for (size_t i = 0; i < s.size(); ++i) {
    size_t plain = i;  // a run that needs no escape is copied at once
    while (plain < s.size() && static_cast<unsigned char>(s[plain]) >= 0x20 &&
           static_cast<unsigned char>(s[plain]) < 0x7F && s[plain] != '"' && s[plain] != '\\')
      ++plain;
    if (plain > i) {
      r.append(s.substr(i, plain - i));
      i = plain;
      if (i == s.size()) break;
    }
    auto c = static_cast<unsigned char>(s[i]);
    if (c == '"' || c == '\\') {
      r += '\\';
      r += static_cast<char>(c);
    } else if (c == '\n') {
      r += "\\n";
    } else if (c == '\r') {
      r += "\\r";
    } else if (c == '\t') {
      r += "\\t";
    } else if (size_t len = c >= 0x80 ? Utf8Length(s, i) : 0) {
      r.append(s.substr(i, len));
      i += len - 1;
    } else {
      r += "\\u00";
      r += hex[c >> 4];
      r += hex[c & 15];
    }
  }
  r += '"';
}

std::string JsonString(std::string_view s) {
  std::string r;
  r.reserve(s.size() + 2);
  AppendJsonString(r, s);
  return r;
}

namespace {
bool IsNameChar(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '.' || c == '-';
}
}  // namespace

std::string ExpandVariables(std::string_view text, const TVariableLookup& lookup) {
  std::string out;
  out.reserve(text.size());
  size_t i = 0;
  while (i < text.size()) {
    char c = text[i];
    if (c != '%') {
      out += c;
      ++i;
      continue;
    }
    if (i + 1 < text.size() && text[i + 1] == '%') {
      out += '%';
      i += 2;
      continue;
    }
    size_t close = text.find('%', i + 1);
    std::string_view name =
        close == std::string_view::npos ? std::string_view() : text.substr(i + 1, close - i - 1);
    bool wellFormed = !name.empty() && std::all_of(name.begin(), name.end(), IsNameChar);
    if (!wellFormed) {
      out += c;
      ++i;
      continue;
    }
    std::optional<std::string> value = lookup(name);
    if (!value) throw Exception("Variable \"" + std::string(name) + "\" is not defined");
    out += *value;
    i = close + 1;
  }
  return out;
}

}  // namespace qv

namespace qv {

namespace {

std::string PercentDecode(std::string_view s) {
  std::string r;
  r.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    int hi = s[i] == '%' && i + 2 < s.size() ? HexDigitValue(s[i + 1]) : -1;
    int lo = hi >= 0 ? HexDigitValue(s[i + 2]) : -1;
    if (lo < 0) {
      r += s[i];
      continue;
    }
    r += static_cast<char>(hi * 16 + lo);
    i += 2;
  }
  return r;
}

// Splits "HOST[:PORT]" (or "[V6]:PORT"), user information already removed.
void SplitHostPort(std::string_view authority, TQvURI& uri) {
  size_t colon = authority.rfind(':');
  size_t bracket = authority.rfind(']');
  if (colon != std::string_view::npos && (bracket == std::string_view::npos || colon > bracket)) {
    uri.Port = authority.substr(colon + 1);
    authority = authority.substr(0, colon);
  }
  uri.Host = authority;
}
}  // namespace

TQvURI ParseURI(std::string_view address) {
  TQvURI uri;
  std::string_view rest = address;
  if (size_t scheme = rest.find("://"); scheme != std::string_view::npos) {
    uri.Protocol = rest.substr(0, scheme);
    rest.remove_prefix(scheme + 3);
    size_t end = std::min(rest.find_first_of("/?#"), rest.size());
    std::string_view authority = rest.substr(0, end);
    if (size_t at = authority.rfind('@'); at != std::string_view::npos)
      authority.remove_prefix(at + 1);
    SplitHostPort(authority, uri);
    rest.remove_prefix(end);
  }
  rest = rest.substr(0, std::min(rest.find_first_of("?#"), rest.size()));
  size_t slash = rest.rfind('/');
  size_t docStart = slash == std::string_view::npos ? 0 : slash + 1;
  uri.Path = PercentDecode(rest.substr(0, docStart));
  uri.Document = PercentDecode(rest.substr(docStart));
  return uri;
}

}  // namespace qv
