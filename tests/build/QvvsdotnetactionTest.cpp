#include "Qvvsdotnetaction.h"

#include <gtest/gtest.h>

#include "QvPlatform.h"
#include "Qvvsdotnetoptions.h"
#include "support/FakeDotNetInfo.h"
#include "support/RecordingActionContext.h"
#include "support/RecordingServices.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::RecordingActionContext;

namespace {

const std::string kExamples = QV_EXAMPLES_DIR;
const std::string kDelim(1, platform::PathDelim);

// Validation errors as "section|message|edit?" lines.
class ValidationSink : public TInterfacedObject, public IQvActionValidationError {
 public:
  std::vector<std::string> Errors;
  void AddError(const std::string& section, const std::string& message, IInterface* edit) override {
    Errors.push_back(section + "|" + message + (edit ? "|options" : ""));
  }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IQvActionValidationError>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }
};

// A host with registered options, and an action `a` bound to a recording context.
class BuildAction : public testing::Test {
 protected:
  qvtest::RecordingServices services;
  qvtest::FakeDotNetInfo dotnet;
  IntfPtr<RecordingActionContext> ctx = RecordingActionContext::Create();
  IntfPtr<IQvVSDotNetOptions> options;
  std::unique_ptr<TQvVSDotNetAction> a;
  BuildAction() {
    RegisterOptions();
    options = VSDotNetOptions();
    a = NewAction();
  }
  std::unique_ptr<TQvVSDotNetAction> NewAction() {
    auto a = std::make_unique<TQvVSDotNetAction>();
    a->BindContext(ctx);
    return a;
  }
  std::vector<std::string> Validate() {
    IntfPtr<ValidationSink> sink(new ValidationSink);
    bool ok = a->Validate(sink.Get());
    EXPECT_EQ(ok, sink->Errors.empty());
    return sink->Errors;
  }
};

TEST_F(BuildAction, NewActionDefaults) {
  options->SetDefaultVSVersion(static_cast<uint8_t>(TVSDotNetVersion::vs2003));
  a = NewAction();
  for (std::string item :
       {"UseMSBuild=True", "StructuredOutput=True", "WarningLevel=4", "LogLevel=Normal",
        "SharePath=wwwroot$", "WMIWebsiteNum=1", "VStudioVersion=vs2003", "AssemblyVersion=|||",
        "AssemblyFileVersion=|||", "BuildType=btAllProjects", "BuildAction=baBuild",
        "TargetFramework=fx20", "ProjLocationDetectMethod=useWMI",
        "SelectedProjects=", "Solution="}) {
    size_t eq = item.find('=');
    EXPECT_EQ(a->GetPropValue(item.substr(0, eq)), item.substr(eq + 1)) << item;
  }
  // Every fixed default in the table is what a new action holds.
  for (const auto* d : TQvVSDotNetAction::PropertyTable.All()) {
    if (d->Default && d->Type != TPropType::StringList && d->Stored) {
      EXPECT_EQ(TQvPersistent::GetPropText(*a, *d), d->Default) << d->Name;
    }
  }
}

TEST_F(BuildAction, PublishedPropertiesInDeclarationOrder) {
  std::vector<std::string> names;
  for (const auto* d : TQvVSDotNetAction::PropertyTable.All())
    names.emplace_back(d->Name);
  ASSERT_EQ(names.size(), 96u);  // 20 MSBuild settings, then 76
  EXPECT_EQ(names.front(), "OverrideReferencePaths");
  EXPECT_EQ(names[19], "ExtraMSBuildProperties");
  EXPECT_EQ(names[20], "Solution");
  EXPECT_EQ(names.back(), "OutputDirectory");
  const auto* table = &TQvVSDotNetAction::PropertyTable;
  for (const char* notStored : {"AllSolutionConfigurations", "AssemblyInfo", "WebDAVPassword",
                                "AssemblyVersionMajor", "AssemblyFileVersionRevision"})
    EXPECT_FALSE(table->Find(notStored)->Stored) << notStored;
  EXPECT_TRUE(table->Find("_WebDAVPassword")->Stored);
  EXPECT_TRUE(table->Find("AllSolutionConfigurations")->ReadOnly());
}

TEST_F(BuildAction, DescriptionAndInspectorLists) {
  a->SetPropValue("Solution", "%Root%\\App.sln");
  EXPECT_EQ(a->GetFormattedDescription(), "Build VS.Net Solution [ %Root%\\App.sln ]");
  TStringList hidden, alias;
  a->GetHiddenProperties(hidden);
  a->GetPropertyAlias(alias);
  EXPECT_EQ(hidden[0], "UpdateVersionComment") << "kept although no such property exists";
  EXPECT_EQ(hidden[hidden.Count() - 1], "_WebDAVPassword");
  EXPECT_EQ(alias.Text(),
            "[Solution]\r\nSolution=Solution\r\nSolutionConfiguration=SolutionConfiguration\r\n"
            "VStudioVersion=Visual Studio Version\r\nUseMSBuild=Use MSBuild\r\n[MSBuild]\r\n"
            "ExtraMSBuildProperties=Extra MSBuild Properties\r\n");
}

TEST_F(BuildAction, ValidationReportsEveryProblem) {
  qvtest::TempDir dir;
  a->SetPropValue("VStudioVersion", "vs2003");  // UseMSBuild stays on but devenv builds
  EXPECT_EQ(Validate(), (std::vector<std::string>{
                            "Solution file|A solution file has not been set",
                            "VisualStudio.NET Options|Visual Studio installation not found : " +
                                kDelim + "devenv.com|options"}));

  a->SetPropValue("Solution", "x.sln");
  options->SetDevEnv2003Location(dir.Path());
  EXPECT_EQ(Validate(), std::vector<std::string>{
                            "VisualStudio.NET Options|Visual Studio installation not found : " +
                            dir.File("devenv.com") + "|options"});
  dir.Write("devenv.com", "");
  EXPECT_TRUE(Validate().empty());

  a->SetPropValue("VStudioVersion", "vs2008");
  EXPECT_EQ(
      Validate(),
      std::vector<std::string>{
          ".NET Framework Settings|The selected version of the .NET Framework was not found."});
  dotnet.Folders["v3.5"] = dir.File("fx35");
  EXPECT_EQ(Validate(), std::vector<std::string>{"MSBuild Not Found|Executable not found : " +
                                                 dir.File("fx35/MSBuild.exe") + "|options"});
  dir.Write("fx35/MSBuild.exe", "");
  EXPECT_TRUE(Validate().empty());
  EXPECT_EQ(a->GetExecutable(true), dir.File("fx35/MSBuild.exe"));
  EXPECT_EQ(a->GetExecutable(false), kDelim + "devenv.com") << "no 2008 folder configured";
}

TEST_F(BuildAction, UsingMSBuildNeedsVs2005OrLater) {
  const std::pair<const char*, bool> cases[] = {
      {"vs2002", false}, {"vs2003", false}, {"vs2005", true}, {"vs2008", true}, {"vsUnknown", true},
  };
  for (auto [version, expected] : cases) {
    a->SetPropValue("VStudioVersion", version);
    EXPECT_EQ(a->UsingMSBuild(), expected) << version;
  }
  a->SetPropValue("UseMSBuild", "False");
  EXPECT_FALSE(a->UsingMSBuild());
}

TEST_F(BuildAction, VersionTextsSplitAndRebuild) {
  a->SetPropValue("AssemblyVersion", "1|2|3|4");
  EXPECT_EQ(a->GetPropValue("AssemblyVersionBuild"), "3");
  a->SetPropValue("AssemblyVersion", "7|8");  // missing pieces leave the old parts
  EXPECT_EQ(a->GetPropValue("AssemblyVersionMajor"), "7");
  EXPECT_EQ(a->GetPropValue("AssemblyVersionRevision"), "4");
  EXPECT_EQ(a->GetPropValue("AssemblyVersion"), "7|8") << "the whole text is kept as set";
  a->SetPropValue("AssemblyVersionMinor", "*");
  EXPECT_EQ(a->GetPropValue("AssemblyVersion"), "7|*|3|4");
  a->SetPropValue("AssemblyFileVersion", "1|0|%Build%|0|extra");
  EXPECT_EQ(a->GetPropValue("AssemblyFileVersionBuild"), "%Build%");
  a->SetPropValue("AssemblyFileVersionRevision", "9");
  EXPECT_EQ(a->GetPropValue("AssemblyFileVersion"), "1|0|%Build%|9");

  // Reading the file version's build part rebuilds the assembly version (not the file one).
  a->SetPropValue("AssemblyVersion", "1|2|3|4|5");
  a->SetPropValue("AssemblyFileVersion", "6|6|6|6|6");
  EXPECT_EQ(a->GetPropValue("AssemblyVersion"), "1|2|3|4|5");
  a->GetPropValue("AssemblyFileVersionBuild");
  EXPECT_EQ(a->GetPropValue("AssemblyVersion"), "1|2|3|4");
  EXPECT_EQ(a->GetPropValue("AssemblyFileVersion"), "6|6|6|6|6");
  EXPECT_EQ(a->GetPropValue("AssemblyInfo"), "1.2.3.4");
}

TEST_F(BuildAction, AutoIncrementSwitchesRegisterDynamicProperties) {
  struct Step {
    const char* property;
    const char* value;
    std::vector<std::string> calls;
  } steps[] = {
      {"AutoIncBuild", "True", {"+BuildVersion"}},
      {"AutoIncBuild", "False", {"-BuildVersion"}},
      {"AutoIncAssemblyBuildNumber", "True", {"+AssemblyVersionBuild"}},
      {"AutoIncAssemblyRevisionNo", "True", {"+AssemblyVersion"}},
      {"AutoIncAssemblyBuildNumber", "False", {}},  // the revision switch is still on
      {"AutoIncAssemblyRevisionNo", "False", {"-AssemblyVersion"}},
      {"AutoIncAssemblyFileBuildNumber", "True", {"+AssemblyFileVersion"}},
      {"AutoIncAssemblyFileRevisionNo", "True", {"+AssemblyFileVersion"}},
      {"AutoIncAssemblyFileRevisionNo", "False", {}},
      {"AutoIncAssemblyFileBuildNumber", "False", {"-AssemblyFileVersion"}},
  };
  for (const auto& s : steps) {
    ctx->DynamicPropertyCalls.clear();
    a->SetPropValue(s.property, s.value);
    EXPECT_EQ(ctx->DynamicPropertyCalls, s.calls) << s.property << "=" << s.value;
    EXPECT_EQ(a->GetPropValue(s.property), s.value);
  }
}

TEST_F(BuildAction, Win32StringTableEntries) {
  a->SetPropValue("VersionInfoKeys", "CompanyName=Acme\r\nFileVersion=0.0.0.0\r\n");
  a->SetPropValue("MajorVersion", "2");
  a->SetPropValue("BuildVersion", "17");
  a->UpdateFileVersion();
  EXPECT_EQ(a->GetPropValue("VersionInfoKeys"), "CompanyName=Acme\r\nFileVersion=2.0.0.17\r\n");
  a->SetVersionInfoKey("SpecialBuild", "True");
  a->SetVersionInfoKey("companyname", "Acme Ltd");
  EXPECT_EQ(a->GetPropValue("VersionInfoKeys"),
            "CompanyName=Acme Ltd\r\nFileVersion=2.0.0.17\r\nSpecialBuild=True\r\n");
  a->RemoveVersionInfoKey("SPECIALBUILD");
  a->RemoveVersionInfoKey("Missing");
  EXPECT_EQ(a->GetPropValue("VersionInfoKeys"), "CompanyName=Acme Ltd\r\nFileVersion=2.0.0.17\r\n");
  a->SetPropValue("VersionInfoKeys", "");
  a->UpdateFileVersion();
  EXPECT_EQ(a->GetPropValue("VersionInfoKeys"), "FileVersion=2.0.0.17\r\n");
}

TEST_F(BuildAction, IsAVersionInfoObjectOverItsProperties) {
  IntfPtr<IQvVC7VersionInfo> info = Supports<IQvVC7VersionInfo>(static_cast<IInterface*>(a.get()));
  ASSERT_TRUE(info);
  info->SetLocale(0x0809);
  info->SetIsDLL(true);
  info->SetVersionInfoKeys("ProductName=Sample\r\n");
  EXPECT_EQ(a->GetPropValue("Locale"), "2057");
  EXPECT_EQ(a->GetPropValue("IsDLL"), "True");
  a->SetPropValue("CodePage", "1252");
  EXPECT_EQ(info->GetCodePage(), 1252);
  EXPECT_EQ(info->GetVersionInfoKeys(), "ProductName=Sample\r\n");
}

TEST_F(BuildAction, WebDAVPasswordIsKeptEncrypted) {
  a->SetPropValue("WebDAVPassword", "s3cret!");
  std::string stored = a->GetPropValue("_WebDAVPassword");
  EXPECT_NE(stored, "s3cret!");
  EXPECT_EQ(stored, ctx->EncryptPassword("s3cret!"));
  EXPECT_EQ(a->GetPropValue("WebDAVPassword"), "s3cret!");
  a->SetPropValue("WebDAVPassword", "");
  EXPECT_EQ(a->GetPropValue("_WebDAVPassword"), "");
}

TEST_F(BuildAction, SolutionLookups) {
  ctx->Variables["Examples"] = kExamples;
  a->SetPropValue("Solution", "%Examples%/vs2008/Greeting.sln");
  const std::string lib = "{B619F5A1-72FB-4CD2-99D8-689E287A4734}";
  EXPECT_EQ(a->GetAllSolutionConfigurations(), "Debug|Any CPU\r\nRelease|Any CPU\r\n");
  EXPECT_EQ(a->GetPropValue("AllSolutionConfigurations"), "Debug|Any CPU\r\nRelease|Any CPU\r\n");
  EXPECT_EQ(a->GetProjectID("Greeting.Lib"), lib);
  EXPECT_EQ(a->GetProjectID("Greeting.Lib\\Greeting.Lib.csproj"), lib);
  EXPECT_EQ(a->GetProjectID(kExamples + "/vs2008/Greeting.Lib\\Greeting.Lib.csproj"), lib)
      << "the solution folder is removed from a full path";
  EXPECT_EQ(a->GetProjectID("Somewhere\\Greeting.Lib.csproj"), lib) << "by file name";
  EXPECT_EQ(a->GetProjectID("greeting.lib"), "") << "names compare exactly";
  EXPECT_EQ(a->GetProjectName(lib), "Greeting.Lib");
  EXPECT_EQ(a->GetProjectPath(lib), "Greeting.Lib\\Greeting.Lib.csproj");
  EXPECT_EQ(a->GetProjectName("{00000000-0000-0000-0000-000000000000}"), "");
  a->SetPropValue("Solution", "/nonexistent.sln");
  EXPECT_EQ(a->GetPropValue("AllSolutionConfigurations"), "");
}

}  // namespace
