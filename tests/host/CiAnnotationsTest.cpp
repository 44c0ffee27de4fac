#include "CiAnnotations.h"

#include <map>

#include <gtest/gtest.h>

#include "support/TempDir.h"

using namespace qvhost;

namespace {

TEST(CiAnnotations, EscapeHostileTextsAsEachAgentReadsThem) {
  const std::string hostile = "50% 'a';b]\r\n[c]:d,e|\xC3\xA9\xF0\x9F\x98\x80";
  EXPECT_EQ(AzureData(hostile), "50%AZP25 'a';b]%0D%0A[c]:d,e|\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(AzureProperty(hostile), "50%AZP25 'a'%3Bb%5D%0D%0A[c%5D:d,e|\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(GitHubData(hostile), "50%25 'a';b]%0D%0A[c]:d,e|\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(GitHubProperty(hostile), "50%25 'a';b]%0D%0A[c]%3Ad%2Ce|\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ(TeamCityValue(hostile), "50% |'a|';b|]|r|n|[c|]:d,e|||0x00E9|0xD83D|0xDE00");
  EXPECT_EQ(TeamCityValue("bad \xC3 byte"), "bad |0x00C3 byte");
}

TEST(CiAnnotations, WriteGroupsDiagnosticsFailuresAndMetricsPerDialect) {
  TLogDiagnostic d{true, "/s/a;b.cs", "", 3, 7, "CS0103", "x 'y' [z]\nnext", "Build", "App"};
  TLogDiagnostic w{false, "", "MSBUILD", 0, 0, "", "w", "", ""};
  std::vector<std::pair<std::string, int64_t>> metrics{{"Compiler.Errors", 2}};
  std::map<TCiDialect, std::vector<std::string>> expected = {
      {TCiDialect::Azure,
       {"##[group]Action: Build",
        "##vso[task.logissue type=error;sourcepath=/s/a%3Bb.cs;linenumber=3;columnnumber=7;"
        "code=CS0103]x 'y' [z]%0Anext",
        "##vso[task.logissue type=warning]w", "##[endgroup]",
        "##vso[task.complete result=Failed;]"}},
      {TCiDialect::GitHub,
       {"::group::Action: Build",
        "::error file=/s/a;b.cs,line=3,col=7,title=CS0103::x 'y' [z]%0Anext", "::warning::w",
        "::endgroup::"}},
      {TCiDialect::TeamCity,
       {"##teamcity[blockOpened name='Action: Build']",
        "##teamcity[message text='x |'y|' |[z|]|nnext' status='ERROR' "
        "errorDetails='/s/a;b.cs(3,7): error CS0103: x |'y|' |[z|]|nnext |[Build, App|]']",
        "##teamcity[message text='w' status='WARNING' errorDetails='MSBUILD : warning: w']",
        "##teamcity[blockClosed name='Action: Build']",
        "##teamcity[buildProblem description='Build failed' identity='Build']",
        "##teamcity[buildStatisticValue key='Compiler.Errors' value='2']"}},
      {TCiDialect::None, {}},
  };
  for (const auto& [dialect, text] : expected) {
    TCiAnnotations ci(dialect);
    std::vector<std::string> lines = ci.GroupStart("Action: Build");
    for (const auto& part : {ci.Diagnostic(d), ci.Diagnostic(w), ci.GroupEnd("Action: Build"),
                             ci.ActionFailed("Build"), ci.RunEnd(false, metrics)})
      lines.insert(lines.end(), part.begin(), part.end());
    EXPECT_EQ(lines, text) << static_cast<int>(dialect);
  }
}

TEST(CiAnnotations, TheEnvironmentNamesTheServer) {
  using TEnv = std::map<std::string, std::string>;
  const std::pair<TEnv, TCiDialect> cases[] = {
      {{}, TCiDialect::None},
      {{{"TF_BUILD", "True"}}, TCiDialect::Azure},
      {{{"GITHUB_ACTIONS", "true"}}, TCiDialect::GitHub},
      {{{"GITHUB_ACTIONS", "false"}}, TCiDialect::None},
      {{{"TEAMCITY_VERSION", "2024.1"}}, TCiDialect::TeamCity},
  };
  for (const auto& [env, dialect] : cases)
    EXPECT_EQ(DetectCiDialect([&](const char* name) -> const char* {
                auto it = env.find(name);
                return it == env.end() ? nullptr : it->second.c_str();
              }),
              dialect);
}

TEST(Diagnostics, RelativeFilesResolveAgainstTheToolsFolderWhenTheyExist) {
  qvtest::TempDir dir;
  dir.Write("src/Main.cpp", "");
  auto read = [&](std::string_view line) {
    auto d = ReadDiagnostic(line, dir.Path(), "Build", "App");
    return d ? d->File + "|" + d->Tool + "|" + d->Project : "-";
  };
  EXPECT_EQ(qvtest::FileKey(read("src\\main.cpp(3): error C1: t")),
            qvtest::FileKey(dir.File("src/Main.cpp") + "||App"));
  EXPECT_EQ(read("src/Gone.cpp(3): error C1: t"), "src/Gone.cpp||App");
  EXPECT_EQ(read("LINK : error LNK1: t [/p/B.vcxproj]"), "|LINK|/p/B.vcxproj");
  EXPECT_EQ(read("compiling..."), "-");
}

}  // namespace
