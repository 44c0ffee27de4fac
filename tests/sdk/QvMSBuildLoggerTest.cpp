// The logger assembly, the Mono MSBuild.exe launcher and the output helper together, with
// Mono's xbuild building real solutions.
#include <gtest/gtest.h>

#include "QvSysUtils.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "QvActions.h"
#include "QvMSBuildOutput.h"
#include "support/RecordingActionContext.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::LogEntry;
using qvtest::RecordingActionContext;
using qvtest::TempDir;

namespace fs = std::filesystem;

namespace {

const std::string kLauncher = QV_OUTPUT_DIR "/mono/MSBuild.exe";
const std::string kLogger = QV_OUTPUT_DIR "/Quorvex.MSBuild.Tasks.dll";

// One launcher run whose standard output went through a started helper.
struct BuildRun {
  qvtest::CommandResult result;
  qvtest::RecordingAction action;
  IntfPtr<RecordingActionContext>& ctx = action.ctx;
  TQvMSBuildStructuredOutputHelper helper{&action};

  BuildRun(const std::string& solution, const std::vector<std::string>& args) {
    std::string command = qvtest::ShellQuote(kLauncher);
    for (const auto& arg : args)
      command += " " + qvtest::ShellQuote(arg);
    result = qvtest::RunCommand(command);
    helper.Start(solution, true);
    ForEachLine(result.out, [&](std::string_view line) { helper.ProcessLine(line); });
    helper.Finish();
  }

  // The transcript without its plain messages.
  std::string Outline() const {
    std::string out;
    for (const LogEntry& e : ctx->Log) {
      if (e.kind == LogEntry::Message && e.tag == 0) continue;
      out.append(static_cast<size_t>(e.depth) * 2, ' ');
      std::string tag = "[" + std::to_string(e.tag) + "]";
      if (e.kind == LogEntry::Message) out += tag + " " + e.text + "\n";
      if (e.kind == LogEntry::GroupStart) out += "> " + e.text + " " + tag + "\n";
      if (e.kind == LogEntry::GroupEnd) out += "< " + tag + "\n";
    }
    return out;
  }
};

class MonoMSBuild : public testing::Test {
 protected:
  void SetUp() override {
    if (qvtest::RunCommand("command -v xbuild").exitCode != 0) GTEST_SKIP() << "no xbuild";
    if (!fs::exists(kLogger)) GTEST_SKIP() << kLogger << " was not built (no mcs)";
    ASSERT_TRUE(fs::exists(kLauncher)) << kLauncher;
  }

  // A one-project solution whose source has a #warning and an undefined name.
  std::string CopyBrokenSolution() {
    fs::copy(QV_FIXTURES_DIR "/msbuild-broken", dir.Path(), fs::copy_options::recursive);
    return dir.File("Broken.sln");
  }

  TempDir dir;
};

TEST_F(MonoMSBuild, SampleSolutionBuildsWithOneGroupPerProject) {
  fs::copy(fs::path(QV_EXAMPLES_DIR) / "vs2008", dir.Path(), fs::copy_options::recursive);
  std::string solution = dir.File("Greeting.sln");
  BuildRun run(solution,
               {"/t:Build", "/logger:" + kLogger, "/noconlog",
                "/p:Configuration=Release;Platform=Any CPU", "/v:normal", "/m", solution});

  ASSERT_EQ(run.result.exitCode, 0) << run.result.out;
  // Greeting.Tests is not built in Release; Greeting.Console's calls of GetTargetPath and
  // GetCopyToOutputDirectoryItems on Greeting.Lib open no group.
  EXPECT_EQ(run.Outline(),
            "> Project Greeting.Lib.csproj [0]\n"
            "< [1]\n"
            "> Project Greeting.Console.csproj [0]\n"
            "< [1]\n");
  EXPECT_EQ(run.helper.GetErrorCount(), 0);
  EXPECT_EQ(run.helper.GetWarningCount(), 0);
  auto messages = run.ctx->Messages();
  for (const char* expected :
       {"[0] >>>> xbuild tool is deprecated and will be removed in future updates, use msbuild "
        "instead <<<<",
        "[0] Building solution configuration \"Release|Any CPU\"."})
    EXPECT_NE(std::find(messages.begin(), messages.end(), expected), messages.end()) << expected;
  EXPECT_TRUE(fs::exists(dir.File("Greeting.Console/bin/Release/Greeting.Console.exe")));
}

TEST_F(MonoMSBuild, CompileErrorIsLoggedInsideItsProjectGroup) {
  std::string solution = CopyBrokenSolution();
  BuildRun run(solution,
               {"/nologo", "/t:Build", "/logger:" + kLogger, "/noconlog",
                "/p:Configuration=Release;Platform=Any CPU", "/v:minimal", "/m:4", solution});

  EXPECT_EQ(run.result.exitCode, 1) << run.result.out;
  // Minimal verbosity lets only high-importance messages through; mcs places the #warning
  // on the line after the directive.
  std::string greeter = qv::ExtractFileDir(solution) + "/Broken/Greeter.cs";
  EXPECT_EQ(run.ctx->Transcript(),
            "> Project Broken.csproj (type 0) [0]\n"
            "  [0] Configuration: Release Platform: AnyCPU\n"
            "  [2] " +
                greeter +
                "(8): warning CS1030: #warning: `Half done'\n"
                "  [3] " +
                greeter +
                "(8,32): error CS0103: The name `missingName' does not exist in the "
                "current context\n"
                "< [3]\n");
  EXPECT_EQ(run.helper.GetErrorCount(), 1);
  EXPECT_EQ(run.helper.GetWarningCount(), 1);
}

TEST_F(MonoMSBuild, ConsoleOutputWithoutLoggerCountsEachDiagnosticOnce) {
  std::string solution = CopyBrokenSolution();
  BuildRun run(solution,
               {"/nologo", "-M:2", "/t:Build", "/p:Configuration=Release;Platform=Any CPU",
                "/v:normal", "-MaxCpuCount:3", "/maxcpucount", solution});

  EXPECT_EQ(run.result.exitCode, 1) << run.result.out;
  // xbuild repeats each diagnostic, tab-indented, in its closing "Warnings:" and "Errors:"
  // sections before its tab-indented counts.
  EXPECT_EQ(run.Outline(),
            "[2] Greeter.cs(8): warning CS1030: #warning: `Half done'\n"
            "[3] Greeter.cs(8,32): error CS0103: The name `missingName' does not exist in the "
            "current context\n"
            "[2] \tGreeter.cs(8): warning CS1030: #warning: `Half done'\n"
            "[3] \tGreeter.cs(8,32): error CS0103: The name `missingName' does not exist in the "
            "current context\n"
            "[2] \t 1 Warning(s)\n"
            "[3] \t 1 Error(s)\n");
  EXPECT_EQ(run.helper.GetErrorCount(), 1);
  EXPECT_EQ(run.helper.GetWarningCount(), 1);
}

}  // namespace
