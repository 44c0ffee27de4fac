#include "QvCounts.h"

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

}  // namespace qv
