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

std::string JsonArray(const std::vector<std::string>& items) {
  std::string r = "[";
  for (size_t i = 0; i < items.size(); ++i)
    r += (i ? "," : "") + JsonString(items[i]);
  return r + "]";
}

std::string ProjectJson(IVSDotNetProject& p) {
  auto deps = p.GetDependencies();
  std::vector<std::string> depList(deps->GetList()->begin(), deps->GetList()->end());
  std::vector<std::string> resources(p.GetResourceFiles()->begin(), p.GetResourceFiles()->end());
  const TStringList& configs = p.GetConfigurationList();
  std::string mappings = "[";
  for (int i = 0; i < configs.Count(); ++i)
    mappings += std::string(i ? "," : "") +
                "{\"solutionConfiguration\":" + JsonString(configs.Names(i)) +
                ",\"projectConfiguration\":" + JsonString(configs.ValueFromIndex(i)) +
                ",\"active\":" + (configs.Objects(i) ? "true" : "false") + "}";
  mappings += "]";
  return "{\"name\":" + JsonString(p.GetName()) + ",\"fileName\":" + JsonString(p.GetFileName()) +
         ",\"projectTypeGUID\":" + JsonString(p.GetProjectTypeGUID()) +
         ",\"projectGUID\":" + JsonString(p.GetProjectGUID()) +
         ",\"isVCProject\":" + (p.IsVCProject() ? "true" : "false") +
         ",\"dependencies\":" + JsonArray(depList) + ",\"resourceFiles\":" + JsonArray(resources) +
         ",\"versionInfoFile\":" + JsonString(p.GetVersionInfoFile()) +
         ",\"configurations\":" + mappings + "}";
}

}  // namespace

std::string SolutionJson(IVSDotNetSolution& solution) {
  std::string configs = "null";
  if (auto c = solution.GetConfigurations()) {
    std::vector<std::string> names;
    for (int i = 0; i < c->GetCount(); ++i)
      names.push_back(c->GetItem(i)->GetName());
    configs = JsonArray(names);
  }
  std::string projects = "[";
  ForEachProject(solution,
                 [&](int i, IVSDotNetProject& p) { projects += (i ? "," : "") + ProjectJson(p); });
  projects += "]";
  return "{\"fileName\":" + JsonString(solution.GetFileName()) +
         ",\"version\":" + JsonString(VersionName(solution.GetVersion())) +
         ",\"configurations\":" + configs + ",\"projects\":" + projects + "}\n";
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
