#include "Diagnostics.h"

#include "QvCanonicalMessage.h"
#include "QvPaths.h"
#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qvhost {

std::optional<TLogDiagnostic> ReadDiagnostic(std::string_view line, std::string_view baseDir,
                                             std::string_view action, std::string_view project) {
  std::optional<qv::TCanonicalMessage> m = qv::ParseCanonicalMessage(line);
  if (!m) return std::nullopt;
  TLogDiagnostic d;
  d.Error = m->Error;
  bool tool = m->Line == 0 && m->Origin.find_first_of("./\\") == std::string_view::npos;
  (tool ? d.Tool : d.File) = m->Origin;
  if (!d.File.empty() && !baseDir.empty()) {
    std::string candidate = qv::ExpandRelativePath(d.File, baseDir);
    if (qv::FileExistsAnyCase(candidate)) d.File = qv::ResolvePathCase(candidate);
  }
  d.Line = m->Line;
  d.Column = m->Column;
  d.Code = m->Code;
  d.Text = m->Text;
  d.Action = action;
  d.Project = m->Project.empty() ? project : m->Project;
  return d;
}

std::string FormatDiagnostic(const TLogDiagnostic& d) {
  std::string s = d.File.empty() ? d.Tool : d.File;
  if (d.Line > 0) {
    s += "(" + std::to_string(d.Line);
    if (d.Column > 0) s += "," + std::to_string(d.Column);
    s += ")";
  }
  if (!s.empty()) s += d.Line > 0 ? ": " : " : ";
  s += d.Error ? "error" : "warning";
  if (!d.Code.empty()) s += " " + d.Code;
  s += ": " + d.Text;
  if (!d.Action.empty() || !d.Project.empty()) {
    s += " [" + d.Action;
    if (!d.Action.empty() && !d.Project.empty()) s += ", ";
    s += d.Project + "]";
  }
  return s;
}

std::string DiagnosticKey(const TLogDiagnostic& d) {
  std::string key(1, d.Error ? 'E' : 'W');
  for (const std::string* part : {&d.File, &d.Tool, &d.Code, &d.Text}) {
    key += '\x1f';
    key += *part;
  }
  return key + '\x1f' + std::to_string(d.Line) + ',' + std::to_string(d.Column);
}

}  // namespace qvhost
