#include "ActionContext.h"

#include <sstream>

#include <gtest/gtest.h>

#include "Expander.h"
#include "LogSink.h"
#include "PasswordVault.h"
#include "support/TempDir.h"

using namespace qvhost;

namespace {

struct Fixture {
  qvtest::TempDir Dir;
  std::ostringstream Out;
  std::unique_ptr<TLogSink> Log = NewLogSink(TLogFormat::Text, Out, false);
  TExpander Expander{[](const std::string&) { return std::nullopt; }};
  TPasswordVault Vault{Dir.File("key")};
  TRunEnvironment Env{*Log, Expander, Vault, {}, {}};
  qv::IntfPtr<TActionContext> Context{new TActionContext(Env)};
};

TEST(TActionContext, ReportsExpansionFailuresUnderTheCaption) {
  Fixture f;
  f.Expander.SetProjectVariable("Known", "yes");
  std::string result = "untouched";
  EXPECT_TRUE(f.Context->TryExpandExpression("Solution Path", "%Known%", result, true));
  EXPECT_EQ(result, "yes");
  EXPECT_FALSE(f.Context->TryExpandExpression("Solution Path", "%Unknown%\\a.sln", result, true));
  f.Log->Flush();
  EXPECT_EQ(f.Out.str(), "[error] Solution Path: Variable \"Unknown\" is not defined\n");
  EXPECT_EQ(f.Context->GetVariableValue("KNOWN"), "yes");
  EXPECT_EQ(f.Context->GetVariableValue("Unknown"), "");
}

TEST(TActionContext, ClosesOnlyTheGroupsItsActionOpened) {
  Fixture f;
  f.Log->GroupStart("Iteration 1", 0, qv::TStatusTag::Plain);
  f.Context->BeginRun();
  f.Context->StartMessageGroup("Mine", 0, qv::TStatusTag::Plain);
  f.Context->EndMessageGroup(qv::TStatusTag::Success);
  f.Context->EndMessageGroup(qv::TStatusTag::Error);  // one too many: ignored
  EXPECT_EQ(f.Log->Depth(), 1);
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
