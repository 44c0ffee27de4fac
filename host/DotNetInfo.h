// The host's answer to packages asking where a .NET framework version is installed.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "QvDotNetFramework.h"

namespace qvhost {

// Frameworks at folders named on the command line (--framework VERSION=FOLDER), and for every
// other version the fallback folder when there is one. Versions compare without regard to
// letter case or a leading "v" ("v3.5" finds "3.5").
class THostDotNetInfo : public qv::IQvDotNetInfo {
 public:
  // Makes `folder` the framework of `version`; a later folder for the same version wins.
  void AddFramework(const std::string& version, const std::string& folder);
  // The folder offered for v2.0 and v3.5 when AddFramework names none; empty offers none.
  void SetFallbackFolder(const std::string& folder) { FFallback = folder; }
  // A framework record with the version text asked for and its folder, or null.
  qv::IntfPtr<qv::IQvDotNetFramework> GetFramework(const std::string& versionText) override;

 private:
  std::vector<std::pair<std::string, std::string>> FFolders;  // normalised version, folder
  std::string FFallback;
};

// The MSBuild engine behind the MSBuild.exe launcher offered for v2.0 and v3.5.
enum class TMSBuildEngine { Auto, DotNet, XBuild };

// The engine named "auto", "dotnet" or "xbuild" (any letter case); false for other names.
bool ParseMSBuildEngine(const std::string& name, TMSBuildEngine& engine);

// The folder of the MSBuild.exe launcher for `engine` in `hostFolder` ("dotnet" runs the .NET
// SDK's `dotnet msbuild`, "mono" runs xbuild), or empty. A chosen engine is offered wherever
// its launcher is, so that a missing tool is reported by the launcher; Auto takes the .NET
// SDK where it is found ($QV_DOTNET, or dotnet on PATH), else xbuild ($QV_XBUILD, or xbuild).
std::string MSBuildLauncherFolder(const std::string& hostFolder, TMSBuildEngine engine);

}  // namespace qvhost
