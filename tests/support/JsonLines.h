// Reading the host's JSON-lines log in tests: one flat object per line.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qvtest {

// The members of one flat JSON object: strings decoded (a \u escape, which the host writes
// only for control characters and bytes that are not UTF-8, to the byte it stands for),
// numbers and literals as written. Throws std::runtime_error on anything else.
std::map<std::string, std::string> ParseFlatJson(std::string_view line);

// Every line of `text` parsed; blank lines skipped.
std::vector<std::map<std::string, std::string>> ParseJsonLines(std::string_view text);

}  // namespace qvtest
