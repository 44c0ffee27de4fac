#include "Qvmstestaction.h"

#include <gtest/gtest.h>

#include "QvProcess.h"
#include "support/RecordingActionContext.h"
#include "support/RecordingServices.h"
#include "support/TempDir.h"

using namespace qv;

namespace {

// Options that know where Visual Studio.NET 2008 and the standalone runner live, and an action
// bound to a recording context.
class MSTest : public testing::Test {
 protected:
  qvtest::RecordingServices services;
  qvtest::TempDir dir;
  IntfPtr<qvtest::RecordingActionContext> ctx = qvtest::RecordingActionContext::Create();
  IntfPtr<IQvVSDotNetOptions> options;
  std::unique_ptr<TQvMSTestAction> a;
  MSTest() {
    RegisterOptions();
    options = VSDotNetOptions();
    options->SetDevEnv2008Location(dir.File("VS9/"));
    dir.Write("VS9/MSTest.exe", "");
    options->SetDefaultVSVersion(3);
    NewAction();
  }
  void NewAction() {
    a = std::make_unique<TQvMSTestAction>();
    a->BindContext(ctx);
    a->SetPropValue("AssemblyFileName", "C:\\Build\\Greeting.Tests.dll");
  }
  // The command line, or "(not run)" when the action would not run.
  std::string CommandLine() {
    IntfPtr<ICommandLineBuilder> b = NewCommandLineBuilder();
    return a->GetCommandLine(b.Get()) ? b->GetCommandLine() : "(not run)";
  }
  // Validation errors, one "section|message" line each, "|options" added when the options
  // can fix them.
  std::string Validation() {
    struct Sink : TInterfacedObject, IQvActionValidationError {
      std::string Lines;
      void AddError(const std::string& s, const std::string& m, IInterface* e) override {
        Lines += s + "|" + m + (e ? "|options\n" : "\n");
      }
    };
    IntfPtr<Sink> sink(new Sink);
    a->Validate(sink.Get());
    return sink->Lines;
  }
};

TEST_F(MSTest, VersionFromTheOptionsAndWhereItRuns) {
  const std::pair<uint8_t, const char*> versions[] = {
      {1, "vs2005"}, {3, "vs2008"}, {4, "vsUnknown"}};
  for (auto [stored, expected] : versions) {
    options->SetDefaultVSVersion(stored);
    EXPECT_EQ(TQvMSTestAction().GetPropValue("VisualStudioVer"), expected);
  }
  EXPECT_EQ(a->GetFormattedDescription(), "Run MSTest [ C:\\Build\\Greeting.Tests.dll ]");
  EXPECT_EQ(a->GetExecutable(), dir.File("VS9/MSTest.exe"));
  EXPECT_EQ(a->GetStartingDir(), "C:\\Build\\");
  ctx->Scripts = {{{}, 1}};
  EXPECT_FALSE(a->Execute()) << "MSTest.exe's failure fails the action";
}

TEST_F(MSTest, CommandLinesInTheirFixedOrder) {
  // Each case sets its "Name=Value" properties on a new action.
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{}, "/testcontainer:C:\\Build\\Greeting.Tests.dll /nologo"},
      {{"SpecifyTestList=True", "TestList=Nightly", "ShowBanner=True"},
       "/testcontainer:C:\\Build\\Greeting.Tests.dll"},
      {{"UseMetadataFile=True", "MetadataFile=Greeting.vsmdi", "SpecifyTestList=True",
        "TestList=List A,\"List B\"", "OutputFileName=out dir\\r.trx",
        "ConfigFileName=local.testrunconfig"},
       "/testmetadata:Greeting.vsmdi /resultsfile:\"out dir\\r.trx\" "
       "/runconfig:local.testrunconfig /testlist:List /testlist:A /testlist:\"List B\" /nologo"},
      {{"SpecifyTests=True", "Tests=TestA, TestB My\\"},
       "/testcontainer:C:\\Build\\Greeting.Tests.dll /test:TestA /test:TestB /test:My\\ /nologo"},
      {{"PublishMode=pbSpecify", "TeamServer=http://tfs:8080", "TeamProject=Greeting",
        "BuildId=Nightly_1"},
       "/testcontainer:C:\\Build\\Greeting.Tests.dll /nologo /publish:http://tfs:8080 "
       "/teamproject:Greeting /publishbuild:Nightly_1 /flavor:Quorvex /platform:\"Any CPU\""},
      {{"AssemblyFileName=%Missing%"}, "(not run)"},
  };
  for (const auto& [props, line] : cases) {
    NewAction();
    for (const std::string& p : props)
      a->SetPropValue(p.substr(0, p.find('=')), p.substr(p.find('=') + 1));
    EXPECT_EQ(CommandLine(), line);
  }
}

TEST_F(MSTest, TeamBuildVariablesAndMetrics) {
  ctx->Variables["_envTeamServer"] = "http://tfs:8080";
  EXPECT_EQ(CommandLine(), "/testcontainer:C:\\Build\\Greeting.Tests.dll /nologo");
  EXPECT_EQ(ctx->Messages().back(),
            "[2] Warning : It appears that this project is running under Team Build, but not "
            "all Team Build parameters are available");
  // "N test(s) Passed" without a slash: N is the total, none counted as passed.
  a->OnStdOutData(nullptr, "Passed  T1\r\n7/9 test(s) Passed, 2 Failed\r\n5 test(s) Passed\r\n");
  EXPECT_EQ(ctx->Metrics, (std::vector<qvtest::Metric>{{"Unit_Tests", "Tests_Successful", 7},
                                                       {"Unit_Tests", "Tests_Failed", 2},
                                                       {"Unit_Tests", "Tests_Successful", 0},
                                                       {"Unit_Tests", "Tests_Failed", 5}}));
  for (const char* v :
       {"_envTeamProject", "_envTeamBuildId", "_envBuildPlatform", "_envBuildFlavor"})
    ctx->Variables[v] = std::string(v).substr(4);
  EXPECT_EQ(CommandLine(),
            "/testcontainer:C:\\Build\\Greeting.Tests.dll /nologo /publish:http://tfs:8080 "
            "/teamproject:TeamProject /publishbuild:TeamBuildId /flavor:BuildFlavor "
            "/platform:BuildPlatform");
  EXPECT_EQ(
      ctx->Messages().back(),
      "[0] Results will be published to Team Project TeamProject on http://tfs:8080, Build Id "
      "TeamBuildId (BuildFlavor/BuildPlatform)");
  ctx->Metrics.clear();
  a->OnStdOutData(nullptr, "1/1 test(s) Passed\r\n");
  EXPECT_TRUE(a->AutoPublishing() && ctx->Metrics.empty());
}

TEST_F(MSTest, ValidationReportsOneProblemPerPair) {
  EXPECT_EQ(Validation(), "");
  a->SetPropValue("AssemblyFileName", "");
  options->SetDevEnv2008Location(dir.File("Elsewhere"));
  EXPECT_EQ(Validation(),
            "VisualStudio.NET Options|MSTest.exe not found in Visual Studio.NET 2008 "
            "directory.|options\nAssembly Filename|Assembly Filename is blank\n");
  options->SetDevEnv2008Location("");
  a->SetPropValue("UseMetadataFile", "True");
  EXPECT_EQ(Validation(),
            "VisualStudio.NET Options|Path to Visual Studio.NET 2008 not set|options\n"
            "Metadata File|A metadata file must be specified.\n");
  a->SetPropValue("MetadataFile", "x.vsmdi");
  a->SetPropValue("UseStandaloneMSTest", "True");
  EXPECT_EQ(
      Validation(),
      "Standalone MSTest Path|No path to a standalone MSTest installation was found|options\n");
  options->SetStandaloneMSTestDir(dir.Path());
  EXPECT_EQ(Validation(),
            "Standalone MSTest Path|MSTest.exe not found in \"" + dir.Path() + "\"|options\n");
}

}  // namespace
