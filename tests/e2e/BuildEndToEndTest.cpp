// The build action run for real through qvhost: with Mono's xbuild or the .NET SDK behind the
// MSBuild.exe launcher, and with the devenv.com and MSTest.exe stand-ins where Visual Studio
// itself would run. Command lines and output rules are pinned by the unit suites; these cases
// check what only a real run shows: child processes and the arguments they get, exit codes,
// the log's shape and the files a run saves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "support/JsonLines.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"
#include "support/WebDavServer.h"

using qvtest::RunCommand;
using qvtest::ShellQuote;
using qvtest::TempDir;
using testing::Contains;
using Lines = std::vector<std::string>;
using Counts = std::map<std::string, std::string>;

namespace {

namespace fs = std::filesystem;

// `path` ("/"-separated) as this platform writes it.
std::string Native(const std::string& path) {
  std::string native = qvtest::NativePath(path);
  std::replace(native.begin(), native.end(), '/', qv::platform::PathDelim);
  return native;
}

const std::string kBin = QV_OUTPUT_DIR;
const std::string kMSTestFolder =
    qv::IncludeTrailingPathDelimiter(qv::ExtractFileDir(Native(QV_MSTEST_STANDIN)));

// One qvhost session: its own options, key and stand-in folder, and a copy of the samples.
struct Session {
  TempDir dir;
  std::string samples = dir.File("samples");
  std::string standinDir = dir.File("standin");

  Session() {
    fs::copy(QV_EXAMPLES_DIR, samples, fs::copy_options::recursive);
    fs::create_directories(standinDir);
    Options(qv::IncludeTrailingPathDelimiter(qv::ExtractFileDir(Native(QV_DEVENV_STANDIN))));
  }

  // Options naming `folder` as every Visual Studio edition's, 2008 the default edition.
  void Options(const std::string& folder) const {
    dir.Write("options.xml", qv::StringReplaceAll(R"(<QvOptions><Section key="VisualStudioDotNet">
<Value name="MSDevPath2003" type="string">DIR</Value>
<Value name="MSDevPath2005" type="string">DIR</Value>
<Value name="MSDevPath2008" type="string">DIR</Value>
<Value name="DefVSVersion" type="integer">3</Value>
</Section></QvOptions>)",
                                                  "DIR", folder));
  }

  // A file of the samples' copy.
  std::string Sample(const std::string& name) const { return Native(samples + "/" + name); }

  // qvhost with this session's options and package, logging JSON lines.
  std::string Qvhost(const std::string& framework) const {
    return Native(QV_QVHOST) + " --no-default-packages --package " +
           ShellQuote(Native(QV_PACKAGE_MODULE)) + " --options " +
           ShellQuote(dir.File("options.xml")) +
           " --log-format jsonl --framework v3.5=" + ShellQuote(framework) +
           " --framework v2.0=" + ShellQuote(framework);
  }

  // qvhost exec of the build action with `props`.
  std::string Command(const std::string& framework, const Lines& props) const {
    std::string cmd = Qvhost(framework) + " exec TQvVSDotNetAction";
    for (const auto& p : props)
      cmd += " " + ShellQuote(p);
    return cmd;
  }

  // `command` run with this session's stand-in folder and user configuration folder.
  qvtest::CommandResult Run(const std::string& command) const {
    return RunCommand(
        command, "",
        {"QV_STANDIN_DIR=" + standinDir, "XDG_CONFIG_HOME=" + dir.Path(), "APPDATA=" + dir.Path()});
  }
};

// The JSON-lines log of one run.
struct Log {
  std::vector<std::map<std::string, std::string>> events;
  explicit Log(const std::string& out) : events(qvtest::ParseJsonLines(out)) {}
  // Messages as "[tag] text".
  Lines Messages() const {
    Lines r;
    for (const auto& e : events)
      if (e.at("event") == "message") r.push_back("[" + e.at("tag") + "] " + e.at("text"));
    return r;
  }
  // Each project group with everything inside it, sorted: the same in any build order.
  Lines ProjectGroups() const {
    Lines blocks;
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
  Counts Metrics() const {
    Counts r;
    for (const auto& e : events)
      if (e.at("event") == "metric") r[e.at("group") + "." + e.at("name")] = e.at("value");
    return r;
  }
};

// ---- devenv.com's stand-in, and the check command -------------------------------------------

// A solution built by devenv.com, its stand-in replaying Visual Studio 2008's transcript: the
// summary is read from the child's output as it arrives.
TEST(DevEnv, ASolutionBuildIsReadFromTheTranscript) {
  Session s;
  s.dir.Write("standin/default.out", TempDir::Read(QV_FIXTURES_DIR "/devenv/vs2008-succeeded.txt"));
  auto r =
      s.Run(s.Command(s.dir.Path(), {"Solution=" + s.Sample("vs2008/Mixed.sln"),
                                     "SolutionConfiguration=Release|Any CPU", "UseMSBuild=False"}));
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_THAT(
      Log(r.out).Messages(),
      Contains("[1] ========== Build: 2 succeeded, 0 failed, 0 up-to-date, 0 skipped =========="));
}

#ifndef _WIN32  // signals; Windows' own form is in the host's suite
// (That the compiler's own children stop with it is the process runner's suite's.)
TEST(DevEnv, TerminationStopsTheCompiler) {
  Session s;
  s.dir.Write("standin/run1.wait", "");
  std::string started = s.standinDir + "/run1.started";  // written once the child runs
  std::string sln = s.Sample("vs2008/Mixed.sln");
  auto r =
      s.Run("((" +
            s.Command(kBin + "/mono", {"Solution=" + sln, "SolutionConfiguration=Release|Win32",
                                       "UseMSBuild=False"}) +
            ") & pid=$!; for i in $(seq 400); do [ -s " + ShellQuote(started) +
            " ] && break; sleep 0.05; done; kill -INT $pid; wait $pid)");
  EXPECT_EQ(r.exitCode, 130) << r.out;
  EXPECT_THAT(Log(r.out).Messages(), Contains("[3] Action Terminated by User."));
  EXPECT_TRUE(qvtest::ProcessEnds(std::stoi(TempDir::Read(started))));
}
#endif

// Every finding with the action's file and line. (That check runs no action is pinned by the
// host's suite; a project without problems is checked in the demo's case.)
TEST(Check, ReportsWhatABuildWouldTripOverWithoutRunningIt) {
  Session s;
  std::string file =
      s.dir.Write("p.qvproj",
                  "<QvProject><Actions><Action type='TQvVSDotNetAction' caption='Build'>"
                  "<Property name='Solution'>" +
                      s.Sample("vs2008/Greeting.sln") +
                      "</Property><Property name='SolutionConfiguration'>Relase|Any CPU</Property>"
                      "<Property name='VStudioVersion'>vs2005</Property>"
                      "<Property name='BuildType'>btSelectedProjects</Property>"
                      "<Property name='SelectedProjects'><Line>Nowhere.csproj</Line></Property>"
                      "<Property name='ExtraCmdLineParams'>/p:X=%Missing%</Property>"
                      "</Action></Actions></QvProject>");
  s.dir.Write("fx/MSBuild.exe", "");
  auto r = s.Run(s.Qvhost(s.dir.File("fx")) + " check " + file);
  EXPECT_EQ(r.exitCode, 1);
  std::string findings;
  for (const char* finding :
       {": Build: ExtraCmdLineParams: Variable \"Missing\" is not defined",
        ": Build: SolutionConfiguration: The solution has no configuration \"Relase|Any CPU\"; "
        "it has: Debug|Any CPU, Release|Any CPU",
        ": Build: SelectedProjects: Project Nowhere.csproj is not in the solution",
        ": warning: Build: VStudioVersion: The action builds with vs2005 but the solution file "
        "is in vs2008 format"})
    findings += file + ":1" + finding + "\n";
  EXPECT_EQ(r.out, findings + "Checked 1 action: 3 problems, 1 warning\n");
}

// ---- MSBuild with each engine: Mono's xbuild and the .NET SDK's ----------------------------
// (Linux programs both; Windows has no MSBuild to run under Wine.)
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

class MSBuild : public ::testing::TestWithParam<Engine> {
 protected:
  void SetUp() override {
    if (!GetParam().Present()) GTEST_SKIP() << GetParam().name << " or its logger is not here";
  }
  qvtest::CommandResult Exec(const Lines& props) const {
    return s.Run(s.Command(GetParam().launcher, props));
  }
  Session s;
};

// The demo build process, run from a copy of the samples as scripts/demo.sh runs it, is this
// suite's one build of the sample solution: the solution built and stamped (the native
// helper's version resource from a property set of the project file), the chosen projects
// rebuilt with EXTRA defined, each project built once more in a loop, and the tests run by
// MSTest.exe. qvhost saves the counted-up build number into the copy.
TEST_P(MSBuild, TheDemoBuildProcessRuns) {
  s.Options(kMSTestFolder);
  std::string original = TempDir::Read(QV_EXAMPLES_DIR "/demo/Greeting.qvproj");
  std::string project = s.dir.Write("Greeting.qvproj", original);
  std::string args = ShellQuote(project) + " --var DEMO=" + ShellQuote(s.samples);
  auto r = s.Run(s.Qvhost(GetParam().launcher) + " check " + args);
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(r.out, "Checked 6 actions: 0 problems, 0 warnings\n") << r.err;
  r = s.Run(s.Qvhost(GetParam().launcher) + " run " + args);
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  std::string counted = "<Property name=\"AutoIncAssemblyBuildNumber\">True</Property>\n";
  EXPECT_EQ(TempDir::Read(project),
            original.insert(original.find(counted) + counted.size(),
                            "      <Property name=\"AssemblyVersionBuild\">42</Property>\n"));
  EXPECT_NE(TempDir::Read(s.samples + "/vs2008/GreetingNative/App.rc")
                .find("\r\nFILEVERSION 1,3,0,118\r\nPRODUCTVERSION 1,3,0,118\r\n"),
            std::string::npos);
  std::string bin = s.samples + "/vs2008/Greeting.Console/bin/";
  EXPECT_EQ(RunCommand("mono " + ShellQuote(bin + "Debug/Greeting.Console.exe")).out,
            "Hello, World!\nVersion: 1.2.42.0\nSymbols: DEBUG=on TRACE=on EXTRA=on\n"
            "Library symbols: DEBUG TRACE EXTRA\n");
  EXPECT_TRUE(fs::exists(bin + "Release/Greeting.Console.exe"));
  Log log(r.out);
  EXPECT_EQ(log.Metrics(), (Counts{{"Compiler.Errors", "0"},
                                   {"Compiler.Warnings", "0"},
                                   {"Unit_Tests.Tests_Failed", "0"},
                                   {"Unit_Tests.Tests_Successful", "1"}}));
  // The groups the steps open, without the engine's own: the chosen projects are cleaned,
  // then built in dependency order whatever order they are listed in; the loop follows it.
  Lines steps;
  for (const auto& e : log.events)
    if (e.at("event") == "groupStart" && e.at("title").find(".csproj") == std::string::npos &&
        e.at("title") != "MSBuild Properties")
      steps.push_back(e.at("title"));
  EXPECT_EQ(steps, (Lines{"Updating AssemblyInfo", "Solution " + s.samples + "/vs2008/Greeting.sln",
                          "Cleaning Projects", "Project Greeting.Lib", "Project Greeting.Console",
                          "Project Greeting.Lib", "Project Greeting.Console",
                          "Iteration 1 of 3: P = Greeting.Lib", "Project Greeting.Lib",
                          "Iteration 2 of 3: P = Greeting.Console", "Project Greeting.Console",
                          "Iteration 3 of 3: P = Greeting.Tests", "Project Greeting.Tests"}));
}

// Disabled warnings are silenced (without the switch each engine reports at least one of them;
// the parallel build's case counts warnings); a compile error fails the action with its
// position, counted once however often the engine repeats it.
TEST_P(MSBuild, CompilerWarningsAndErrors) {
  const std::string greeter = "samples/vs2008/Greeting.Lib/Greeter.cs";
  std::string text = TempDir::Read(s.dir.File(greeter));
  s.dir.Write(greeter,
              text.insert(text.rfind('}', text.rfind('}') - 1),
                          "    private int unusedField;\r\n"
                          "    public static void Noisy() { int assigned = 1; }\r\n"
                          "    public static int Broken() { return missingName; }\r\n    "));
  auto r =
      Exec({"Solution=" + s.samples + "/vs2008/Greeting.sln",
            "SolutionConfiguration=Release|Any CPU", "VStudioVersion=vs2008",
            "OverrideWarnings=True", "DisableSelectedWarnings=True", "DisableWarnings=0169;0219"});
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_EQ(Log(r.out).Metrics(), (Counts{{"Compiler.Errors", "1"}, {"Compiler.Warnings", "0"}}))
      << r.out;
  // The structured fields name the file by a path a reader can open (the other fields are the
  // log's own suite's).
  EXPECT_NE(r.out.find("\"file\":\"" + s.dir.File(greeter) + "\",\"line\":"), std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("{\"event\":\"runEnd\",\"success\":false,\"errors\":1,"), std::string::npos);
}

TEST_P(MSBuild, ParallelBuildGivesTheGroupsOfASerialOne) {
  fs::copy(QV_FIXTURES_DIR "/parallel", s.dir.File("four"), fs::copy_options::recursive);
  Lines props = {"Solution=" + s.dir.File("four/Four.sln"), "SolutionConfiguration=Release|Any CPU",
                 "VStudioVersion=vs2008", "BuildAction=baRebuild", "MaxCPUs=1"};
  auto serial = Exec(props);
  ASSERT_EQ(serial.exitCode, 0) << serial.out << serial.err;
  for (char n = '1'; n <= '4'; ++n)  // so that both runs start clean
    for (const char* out : {"/bin", "/obj"})
      fs::remove_all(s.dir.File("four/Part") + n + out);
  props.back() = "MaxCPUs=2";
  auto parallel = Exec(props);
  ASSERT_EQ(parallel.exitCode, 0) << parallel.out << parallel.err;
  Log one(serial.out), two(parallel.out);
  EXPECT_EQ(one.ProjectGroups().size(), 4u) << serial.out;
  EXPECT_EQ(two.ProjectGroups(), one.ProjectGroups());
  EXPECT_EQ(two.Metrics()["Compiler.Warnings"], "4");
  EXPECT_EQ(two.Metrics(), one.Metrics());
}

INSTANTIATE_TEST_SUITE_P(Engines, MSBuild, ::testing::Values(kXBuild, kDotNet),
                         [](const auto& info) { return info.param.name; });

// A .NET SDK that does not start is named, with what to do, and fails the action.
TEST(DotNetEngine, ABrokenSdkIsNamedAndFailsTheAction) {
  if (!kDotNet.Present()) GTEST_SKIP() << "dotnet is not here";
  Session s;
  std::string broken = s.dir.Write("broken/dotnet", "#!/bin/sh\necho broken >&2\nexit 3\n");
  fs::permissions(broken, fs::perms::owner_all);
  auto r = s.Run("QV_DOTNET=" + ShellQuote(broken) + " " +
                 s.Command(kDotNet.launcher, {"Solution=" + s.Sample("vs2008/Greeting.sln"),
                                              "SolutionConfiguration=Release|Any CPU"}));
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_THAT(Log(r.out).Messages(),
              Contains("[0] MSBuild.exe: the .NET SDK does not work: \"" + broken +
                       " --version\" fails; set QV_DOTNET or choose --msbuild-engine xbuild\n"));
  EXPECT_THAT(Log(r.out).Messages(), Contains("[3] MSBuild.exe returned Error code : 3"));
}

// ---- stamping over WebDAV, and a solution loop -----------------------------------------------

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
  std::string sln =
      s.dir.Write("Web.sln",
                  "Microsoft Visual Studio Solution File, Format Version 8.00\r\n"
                  "Project(\"{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}\") = \"WebApp\", "
                  "\"http://127.0.0.1:" +
                      std::to_string(server.Port()) +
                      "/Web App/WebApp.csproj\", \"{AFFA1CCE-F1E8-4744-9F1A-BE91AE4BE644}\"\r\n"
                      "EndProject\r\nGlobal\r\nEndGlobal\r\n");
  Lines props = {"Solution=" + sln,
                 "SolutionConfiguration=Release",
                 "VStudioVersion=vs2003",
                 "UpdateAssemblyInfo=True",
                 "UpdateAssemblyVersion=True",
                 "AssemblyVersion=2|1|40|0",
                 "ProjLocationDetectMethod=useWebDAV",
                 "WebDAVUsername=" + server.User(),
                 "WebDAVPassword=not-" + server.Password()};
  auto refused = s.Run(s.Command(kBin + "/mono", props));
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(Log(refused.out).Messages(),
              Contains("[3] Error Updating Assembly Info : Unable to connect using WebDAV : "
                       "HTTP/1.1 401 Unauthorized"));
  props.back() = "WebDAVPassword=" + server.Password();
  auto r = s.Run(s.Command(kBin + "/mono", props));
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_EQ(TempDir::Read(server.Root() + "/Web App/assemblyinfo.cs"),
            "using System.Reflection;\r\n[assembly: AssemblyVersion(\"2.1.40.0\")]\r\n");
  for (const auto& out : {refused.out, r.out})
    EXPECT_EQ(out.find(server.Password()), std::string::npos) << out;
}

// A loop over a solution's projects with a nested build of the loop's project. Every
// iteration gets fresh nested actions (the demo's log shows each building its own project);
// the number the nested action counts up is saved into its element once, as the last
// iteration left it.
TEST(SolutionLoop, ANestedActionsCountIsSavedOnce) {
  Session s;
  std::string text = qv::StringReplaceAll(R"(<QvProject><Actions>
  <Action type="VS.NET Solution Iterator">
    <Property name="Solution">SLN</Property>
    <Property name="IterateValue">svName</Property>
    <Property name="VariableName">P</Property>
    <Actions><Action type="TQvVSDotNetAction">
      <Property name="Solution">SLN</Property>
      <Property name="SolutionConfiguration">Release|Any CPU</Property>
      <Property name="VStudioVersion">vs2005</Property>
      <Property name="UseMSBuild">False</Property>
      <Property name="BuildType">btSelectedProjects</Property>
      <Property name="SelectedProjects"><Line>%P%</Line></Property>
      <Property name="UpdateWin32Resource">True</Property>
      <Property name="BuildVersion">41</Property>
      <Property name="AutoIncBuild">True</Property>
    </Action></Actions>
  </Action>
</Actions></QvProject>
)",
                                          "SLN", s.Sample("vs2005/OrderDesk.sln"));
  std::string project = s.dir.Write("loop.qvproj", text);
  auto r = s.Run(s.Qvhost(kBin + "/mono") + " run " + ShellQuote(project));
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  EXPECT_EQ(TempDir::Read(project), qv::StringReplaceAll(text, ">41<", ">42<"));
}

#endif

}  // namespace
