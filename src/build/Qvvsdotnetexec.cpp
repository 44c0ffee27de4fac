// Running a build: the steps of Execute, the compiler command lines and the reading of
// the compiler's output.
#include <chrono>
#include <thread>

#include "QvCounts.h"
#include "QvExceptions.h"
#include "QvPaths.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvUtils.h"
#include "Qvdevenvoutput.h"
#include "Qvmsbuildproperties.h"
#include "Qvvsdotnetaction.h"

namespace qv {

namespace {

// A blank behind a non-empty text, so that the next part does not run into it.
void EnsureTrailingSpace(std::string& s) {
  if (!s.empty() && s.back() != ' ') s += ' ';
}

}  // namespace

// ---- Execute ------------------------------------------------------------------------------

bool TQvCustomVSDotNetAction::Execute() {
  TQvMultiExecAction::Execute();
  std::string configuration;
  if (!TryExpandExpression("Solution Configuration Name", FSolutionConfiguration, configuration,
                           true))
    return false;
  if (!VerifyExecutable()) return false;
  IntfPtr<IVSDotNetSolution> solution = LoadSolution();
  if (FUpdateAssemblyInfo && !DoUpdateAssemblyInfo(*solution)) return false;
  if (FUpdateWin32Resource && !StampWin32Resources(*solution)) return false;
  FStructuredOutputHelper->Start(solution->GetFileName(), FStructuredOutput);
  bool result = PerformBuild(configuration, *solution);
  if (FStructuredOutput && UsingMSBuild()) {
    SendMetricInt("Compiler", "Errors", FStructuredOutputHelper->GetErrorCount());
    SendMetricInt("Compiler", "Warnings", FStructuredOutputHelper->GetWarningCount());
  }
  return result;
}

bool TQvCustomVSDotNetAction::VerifyExecutable() {
  bool msbuild = UsingMSBuild();
  std::string exe = GetExecutable(msbuild);
  if (exe.empty()) {
    SendMessage(msbuild ? ".NET Framework not found."
                        : "Path to Visual Studio installation not set in Options.",
                TStatusTag::Error);
    return false;
  }
  if (!platform::FileExists(exe)) throw EFailAction("Executable not found : " + exe);
  return true;
}

IntfPtr<IVSDotNetSolution> TQvCustomVSDotNetAction::LoadSolution() {
  std::string fileName;
  if (!TryExpandExpression("Solution File Name", FSolution, fileName, true))
    throw EFailAction("Failed to expand solution file name.");
  if (!platform::FileExists(fileName))
    throw EFailAction("Solution File " + DoubleQuoteString(fileName) + " does not exist");
  try {
    return OpenSolution(fileName, false);
  } catch (const std::exception& e) {
    throw EFailAction(std::string("Error Parsing Solution File : ") + e.what());
  }
}

bool TQvCustomVSDotNetAction::PerformBuild(const std::string& configuration,
                                           IVSDotNetSolution& solution) {
  if (FBuildType == TVSDotNetBuildType::btAllProjects)
    return BuildSolution(solution, configuration);
  if (FBuildAction != TVSDotNetBuildAction::baRebuild)
    return BuildProjects(solution, configuration, FBuildAction);
  // A rebuild of a project list cleans every project before building any, so that no
  // project is cleaned after a project that depends on it was built.
  StartMessageGroup("Cleaning Projects", 0, TStatusTag::Plain);
  bool cleaned = BuildProjects(solution, configuration, TVSDotNetBuildAction::baClean);
  EndMessageGroup();
  return cleaned && BuildProjects(solution, configuration, TVSDotNetBuildAction::baBuild);
}

// ---- solution and project builds -----------------------------------------------------------

bool TQvCustomVSDotNetAction::BuildSolution(IVSDotNetSolution& solution,
                                            const std::string& configuration) {
  StartMessageGroup("Solution " + solution.GetFileName(), 0, TStatusTag::Plain);
  bool result = false;
  std::string params;
  if (TryExpandExpression("ExtraCmdLineParams", FExtraCmdLineParams, params, false)) {
    EnsureTrailingSpace(params);
    params += UsingMSBuild() ? GetCommonMSBuildParams(configuration, false, FBuildAction)
                             : GetCommonDevEnvParams(configuration, FBuildAction);
    EnsureTrailingSpace(params);
    params += DoubleQuoteString(solution.GetFileName());
    result = RunCompiler(ExtractFilePath(solution.GetFileName()), params, UsingMSBuild());
  }
  EndMessageGroup();
  return result;
}

bool TQvCustomVSDotNetAction::BuildProjects(IVSDotNetSolution& solution,
                                            const std::string& configuration,
                                            TVSDotNetBuildAction action) {
  std::string workingDir = ExtractFilePath(solution.GetFileName());
  IntfPtr<IVSDotNetProjects> projects = solution.GetProjects();
  TStringList ids;
  if (FBuildType == TVSDotNetBuildType::btSelectedProjects) {
    if (!ReadSelectedProjects(solution, ids)) return false;
  } else {
    for (int i = 0; i < projects->GetCount(); ++i)
      ids.Add(projects->GetItem(i)->GetProjectGUID());
  }
  bool result = false;
  for (const std::string& id : ids) {
    IntfPtr<IVSDotNetProject> project = projects->FindByGUID(id);
    if (!project) {
      SendMessage("Warning : Project " + id +
                      " was not found in the solution file. You may need to reconfigure the "
                      "action.",
                  TStatusTag::Warning);
      continue;
    }
    result = BuildProject(solution, *project, action, UsingMSBuild(), workingDir, configuration);
    if (!result) return false;
  }
  return result;
}

bool TQvCustomVSDotNetAction::BuildProject(IVSDotNetSolution& solution, IVSDotNetProject& project,
                                           TVSDotNetBuildAction action, bool useMSBuild,
                                           const std::string& workingDir,
                                           const std::string& configuration) {
  if (useMSBuild && ExtractFileExt(project.GetFileName()) == ".vdproj") {
    SendMessage("Warning : Setup project " + project.GetName() +
                    " cannot be built with MSBuild. This project will be built with VisualStudio "
                    "instead.",
                TStatusTag::Warning);
    return BuildProject(solution, project, action, false, workingDir, configuration);
  }
  StartMessageGroup("Project " + project.GetName(), 0, TStatusTag::Plain);
  SendMessage("Processing Project : " + project.GetName());
  std::string params;
  if (!TryExpandExpression("ExtraCmdLineParams", FExtraCmdLineParams, params, false)) {
    EndMessageGroup();
    return false;
  }
  EnsureTrailingSpace(params);
  if (useMSBuild) {
    std::string projectConfiguration = project.GetProjectConfiguration(configuration);
    if (projectConfiguration.empty())
      throw EFailAction("Project " + DoubleQuoteString(project.GetName()) +
                        " is not built in solution configuration " + configuration);
    SendMessage("Building project configuration " + DoubleQuoteString(projectConfiguration) +
                " for solution configuration " + DoubleQuoteString(configuration));
    bool anyCPU = NeedsAnyCPUWithoutSpace(solution, project, projectConfiguration);
    params += GetCommonMSBuildParams(projectConfiguration, anyCPU, action);
    EnsureTrailingSpace(params);
    params += DoubleQuoteString(project.GetFileName());
  } else {
    // No blank before "/project": the command line has always been written so.
    params += GetCommonDevEnvParams(configuration, action) + "/project " +
              DoubleQuoteString(project.GetFileName()) + " " +
              DoubleQuoteString(solution.GetFileName());
  }
  bool result = RunCompiler(workingDir, params, useMSBuild);
  EndMessageGroup();
  return result;
}

bool TQvCustomVSDotNetAction::ReadSelectedProjects(IVSDotNetSolution& solution, TStringList& list) {
  SanitiseProjectIDs(FSelectedProjects);
  if (FSelectedProjects.Empty()) {
    SendMessage("No Projects selected to build", TStatusTag::Error);
    return false;
  }
  IntfPtr<IVSDotNetProjects> projects = solution.GetProjects();
  projects->SortByDependency();
  for (int i = 0; i < projects->GetCount(); ++i) {
    std::string id = projects->GetItem(i)->GetProjectGUID();
    if (FSelectedProjects.IndexOf(id) >= 0) list.Add(id);
  }
  if (list.Count() < FSelectedProjects.Count()) {
    SendMessage(
        "A Project selected is no longer part of this solution, please open the action "
        "properties dialog and select the correct projects",
        TStatusTag::Error);
    return false;
  }
  return true;
}

void TQvCustomVSDotNetAction::SanitiseProjectIDs(TStringList& list) {
  for (int i = 0; i < list.Count(); ++i) {
    std::string entry = list[i];
    if (entry.starts_with("{")) continue;
    std::string id = GetProjectID(entry);
    if (id.empty()) id = GetProjectID(ExpandExpression(entry, false));
    if (!id.empty()) list.Put(i, id);
  }
}

bool TQvCustomVSDotNetAction::NeedsAnyCPUWithoutSpace(IVSDotNetSolution& solution,
                                                      IVSDotNetProject& project,
                                                      const std::string& projectConfiguration) {
  size_t bar = projectConfiguration.find('|');
  if (bar == std::string::npos) return false;
  std::string config = projectConfiguration.substr(0, bar);
  if (LowerCase(projectConfiguration.substr(bar + 1)) != "any cpu") return false;
  std::string path = project.GetFileName();
  if (!platform::FileExists(ExpandRelativePath(path, ".")))
    path = IncludeTrailingPathDelimiter(ExtractFilePath(solution.GetFileName())) + path;
  path = ResolvePathCase(ExpandRelativePath(path, "."));
  std::string text, error;
  if (!platform::FileExists(path) || !platform::ReadWholeFile(path, text, error)) return false;
  return !ContainsStr(text, config + "|Any CPU") && ContainsStr(text, config + "|AnyCPU");
}

// ---- running the compiler ----------------------------------------------------------------

bool TQvCustomVSDotNetAction::RunCompiler(const std::string& workingDir, const std::string& params,
                                          bool useMSBuild) {
  std::string exe;
  try {
    FProjectsFailed = false;
    exe = GetExecutable(useMSBuild);
    SendMessage("Running " + exe + " with parameters : " + params);
    SendMessage("------");
    IntfPtr<IQvProcess> process = NewActionProcess();
    process->SetExecutable(exe);
    process->SetParameters(params);
    process->SetCaptureOutput(true);
    process->SetHideWindow(true);
    process->SetStartingDir(workingDir);
    process->SetTerminateEvent(&FTerminateEvent);
    process->SetOutputHandler(this);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    int code = process->Run();
    if (FStructuredOutput && UsingMSBuild()) FStructuredOutputHelper->Finish();
    bool success = CheckProcessCleanExit(process.Get()) && code == 0;
    if (success && FProjectsFailed) {
      SendMessage("One or more projects failed to build.", TStatusTag::Error);
      success = false;
    }
    process.Reset();
    if (code == kTerminatedExitCode)
      SendMessage("Action Terminated by User.", TStatusTag::Error);
    else if (code != 0)
      SendMessage(ExtractFileName(exe) + " returned Error code : " + std::to_string(code),
                  TStatusTag::Error);
    return success;
  } catch (const std::exception& e) {
    SendMessage("Error Running " + ExtractFileName(exe) + " : " + e.what(), TStatusTag::Error);
    return false;
  }
}

// ---- command lines -----------------------------------------------------------------------

std::string TQvCustomVSDotNetAction::GetCommonDevEnvParams(const std::string& configuration,
                                                           TVSDotNetBuildAction action) const {
  static const char* switches[] = {"/build", "/rebuild", "/clean", "/deploy"};
  std::string s = switches[static_cast<int>(action)];
  if (FUseEnv) s = "/useenv " + s;
  return s + " " + DoubleQuoteString(configuration);
}

std::string TQvCustomVSDotNetAction::ExpandOrFail(const char* caption, const std::string& text,
                                                  const char* failure) {
  std::string result;
  if (!TryExpandExpression(caption, text, result, false)) throw EFailAction(failure);
  return result;
}

TMSBuildSettings TQvCustomVSDotNetAction::MSBuildSettings() const {
  TMSBuildSettings s;
  s.OverrideCompiler = FOverrideCompiler;
  s.CompilerConstants = FCompilerConstants;
  s.DebugConstant = FDebugConstant;
  s.TraceConstant = FTraceConstant;
  s.Optimize = FOptimize;
  s.AllowUnsafe = FAllowUnsafe;
  s.OverrideWarnings = FOverrideWarnings;
  s.WarningLevel = FWarningLevel;
  s.AllWarningsAsErrors = FAllWarningsAsErrors;
  s.SelectedWarningsAsErrors = FSelectedWarningsAsErrors;
  s.WarningsAsErrors = FWarningsAsErrors;
  s.DisableSelectedWarnings = FDisableSelectedWarnings;
  s.DisableWarnings = FDisableWarnings;
  s.Is2008 = FVStudioVersion >= TVSDotNetVersion::vs2008;
  s.OverrideTargetFramework = FOverrideTargetFramework;
  s.TargetFramework = static_cast<int>(FTargetFramework);
  s.OverrideReferencePaths = FOverrideReferencePaths;
  s.ReferencePaths = FReferencePaths.Text();
  s.UseEnv = FUseEnv;
  s.OutputDirectory = FOutputDirectory;
  s.ExtraProperties = FExtraMSBuildProperties.Text();
  return s;
}

std::string TQvCustomVSDotNetAction::GetCommonMSBuildParams(const std::string& configuration,
                                                            bool forceAnyCPU,
                                                            TVSDotNetBuildAction action) {
  static const char* targets[] = {"/t:Build", "/t:Rebuild", "/t:Clean", "/t:Deploy"};
  std::string s = targets[static_cast<int>(action)];
  // Without the logger assembly MSBuild would fail without a word, so its own console
  // output is read instead.
  std::string logger = IncludeTrailingPathDelimiter(GetQvAppPath()) + "Quorvex.MSBuild.Tasks.dll";
  if (FStructuredOutput && platform::FileExists(logger))
    s += " /logger:" + DoubleQuoteString(logger, false) + " /noconlog";
  std::vector<std::string> props = MSBuildProperties(
      MSBuildSettings(), configuration, forceAnyCPU,
      [this](const char* caption, const std::string& text, const char* failure) {
        return ExpandOrFail(caption, text, failure);
      },
      [this](const std::string& text) {
        try {
          return ExpandExpression(text, true);
        } catch (const std::exception& e) {
          throw EFailAction(std::string("Failed to Extra MSBuild Properties: ") + e.what());
        }
      });
  if (!props.empty()) {
    StartMessageGroup("MSBuild Properties", 2, TStatusTag::Plain);
    std::string joined;
    for (const std::string& p : props) {
      SendMessage(p);
      joined += (joined.empty() ? "" : ";") + p;
    }
    EndMessageGroup();
    s += " /p:" + joined;
  }
  static const char* verbosity[] = {" /v:quiet", " /v:minimal", " /v:normal", " /v:detailed",
                                    " /v:diagnostic"};
  if (static_cast<int>(FLogLevel) < 5) s += verbosity[static_cast<int>(FLogLevel)];
  if (FVStudioVersion >= TVSDotNetVersion::vs2008)
    s += FMaxCPUs == 0 ? " /m" : " /m:" + std::to_string(FMaxCPUs);
  return s;
}

// ---- compiler output -----------------------------------------------------------------------

void TQvCustomVSDotNetAction::OnStdErrData(IQvProcess*, std::string_view chunk) {
  SendMessage(std::string(chunk));
}

void TQvCustomVSDotNetAction::OnStdOutData(IQvProcess*, std::string_view chunk) {
  if (!FProjectsFailed && FVStudioVersion <= TVSDotNetVersion::vs2003)
    FProjectsFailed = ReportsFailedProjects(chunk);
  ForEachLine(chunk, [this](std::string_view line) { ClassifyOutputLine(line); });
}

void TQvCustomVSDotNetAction::ReadDevEnvSummary(std::string_view line) {
  if (auto counts = ReadDevEnvCounts(line)) {
    SendMetricInt("Compiler", "Errors", counts->first);
    SendMetricInt("Compiler", "Warnings", counts->second);
  }
}

bool TQvCustomVSDotNetAction::ReadMSBuildSummary(std::string_view line) {
  TSummaryCounts counts = ReadSummaryCounts(line);
  if (counts.Errors) {
    SendMetricInt("Compiler", "Errors", *counts.Errors);
    SendMessage(std::string(line), TStatusTag::Error);
  }
  if (counts.Warnings) {
    SendMetricInt("Compiler", "Warnings", *counts.Warnings);
    SendMessage(std::string(line), TStatusTag::Warning);
  }
  return counts.Errors || counts.Warnings;
}

void TQvCustomVSDotNetAction::ClassifyOutputLine(std::string_view line) {
  if (!UsingMSBuild()) {
    ReadDevEnvSummary(line);
  } else if (FStructuredOutput) {
    FStructuredOutputHelper->ProcessLine(line);
    return;
  } else if (ReadMSBuildSummary(line)) {
    return;
  }
  SendMessage(std::string(line), ClassifyByWords(line));
}

}  // namespace qv
