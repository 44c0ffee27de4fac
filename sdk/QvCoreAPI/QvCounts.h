// Counts read from tool output, which must not overflow whatever a tool prints.
#pragma once

#include <cstdint>
#include <string_view>

namespace qv {

// A count read from tool output ("  12" before " Error(s)"): decimal digits after blanks and
// tabs, read into 64 bits and clamped at the largest value; 0 for anything else.
int64_t ReadCount(std::string_view text);
// a + b, clamped at the largest (or smallest) value instead of overflowing.
int64_t AddCounts(int64_t a, int64_t b);

}  // namespace qv
