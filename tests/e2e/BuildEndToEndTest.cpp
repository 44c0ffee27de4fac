// The build action run for real through qvhost: with Mono's xbuild behind the MSBuild.exe
// launcher, and with the devenv.com stand-in where Visual Studio itself would run.
#include <gtest/gtest.h>
#ifndef _WIN32
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "support/JsonLines.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"
#include "support/WebDavServer.h"

#ifndef _WIN32
extern char** environ;
#endif

using qvtest::RunCommand;
using qvtest::ShellQuote;
using qvtest::TempDir;

namespace {

namespace fs = std::filesystem;

// `path` ("/"-separated) as this platform writes it.
std::string Native(const std::string& path) {
  std::string native = qvtest::NativePath(path);
  std::replace(native.begin(), native.end(), '/', qv::platform::PathDelim);
  return native;
}

const std::string kBin = QV_OUTPUT_DIR;
const std::string kQvhost = Native(QV_QVHOST);
const std::string kStandIn = Native(QV_DEVENV_STANDIN);
const std::string kStandInFolder = qv::IncludeTrailingPathDelimiter(qv::ExtractFileDir(kStandIn));
const std::string kMSTestFolder =
    qv::IncludeTrailingPathDelimiter(qv::ExtractFileDir(Native(QV_MSTEST_STANDIN)));
const std::string kFixtures = QV_FIXTURES_DIR;

// One qvhost session: its own options, key and stand-in folders, and a copy of the samples.
struct Session {
  TempDir dir;
  std::string samples = dir.File("samples");
  std::string standinDir = dir.File("standin");
  std::string fakeFx = dir.File("fakefx");

  Session() {
    fs::copy(QV_EXAMPLES_DIR, samples, fs::copy_options::recursive);
    fs::create_directories(standinDir);
    fs::create_directories(fakeFx);
    fs::copy_file(kStandIn, dir.File("fakefx/MSBuild.exe"));
    std::string devenv = kStandInFolder;
    dir.Write("options.xml",
              "<QvOptions><Section key=\"VisualStudioDotNet\">"
              "<Value name=\"MSDevPath2003\" type=\"string\">" +
                  devenv +
                  "</Value>"
                  "<Value name=\"MSDevPath2005\" type=\"string\">" +
                  devenv +
                  "</Value>"
                  "<Value name=\"MSDevPath2008\" type=\"string\">" +
                  devenv +
                  "</Value>"
                  "<Value name=\"DefVSVersion\" type=\"integer\">3</Value>"
                  "</Section></QvOptions>");
  }

  // A file of the samples' copy.
  std::string Sample(const std::string& name) const { return Native(samples + "/" + name); }

  // qvhost with this session's options and package, logging JSON lines; Run gives it this
  // session's environment (through env on POSIX, to the process directly on Windows).
  std::string Qvhost(const std::string& framework) const {
    std::string env;
#ifndef _WIN32
    env = "env QV_STANDIN_DIR=" + ShellQuote(standinDir) +
          " XDG_CONFIG_HOME=" + ShellQuote(dir.Path()) +
          " QV_KEY_FILE=" + ShellQuote(dir.File("key")) + " ";
#endif
    return env + kQvhost + " --no-default-packages --package " +
           ShellQuote(Native(QV_PACKAGE_MODULE)) + " --options " +
           ShellQuote(dir.File("options.xml")) +
           " --log-format jsonl --framework v3.5=" + ShellQuote(framework) +
           " --framework v2.0=" + ShellQuote(framework);
  }

  std::string Command(const std::string& framework, const std::vector<std::string>& props) const {
    std::string cmd = Qvhost(framework) + " exec TQvVSDotNetAction";
    for (const auto& p : props)
      cmd += " " + ShellQuote(p);
    return cmd;
  }

  qvtest::CommandResult Exec(const std::vector<std::string>& props,
                             const std::string& framework = kBin + "/mono") const {
    return Run(Command(framework, props));
  }

  qvtest::CommandResult Run(const std::string& command) const {
#ifdef _WIN32
    return RunCommand(command, "", {"QV_STANDIN_DIR=" + standinDir, "APPDATA=" + dir.Path()});
#else
    return RunCommand(command);
#endif
  }

  // The stand-in's calls: the working folder, then the arguments.
  std::vector<std::vector<std::string>> Calls() const {
    std::vector<std::vector<std::string>> calls;
    std::ifstream in(standinDir + "/calls.txt");
    for (std::string line; std::getline(in, line);) {
      std::vector<std::string> fields(1);
      for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\t') {
          fields.emplace_back();
        } else if (line[i] == '\\' && i + 1 < line.size()) {
          char e = line[++i];
          fields.back() += e == 't' ? '\t' : e == 'n' ? '\n' : e;
        } else {
          fields.back() += line[i];
        }
      }
      calls.push_back(fields);
    }
    return calls;
  }

  void StandIn(const std::string& file, const std::string& content) const {
    std::ofstream(standinDir + "/" + file, std::ios::binary) << content;
  }
};

struct Log {
  std::vector<std::map<std::string, std::string>> events;
  explicit Log(const std::string& out) : events(qvtest::ParseJsonLines(out)) {}
  // Messages as "[tag] text".
  std::vector<std::string> Messages() const {
    std::vector<std::string> r;
    for (const auto& e : events)
      if (e.at("event") == "message") r.push_back("[" + e.at("tag") + "] " + e.at("text"));
    return r;
  }
  bool Has(const std::string& message) const {
    auto m = Messages();
    return std::find(m.begin(), m.end(), message) != m.end();
  }
  std::vector<std::string> Groups() const {
    std::vector<std::string> r;
    for (const auto& e : events)
      if (e.at("event") == "groupStart") r.push_back(e.at("title"));
    return r;
  }
  // Each project group with everything inside it, sorted: the same in any build order.
  std::vector<std::string> ProjectGroups() const {
    std::vector<std::string> blocks;
    int depth = 0;
    for (const auto& e : events) {
      const std::string& kind = e.at("event");
      bool project = kind == "groupStart" && e.at("title").rfind("Project ", 0) == 0;
      if (depth == 0 && !project) continue;
      if (depth == 0) blocks.emplace_back();
      if (kind == "groupStart") ++depth, blocks.back() += "> " + e.at("title") + "\n";
      if (kind == "message") blocks.back() += "[" + e.at("tag") + "] " + e.at("text") + "\n";
      if (kind == "groupEnd") --depth, blocks.back() += "< " + e.at("tag") + "\n";
    }
    std::sort(blocks.begin(), blocks.end());
    return blocks;
  }
  std::map<std::string, std::string> Metrics() const {
    std::map<std::string, std::string> r;
    for (const auto& e : events)
      if (e.at("event") == "metric") r[e.at("group") + "." + e.at("name")] = e.at("value");
    return r;
  }
};

#ifndef _WIN32
// The launcher folder of each engine, and whether the engine and its logger are here.
struct Engine {
  std::string name, launcher, logger;
  bool Present() const {
    return RunCommand("command -v " + name).exitCode == 0 && fs::exists(logger);
  }
};
void PrintTo(const Engine& engine, std::ostream* out) {
  *out << engine.name;
}
const Engine kXBuild{"xbuild", kBin + "/mono", kBin + "/Quorvex.MSBuild.Tasks.dll"};
const Engine kDotNet{"dotnet", kBin + "/dotnet", kBin + "/dotnet/Quorvex.MSBuild.Tasks.dll"};
#endif

// ---- devenv stand-in ------------------------------------------------------------------------

TEST(DevEnv, SolutionAndProjectCommandLines) {
  Session s;
  std::string sln = s.Sample("vs2008/Mixed.sln");
  std::vector<std::string> props = {"Solution=" + sln, "SolutionConfiguration=Release|Win32",
                                    "VStudioVersion=vs2008", "UseMSBuild=False"};
  auto r = s.Exec(props);
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_TRUE(Log(r.out).Has("[0] Running " + kStandIn +
                             " with parameters : /build \"Release|Win32\" \"" + sln + "\""))
      << r.out;
  props.insert(props.end(), {"BuildType=btSelectedProjects", "SelectedProjects=GreetingNative"});
  r = s.Exec(props);
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_TRUE(Log(r.out).Has("[0] Running " + kStandIn +
                             " with parameters : /build \"Release|Win32\"/project "
                             "\"GreetingNative\\GreetingNative.vcproj\" \"" +
                             sln + "\""))
      << r.out;
  auto calls = s.Calls();
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0],
            (std::vector<std::string>{s.Sample("vs2008"), "/build", "Release|Win32", sln}));
  // Split as the Windows C runtime would: the quoted configuration runs into "/project".
  EXPECT_EQ(calls[1],
            (std::vector<std::string>{s.Sample("vs2008"), "/build", "Release|Win32/project",
                                      "GreetingNative\\GreetingNative.vcproj", sln}));
}

TEST(DevEnv, InstallationFoundInTheRegistryIsUsedAndRemembered) {
  Session s;
  std::string devenv = kStandInFolder;
  std::string escaped;
  for (char c : devenv)
    escaped += c == '\\' ? std::string("\\\\") : std::string(1, c);
  s.dir.Write("vs.reg",
              "Windows Registry Editor Version 5.00\r\n\r\n"
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\VisualStudio\\9.0]\r\n"
              "\"InstallDir\"=\"" +
                  escaped + "\"\r\n");
  s.dir.Write("options.xml", "<QvOptions/>");
  std::string sln = s.Sample("vs2008/Mixed.sln");
  auto r =
      s.Run(s.Command(kBin + "/mono", {"Solution=" + sln, "SolutionConfiguration=Release|Win32",
                                       "UseMSBuild=False"}) +
            " --registry " + ShellQuote(s.dir.File("vs.reg")));
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_TRUE(Log(r.out).Has("[0] Running " + devenv +
                             "devenv.com with parameters : /build "
                             "\"Release|Win32\" \"" +
                             sln + "\""))
      << "vs2008 is the newest edition with a folder, so new actions default to it";
  std::string options = TempDir::Read(s.dir.File("options.xml"));
  EXPECT_NE(options.find(">" + devenv + "<"), std::string::npos)
      << "the discovered folder is saved: " << options;
}

TEST(DevEnv, FailedProjectsInA2003SummaryFailTheBuild) {
  Session s;
  s.StandIn("default.out", TempDir::Read(kFixtures + "/devenv/vs2003-one-failed.txt"));
  auto r = s.Exec({"Solution=" + s.Sample("vs2003/Billing.sln"), "SolutionConfiguration=Release",
                   "VStudioVersion=vs2003"});
  EXPECT_EQ(r.exitCode, 1) << r.out;
  Log log(r.out);
  EXPECT_TRUE(log.Has("[3] One or more projects failed to build.")) << r.out;
  EXPECT_TRUE(
      log.Has("[3] c:\\src\\NativeCalc\\NativeCalc.cpp(12) : error C2065: 'total' : "
              "undeclared identifier"));
  EXPECT_TRUE(log.Has("[0] Build complete -- 0 errors, 0 warnings"));
  EXPECT_EQ(log.Metrics()["Compiler.Errors"], "0");

  Session ok;
  ok.StandIn("default.out", TempDir::Read(kFixtures + "/devenv/vs2003-succeeded.txt"));
  r = ok.Exec({"Solution=" + ok.Sample("vs2003/Billing.sln"), "SolutionConfiguration=Release",
               "VStudioVersion=vs2003"});
  EXPECT_EQ(r.exitCode, 0) << r.out;
  EXPECT_TRUE(Log(r.out).Has("[1]     Build: 2 succeeded, 0 failed, 0 skipped"));
}

TEST(DevEnv, SetupProjectsAreBuiltWithDevEnvUnderMSBuild) {
  Session s;
  s.StandIn("default.out", TempDir::Read(kFixtures + "/devenv/vs2008-succeeded.txt"));
  std::string sln = s.Sample("vs2008/Mixed.sln");
  auto r = s.Exec(
      {"Solution=" + sln, "SolutionConfiguration=Release|Any CPU", "VStudioVersion=vs2008",
       "BuildType=btSelectedProjects", "SelectedProjects=GreetingSetup", "StructuredOutput=False"},
      s.fakeFx);
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  Log log(r.out);
  EXPECT_TRUE(
      log.Has("[2] Warning : Setup project GreetingSetup cannot be built with MSBuild. "
              "This project will be built with VisualStudio instead."));
  EXPECT_TRUE(
      log.Has("[1] ========== Build: 2 succeeded, 0 failed, 0 up-to-date, 0 skipped =========="))
      << "read by the MSBuild rules as the action is set to MSBuild";
  ASSERT_EQ(s.Calls().size(), 1u);
  EXPECT_EQ(s.Calls()[0][2], "Release|Any CPU/project");
}

#ifndef _WIN32  // signals; Windows' own form is in the host's suite
TEST(DevEnv, TerminationStopsTheCompilerAndItsChildren) {
  Session s;
  s.StandIn("run1.wait", "child");
  std::string out = s.dir.File("qvhost.out");
  std::string cmd =
      s.Command(kBin + "/mono", {"Solution=" + s.samples + "/vs2008/Mixed.sln",
                                 "SolutionConfiguration=Release|Win32", "UseMSBuild=False"}) +
      " >" + ShellQuote(out) + " 2>&1";
  pid_t shell = 0;
  const char* argv[] = {"/bin/sh", "-c", cmd.c_str(), nullptr};
  ASSERT_EQ(posix_spawn(&shell, "/bin/sh", nullptr, nullptr, const_cast<char**>(argv), environ), 0);
  std::string started = s.standinDir + "/run1.started";
  for (int i = 0; i < 200 && !fs::exists(s.standinDir + "/run1.child"); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  for (int i = 0; i < 100 && !fs::exists(started); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  ASSERT_TRUE(fs::exists(started)) << TempDir::Read(out);
  pid_t standin = std::stoi(TempDir::Read(started));
  pid_t child = std::stoi(TempDir::Read(s.standinDir + "/run1.child"));
  // The shell runs qvhost as its only child: signal qvhost itself.
  std::string pgrep = RunCommand("pgrep -P " + std::to_string(shell) + " qvhost").out;
  pid_t host = pgrep.empty() ? shell : std::stoi(pgrep);
  kill(host, SIGINT);
  int status = 0;
  waitpid(shell, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 130);
  std::string text = TempDir::Read(out);
  EXPECT_TRUE(Log(text).Has("[3] Action Terminated by User.")) << text;
  EXPECT_TRUE(qvtest::ProcessEnds(standin));
  EXPECT_TRUE(qvtest::ProcessEnds(child)) << "the compiler's own children are stopped too";
}

#endif

// ---- qvhost check, and MSTest.exe (the stand-in) ---------------------------------------

TEST(Check, ReportsWhatABuildWouldTripOverWithoutRunningIt) {
  Session s;
  auto project = [&](const std::string& configuration, const std::string& extra) {
    return s.dir.Write("p.qvproj",
                       "<QvProject><Actions><Action type='TQvVSDotNetAction' caption='Build'>"
                       "<Property name='Solution'>" +
                           s.Sample("vs2008/Greeting.sln") +
                           "</Property>"
                           "<Property name='SolutionConfiguration'>" +
                           configuration + "</Property>" + extra +
                           "</Action></Actions></QvProject>");
  };
  std::string check = s.Qvhost(s.fakeFx) + " check ";
  auto r = s.Run(check +
                 project("Release|Any CPU", "<Property name='VStudioVersion'>vs2008</Property>"));
  EXPECT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_EQ(r.out, "Checked 1 action: 0 problems, 0 warnings\n");

  std::string file =
      project("Relase|Any CPU",
              "<Property name='VStudioVersion'>vs2005</Property>"
              "<Property name='BuildType'>btSelectedProjects</Property>"
              "<Property name='SelectedProjects'><Line>Nowhere.csproj</Line></Property>"
              "<Property name='ExtraCmdLineParams'>/p:X=%Missing%</Property>");
  r = s.Run(check + file);
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_EQ(r.out, file + ":1: Build: ExtraCmdLineParams: Variable \"Missing\" is not defined\n" +
                       file +
                       ":1: Build: SolutionConfiguration: The solution has no configuration "
                       "\"Relase|Any CPU\"; it has: Debug|Any CPU, Release|Any CPU\n" +
                       file +
                       ":1: Build: SelectedProjects: Project Nowhere.csproj is not in the "
                       "solution\n" +
                       file +
                       ":1: warning: Build: VStudioVersion: The action builds with vs2005 "
                       "but the solution file is in vs2008 format\n"
                       "Checked 1 action: 3 problems, 1 warning\n");
  EXPECT_FALSE(fs::exists(s.Sample("vs2008/Greeting.Lib/bin"))) << "nothing was built";
  EXPECT_EQ(s.Run(check + s.dir.File("missing.qvproj")).exitCode, 2);
}

TEST(MSTestRun, PublishModesAndAFailingRun) {
  Session s;
  s.dir.Write("options.xml",
              "<QvOptions><Section key=\"VisualStudioDotNet\"><Value name=\"MSDevPath2008\" "
              "type=\"string\">" +
                  kMSTestFolder + "</Value></Section></QvOptions>");
  std::string dll = s.dir.Write("bin/Greeting.Tests.dll", "MZ");
  std::string exec = s.Qvhost(kBin + "/mono") + " exec \"Run MSTest\" VisualStudioVer=vs2008 " +
                     ShellQuote("AssemblyFileName=" + dll);
  std::string teamBuild;
  for (const char* v : {"TeamServer=http://tfs:8080", "TeamProject=Greeting",
                        "TeamBuildId=Nightly_12", "BuildPlatform=Any CPU", "BuildFlavor=Release"})
    teamBuild += " --var " + ShellQuote(std::string("_env") + v);
  auto r = s.Run(exec + teamBuild);
  ASSERT_EQ(r.exitCode, 0) << r.out;
  Log log(r.out);
  EXPECT_TRUE(
      log.Has("[0] Results will be published to Team Project Greeting on "
              "http://tfs:8080, Build Id Nightly_12 (Release/Any CPU)"));
  EXPECT_TRUE(log.Has("[0] Publish completed successfully."));
  EXPECT_EQ(r.out.find("\"metric\""), std::string::npos);  // Team Build counts them itself
  EXPECT_EQ(s.Calls().back(),
            (std::vector<std::string>{s.dir.File("bin"), "/testcontainer:" + dll, "/nologo",
                                      "/publish:http://tfs:8080", "/teamproject:Greeting",
                                      "/publishbuild:Nightly_12", "/flavor:Release",
                                      "/platform:Any CPU"}));
  s.StandIn("tests.txt",
            "Passed Greeting.Tests.GreeterChecks.Greets\nFailed "
            "Greeting.Tests.GreeterChecks.GreetsNobody\n");
  r = s.Run(exec + " PublishMode=pbNone");
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_TRUE(Log(r.out).Has("[0] 1/2 test(s) Passed, 1 Failed")) << r.out;
  EXPECT_NE(r.out.find("{\"event\":\"metric\",\"group\":\"Unit_Tests\",\"name\":\"Tests_Failed\","
                       "\"value\":1,"),
            std::string::npos);
  r = s.Run(exec + " PublishMode=pbNone " + ShellQuote("AssemblyFileName=" + dll + ".x"));
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_TRUE(Log(r.out).Has("[0] File does not exist: " + dll + ".x")) << r.out;
}

// ---- MSBuild with each engine: Mono's xbuild and the .NET SDK's ----------------------------
// (Linux programs both; Windows has no MSBuild to run under Wine.)
#ifndef _WIN32

class MSBuild : public ::testing::TestWithParam<Engine> {
 protected:
  void SetUp() override {
    if (!GetParam().Present()) GTEST_SKIP() << GetParam().name << " or its logger is not here";
  }
  bool DotNet() const { return GetParam().name == "dotnet"; }
  qvtest::CommandResult Exec(const std::vector<std::string>& props) const {
    return s.Exec(props, GetParam().launcher);
  }
  Session s;
  std::string Sln() const { return s.samples + "/vs2008/Greeting.sln"; }
  // Adds members to the sample library's Greeter class.
  void AddToGreeter(const std::string& members) const {
    std::string source = s.samples + "/vs2008/Greeting.Lib/Greeter.cs";
    std::string text = TempDir::Read(source);
    text.insert(text.rfind('}', text.rfind('}') - 1), members + "    ");
    std::ofstream(source, std::ios::binary) << text;
  }
  std::vector<std::string> Base(const std::string& config = "Release|Any CPU") const {
    return {"Solution=" + Sln(), "SolutionConfiguration=" + config, "VStudioVersion=vs2008"};
  }
  static std::vector<std::string> With(std::vector<std::string> a, std::vector<std::string> b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
  }
};

TEST_P(MSBuild, SelectedProjectsInDependencyOrderAndRebuild) {
  auto r = Exec(
      With(Base(), {"BuildType=btSelectedProjects",
                    "SelectedProjects=Greeting.Console\\nGreeting.Lib", "BuildAction=baRebuild"}));
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  std::vector<std::string> order;
  for (const auto& g : Log(r.out).Groups())
    if (g == "Cleaning Projects" ||
        (g.rfind("Project Greeting.", 0) == 0 && g.find(".csproj") == std::string::npos))
      order.push_back(g);
  EXPECT_EQ(order, (std::vector<std::string>{"Cleaning Projects", "Project Greeting.Lib",
                                             "Project Greeting.Console", "Project Greeting.Lib",
                                             "Project Greeting.Console"}));
  EXPECT_TRUE(fs::exists(s.samples + "/vs2008/Greeting.Console/bin/Release/Greeting.Console.exe"));
}

TEST_P(MSBuild, CompileErrorsFailTheActionWithTheirPosition) {
  AddToGreeter("    public static int Broken() { return missingName; }\r\n");
  auto r = Exec(Base());
  EXPECT_EQ(r.exitCode, 1);
  Log log(r.out);
  bool found = false;
  for (const auto& m : log.Messages())
    found = found || (m.rfind("[3] ", 0) == 0 && m.find("Greeter.cs(") != std::string::npos &&
                      m.find("): error CS0103: ") != std::string::npos);
  EXPECT_TRUE(found) << r.out;
  EXPECT_EQ(log.Metrics()["Compiler.Errors"], "1");
  // The log's structured fields name the file by a path a reader can open, and the recap
  // counts the error once however often the engine repeats it.
  EXPECT_NE(r.out.find("\"file\":\"" + s.samples + "/vs2008/Greeting.Lib/Greeter.cs\",\"line\":"),
            std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("\"code\":\"CS0103\",\"severity\":\"error\""), std::string::npos);
  EXPECT_NE(r.out.find("{\"event\":\"runEnd\",\"success\":false,\"errors\":1,"), std::string::npos)
      << r.out;
}

TEST_P(MSBuild, DisabledWarningsAreSilenced) {
  AddToGreeter(
      "    private int unusedField;\r\n"
      "    public static void Noisy() { int assigned = 1; }\r\n");
  auto r = Exec(Base());
  ASSERT_EQ(r.exitCode, 0) << r.out;
  EXPECT_EQ(Log(r.out).Metrics()["Compiler.Warnings"], "2") << r.out;
  r = Exec(With(Base(), {"BuildAction=baRebuild", "OverrideWarnings=True",
                         "DisableSelectedWarnings=True", "DisableWarnings=0169;0219"}));
  ASSERT_EQ(r.exitCode, 0) << r.out;
  EXPECT_EQ(Log(r.out).Metrics()["Compiler.Warnings"], "0") << r.out;
}

// The whole solution built, stamped, rebuilt with EXTRA defined (quoted values reach the
// compiler intact) and tested.
TEST_P(MSBuild, TheDemoBuildProcessRuns) {
  // Run from a copy, as the demo does: qvhost saves the counted-up build number into it. Its
  // last step runs MSTest.exe, the stand-in here.
  s.dir.Write("options.xml",
              "<QvOptions><Section key=\"VisualStudioDotNet\"><Value name=\"MSDevPath2008\" "
              "type=\"string\">" +
                  kBin + "/standins/mstest/</Value></Section></QvOptions>");
  std::string project = s.dir.Write(
      "Greeting.qvproj", TempDir::Read(std::string(QV_EXAMPLES_DIR) + "/demo/Greeting.qvproj"));
  auto r = RunCommand(s.Qvhost(GetParam().launcher) + " run " + ShellQuote(project) +
                      " --var DEMO=" + ShellQuote(s.samples));
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_NE(TempDir::Read(project).find("<Property name=\"AssemblyVersionBuild\">42</Property>"),
            std::string::npos);
  auto run = RunCommand(
      "mono " + ShellQuote(s.samples + "/vs2008/Greeting.Console/bin/Debug/Greeting.Console.exe"));
  EXPECT_NE(run.out.find("Version: 1.2.42.0\nSymbols: DEBUG=on TRACE=on EXTRA=on"),
            std::string::npos)
      << run.out;
  EXPECT_TRUE(fs::exists(s.samples + "/vs2008/Greeting.Console/bin/Release/Greeting.Console.exe"));
  Log log(r.out);
  EXPECT_EQ(log.Metrics()["Compiler.Errors"], "0");
  EXPECT_EQ(log.Metrics()["Compiler.Warnings"], "0");
  auto groups = log.Groups();
  EXPECT_NE(std::find(groups.begin(), groups.end(), "Project Greeting.Lib.csproj"), groups.end())
      << r.out;
}

TEST_P(MSBuild, ParallelBuildGivesTheGroupsOfASerialOne) {
  fs::copy(kFixtures + "/parallel", s.dir.Path() + "/four", fs::copy_options::recursive);
  std::string sln = s.dir.Path() + "/four/Four.sln";
  std::vector<std::string> props = {"Solution=" + sln, "SolutionConfiguration=Release|Any CPU",
                                    "VStudioVersion=vs2008", "BuildAction=baRebuild"};
  auto serial = Exec(With(props, {"MaxCPUs=1"}));
  ASSERT_EQ(serial.exitCode, 0) << serial.out << serial.err;
  for (char n = '1'; n <= '4'; ++n)  // so that both runs start clean
    for (const char* out : {"/bin", "/obj"})
      fs::remove_all(s.dir.Path() + "/four/Part" + n + out);
  auto parallel = Exec(With(props, {"MaxCPUs=2"}));
  ASSERT_EQ(parallel.exitCode, 0) << parallel.out << parallel.err;
  Log one(serial.out), two(parallel.out);
  EXPECT_EQ(one.ProjectGroups().size(), 4u) << serial.out;
  EXPECT_EQ(two.ProjectGroups(), one.ProjectGroups());
  EXPECT_EQ(two.Metrics()["Compiler.Warnings"], "4");
  EXPECT_EQ(two.Metrics(), one.Metrics());
}

TEST_P(MSBuild, AProjectTheEngineCannotBuildFailsWithItsError) {
  auto r = Exec({"Solution=" + s.samples + "/vs2005/OrderDesk.sln",
                 "SolutionConfiguration=Debug|Win32", "VStudioVersion=vs2005",
                 "BuildType=btSelectedProjects", "SelectedProjects=OrderNative"});
  EXPECT_EQ(r.exitCode, 1) << r.out;
  std::string project = s.samples + "/vs2005/OrderNative/OrderNative.vcproj";
  std::string error =
      DotNet() ? "[3] MSBUILD : error MSB4192: The project file \"OrderNative/OrderNative.vcproj\" "
                 "is in the \".vcproj\" or \".dsp\" file format, which MSBuild cannot build "
                 "directly. Please convert the project by opening it in the Visual Studio IDE or "
                 "running the conversion tool, or, for \".vcproj\", use MSBuild to build the "
                 "solution file containing the project instead."
               : "[3] OrderNative/OrderNative.vcproj : error : " + project + ": Project file '" +
                     project +
                     "' is a VS2003 project, which is not supported by xbuild. You need to "
                     "convert it to msbuild format to build with xbuild.";
  Log log(r.out);
  EXPECT_TRUE(log.Has(error)) << r.out;
  EXPECT_TRUE(log.Has("[3] MSBuild.exe returned Error code : 1")) << r.out;
}

TEST_P(MSBuild, BuildsVisualStudio2005VisualBasicAndCSharpProjects) {
  if (!DotNet()) GTEST_SKIP() << "Mono's Visual Basic compiler is not packaged here";
  auto r = Exec({"Solution=" + s.samples + "/vs2005/OrderDesk.sln",
                 "SolutionConfiguration=Debug|Mixed Platforms", "VStudioVersion=vs2005",
                 "BuildType=btSelectedProjects", "SelectedProjects=OrderTool"});
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_TRUE(fs::exists(s.samples + "/vs2005/Orders.Core/bin/Debug/Orders.Core.dll"));
  EXPECT_TRUE(fs::exists(s.samples + "/vs2005/OrderTool/bin/Debug/OrderTool.exe"));
}

TEST(DotNetEngine, ABrokenSdkIsNamedAndFailsTheAction) {
  if (!kDotNet.Present()) GTEST_SKIP() << "dotnet is not here";
  Session s;
  std::string broken = s.dir.Write("broken/dotnet", "#!/bin/sh\necho broken >&2\nexit 3\n");
  fs::permissions(broken, fs::perms::owner_all);
  auto r = RunCommand("QV_DOTNET=" + ShellQuote(broken) + " " +
                      s.Command(kDotNet.launcher, {"Solution=" + s.samples + "/vs2008/Greeting.sln",
                                                   "SolutionConfiguration=Release|Any CPU"}));
  EXPECT_EQ(r.exitCode, 1);
  Log log(r.out);
  EXPECT_TRUE(log.Has("[0] MSBuild.exe: the .NET SDK does not work: \"" + broken +
                      " --version\" fails; set QV_DOTNET or choose --msbuild-engine xbuild\n"))
      << r.out;
  EXPECT_TRUE(log.Has("[3] MSBuild.exe returned Error code : 3")) << r.out;
}

INSTANTIATE_TEST_SUITE_P(Engines, MSBuild, ::testing::Values(kXBuild, kDotNet),
                         [](const auto& info) { return info.param.name; });

// Two runs of one project: the counted-up numbers reach the sources and the project file,
// whose comments and layout stay.
TEST(Stamping, BuildNumbersCountUpFromRunToRun) {
  Session s;
  const std::string sln = s.samples + "/vs2008/Mixed.sln";
  const std::string head =
      "<?xml version=\"1.0\"?>\n<!-- nightly build -->\n<QvProject>\n  <Actions>\n"
      "    <Action type=\"TQvVSDotNetAction\">  <!-- stamps, then builds -->\n"
      "      <Property name=\"Solution\">" +
      sln +
      "</Property>\n"
      "      <Property name=\"SolutionConfiguration\">Release|Any CPU</Property>\n"
      "      <Property name=\"VStudioVersion\">vs2008</Property>\n"
      "      <Property name=\"UpdateAssemblyInfo\">True</Property>\n"
      "      <Property name=\"UpdateAssemblyVersion\">True</Property>\n"
      "      <Property name=\"AssemblyVersion\">1|2|41|0</Property>\n"
      "      <Property name=\"AutoIncAssemblyBuildNumber\">True</Property>\n"
      "      <Property name=\"UpdateWin32Resource\">True</Property>\n"
      "      <Property name=\"BuildVersion\" value=\"41\"/>\n"
      "      <Property name=\"AutoIncBuild\">True</Property>\n";
  const std::string tail = "    </Action>\n  </Actions>\n</QvProject>\n";
  std::string project = s.dir.Write("nightly.qvproj", head + tail);
  for (int build : {42, 43}) {
    auto r = RunCommand(s.Qvhost(kBin + "/mono") + " run " + ShellQuote(project));
    ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
    std::string n = std::to_string(build);
    std::string counted = head;
    counted.replace(counted.find("\"41\""), 4, "\"" + n + "\"");
    EXPECT_EQ(TempDir::Read(project), counted + "      <Property name=\"AssemblyVersionBuild\">" +
                                          n + "</Property>\n" + tail);
    for (const char* lib : {"Greeting.Lib", "Greeting.Console"})
      EXPECT_NE(TempDir::Read(s.samples + "/vs2008/" + lib + "/Properties/AssemblyInfo.cs")
                    .find("[assembly: AssemblyVersion(\"1.2." + n + ".0\")]"),
                std::string::npos)
          << lib;
    EXPECT_NE(TempDir::Read(s.samples + "/vs2008/GreetingNative/App.rc")
                  .find("FILEVERSION 1,0,0," + n + "\r\n"),
              std::string::npos);
  }
}

// A Visual Studio 2003 web project served over WebDAV: its AssemblyInfo is fetched,
// stamped and put back; a wrong password fails with the server's status and shows nowhere.
TEST(Stamping, WebProjectOverWebDAV) {
  if (!qvtest::WebDavServer::Available()) GTEST_SKIP() << "no Apache httpd with mod_dav";
  Session s;
  qvtest::WebDavServer server;
  // The project file names "AssemblyInfo.cs"; the updater asks for it lower-cased, which
  // IIS would serve and Apache serves only under that name.
  server.Write("/Web App/WebApp.csproj",
               TempDir::Read(s.samples + "/vs2003/wwwroot/WebApp/WebApp.csproj"));
  server.Write("/Web App/assemblyinfo.cs",
               "using System.Reflection;\r\n[assembly: AssemblyVersion(\"1.0.*\")]\r\n");
  std::string url = "http://127.0.0.1:" + std::to_string(server.Port()) + "/Web App/";
  std::string sln =
      s.dir.Write("Web.sln",
                  "Microsoft Visual Studio Solution File, Format Version 8.00\r\n"
                  "Project(\"{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}\") = \"WebApp\", \"" +
                      url +
                      "WebApp.csproj\", \"{AFFA1CCE-F1E8-4744-9F1A-BE91AE4BE644}\"\r\n"
                      "EndProject\r\nGlobal\r\nEndGlobal\r\n");
  std::vector<std::string> props = {"Solution=" + sln,
                                    "SolutionConfiguration=Release",
                                    "VStudioVersion=vs2003",
                                    "UpdateAssemblyInfo=True",
                                    "UpdateAssemblyVersion=True",
                                    "AssemblyVersion=2|1|40|0",
                                    "ProjLocationDetectMethod=useWebDAV",
                                    "WebDAVUsername=" + server.User()};
  auto wrong = props;
  wrong.push_back("WebDAVPassword=not-" + server.Password());
  auto r = s.Exec(wrong);
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_NE(r.out.find("Error Updating Assembly Info : Unable to connect using WebDAV : "),
            std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("401"), std::string::npos);
  EXPECT_EQ(r.out.find(server.Password()), std::string::npos);
  props.push_back("WebDAVPassword=" + server.Password());
  r = s.Exec(props);
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_EQ(TempDir::Read(server.Root() + "/Web App/assemblyinfo.cs"),
            "using System.Reflection;\r\n[assembly: AssemblyVersion(\"2.1.40.0\")]\r\n");
  EXPECT_EQ(r.out.find(server.Password()), std::string::npos);
}

// A loop over a solution's projects with a nested build of the loop's project: every
// iteration builds its own project (fresh nested actions), and a number the nested action
// counts up is saved once, as the last iteration left it.
TEST(SolutionLoop, NestedBuildPerProjectInDependencyOrder) {
  Session s;
  std::string project = s.dir.Write(
      "loop.qvproj",
      "<QvProject>\n  <Actions>\n"
      "    <Action type=\"VS.NET Solution Iterator\">\n"
      "      <Property name=\"Solution\">" +
          s.samples +
          "/vs2005/OrderDesk.sln</Property>\n"
          "      <Property name=\"IterateValue\">svName</Property>\n"
          "      <Property name=\"VariableName\">P</Property>\n"
          "      <Actions>\n"
          "        <Action type=\"TQvVSDotNetAction\">\n"
          "          <Property name=\"Solution\">" +
          s.samples +
          "/vs2005/OrderDesk.sln</Property>\n"
          "          <Property name=\"SolutionConfiguration\">Release|Any CPU</Property>\n"
          "          <Property name=\"VStudioVersion\">vs2005</Property>\n"
          "          <Property name=\"UseMSBuild\">False</Property>\n"
          "          <Property name=\"BuildType\">btSelectedProjects</Property>\n"
          "          <Property name=\"SelectedProjects\"><Line>%P%</Line></Property>\n"
          "          <Property name=\"UpdateWin32Resource\">True</Property>\n"
          "          <Property name=\"BuildVersion\">41</Property>\n"
          "          <Property name=\"AutoIncBuild\">True</Property>\n"
          "        </Action>\n      </Actions>\n    </Action>\n  </Actions>\n</QvProject>\n");
  auto r = RunCommand(s.Qvhost(kBin + "/mono") + " run " + ShellQuote(project));
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  std::vector<std::string> built;
  for (const auto& call : s.Calls())
    built.push_back(call[3]);
  EXPECT_EQ(built, (std::vector<std::string>{
                       "http://localhost/OrderSite", "Orders.Core\\Orders.Core.csproj",
                       "OrderNative\\OrderNative.vcproj", "OrderTool\\OrderTool.vbproj",
                       "OrderSetup\\OrderSetup.vdproj"}));
  EXPECT_NE(TempDir::Read(project).find("<Property name=\"BuildVersion\">42</Property>"),
            std::string::npos);
  EXPECT_NE(TempDir::Read(s.samples + "/vs2005/OrderNative/other.rc").find("FILEVERSION 1,0,0,42"),
            std::string::npos);
}

#endif

}  // namespace
