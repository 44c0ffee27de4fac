#include "Qvmstestaction.h"

#include <array>

#include "QvCounts.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qv {

namespace {
constexpr std::array<std::string_view, 3> kPublishNames{"pbNone", "pbAuto", "pbSpecify"};
}  // namespace

const TEnumTypeInfo TMSTestPublishModeInfo{"TMSTestPublishMode", kPublishNames};

using M = TQvMSTestAction;

const TPropDescriptor M::FProps[] = {
    StrProp<M, &M::FAssemblyFileName>("AssemblyFileName"),
    StrProp<M, &M::FConfigFileName>("ConfigFileName"),
    StrProp<M, &M::FOutputFileName>("OutputFileName"),
    EnumProp<M, &M::FVisualStudioVer>("VisualStudioVer", TVSDotNetVersionInfo, nullptr),
    BoolProp<M, &M::FUseStandaloneMSTest>("UseStandaloneMSTest"),
    BoolProp<M, &M::FUseMetadataFile>("UseMetadataFile"),
    StrProp<M, &M::FMetadataFile>("MetadataFile"),
    BoolProp<M, &M::FSpecifyTestList>("SpecifyTestList"),
    StrProp<M, &M::FTestList>("TestList"),
    BoolProp<M, &M::FSpecifyTests>("SpecifyTests"),
    StrProp<M, &M::FTests>("Tests"),
    BoolProp<M, &M::FShowBanner>("ShowBanner"),
    EnumProp<M, &M::FPublishMode>("PublishMode", TMSTestPublishModeInfo, "pbAuto"),
    StrProp<M, &M::FTeamServer>("TeamServer"),
    StrProp<M, &M::FTeamProject>("TeamProject"),
    StrProp<M, &M::FBuildId>("BuildId"),
    StrProp<M, &M::FBuildPlatform>("BuildPlatform", "Any CPU"),
    StrProp<M, &M::FBuildFlavor>("BuildFlavor", "Quorvex"),
};

const TPropertyTable M::PropertyTable{"TQvMSTestAction", &TQvExecuteAbstractAction::PropertyTable,
                                      M::FProps};

M::TQvMSTestAction() {
  // Raised to vs2005 only: the unsigned byte keeps vsUnknown (4) and "Standalone MSTest" (5).
  if (auto options = VSDotNetOptions()) {
    uint8_t v = options->GetDefaultVSVersion();
    FVisualStudioVer = static_cast<TVSDotNetVersion>(v < 2 ? 2 : v);
  }
}

std::string M::GetFormattedDescription() const {
  return GetDescription() + " [ " + (FUseMetadataFile ? FMetadataFile : FAssemblyFileName) + " ]";
}

std::string M::GetExecutable() {
  IntfPtr<IQvVSDotNetOptions> options = VSDotNetOptions();
  if (!options) return {};
  std::string dir = FUseStandaloneMSTest
                        ? options->GetStandaloneMSTestDir()
                        : Trim(options->GetDevEnvLocation(static_cast<int>(FVisualStudioVer)));
  return dir.empty() ? std::string() : IncludeTrailingPathDelimiter(dir) + "MSTest.exe";
}

std::string M::GetStartingDir() {
  std::string assembly;
  if (!TryExpandExpression("Assembly File", FAssemblyFileName, assembly, false)) return {};
  return ExtractFilePath(assembly);
}

bool M::AddExpanded(ICommandLineBuilder* builder, const char* caption, const std::string& text,
                    const char* switchText, bool required, bool skipEmpty) {
  std::string value;
  if (!TryExpandExpression(caption, text, value, required)) return false;
  if (!(skipEmpty && value.empty())) builder->AddArgument(switchText, value, caoJoinQuoted);
  return true;
}

// A list is taken apart as a string list's delimited text: blanks end an item unless it is
// quoted, so a name holding a blank must be written in double quotes.
bool M::AddList(ICommandLineBuilder* builder, const char* caption, const std::string& text,
                const char* switchText) {
  std::string value;
  if (!TryExpandExpression(caption, text, value, true)) return false;
  TStringList items;
  items.SetDelimitedText(value);
  for (const std::string& item : items)
    builder->AddArgument(switchText, item, caoJoinQuoted);
  return true;
}

bool M::GetCommandLine(ICommandLineBuilder* builder) {
  builder->Reset(0);
  if (!(FUseMetadataFile ? AddExpanded(builder, "Test Metadata File", FMetadataFile,
                                       "/testmetadata:", true, false)
                         : AddExpanded(builder, "Test Container File", FAssemblyFileName,
                                       "/testcontainer:", true, false)) ||
      !AddExpanded(builder, "Results File", FOutputFileName, "/resultsfile:", false, true) ||
      !AddExpanded(builder, "Run Configuration File", FConfigFileName, "/runconfig:", false, true))
    return false;
  if (FUseMetadataFile && FSpecifyTestList &&
      !AddList(builder, "Test Lists", FTestList, "/testlist:"))
    return false;
  if (FSpecifyTests && !AddList(builder, "Test Names", FTests, "/test:")) return false;
  if (!FShowBanner) builder->AddArgument("/nologo", "", 0);
  return GetPublishArguments(builder);
}

bool M::GetPublishArguments(ICommandLineBuilder* builder) {
  FAutoPublishing = false;
  std::string server, project, buildId, platform, flavor;
  if (FPublishMode == TMSTestPublishMode::pbNone) return true;
  if (FPublishMode == TMSTestPublishMode::pbAuto) {
    std::string* values[] = {&server, &project, &buildId, &platform, &flavor};
    const char* names[] = {"_envTeamServer", "_envTeamProject", "_envTeamBuildId",
                           "_envBuildPlatform", "_envBuildFlavor"};
    int present = 0;
    for (int i = 0; i < 5; ++i)
      present += !(*values[i] = GetVariableValue(names[i])).empty();
    if (present == 0) return true;  // not running under Team Build
    if (present < 5) {
      SendMessage(
          "Warning : It appears that this project is running under Team Build, but not all "
          "Team Build parameters are available",
          TStatusTag::Warning);
      return true;
    }
    FAutoPublishing = true;
  } else if (FPublishMode == TMSTestPublishMode::pbSpecify) {
    if (!TryExpandExpression("Team Server Name", FTeamServer, server, true) ||
        !TryExpandExpression("Team Project Name", FTeamProject, project, true) ||
        !TryExpandExpression("Team Build Id", FBuildId, buildId, true) ||
        !TryExpandExpression("Build Platform", FBuildPlatform, platform, true) ||
        !TryExpandExpression("Build Flavor", FBuildFlavor, flavor, true))
      return false;
  }
  SendMessage("Results will be published to Team Project " + project + " on " + server +
                  ", Build Id " + buildId + " (" + flavor + "/" + platform + ")",
              TStatusTag::Plain);
  builder->AddArgument("/publish:", server, caoJoinQuoted);
  builder->AddArgument("/teamproject:", project, caoJoinQuoted);
  builder->AddArgument("/publishbuild:", buildId, caoJoinQuoted);
  builder->AddArgument("/flavor:", flavor, caoJoinQuoted);
  builder->AddArgument("/platform:", platform, caoJoinQuoted);
  return true;
}

void M::OnStdOutData(IQvProcess* process, std::string_view chunk) {
  TQvExecuteAbstractAction::OnStdOutData(process, chunk);
  if (FAutoPublishing) return;
  ForEachLine(chunk, [this](std::string_view line) {
    size_t phrase = line.find(" test(s) Passed");
    if (phrase == std::string_view::npos) return;
    size_t slash = line.find('/');
    if (slash == std::string_view::npos) slash = 0;  // the whole text before is the total
    int64_t passed = slash ? ReadCount(line.substr(0, slash)) : 0;
    size_t from = slash ? slash + 1 : 0;
    int64_t total = from <= phrase ? ReadCount(line.substr(from, phrase - from)) : 0;
    SendMetricInt("Unit_Tests", "Tests_Successful", passed);
    SendMetricInt("Unit_Tests", "Tests_Failed", AddCounts(total, -passed));
  });
}

bool M::Validate(IQvActionValidationError* errors) {
  bool ok = TQvExecuteAbstractAction::Validate(errors);
  IntfPtr<IQvVSDotNetOptions> options = VSDotNetOptions();
  IInterface* edit = options.Get();
  std::string exe = GetExecutable();
  std::string vs = GetVSName(FVisualStudioVer);
  if (!FUseStandaloneMSTest && exe.empty()) {
    errors->AddError("VisualStudio.NET Options", "Path to " + vs + " not set", edit);
  } else if (!FUseStandaloneMSTest && !platform::FileExists(exe)) {
    errors->AddError("VisualStudio.NET Options", "MSTest.exe not found in " + vs + " directory.",
                     edit);
  } else if (FUseStandaloneMSTest && exe.empty()) {
    errors->AddError("Standalone MSTest Path",
                     "No path to a standalone MSTest installation was found", edit);
  } else if (FUseStandaloneMSTest && !platform::FileExists(exe)) {
    errors->AddError("Standalone MSTest Path",
                     "MSTest.exe not found in \"" + options->GetStandaloneMSTestDir() + "\"", edit);
  } else {
    edit = nullptr;
  }
  bool optionsOk = edit == nullptr;
  bool fileOk = true;
  if (!FUseMetadataFile && FAssemblyFileName.empty()) {
    errors->AddError("Assembly Filename", "Assembly Filename is blank", nullptr);
    fileOk = false;
  } else if (FUseMetadataFile && FMetadataFile.empty()) {
    errors->AddError("Metadata File", "A metadata file must be specified.", nullptr);
    fileOk = false;
  }
  return ok && optionsOk && fileOk;
}

}  // namespace qv
