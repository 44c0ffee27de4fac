#include "Runner.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "QvSysUtils.h"
#include "support/ErrorOf.h"

using qvhosttest::TestHost;
using qvtest::ErrorOf;
using qvtest::TempDir;

namespace {

std::string Project(const std::string& actions) {
  return "<QvProject><Actions>" + actions + "</Actions></QvProject>\n";
}

// A project as people keep them: a byte-order mark, CR LF, tabs, comments everywhere.
const std::string kCounterProject = TempDir::Read(QV_FIXTURES_DIR "/host/nightly.qvproj");

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(TRunner, SavesDynamicPropertiesAndPropertySetsBackInPlace) {
  TempDir dir;
  std::string file = dir.Write("nightly.qvproj", kCounterProject);
  std::filesystem::create_hard_link(file, dir.File("before"));
  {
    TestHost host(dir);
    EXPECT_EQ(host.Session->RunProject(file), qvhost::kExitSuccess);
    EXPECT_EQ(host.Out.str(),
              "Action: Next build number (TQvTestCounterAction)\n"
              "  Build number 42\n"
              "[ok] Next build number succeeded in 0.000 s\n"
              "Action: Log Messages (TQvTestLogAction)\n"
              "  Building Release\n"
              "[ok] Log Messages succeeded in 0.000 s\n"
              "\n"
              "0 Error(s), 0 Warning(s)\n"
              "Metrics:\n"
              "  Compiler.Warnings = 0\n"
              "  Compiler.Errors = 0\n"
              "[ok] Build succeeded: 2 actions in 0.000 s\n");
  }
  std::string expected = Replace(kCounterProject, ">41<", ">42<");
  expected = Replace(expected, "'41'", "'42'");
  EXPECT_EQ(TempDir::Read(file), expected);
  // Replaced through a rename: the old file lives on under its other name, and no temporary
  // file is left behind.
  EXPECT_EQ(TempDir::Read(dir.File("before")), kCounterProject);
  int entries = 0;
  for ([[maybe_unused]] auto& e : std::filesystem::directory_iterator(dir.Path()))
    ++entries;
  EXPECT_EQ(entries, 2);

  TestHost again(dir);
  EXPECT_EQ(again.Session->RunProject(file), qvhost::kExitSuccess);
  EXPECT_EQ(TempDir::Read(file), Replace(Replace(expected, ">42<", ">43<"), "'42'", "'43'"));
}

TEST(TRunner, RunsNestedActionsOncePerIterationWithTheLoopVariable) {
  TempDir dir;
  std::string file = dir.Write(
      "loop.qvproj",
      Project("<Action type='TQvTestLoopAction' caption='Each target'>"
              "<Property name='VariableName' value='Target'/>"
              "<Property name='Items'><Line>win32</Line><Line>x64</Line></Property>"
              "<Actions>"
              "<Action type='TQvTestLogAction'><Property name='Text'>Building %Target%</Property>"
              "<Property name='Details'><Line>for %Target%</Line></Property></Action>"
              "<Action type='TQvTestFailAction' enabled='false'/>"
              "</Actions></Action>"
              "<Action type='TQvTestLogAction'><Property name='Text'>After %Target%</Property>"
              "</Action>"));
  TestHost host(dir);
  EXPECT_EQ(host.Session->RunProject(file), qvhost::kExitBuildFailed);
  std::string iteration =
      "    Action: Log Messages (TQvTestLogAction)\n"
      "      Building TARGET\n"
      "      Details\n"
      "        for TARGET\n"
      "      [ok] Details\n"
      "    [ok] Log Messages succeeded in 0.000 s\n";
  EXPECT_EQ(host.Out.str(),
            "Action: Each target (TQvTestLoopAction)\n"
            "  Iteration 1 of 2: Target = win32\n" +
                qv::StringReplaceAll(iteration, "TARGET", "win32") +
                "  Iteration 2 of 2: Target = x64\n" +
                qv::StringReplaceAll(iteration, "TARGET", "x64") +
                "[ok] Each target succeeded in 0.000 s\n"
                "Action: Log Messages (TQvTestLogAction)\n"
                "  [error] Text: Variable \"Target\" is not defined\n"
                "[error] Log Messages failed in 0.000 s\n"
                "\n"
                "0 Error(s), 0 Warning(s)\n"
                "Metrics:\n"
                "  Compiler.Warnings = 0\n"
                "  Compiler.Errors = 0\n"
                "[error] Build failed: 1 of 4 actions failed in 0.000 s\n");
}

TEST(TRunner, CatchesEveryWayAnActionFailsAndStopsTheBuild) {
  struct Case {
    const char* mode;
    const char* errorLine;
  } cases[] = {
      {"fmFailAction", "Broken here"},
      {"fmException", "Broken here"},
      {"fmReturnFalse", "Broken here"},
      {"fmUnknown", "The action raised an exception the host does not know"},
  };
  for (const auto& c : cases) {
    TempDir dir;
    std::string file = dir.Write(
        "fail.qvproj", Project(std::string("<Action type='Fail'><Property name='Mode'>") + c.mode +
                               "</Property><Property name='Message'>Broken here</Property>"
                               "</Action><Action type='Log Messages'/>"));
    TestHost host(dir);
    EXPECT_EQ(host.Session->RunProject(file), qvhost::kExitBuildFailed) << c.mode;
    EXPECT_EQ(host.Out.str(), std::string("Action: Fail (TQvTestFailAction)\n"
                                          "  Trying\n"
                                          "    About to fail\n"
                                          "    [error] ") +
                                  c.errorLine +
                                  "\n"
                                  "  [error] Trying\n"
                                  "[error] Fail failed in 0.000 s\n"
                                  "\n"
                                  "0 Error(s), 0 Warning(s)\n"
                                  "[error] Build failed: 1 of 1 action failed in 0.000 s\n")
        << c.mode;
  }
}

TEST(TRunner, ReportsValidationErrorsWithoutExecuting) {
  TempDir dir;
  std::string file = dir.Write("invalid.qvproj", Project("<Action type='Log Messages'/>"));
  TestHost host(dir);
  EXPECT_EQ(host.Session->RunProject(file), qvhost::kExitBuildFailed);
  EXPECT_EQ(host.Out.str(),
            "Action: Log Messages (TQvTestLogAction)\n"
            "  [error] Text: There is nothing to log\n"
            "[error] Log Messages failed in 0.000 s\n"
            "\n"
            "0 Error(s), 0 Warning(s)\n"
            "[error] Build failed: 1 of 1 action failed in 0.000 s\n");
}

TEST(TRunner, RejectsActionsItCannotSetUpWithFileAndLine) {
  struct Case {
    const char* actions;
    const char* message;
  } cases[] = {
      {"<Action type='TNoSuchAction'/>", ":2: Unknown action type \"TNoSuchAction\""},
      {"<Action type='Fail'>\n<Property name='Colour'>red</Property></Action>",
       ":3: Unknown property \"Colour\" of TQvTestFailAction"},
      {"<Action type='Log Messages'><Property name='Warnings'>many</Property></Action>",
       ":2: Invalid value 'many' for property \"Warnings\""},
      {"<Action type='Fail'><Actions/></Action>",
       ":2: TQvTestFailAction is not a loop action and cannot hold nested actions"},
  };
  for (const auto& c : cases) {
    TempDir dir;
    std::string file = dir.Write(
        "bad.qvproj", "<QvProject>\n<Actions>" + std::string(c.actions) + "</Actions></QvProject>");
    TestHost host(dir);
    EXPECT_EQ(ErrorOf([&] { host.Session->RunProject(file); }), file + c.message);
    EXPECT_EQ(host.Out.str(), "");
  }
}

TEST(TRunner, AStopRequestedBeforehandRunsNothing) {
  TempDir dir;
  std::string file =
      dir.Write("stop.qvproj", Project("<Action type='Log Messages' caption='x'>"
                                       "<Property name='Text'>never</Property></Action>"));
  TestHost host(dir);
  host.Session->RequestStop(130);
  EXPECT_EQ(host.Session->RunProject(file), 130);
  EXPECT_EQ(host.Out.str(),
            "[error] The build was stopped by the user.\n"
            "\n"
            "0 Error(s), 0 Warning(s)\n"
            "[error] Build interrupted: 0 actions run, 1 not started in 0.000 s\n");
}

}  // namespace
