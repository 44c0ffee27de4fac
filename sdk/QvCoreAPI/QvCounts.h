// Counts read from tool output, which must not overflow whatever a tool prints.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qv {

// A count read from tool output ("  12" before " Error(s)"): decimal digits after blanks and
// tabs, read into 64 bits and clamped at the largest value; 0 for anything else.
int64_t ReadCount(std::string_view text);
// MSBuild's closing "  12 Error(s)" and "  0 Warning(s)" lines: for each marker the line
// holds, the count before it (ReadCount of the text before the marker). With `wholeLine`, only
// a line that is nothing but blanks, digits, the marker and trailing blanks counts.
struct TSummaryCounts {
  std::optional<int64_t> Errors, Warnings;
};
TSummaryCounts ReadSummaryCounts(std::string_view line, bool wholeLine = false);
// a + b, clamped at the largest (or smallest) value instead of overflowing.
int64_t AddCounts(int64_t a, int64_t b);

}  // namespace qv
