#include "QvActions.h"

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::RecordingActionContext;

namespace {

class TTestAction : public TQvMultiExecAction {
 public:
  std::string GetActionName() const override { return "Test Action"; }
  bool Execute() override { return true; }
};

// Unbound, an action expands text to itself and cannot reach host services; it is never
// reference counted.
TEST(TCustomQvAction, UnboundActionStandsAlone) {
  TTestAction a;
  std::string out;
  EXPECT_TRUE(a.TryExpandExpression("c", "%X%", out, true));
  EXPECT_EQ(out, "%X%");
  a.SendMessage("goes nowhere");
  EXPECT_THROW(a.EncryptPassword("p"), Exception);
  EXPECT_THROW(a.NewActionProcess(), Exception);
  void* p = nullptr;
  EXPECT_EQ(a.QueryInterface(IInterface::IID, &p), HResult::S_OK);
  EXPECT_EQ(a.AddRef(), -1);
  EXPECT_EQ(a.Release(), -1);
  EXPECT_TRUE(a.CanTerminate());
}

TEST(TQvMultiExecAction, DefaultOutputHandlersLogLinesPlain) {
  qvtest::RecordingAction a;
  a.OnStdOutData(nullptr, "one\r\ntwo\nthree");
  a.OnStdErrData(nullptr, "err\r");
  EXPECT_EQ(a.ctx->Messages(),
            (std::vector<std::string>{"[0] one", "[0] two", "[0] three", "[0] err"}));
}

class TRunner : public TQvExecuteAbstractAction {
 public:
  std::string Exe;
  bool BuildOk = true;
  std::string GetActionName() const override { return "Runner"; }
  std::string GetExecutable() override { return Exe; }
  bool GetCommandLine(ICommandLineBuilder* b) override {
    b->AddArgument("/testcontainer:", "My Tests.dll", caoJoinQuoted);
    b->AddArgument("/resultsfile:", "out.trx", caoJoinQuoted);
    b->AddArgument("/nologo", "", 0);
    return BuildOk;
  }
  std::string GetStartingDir() override { return "/work"; }
  bool InterpretResult(int code) override { return code == 0 || code == 5; }
};

TEST(TQvExecuteAbstractAction, RunsTheExecutableAndInterpretsTheResult) {
  qvtest::TempDir dir;
  auto ctx = RecordingActionContext::Create();
  TRunner r;
  r.BindContext(ctx);
  // Nothing runs without an executable or a command line.
  r.Exe = "/nonexistent/MSTest.exe";
  EXPECT_EQ(qvtest::ErrorOf<EFailAction>([&] { r.Execute(); }),
            "Executable not found : /nonexistent/MSTest.exe");
  r.Exe = "";
  EXPECT_FALSE(r.Execute());
  r.Exe = dir.Write("MSTest.exe", "");
  r.BuildOk = false;
  EXPECT_FALSE(r.Execute());
  EXPECT_TRUE(ctx->Runs.empty());

  r.BuildOk = true;
  ctx->Scripts = {{{"7/9 test(s) Passed\r\n"}, 5, true, {"warn\n"}},
                  {{}, 1},
                  {{}, 0, false},
                  {{}, kTerminatedExitCode}};
  EXPECT_TRUE(r.Execute());
  const std::string params = "/testcontainer:\"My Tests.dll\" /resultsfile:out.trx /nologo";
  EXPECT_EQ(ctx->Runs[0].params, params);
  EXPECT_EQ(ctx->Runs[0].dir, "/work");
  EXPECT_EQ(ctx->Messages(),
            (std::vector<std::string>{"[3] No executable to run.",
                                      "[0] Running " + r.Exe + " with parameters : " + params,
                                      "[0] 7/9 test(s) Passed", "[0] warn"}));
  EXPECT_FALSE(r.Execute());
  EXPECT_FALSE(r.Execute()) << "a killed child is no success";
  EXPECT_FALSE(r.Execute());
  EXPECT_EQ(ctx->Messages().back(), "[3] Action Terminated by User.");
}

}  // namespace
