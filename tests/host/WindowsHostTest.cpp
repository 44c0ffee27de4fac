// The host on Windows: the process runner with real Windows children (the devenv stand-in
// built as a Windows program, replaying output, and a tree of stand-ins that a terminate
// request must end, also when qvhost itself is killed in the middle of a build), and COM.
#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "ComAutomation.h"
#include "ProcessRunner.h"
#include "QvExceptions.h"
#include "QvWin32.h"
#include "support/ErrorOf.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"
#include "tools/standin/RecordCall.h"

using qvtest::TempDir;

namespace {

struct Output : qv::IQvProcessOutputHandler {
  std::vector<std::string> Out, Err;
  void OnStdOutData(qv::IQvProcess*, std::string_view chunk) override { Out.emplace_back(chunk); }
  void OnStdErrData(qv::IQvProcess*, std::string_view chunk) override { Err.emplace_back(chunk); }
};

// A stand-in steered through its own folder (QV_STANDIN_DIR), run through the runner.
struct StandIn : testing::Test {
  TempDir dir;
  Output output;
  qv::TAutoResetEvent terminate;
  qv::IntfPtr<qv::IQvProcess> process = qvhost::NewHostProcess();

  StandIn() {
    SetEnvironmentVariableA("QV_STANDIN_DIR", dir.Path().c_str());
    process->SetExecutable(QV_DEVENV_STANDIN);
    process->SetCaptureOutput(true);
    process->SetHideWindow(true);
    process->SetStartingDir(dir.Path());
    process->SetOutputHandler(&output);
    process->SetTerminateEvent(&terminate);
  }
  // Whether the stand-in's first call got under way within 20 seconds.
  bool Started() {
    for (int i = 0; i < 400 && !std::filesystem::exists(dir.File("run1.started")); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return std::filesystem::exists(dir.File("run1.started"));
  }
  // Whether the process whose id is in `file` has ended.
  bool Ended(const char* file) {
    return qvtest::ProcessEnds(std::stoi(TempDir::Read(dir.File(file))));
  }
};

TEST_F(StandIn, ReplaysOutputWholeWithItsArgumentsAndExitCode) {
  dir.Write("run1.out", "Build started\r\nBuild: 1 succeeded, 0 failed\r\nlast");
  dir.Write("run1.err", "warning\n");
  dir.Write("run1.exit", "3");
  process->SetParameters("/build \"Release|Any CPU\" \"C:\\My Src\\App.sln\"");
  EXPECT_EQ(process->Run(), 3);
  EXPECT_TRUE(process->GetCleanExit());
  std::string out;
  for (const auto& chunk : output.Out)
    out += chunk;
  EXPECT_EQ(out, "Build started\r\nBuild: 1 succeeded, 0 failed\r\nlast");
  EXPECT_EQ(output.Err, std::vector<std::string>{"warning\n"});
  // The C runtime's splitting gives the three arguments; the stand-in ran in its folder (its
  // record doubles backslashes).
  EXPECT_EQ(TempDir::Read(dir.File("calls.txt")),
            standin::Escape(dir.Path()) + "\t/build\tRelease|Any CPU\tC:\\\\My Src\\\\App.sln\n");
}

TEST_F(StandIn, TerminateEndsTheChildAndWhatItStarted) {
  dir.Write("run1.wait", "child");
  std::thread stopper([&] {
    Started();
    terminate.Signal();
  });
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(process->Run(), qv::kTerminatedExitCode);
  stopper.join();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  EXPECT_TRUE(Ended("run1.started"));
  EXPECT_TRUE(Ended("run1.child")) << "the stand-in's own child is left";
}

TEST_F(StandIn, AProgramThatDoesNotExistIsNamed) {
  process->SetExecutable(dir.File("missing.exe"));
  EXPECT_EQ(qvtest::ErrorOf([&] { process->Run(); }),
            "Cannot run \"" + dir.File("missing.exe") + "\" : No such file or directory");
}

TEST_F(StandIn, AKilledQvhostLeavesNoBuildProcessBehind) {
  dir.Write("run1.wait", "child");
  std::string standIn = QV_DEVENV_STANDIN;
  dir.Write("options.xml",
            "<QvOptions><Section key=\"VisualStudioDotNet\"><Value name=\"MSDevPath2003\" "
            "type=\"string\">" +
                qvtest::NativePath(standIn.substr(0, standIn.rfind('/') + 1)) +
                "</Value></Section></QvOptions>");
  std::wstring cmd = qv::win32::Wide(
      "\"" + qvtest::NativePath(QV_QVHOST) + "\" --no-default-packages --package \"" +
      qvtest::NativePath(QV_PACKAGE_MODULE) + "\" --options \"" + dir.File("options.xml") +
      "\" exec TQvVSDotNetAction \"Solution=" +
      qvtest::NativePath(QV_EXAMPLES_DIR "/vs2003/Billing.sln") + "\" VStudioVersion=vs2003");
  STARTUPINFOW si{};
  si.cb = sizeof si;
  PROCESS_INFORMATION pi{};
  ASSERT_TRUE(CreateProcessW(nullptr, cmd.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                             nullptr, nullptr, &si, &pi));
  ASSERT_TRUE(Started()) << "the build never started";
  TerminateProcess(pi.hProcess, 1);
  WaitForSingleObject(pi.hProcess, 10000);
  CloseHandle(pi.hProcess);
  CloseHandle(pi.hThread);
  EXPECT_TRUE(Ended("run1.started"));
  EXPECT_TRUE(Ended("run1.child"));
}

// COM monikers bind for real: Windows Management Instrumentation answers everywhere (Wine
// too, though Wine reads no property through it); IIS only where it is installed.
TEST(ComAutomation, BindsMonikersThroughTheSystem) {
  auto com = qvhost::NewComAutomation();
  auto services = com->CoGetObject("winmgmts:root\\cimv2");
  ASSERT_TRUE(services);
  EXPECT_EQ(qvtest::ErrorOf([&] { services->GetProperty("Path"); }),
            "The object has no property \"Path\"");
  EXPECT_FALSE(com->CoGetObject("IIS://localhost/W3SVC/999/ROOT")) << "no IIS here";
}

}  // namespace
