// The rules by which the build action reads devenv's and MSBuild's console output: lines in,
// classifications and counts out, no I/O.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "QvActions.h"

namespace qv {

// Error when the line holds "error", or "failed" but not "0 failed"; warning for "warning";
// success for "succeeded" but not "0 succeeded"; plain otherwise. Words count only whole,
// framed by white space, "|", "=", ";", "," or "." on both sides, without regard to case.
TStatusTag ClassifyByWords(std::string_view line);

// devenv's "... complete -- N errors, M warnings": the two counts; nullopt for other lines.
std::optional<std::pair<int64_t, int64_t>> ReadDevEnvCounts(std::string_view line);

// True when `text` holds devenv 2002/2003's ": N succeeded, M failed, K skipped" with M > 0.
bool ReportsFailedProjects(std::string_view text);

}  // namespace qv
