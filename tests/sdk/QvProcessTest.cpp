#include "QvProcess.h"

#include <gtest/gtest.h>

#include <thread>

using namespace qv;

namespace {

using Args = std::vector<std::string>;

TEST(SplitCommandLine, FollowsTheWindowsRuntimeRules) {
  const std::pair<const char*, Args> cases[] = {
      {"/t:Build /p:Configuration=Release;Platform=\"Any CPU\" /v:normal",
       {"/t:Build", "/p:Configuration=Release;Platform=Any CPU", "/v:normal"}},
      {"  a\t b  ", {"a", "b"}},
      {"\"C:\\Program Files\\x.sln\"", {"C:\\Program Files\\x.sln"}},
      {"\"\"", {""}},
      {"a\\\\\\\"b", {"a\\\"b"}},     // 3 backslashes + quote: one backslash, a quote
      {"\"a\\\\\" b", {"a\\", "b"}},  // 2 backslashes + quote: one backslash, closes
      {"a\\b\\\\c", {"a\\b\\\\c"}},   // backslashes not before a quote stay
      {"\"say \"\"hi\"\"\"", {"say \"hi\""}},
      {"/build \"Release|Win32\"/project \"App\\App.vcproj\" \"S.sln\"",
       {"/build", "Release|Win32/project", "App\\App.vcproj", "S.sln"}},
      {"", {}},
  };
  for (const auto& [text, args] : cases)
    EXPECT_EQ(SplitCommandLine(text), args) << text;
}

TEST(QuoteCommandLineArg, SurvivesSplitting) {
  for (std::string arg : {"plain", "with blank", "", "tail\\", "q\"uote", "C:\\a b\\", "\\\"x"}) {
    std::string quoted = QuoteCommandLineArg(arg);
    EXPECT_EQ(SplitCommandLine(quoted), Args{arg}) << quoted;
  }
  EXPECT_EQ(QuoteCommandLineArg("plain"), "plain");
}

TEST(TAutoResetEvent, SignalFromAnotherThreadWakesOneWaitAndResets) {
  TAutoResetEvent ev;
  EXPECT_FALSE(ev.TryWait());
  std::thread t([&] { ev.Signal(); });
  EXPECT_TRUE(ev.WaitFor(std::chrono::seconds(10)));
  t.join();
  EXPECT_FALSE(ev.TryWait()) << "a successful wait resets the event";
  ev.Signal();
  EXPECT_TRUE(ev.TryWait());
  EXPECT_FALSE(ev.WaitFor(std::chrono::milliseconds(1)));
}

}  // namespace
