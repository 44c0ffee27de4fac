#include "QvCounts.h"

#include "QvText.h"

namespace qv {

int64_t ReadCount(std::string_view text) {
  size_t i = text.find_first_not_of(" \t");
  if (i == std::string_view::npos) return 0;
  int64_t value = 0;
  for (; i < text.size(); ++i) {
    if (text[i] < '0' || text[i] > '9') return 0;
    int digit = text[i] - '0';
    value = value > (INT64_MAX - digit) / 10 ? INT64_MAX : value * 10 + digit;
  }
  return value;
}

int64_t AddCounts(int64_t a, int64_t b) {
  int64_t sum;
  if (__builtin_add_overflow(a, b, &sum)) return b > 0 ? INT64_MAX : INT64_MIN;
  return sum;
}

TSummaryCounts ReadSummaryCounts(std::string_view line, bool wholeLine) {
  TSummaryCounts counts;
  auto read = [&](std::string_view marker) -> std::optional<int64_t> {
    size_t at = line.find(marker);
    if (at == std::string_view::npos) return std::nullopt;
    std::string_view before = TrimLeftView(line.substr(0, at));
    if (wholeLine) {
      bool digits =
          !before.empty() && before.find_first_not_of("0123456789") == std::string_view::npos;
      if (!digits || !TrimRightView(line.substr(at + marker.size())).empty()) return std::nullopt;
    }
    return ReadCount(line.substr(0, at));
  };
  counts.Errors = read(" Error(s)");
  counts.Warnings = read(" Warning(s)");
  return counts;
}

}  // namespace qv
