// The logger assembly, the Mono MSBuild.exe launcher and the output helper together, with
// Mono's xbuild building a real solution.
#include <gtest/gtest.h>

#include "QvSysUtils.h"

#include <filesystem>
#include <string>
#include <vector>

#include "QvActions.h"
#include "QvMSBuildOutput.h"
#include "support/RecordingActionContext.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"

using namespace qv;

namespace fs = std::filesystem;

namespace {

const std::string kLauncher = QV_OUTPUT_DIR "/mono/MSBuild.exe";
const std::string kLogger = QV_OUTPUT_DIR "/Quorvex.MSBuild.Tasks.dll";

// One launcher run whose standard output went through a started helper.
struct BuildRun {
  qvtest::CommandResult result;
  qvtest::RecordingAction action;
  TQvMSBuildStructuredOutputHelper helper{&action};

  BuildRun(const std::string& solution, const std::vector<std::string>& args) {
    std::string command = qvtest::ShellQuote(kLauncher);
    for (const auto& arg : args)
      command += " " + qvtest::ShellQuote(arg);
    result = qvtest::RunCommand(command + " " + qvtest::ShellQuote(solution));
    helper.Start(solution, true);
    ForEachLine(result.out, [&](std::string_view line) { helper.ProcessLine(line); });
    helper.Finish();
  }
};

class MonoMSBuild : public testing::Test {
 protected:
  void SetUp() override {
    if (qvtest::RunCommand("command -v xbuild").exitCode != 0) GTEST_SKIP() << "no xbuild";
    if (!fs::exists(kLogger)) GTEST_SKIP() << kLogger << " was not built (no mcs)";
    ASSERT_TRUE(fs::exists(kLauncher)) << kLauncher;
    fs::copy(QV_FIXTURES_DIR "/msbuild-broken", dir.Path(), fs::copy_options::recursive);
  }

  qvtest::TempDir dir;
};

// A one-project solution whose source has a #warning and an undefined name, built once with
// the logger and once without; the launcher drops the /m switches that xbuild rejects.
TEST_F(MonoMSBuild, DiagnosticsOfABrokenSolutionAreLoggedAndCountedOnce) {
  std::string solution = dir.File("Broken.sln");
  BuildRun logged(solution, {"/nologo", "/t:Build", "/logger:" + kLogger, "/noconlog",
                             "/p:Configuration=Release;Platform=Any CPU", "/v:minimal", "/m:4"});
  EXPECT_EQ(logged.result.exitCode, 1) << logged.result.out;
  // Minimal verbosity lets only high-importance messages through; mcs places the #warning
  // on the line after the directive.
  std::string greeter = qv::ExtractFileDir(solution) + "/Broken/Greeter.cs";
  EXPECT_EQ(logged.action.ctx->Transcript(),
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
  EXPECT_EQ(logged.helper.GetErrorCount(), 1);
  EXPECT_EQ(logged.helper.GetWarningCount(), 1);

  BuildRun console(solution, {"/nologo", "-M:2", "/t:Build", "/v:normal", "-MaxCpuCount:3",
                              "/p:Configuration=Release;Platform=Any CPU", "/maxcpucount"});
  EXPECT_EQ(console.result.exitCode, 1) << console.result.out;
  // xbuild repeats each diagnostic, tab-indented, in its closing "Warnings:" and "Errors:"
  // sections before its tab-indented counts.
  std::vector<std::string> diagnostics = console.action.ctx->Messages();
  std::erase_if(diagnostics, [](const std::string& m) { return m.starts_with("[0]"); });
  EXPECT_EQ(diagnostics,
            (std::vector<std::string>{
                "[2] Greeter.cs(8): warning CS1030: #warning: `Half done'",
                "[3] Greeter.cs(8,32): error CS0103: The name `missingName' does not exist in the "
                "current context",
                "[2] \tGreeter.cs(8): warning CS1030: #warning: `Half done'",
                "[3] \tGreeter.cs(8,32): error CS0103: The name `missingName' does not exist in "
                "the current context",
                "[2] \t 1 Warning(s)", "[3] \t 1 Error(s)"}));
  EXPECT_EQ(console.helper.GetErrorCount(), 1);
  EXPECT_EQ(console.helper.GetWarningCount(), 1);
}

}  // namespace
