#include <gtest/gtest.h>

#include <filesystem>

#include "QvPlatform.h"
#include "QvUtils.h"
#include "Qvvsdotnetaction.h"
#include "Qvvsdotnetoptions.h"
#include "support/ErrorOf.h"
#include "support/FakeDotNetInfo.h"
#include "support/RecordingActionContext.h"
#include "support/RecordingServices.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::RecordingActionContext;

namespace {

const std::string kDelim(1, platform::PathDelim);
const std::string kA = "{AAAAAAAA-0000-0000-0000-000000000001}";
const std::string kB = "{BBBBBBBB-0000-0000-0000-000000000002}";
const std::string kC = "{CCCCCCCC-0000-0000-0000-000000000003}";
const std::string kS = "{DDDDDDDD-0000-0000-0000-000000000004}";

// A copy of fixtures/build-app: a solution src/App.sln with projects A (depends on C), B,
// C and a setup project, devenv.com in VS71/ and MSBuild.exe in fx/; and an action bound to
// a recording context whose processes replay scripts.
struct BuildFixture {
  qvtest::TempDir dir;
  qvtest::RecordingServices services;
  qvtest::FakeDotNetInfo dotnet;
  IntfPtr<RecordingActionContext> ctx = RecordingActionContext::Create();
  std::vector<qvtest::ProcessRun>& runs = ctx->Runs;
  std::unique_ptr<TQvVSDotNetAction> action;
  std::string sln = dir.File("src/App.sln");

  BuildFixture() {
    std::filesystem::copy(QV_FIXTURES_DIR "/build-app", dir.Path(),
                          std::filesystem::copy_options::recursive);
    RegisterOptions();
    VSDotNetOptions()->SetDevEnv2003Location(dir.File("VS71/"));
    dotnet.Folders["*"] = dir.File("fx");
    action = std::make_unique<TQvVSDotNetAction>();
    action->BindContext(ctx);
    Set({{"Solution", sln},
         {"SolutionConfiguration", "Release|Any CPU"},
         {"VStudioVersion", "vs2005"},
         {"StructuredOutput", "False"}});
  }

  void Set(const char* name, const std::string& value) { action->SetPropValue(name, value); }
  void Set(std::initializer_list<std::pair<const char*, std::string>> properties) {
    for (const auto& [name, value] : properties)
      Set(name, value);
  }
  std::string SlnDir() const { return dir.File("src/"); }
  std::vector<std::string> Params() const {
    std::vector<std::string> r;
    for (const auto& run : runs)
      r.push_back(run.params);
    return r;
  }
  std::vector<std::string> Errors() const {
    std::vector<std::string> r;
    for (const auto& m : ctx->Messages())
      if (m.starts_with("[3]")) r.push_back(m.substr(4));
    return r;
  }
};

std::string FailureOf(const std::function<void()>& fn) {
  return qvtest::ErrorOf<EFailAction>(fn);
}

// Each test of these suites runs in a fresh BuildFixture.
struct BuildTest : testing::Test, BuildFixture {};
using CompilerOutput = BuildTest;
using DevEnvCommandLine = BuildTest;
using Execute = BuildTest;
using MSBuildCommandLine = BuildTest;

// ---- command lines ----

TEST_F(DevEnvCommandLine, SolutionAndProjectBuilds) {
  Set({{"VStudioVersion", "vs2003"}, {"UseEnv", "True"}, {"ExtraCmdLineParams", "/out build.log"}});
  EXPECT_EQ(action->GetCommonDevEnvParams("Release", TVSDotNetBuildAction::baRebuild),
            "/useenv /rebuild \"Release\"");
  ASSERT_TRUE(action->Execute());
  // A selected project's name is turned into its identifier.
  Set({{"BuildType", "btSelectedProjects"},
       {"SelectedProjects", "B"},
       {"UseEnv", "False"},
       {"ExtraCmdLineParams", ""}});
  ASSERT_TRUE(action->Execute());
  EXPECT_EQ(Params(), (std::vector<std::string>{
                          "/out build.log /useenv /build \"Release|Any CPU\" \"" + sln + "\"",
                          "/build \"Release|Any CPU\"/project \"B\\B.csproj\" \"" + sln + "\""}));
  EXPECT_EQ(action->GetPropValue("SelectedProjects"), kB + "\r\n");
  EXPECT_EQ(runs[0].exe, dir.File("VS71/devenv.com"));
  EXPECT_EQ(runs[0].dir, SlnDir());
}

TEST_F(MSBuildCommandLine, PropertiesInOrderAndQuoted) {
  Set({{"VStudioVersion", "vs2008"},
       {"OverrideCompiler", "True"},
       {"CompilerConstants", "EXTRA"},
       {"DebugConstant", "True"},
       {"TraceConstant", "True"},
       {"OverrideWarnings", "True"},
       {"SelectedWarningsAsErrors", "True"},
       {"WarningsAsErrors", "1591;0618"},
       {"DisableSelectedWarnings", "True"},
       {"DisableWarnings", ""},
       {"OverrideTargetFramework", "True"},
       {"TargetFramework", "fx35"},
       {"OverrideReferencePaths", "True"},
       {"ReferencePaths", "C:\\Refs\nD:\\My Refs\n"},
       {"UseEnv", "True"},
       {"OutputDirectory", "/out"},
       {"ExtraMSBuildProperties", "SignAssembly=true\nKeyFile=a;b.snk\n\nEmptyOne"},
       {"LogLevel", "Minimal"},
       {"MaxCPUs", "2"}});
  EXPECT_EQ(action->GetCommonMSBuildParams("Debug|Any CPU", false, TVSDotNetBuildAction::baClean),
            "/t:Clean /p:Configuration=Debug;Platform=\"Any CPU\";"
            "DefineConstants=EXTRA%3BDEBUG%3BTRACE;Optimize=False;AllowUnsafeBlocks=False;"
            "WarningLevel=4;TreatWarningsAsErrors=False;WarningsAsErrors=1591%3B0618;"
            "TargetFramework=\"v3.5\";ReferencePath=\"C:\\Refs%3BD:\\My Refs\";useenv=1;"
            "OutDir=/out" +
                kDelim + ";SignAssembly=true;KeyFile=a%3Bb.snk;EmptyOne= /v:minimal /m:2");
  EXPECT_EQ(ctx->Transcript().substr(0, 107),
            "> MSBuild Properties (type 2) [0]\n  [0] Configuration=Debug\n  [0] Platform=\"Any "
            "CPU\"\n  [0] DefineConstants=");
}

TEST_F(MSBuildCommandLine, EdgeCases) {
  auto params = [&](const std::string& config, bool anyCPU = false) {
    return action->GetCommonMSBuildParams(config, anyCPU, TVSDotNetBuildAction::baBuild);
  };
  EXPECT_EQ(params("Debug"), "/t:Build /p:Configuration=Debug /v:normal");
  EXPECT_EQ(params("Debug|Any CPU", true),
            "/t:Build /p:Configuration=Debug;Platform=AnyCPU /v:normal");
  ctx->Log.clear();
  EXPECT_EQ(params(""), "/t:Build /v:normal") << "no entries: no /p: and no group";
  EXPECT_TRUE(ctx->Log.empty());

  // vs2005: neither the target framework nor /m, whatever the settings say.
  Set({{"OverrideTargetFramework", "True"}, {"MaxCPUs", "0"}});
  EXPECT_EQ(params("Debug"), "/t:Build /p:Configuration=Debug /v:normal");
  Set("VStudioVersion", "vs2008");
  EXPECT_EQ(params("Debug"),
            "/t:Build /p:Configuration=Debug;TargetFramework=\"v2.0\" /v:normal /m");

  // All warnings as errors: the selected list is neither expanded nor checked.
  Set({{"OverrideWarnings", "True"},
       {"AllWarningsAsErrors", "True"},
       {"SelectedWarningsAsErrors", "True"},
       {"WarningsAsErrors", "%Undefined%"},
       {"OverrideTargetFramework", "False"},
       {"LogLevel", "Diagnostic"}});
  EXPECT_EQ(
      params("R"),
      "/t:Build /p:Configuration=R;WarningLevel=4;TreatWarningsAsErrors=True /v:diagnostic /m");
}

TEST_F(MSBuildCommandLine, FailuresNameTheSetting) {
  const std::pair<const char*, const char*> on[] = {{"OverrideWarnings", "True"},
                                                    {"SelectedWarningsAsErrors", "True"},
                                                    {"DisableSelectedWarnings", "True"},
                                                    {"OverrideCompiler", "True"},
                                                    {"OverrideReferencePaths", "True"}};
  const std::pair<std::pair<const char*, const char*>, std::string> cases[] = {
      {{"WarningsAsErrors", "1591,0618"},
       "Warnings As Errors list \"1591,0618\" is not valid. Only warning numbers, separated by "
       "semicolons, can be specified."},
      {{"DisableWarnings", "CS1591"},
       "Disabled Warnings list \"CS1591\" is not valid. Only warning numbers, separated by "
       "semicolons, can be specified."},
      {{"CompilerConstants", "%Nope%"}, "Failed to expand compiler constants."},
      {{"WarningsAsErrors", "%Nope%"}, "Unable to expand list of warnings to treat as errors."},
      {{"DisableWarnings", "%Nope%"}, "Unable to expand list of disabled warnings"},
      {{"ReferencePaths", "%Nope%"}, "Failed to expand Reference Paths list"},
      {{"OutputDirectory", "%Nope%"}, "Failed to expand output directory"},
      {{"ExtraMSBuildProperties", "A=%Nope%"},
       "Failed to Extra MSBuild Properties: Variable \"Nope\" is not defined"},
  };
  for (const auto& [property, failure] : cases) {
    BuildFixture f;  // every switch on, every other value valid
    for (auto [name, value] : on)
      f.Set(name, value);
    f.Set(property.first, property.second);
    EXPECT_EQ(FailureOf([&] {
                f.action->GetCommonMSBuildParams("Debug", false, TVSDotNetBuildAction::baBuild);
              }),
              failure);
  }
}

TEST_F(MSBuildCommandLine, LoggerSwitchWhenTheAssemblyIsInstalled) {
  std::string logger = GetQvAppPath() + "Quorvex.MSBuild.Tasks.dll";
  if (!std::filesystem::exists(logger)) GTEST_SKIP() << "the logger assembly is not built here";
  Set("StructuredOutput", "True");
  EXPECT_EQ(action->GetCommonMSBuildParams("Debug", false, TVSDotNetBuildAction::baRebuild),
            "/t:Rebuild /logger:\"" + logger + "\" /noconlog /p:Configuration=Debug /v:normal");
}

// ---- output reading ----

TEST_F(CompilerOutput, DevEnvSummaryMetricsAndFailedProjects) {
  Set("VStudioVersion", "vs2003");
  action->OnStdOutData(
      nullptr,
      "Compile complete -- 2 errors, 0 warnings\r\nBuild complete -- 0 errors, 7 warnings\n");
  EXPECT_EQ(ctx->Metrics, (std::vector<qvtest::Metric>{{"Compiler", "Errors", 2},
                                                       {"Compiler", "Warnings", 0},
                                                       {"Compiler", "Errors", 0},
                                                       {"Compiler", "Warnings", 7}}));
  EXPECT_FALSE(action->ProjectsFailed());
  action->OnStdOutData(nullptr,
                       "---------------------- Done ----------------------\r\n\r\n    Build: 2 "
                       "succeeded, 0 failed, 0 skipped\r\n");
  EXPECT_FALSE(action->ProjectsFailed());
  action->OnStdOutData(nullptr, "    Build: 1 succeeded, 10 failed, 0 skipped\r\n");
  EXPECT_TRUE(action->ProjectsFailed());
  action->OnStdOutData(nullptr, "    Build: 2 succeeded, 0 failed, 0 skipped\r\n");
  EXPECT_TRUE(action->ProjectsFailed()) << "stays set for the run";

  BuildFixture f2008;
  f2008.Set({{"VStudioVersion", "vs2008"}, {"UseMSBuild", "False"}});
  f2008.action->OnStdOutData(nullptr, "Build: 1 succeeded, 1 failed, 0 skipped");
  EXPECT_FALSE(f2008.action->ProjectsFailed()) << "only 2002 and 2003 are watched";
}

TEST_F(CompilerOutput, MSBuildConsoleSummaryAndStandardError) {
  action->OnStdOutData(nullptr,
                       "Build succeeded.\n\t 3 Warning(s)\n\t 0 Error(s)\nTime Elapsed 00:00:01\n");
  action->OnStdErrData(nullptr, "error: something\nbad\n");
  EXPECT_EQ(ctx->Messages(), (std::vector<std::string>{
                                 "[1] Build succeeded.", "[2] \t 3 Warning(s)", "[3] \t 0 Error(s)",
                                 "[0] Time Elapsed 00:00:01", "[0] error: something\nbad\n"}));
  EXPECT_EQ(ctx->Metrics,
            (std::vector<qvtest::Metric>{{"Compiler", "Warnings", 3}, {"Compiler", "Errors", 0}}));
}

// ---- execution ----

TEST_F(Execute, SelectedProjectsBuildInDependencyOrder) {
  Set({{"BuildType", "btSelectedProjects"}, {"SelectedProjects", kA + "\n" + kC}});
  ASSERT_TRUE(action->Execute());
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(runs[0].params,
            "/t:Build /p:Configuration=Release;Platform=\"Any CPU\" /v:normal \"C\\C.csproj\"");
  EXPECT_EQ(runs[1].params,
            "/t:Build /p:Configuration=Release;Platform=\"Any CPU\" /v:normal \"A\\A.csproj\"");
  EXPECT_EQ(runs[0].exe, dir.File("fx/MSBuild.exe"));
  EXPECT_EQ(ctx->Messages()[0], "[0] Processing Project : C");
  EXPECT_EQ(ctx->Messages()[1],
            "[0] Building project configuration \"Release|Any CPU\" for solution configuration "
            "\"Release|Any CPU\"");
}

TEST_F(Execute, ProjectFileSpellingDecidesAnyCPU) {
  Set({{"BuildType", "btSelectedProjects"}, {"SelectedProjects", kB}});
  ASSERT_TRUE(action->Execute());
  EXPECT_EQ(Params(),
            std::vector<std::string>{
                "/t:Build /p:Configuration=Release;Platform=AnyCPU /v:normal \"B\\B.csproj\""});
  dir.Write("src/B/B.csproj", "'Release|AnyCPU' and 'Release|Any CPU'");
  runs.clear();
  ASSERT_TRUE(action->Execute());
  EXPECT_EQ(
      Params(),
      std::vector<std::string>{
          "/t:Build /p:Configuration=Release;Platform=\"Any CPU\" /v:normal \"B\\B.csproj\""});
}

TEST_F(Execute, RebuildCleansEverythingFirstAndStopsWhenACleanFails) {
  Set({{"BuildType", "btSelectedProjects"},
       {"SelectedProjects", kA + "\n" + kC},
       {"BuildAction", "baRebuild"}});
  ASSERT_TRUE(action->Execute());
  std::vector<std::string> targets;
  for (const auto& p : Params())
    targets.push_back(p.substr(0, p.find(' ')) + p.substr(p.rfind(' ')));
  EXPECT_EQ(targets,
            (std::vector<std::string>{"/t:Clean \"C\\C.csproj\"", "/t:Clean \"A\\A.csproj\"",
                                      "/t:Build \"C\\C.csproj\"", "/t:Build \"A\\A.csproj\""}));
  EXPECT_EQ(ctx->Log[0].text, "Cleaning Projects");

  runs.clear();
  ctx->Scripts = {{{}, 1}};
  EXPECT_FALSE(action->Execute());
  EXPECT_EQ(runs.size(), 1u) << "a failed clean stops everything";
  EXPECT_EQ(Errors().back(), "MSBuild.exe returned Error code : 1");
}

TEST_F(Execute, SelectionProblems) {
  Set("BuildType", "btSelectedProjects");
  EXPECT_FALSE(action->Execute());
  EXPECT_EQ(Errors(), std::vector<std::string>{"No Projects selected to build"});
  Set("SelectedProjects", kA + "\n{EEEEEEEE-0000-0000-0000-000000000009}");
  EXPECT_FALSE(action->Execute());
  EXPECT_EQ(Errors().back(),
            "A Project selected is no longer part of this solution, please open the action "
            "properties dialog and select the correct projects");
  EXPECT_TRUE(runs.empty());
}

TEST_F(Execute, EveryProjectOneByOneStopsAtTheFirstFailure) {
  Set({{"BuildType", "btIncludeDisabledProjects"}, {"SolutionConfiguration", "Debug|Any CPU"}});
  EXPECT_EQ(FailureOf([&] { action->Execute(); }),
            "Project \"C\" is not built in solution configuration Debug|Any CPU");

  Set("SolutionConfiguration", "Release|Any CPU");
  ctx->Scripts = {{}, {{}, 2}};
  EXPECT_FALSE(action->Execute());
  EXPECT_EQ(runs.size(), 2u) << "C, then B fails; A and Setup are not built";
  EXPECT_EQ(ctx->Transcript().find("Project A"), std::string::npos);
  EXPECT_EQ(ctx->Transcript().find("Project Setup"), std::string::npos);
}

TEST_F(Execute, SetupProjectsFallBackToDevEnv) {
  Set({{"BuildType", "btSelectedProjects"}, {"SelectedProjects", kS}});
  VSDotNetOptions()->SetDevEnv2005Location(dir.File("VS71"));
  ASSERT_TRUE(action->Execute());
  EXPECT_EQ(ctx->Messages()[0],
            "[2] Warning : Setup project Setup cannot be built with MSBuild. This project will be "
            "built with VisualStudio instead.");
  EXPECT_EQ(runs[0].exe, dir.File("VS71/devenv.com"));
  EXPECT_EQ(runs[0].params,
            "/build \"Release|Any CPU\"/project \"Setup\\Setup.vdproj\" \"" + sln + "\"");
}

TEST_F(Execute, RunResults) {
  struct Case {
    const char* version;
    qvtest::ProcessScript script;
    bool ok;
    std::string lastError;
  } cases[] = {
      {"vs2003",
       {{"Build: 1 succeeded, 1 failed, 0 skipped\r\n"}, 0},
       false,
       "One or more projects failed to build."},
      {"vs2003", {{}, kTerminatedExitCode}, false, "Action Terminated by User."},
      {"vs2003", {{}, 3}, false, "devenv.com returned Error code : 3"},
      {"vs2003", {{}, 0, false}, false, ""},
      {"vs2003", {{"Build: 1 succeeded, 0 failed, 0 skipped\r\n"}, 0}, true, ""},
  };
  for (const auto& c : cases) {
    BuildFixture f;
    f.Set("VStudioVersion", c.version);
    f.ctx->Scripts = {c.script};
    EXPECT_EQ(f.action->Execute(), c.ok) << c.lastError;
    auto errors = f.Errors();
    EXPECT_EQ(errors.empty() ? "" : errors.back(), c.lastError);
  }
}

TEST_F(Execute, FailuresBeforeTheBuild) {
  Set("Solution", dir.File("missing.sln"));
  EXPECT_EQ(FailureOf([&] { action->Execute(); }),
            "Solution File \"" + dir.File("missing.sln") + "\" does not exist");
  Set("Solution", dir.Write("bad.sln", "nonsense\r\n"));
  EXPECT_EQ(FailureOf([&] { action->Execute(); }),
            "Error Parsing Solution File : Invalid Visual Studio Solution Header : nonsense");
  Set("Solution", "%Missing%");
  EXPECT_EQ(FailureOf([&] { action->Execute(); }), "Failed to expand solution file name.");
  Set("Solution", sln);
  // A failed stamping step ends the run before any build.
  Set("UpdateAssemblyInfo", "True");
  Set("UseDotNetPropertySet", "True");
  EXPECT_FALSE(action->Execute());
  EXPECT_EQ(Errors().back(), "DotNet PropertySet name is blank");
  Set("UpdateAssemblyInfo", "False");

  dotnet.Folders.clear();
  EXPECT_FALSE(action->Execute());
  EXPECT_EQ(Errors().back(), ".NET Framework not found.");
  Set({{"VStudioVersion", "vs2008"}, {"UseMSBuild", "False"}});
  EXPECT_EQ(FailureOf([&] { action->Execute(); }),
            "Executable not found : " + kDelim + "devenv.com");
  Set("SolutionConfiguration", "%Nope%");
  EXPECT_FALSE(action->Execute());
  EXPECT_TRUE(runs.empty());
}

TEST_F(Execute, StructuredOutputMetricsAreSentEvenWhenTheBuildFails) {
  Set("StructuredOutput", "True");
  ctx->Scripts = {{{"a.cs(1,1): error CS0001: broken\n"}, 1}};
  EXPECT_FALSE(action->Execute());
  ASSERT_GE(ctx->Metrics.size(), 2u);
  EXPECT_EQ(ctx->Metrics[ctx->Metrics.size() - 2].name, "Errors");
  EXPECT_EQ(ctx->Metrics.back().name, "Warnings");
}

}  // namespace
