// Compiler and build-tool diagnostics in Microsoft's canonical message form:
//   FILE(LINE[,COL][,...]): [subcategory] error|warning CODE: text
//   FILE : error CODE: text        TOOL : warning CODE: text        error CODE: text
// read by hand, one line at a time, without regular expressions.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qv {

struct TCanonicalMessage {
  bool Error = false;            // error, or else warning
  std::string_view Origin;       // the file or tool before the position; empty when none
  int64_t Line = 0, Column = 0;  // 0 when the origin gives none
  std::string_view Subcategory;  // "fatal" in "fatal error C1083"; usually empty
  std::string_view Code;         // "CS0103"; empty when the line names none
  std::string_view Text;         // behind the code's colon, without a project suffix
  std::string_view Project;      // the " [PROJECT]" MSBuild appends to a line, without brackets
};

// Reads `line` (no line break; a leading "N>" node prefix and blanks are skipped). Returns
// nullopt for anything that is not a canonical error or warning. The views point into `line`.
std::optional<TCanonicalMessage> ParseCanonicalMessage(std::string_view line);

}  // namespace qv
