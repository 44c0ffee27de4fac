#include "Qvvsdotnetaction.h"

#include <gtest/gtest.h>

#include <map>

#include "QvExceptions.h"
#include "Qvvsdotnetoptions.h"
#include "support/RecordingActionContext.h"
#include "support/RecordingServices.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::RecordingActionContext;

namespace {

const std::string kExamples = QV_EXAMPLES_DIR;

// Framework folders by version text, as a host would report them.
struct FakeDotNetInfo : IQvDotNetInfo {
  std::map<std::string, std::string> Folders;
  IQvDotNetInfo* Saved = QvDotNetInfo;
  FakeDotNetInfo() { QvDotNetInfo = this; }
  ~FakeDotNetInfo() { QvDotNetInfo = Saved; }
  IntfPtr<IQvDotNetFramework> GetFramework(const std::string& version) override {
    auto it = Folders.find(version);
    return it == Folders.end() ? nullptr : NewDotNetFramework(version, it->second);
  }
};

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

// A host with registered options and a bound recording context.
struct Host {
  qvtest::RecordingServices services;
  FakeDotNetInfo dotnet;
  IntfPtr<RecordingActionContext> ctx = RecordingActionContext::Create();
  IntfPtr<IQvVSDotNetOptions> options;
  Host() {
    RegisterOptions();
    options = VSDotNetOptions();
  }
  std::unique_ptr<TQvVSDotNetAction> NewAction() {
    auto a = std::make_unique<TQvVSDotNetAction>();
    a->BindContext(ctx);
    return a;
  }
  std::vector<std::string> Validate(TQvVSDotNetAction& a) {
    IntfPtr<ValidationSink> sink(new ValidationSink);
    bool ok = a.Validate(sink.Get());
    EXPECT_EQ(ok, sink->Errors.empty());
    return sink->Errors;
  }
};

TEST(BuildAction, NewActionDefaults) {
  Host host;
  host.options->SetDefaultVSVersion(static_cast<uint8_t>(TVSDotNetVersion::vs2003));
  auto a = host.NewAction();
  std::map<std::string, std::string> expected = {{"UseMSBuild", "True"},
                                                 {"StructuredOutput", "True"},
                                                 {"WarningLevel", "4"},
                                                 {"LogLevel", "Normal"},
                                                 {"SharePath", "wwwroot$"},
                                                 {"WMIWebsiteNum", "1"},
                                                 {"VStudioVersion", "vs2003"},
                                                 {"AssemblyVersion", "|||"},
                                                 {"AssemblyFileVersion", "|||"},
                                                 {"BuildType", "btAllProjects"},
                                                 {"BuildAction", "baBuild"},
                                                 {"TargetFramework", "fx20"},
                                                 {"ProjLocationDetectMethod", "useWMI"},
                                                 {"SelectedProjects", ""},
                                                 {"Solution", ""}};
  for (const auto& [name, value] : expected)
    EXPECT_EQ(a->GetPropValue(name), value) << name;
  // Every fixed default in the table is what a new action holds.
  for (const auto* d : TQvVSDotNetAction::PropertyTable.All()) {
    if (d->Default && d->Type != TPropType::StringList && d->Stored) {
      EXPECT_EQ(TQvPersistent::GetPropText(*a, *d), d->Default) << d->Name;
    }
  }
}

TEST(BuildAction, PublishedPropertiesInDeclarationOrder) {
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

TEST(BuildAction, IdentityAndInspectorLists) {
  Host host;
  auto a = host.NewAction();
  a->SetPropValue("Solution", "%Root%\\App.sln");
  EXPECT_EQ(a->GetFormattedDescription(), "Build VS.Net Solution [ %Root%\\App.sln ]");
  EXPECT_EQ(a->GetHelpTopicID(), 1300);
  EXPECT_EQ(a->GetQuickHelpFilename(), "Plugins\\VSDotNet.html");
  EXPECT_EQ(a->GetActionKeywords(), "VisualStudio");
  TStringList hidden, alias, help;
  a->GetHiddenProperties(hidden);
  a->GetPropertyAlias(alias);
  a->GetPropertyHelp(help);
  EXPECT_EQ(hidden.Count(), 59);
  EXPECT_EQ(hidden[0], "UpdateVersionComment");
  EXPECT_EQ(hidden[58], "_WebDAVPassword");
  EXPECT_EQ(alias.Text(),
            "[Solution]\r\nSolution=Solution\r\nSolutionConfiguration=SolutionConfiguration\r\n"
            "VStudioVersion=Visual Studio Version\r\nUseMSBuild=Use MSBuild\r\n[MSBuild]\r\n"
            "ExtraMSBuildProperties=Extra MSBuild Properties\r\n");
  EXPECT_EQ(help.Names(0), "ExtraMSBuildProperties");
  EXPECT_EQ(help.ValueFromIndex(0).substr(0, 45), "Properties in this list will be passed to MSB");
}

TEST(BuildAction, ValidationReportsEveryProblem) {
  Host host;
  qvtest::TempDir dir;
  auto a = host.NewAction();
  a->SetPropValue("VStudioVersion", "vs2003");  // UseMSBuild stays on but devenv builds
  EXPECT_EQ(
      host.Validate(*a),
      (std::vector<std::string>{
          "Solution file|A solution file has not been set",
          "VisualStudio.NET Options|Visual Studio installation not found : /devenv.com|options"}));

  a->SetPropValue("Solution", "x.sln");
  host.options->SetDevEnv2003Location(dir.Path());
  EXPECT_EQ(
      host.Validate(*a),
      std::vector<std::string>{"VisualStudio.NET Options|Visual Studio installation not found : " +
                               dir.Path() + "/devenv.com|options"});
  dir.Write("devenv.com", "");
  EXPECT_TRUE(host.Validate(*a).empty());

  a->SetPropValue("VStudioVersion", "vs2008");
  EXPECT_EQ(
      host.Validate(*a),
      std::vector<std::string>{
          ".NET Framework Settings|The selected version of the .NET Framework was not found."});
  host.dotnet.Folders["v3.5"] = dir.Path() + "/fx35";
  EXPECT_EQ(host.Validate(*a),
            std::vector<std::string>{"MSBuild Not Found|Executable not found : " + dir.Path() +
                                     "/fx35/MSBuild.exe|options"});
  dir.Write("fx35/MSBuild.exe", "");
  EXPECT_TRUE(host.Validate(*a).empty());
  EXPECT_EQ(a->GetExecutable(true), dir.Path() + "/fx35/MSBuild.exe");
  EXPECT_EQ(a->GetExecutable(false), "/devenv.com") << "no 2008 folder configured";
}

TEST(BuildAction, UsingMSBuildNeedsVs2005OrLater) {
  Host host;
  auto a = host.NewAction();
  for (auto [version, expected] : std::vector<std::pair<const char*, bool>>{{"vs2002", false},
                                                                            {"vs2003", false},
                                                                            {"vs2005", true},
                                                                            {"vs2008", true},
                                                                            {"vsUnknown", true}}) {
    a->SetPropValue("VStudioVersion", version);
    EXPECT_EQ(a->UsingMSBuild(), expected) << version;
  }
  a->SetPropValue("UseMSBuild", "False");
  EXPECT_FALSE(a->UsingMSBuild());
}

TEST(BuildAction, VersionTextsSplitAndRebuild) {
  Host host;
  auto a = host.NewAction();
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

TEST(BuildAction, AutoIncrementSwitchesRegisterDynamicProperties) {
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
  Host host;
  auto a = host.NewAction();
  for (const auto& s : steps) {
    host.ctx->DynamicPropertyCalls.clear();
    a->SetPropValue(s.property, s.value);
    EXPECT_EQ(host.ctx->DynamicPropertyCalls, s.calls) << s.property << "=" << s.value;
    EXPECT_EQ(a->GetPropValue(s.property), s.value);
  }
}

TEST(BuildAction, Win32StringTableEntries) {
  Host host;
  auto a = host.NewAction();
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

TEST(BuildAction, IsAVersionInfoObjectOverItsProperties) {
  Host host;
  auto a = host.NewAction();
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

TEST(BuildAction, WebDAVPasswordIsKeptEncrypted) {
  Host host;
  auto a = host.NewAction();
  a->SetPropValue("WebDAVPassword", "s3cret!");
  std::string stored = a->GetPropValue("_WebDAVPassword");
  EXPECT_NE(stored, "s3cret!");
  EXPECT_EQ(stored, host.ctx->EncryptPassword("s3cret!"));
  EXPECT_EQ(a->GetPropValue("WebDAVPassword"), "s3cret!");
  a->SetPropValue("WebDAVPassword", "");
  EXPECT_EQ(a->GetPropValue("_WebDAVPassword"), "");
}

TEST(BuildAction, SolutionLookups) {
  Host host;
  auto a = host.NewAction();
  host.ctx->Variables["Examples"] = kExamples;
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
