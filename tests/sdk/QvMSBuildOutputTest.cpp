#include "QvMSBuildOutput.h"

#include <gtest/gtest.h>

#include <vector>

#include "QvActions.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::RecordingActionContext;

namespace {

// A file of the solution's folder, as the reader writes its path.
std::string Src(std::string_view rest) {
  return qvtest::NativePath("/src" + std::string(rest));
}

// A helper bound to a recording action, started for one run of /src/App.sln.
struct Reader {
  qvtest::RecordingAction action;
  IntfPtr<RecordingActionContext>& ctx = action.ctx;
  TQvMSBuildStructuredOutputHelper helper{&action};

  explicit Reader(bool enabled = true) { helper.Start("/src/App.sln", enabled); }
  void Feed(const std::vector<std::string>& lines) {
    for (const auto& line : lines)
      helper.ProcessLine(line);
  }
};

TEST(MSBuildStructuredOutput, LoggerLinesGiveOneGroupPerBuiltProject) {
  Reader r;
  r.Feed({
      "@@qv:buildStarted",
      "@@qv:projectStarted\t/src/App.sln\tBuild",
      "@@qv:message\tNormal\tBuilding solution configuration \"Release|Any CPU\".",
      "@@qv:projectStarted\t/src/Lib/Lib.csproj\t",
      "@@qv:message\tHigh\tConfiguration: Release Platform: AnyCPU",
      "@@qv:projectFinished\t/src/Lib/Lib.csproj\tTrue",
      "@@qv:projectStarted\t/src/App/App.csproj.metaproj\tBuild",
      "@@qv:projectStarted\t/src/App/App.csproj\t",
      "@@qv:projectStarted\t/src/Lib/Lib.csproj\tGetTargetPath",
      "@@qv:projectFinished\t/src/Lib/Lib.csproj\tTrue",
      "@@qv:projectStarted\t/src/Lib/Lib.csproj\tGetNativeManifest;GetCopyToOutputDirectoryItems",
      "@@qv:projectFinished\t/src/Lib/Lib.csproj\tTrue",
      "@@qv:targetStarted\tan unknown kind\tis ignored",
      "@@qv:warning\t/src/App/App.csproj\tMain.cs\t7\t0\tCS1030\t#warning: `Half done'",
      "@@qv:error\t/src/App/App.csproj\tMain.cs\t8\t32\tCS0103\tThe name `x' does not exist",
      "@@qv:message\tLow\tfields a later logger adds\tare ignored",
      "@@qv:projectFinished\t/src/Never/Started.csproj\tTrue",
      "@@qv:projectFinished\t/src/App/App.csproj\tFalse",
      "@@qv:projectFinished\t/src/App/App.csproj.metaproj\tFalse",
      "@@qv:projectFinished\t/src/App.sln\tFalse",
      "@@qv:buildFinished\tFalse",
  });
  EXPECT_EQ(r.ctx->Transcript(),
            "[0] Building solution configuration \"Release|Any CPU\".\n"
            "> Project Lib.csproj (type 0) [0]\n"
            "  [0] Configuration: Release Platform: AnyCPU\n"
            "< [1]\n"
            "> Project App.csproj (type 0) [0]\n"
            "  [2] " +
                Src("/App/Main.cs") + "(7): warning CS1030: #warning: `Half done'\n" + "  [3] " +
                Src("/App/Main.cs") + "(8,32): error CS0103: The name `x' does not exist\n" +
                "  [0] fields a later logger adds\n"
                "< [3]\n");
  EXPECT_EQ(r.helper.GetErrorCount(), 1);
  EXPECT_EQ(r.helper.GetWarningCount(), 1);
}

TEST(MSBuildStructuredOutput, FormatsDiagnosticsCanonically) {
  struct Case {
    const char* name;
    std::vector<std::string> lines;  // fed while /src/Lib/Lib.csproj builds
    std::string expected;            // the last message, as "[T] text"
  };
  const Case cases[] = {
      {"no position", {"@@qv:warning\t\ta.resx\t0\t0\tMSB3\tm"}, "[2] a.resx : warning MSB3: m"},
      {"no file", {"@@qv:error\t\t\t0\t0\tMSB4\tm"}, "[3] MSBUILD : error MSB4: m"},
      {"no code, bad numbers", {"@@qv:error\t\ta.cs\t1\tx\t\tm"}, "[3] a.cs(1): error : m"},
      {"escaped fields",
       {"@@qv:error\t\tC:\\\\src\\\\a b.cs\t1\t2\tCS3\tcol\\t1\\r\\nnext \\\\n \\q\\"},
       "[3] C:\\src\\a b.cs(1,2): error CS3: col\t1\r\nnext \\n \\q\\"},
      {"raised inside an internal call",
       {"@@qv:projectStarted\t/src/Other/Other.csproj\tGetTargetPath",
        "@@qv:error\t/src/Other/Other.csproj\ta.cs\t1\t1\tCS4\tm"},
       "[3] " + Src("/Other/a.cs") + "(1,1): error CS4: m [/src/Other/Other.csproj]"},
      {"raised by the solution about itself",
       {"@@qv:projectFinished\t/src/Lib/Lib.csproj\tFalse",
        "@@qv:error\t/src/App.sln\t/src/App.sln\t0\t0\tMSB3202\tnot found"},
       "[3] " + Src("/App.sln") + " : error MSB3202: not found"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Reader r;
    r.Feed(
        {"@@qv:projectStarted\t/src/App.sln\tBuild", "@@qv:projectStarted\t/src/Lib/Lib.csproj\t"});
    r.Feed(c.lines);
    auto messages = r.ctx->Messages();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back(), c.expected);
    EXPECT_EQ(r.helper.GetErrorCount() + r.helper.GetWarningCount(), 1);
  }
}

TEST(MSBuildStructuredOutput, UnfinishedProjectsAreClosedSoGroupsStayBalanced) {
  // A project whose end never arrives closes untagged with its parent; a run that stops
  // mid-build is closed by buildFinished or, when even that is missing, by Finish.
  Reader r;
  r.Feed({
      "@@qv:projectStarted\t/src/App/App.csproj\t",
      "@@qv:projectStarted\t/src/Lib/Lib.csproj\t",
      "@@qv:projectFinished\t/src/App/App.csproj\tTrue\r",
      "@@qv:projectStarted\t/src/Lib/Lib.csproj\t",
      "@@qv:buildFinished\tFalse",
      "@@qv:projectStarted\t/src/App/App.csproj\t",
  });
  r.helper.Finish();
  EXPECT_EQ(r.ctx->Transcript(),
            "> Project App.csproj (type 0) [0]\n"
            "  > Project Lib.csproj (type 0) [0]\n"
            "  <\n"
            "< [1]\n"
            "> Project Lib.csproj (type 0) [0]\n"
            "< [3]\n"
            "> Project App.csproj (type 0) [0]\n"
            "< [3]\n");
}

TEST(MSBuildStructuredOutput, InterleavedInstancesLogAsTheirOwnGroups) {
  // /m:2: A and B build at once, B calls Lib from inside; every line goes to the group of
  // the instance that reported it, and B's group holds Lib's where Lib started.
  Reader r;
  r.Feed({"@@qv:projectStarted\t/src/App.sln\tBuild\t1\t",
          "@@qv:projectStarted\t/src/A/A.csproj\t\t2\t1",
          "@@qv:projectStarted\t/src/B/B.csproj\t\t3\t1", "@@qv:message\tHigh\tB compiles\t3",
          "@@qv:projectStarted\t/src/B/B.csproj.metaproj\t\t4\t3",
          "@@qv:projectStarted\t/src/Lib/Lib.csproj\t\t5\t4",
          "@@qv:warning\t/src/Lib/Lib.csproj\tL.cs\t3\t0\tCS0219\tunused\t5",
          "@@qv:error\t/src/A/A.csproj\tA.cs\t1\t2\tCS0103\tmissing\t2",
          "@@qv:projectFinished\t/src/Lib/Lib.csproj\tTrue\t5",
          "@@qv:projectFinished\t/src/A/A.csproj\tFalse\t2",
          "@@qv:projectFinished\t/src/B/B.csproj\tTrue\t3",
          "@@qv:projectStarted\t/src/C/C.csproj\t\t6\t1", "@@qv:buildFinished\tFalse"});
  EXPECT_EQ(r.ctx->Transcript(),
            "> Project A.csproj (type 0) [0]\n"
            "  [3] " +
                Src("/A/A.cs") + "(1,2): error CS0103: missing\n" +
                "< [3]\n"
                "> Project B.csproj (type 0) [0]\n"
                "  [0] B compiles\n"
                "  > Project Lib.csproj (type 0) [0]\n"
                "    [2] " +
                Src("/Lib/L.cs") + "(3): warning CS0219: unused\n" +
                "  < [1]\n"
                "< [1]\n"
                "> Project C.csproj (type 0) [0]\n"
                "< [3]\n");
}

// Without the logger, console lines are logged as they came, tagged by category (the reading
// is ParseCanonicalMessage's), and counted until the tab-indented summaries of xbuild (which
// repeats each diagnostic in its closing sections) replace what they counted.
TEST(MSBuildStructuredOutput, ConsoleLinesAreTaggedAndCounted) {
  struct Case {
    int64_t errors, warnings;
    const char* tags;  // of each line logged; blank lines are skipped
    std::vector<std::string> lines;
  } cases[] = {
      // Counts no int holds are read into 64 bits, and their sum clamps.
      {4294967294, 0, "33", {"2147483647 Error(s)", "2147483647 Error(s)"}},
      {INT64_MAX, 0, "33", {"99999999999999999999 Error(s)", "1 Error(s)"}},
      {2,
       1,
       "332",
       {"a.cs(1,1): error CS1: x", "MSBUILD : error MSB1009: No project.",
        "b.cs(2): warning CS2: y"}},
      {12, 0, "330", {"a.cs(1,1): error CS1: x", "    12 Error(s)", "     0 Warning(s)"}},
      {0, 3, "2", {"\t 3 Warning(s)  \r"}},
      {0, 0, "0000", {"3 Error(s) found", "Error(s)", "x 3 Error(s)", " 3  Error(s)"}},
      {1,
       1,
       "202203303",
       {"a.cs(1,1): warning CS1: x", "Warnings:", "\ta.cs(1,1): warning CS1: x", "\t 1 Warning(s)",
        "\t 0 Error(s)", "", "12>C:\\src\\a.cs(3,4): error CS1002: ; expected",
        "\t12>C:\\src\\a.cs(3,4): error CS1002: ; expected", "\t 0 Warning(s)", "\t 1 Error(s)"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.lines.front());
    Reader r;
    r.Feed(c.lines);
    std::vector<std::string> expected;
    for (const std::string& line : c.lines)
      if (!line.empty())
        expected.push_back("[" + std::string(1, c.tags[expected.size()]) + "] " +
                           line.substr(0, line.find_last_not_of(" \r") + 1));
    EXPECT_EQ(r.ctx->Messages(), expected);
    EXPECT_EQ(r.helper.GetErrorCount(), c.errors);
    EXPECT_EQ(r.helper.GetWarningCount(), c.warnings);
  }
}

TEST(MSBuildStructuredOutput, DisabledHelperIgnoresEverythingAndStartResets) {
  Reader r(false);
  r.Feed({"a.cs(1,1): error CS1: x", "@@qv:projectStarted\t/src/Lib/Lib.csproj\t"});
  EXPECT_EQ(r.ctx->Transcript(), "");
  EXPECT_EQ(r.helper.GetErrorCount(), 0);

  // Once the logger speaks, console lines are still logged but no longer count.
  r.helper.Start("/src/App.sln", true);
  r.Feed({"@@qv:projectStarted\t/src/Lib/Lib.csproj\t",
          "a.cs(1,1): error CS1: printed by another logger", "\t 5 Error(s)",
          "@@qv:error\t\ta.cs\t1\t1\tCS1\tm"});
  EXPECT_EQ(r.helper.GetErrorCount(), 1);
  // A new run forgets the counts, the open project and that the logger was seen.
  r.helper.Start("/src/App.sln", true);
  r.Feed({"\t 2 Warning(s)", "@@qv:projectFinished\t/src/Lib/Lib.csproj\tFalse"});
  EXPECT_EQ(r.helper.GetErrorCount(), 0);
  EXPECT_EQ(r.helper.GetWarningCount(), 2);
  // The first run's group stays open: Finish was not called.
  EXPECT_EQ(r.ctx->Transcript(),
            "> Project Lib.csproj (type 0) [0]\n"
            "  [3] a.cs(1,1): error CS1: printed by another logger\n"
            "  [3] \t 5 Error(s)\n"
            "  [3] a.cs(1,1): error CS1: m\n"
            "  [2] \t 2 Warning(s)\n");
}

}  // namespace
