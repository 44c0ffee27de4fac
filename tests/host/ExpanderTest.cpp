#include "Expander.h"

#include <gtest/gtest.h>

#include "support/ErrorOf.h"

using qvhost::TExpander;

namespace {

std::string Expanded(const TExpander& e, const std::string& text) {
  std::string result;
  std::string error = qvtest::ErrorOf([&] { result = e.Expand(text); });
  return error == "(no exception)" ? result : "error: " + error;
}

TEST(TExpander, LoopOverCommandLineOverProjectOverEnvironment) {
  TExpander e([](const std::string& name) -> std::optional<std::string> {
    if (name == "HOME" || name == "Config" || name == "Target") return "env-" + name;
    return std::nullopt;
  });
  e.SetProjectVariable("Config", "Debug");
  e.SetProjectVariable("Target", "x86");
  e.SetOverride("CONFIG", "Release");
  e.SetProjectVariable("Target", "x64");  // a later definition replaces the earlier one
  struct Case {
    const char* text;
    const char* expected;
  } cases[] = {
      {"%Config%", "Release"},
      {"%config%|%TARGET%|%HOME%", "Release|x64|env-HOME"},
      {"%Missing%", "error: Variable \"Missing\" is not defined"},
      {"%home%", "error: Variable \"home\" is not defined"},  // the environment is exact
  };
  for (const auto& c : cases)
    EXPECT_EQ(Expanded(e, c.text), c.expected) << c.text;
  EXPECT_EQ(e.VariableNames(), (std::vector<std::string>{"CONFIG", "Target"}));
  // A loop variable wins while its iteration lasts.
  e.PushLoopVariable("Config", "outer");
  e.PushLoopVariable("config", "inner");
  EXPECT_EQ(Expanded(e, "%Config%"), "inner");
  e.PopLoopVariable();
  EXPECT_EQ(Expanded(e, "%Config%"), "outer");
  e.PopLoopVariable();
  EXPECT_EQ(Expanded(e, "%Config%"), "Release");
}

}  // namespace
