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

// A host with registered options, and an action `a` bound to a recording context.
class BuildAction : public testing::Test {
 protected:
  qvtest::RecordingServices services;
  qvtest::FakeDotNetInfo dotnet;
  IntfPtr<RecordingActionContext> ctx = RecordingActionContext::Create();
  std::unique_ptr<TQvVSDotNetAction> a;
  BuildAction() {
    RegisterOptions();
    VSDotNetOptions()->SetDefaultVSVersion(static_cast<uint8_t>(TVSDotNetVersion::vs2003));
    a = std::make_unique<TQvVSDotNetAction>();
    a->BindContext(ctx);
  }
  // Validation errors as "section|message" lines, "|options" added when the options can
  // fix them.
  std::vector<std::string> Validate() {
    struct Sink : TInterfacedObject, IQvActionValidationError {
      std::vector<std::string> Errors;
      void AddError(const std::string& s, const std::string& m, IInterface* edit) override {
        Errors.push_back(s + "|" + m + (edit ? "|options" : ""));
      }
    };
    IntfPtr<Sink> sink(new Sink);
    bool ok = a->Validate(sink.Get());
    EXPECT_EQ(ok, sink->Errors.empty());
    return sink->Errors;
  }
};

TEST_F(BuildAction, ValidationReportsEveryProblem) {
  qvtest::TempDir dir;
  // A new action builds with the options' default edition, vs2003, which builds with devenv
  // although UseMSBuild stays on.
  EXPECT_EQ(Validate(), (std::vector<std::string>{
                            "Solution file|A solution file has not been set",
                            "VisualStudio.NET Options|Visual Studio installation not found : " +
                                kDelim + "devenv.com|options"}));

  a->SetPropValue("Solution", "x.sln");
  VSDotNetOptions()->SetDevEnv2003Location(dir.Path());
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
}

TEST_F(BuildAction, VersionTextsSplitAndRebuild) {
  a->SetPropValue("AssemblyVersion", "1|2|3|4");
  a->SetPropValue("AssemblyVersion", "7|8");  // missing pieces leave the old parts
  EXPECT_EQ(a->GetPropValue("AssemblyVersionMajor"), "7");
  EXPECT_EQ(a->GetPropValue("AssemblyVersionRevision"), "4");
  EXPECT_EQ(a->GetPropValue("AssemblyVersion"), "7|8") << "the whole text is kept as set";
  a->SetPropValue("AssemblyVersionMinor", "*");
  EXPECT_EQ(a->GetPropValue("AssemblyVersion"), "7|*|3|4");
  a->SetPropValue("AssemblyFileVersion", "1|0|%Build%|0|extra");
  a->SetPropValue("AssemblyFileVersionRevision", "9");
  EXPECT_EQ(a->GetPropValue("AssemblyFileVersion"), "1|0|%Build%|9");

  // Reading the file version's build part rebuilds the assembly version (not the file one).
  a->SetPropValue("AssemblyVersion", "1|2|3|4|5");
  a->SetPropValue("AssemblyFileVersion", "6|6|6|6|6");
  EXPECT_EQ(a->GetPropValue("AssemblyFileVersionBuild"), "6");
  EXPECT_EQ(a->GetPropValue("AssemblyVersion"), "1|2|3|4");
  EXPECT_EQ(a->GetPropValue("AssemblyFileVersion"), "6|6|6|6|6");
  EXPECT_EQ(a->GetPropValue("AssemblyInfo"), "1.2.3.4");
}

TEST_F(BuildAction, AutoIncrementSwitchesRegisterDynamicProperties) {
  const std::pair<std::string, std::vector<std::string>> steps[] = {
      {"AutoIncBuild=True", {"+BuildVersion"}},
      {"AutoIncBuild=False", {"-BuildVersion"}},
      {"AutoIncAssemblyBuildNumber=True", {"+AssemblyVersionBuild"}},
      {"AutoIncAssemblyRevisionNo=True", {"+AssemblyVersion"}},
      {"AutoIncAssemblyBuildNumber=False", {}},  // the revision switch is still on
      {"AutoIncAssemblyRevisionNo=False", {"-AssemblyVersion"}},
      {"AutoIncAssemblyFileBuildNumber=True", {"+AssemblyFileVersion"}},
      {"AutoIncAssemblyFileRevisionNo=True", {"+AssemblyFileVersion"}},
      {"AutoIncAssemblyFileRevisionNo=False", {}},
      {"AutoIncAssemblyFileBuildNumber=False", {"-AssemblyFileVersion"}},
  };
  for (const auto& [setting, calls] : steps) {
    size_t eq = setting.find('=');
    ctx->DynamicPropertyCalls.clear();
    a->SetPropValue(setting.substr(0, eq), setting.substr(eq + 1));
    EXPECT_EQ(ctx->DynamicPropertyCalls, calls) << setting;
  }
}

// (The page that edits it shows it decrypted and stores it encrypted.)
TEST_F(BuildAction, WebDAVPasswordIsKeptEncrypted) {
  a->SetPropValue("WebDAVPassword", "s3cret!");
  a->SetPropValue("WebDAVPassword", "");
  EXPECT_EQ(a->GetPropValue("_WebDAVPassword"), "");
  EXPECT_FALSE(TQvVSDotNetAction::PropertyTable.Find("WebDAVPassword")->Stored)
      << "never saved in plain text";
}

// (Lookups by name and identifier are also the script methods the package registers.)
TEST_F(BuildAction, DescriptionAndSolutionLookups) {
  ctx->Variables["Examples"] = kExamples;
  a->SetPropValue("Solution", "%Examples%/vs2008/Greeting.sln");
  EXPECT_EQ(a->GetFormattedDescription(),
            "Build VS.Net Solution [ %Examples%/vs2008/Greeting.sln ]");
  const std::string lib = "{B619F5A1-72FB-4CD2-99D8-689E287A4734}";
  EXPECT_EQ(a->GetPropValue("AllSolutionConfigurations"), "Debug|Any CPU\r\nRelease|Any CPU\r\n");
  EXPECT_EQ(a->GetProjectID("Greeting.Lib\\Greeting.Lib.csproj"), lib);
  EXPECT_EQ(a->GetProjectID(kExamples + "/vs2008/Greeting.Lib\\Greeting.Lib.csproj"), lib)
      << "the solution folder is removed from a full path";
  EXPECT_EQ(a->GetProjectID("Somewhere\\Greeting.Lib.csproj"), lib) << "by file name";
  EXPECT_EQ(a->GetProjectID("greeting.lib"), "") << "names compare exactly";
  EXPECT_EQ(a->GetProjectName("{00000000-0000-0000-0000-000000000000}"), "");
  a->SetPropValue("Solution", "/nonexistent.sln");
  EXPECT_EQ(a->GetPropValue("AllSolutionConfigurations"), "");
}

}  // namespace
