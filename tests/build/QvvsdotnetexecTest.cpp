#include <gtest/gtest.h>

#include <filesystem>

#include "QvPlatform.h"
#include "QvUtils.h"
#include "Qvmsbuildproperties.h"
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
const std::string kB = "{BBBBBBBB-0000-0000-0000-000000000002}";

std::string FailureOf(const std::function<void()>& fn) {
  return qvtest::ErrorOf<EFailAction>(fn);
}

// ---- the /p: properties ----

// The properties joined as /p: takes them, or the failure; "%Nope%" does not expand.
std::string Properties(const TMSBuildSettings& s) {
  auto expand = [](const char*, const std::string& text, const char* failure) {
    if (text.find("%Nope%") != std::string::npos) throw EFailAction(failure);
    return text;
  };
  std::string joined;
  try {
    for (const std::string& p :
         MSBuildProperties(s, "", false, expand, [](const std::string& text) { return text; }))
      joined += (joined.empty() ? "" : ";") + p;
  } catch (const EFailAction& e) {
    return e.what();
  }
  return joined;
}

TEST(MSBuildProperties, SwitchesThatGateOtherSettings) {
  TMSBuildSettings s;
  s.OverrideWarnings = s.AllWarningsAsErrors = s.SelectedWarningsAsErrors = true;
  s.WarningsAsErrors = "%Nope%";
  s.OverrideTargetFramework = true;
  // All warnings as errors: the selected list is neither expanded nor checked; no framework
  // before 2008.
  EXPECT_EQ(Properties(s), "WarningLevel=4;TreatWarningsAsErrors=True");
  s.AllWarningsAsErrors = false;
  s.WarningsAsErrors = "";
  s.DisableSelectedWarnings = s.Is2008 = true;
  s.DisableWarnings = "1591;0618";
  EXPECT_EQ(
      Properties(s),
      "WarningLevel=4;TreatWarningsAsErrors=False;NoWarn=1591%3B0618;TargetFramework=\"v2.0\"");
}

TEST(MSBuildProperties, FailuresNameTheSetting) {
  using S = TMSBuildSettings;
  S on;  // every switch on, every text valid
  on.OverrideCompiler = on.OverrideWarnings = on.SelectedWarningsAsErrors = true;
  on.DisableSelectedWarnings = on.OverrideReferencePaths = true;
  const std::string notNumbers =
      "\" is not valid. Only warning numbers, separated by semicolons, can be specified.";
  // (The output directory's failure is the action's, below.)
  const std::tuple<std::string S::*, const char*, std::string> cases[] = {
      {&S::WarningsAsErrors, "1,2", "Warnings As Errors list \"1,2" + notNumbers},
      {&S::DisableWarnings, "CS1591", "Disabled Warnings list \"CS1591" + notNumbers},
      {&S::CompilerConstants, "%Nope%", "Failed to expand compiler constants."},
      {&S::WarningsAsErrors, "%Nope%", "Unable to expand list of warnings to treat as errors."},
      {&S::DisableWarnings, "%Nope%", "Unable to expand list of disabled warnings"},
      {&S::ReferencePaths, "%Nope%", "Failed to expand Reference Paths list"},
  };
  for (const auto& [field, text, failure] : cases) {
    S s = on;
    s.*field = text;
    EXPECT_EQ(Properties(s), failure);
  }
}

// A copy of fixtures/build-app: a solution src/App.sln with projects A (depends on C), B,
// C and a setup project, devenv.com in VS71/ for 2003 and 2005 and MSBuild.exe in fx/; and an
// action bound to a recording context whose processes replay scripts.
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
    VSDotNetOptions()->SetDevEnv2005Location(dir.File("VS71"));
    dotnet.Folders["*"] = dir.File("fx");
    action = std::make_unique<TQvVSDotNetAction>();
    action->BindContext(ctx);
    Set({"Solution=" + sln, "SolutionConfiguration=Release|Any CPU", "VStudioVersion=vs2005",
         "StructuredOutput=False"});
  }

  // Sets each "Name=Value".
  void Set(const std::vector<std::string>& properties) {
    for (const std::string& p : properties)
      action->SetPropValue(p.substr(0, p.find('=')), p.substr(p.find('=') + 1));
  }
  std::vector<std::string> Params() const {
    std::vector<std::string> r;
    for (const auto& run : runs)
      r.push_back(run.params);
    return r;
  }
  // How Execute ends: the failure thrown, else "(ok)" or "(failed)" with the last error logged.
  std::string Outcome() {
    bool ok = false;
    std::string failure = FailureOf([&] { ok = action->Execute(); });
    if (failure != "(no exception)") return failure;
    std::string error;
    for (const auto& m : ctx->Messages())
      if (m.starts_with("[3]")) error = m.substr(4);
    return ok ? "(ok)" + error : error.empty() ? "(failed)" : error;
  }
};

// Each test of these suites runs in a fresh BuildFixture.
struct BuildTest : testing::Test, BuildFixture {};
using CompilerOutput = BuildTest;
using DevEnvCommandLine = BuildTest;
using Execute = BuildTest;
using MSBuildCommandLine = BuildTest;

// ---- command lines ----

TEST_F(DevEnvCommandLine, SolutionAndProjectBuilds) {
  Set({"VStudioVersion=vs2003", "UseEnv=True", "ExtraCmdLineParams=/out build.log"});
  EXPECT_EQ(action->GetCommonDevEnvParams("Release", TVSDotNetBuildAction::baRebuild),
            "/useenv /rebuild \"Release\"");
  ASSERT_TRUE(action->Execute());
  // A selected project's name is turned into its identifier.
  Set({"BuildType=btSelectedProjects", "SelectedProjects=B", "UseEnv=False",
       "ExtraCmdLineParams="});
  ASSERT_TRUE(action->Execute());
  EXPECT_EQ(Params(), (std::vector<std::string>{
                          "/out build.log /useenv /build \"Release|Any CPU\" \"" + sln + "\"",
                          "/build \"Release|Any CPU\"/project \"B\\B.csproj\" \"" + sln + "\""}));
  EXPECT_EQ(action->GetPropValue("SelectedProjects"), kB + "\r\n");
  EXPECT_EQ(runs[0].exe, dir.File("VS71/devenv.com"));
  EXPECT_EQ(runs[0].dir, dir.File("src/"));
  EXPECT_EQ(ctx->Messages()[0],
            "[0] Running " + runs[0].exe + " with parameters : " + runs[0].params);
}

// Each setting reaches its property through the /p: rule.
TEST_F(MSBuildCommandLine, EverySettingInOrderAndQuoted) {
  Set({"VStudioVersion=vs2008", "OverrideCompiler=True", "CompilerConstants=EXTRA",
       "DebugConstant=True", "TraceConstant=True", "Optimize=True", "OverrideWarnings=True",
       "WarningLevel=1", "SelectedWarningsAsErrors=True", "WarningsAsErrors=1591;0618",
       "DisableSelectedWarnings=True", "DisableWarnings="});
  Set({"OverrideTargetFramework=True", "TargetFramework=fx35", "OverrideReferencePaths=True",
       "ReferencePaths=C:\\Refs\nD:\\My Refs\n", "UseEnv=True", "OutputDirectory=/out",
       "LogLevel=Minimal", "MaxCPUs=2",
       "ExtraMSBuildProperties=SignAssembly=true\nKeyFile=a;b.snk\n\nEmptyOne"});
  EXPECT_EQ(action->GetCommonMSBuildParams("Debug|Any CPU", false, TVSDotNetBuildAction::baClean),
            "/t:Clean /p:Configuration=Debug;Platform=\"Any CPU\";"
            "DefineConstants=EXTRA%3BDEBUG%3BTRACE;Optimize=True;AllowUnsafeBlocks=False;"
            "WarningLevel=1;TreatWarningsAsErrors=False;WarningsAsErrors=1591%3B0618;"
            "TargetFramework=\"v3.5\";ReferencePath=\"C:\\Refs%3BD:\\My Refs\";useenv=1;"
            "OutDir=/out" +
                kDelim + ";SignAssembly=true;KeyFile=a%3Bb.snk;EmptyOne= /v:minimal /m:2");
  EXPECT_EQ(ctx->Transcript().substr(0, 107),
            "> MSBuild Properties (type 2) [0]\n  [0] Configuration=Debug\n  [0] Platform=\"Any "
            "CPU\"\n  [0] DefineConstants=");
}

TEST_F(MSBuildCommandLine, SwitchesAroundThePropertiesAndExpansionFailures) {
  auto params = [&] {
    return action->GetCommonMSBuildParams("", false, TVSDotNetBuildAction::baDeploy);
  };
  Set({"MaxCPUs=2", "LogLevel=Quiet"});
  EXPECT_EQ(params(), "/t:Deploy /v:quiet") << "no /m before 2008, no /p: without properties";
  EXPECT_TRUE(ctx->Log.empty()) << "and no group";
  Set({"VStudioVersion=vs2008", "MaxCPUs=0", "LogLevel=Diagnostic"});
  EXPECT_EQ(params(), "/t:Deploy /v:diagnostic /m");
  Set({"ExtraMSBuildProperties=A=%Nope%"});
  EXPECT_EQ(FailureOf(params),
            "Failed to Extra MSBuild Properties: Variable \"Nope\" is not defined");
  Set({"ExtraMSBuildProperties=", "OutputDirectory=%Nope%"});
  EXPECT_EQ(FailureOf(params), "Failed to expand output directory");
}

TEST_F(MSBuildCommandLine, LoggerSwitchWhenTheAssemblyIsInstalled) {
  std::string logger = GetQvAppPath() + "Quorvex.MSBuild.Tasks.dll";
  if (!std::filesystem::exists(logger)) GTEST_SKIP() << "the logger assembly is not built here";
  Set({"StructuredOutput=True"});
  EXPECT_EQ(action->GetCommonMSBuildParams("Debug", false, TVSDotNetBuildAction::baRebuild),
            "/t:Rebuild /logger:\"" + logger + "\" /noconlog /p:Configuration=Debug /v:normal");
}

// ---- output reading ----

// MSBuild's console summary and devenv's "complete" lines give the compiler metrics.
TEST_F(CompilerOutput, SummariesGiveMetrics) {
  action->OnStdOutData(nullptr,
                       "Build succeeded.\n\t 3 Warning(s)\n\t 0 Error(s)\nTime Elapsed 00:00:01\n");
  action->OnStdErrData(nullptr, "error: something\nbad\n");
  EXPECT_EQ(ctx->Messages(), (std::vector<std::string>{
                                 "[1] Build succeeded.", "[2] \t 3 Warning(s)", "[3] \t 0 Error(s)",
                                 "[0] Time Elapsed 00:00:01", "[0] error: something\nbad\n"}));
  Set({"VStudioVersion=vs2003"});
  action->OnStdOutData(nullptr, "Build complete -- 2 errors, 7 warnings\r\n");
  EXPECT_EQ(ctx->Metrics, (std::vector<qvtest::Metric>{{"Compiler", "Warnings", 3},
                                                       {"Compiler", "Errors", 0},
                                                       {"Compiler", "Errors", 2},
                                                       {"Compiler", "Warnings", 7}}));
}

// ---- execution ----

// Selected projects in dependency order, a setup project through devenv; "AnyCPU" for a
// project file that spells its platform only so. A rebuild cleans every selected project
// before it builds any.
TEST_F(Execute, SelectedProjectsInDependencyOrder) {
  Set({"BuildType=btSelectedProjects", "SelectedProjects=Setup\nB\nA\nC"});
  ASSERT_TRUE(action->Execute());
  auto line = [](const char* target, const char* project, const char* platform = "\"Any CPU\"") {
    return std::string("/t:") + target + " /p:Configuration=Release;Platform=" + platform +
           " /v:normal \"" + project + "\"";
  };
  EXPECT_EQ(Params(),
            (std::vector<std::string>{
                line("Build", "C\\C.csproj"), line("Build", "B\\B.csproj", "AnyCPU"),
                line("Build", "A\\A.csproj"),
                "/build \"Release|Any CPU\"/project \"Setup\\Setup.vdproj\" \"" + sln + "\""}));
  EXPECT_EQ(runs[0].exe, dir.File("fx/MSBuild.exe"));
  EXPECT_EQ(runs[3].exe, dir.File("VS71/devenv.com"));
  EXPECT_EQ(runs[3].dir, dir.File("src/"));
  auto messages = ctx->Messages();
  EXPECT_EQ(messages[0], "[0] Processing Project : C");
  EXPECT_EQ(messages[1],
            "[0] Building project configuration \"Release|Any CPU\" for solution configuration "
            "\"Release|Any CPU\"");
  EXPECT_EQ(messages[messages.size() - 4],
            "[2] Warning : Setup project Setup cannot be built with MSBuild. This project will be "
            "built with VisualStudio instead.");

  runs.clear();
  ctx->Log.clear();
  dir.Write("src/B/B.csproj", "'Release|AnyCPU' and 'Release|Any CPU'");
  Set({"SelectedProjects=B\nC", "BuildAction=baRebuild"});
  ASSERT_TRUE(action->Execute());
  EXPECT_EQ(Params(),
            (std::vector<std::string>{line("Clean", "C\\C.csproj"), line("Clean", "B\\B.csproj"),
                                      line("Build", "C\\C.csproj"), line("Build", "B\\B.csproj")}));
  EXPECT_EQ(ctx->Log[0].text, "Cleaning Projects");
}

// How runs end, each from the fixture's settings; the compiler runs once per scripted run.
TEST_F(Execute, Outcomes) {
  const std::string failed = "Build: 1 succeeded, 1 failed, 0 skipped";
  const std::string succeeded = "Build: 1 succeeded, 0 failed, 0 skipped";
  struct Case {
    std::string outcome;
    std::vector<std::string> settings;
    std::deque<qvtest::ProcessScript> scripts = {};
  } cases[] = {
      {"Solution File \"missing.sln\" does not exist", {"Solution=missing.sln"}},
      {"Failed to expand solution file name.", {"Solution=%Missing%"}},
      // An empty file as the solution.
      {"Error Parsing Solution File : List index out of bounds (0)",
       {"Solution=" QV_FIXTURES_DIR "/build-app/VS71/devenv.com"}},
      {"Solution Configuration Name: Variable \"Nope\" is not defined",
       {"SolutionConfiguration=%Nope%"}},
      {".NET Framework not found.", {"VStudioVersion=vsUnknown"}},
      {"Executable not found : " + kDelim + "devenv.com",
       {"VStudioVersion=vs2008", "UseMSBuild=False"}},
      // A failed stamping step ends the run before any build.
      {"DotNet PropertySet name is blank",
       {"UpdateAssemblyInfo=True", "UseDotNetPropertySet=True"}},
      {"No Projects selected to build", {"BuildType=btSelectedProjects"}},
      {"A Project selected is no longer part of this solution, please open the action "
       "properties dialog and select the correct projects",
       {"BuildType=btSelectedProjects",
        "SelectedProjects=A\n{EEEEEEEE-0000-0000-0000-000000000009}"}},
      {"Project \"C\" is not built in solution configuration Debug|Any CPU",
       {"BuildType=btIncludeDisabledProjects", "SolutionConfiguration=Debug|Any CPU"}},
      // One by one in dependency order: C, then B fails; A and Setup are not built.
      {"MSBuild.exe returned Error code : 2",
       {"BuildType=btIncludeDisabledProjects"},
       {{}, {{}, 2}}},
      // A failed clean stops everything.
      {"MSBuild.exe returned Error code : 1",
       {"BuildType=btSelectedProjects", "SelectedProjects=A\nC", "BuildAction=baRebuild"},
       {{{}, 1}}},
      // devenv 2002 and 2003 report failed projects with exit code 0; once seen, it stays.
      {"One or more projects failed to build.", {"VStudioVersion=vs2003"}, {{{failed, succeeded}}}},
      {"(ok)", {"VStudioVersion=vs2003"}, {{{succeeded}}}},
      {"(ok)" + failed, {"UseMSBuild=False"}, {{{failed}}}},  // later editions only log it
      {"Action Terminated by User.", {"VStudioVersion=vs2003"}, {{{}, kTerminatedExitCode}}},
      {"devenv.com returned Error code : 3", {"VStudioVersion=vs2003"}, {{{}, 3}}},
      {"(failed)", {"VStudioVersion=vs2003"}, {{{}, 0, false}}},
  };
  for (const auto& c : cases) {
    BuildFixture f;
    f.Set(c.settings);
    f.ctx->Scripts = c.scripts;
    EXPECT_EQ(f.Outcome(), c.outcome);
    EXPECT_EQ(f.runs.size(), c.scripts.size()) << c.outcome;
  }
}

}  // namespace
