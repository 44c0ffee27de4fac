// The logger assembly, the Mono MSBuild.exe launcher and the output helper together, with
// Mono's xbuild building real solutions.
#include <gtest/gtest.h>

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

class TBuildAction : public TQvMultiExecAction {
 public:
  std::string GetActionName() const override { return "Build"; }
  bool Execute() override { return true; }
};

// One launcher run whose standard output went through a started helper.
struct BuildRun {
  qvtest::CommandResult result;
  qv::IntfPtr<RecordingActionContext> ctx = RecordingActionContext::Create();
  TBuildAction action;
  TQvMSBuildStructuredOutputHelper helper{&action};

  BuildRun(const std::string& solution, const std::vector<std::string>& args) {
    std::string command = qvtest::ShellQuote(kLauncher);
    for (const auto& arg : args)
      command += " " + qvtest::ShellQuote(arg);
    result = qvtest::RunCommand(command);
    action.BindContext(ctx);
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
  std::string WriteBrokenSolution() {
    dir.Write("Broken/Broken.csproj", R"(<?xml version="1.0" encoding="utf-8"?>
<Project ToolsVersion="3.5" DefaultTargets="Build" xmlns="http://schemas.microsoft.com/developer/msbuild/2003">
  <PropertyGroup>
    <OutputType>Library</OutputType>
    <AssemblyName>Broken</AssemblyName>
    <OutputPath>bin\$(Configuration)\</OutputPath>
  </PropertyGroup>
  <ItemGroup>
    <Reference Include="System" />
    <Compile Include="Greeter.cs" />
  </ItemGroup>
  <Import Project="$(MSBuildToolsPath)\Microsoft.CSharp.targets" />
</Project>
)");
    dir.Write("Broken/Greeter.cs", R"(namespace Broken
{
    public class Greeter
    {
        public string Greet()
        {
#warning Half done
            return "Hello, " + missingName;
        }
    }
}
)");
    return dir.Write("Broken.sln", R"(
Microsoft Visual Studio Solution File, Format Version 10.00
# Visual Studio 2008
Project("{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}") = "Broken", "Broken\Broken.csproj", "{5D1E2C3B-4A59-4F68-9E7D-0C1B2A3F4E5D}"
EndProject
Global
	GlobalSection(SolutionConfigurationPlatforms) = preSolution
		Release|Any CPU = Release|Any CPU
	EndGlobalSection
	GlobalSection(ProjectConfigurationPlatforms) = postSolution
		{5D1E2C3B-4A59-4F68-9E7D-0C1B2A3F4E5D}.Release|Any CPU.ActiveCfg = Release|Any CPU
		{5D1E2C3B-4A59-4F68-9E7D-0C1B2A3F4E5D}.Release|Any CPU.Build.0 = Release|Any CPU
	EndGlobalSection
EndGlobal
)");
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
  std::string solution = WriteBrokenSolution();
  BuildRun run(solution,
               {"/nologo", "/t:Build", "/logger:" + kLogger, "/noconlog",
                "/p:Configuration=Release;Platform=Any CPU", "/v:minimal", "/m:4", solution});

  EXPECT_EQ(run.result.exitCode, 1) << run.result.out;
  // Minimal verbosity lets only high-importance messages through; mcs places the #warning
  // on the line after the directive.
  EXPECT_EQ(run.ctx->Transcript(),
            "> Project Broken.csproj (type 0) [0]\n"
            "  [0] Configuration: Release Platform: AnyCPU\n"
            "  [2] Greeter.cs(8): warning CS1030: #warning: `Half done'\n"
            "  [3] Greeter.cs(8,32): error CS0103: The name `missingName' does not exist in the "
            "current context\n"
            "< [3]\n");
  EXPECT_EQ(run.helper.GetErrorCount(), 1);
  EXPECT_EQ(run.helper.GetWarningCount(), 1);
}

TEST_F(MonoMSBuild, ConsoleOutputWithoutLoggerCountsEachDiagnosticOnce) {
  std::string solution = WriteBrokenSolution();
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
