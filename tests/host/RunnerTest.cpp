#include "Runner.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "QvSysUtils.h"
#include "support/ErrorOf.h"

using qvhosttest::TestHost;
using qvtest::TempDir;

namespace {

TEST(TRunner, SavesDynamicPropertiesAndPropertySetsBackInPlace) {
  TempDir dir;
  // A project as people keep them: a byte-order mark, CR LF, tabs, comments everywhere; its
  // counter stands at 41 in a dynamic property and in a property set.
  const std::string original = TempDir::Read(QV_FIXTURES_DIR "/host/nightly.qvproj");
  std::string file = dir.Write("nightly.qvproj", original);
  std::filesystem::create_hard_link(file, dir.File("before"));
  EXPECT_EQ(TestHost(dir).Session->RunProject(file), qvhost::kExitSuccess);
  EXPECT_EQ(TempDir::Read(file), qv::StringReplaceAll(original, "41", "42"));
  // Replaced through a rename: the old file lives on under its other name, and no temporary
  // file is left behind.
  EXPECT_EQ(TempDir::Read(dir.File("before")), original);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 2);
  EXPECT_EQ(TestHost(dir).Session->RunProject(file), qvhost::kExitSuccess);
  EXPECT_EQ(TempDir::Read(file), qv::StringReplaceAll(original, "41", "43"));
}

struct Case {
  std::string actions;
  int exit;  // -1: the project cannot be set up
  std::string log;
  int stopWith = 0;  // a stop requested before the run, with this status
};

// The log ending of a build whose one action failed.
const std::string kOneFailed =
    "\n0 Error(s), 0 Warning(s)\n[error] Build failed: 1 of 1 action failed in 0.000 s\n";

// The Fail action failing in `mode` and logging `error`, and an action after it that never runs.
Case Failing(const std::string& mode, const std::string& error) {
  return {"<Action type='Fail'><Property name='Mode'>" + mode +
              "</Property><Property name='Message'>Broken here</Property></Action>"
              "<Action type='Log Messages'/>",
          1,
          "Action: Fail (TQvTestFailAction)\n  Trying\n    About to fail\n    [error] " + error +
              "\n  [error] Trying\n[error] Fail failed in 0.000 s\n" + kOneFailed};
}

TEST(TRunner, LogsAndExitStatusOfEachWayARunEnds) {
  const Case cases[] = {
      Failing("fmFailAction", "Broken here"),
      Failing("fmException", "Broken here"),
      Failing("fmReturnFalse", "Broken here"),
      Failing("fmUnknown", "The action raised an exception the host does not know"),
      {"<Action type='Log Messages'/>", 1,
       "Action: Log Messages (TQvTestLogAction)\n  [error] Text: There is nothing to log\n"
       "[error] Log Messages failed in 0.000 s\n" +
           kOneFailed},
      {"<Action type='Log Messages'><Property name='Text'>never</Property></Action>", 130,
       "[error] The build was stopped by the user.\n\n0 Error(s), 0 Warning(s)\n"
       "[error] Build interrupted: 0 actions run, 1 not started in 0.000 s\n",
       130},
      // Nested actions run once per item with the loop variable, which ends with the loop; a
      // disabled action does not run.
      {"<Action type='TQvTestLoopAction' caption='Each target'>"
       "<Property name='VariableName' value='Target'/>"
       "<Property name='Items'><Line>win32</Line><Line>x64</Line></Property>"
       "<Actions>"
       "<Action type='TQvTestLogAction'><Property name='Text'>Building %Target%</Property></Action>"
       "<Action type='TQvTestFailAction' enabled='false'/>"
       "</Actions></Action>"
       "<Action type='TQvTestLogAction'><Property name='Text'>After %Target%</Property></Action>",
       1,
       "Action: Each target (TQvTestLoopAction)\n"
       "  Iteration 1 of 2: Target = win32\n"
       "    Action: Log Messages (TQvTestLogAction)\n"
       "      Building win32\n"
       "    [ok] Log Messages succeeded in 0.000 s\n"
       "  Iteration 2 of 2: Target = x64\n"
       "    Action: Log Messages (TQvTestLogAction)\n"
       "      Building x64\n"
       "    [ok] Log Messages succeeded in 0.000 s\n"
       "[ok] Each target succeeded in 0.000 s\n"
       "Action: Log Messages (TQvTestLogAction)\n"
       "  [error] Text: Variable \"Target\" is not defined\n"
       "[error] Log Messages failed in 0.000 s\n"
       "\n"
       "0 Error(s), 0 Warning(s)\n"
       "Metrics:\n"
       "  Compiler.Warnings = 0\n"
       "  Compiler.Errors = 0\n"
       "[error] Build failed: 1 of 4 actions failed in 0.000 s\n"},
      // Actions that cannot be set up stop the run before anything is logged.
      {"<Action type='TNoSuchAction'/>", -1, "FILE:2: Unknown action type \"TNoSuchAction\""},
      {"<Action type='Fail'>\n<Property name='Colour'>red</Property></Action>", -1,
       "FILE:3: Unknown property \"Colour\" of TQvTestFailAction"},
      {"<Action type='Fail'><Actions/></Action>", -1,
       "FILE:2: TQvTestFailAction is not a loop action and cannot hold nested actions"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.actions);
    TempDir dir;
    std::string file =
        dir.Write("p.qvproj", "<QvProject>\n<Actions>" + c.actions + "</Actions></QvProject>");
    TestHost host(dir);
    if (c.stopWith) host.Session->RequestStop(c.stopWith);
    int exit = -1;
    std::string error = qvtest::ErrorOf([&] { exit = host.Session->RunProject(file); });
    EXPECT_EQ(exit, c.exit);
    EXPECT_EQ(
        exit == -1 ? host.Out.str() + qv::StringReplaceAll(error, file, "FILE") : host.Out.str(),
        c.log);
  }
}

}  // namespace
