#include "SolutionReport.h"

#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qv {

namespace {

std::string VersionName(TVSDotNetVersion v) {
  return TVSDotNetVersionInfo.NameOf(static_cast<int>(v));
}

template <class Fn>
void ForEachProject(IVSDotNetSolution& solution, Fn&& fn) {
  auto projects = solution.GetProjects();
  for (int i = 0; i < projects->GetCount(); ++i)
    fn(i, *projects->GetItem(i));
}

// The JSON text is appended into one string: the report of a large solution runs to
// megabytes.
template <class Range>
void AppendJsonArray(std::string& out, const Range& items) {
  out += '[';
  bool first = true;
  for (const std::string& item : items) {
    if (!first) out += ',';
    first = false;
    AppendJsonString(out, item);
  }
  out += ']';
}

void AppendField(std::string& out, std::string_view name, std::string_view text) {
  out += name;
  AppendJsonString(out, text);
}

void AppendProjectJson(std::string& out, IVSDotNetProject& p) {
  AppendField(out, "{\"name\":", p.GetName());
  AppendField(out, ",\"fileName\":", p.GetFileName());
  AppendField(out, ",\"projectTypeGUID\":", p.GetProjectTypeGUID());
  AppendField(out, ",\"projectGUID\":", p.GetProjectGUID());
  out += p.IsVCProject() ? ",\"isVCProject\":true" : ",\"isVCProject\":false";
  out += ",\"dependencies\":";
  AppendJsonArray(out, *p.GetDependencies()->GetList());
  out += ",\"resourceFiles\":";
  AppendJsonArray(out, *p.GetResourceFiles());
  AppendField(out, ",\"versionInfoFile\":", p.GetVersionInfoFile());
  out += ",\"configurations\":[";
  const TStringList& configs = p.GetConfigurationList();
  for (int i = 0; i < configs.Count(); ++i) {
    // "SOLUTION=PROJECT", split as Names and ValueFromIndex split it, without copies.
    std::string_view entry = configs[i];
    size_t eq = entry.find('=');
    bool split = eq != std::string_view::npos;
    AppendField(out, i ? ",{\"solutionConfiguration\":" : "{\"solutionConfiguration\":",
                split ? entry.substr(0, eq) : std::string_view());
    AppendField(out,
                ",\"projectConfiguration\":", split ? entry.substr(eq + 1) : std::string_view());
    out += configs.Objects(i) ? ",\"active\":true}" : ",\"active\":false}";
  }
  out += "]}";
}

}  // namespace

void WriteSolutionJson(IVSDotNetSolution& solution, std::ostream& out) {
  std::string text;
  AppendField(text, "{\"fileName\":", solution.GetFileName());
  AppendField(text, ",\"version\":", VersionName(solution.GetVersion()));
  text += ",\"configurations\":";
  if (auto c = solution.GetConfigurations()) {
    std::vector<std::string> names;
    for (int i = 0; i < c->GetCount(); ++i)
      names.push_back(c->GetItem(i)->GetName());
    AppendJsonArray(text, names);
  } else {
    text += "null";
  }
  text += ",\"projects\":[";
  // Written a few projects at a time: the text of a large solution runs to megabytes.
  ForEachProject(solution, [&](int i, IVSDotNetProject& p) {
    if (i) text += ',';
    AppendProjectJson(text, p);
    if (text.size() >= 65536) {
      out << text;
      text.clear();
    }
  });
  out << text << "]}\n";
}

std::string SolutionText(IVSDotNetSolution& solution) {
  std::string out = "Solution " + solution.GetFileName() + "\n";
  out += "Format: " + VersionName(solution.GetVersion()) + "\n";
  out += "Solution configurations:";
  if (auto c = solution.GetConfigurations()) {
    for (int i = 0; i < c->GetCount(); ++i)
      out += (i ? ", " : " ") + c->GetItem(i)->GetName();
    if (c->GetCount() == 0) out += " (none)";
  } else {
    out += " (no configuration section)";
  }
  auto projects = solution.GetProjects();
  out += "\nProjects (" + std::to_string(projects->GetCount()) + ", in this order):\n";
  ForEachProject(solution, [&](int i, IVSDotNetProject& p) {
    out += "  " + std::to_string(i + 1) + ". " + p.GetName() + "  " + p.GetProjectGUID() + "\n";
    out += "     path: " + p.GetFileName() + "\n";
    out += "     type: " + p.GetProjectTypeGUID() + (p.IsVCProject() ? " (Visual C++)" : "") + "\n";
    auto deps = p.GetDependencies();
    for (int d = 0; d < deps->GetCount(); ++d) {
      auto dep = projects->FindByGUID(deps->GetItem(d));
      out +=
          "     depends on: " + deps->GetItem(d) + (dep ? " (" + dep->GetName() + ")" : "") + "\n";
    }
    const TStringList& configs = p.GetConfigurationList();
    for (int c = 0; c < configs.Count(); ++c)
      out += "     " + configs.Names(c) + " -> " + configs.ValueFromIndex(c) +
             (configs.Objects(c) ? "  (active)" : "") + "\n";
    for (const std::string& rc : *p.GetResourceFiles())
      out += "     resource script: " + rc +
             (rc == p.GetVersionInfoFile() ? "  (VERSIONINFO)" : "") + "\n";
  });
  return out;
}

}  // namespace qv
