#include "QvActions.h"

#include <gtest/gtest.h>

#include "QvExceptions.h"
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

// A process that replays chunks instead of starting anything.
class TFakeProcess : public TInterfacedObject, public IQvProcess {
 public:
  std::vector<std::pair<bool, std::string>> Chunks;  // (stderr?, text)
  int ExitCode = 0;
  bool Clean = true;
  std::string Exe, Params, Dir;
  IQvProcessOutputHandler* Handler = nullptr;

  void SetExecutable(const std::string& p) override { Exe = p; }
  void SetParameters(const std::string& p) override { Params = p; }
  void SetCaptureOutput(bool) override {}
  void SetHideWindow(bool) override {}
  void SetStartingDir(const std::string& d) override { Dir = d; }
  void SetTerminateEvent(TAutoResetEvent*) override {}
  void SetOutputHandler(IQvProcessOutputHandler* h) override { Handler = h; }
  int Run() override {
    for (auto& [err, text] : Chunks)
      err ? Handler->OnStdErrData(this, text) : Handler->OnStdOutData(this, text);
    return ExitCode;
  }
  int GetExitCode() const override { return ExitCode; }
  bool GetCleanExit() const override { return Clean; }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IQvProcess>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }
};

TEST(TCustomQvAction, ForwardsHostServicesToItsContext) {
  auto ctx = RecordingActionContext::Create();
  ctx->Variables["Config"] = "Release";
  TTestAction a;
  a.BindContext(ctx);

  a.StartMessageGroup("Solution x.sln", 0, TStatusTag::Plain);
  a.SendMessage("inside", TStatusTag::Warning);
  a.StartMessageGroup("Inner", 2, TStatusTag::Plain);
  a.EndMessageGroup();
  a.EndMessageGroup(TStatusTag::Error);
  a.SendMetricInt("Compiler", "Errors", 3);
  std::string out;
  EXPECT_TRUE(a.TryExpandExpression("Solution Configuration Name", "%Config%|Win32", out, true));
  EXPECT_EQ(out, "Release|Win32");
  EXPECT_FALSE(a.TryExpandExpression("Caption", "%Nope%", out, false));
  EXPECT_THROW(a.ExpandExpression("%Nope%", true), Exception);
  a.RegisterDynamicProperty("AssemblyVersion");
  a.UnRegisterDynamicProperty("AssemblyVersion");

  EXPECT_EQ(ctx->Transcript(),
            "> Solution x.sln (type 0) [0]\n"
            "  [2] inside\n"
            "  > Inner (type 2) [0]\n"
            "  <\n"
            "< [3]\n");
  EXPECT_EQ(ctx->Metrics, (std::vector<qvtest::Metric>{{"Compiler", "Errors", 3}}));
  EXPECT_EQ(ctx->ExpansionFailures, std::vector<std::string>{"Caption: %Nope%"});
  EXPECT_EQ(ctx->DynamicPropertyCalls,
            (std::vector<std::string>{"+AssemblyVersion", "-AssemblyVersion"}));
  EXPECT_EQ(a.DecryptPassword(a.EncryptPassword("s3cret")), "s3cret");
  EXPECT_NE(a.EncryptPassword("s3cret"), "s3cret");
}

TEST(TCustomQvAction, UnboundActionExpandsToItselfAndCannotEncrypt) {
  TTestAction a;
  std::string out;
  EXPECT_TRUE(a.TryExpandExpression("c", "%X%", out, true));
  EXPECT_EQ(out, "%X%");
  a.SendMessage("goes nowhere");
  EXPECT_THROW(a.EncryptPassword("p"), Exception);
  EXPECT_THROW(a.NewActionProcess(), Exception);
}

TEST(TCustomQvAction, AnswersQueriesWithoutCounting) {
  TTestAction a;
  void* p = nullptr;
  EXPECT_EQ(a.QueryInterface(IInterface::IID, &p), HResult::S_OK);
  EXPECT_EQ(a.AddRef(), -1);
  EXPECT_EQ(a.Release(), -1);
  EXPECT_TRUE(a.CanTerminate());
}

TEST(TQvMultiExecAction, DefaultOutputHandlersLogLinesPlain) {
  auto ctx = RecordingActionContext::Create();
  TTestAction a;
  a.BindContext(ctx);
  a.OnStdOutData(nullptr, "one\r\ntwo\nthree");
  a.OnStdErrData(nullptr, "err\r");
  EXPECT_EQ(ctx->Messages(),
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
    b->AddArgument("/nologo", "", 0);
    return BuildOk;
  }
  std::string GetStartingDir() override { return "/work"; }
  bool InterpretResult(int code) override { return code == 0 || code == 5; }
};

TEST(TQvExecuteAbstractAction, RunsTheExecutableAndInterpretsTheResult) {
  qvtest::TempDir dir;
  auto ctx = RecordingActionContext::Create();
  IntfPtr<TFakeProcess> proc(new TFakeProcess);
  proc->Chunks = {{false, "7/9 test(s) Passed\r\n"}, {true, "warn\n"}};
  proc->ExitCode = 5;
  ctx->ProcessFactory = [&] { return IntfPtr<IQvProcess>(proc.Get()); };
  TRunner r;
  r.BindContext(ctx);
  r.Exe = dir.Write("MSTest.exe", "");

  EXPECT_TRUE(r.Execute());
  EXPECT_EQ(proc->Params, "/testcontainer:\"My Tests.dll\" /nologo");
  EXPECT_EQ(proc->Dir, "/work");
  EXPECT_EQ(ctx->Messages(),
            (std::vector<std::string>{"[0] Running " + r.Exe +
                                          " with parameters : /testcontainer:\"My Tests.dll\" "
                                          "/nologo",
                                      "[0] 7/9 test(s) Passed", "[0] warn"}));

  proc->ExitCode = 1;
  EXPECT_FALSE(r.Execute());
  proc->ExitCode = 0;
  proc->Clean = false;
  EXPECT_FALSE(r.Execute()) << "a killed child is no success";
  proc->ExitCode = kTerminatedExitCode;
  EXPECT_FALSE(r.Execute());
  EXPECT_EQ(ctx->Messages().back(), "[3] Action Terminated by User.");
}

TEST(TQvExecuteAbstractAction, MissingExecutableOrCommandLineStopsBeforeRunning) {
  auto ctx = RecordingActionContext::Create();
  int created = 0;
  ctx->ProcessFactory = [&]() -> IntfPtr<IQvProcess> {
    ++created;
    return nullptr;
  };
  TRunner r;
  r.BindContext(ctx);
  r.Exe = "/nonexistent/MSTest.exe";
  try {
    r.Execute();
    FAIL();
  } catch (const EFailAction& e) {
    EXPECT_STREQ(e.what(), "Executable not found : /nonexistent/MSTest.exe");
  }
  r.Exe = "";
  EXPECT_FALSE(r.Execute());
  qvtest::TempDir dir;
  r.Exe = dir.Write("MSTest.exe", "");
  r.BuildOk = false;
  EXPECT_FALSE(r.Execute());
  EXPECT_EQ(created, 0);
}

class TCounter : public TQvBaseIterator {
 public:
  std::string GetActionName() const override { return "Counter"; }
  bool BeforeFirstIteration() override {
    SetIterationCount(3);
    return true;
  }
  std::string GetCurrentValue() override { return "v" + std::to_string(GetCurrentIteration()); }
};

TEST(TQvBaseIterator, CountsIterationsAndPublishesItsVariable) {
  TCounter c;
  EXPECT_TRUE(c.BeforeFirstIteration());
  EXPECT_EQ(c.GetIterationCount(), 3);
  c.SetCurrentIteration(2);
  EXPECT_EQ(c.GetCurrentValue(), "v2");
  c.SetPropValue("VariableName", "ProjectName");
  EXPECT_EQ(c.GetVariableName(), "ProjectName");
}

}  // namespace
