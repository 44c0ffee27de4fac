// The errors and warnings a build logs, as the host records them for the JSON-lines log, the
// closing recap and CI annotations.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qvhost {

struct TLogDiagnostic {
  bool Error = false;
  std::string File;              // as the line names it, or made absolute; empty: none
  std::string Tool;              // the origin when it names a tool ("MSBUILD"), not a file
  int64_t Line = 0, Column = 0;  // 0: not given
  std::string Code, Text;
  std::string Action, Project;  // the caption of the action and the project that reported it
};

// Reads one logged line in the canonical "FILE(LINE,COL): error CODE: text" form (see
// qv::ParseCanonicalMessage). A relative file is made absolute against `baseDir` when that
// names an existing file; an origin without position, dot or separator is a tool, not a
// file. `project` is used when the line does not name its own. nullopt for other lines.
std::optional<TLogDiagnostic> ReadDiagnostic(std::string_view line, std::string_view baseDir,
                                             std::string_view action, std::string_view project);

// The diagnostic in canonical form, with the action and project behind:
// "/src/a.cs(3,7): error CS0103: text [Build, App.csproj]".
std::string FormatDiagnostic(const TLogDiagnostic& d);

// Two diagnostics are the same report when all but the action and project agree.
std::string DiagnosticKey(const TLogDiagnostic& d);

}  // namespace qvhost
