// The Visual Studio build action: builds a solution, or chosen projects of it in
// dependency order, with devenv.com or MSBuild.exe, and can stamp version numbers first.
#pragma once

#include <cstdint>
#include <string>

#include <memory>

#include "QvActions.h"
#include "QvDotNetFramework.h"
#include "QvMSBuildOutput.h"
#include "Qvassemblyinfo.h"
#include "Qvmsbuildproperties.h"
#include "Qvvc7versioninfo.h"
#include "Vsnetsln.h"

namespace qv {

enum class TVSDotNetBuildAction : uint8_t { baBuild, baRebuild, baClean, baDeploy };
enum class TVSDotNetBuildType : uint8_t {
  btAllProjects,
  btSelectedProjects,
  btIncludeDisabledProjects
};
enum class TVSDotNetTargetFx : uint8_t { fx20, fx30, fx35 };
enum class TProjLocDetectMethod : uint8_t { useWMI, useShare, useWebDAV };
extern const TEnumTypeInfo TVSDotNetBuildActionInfo;
extern const TEnumTypeInfo TVSDotNetBuildTypeInfo;
extern const TEnumTypeInfo TVSDotNetTargetFxInfo;
extern const TEnumTypeInfo TProjLocDetectMethodInfo;

// The action's state and behaviour; TQvVSDotNetAction publishes the rest of its settings.
class TQvCustomVSDotNetAction : public TQvMultiExecAction,
                                public IQvVC7VersionInfo,
                                public IQvAssemblyInfoSettings {
 public:
  TQvCustomVSDotNetAction();
  ~TQvCustomVSDotNetAction() override;

  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  // Identity and help.
  std::string GetActionName() const override { return "Build VS.Net Solution"; }
  std::string GetActionKeywords() const override { return "VisualStudio"; }
  std::string GetFormattedDescription() const override;
  int GetHelpTopicID() const override { return 1300; }
  std::string GetQuickHelpFilename() const override { return "Plugins\\VSDotNet.html"; }
  void GetHiddenProperties(TStringList& list) const override;
  void GetPropertyAlias(TStringList& list) const override;
  void GetPropertyHelp(TStringList& list) const override;

  // Reports a missing solution and a missing compiler; false when anything was reported.
  bool Validate(IQvActionValidationError* errors) override;
  // Opens the solution and reports a configuration it lacks, chosen projects it does not
  // hold, and (as a warning) a Visual Studio version other than the solution's format.
  void CheckSettings(IQvActionValidationError* errors, IQvActionValidationError* warnings) override;
  // Checks the compiler, opens the solution and builds it (or the chosen projects).
  bool Execute() override;
  bool CanTerminate() const override { return true; }
  // Only signals the terminate event; the process runner stops the compiler.
  void TerminateAction() override { FTerminateEvent.Signal(); }
  bool RequiresSync() const override { return false; }

  // Compiler output: split into lines, classified, logged and counted.
  void OnStdOutData(IQvProcess* process, std::string_view chunk) override;
  void OnStdErrData(IQvProcess* process, std::string_view chunk) override;

  // True when UseMSBuild is set and VStudioVersion is vs2005 or later.
  bool UsingMSBuild() const;

  // The steps of a build, each as its own operation.
  bool VerifyExecutable();
  // Expands and opens Solution; throws EFailAction on every failure.
  IntfPtr<IVSDotNetSolution> LoadSolution();
  bool PerformBuild(const std::string& configuration, IVSDotNetSolution& solution);
  bool BuildSolution(IVSDotNetSolution& solution, const std::string& configuration);
  bool BuildProjects(IVSDotNetSolution& solution, const std::string& configuration,
                     TVSDotNetBuildAction action);
  bool BuildProject(IVSDotNetSolution& solution, IVSDotNetProject& project,
                    TVSDotNetBuildAction action, bool useMSBuild, const std::string& workingDir,
                    const std::string& configuration);
  // The identifiers of the selected projects in the solution's build order.
  bool ReadSelectedProjects(IVSDotNetSolution& solution, TStringList& list);
  // Turns entries that are project names or paths into identifiers.
  void SanitiseProjectIDs(TStringList& list);
  // True when MSBuild must be told "AnyCPU" because the project file spells it so.
  bool NeedsAnyCPUWithoutSpace(IVSDotNetSolution& solution, IVSDotNetProject& project,
                               const std::string& projectConfiguration);
  // Runs the compiler once; never throws.
  bool RunCompiler(const std::string& workingDir, const std::string& params, bool useMSBuild);

  // Command-line switches for devenv.com and MSBuild.exe.
  std::string GetCommonDevEnvParams(const std::string& configuration,
                                    TVSDotNetBuildAction action) const;
  std::string GetCommonMSBuildParams(const std::string& configuration, bool forceAnyCPU,
                                     TVSDotNetBuildAction action);
  // Set while reading output when a 2002/2003 summary reports failed projects.
  bool ProjectsFailed() const { return FProjectsFailed; }
  // The full path of devenv.com or MSBuild.exe, or empty when no framework is known.
  std::string GetExecutable(bool useMSBuild) const;

  // Project lookups in the solution named by Solution (expanded); empty when not found.
  std::string GetProjectID(const std::string& nameOrPath);
  std::string GetProjectName(const std::string& projectId);
  std::string GetProjectPath(const std::string& projectId);

  // The solution's configuration names, one per line (empty when it cannot be opened).
  std::string GetAllSolutionConfigurations();

  // Assembly versions: whole texts "major|minor|build|revision" and their parts.
  const std::string& GetAssemblyVersion() const { return FAssemblyVersion; }
  const std::string& GetAssemblyFileVersion() const { return FAssemblyFileVersion; }
  void SetAssemblyVersion(const std::string& v);
  void SetAssemblyFileVersion(const std::string& v);
  void ResetAssemblyVersion();
  void ResetAssemblyFileVersion();
  const std::string& GetAssemblyVersionMajor() const { return FAssemblyVersionParts[0]; }
  const std::string& GetAssemblyVersionMinor() const { return FAssemblyVersionParts[1]; }
  const std::string& GetAssemblyVersionBuild() const { return FAssemblyVersionParts[2]; }
  const std::string& GetAssemblyVersionRevision() const { return FAssemblyVersionParts[3]; }
  const std::string& GetAssemblyFileVersionMajor() const { return FAssemblyFileVersionParts[0]; }
  const std::string& GetAssemblyFileVersionMinor() const { return FAssemblyFileVersionParts[1]; }
  // Also rebuilds the whole assembly version (not the file version), as it always has.
  const std::string& GetAssemblyFileVersionBuild();
  const std::string& GetAssemblyFileVersionRevision() const { return FAssemblyFileVersionParts[3]; }
  void SetAssemblyVersionMajor(const std::string& v) { SetVersionPart(false, 0, v); }
  void SetAssemblyVersionMinor(const std::string& v) { SetVersionPart(false, 1, v); }
  void SetAssemblyVersionBuild(const std::string& v) { SetVersionPart(false, 2, v); }
  void SetAssemblyVersionRevision(const std::string& v) { SetVersionPart(false, 3, v); }
  void SetAssemblyFileVersionMajor(const std::string& v) { SetVersionPart(true, 0, v); }
  void SetAssemblyFileVersionMinor(const std::string& v) { SetVersionPart(true, 1, v); }
  void SetAssemblyFileVersionBuild(const std::string& v) { SetVersionPart(true, 2, v); }
  void SetAssemblyFileVersionRevision(const std::string& v) { SetVersionPart(true, 3, v); }
  // The assembly version with points, for the inspector's AssemblyInfo entry.
  std::string GetAssemblyInfo() const;

  // Auto-increment switches; switching one on asks the host to save the counted-up
  // property back after the run.
  bool GetAutoIncBuild() const { return FAutoIncBuild; }
  bool GetAutoIncAssemblyBuildNumber() const { return FAutoIncAssemblyBuildNumber; }
  bool GetAutoIncAssemblyRevisionNo() const { return FAutoIncAssemblyRevisionNo; }
  bool GetAutoIncAssemblyFileBuildNumber() const { return FAutoIncAssemblyFileBuildNumber; }
  bool GetAutoIncAssemblyFileRevisionNo() const { return FAutoIncAssemblyFileRevisionNo; }
  void SetAutoIncBuild(bool v);
  void SetAutoIncAssemblyBuildNumber(bool v);
  void SetAutoIncAssemblyRevisionNo(bool v);
  void SetAutoIncAssemblyFileBuildNumber(bool v);
  void SetAutoIncAssemblyFileRevisionNo(bool v);

  // Sets the "FileVersion" string to Major.Minor.Release.Build.
  void UpdateFileVersion();

  // Version stamping before the build.
  // The text with the number after its last "|" expanded and counted up (-1 + 1 when it is
  // no number): 1|2|7 gives 1|2|8.
  std::string DoAutoIncBuild(const std::string& text);
  // Counts up the assembly version parts whose switches are on, in the fixed order.
  void CountUpAssemblyNumbers();
  // The whole .NET step: its message group, counting up or the property set, and the
  // AssemblyInfo files of the chosen (or every) project. False (logged) on failure.
  bool DoUpdateAssemblyInfo(IVSDotNetSolution& solution);

  // IQvAssemblyInfoSettings: the .NET stamping settings, for the AssemblyInfo updater.
  bool GetUpdateAssemblyAttribute(TQvAssemblyAttribute attribute) override;
  std::string GetAssemblyAttributeValue(TQvAssemblyAttribute attribute) override;
  bool GetLinkAssemblyFileVersionInfo() override { return FLinkAssemblyFileVersionInfo; }
  int GetProjLocationDetectMethodValue() override {
    return static_cast<int>(FProjLocationDetectMethod);
  }
  int32_t GetWMIWebsiteNum() override { return FWMIWebsiteNum; }
  std::string GetSharePath() override { return FSharePath; }
  std::string GetWebDAVUsername() override { return FWebDAVUsername; }
  // Copy the named host property set into the settings; false (logged) when there is none.
  bool LoadDotNetVersionInfoFromPropertySet();
  bool LoadWin32VersionInfoFromPropertySet();
  // Rewrites one resource script's version block from this action; false (logged) on failure.
  bool ApplyVersionInfo(const std::string& fileName);
  // Counts BuildVersion up when asked and stamps the chosen (or every) project's script.
  bool DoUpdateWin32VersionInfo(IVSDotNetSolution& solution);
  // The whole Win32 step: its message group, the property set and DoUpdateWin32VersionInfo.
  bool StampWin32Resources(IVSDotNetSolution& solution);
  // Drops identifiers that name no project of the solution any more.
  static void PruneStaleProjects(IVSDotNetSolution& solution, TStringList& ids);
  // Sets (replacing or appending) or removes one string-table entry of VersionInfoKeys.
  void SetVersionInfoKey(const std::string& key, const std::string& value);
  void RemoveVersionInfoKey(const std::string& key);

  // The WebDAV password goes through the host's encryption into _WebDAVPassword.
  std::string GetWebDAVPassword() override;
  void SetWebDAVPassword(const std::string& plain);

  const std::string& GetSolution() const { return FSolution; }
  void SetSolution(const std::string& v) {
    if (FSolution != v) FSolution = v;
  }

  // IQvVC7VersionInfo over the action's properties.
  int32_t GetBuildVersion() override { return FBuildVersion; }
  int32_t GetCodePage() override { return FCodePage; }
  bool GetIsDebug() override { return FIsDebug; }
  bool GetIsDLL() override { return FIsDLL; }
  bool GetIsPreRelease() override { return FIsPreRelease; }
  bool GetIsPrivate() override { return FIsPrivate; }
  bool GetIsSpecial() override { return FIsSpecial; }
  int32_t GetLocale() override { return FLocale; }
  int32_t GetMajorVersion() override { return FMajorVersion; }
  int32_t GetMinorVersion() override { return FMinorVersion; }
  int32_t GetReleaseVersion() override { return FReleaseVersion; }
  std::string GetVersionInfoKeys() override { return FVersionInfoKeys; }
  void SetBuildVersion(int32_t v) override { FBuildVersion = v; }
  void SetCodePage(int32_t v) override { FCodePage = v; }
  void SetIsDebug(bool v) override { FIsDebug = v; }
  void SetIsDLL(bool v) override { FIsDLL = v; }
  void SetIsPreRelease(bool v) override { FIsPreRelease = v; }
  void SetIsPrivate(bool v) override { FIsPrivate = v; }
  void SetIsSpecial(bool v) override { FIsSpecial = v; }
  void SetLocale(int32_t v) override { FLocale = v; }
  void SetMajorVersion(int32_t v) override { FMajorVersion = v; }
  void SetMinorVersion(int32_t v) override { FMinorVersion = v; }
  void SetReleaseVersion(int32_t v) override { FReleaseVersion = v; }
  void SetVersionInfoKeys(const std::string& v) override { FVersionInfoKeys = v; }
  bool GetIncludeCompileDate() override { return FIncludeCompileDate; }
  void SetIncludeCompileDate(bool v) override { FIncludeCompileDate = v; }
  bool GetLinkFileAndProductVersion() override { return FLinkFileAndProductVersion; }
  void SetLinkFileAndProductVersion(bool v) override { FLinkFileAndProductVersion = v; }
  bool GetAutoUpdateFileVersion() override { return FAutoUpdateFileVersion; }
  void SetAutoUpdateFileVersion(bool v) override { FAutoUpdateFileVersion = v; }

  // The settings, published through the property tables.
 protected:
  // MSBuild settings (published by this class).
  bool FOverrideReferencePaths = false;
  TStringList FReferencePaths;
  TMSLogLevel FLogLevel = TMSLogLevel::Normal;
  int32_t FMaxCPUs = 0;
  bool FOverrideCompiler = false;
  std::string FCompilerConstants;
  bool FDebugConstant = false;
  bool FTraceConstant = false;
  bool FOptimize = false;
  bool FAllowUnsafe = false;
  bool FOverrideWarnings = false;
  int32_t FWarningLevel = 4;
  bool FAllWarningsAsErrors = false;
  bool FSelectedWarningsAsErrors = false;
  std::string FWarningsAsErrors;
  bool FDisableSelectedWarnings = false;
  std::string FDisableWarnings;
  bool FOverrideTargetFramework = false;
  TVSDotNetTargetFx FTargetFramework = TVSDotNetTargetFx::fx20;
  TStringList FExtraMSBuildProperties;

  // Settings published by TQvVSDotNetAction.
  std::string FSolutionConfiguration;
  bool FUpdateWin32Resource = false;
  bool FUpdateAssemblyInfo = false;
  TVSDotNetBuildType FBuildType = TVSDotNetBuildType::btAllProjects;
  TVSDotNetBuildAction FBuildAction = TVSDotNetBuildAction::baBuild;
  TStringList FSelectedProjects;
  bool FUseEnv = false;
  TVSDotNetVersion FVStudioVersion = TVSDotNetVersion::vs2005;
  TVSDotNetBuildType FApplyAssemblyInfoTo = TVSDotNetBuildType::btAllProjects;
  TVSDotNetBuildType FApplyResourceInfoTo = TVSDotNetBuildType::btAllProjects;
  TStringList FAssemblySelectedProjects;
  TStringList FResourceSelectedProjects;
  bool FUpdateAssemblyTitle = false, FUpdateAssemblyComment = false, FUpdateAssemblyCompany = false,
       FUpdateAssemblyDescription = false, FUpdateAssemblyCopyright = false,
       FUpdateAssemblyTradeMark = false, FUpdateAssemblyProductName = false,
       FUpdateAssemblyFileVersion = false, FUpdateAssemblyVersion = false;
  bool FLinkAssemblyFileVersionInfo = false;
  std::string FAssemblyTitle, FAssemblyComment, FAssemblyCompany, FAssemblyDescription,
      FAssemblyCopyright, FAssemblyTradeMark, FAssemblyProductName;
  TProjLocDetectMethod FProjLocationDetectMethod = TProjLocDetectMethod::useWMI;
  int32_t FWMIWebsiteNum = 1;
  std::string FSharePath = "wwwroot$";
  std::string FWebDAVUsername;
  std::string F_WebDAVPassword;  // encrypted by the host
  bool FUseMSBuild = true;
  bool FStructuredOutput = true;
  std::string FWin32VersionInfoPropertySetName;
  bool FUseWin32PropertySet = false;
  std::string FDotNetVersionInfoPropertySetName;
  bool FUseDotNetPropertySet = false;
  std::string FExtraCmdLineParams;
  std::string FOutputDirectory;

  // Win32 version resource settings.
  int32_t FMajorVersion = 1, FMinorVersion = 0, FReleaseVersion = 0, FBuildVersion = 0;
  bool FIsDebug = false, FIsPreRelease = false, FIsSpecial = false, FIsPrivate = false,
       FIsDLL = false;
  int32_t FLocale = 0x0409;
  int32_t FCodePage = 1200;
  std::string FVersionInfoKeys;
  bool FIncludeCompileDate = false;
  bool FLinkFileAndProductVersion = true;
  bool FAutoUpdateFileVersion = true;

  void* GetInterface(const TGUID& iid) override;
  // Opens the solution named by Solution (expanded without failure report); null when it
  // cannot be opened.
  IntfPtr<IVSDotNetSolution> OpenOwnSolution();
  // The project with this identifier in that solution, or null.
  IntfPtr<IVSDotNetProject> FindOwnProject(const std::string& projectId);

 private:
  static const TPropDescriptor FProps[];
  void SetVersionPart(bool fileVersion, int part, const std::string& v);
  void ClassifyOutputLine(std::string_view line);
  void ReadDevEnvSummary(std::string_view line);
  bool ReadMSBuildSummary(std::string_view line);
  // The settings that decide MSBuild's properties.
  TMSBuildSettings MSBuildSettings() const;
  std::string ExpandOrFail(const char* caption, const std::string& text, const char* failure);

  TAutoResetEvent FTerminateEvent;
  bool FProjectsFailed = false;
  std::unique_ptr<TQvMSBuildStructuredOutputHelper> FStructuredOutputHelper;
  void SetAutoInc(bool& field, bool on, const char* property, bool keepRegistered);

  std::string FSolution;
  std::string FAssemblyVersion = "|||";
  std::string FAssemblyFileVersion = "|||";
  std::string FAssemblyVersionParts[4];
  std::string FAssemblyFileVersionParts[4];
  bool FAutoIncBuild = false;
  bool FAutoIncAssemblyBuildNumber = false;
  bool FAutoIncAssemblyRevisionNo = false;
  bool FAutoIncAssemblyFileBuildNumber = false;
  bool FAutoIncAssemblyFileRevisionNo = false;
};

// The build action as registered: publishes the solution, build and version settings.
class TQvVSDotNetAction : public TQvCustomVSDotNetAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

 private:
  static const TPropDescriptor FProps[];
};

}  // namespace qv
