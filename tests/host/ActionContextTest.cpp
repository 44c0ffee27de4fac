#include "ActionContext.h"

#include <sstream>

#include <gtest/gtest.h>

#include "Expander.h"
#include "LogSink.h"
#include "PasswordVault.h"
#include "ProcessRunner.h"
#include "QvSysUtils.h"
#include "QvUtils.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qvhost;

namespace {

struct Fixture {
  qvtest::TempDir Dir;
  std::ostringstream Out;
  std::unique_ptr<TLogSink> Log = NewLogSink(TLogFormat::Text, Out, false);
  TExpander Expander{[](const std::string&) { return std::nullopt; }};
  TPasswordVault Vault{Dir.File("key")};
  TRunEnvironment Env{*Log, Expander, Vault, {}, NewHostProcess};
  qv::IntfPtr<TActionContext> Context{new TActionContext(Env)};
};

// The host's context and the tests' recording one, seen the same way: what a contract test
// sets up and what it reads back.
struct HostSide : Fixture {
  qv::IQvActionContext* Ctx() { return Context.Get(); }
  void SetVariable(const std::string& name, const std::string& value) {
    Expander.SetProjectVariable(name, value);
  }
  // A process whose output pipe delivers `reads` one after another.
  qv::IntfPtr<qv::IQvProcess> Writer(const std::vector<std::string>& reads) {
    std::string script;
    for (const auto& r : reads)
      script += "printf '" +
                qv::StringReplaceAll(qv::StringReplaceAll(r, "\r", "\\r"), "\n", "\\n") +
                "'; sleep 0.05; ";
    auto p = Ctx()->CreateProcess();
    p->SetExecutable("/bin/sh");
    p->SetParameters("-c \"" + script + "\"");
    p->SetCaptureOutput(true);
    return p;
  }
  // The log as "[TAG] text" lines, two blanks per open group before each.
  std::string Transcript() {
    Log->Flush();
    std::string out;
    static const std::pair<std::string_view, char> kMarkers[] = {
        {"[ok] ", '1'}, {"[warn] ", '2'}, {"[error] ", '3'}};
    for (std::string_view line : qv::Tokenize(Out.str(), "\n", false)) {
      if (line.empty()) continue;
      size_t indent = line.find_first_not_of(' ');
      line.remove_prefix(indent);
      char tag = '0';
      for (const auto& [marker, t] : kMarkers)
        if (line.starts_with(marker)) line.remove_prefix(marker.size()), tag = t;
      out += std::string(indent, ' ') + "[" + tag + "] " + std::string(line) + "\n";
    }
    return out;
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
    auto p = Ctx()->CreateProcess();
    p->SetCaptureOutput(true);
    return p;
  }
  // Group starts read as their title line, as the text log shows them.
  std::string Transcript() {
    std::string out;
    for (const auto& e : Context->Log)
      if (e.kind != qvtest::LogEntry::GroupEnd)
        out += std::string(e.depth * 2, ' ') + "[" + std::to_string(e.tag) + "] " + e.text + "\n";
    return out;
  }
};

struct Chunks : qv::IQvProcessOutputHandler {
  std::vector<std::string> Out;
  void OnStdOutData(qv::IQvProcess*, std::string_view c) override { Out.emplace_back(c); }
  void OnStdErrData(qv::IQvProcess*, std::string_view) override {}
};

template <class Side>
class ActionContextContract : public ::testing::Test {
 protected:
  Side side;
};
using Sides = ::testing::Types<HostSide, RecordingSide>;
TYPED_TEST_SUITE(ActionContextContract, Sides);

TYPED_TEST(ActionContextContract, VariablesIgnoreCaseAndFailedExpansionsAreLogged) {
  auto& s = this->side;
  s.SetVariable("Config", "Release");
  std::string result = "untouched";
  EXPECT_TRUE(s.Ctx()->TryExpandExpression("Solution Path", "%CONFIG%", result, true));
  EXPECT_EQ(result, "Release");
  EXPECT_EQ(s.Ctx()->GetVariableValue("config"), "Release");
  EXPECT_EQ(s.Ctx()->GetVariableValue("Unknown"), "");
  EXPECT_FALSE(s.Ctx()->TryExpandExpression("Solution Path", "%Unknown%\\a.sln", result, true));
  EXPECT_EQ(s.Transcript(), "[3] Solution Path: Variable \"Unknown\" is not defined\n");
}

TYPED_TEST(ActionContextContract, AnEndWithoutAnOpenGroupIsIgnored) {
  auto& s = this->side;
  s.Ctx()->StartMessageGroup("Mine", 0, qv::TStatusTag::Plain);
  s.Ctx()->SendMessage("inside", qv::TStatusTag::Plain);
  s.Ctx()->EndMessageGroup(std::nullopt);
  s.Ctx()->EndMessageGroup(qv::TStatusTag::Error);
  s.Ctx()->SendMessage("after", qv::TStatusTag::Warning);
  EXPECT_EQ(s.Transcript(), "[0] Mine\n  [0] inside\n[2] after\n");
}

// A line cut between reads, and a CR LF split between them, reach the handler whole.
TYPED_TEST(ActionContextContract, ProcessOutputArrivesInWholeLines) {
#ifdef _WIN32
  if (std::is_same_v<TypeParam, HostSide>) GTEST_SKIP() << "the writer is a POSIX shell";
#endif
  auto& s = this->side;
  Chunks chunks;
  auto p = s.Writer({"a.cs(3,7): err", "or CS0103: x\r", "\nnext\nla", "st"});
  p->SetOutputHandler(&chunks);
  p->Run();
  std::string joined;
  for (size_t i = 0; i < chunks.Out.size(); ++i) {
    joined += chunks.Out[i];
    if (i + 1 < chunks.Out.size()) {
      EXPECT_TRUE(chunks.Out[i].ends_with('\n')) << chunks.Out[i];
    }
  }
  EXPECT_EQ(joined, "a.cs(3,7): error CS0103: x\r\nnext\nlast");
  EXPECT_EQ(chunks.Out.front(), "a.cs(3,7): error CS0103: x\r\nnext\n");
}

TEST(TActionContext, ClosesOnlyTheGroupsItsActionOpened) {
  Fixture f;
  f.Log->GroupStart("Iteration 1", 0, qv::TStatusTag::Plain);
  f.Context->BeginRun();
  f.Context->StartMessageGroup("Mine", 0, qv::TStatusTag::Plain);
  f.Context->EndMessageGroup(qv::TStatusTag::Success);
  f.Context->EndMessageGroup(qv::TStatusTag::Error);  // the iteration's: not the action's to close
  EXPECT_EQ(f.Log->Depth(), 1);
  f.Log->Flush();
  EXPECT_EQ(f.Out.str(), "Iteration 1\n  Mine\n  [ok] Mine\n");
}

TEST(TActionContext, CollectsDynamicPropertiesAndPropertySetChanges) {
  Fixture f;
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
