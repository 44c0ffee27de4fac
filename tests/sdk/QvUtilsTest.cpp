#include "QvUtils.h"

#include <gtest/gtest.h>

#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "support/ErrorOf.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::ErrorOf;

namespace {

TEST(ExpandRelativePath, ResolvesWindowsStylePathsOnThisSystem) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"Lib\\Lib.csproj", "/work/sln", "/work/sln/Lib/Lib.csproj"},
      {"..\\Shared\\a.rc", "/work/sln/App", "/work/sln/Shared/a.rc"},
      {".\\res\\app.RC", "/p/", "/p/res/app.RC"},
      {"a//b/./c", "/x", "/x/a/b/c"},
      {"/abs/path.sln", "/ignored", "/abs/path.sln"},
      {"C:\\Program Files\\x.dll", "/x", "C:\\Program Files\\x.dll"},
      {"\\\\server\\share\\f", "/x", "\\\\server\\share\\f"},
      {"..\\..\\..\\up", "/a", "/up"},
  };
  for (const auto& [path, base, expected] : cases)
    EXPECT_EQ(ExpandRelativePath(path, base), qvtest::NativePath(expected)) << path;
}

TEST(ExecRegExpr, PerlStylePatternsMatchAnywhere) {
  const char* failed = ": \\d+ succeeded, \\d*[1-9]\\d* failed, \\d+ skipped";
  EXPECT_TRUE(ExecRegExpr(failed, "Build: 1 succeeded, 10 failed, 0 skipped"));
  EXPECT_FALSE(ExecRegExpr(failed, "Build: 2 succeeded, 0 failed, 0 skipped"));
  EXPECT_TRUE(ExecRegExpr("^[\\d;]*$", ""));
}

TEST(TRegExpr, GroupsCaseInsensitiveModeAndMalformedPatterns) {
  TRegExpr header("Microsoft Visual Studio Solution File, Format Version \\d+\\.", true);
  ASSERT_TRUE(
      header.Exec("\xEF\xBB\xBFmicrosoft visual studio solution file, format version 10.00"));
  EXPECT_EQ(header.Match(0).substr(53), " 10.");
  TRegExpr cfg("\\.(.+)\\.(ActiveCfg|Build\\.0) = (.+)");
  ASSERT_TRUE(cfg.Exec(".Release|Any CPU.Build.0 = Release|Any CPU"));
  EXPECT_EQ(cfg.Match(1), "Release|Any CPU");
  EXPECT_EQ(cfg.Match(2), "Build.0");
  EXPECT_EQ(cfg.Match(3), "Release|Any CPU");
  EXPECT_EQ(cfg.MatchPos(1), 1);
  EXPECT_FALSE(cfg.Exec(".Debug.Deploy.0 = Debug"));
  EXPECT_EQ(cfg.Match(1), "");
  std::string error = ErrorOf([] { ExecRegExpr("a(b", "ab"); });
  EXPECT_TRUE(error.starts_with("Invalid regular expression \"a(b\" : ")) << error;
}

TEST(Utils, TokenizeKeepsEmptyTokensAndTrims) {
  EXPECT_EQ(Tokenize(" a , b,,c ", ","), (std::vector<std::string>{"a", "b", "", "c"}));
  EXPECT_EQ(Tokenize("x;y", ";,", false), (std::vector<std::string>{"x", "y"}));
  EXPECT_TRUE(Tokenize("", ",").empty());
}

TEST(Utils, DoubleQuoteString) {
  EXPECT_EQ(DoubleQuoteString("C:\\x\\y.dll"), "\"C:\\x\\y.dll\"");
  EXPECT_EQ(DoubleQuoteString("plain", true), "plain");
  EXPECT_EQ(DoubleQuoteString("with blank", true), "\"with blank\"");
}

TEST(Utils, ExpandVariables) {
  auto lookup = [](std::string_view n) -> std::optional<std::string> {
    if (n == "Config") return "Release";
    if (n == "Empty") return "";
    return std::nullopt;
  };
  EXPECT_EQ(ExpandVariables("%Config%|Win32", lookup), "Release|Win32");
  EXPECT_EQ(ExpandVariables("100%% done [%Empty%]", lookup), "100% done []");
  EXPECT_EQ(ExpandVariables("50% of 20% tax", lookup), "50% of 20% tax");
  EXPECT_EQ(ExpandVariables("trailing %", lookup), "trailing %");
  EXPECT_EQ(ErrorOf([&] { ExpandVariables("x %Missing% y", lookup); }),
            "Variable \"Missing\" is not defined");
}

TEST(Utils, JsonStringEscapesAndKeepsEightBitTextValid) {
  EXPECT_EQ(JsonString("a\"b\\c\r\n\t\x01"), "\"a\\\"b\\\\c\\r\\n\\t\\u0001\"");
  EXPECT_EQ(JsonString("caf\xC3\xA9"), "\"caf\xC3\xA9\"");
  EXPECT_EQ(JsonString("caf\xE9"), "\"caf\\u00e9\"");
}

TEST(Utils, HostFoldersAndNames) {
  EXPECT_TRUE(IsPathDelimiter(GetQvAppPath().back()));
  EXPECT_FALSE(IsPathDelimiter(GetTempFolder().back()));
  std::string name = GetComputerNetName();
  EXPECT_FALSE(name.empty());
  EXPECT_LE(name.size(), 15u);
  EXPECT_EQ(name, UpperCase(name));
  EXPECT_EQ(name.find('.'), std::string::npos);
}

TEST(SysUtils, TextHelpers) {
  EXPECT_EQ(Trim("\t \x01 x y \r\n"), "x y");
  EXPECT_EQ(StrToIntDef("\t 42", 0), 42);
  EXPECT_EQ(StrToIntDef("4 2", -1), -1);
  EXPECT_EQ(StrToIntDef("", 7), 7);
  EXPECT_EQ(StrToIntDef("99999999999", 0), 0);
  EXPECT_TRUE(StrToBoolDef("tRuE"));
  EXPECT_FALSE(StrToBoolDef("yes"));
  EXPECT_EQ(FindText("Build Complete -- x", "complete"), 6u);
  EXPECT_EQ(StringReplaceAll("a\r\nb\r\n", "\r\n", ";"), "a;b;");
}

TEST(SysUtils, PathHelpersAcceptBothSeparators) {
  EXPECT_EQ(ExtractFilePath("C:\\Src\\App.sln"), "C:\\Src\\");
  EXPECT_EQ(ExtractFilePath("/src/App.sln"), "/src/");
  EXPECT_EQ(ExtractFileName("Lib\\Lib.csproj"), "Lib.csproj");
  EXPECT_EQ(ExtractFileExt("Setup\\Setup.VDPROJ"), ".VDPROJ");
  EXPECT_EQ(ExtractFileExt("dir.x\\noext"), "");
  EXPECT_EQ(ChangeFileExt("a/b.rc", ".orig"), "a/b.orig");
  EXPECT_EQ(IncludeTrailingPathDelimiter("C:\\VS\\"), "C:\\VS\\");
  const std::string delim(1, platform::PathDelim);
  EXPECT_EQ(IncludeTrailingPathDelimiter("/opt/vs"), "/opt/vs" + delim);
  EXPECT_EQ(IncludeTrailingPathDelimiter(""), delim);
  EXPECT_EQ(ExcludeTrailingPathDelimiter("/opt/vs/"), "/opt/vs");
}

}  // namespace
