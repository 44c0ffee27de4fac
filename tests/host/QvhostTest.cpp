// qvhost as people and scripts use it: its commands, output and exit statuses.
#include <signal.h>

#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "QvSysUtils.h"

using qvhosttest::RunQvhost;
using qvhosttest::WithoutTimes;
using qvtest::ShellQuote;
using qvtest::TempDir;

namespace {

TEST(Qvhost, EachCommandsOutputAndExitStatus) {
  TempDir dir;
  dir.Write("fail.qvproj", "<QvProject><Actions><Action type='Fail'/></Actions></QvProject>");
  dir.Write("bad.qvproj", "<QvProject>\n<Actions>\n</QvProject>");
  std::string counted = dir.Write(
      "count.qvproj", "<QvProject><Actions><Action type='Count Builds'/></Actions></QvProject>");
  std::filesystem::permissions(counted, std::filesystem::perms::owner_read);
  dir.Write("MetaBase.xml", "<configuration>\n<MBProperty");
  struct Case {
    std::string args;
    int exit;
    std::string err, out = "*";  // "*": not compared
    std::string env = "";
  } cases[] = {
      {"run fail.qvproj", 1, ""},
      {"run none.qvproj", 2,
       "qvhost: Cannot read project file \"none.qvproj\" : No such file or directory\n"},
      {"exec " + ShellQuote("No Such Action"), 2,
       "qvhost: Unknown action type \"No Such Action\" (qvhost actions lists the types)\n"},
      {"--var Config actions", 2, "qvhost: expected NAME=VALUE, not \"Config\"\n"},
      // An IIS metabase export is read at start, named by --metabase or by QV_METABASE.
      {"--metabase MetaBase.xml actions", 2,
       "qvhost: MetaBase.xml:2: Error parsing start element tag\n"},
      {"actions", 2, "qvhost: Cannot read metabase file \"none.xml\" : No such file or directory\n",
       "*", "QV_METABASE=none.xml"},
      {"--log-format xml actions", 2, "*"},
      {"run", 2, "PROJECT is required\nRun with --help for more information.\n"},
      {"", 2, "A subcommand is required\nRun with --help for more information.\n"},
      {"build fail.qvproj", 2, "*"},
      {"--ci bamboo actions", 2, "*"},
      {"check fail.qvproj", 0, "", "Checked 1 action: 0 problems, 0 warnings\n"},
      {"check bad.qvproj", 2, "qvhost: bad.qvproj:3: Start-end tags mismatch\n"},
      {"--version", 0, "", "qvhost 0.1.0\n"},
      {"--help", 0, ""},
      {"actions", 0, ""},
      {"describe Fail", 0, "",
       "\"Fail\" (TQvTestFailAction), 2 properties:\n"
       "  Message: String = \"Broken\"\n"
       "  Mode: TTestFailMode = \"fmFailAction\"\n"
       "      one of fmFailAction, fmException, fmReturnFalse, fmUnknown\n"},
      {"describe TQvTestFailAction --format json", 0, "",
       R"({"class":"TQvTestFailAction","caption":"Fail","properties":[{"name":"Message","type":"String","default":"Broken","stored":true},{"name":"Mode","type":"TTestFailMode","default":"fmFailAction","stored":true,"values":["fmFailAction","fmException","fmReturnFalse","fmUnknown"]}]})"
       "\n"},
      {"--log-format jsonl run bad.qvproj", 2, "qvhost: bad.qvproj:3: Start-end tags mismatch\n",
       R"({"event":"error","file":"bad.qvproj","line":3,"text":"Start-end tags mismatch","time":T})"
       "\n"},
      // A build that succeeded but whose changes cannot be saved says so and fails the run.
      {"--no-color run count.qvproj", 1, "",
       "Action: Count Builds (TQvTestCounterAction)\n"
       "  Build number 1\n"
       "[ok] Count Builds succeeded in T s\n"
       "[error] Unable to write file \"count.qvproj\" : Permission denied\n"
       "\n"
       "0 Error(s), 0 Warning(s)\n"
       "[error] Build succeeded but saving its changes failed: 1 action in T s\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.env + " " + c.args);
    auto r = RunQvhost(dir, c.args, c.env);
    EXPECT_EQ(r.exitCode, c.exit) << r.out << r.err;
    EXPECT_EQ(c.err == "*" ? "*" : r.err, c.err);
    EXPECT_EQ(c.out == "*" ? "*" : WithoutTimes(r.out), c.out);
  }
}

TEST(Qvhost, ListsRegistrationsWithDesignTimeExtras) {
  TempDir dir;
  const std::string runTime =
      "Actions:\n"
      "  TQvTestLogAction  \"Log Messages\"  category \"Host Tests\"  icon TESTLOG\n"
      "  TQvTestFailAction  \"Fail\"  category \"Host Tests\"  icon TESTFAIL\n"
      "  TQvTestCounterAction  \"Count Builds\"  category \"Host Tests\"  icon TESTCOUNT\n"
      "  TQvTestPasswordAction  \"Sign In\"  category \"Host Tests\"  icon TESTSIGNIN\n"
      "  TQvTestLoopAction  \"Loop Over Items\"  category \"Host Tests\"  icon TESTLOOP\n"
      "  TQvTestRunAction  \"Run Program\"  category \"Host Tests\"  icon TESTRUN\n"
      "  TQvTestEnvironmentAction  \"Show Environment\"  category \"Host Tests\"  icon TESTENV\n"
      "Script methods:\n"
      "  TQvTestLogAction.Describe  function _Describe(const Prefix: string): string\n"
      "Constants:\n"
      "  TestAnswer = 42\n"
      "Global objects:\n"
      "  HostTestOptions  function HostTestOptions: Variant\n"
      "Enumerations:\n"
      "  TTestFailMode: fmFailAction, fmException, fmReturnFalse, fmUnknown\n"
      "Options:\n"
      "  TQvTestOptions  \"Host Test Options\"  category \"Host Tests\"  key QvHostTest  icon "
      "TESTOPTIONS\n";
  EXPECT_EQ(RunQvhost(dir, "actions").out, runTime);
  std::string designTime = qv::StringReplaceAll(runTime, "  TestAnswer = 42\n",
                                                "  TestAnswer = 42\n  TestDesignLevel = 2\n") +
                           "Property editors:\n"
                           "  TQvTestLogAction.Text (string)  TTestTextEditor\n"
                           "Action pages:\n"
                           "  TQvTestLogAction: TTestLogFrame, TTestDetailsFrame\n"
                           "  TQvTestLoopAction: TTestLoopFrame\n"
                           "Option pages:\n"
                           "  TQvTestOptions: TTestOptionsFrame\n";
  // Global options go before or after the command word.
  EXPECT_EQ(RunQvhost(dir, "--design-time actions").out, designTime);
  EXPECT_EQ(RunQvhost(dir, "actions --design-time").out, designTime);
  std::string sequence = RunQvhost(dir, "actions --design-time --sequence").out;
  EXPECT_LT(sequence.find("options TQvTestOptions TESTOPTIONS\n"),
            sequence.find("option pages TQvTestOptions: TTestOptionsFrame\n"))
      << sequence;
}

// A password given in plain text is logged by neither log format, and leaves the project
// sealed under the per-user key.
TEST(Qvhost, KeepsPasswordsOutOfLogsAndProjectFiles) {
  TempDir dir;
  const std::string plain = TempDir::Read(QV_FIXTURES_DIR "/host/password.qvproj");
  std::string project = dir.File("p.qvproj");
  for (const char* format : {"text", "jsonl"}) {
    dir.Write("p.qvproj", plain);
    auto r = RunQvhost(dir, std::string("run p.qvproj --log-format ") + format);
    EXPECT_EQ(r.exitCode, 0) << r.out << r.err;
    EXPECT_EQ((r.out + r.err).find("hunter2"), std::string::npos) << r.out << r.err;
    EXPECT_NE(r.out.find("Signed in as ci with a password of 7 characters"), std::string::npos);
  }
  std::string saved = TempDir::Read(project);
  EXPECT_EQ(saved.find("hunter2"), std::string::npos) << saved;
  EXPECT_NE(saved.find("<Property name='NewPassword' value=''/>"), std::string::npos) << saved;
  EXPECT_NE(saved.find("<Property name='Password' value='qvenc1:"), std::string::npos) << saved;
#ifndef _WIN32  // Windows seals passwords with the user's own key, kept by the system
  EXPECT_TRUE(std::filesystem::exists(dir.File("config/quorvex/key")));
#endif
  auto again = RunQvhost(dir, "run p.qvproj");
  EXPECT_NE(again.out.find("Signed in as ci with a password of 7 characters"), std::string::npos);
}

#ifndef _WIN32  // POSIX signals; the Windows forms are in WindowsHostTest
// A killed qvhost takes its running program with it; an interrupted one stops the program and
// ends with the signal's status.
TEST(Qvhost, SignalsStopTheRunningProgram) {
  for (auto [signal, status] : {std::pair{"KILL", 128 + SIGKILL}, {"TERM", 143}, {"INT", 130}}) {
    SCOPED_TRACE(signal);
    TempDir dir;
    dir.Write("p.qvproj",
              "<QvProject><Actions><Action type='Run Program'>"
              "<Property name='Program'>/bin/sh</Property>"
              "<Property name='Arguments'>-c \"echo $$ > pid; exec sleep 30\"</Property>"
              "</Action><Action type='Log Messages'/></Actions></QvProject>");
    auto start = std::chrono::steady_clock::now();
    // qvhost handles SIGINT even where the shell starts background jobs ignoring it.
    auto r = qvhosttest::RunInDir(dir, "((" + qvhosttest::QvhostCommand("run p.qvproj") +
                                           ") & pid=$!; for i in $(seq 400); do [ -s pid ] && "
                                           "break; sleep 0.05; done; kill -" +
                                           signal + " $pid; wait $pid)");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    EXPECT_EQ(r.exitCode, status) << r.out << r.err;
    EXPECT_TRUE(qvtest::ProcessEnds(std::stoi(TempDir::Read(dir.File("pid")))));
    if (status == 128 + SIGKILL) continue;
    EXPECT_EQ(WithoutTimes(r.out),
              "Action: Run Program (TQvTestRunAction)\n"
              "  Running /bin/sh with parameters : -c \"echo $$ > pid; exec sleep 30\"\n"
              "  [error] Action Terminated by User.\n"
              "[error] Run Program failed in T s\n"
              "\n"
              "0 Error(s), 0 Warning(s)\n"
              "[error] Build interrupted: 1 action run, 1 not started in T s\n");
  }
}
#endif

}  // namespace
