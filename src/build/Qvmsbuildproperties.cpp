#include "Qvmsbuildproperties.h"

#include "QvDotNetFramework.h"
#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qv {

namespace {

using TProps = std::vector<std::string>;

void Add(TProps& props, const std::string& name, const std::string& value) {
  props.push_back(name + "=" + QuoteMSBuildArg(value));
}

void AppendConstant(std::string& list, const char* item) {
  if (!list.empty()) list += ";";
  list += item;
}

// Only warning numbers and semicolons reach the compiler.
void ValidateWarningList(const std::string& list, const std::string& caption) {
  for (char c : list)
    if ((c < '0' || c > '9') && c != ';')
      throw EFailAction(caption + " list \"" + list +
                        "\" is not valid. Only warning numbers, separated by semicolons, can be "
                        "specified.");
}

void ConfigurationProperties(TProps& props, const std::string& configuration, bool forceAnyCPU) {
  size_t bar = configuration.find('|');
  if (bar == std::string::npos) {
    if (!configuration.empty()) Add(props, "Configuration", configuration);
    return;
  }
  Add(props, "Configuration", configuration.substr(0, bar));
  Add(props, "Platform", forceAnyCPU ? "AnyCPU" : configuration.substr(bar + 1));
}

void CompilerProperties(TProps& props, const TMSBuildSettings& s, const TMSBuildExpand& expand) {
  if (!s.OverrideCompiler) return;
  std::string constants =
      expand("Define Constants", s.CompilerConstants, "Failed to expand compiler constants.");
  if (s.DebugConstant) AppendConstant(constants, "DEBUG");
  if (s.TraceConstant) AppendConstant(constants, "TRACE");
  Add(props, "DefineConstants", constants);
  props.push_back("Optimize=" + BoolToStr(s.Optimize));
  props.push_back("AllowUnsafeBlocks=" + BoolToStr(s.AllowUnsafe));
}

void WarningList(TProps& props, const char* property, const char* caption, const std::string& text,
                 const char* failure, const TMSBuildExpand& expand) {
  std::string list = expand(caption, text, failure);
  ValidateWarningList(list, caption);
  if (!list.empty()) Add(props, property, list);
}

void WarningProperties(TProps& props, const TMSBuildSettings& s, const TMSBuildExpand& expand) {
  if (!s.OverrideWarnings) return;
  props.push_back("WarningLevel=" + std::to_string(s.WarningLevel));
  props.push_back(std::string("TreatWarningsAsErrors=") +
                  (s.AllWarningsAsErrors ? "True" : "False"));
  if (!s.AllWarningsAsErrors && s.SelectedWarningsAsErrors)
    WarningList(props, "WarningsAsErrors", "Warnings As Errors", s.WarningsAsErrors,
                "Unable to expand list of warnings to treat as errors.", expand);
  if (s.DisableSelectedWarnings)
    WarningList(props, "NoWarn", "Disabled Warnings", s.DisableWarnings,
                "Unable to expand list of disabled warnings", expand);
}

void PathProperties(TProps& props, const TMSBuildSettings& s, const TMSBuildExpand& expand) {
  if (s.Is2008 && s.OverrideTargetFramework) {
    static const char* frameworks[] = {"v2.0", "v3.0", "v3.5"};
    props.push_back(std::string("TargetFramework=\"") + frameworks[s.TargetFramework] + "\"");
  }
  if (s.OverrideReferencePaths) {
    std::string paths =
        expand("Reference Paths", s.ReferencePaths, "Failed to expand Reference Paths list");
    Add(props, "ReferencePath", StringReplaceAll(Trim(paths), "\r\n", ";"));
  }
  if (s.UseEnv) props.push_back("useenv=1");
  std::string outDir =
      expand("Output Directory", s.OutputDirectory, "Failed to expand output directory");
  if (!outDir.empty()) Add(props, "OutDir", IncludeTrailingPathDelimiter(outDir));
}

// One property a line, "NAME=VALUE"; a blank line names none.
void ExtraProperties(TProps& props, const std::string& text) {
  TStringList lines;
  lines.SetText(text);
  for (const std::string& line : lines) {
    if (Trim(line).empty()) continue;
    size_t eq = line.find('=');
    Add(props, line.substr(0, eq), eq == std::string::npos ? std::string() : line.substr(eq + 1));
  }
}

}  // namespace

std::vector<std::string> MSBuildProperties(const TMSBuildSettings& settings,
                                           const std::string& configuration, bool forceAnyCPU,
                                           const TMSBuildExpand& expand,
                                           const TMSBuildExpandExtra& expandExtra) {
  TProps props;
  ConfigurationProperties(props, configuration, forceAnyCPU);
  CompilerProperties(props, settings, expand);
  WarningProperties(props, settings, expand);
  PathProperties(props, settings, expand);
  ExtraProperties(props, expandExtra(settings.ExtraProperties));
  return props;
}

}  // namespace qv
