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

std::string MonoLauncherFolder(const std::string& hostFolder) {
  std::string folder = qv::IncludeTrailingPathDelimiter(hostFolder) + "mono";
  const char* xbuild = std::getenv("QV_XBUILD");
  bool installed = !platform::FindProgram(xbuild && *xbuild ? xbuild : "xbuild").empty();
  return installed && qv::platform::FileExists(folder + "/MSBuild.exe") ? folder : "";
}

}  // namespace qvhost
