#include "Qvvsdotnetaction.h"

#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvUtils.h"
#include "Qvvsdotnetoptions.h"

namespace qv {

namespace {
constexpr std::string_view kBuildActionNames[] = {"baBuild", "baRebuild", "baClean", "baDeploy"};
constexpr std::string_view kBuildTypeNames[] = {"btAllProjects", "btSelectedProjects",
                                                "btIncludeDisabledProjects"};
constexpr std::string_view kTargetFxNames[] = {"fx20", "fx30", "fx35"};
constexpr std::string_view kDetectNames[] = {"useWMI", "useShare", "useWebDAV"};
}  // namespace

const TEnumTypeInfo TVSDotNetBuildActionInfo{"TVSDotNetBuildAction", kBuildActionNames};
const TEnumTypeInfo TVSDotNetBuildTypeInfo{"TVSDotNetBuildType", kBuildTypeNames};
const TEnumTypeInfo TVSDotNetTargetFxInfo{"TVSDotNetTargetFx", kTargetFxNames};
const TEnumTypeInfo TProjLocDetectMethodInfo{"TProjLocDetectMethod", kDetectNames};

// ---- property tables ------------------------------------------------------------------------

using C = TQvCustomVSDotNetAction;
using A = TQvVSDotNetAction;

const TPropDescriptor C::FProps[] = {
    BoolProp<C, &C::FOverrideReferencePaths>("OverrideReferencePaths"),
    ListProp<C, &C::FReferencePaths>("ReferencePaths"),
    EnumProp<C, &C::FLogLevel>("LogLevel", TMSLogLevelInfo, "Normal"),
    IntProp<C, &C::FMaxCPUs>("MaxCPUs"),
    BoolProp<C, &C::FOverrideCompiler>("OverrideCompiler"),
    StrProp<C, &C::FCompilerConstants>("CompilerConstants"),
    BoolProp<C, &C::FDebugConstant>("DebugConstant"),
    BoolProp<C, &C::FTraceConstant>("TraceConstant"),
    BoolProp<C, &C::FOptimize>("Optimize"),
    BoolProp<C, &C::FAllowUnsafe>("AllowUnsafe"),
    BoolProp<C, &C::FOverrideWarnings>("OverrideWarnings"),
    IntProp<C, &C::FWarningLevel>("WarningLevel", "4"),
    BoolProp<C, &C::FAllWarningsAsErrors>("AllWarningsAsErrors"),
    BoolProp<C, &C::FSelectedWarningsAsErrors>("SelectedWarningsAsErrors"),
    StrProp<C, &C::FWarningsAsErrors>("WarningsAsErrors"),
    BoolProp<C, &C::FDisableSelectedWarnings>("DisableSelectedWarnings"),
    StrProp<C, &C::FDisableWarnings>("DisableWarnings"),
    BoolProp<C, &C::FOverrideTargetFramework>("OverrideTargetFramework"),
    EnumProp<C, &C::FTargetFramework>("TargetFramework", TVSDotNetTargetFxInfo, "fx20"),
    ListProp<C, &C::FExtraMSBuildProperties>("ExtraMSBuildProperties"),
};

const TPropertyTable C::PropertyTable{"TQvCustomVSDotNetAction", &TQvMultiExecAction::PropertyTable,
                                      C::FProps};

const TPropDescriptor A::FProps[] = {
    StrProp<A, &A::GetSolution, &A::SetSolution>("Solution"),
    StrProp<A, &A::FSolutionConfiguration>("SolutionConfiguration"),
    StrProp<A, &A::GetAllSolutionConfigurations, nullptr>("AllSolutionConfigurations", nullptr,
                                                          false),
    BoolProp<A, &A::FUpdateWin32Resource>("UpdateWin32Resource"),
    BoolProp<A, &A::FUpdateAssemblyInfo>("UpdateAssemblyInfo"),
    EnumProp<A, &A::FBuildType>("BuildType", TVSDotNetBuildTypeInfo, "btAllProjects"),
    EnumProp<A, &A::FBuildAction>("BuildAction", TVSDotNetBuildActionInfo, "baBuild"),
    ListProp<A, &A::FSelectedProjects>("SelectedProjects"),
    BoolProp<A, &A::FUseEnv>("UseEnv"),
    EnumProp<A, &A::FVStudioVersion>("VStudioVersion", TVSDotNetVersionInfo, nullptr),
    EnumProp<A, &A::FApplyAssemblyInfoTo>("ApplyAssemblyInfoTo", TVSDotNetBuildTypeInfo,
                                          "btAllProjects"),
    EnumProp<A, &A::FApplyResourceInfoTo>("ApplyResourceInfoTo", TVSDotNetBuildTypeInfo,
                                          "btAllProjects"),
    ListProp<A, &A::FAssemblySelectedProjects>("AssemblySelectedProjects"),
    ListProp<A, &A::FResourceSelectedProjects>("ResourceSelectedProjects"),
    StrProp<A, &A::GetAssemblyInfo, nullptr>("AssemblyInfo", nullptr, false),
    BoolProp<A, &A::FUpdateAssemblyTitle>("UpdateAssemblyTitle"),
    BoolProp<A, &A::FUpdateAssemblyComment>("UpdateAssemblyComment"),
    BoolProp<A, &A::FUpdateAssemblyCompany>("UpdateAssemblyCompany"),
    BoolProp<A, &A::FUpdateAssemblyDescription>("UpdateAssemblyDescription"),
    BoolProp<A, &A::FUpdateAssemblyCopyright>("UpdateAssemblyCopyright"),
    BoolProp<A, &A::FUpdateAssemblyTradeMark>("UpdateAssemblyTradeMark"),
    BoolProp<A, &A::FUpdateAssemblyProductName>("UpdateAssemblyProductName"),
    BoolProp<A, &A::FUpdateAssemblyFileVersion>("UpdateAssemblyFileVersion"),
    BoolProp<A, &A::FUpdateAssemblyVersion>("UpdateAssemblyVersion"),
    BoolProp<A, &A::GetAutoIncAssemblyBuildNumber, &A::SetAutoIncAssemblyBuildNumber>(
        "AutoIncAssemblyBuildNumber"),
    BoolProp<A, &A::GetAutoIncAssemblyFileBuildNumber, &A::SetAutoIncAssemblyFileBuildNumber>(
        "AutoIncAssemblyFileBuildNumber"),
    BoolProp<A, &A::GetAutoIncAssemblyRevisionNo, &A::SetAutoIncAssemblyRevisionNo>(
        "AutoIncAssemblyRevisionNo"),
    BoolProp<A, &A::GetAutoIncAssemblyFileRevisionNo, &A::SetAutoIncAssemblyFileRevisionNo>(
        "AutoIncAssemblyFileRevisionNo"),
    BoolProp<A, &A::FLinkAssemblyFileVersionInfo>("LinkAssemblyFileVersionInfo"),
    StrProp<A, &A::FAssemblyTitle>("AssemblyTitle"),
    StrProp<A, &A::FAssemblyComment>("AssemblyComment"),
    StrProp<A, &A::FAssemblyCompany>("AssemblyCompany"),
    StrProp<A, &A::FAssemblyDescription>("AssemblyDescription"),
    StrProp<A, &A::FAssemblyCopyright>("AssemblyCopyright"),
    StrProp<A, &A::FAssemblyTradeMark>("AssemblyTradeMark"),
    StrProp<A, &A::FAssemblyProductName>("AssemblyProductName"),
    StrProp<A, &A::GetAssemblyFileVersion, &A::SetAssemblyFileVersion>("AssemblyFileVersion",
                                                                       "|||"),
    StrProp<A, &A::GetAssemblyVersion, &A::SetAssemblyVersion>("AssemblyVersion", "|||"),
    StrProp<A, &A::GetAssemblyVersionMajor, &A::SetAssemblyVersionMajor>("AssemblyVersionMajor", "",
                                                                         false),
    StrProp<A, &A::GetAssemblyVersionMinor, &A::SetAssemblyVersionMinor>("AssemblyVersionMinor", "",
                                                                         false),
    StrProp<A, &A::GetAssemblyVersionBuild, &A::SetAssemblyVersionBuild>("AssemblyVersionBuild", "",
                                                                         false),
    StrProp<A, &A::GetAssemblyVersionRevision, &A::SetAssemblyVersionRevision>(
        "AssemblyVersionRevision", "", false),
    StrProp<A, &A::GetAssemblyFileVersionMajor, &A::SetAssemblyFileVersionMajor>(
        "AssemblyFileVersionMajor", "", false),
    StrProp<A, &A::GetAssemblyFileVersionMinor, &A::SetAssemblyFileVersionMinor>(
        "AssemblyFileVersionMinor", "", false),
    StrProp<A, &A::GetAssemblyFileVersionBuild, &A::SetAssemblyFileVersionBuild>(
        "AssemblyFileVersionBuild", "", false),
    StrProp<A, &A::GetAssemblyFileVersionRevision, &A::SetAssemblyFileVersionRevision>(
        "AssemblyFileVersionRevision", "", false),
    BoolProp<A, &A::GetAutoIncBuild, &A::SetAutoIncBuild>("AutoIncBuild"),
    IntProp<A, &A::FMajorVersion>("MajorVersion", "1"),
    IntProp<A, &A::FMinorVersion>("MinorVersion"),
    IntProp<A, &A::FReleaseVersion>("ReleaseVersion"),
    IntProp<A, &A::FBuildVersion>("BuildVersion"),
    BoolProp<A, &A::FIsDebug>("IsDebug"),
    BoolProp<A, &A::FIsPreRelease>("IsPreRelease"),
    BoolProp<A, &A::FIsSpecial>("IsSpecial"),
    BoolProp<A, &A::FIsPrivate>("IsPrivate"),
    BoolProp<A, &A::FIsDLL>("IsDLL"),
    IntProp<A, &A::FLocale>("Locale", "1033"),
    IntProp<A, &A::FCodePage>("CodePage", "1200"),
    StrProp<A, &A::FVersionInfoKeys>("VersionInfoKeys"),
    BoolProp<A, &A::FIncludeCompileDate>("IncludeCompileDate"),
    BoolProp<A, &A::FLinkFileAndProductVersion>("LinkFileAndProductVersion", true),
    BoolProp<A, &A::FAutoUpdateFileVersion>("AutoUpdateFileVersion", true),
    EnumProp<A, &A::FProjLocationDetectMethod>("ProjLocationDetectMethod", TProjLocDetectMethodInfo,
                                               "useWMI"),
    IntProp<A, &A::FWMIWebsiteNum>("WMIWebsiteNum", "1"),
    StrProp<A, &A::FSharePath>("SharePath", "wwwroot$"),
    StrProp<A, &A::FWebDAVUsername>("WebDAVUsername"),
    StrProp<A, &A::GetWebDAVPassword, &A::SetWebDAVPassword>("WebDAVPassword", "", false),
    StrProp<A, &A::F_WebDAVPassword>("_WebDAVPassword"),
    BoolProp<A, &A::FUseMSBuild>("UseMSBuild", true),
    BoolProp<A, &A::FStructuredOutput>("StructuredOutput", true),
    StrProp<A, &A::FWin32VersionInfoPropertySetName>("Win32VersionInfoPropertySetName"),
    BoolProp<A, &A::FUseWin32PropertySet>("UseWin32PropertySet"),
    StrProp<A, &A::FDotNetVersionInfoPropertySetName>("DotNetVersionInfoPropertySetName"),
    BoolProp<A, &A::FUseDotNetPropertySet>("UseDotNetPropertySet"),
    StrProp<A, &A::FExtraCmdLineParams>("ExtraCmdLineParams"),
    StrProp<A, &A::FOutputDirectory>("OutputDirectory"),
};

const TPropertyTable A::PropertyTable{"TQvVSDotNetAction", &C::PropertyTable, A::FProps};

// ---- construction and identity ----------------------------------------------------------

TQvCustomVSDotNetAction::TQvCustomVSDotNetAction()
    : FStructuredOutputHelper(std::make_unique<TQvMSBuildStructuredOutputHelper>(this)) {
  if (auto options = VSDotNetOptions())
    FVStudioVersion = static_cast<TVSDotNetVersion>(options->GetDefaultVSVersion());
}

TQvCustomVSDotNetAction::~TQvCustomVSDotNetAction() = default;

void* TQvCustomVSDotNetAction::GetInterface(const TGUID& iid) {
  if (void* p = QueryInterfaceList<IQvVC7VersionInfo, IQvAssemblyInfoSettings>(this, iid)) return p;
  return TQvMultiExecAction::GetInterface(iid);
}

std::string TQvCustomVSDotNetAction::GetFormattedDescription() const {
  return GetDescription() + " [ " + FSolution + " ]";
}

void TQvCustomVSDotNetAction::GetHiddenProperties(TStringList& list) const {
  TQvMultiExecAction::GetHiddenProperties(list);
  for (const char* name : {"UpdateVersionComment",
                           "UpdateAssemblyTitle",
                           "UpdateAssemblyComment",
                           "UpdateAssemblyCompany",
                           "UpdateAssemblyDescription",
                           "UpdateAssemblyCopyright",
                           "UpdateAssemblyTradeMark",
                           "UpdateAssemblyProductName",
                           "UpdateAssemblyVersion",
                           "UpdateAssemblyFileVersion",
                           "AssemblyTitle",
                           "AssemblyComment",
                           "AssemblyCompany",
                           "AssemblyDescription",
                           "AssemblyCopyright",
                           "AssemblyTradeMark",
                           "AssemblyProductName",
                           "AssemblyVersion",
                           "AssemblyFileVersion",
                           "UpdateWin32Resource",
                           "UpdateAssemblyInfo",
                           "BuildType",
                           "BuildAction",
                           "SelectedProjects",
                           "ApplyAssemblyInfoTo",
                           "ApplyResourceInfoTo",
                           "AssemblySelectedProjects",
                           "ResourceSelectedProjects",
                           "UseEnv",
                           "AutoIncAssemblyBuildNumber",
                           "AutoIncAssemblyFileBuildNumber",
                           "AutoIncAssemblyRevisionNo",
                           "AutoIncAssemblyFileRevisionNo",
                           "LinkAssemblyFileVersionInfo",
                           "AssemblyVersionMajor",
                           "AssemblyVersionMinor",
                           "AssemblyVersionBuild",
                           "AssemblyVersionRevision",
                           "AssemblyFileVersionMajor",
                           "AssemblyFileVersionMinor",
                           "AssemblyFileVersionBuild",
                           "AssemblyFileVersionRevision",
                           "AutoIncBuild",
                           "MajorVersion",
                           "MinorVersion",
                           "ReleaseVersion",
                           "BuildVersion",
                           "IsDebug",
                           "IsPreRelease",
                           "IsSpecial",
                           "IsPrivate",
                           "IsDLL",
                           "Locale",
                           "CodePage",
                           "VersionInfoKeys",
                           "IncludeCompileDate",
                           "Win32VersionInfoPropertySetName",
                           "DotNetVersionInfoPropertySetName",
                           "_WebDAVPassword"})
    list.Add(name);
}

void TQvCustomVSDotNetAction::GetPropertyAlias(TStringList& list) const {
  TQvMultiExecAction::GetPropertyAlias(list);
  for (const char* line :
       {"[Solution]", "Solution=Solution", "SolutionConfiguration=SolutionConfiguration",
        "VStudioVersion=Visual Studio Version", "UseMSBuild=Use MSBuild", "[MSBuild]",
        "ExtraMSBuildProperties=Extra MSBuild Properties"})
    list.Add(line);
}

void TQvCustomVSDotNetAction::GetPropertyHelp(TStringList& list) const {
  TQvMultiExecAction::GetPropertyHelp(list);
  list.Add(
      "ExtraMSBuildProperties=Properties in this list will be passed to MSBuild. Use the syntax "
      "<PropertyName>=<PropertyValue> for each entry. Do not quote entries (they will be quoted "
      "automatically.)");
}

// ---- compiler and validation ------------------------------------------------------------

bool TQvCustomVSDotNetAction::UsingMSBuild() const {
  return FUseMSBuild && FVStudioVersion >= TVSDotNetVersion::vs2005;
}

std::string TQvCustomVSDotNetAction::GetExecutable(bool useMSBuild) const {
  if (!useMSBuild) {
    auto options = VSDotNetOptions();
    std::string dir = options ? options->GetDevEnvLocation(static_cast<int>(FVStudioVersion)) : "";
    return IncludeTrailingPathDelimiter(dir) + "devenv.com";
  }
  std::string fx = FVStudioVersion == TVSDotNetVersion::vs2005   ? "v2.0"
                   : FVStudioVersion == TVSDotNetVersion::vs2008 ? "v3.5"
                                                                 : "";
  IntfPtr<IQvDotNetFramework> framework = QvDotNetInfo ? QvDotNetInfo->GetFramework(fx) : nullptr;
  if (!framework) return {};
  return IncludeTrailingPathDelimiter(framework->GetFolder()) + "MSBuild.exe";
}

bool TQvCustomVSDotNetAction::Validate(IQvActionValidationError* errors) {
  bool ok = true;
  auto report = [&](const char* section, const std::string& message, IInterface* edit) {
    errors->AddError(section, message, edit);
    ok = false;
  };
  if (FSolution.empty()) report("Solution file", "A solution file has not been set", nullptr);
  bool msbuild = UsingMSBuild();
  std::string exe = GetExecutable(msbuild);
  IntfPtr<IQvVSDotNetOptions> options = VSDotNetOptions();
  IInterface* edit = options.Get();
  if (exe.empty()) {
    if (msbuild)
      report(".NET Framework Settings", "The selected version of the .NET Framework was not found.",
             nullptr);
    else
      report("VisualStudio.NET Options", "Path to devenv.com has not been set", edit);
  } else if (!platform::FileExists(exe)) {
    if (msbuild)
      report("MSBuild Not Found", "Executable not found : " + exe, edit);
    else
      report("VisualStudio.NET Options", "Visual Studio installation not found : " + exe, edit);
  }
  return ok;
}

// ---- solution lookups -------------------------------------------------------------------

IntfPtr<IVSDotNetSolution> TQvCustomVSDotNetAction::OpenOwnSolution() {
  return OpenSolution(ExpandExpression(FSolution, false), false);
}

std::string TQvCustomVSDotNetAction::GetProjectID(const std::string& nameOrPath) {
  IntfPtr<IVSDotNetSolution> solution = OpenOwnSolution();
  if (!solution) return {};
  IntfPtr<IVSDotNetProjects> projects = solution->GetProjects();
  IntfPtr<IVSDotNetProject> found = projects->FindByFileName(nameOrPath);
  if (!found) {
    std::string folder = ExtractFilePath(solution->GetFileName());
    std::string rest = nameOrPath;
    if (size_t at = FindText(rest, folder); !folder.empty() && at != std::string::npos)
      rest.erase(at, folder.size());
    found = projects->FindByFileName(rest);
  }
  if (found) return found->GetProjectGUID();
  std::string bareName = ChangeFileExt(ExtractFileName(nameOrPath), "");
  for (int i = 0; i < projects->GetCount(); ++i) {
    IntfPtr<IVSDotNetProject> p = projects->GetItem(i);
    if (p->GetName() == nameOrPath || p->GetName() == bareName) return p->GetProjectGUID();
  }
  return {};
}

IntfPtr<IVSDotNetProject> TQvCustomVSDotNetAction::FindOwnProject(const std::string& projectId) {
  IntfPtr<IVSDotNetSolution> solution = OpenOwnSolution();
  return solution ? solution->GetProjects()->FindByGUID(projectId) : nullptr;
}

std::string TQvCustomVSDotNetAction::GetProjectName(const std::string& projectId) {
  IntfPtr<IVSDotNetProject> p = FindOwnProject(projectId);
  return p ? p->GetName() : std::string();
}

std::string TQvCustomVSDotNetAction::GetProjectPath(const std::string& projectId) {
  IntfPtr<IVSDotNetProject> p = FindOwnProject(projectId);
  return p ? p->GetFileName() : std::string();
}

std::string TQvCustomVSDotNetAction::GetAllSolutionConfigurations() {
  TStringList names;
  try {
    IntfPtr<IVSDotNetSolutionConfigurations> configs = OpenOwnSolution()->GetConfigurations();
    for (int i = 0; configs && i < configs->GetCount(); ++i)
      names.Add(configs->GetItem(i)->GetName());
  } catch (const std::exception&) {
    return {};  // a solution that cannot be opened has no configurations to offer
  }
  return names.Text();
}

// ---- version texts ----------------------------------------------------------------------

namespace {

// A "|" is appended and each piece before a "|" goes to the next part; pieces beyond the
// fourth are ignored and missing ones leave the old part.
void SplitVersion(const std::string& text, std::string (&parts)[4]) {
  std::vector<std::string> pieces = Tokenize(text + "|", "|", false);
  for (size_t i = 0; i < 4 && i + 1 < pieces.size(); ++i)
    parts[i] = pieces[i];
}

std::string JoinVersion(const std::string (&parts)[4]) {
  return parts[0] + "|" + parts[1] + "|" + parts[2] + "|" + parts[3];
}

}  // namespace

void TQvCustomVSDotNetAction::SetAssemblyVersion(const std::string& v) {
  FAssemblyVersion = v;
  SplitVersion(v, FAssemblyVersionParts);
}

void TQvCustomVSDotNetAction::SetAssemblyFileVersion(const std::string& v) {
  FAssemblyFileVersion = v;
  SplitVersion(v, FAssemblyFileVersionParts);
}

void TQvCustomVSDotNetAction::ResetAssemblyVersion() {
  FAssemblyVersion = JoinVersion(FAssemblyVersionParts);
}

void TQvCustomVSDotNetAction::ResetAssemblyFileVersion() {
  FAssemblyFileVersion = JoinVersion(FAssemblyFileVersionParts);
}

void TQvCustomVSDotNetAction::SetVersionPart(bool fileVersion, int part, const std::string& v) {
  if (fileVersion) {
    FAssemblyFileVersionParts[part] = v;
    ResetAssemblyFileVersion();
  } else {
    FAssemblyVersionParts[part] = v;
    ResetAssemblyVersion();
  }
}

const std::string& TQvCustomVSDotNetAction::GetAssemblyFileVersionBuild() {
  ResetAssemblyVersion();
  return FAssemblyFileVersionParts[2];
}

std::string TQvCustomVSDotNetAction::GetAssemblyInfo() const {
  return StringReplaceAll(FAssemblyVersion, "|", ".");
}

// ---- auto-increment switches --------------------------------------------------------------

void TQvCustomVSDotNetAction::SetAutoInc(bool& field, bool on, const char* property,
                                         bool keepRegistered) {
  field = on;
  if (on)
    RegisterDynamicProperty(property);
  else if (!keepRegistered)
    UnRegisterDynamicProperty(property);
}

void TQvCustomVSDotNetAction::SetAutoIncBuild(bool v) {
  SetAutoInc(FAutoIncBuild, v, "BuildVersion", false);
}

void TQvCustomVSDotNetAction::SetAutoIncAssemblyBuildNumber(bool v) {
  SetAutoInc(FAutoIncAssemblyBuildNumber, v, "AssemblyVersionBuild", FAutoIncAssemblyRevisionNo);
}

void TQvCustomVSDotNetAction::SetAutoIncAssemblyRevisionNo(bool v) {
  SetAutoInc(FAutoIncAssemblyRevisionNo, v, "AssemblyVersion", FAutoIncAssemblyBuildNumber);
}

void TQvCustomVSDotNetAction::SetAutoIncAssemblyFileBuildNumber(bool v) {
  SetAutoInc(FAutoIncAssemblyFileBuildNumber, v, "AssemblyFileVersion",
             FAutoIncAssemblyFileRevisionNo);
}

void TQvCustomVSDotNetAction::SetAutoIncAssemblyFileRevisionNo(bool v) {
  SetAutoInc(FAutoIncAssemblyFileRevisionNo, v, "AssemblyFileVersion",
             FAutoIncAssemblyFileBuildNumber);
}

// ---- Win32 string table -----------------------------------------------------------------

void TQvCustomVSDotNetAction::SetVersionInfoKey(const std::string& key, const std::string& value) {
  TStringList keys;
  keys.SetText(FVersionInfoKeys);
  int i = keys.IndexOfName(key);
  if (i < 0)
    keys.Add(key + "=" + value);
  else
    keys.Put(i, keys.Names(i) + "=" + value);
  FVersionInfoKeys = keys.Text();
}

void TQvCustomVSDotNetAction::RemoveVersionInfoKey(const std::string& key) {
  TStringList keys;
  keys.SetText(FVersionInfoKeys);
  int i = keys.IndexOfName(key);
  if (i < 0) return;
  keys.Delete(i);
  FVersionInfoKeys = keys.Text();
}

void TQvCustomVSDotNetAction::UpdateFileVersion() {
  SetVersionInfoKey("FileVersion",
                    std::to_string(FMajorVersion) + "." + std::to_string(FMinorVersion) + "." +
                        std::to_string(FReleaseVersion) + "." + std::to_string(FBuildVersion));
}

// ---- WebDAV password ----------------------------------------------------------------------

std::string TQvCustomVSDotNetAction::GetWebDAVPassword() {
  return F_WebDAVPassword.empty() ? std::string() : DecryptPassword(F_WebDAVPassword);
}

void TQvCustomVSDotNetAction::SetWebDAVPassword(const std::string& plain) {
  F_WebDAVPassword = plain.empty() ? std::string() : EncryptPassword(plain);
}

}  // namespace qv
