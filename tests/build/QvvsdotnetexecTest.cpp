#include <gtest/gtest.h>

#include <deque>
#include <map>

#include "QvExceptions.h"
#include "QvUtils.h"
#include "Qvvsdotnetaction.h"
#include "Qvvsdotnetoptions.h"
#include "support/RecordingActionContext.h"
#include "support/RecordingServices.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::RecordingActionContext;

namespace {

// What one compiler run did: the output it replays and how it ends.
struct Script {
  std::vector<std::string> out;
  int exitCode = 0;
  bool clean = true;
};

// A process that records its command line and replays a script instead of running.
class TScriptedProcess : public TInterfacedObject, public IQvProcess {
 public:
  struct Call {
    std::string exe, params, dir;
  };
  TScriptedProcess(std::vector<Call>& runs, Script script) : FRuns(runs), FScript(script) {}
  void SetExecutable(const std::string& p) override { FRun.exe = p; }
  void SetParameters(const std::string& p) override { FRun.params = p; }
  void SetCaptureOutput(bool) override {}
  void SetHideWindow(bool) override {}
  void SetStartingDir(const std::string& d) override { FRun.dir = d; }
  void SetTerminateEvent(TAutoResetEvent*) override {}
  void SetOutputHandler(IQvProcessOutputHandler* h) override { FHandler = h; }
  int Run() override {
    FRuns.push_back(FRun);
    for (const auto& chunk : FScript.out)
      FHandler->OnStdOutData(this, chunk);
    return FScript.exitCode;
  }
  int GetExitCode() const override { return FScript.exitCode; }
  bool GetCleanExit() const override { return FScript.clean; }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IQvProcess>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  std::vector<Call>& FRuns;
  Call FRun;
  Script FScript;
  IQvProcessOutputHandler* FHandler = nullptr;
};

struct FakeDotNetInfo : IQvDotNetInfo {
  std::string Folder;
  IQvDotNetInfo* Saved = QvDotNetInfo;
  FakeDotNetInfo() { QvDotNetInfo = this; }
  ~FakeDotNetInfo() { QvDotNetInfo = Saved; }
  IntfPtr<IQvDotNetFramework> GetFramework(const std::string& v) override {
    return Folder.empty() || v.empty() ? nullptr : NewDotNetFramework(v, Folder);
  }
};

const std::string kA = "{AAAAAAAA-0000-0000-0000-000000000001}";
const std::string kB = "{BBBBBBBB-0000-0000-0000-000000000002}";
const std::string kC = "{CCCCCCCC-0000-0000-0000-000000000003}";
const std::string kS = "{DDDDDDDD-0000-0000-0000-000000000004}";

// A solution with projects A (depends on C), B, C and a setup project, compilers on disk,
// and an action bound to a recording context whose processes replay scripts.
struct BuildFixture {
  qvtest::TempDir dir;
  qvtest::RecordingServices services;
  FakeDotNetInfo dotnet;
  IntfPtr<RecordingActionContext> ctx = RecordingActionContext::Create();
  std::vector<TScriptedProcess::Call> runs;
  std::deque<Script> scripts;
  std::unique_ptr<TQvVSDotNetAction> action;
  std::string sln;

  BuildFixture() {
    RegisterOptions();
    VSDotNetOptions()->SetDevEnv2003Location(dir.Path() + "/VS71/");
    dir.Write("VS71/devenv.com", "");
    dir.Write("fx/MSBuild.exe", "");
    dotnet.Folder = dir.Path() + "/fx";
    dir.Write("src/A/A.csproj", "<Project/>");
    dir.Write("src/B/B.csproj",
              "<PropertyGroup Condition=\"'$(Configuration)|$(Platform)' == "
              "'Release|AnyCPU'\"/>");
    dir.Write("src/C/C.csproj", "<Project/>");
    dir.Write("src/Setup/Setup.vdproj", "\"DeployProject\"");
    sln = dir.Write("src/App.sln", Solution());
    ctx->ProcessFactory = [this]() -> IntfPtr<IQvProcess> {
      Script s = scripts.empty() ? Script{} : scripts.front();
      if (!scripts.empty()) scripts.pop_front();
      return IntfPtr<IQvProcess>(new TScriptedProcess(runs, s));
    };
    action = std::make_unique<TQvVSDotNetAction>();
    action->BindContext(ctx);
    Set("Solution", sln);
    Set("SolutionConfiguration", "Release|Any CPU");
    Set("VStudioVersion", "vs2005");
    Set("StructuredOutput", "False");
  }

  static std::string Solution() {
    auto project = [](const char* name, const std::string& path, const std::string& guid,
                      const std::string& dep) {
      std::string s = std::string("Project(\"{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}\") = \"") +
                      name + "\", \"" + path + "\", \"" + guid + "\"\r\n";
      if (!dep.empty())
        s += "\tProjectSection(ProjectDependencies) = postProject\r\n\t\t" + dep + " = " + dep +
             "\r\n\tEndProjectSection\r\n";
      return s + "EndProject\r\n";
    };
    std::string s = "Microsoft Visual Studio Solution File, Format Version 9.00\r\n" +
                    project("A", "A\\A.csproj", kA, kC) + project("B", "B\\B.csproj", kB, "") +
                    project("C", "C\\C.csproj", kC, "") +
                    project("Setup", "Setup\\Setup.vdproj", kS, "") +
                    "Global\r\n\tGlobalSection(ProjectConfigurationPlatforms) = postSolution\r\n";
    for (const auto& g : {kA, kB, kC, kS})
      s += "\t\t" + g + ".Release|Any CPU.ActiveCfg = Release|Any CPU\r\n";
    s += "\t\t" + kA + ".Debug|Any CPU.ActiveCfg = Debug|Any CPU\r\n";
    return s + "\tEndGlobalSection\r\nEndGlobal\r\n";
  }

  void Set(const char* name, const std::string& value) { action->SetPropValue(name, value); }
  std::string SlnDir() const { return dir.Path() + "/src/"; }
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
  try {
    fn();
  } catch (const EFailAction& e) {
    return e.what();
  }
  return "(no failure)";
}

// ---- command lines ----

TEST(DevEnvCommandLine, SolutionAndProjectBuilds) {
  BuildFixture f;
  f.Set("VStudioVersion", "vs2003");
  f.Set("UseEnv", "True");
  f.Set("ExtraCmdLineParams", "/out build.log");
  EXPECT_EQ(f.action->GetCommonDevEnvParams("Release", TVSDotNetBuildAction::baRebuild),
            "/useenv /rebuild \"Release\"");
  ASSERT_TRUE(f.action->Execute());
  f.Set("BuildType", "btSelectedProjects");
  f.Set("SelectedProjects", "B");  // a name, turned into its identifier
  f.Set("UseEnv", "False");
  f.Set("ExtraCmdLineParams", "");
  ASSERT_TRUE(f.action->Execute());
  EXPECT_EQ(f.Params(),
            (std::vector<std::string>{
                "/out build.log /useenv /build \"Release|Any CPU\" \"" + f.sln + "\"",
                "/build \"Release|Any CPU\"/project \"B\\B.csproj\" \"" + f.sln + "\""}));
  EXPECT_EQ(f.action->GetPropValue("SelectedProjects"), kB + "\r\n");
  EXPECT_EQ(f.runs[0].exe, f.dir.Path() + "/VS71/devenv.com");
  EXPECT_EQ(f.runs[0].dir, f.SlnDir());
}

TEST(MSBuildCommandLine, PropertiesInOrderAndQuoted) {
  BuildFixture f;
  f.Set("VStudioVersion", "vs2008");
  f.Set("OverrideCompiler", "True");
  f.Set("CompilerConstants", "EXTRA");
  f.Set("DebugConstant", "True");
  f.Set("TraceConstant", "True");
  f.Set("OverrideWarnings", "True");
  f.Set("SelectedWarningsAsErrors", "True");
  f.Set("WarningsAsErrors", "1591;0618");
  f.Set("DisableSelectedWarnings", "True");
  f.Set("DisableWarnings", "");
  f.Set("OverrideTargetFramework", "True");
  f.Set("TargetFramework", "fx35");
  f.Set("OverrideReferencePaths", "True");
  f.Set("ReferencePaths", "C:\\Refs\nD:\\My Refs\n");
  f.Set("UseEnv", "True");
  f.Set("OutputDirectory", "/out");
  f.Set("ExtraMSBuildProperties", "SignAssembly=true\nKeyFile=a;b.snk\n\nEmptyOne");
  f.Set("LogLevel", "Minimal");
  f.Set("MaxCPUs", "2");
  EXPECT_EQ(f.action->GetCommonMSBuildParams("Debug|Any CPU", false, TVSDotNetBuildAction::baClean),
            "/t:Clean /p:Configuration=Debug;Platform=\"Any CPU\";"
            "DefineConstants=EXTRA%3BDEBUG%3BTRACE;Optimize=False;AllowUnsafeBlocks=False;"
            "WarningLevel=4;TreatWarningsAsErrors=False;WarningsAsErrors=1591%3B0618;"
            "TargetFramework=\"v3.5\";ReferencePath=\"C:\\Refs%3BD:\\My Refs\";useenv=1;"
            "OutDir=/out/;SignAssembly=true;KeyFile=a%3Bb.snk;EmptyOne= /v:minimal /m:2");
  EXPECT_EQ(f.ctx->Transcript().substr(0, 107),
            "> MSBuild Properties (type 2) [0]\n  [0] Configuration=Debug\n  [0] Platform=\"Any "
            "CPU\"\n  [0] DefineConstants=");
}

TEST(MSBuildCommandLine, EdgeCases) {
  BuildFixture f;
  auto params = [&](const std::string& config, bool anyCPU = false) {
    return f.action->GetCommonMSBuildParams(config, anyCPU, TVSDotNetBuildAction::baBuild);
  };
  EXPECT_EQ(params("Debug"), "/t:Build /p:Configuration=Debug /v:normal");
  EXPECT_EQ(params("Debug|Any CPU", true),
            "/t:Build /p:Configuration=Debug;Platform=AnyCPU /v:normal");
  f.ctx->Log.clear();
  EXPECT_EQ(params(""), "/t:Build /v:normal") << "no entries: no /p: and no group";
  EXPECT_TRUE(f.ctx->Log.empty());

  // vs2005: neither the target framework nor /m, whatever the settings say.
  f.Set("OverrideTargetFramework", "True");
  f.Set("MaxCPUs", "0");
  EXPECT_EQ(params("Debug"), "/t:Build /p:Configuration=Debug /v:normal");
  f.Set("VStudioVersion", "vs2008");
  EXPECT_EQ(params("Debug"),
            "/t:Build /p:Configuration=Debug;TargetFramework=\"v2.0\" /v:normal /m");

  // All warnings as errors: the selected list is neither expanded nor checked.
  f.Set("OverrideWarnings", "True");
  f.Set("AllWarningsAsErrors", "True");
  f.Set("SelectedWarningsAsErrors", "True");
  f.Set("WarningsAsErrors", "%Undefined%");
  f.Set("OverrideTargetFramework", "False");
  f.Set("LogLevel", "Diagnostic");
  EXPECT_EQ(
      params("R"),
      "/t:Build /p:Configuration=R;WarningLevel=4;TreatWarningsAsErrors=True /v:diagnostic /m");
}

TEST(MSBuildCommandLine, FailuresNameTheSetting) {
  struct Case {
    std::vector<std::pair<const char*, const char*>> props;
    std::string failure;
  } cases[] = {
      {{{"OverrideWarnings", "True"},
        {"SelectedWarningsAsErrors", "True"},
        {"WarningsAsErrors", "1591,0618"}},
       "Warnings As Errors list \"1591,0618\" is not valid. Only warning numbers, separated by "
       "semicolons, can be specified."},
      {{{"OverrideWarnings", "True"},
        {"DisableSelectedWarnings", "True"},
        {"DisableWarnings", "CS1591"}},
       "Disabled Warnings list \"CS1591\" is not valid. Only warning numbers, separated by "
       "semicolons, can be specified."},
      {{{"OverrideCompiler", "True"}, {"CompilerConstants", "%Nope%"}},
       "Failed to expand compiler constants."},
      {{{"OverrideWarnings", "True"},
        {"SelectedWarningsAsErrors", "True"},
        {"WarningsAsErrors", "%Nope%"}},
       "Unable to expand list of warnings to treat as errors."},
      {{{"OverrideWarnings", "True"},
        {"DisableSelectedWarnings", "True"},
        {"DisableWarnings", "%Nope%"}},
       "Unable to expand list of disabled warnings"},
      {{{"OverrideReferencePaths", "True"}, {"ReferencePaths", "%Nope%"}},
       "Failed to expand Reference Paths list"},
      {{{"OutputDirectory", "%Nope%"}}, "Failed to expand output directory"},
      {{{"ExtraMSBuildProperties", "A=%Nope%"}},
       "Failed to Extra MSBuild Properties: Variable \"Nope\" is not defined"},
  };
  for (const auto& c : cases) {
    BuildFixture f;
    for (auto [n, v] : c.props)
      f.Set(n, v);
    EXPECT_EQ(FailureOf([&] {
                f.action->GetCommonMSBuildParams("Debug", false, TVSDotNetBuildAction::baBuild);
              }),
              c.failure);
  }
}

TEST(MSBuildCommandLine, LoggerSwitchWhenTheAssemblyIsInstalled) {
  std::string logger = GetQvAppPath() + "Quorvex.MSBuild.Tasks.dll";
  TStringList probe;
  try {
    probe.LoadFromFile(logger);
  } catch (const Exception&) {
    GTEST_SKIP() << "the logger assembly is not built here";
  }
  BuildFixture f;
  f.Set("StructuredOutput", "True");
  EXPECT_EQ(f.action->GetCommonMSBuildParams("Debug", false, TVSDotNetBuildAction::baRebuild),
            "/t:Rebuild /logger:\"" + logger + "\" /noconlog /p:Configuration=Debug /v:normal");
}

// ---- output reading ----

TEST(CompilerOutput, DevEnvLinesAreClassifiedByWholeWords) {
  BuildFixture f;
  f.Set("VStudioVersion", "vs2003");
  struct Case {
    const char* line;
    int tag;
  } cases[] = {
      {"Build complete -- 0 errors, 0 warnings", 0},
      {"------ Build started: Project: A, Configuration: Release .NET ------", 0},
      {"error at the very start", 0},
      {"a.cs(3,7): error CS0103: The name 'x' does not exist", 3},
      {"Build: 1 succeeded, 10 failed, 0 skipped", 3},
      {"Build: 2 succeeded, 0 failed, 0 skipped", 1},
      {"========== Build: 3 succeeded, 0 failed, 0 skipped ==========", 1},
      {"c.cpp(1) : warning C4996: 'strcpy' was declared deprecated", 2},
      {"Rebuild All: 0 succeeded, 0 failed, 0 skipped", 0},
      {"x|ERROR|y", 3},
      {"the errors were many", 0},
  };
  for (const auto& c : cases) {
    f.ctx->Log.clear();
    f.action->OnStdOutData(nullptr, c.line);
    ASSERT_EQ(f.ctx->Messages(),
              std::vector<std::string>{"[" + std::to_string(c.tag) + "] " + c.line})
        << c.line;
  }
}

TEST(CompilerOutput, DevEnvSummaryMetricsAndFailedProjects) {
  BuildFixture f;
  f.Set("VStudioVersion", "vs2003");
  f.action->OnStdOutData(
      nullptr,
      "Compile complete -- 2 errors, 0 warnings\r\nBuild complete -- 0 errors, 7 warnings\n");
  EXPECT_EQ(f.ctx->Metrics, (std::vector<qvtest::Metric>{{"Compiler", "Errors", 2},
                                                         {"Compiler", "Warnings", 0},
                                                         {"Compiler", "Errors", 0},
                                                         {"Compiler", "Warnings", 7}}));
  EXPECT_FALSE(f.action->ProjectsFailed());
  f.action->OnStdOutData(nullptr,
                         "---------------------- Done ----------------------\r\n\r\n    Build: 2 "
                         "succeeded, 0 failed, 0 skipped\r\n");
  EXPECT_FALSE(f.action->ProjectsFailed());
  f.action->OnStdOutData(nullptr, "    Build: 1 succeeded, 10 failed, 0 skipped\r\n");
  EXPECT_TRUE(f.action->ProjectsFailed());
  f.action->OnStdOutData(nullptr, "    Build: 2 succeeded, 0 failed, 0 skipped\r\n");
  EXPECT_TRUE(f.action->ProjectsFailed()) << "stays set for the run";

  BuildFixture f2008;
  f2008.Set("VStudioVersion", "vs2008");
  f2008.Set("UseMSBuild", "False");
  f2008.action->OnStdOutData(nullptr, "Build: 1 succeeded, 1 failed, 0 skipped");
  EXPECT_FALSE(f2008.action->ProjectsFailed()) << "only 2002 and 2003 are watched";
}

TEST(CompilerOutput, MSBuildConsoleSummaryAndStandardError) {
  BuildFixture f;
  f.action->OnStdOutData(
      nullptr, "Build succeeded.\n\t 3 Warning(s)\n\t 0 Error(s)\nTime Elapsed 00:00:01\n");
  f.action->OnStdErrData(nullptr, "error: something\nbad\n");
  EXPECT_EQ(
      f.ctx->Messages(),
      (std::vector<std::string>{"[1] Build succeeded.", "[2] \t 3 Warning(s)", "[3] \t 0 Error(s)",
                                "[0] Time Elapsed 00:00:01", "[0] error: something\nbad\n"}));
  EXPECT_EQ(f.ctx->Metrics,
            (std::vector<qvtest::Metric>{{"Compiler", "Warnings", 3}, {"Compiler", "Errors", 0}}));
}

// ---- execution ----

TEST(Execute, SelectedProjectsBuildInDependencyOrder) {
  BuildFixture f;
  f.Set("BuildType", "btSelectedProjects");
  f.Set("SelectedProjects", kA + "\n" + kC);
  ASSERT_TRUE(f.action->Execute());
  ASSERT_EQ(f.runs.size(), 2u);
  EXPECT_EQ(f.runs[0].params,
            "/t:Build /p:Configuration=Release;Platform=\"Any CPU\" /v:normal \"C\\C.csproj\"");
  EXPECT_EQ(f.runs[1].params,
            "/t:Build /p:Configuration=Release;Platform=\"Any CPU\" /v:normal \"A\\A.csproj\"");
  EXPECT_EQ(f.runs[0].exe, f.dir.Path() + "/fx/MSBuild.exe");
  EXPECT_EQ(f.ctx->Messages()[0], "[0] Processing Project : C");
  EXPECT_EQ(f.ctx->Messages()[1],
            "[0] Building project configuration \"Release|Any CPU\" for solution configuration "
            "\"Release|Any CPU\"");
}

TEST(Execute, ProjectFileSpellingDecidesAnyCPU) {
  BuildFixture f;
  f.Set("BuildType", "btSelectedProjects");
  f.Set("SelectedProjects", kB);
  ASSERT_TRUE(f.action->Execute());
  EXPECT_EQ(f.Params(),
            std::vector<std::string>{
                "/t:Build /p:Configuration=Release;Platform=AnyCPU /v:normal \"B\\B.csproj\""});
  f.dir.Write("src/B/B.csproj", "'Release|AnyCPU' and 'Release|Any CPU'");
  f.runs.clear();
  ASSERT_TRUE(f.action->Execute());
  EXPECT_EQ(
      f.Params(),
      std::vector<std::string>{
          "/t:Build /p:Configuration=Release;Platform=\"Any CPU\" /v:normal \"B\\B.csproj\""});
}

TEST(Execute, RebuildCleansEverythingFirstAndStopsWhenACleanFails) {
  BuildFixture f;
  f.Set("BuildType", "btSelectedProjects");
  f.Set("SelectedProjects", kA + "\n" + kC);
  f.Set("BuildAction", "baRebuild");
  ASSERT_TRUE(f.action->Execute());
  std::vector<std::string> targets;
  for (const auto& p : f.Params())
    targets.push_back(p.substr(0, p.find(' ')) + p.substr(p.rfind(' ')));
  EXPECT_EQ(targets,
            (std::vector<std::string>{"/t:Clean \"C\\C.csproj\"", "/t:Clean \"A\\A.csproj\"",
                                      "/t:Build \"C\\C.csproj\"", "/t:Build \"A\\A.csproj\""}));
  EXPECT_EQ(f.ctx->Log[0].text, "Cleaning Projects");

  f.runs.clear();
  f.scripts = {Script{{}, 1}};
  EXPECT_FALSE(f.action->Execute());
  EXPECT_EQ(f.runs.size(), 1u) << "a failed clean stops everything";
  EXPECT_EQ(f.Errors().back(), "MSBuild.exe returned Error code : 1");
}

TEST(Execute, SelectionProblems) {
  BuildFixture f;
  f.Set("BuildType", "btSelectedProjects");
  EXPECT_FALSE(f.action->Execute());
  EXPECT_EQ(f.Errors(), std::vector<std::string>{"No Projects selected to build"});
  f.Set("SelectedProjects", kA + "\n{EEEEEEEE-0000-0000-0000-000000000009}");
  EXPECT_FALSE(f.action->Execute());
  EXPECT_EQ(f.Errors().back(),
            "A Project selected is no longer part of this solution, please open the action "
            "properties dialog and select the correct projects");
  EXPECT_TRUE(f.runs.empty());
}

TEST(Execute, EveryProjectOneByOneStopsAtTheFirstFailure) {
  BuildFixture f;
  f.Set("BuildType", "btIncludeDisabledProjects");
  f.Set("SolutionConfiguration", "Debug|Any CPU");
  EXPECT_EQ(FailureOf([&] { f.action->Execute(); }),
            "Project \"C\" is not built in solution configuration Debug|Any CPU");

  f.Set("SolutionConfiguration", "Release|Any CPU");
  f.scripts = {Script{}, Script{{}, 2}};
  EXPECT_FALSE(f.action->Execute());
  EXPECT_EQ(f.runs.size(), 2u) << "C, then B fails; A and Setup are not built";
  EXPECT_EQ(f.ctx->Transcript().find("Project A"), std::string::npos);
  EXPECT_EQ(f.ctx->Transcript().find("Project Setup"), std::string::npos);
}

TEST(Execute, SetupProjectsFallBackToDevEnv) {
  BuildFixture f;
  f.Set("BuildType", "btSelectedProjects");
  f.Set("SelectedProjects", kS);
  VSDotNetOptions()->SetDevEnv2005Location(f.dir.Path() + "/VS71");
  ASSERT_TRUE(f.action->Execute());
  EXPECT_EQ(f.ctx->Messages()[0],
            "[2] Warning : Setup project Setup cannot be built with MSBuild. This project will be "
            "built with VisualStudio instead.");
  EXPECT_EQ(f.runs[0].exe, f.dir.Path() + "/VS71/devenv.com");
  EXPECT_EQ(f.runs[0].params,
            "/build \"Release|Any CPU\"/project \"Setup\\Setup.vdproj\" \"" + f.sln + "\"");
}

TEST(Execute, RunResults) {
  struct Case {
    const char* version;
    Script script;
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
    f.scripts = {c.script};
    EXPECT_EQ(f.action->Execute(), c.ok) << c.lastError;
    auto errors = f.Errors();
    EXPECT_EQ(errors.empty() ? "" : errors.back(), c.lastError);
  }
}

TEST(Execute, FailuresBeforeTheBuild) {
  BuildFixture f;
  f.Set("Solution", f.dir.Path() + "/missing.sln");
  EXPECT_EQ(FailureOf([&] { f.action->Execute(); }),
            "Solution File \"" + f.dir.Path() + "/missing.sln\" does not exist");
  f.Set("Solution", f.dir.Write("bad.sln", "nonsense\r\n"));
  EXPECT_EQ(FailureOf([&] { f.action->Execute(); }),
            "Error Parsing Solution File : Invalid Visual Studio Solution Header : nonsense");
  f.Set("Solution", "%Missing%");
  EXPECT_EQ(FailureOf([&] { f.action->Execute(); }), "Failed to expand solution file name.");
  f.Set("Solution", f.sln);
  f.Set("UpdateWin32Resource", "True");
  EXPECT_NE(FailureOf([&] { f.action->Execute(); }).find("not available"), std::string::npos);
  f.Set("UpdateWin32Resource", "False");

  f.dotnet.Folder.clear();
  EXPECT_FALSE(f.action->Execute());
  EXPECT_EQ(f.Errors().back(), ".NET Framework not found.");
  f.Set("VStudioVersion", "vs2008");
  f.Set("UseMSBuild", "False");
  EXPECT_EQ(FailureOf([&] { f.action->Execute(); }), "Executable not found : /devenv.com");
  f.Set("SolutionConfiguration", "%Nope%");
  EXPECT_FALSE(f.action->Execute());
  EXPECT_TRUE(f.runs.empty());
}

TEST(Execute, StructuredOutputMetricsAreSentEvenWhenTheBuildFails) {
  BuildFixture f;
  f.Set("StructuredOutput", "True");
  f.scripts = {Script{{"a.cs(1,1): error CS0001: broken\n"}, 1}};
  EXPECT_FALSE(f.action->Execute());
  ASSERT_GE(f.ctx->Metrics.size(), 2u);
  EXPECT_EQ(f.ctx->Metrics[f.ctx->Metrics.size() - 2].name, "Errors");
  EXPECT_EQ(f.ctx->Metrics.back().name, "Warnings");
}

}  // namespace
