// The rule behind the /p: switch of MSBuild's command line: which properties the build
// action's settings turn into, in which order and form. Settings in, properties out; texts
// are expanded through the caller.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace qv {

// The build action's MSBuild settings as stored (texts not yet expanded).
struct TMSBuildSettings {
  bool OverrideCompiler = false, DebugConstant = false, TraceConstant = false, Optimize = false,
       AllowUnsafe = false;
  std::string CompilerConstants;
  bool OverrideWarnings = false, AllWarningsAsErrors = false, SelectedWarningsAsErrors = false,
       DisableSelectedWarnings = false;
  int WarningLevel = 4;
  std::string WarningsAsErrors, DisableWarnings;
  bool Is2008 = false, OverrideTargetFramework = false;
  int TargetFramework = 0;  // v2.0, v3.0, v3.5
  bool OverrideReferencePaths = false, UseEnv = false;
  std::string ReferencePaths, OutputDirectory, ExtraProperties;
};

// Expands a setting's text; throws EFailAction with `failure` when it cannot.
using TMSBuildExpand =
    std::function<std::string(const char* caption, const std::string& text, const char* failure)>;
// Expands the extra properties, every variable required; throws EFailAction.
using TMSBuildExpandExtra = std::function<std::string(const std::string& text)>;

// "NAME=VALUE" for each property, in order: configuration and platform (AnyCPU when
// `forceAnyCPU`), compiler, warnings, target framework, reference paths, useenv, output folder,
// then the extra properties. Throws EFailAction for a warning list that is not numbers and
// semicolons, or a text that does not expand.
std::vector<std::string> MSBuildProperties(const TMSBuildSettings& settings,
                                           const std::string& configuration, bool forceAnyCPU,
                                           const TMSBuildExpand& expand,
                                           const TMSBuildExpandExtra& expandExtra);

}  // namespace qv
