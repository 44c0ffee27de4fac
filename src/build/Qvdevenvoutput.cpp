#include "Qvdevenvoutput.h"

#include <algorithm>
#include <string>

#include "QvCounts.h"

namespace qv {

namespace {

bool IsWordFrame(char c) {
  switch (c) {
    case ' ':
    case '\t':
    case '\n':
    case '\v':
    case '\f':
    case '\r':
    case '|':
    case '=':
    case ';':
    case ',':
    case '.':
      return true;
    default:
      return false;
  }
}

// Never at the very start or end of the line: a frame is needed on both sides.
bool HasFramedWord(std::string_view line, std::string_view word) {
  for (size_t at = line.find(word, 1); at != std::string_view::npos; at = line.find(word, at + 1))
    if (at + word.size() < line.size() && IsWordFrame(line[at - 1]) &&
        IsWordFrame(line[at + word.size()]))
      return true;
  return false;
}

// The number before `marker` in `text`: leading blanks and tabs allowed, 0 otherwise.
int64_t CountBefore(std::string_view text, std::string_view marker) {
  size_t at = text.find(marker);
  return ReadCount(text.substr(0, at == std::string_view::npos ? 0 : at));
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Reads one or more digits at `at`; false when there are none. `nonZero` tells whether any
// digit was not 0.
bool Digits(std::string_view s, size_t& at, bool* nonZero = nullptr) {
  size_t start = at;
  while (at < s.size() && IsDigit(s[at])) {
    if (nonZero && s[at] != '0') *nonZero = true;
    ++at;
  }
  return at > start;
}

bool Literal(std::string_view s, size_t& at, std::string_view text) {
  if (s.substr(at, text.size()) != text) return false;
  at += text.size();
  return true;
}

}  // namespace

TStatusTag ClassifyByWords(std::string_view line) {
  thread_local std::string lower;
  lower.assign(line);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  if (HasFramedWord(lower, "error")) return TStatusTag::Error;
  if (HasFramedWord(lower, "failed") && !HasFramedWord(lower, "0 failed")) return TStatusTag::Error;
  if (HasFramedWord(lower, "warning")) return TStatusTag::Warning;
  if (HasFramedWord(lower, "succeeded") && !HasFramedWord(lower, "0 succeeded"))
    return TStatusTag::Success;
  return TStatusTag::Plain;
}

std::optional<std::pair<int64_t, int64_t>> ReadDevEnvCounts(std::string_view line) {
  constexpr std::string_view kComplete = " complete -- ";
  size_t at = line.find(kComplete);
  if (at == std::string_view::npos) return std::nullopt;
  std::string_view counts = line.substr(at + kComplete.size());
  size_t comma = counts.find(',');
  std::string_view rest =
      counts.substr(std::min(counts.size(), comma == std::string_view::npos ? 1 : comma + 2));
  return std::pair{CountBefore(counts, " errors"), CountBefore(rest, " warnings")};
}

bool ReportsFailedProjects(std::string_view text) {
  for (size_t colon = text.find(": "); colon != std::string_view::npos;
       colon = text.find(": ", colon + 1)) {
    size_t at = colon + 2;
    bool failed = false;
    if (Digits(text, at) && Literal(text, at, " succeeded, ") && Digits(text, at, &failed) &&
        Literal(text, at, " failed, ") && Digits(text, at) && Literal(text, at, " skipped") &&
        failed)
      return true;
  }
  return false;
}

}  // namespace qv
