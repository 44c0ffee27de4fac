#include "ActionContext.h"

#include <sstream>

#include <gtest/gtest.h>

#include "Expander.h"
#include "LogSink.h"
#include "PasswordVault.h"
#include "ProcessRunner.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qvhost;

namespace {

// The host's context and the tests' recording one, seen the same way: what a contract test
// sets up, and the log as the host's text log writes it.
struct HostSide {
  qvtest::TempDir Dir;
  std::ostringstream Out;
  std::unique_ptr<TLogSink> Log = NewLogSink(TLogFormat::Text, Out, false);
  TExpander Expander{[](const std::string&) { return std::nullopt; }};
  TPasswordVault Vault{Dir.File("key")};
  TRunEnvironment Env{*Log, Expander, Vault, {}, NewHostProcess};
  qv::IntfPtr<TActionContext> Context{new TActionContext(Env)};

  qv::IQvActionContext* Ctx() { return Context.Get(); }
  void SetVariable(const std::string& name, const std::string& value) {
    Expander.SetProjectVariable(name, value);
  }
  // A process whose output pipe delivers `reads` one after another.
  qv::IntfPtr<qv::IQvProcess> Writer(const std::vector<std::string>& reads) {
    std::string script;
    for (const auto& r : reads)
      script += "printf '" + r + "'; sleep 0.05; ";
    auto p = Ctx()->CreateProcess();
    p->SetExecutable("/bin/sh");
    p->SetParameters("-c \"" + script + "\"");
    return p;
  }
  std::string Transcript() {
    Log->Flush();
    return Out.str();
  }
};

struct RecordingSide {
  qv::IntfPtr<qvtest::RecordingActionContext> Context = qvtest::RecordingActionContext::Create();
  qv::IQvActionContext* Ctx() { return Context.Get(); }
  void SetVariable(const std::string& name, const std::string& value) {
    Context->Variables[name] = value;
  }
  qv::IntfPtr<qv::IQvProcess> Writer(const std::vector<std::string>& reads) {
    Context->Scripts.push_back({reads});
    return Ctx()->CreateProcess();
  }
  // Group ends leave no line, as in the text log when they carry no status.
  std::string Transcript() {
    static const char* const kMarkers[] = {"", "[ok] ", "[warn] ", "[error] "};
    std::string out;
    for (const auto& e : Context->Log)
      if (e.kind != qvtest::LogEntry::GroupEnd)
        out += std::string(e.depth * 2, ' ') + kMarkers[e.tag] + e.text + "\n";
    return out;
  }
};

template <class Side>
class ActionContextContract : public ::testing::Test, public qv::IQvProcessOutputHandler {
 protected:
  void OnStdOutData(qv::IQvProcess*, std::string_view c) override { Chunks.emplace_back(c); }
  void OnStdErrData(qv::IQvProcess*, std::string_view) override {}
  Side side;
  std::vector<std::string> Chunks;
};
using Sides = ::testing::Types<HostSide, RecordingSide>;
TYPED_TEST_SUITE(ActionContextContract, Sides);

TYPED_TEST(ActionContextContract, LogsGroupsAndFailedExpansionsAndIgnoresCase) {
  auto& s = this->side;
  s.SetVariable("Config", "Release");
  std::string result = "untouched";
  EXPECT_TRUE(s.Ctx()->TryExpandExpression("Solution Path", "%CONFIG%", result, true));
  EXPECT_EQ(result, "Release");
  EXPECT_EQ(s.Ctx()->GetVariableValue("config"), "Release");
  EXPECT_EQ(s.Ctx()->GetVariableValue("Unknown"), "");
  s.Ctx()->StartMessageGroup("Mine", 0, qv::TStatusTag::Plain);
  EXPECT_FALSE(s.Ctx()->TryExpandExpression("Solution Path", "%Unknown%\\a.sln", result, true));
  s.Ctx()->EndMessageGroup(std::nullopt);
  s.Ctx()->EndMessageGroup(qv::TStatusTag::Error);  // none open: ignored
  s.Ctx()->SendMessage("after", qv::TStatusTag::Warning);
  EXPECT_EQ(s.Transcript(),
            "Mine\n  [error] Solution Path: Variable \"Unknown\" is not defined\n[warn] after\n");
}

// A line cut between reads, and a CR LF split between them, reach the handler whole.
TYPED_TEST(ActionContextContract, ProcessOutputArrivesInWholeLines) {
#ifdef _WIN32
  if (std::is_same_v<TypeParam, HostSide>) GTEST_SKIP() << "the writer is a POSIX shell";
#endif
  auto p = this->side.Writer({"a.cs(3,7): err", "or CS0103: x\r", "\nnext\nla", "st"});
  p->SetCaptureOutput(true);
  p->SetOutputHandler(this);
  p->Run();
  EXPECT_EQ(this->Chunks,
            (std::vector<std::string>{"a.cs(3,7): error CS0103: x\r\nnext\n", "last"}));
}

TEST(TActionContext, ClosesOnlyTheGroupsItsActionOpened) {
  HostSide f;
  f.Log->GroupStart("Iteration 1", 0, qv::TStatusTag::Plain);
  f.Context->BeginRun();
  f.Context->StartMessageGroup("Mine", 0, qv::TStatusTag::Plain);
  f.Context->EndMessageGroup(qv::TStatusTag::Success);
  f.Context->EndMessageGroup(qv::TStatusTag::Error);  // the iteration's: not the action's to close
  EXPECT_EQ(f.Log->Depth(), 1);
  EXPECT_EQ(f.Transcript(), "Iteration 1\n  Mine\n  [ok] Mine\n");
}

TEST(TActionContext, CollectsDynamicPropertiesAndPropertySetChanges) {
  HostSide f;
  qv::IntfPtr<THostPropertySet> set(new THostPropertySet("Win32", {}));
  set->LoadValue("Major", "1");
  set->LoadValue("Minor", "2");
  f.Env.PropertySets.push_back(set);
  auto found = f.Context->FindPropertySet("WIN32");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->GetPropertyNames(), "Major,Minor");
  found->SetValue("minor", "3");
  found->SetValue("Build", "7");
  EXPECT_EQ(found->GetValue("MINOR"), "3");
  EXPECT_EQ(set->ChangedNames(), (std::vector<std::string>{"Minor", "Build"}));
  EXPECT_FALSE(f.Context->FindPropertySet("Win64"));

  f.Context->RegisterDynamicProperty("BuildNumber");
  f.Context->RegisterDynamicProperty("Version");
  f.Context->RegisterDynamicProperty("buildnumber");
  f.Context->UnRegisterDynamicProperty("VERSION");
  EXPECT_EQ(f.Context->DynamicProperties(), std::vector<std::string>{"BuildNumber"});
}

}  // namespace
