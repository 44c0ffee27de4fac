#include "DotNetInfo.h"

#include <cstdlib>

#include "HostPlatform.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qvhost {

namespace {
std::string Normalised(const std::string& version) {
  std::string v = qv::LowerCase(qv::Trim(version));
  return !v.empty() && v[0] == 'v' ? v.substr(1) : v;
}
}  // namespace

void THostDotNetInfo::AddFramework(const std::string& version, const std::string& folder) {
  std::string key = Normalised(version);
  std::string dir = qv::ExcludeTrailingPathDelimiter(folder);
  for (auto& [v, f] : FFolders)
    if (v == key) {
      f = dir;
      return;
    }
  FFolders.emplace_back(key, dir);
}

qv::IntfPtr<qv::IQvDotNetFramework> THostDotNetInfo::GetFramework(const std::string& versionText) {
  std::string key = Normalised(versionText);
  for (const auto& [v, f] : FFolders)
    if (v == key) return qv::NewDotNetFramework(versionText, f);
  // xbuild stands in for the MSBuild of .NET 2.0 and 3.5, the versions Visual Studio 2005
  // and 2008 build with.
  if (!FFallback.empty() && (key == "2.0" || key == "3.5"))
    return qv::NewDotNetFramework(versionText, FFallback);
  return nullptr;
}

bool ParseMSBuildEngine(const std::string& name, TMSBuildEngine& engine) {
  static const std::pair<const char*, TMSBuildEngine> kNames[] = {
      {"auto", TMSBuildEngine::Auto},
      {"dotnet", TMSBuildEngine::DotNet},
      {"xbuild", TMSBuildEngine::XBuild}};
  for (const auto& [text, value] : kNames)
    if (qv::SameText(name, text)) {
      engine = value;
      return true;
    }
  return false;
}

std::string MSBuildLauncherFolder(const std::string& hostFolder, TMSBuildEngine engine) {
  auto launcher = [&hostFolder](const char* name) {
    std::string folder = qv::IncludeTrailingPathDelimiter(hostFolder) + name;
    return qv::platform::FileExists(folder + "/MSBuild.exe") ? folder : std::string();
  };
  auto installed = [](const char* variable, const char* program) {
    std::string named = qv::platform::GetEnv(variable).value_or("");
    return !platform::FindProgram(named.empty() ? program : named).empty();
  };
  switch (engine) {
    case TMSBuildEngine::DotNet:
      return launcher("dotnet");
    case TMSBuildEngine::XBuild:
      return launcher("mono");
    case TMSBuildEngine::Auto:
      break;
  }
  std::string dotnet = installed("QV_DOTNET", "dotnet") ? launcher("dotnet") : "";
  if (!dotnet.empty()) return dotnet;
  return installed("QV_XBUILD", "xbuild") ? launcher("mono") : "";
}

}  // namespace qvhost
