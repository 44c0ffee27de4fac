#include "ProcessRunner.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"

using qvtest::TempDir;

namespace {

struct Recorder : qv::IQvProcessOutputHandler {
  std::string Out, Err;
  std::vector<std::string> OutChunks;
  void OnStdOutData(qv::IQvProcess*, std::string_view chunk) override {
    Out += chunk;
    OutChunks.emplace_back(chunk);
  }
  void OnStdErrData(qv::IQvProcess*, std::string_view chunk) override { Err += chunk; }
};

struct Result {
  int Code;
  bool Clean;
  std::string Out, Err;
  std::vector<std::string> OutChunks;
};

Result RunShell(const std::string& params, const std::string& dir = "",
                qv::TAutoResetEvent* terminate = nullptr) {
  Recorder rec;
  auto p = qvhost::NewHostProcess();
  p->SetExecutable("/bin/sh");
  p->SetParameters(params);
  p->SetCaptureOutput(true);
  p->SetHideWindow(true);
  p->SetStartingDir(dir);
  p->SetTerminateEvent(terminate);
  p->SetOutputHandler(&rec);
  int code = p->Run();
  EXPECT_EQ(code, p->GetExitCode());
  return {code, p->GetCleanExit(), rec.Out, rec.Err, rec.OutChunks};
}

std::string Numbers(int from, int to) {
  std::string s;
  for (int i = from; i <= to; ++i)
    s += std::to_string(i) + "\n";
  return s;
}

bool NoChildrenLeft() {
  int status;
  return waitpid(-1, &status, WNOHANG) < 0 && errno == ECHILD;
}

TEST(THostProcess, DeliversEachStreamWholeAndInOrder) {
  Result r = RunShell("-c \"seq 1 60000; seq 1 40000 >&2; echo tail; exit 3\"");
  EXPECT_EQ(r.Code, 3);
  EXPECT_TRUE(r.Clean);
  EXPECT_EQ(r.Out, Numbers(1, 60000) + "tail\n");
  EXPECT_EQ(r.Err, Numbers(1, 40000));
  EXPECT_TRUE(NoChildrenLeft());
}

TEST(THostProcess, ALineWrittenInPiecesArrivesWhole) {
  Result r = RunShell("-c \"printf a; sleep 0.2; printf 'b\\nc'\"");
  EXPECT_EQ(r.OutChunks, (std::vector<std::string>{"ab\n", "c"}));
}

TEST(THostProcess, SplitsParametersAsWindowsDoesAndRunsDetachedInItsFolder) {
  TempDir dir;
  Result r = RunShell("-c \"printf '[%s]' \\\"$@\\\"\" sh \"a b\" c\\\"d \"\"");
  EXPECT_EQ(r.Out, "[a b][c\"d][]");
  r = RunShell(
      "-c \"pwd; read x; echo [$x]; read -r s < /proc/$$/stat; set -- $s; "
      "[ $1 = $6 ] && echo leader\"",
      dir.Path());
  EXPECT_EQ(r.Out, dir.Path() + "\n[]\nleader\n");
}

TEST(THostProcess, ReportsWhatCannotStartAndWhatDidNotEndByItself) {
  Result r = RunShell("-c \"kill -KILL $$\"");
  EXPECT_EQ(r.Code, 128 + SIGKILL);
  EXPECT_FALSE(r.Clean);
  auto p = qvhost::NewHostProcess();
  p->SetExecutable("/nonexistent/tool");
  EXPECT_EQ(qvtest::ErrorOf([&] { p->Run(); }),
            "Cannot run \"/nonexistent/tool\" : No such file or directory");
  EXPECT_TRUE(NoChildrenLeft());
}

// The shell ignores SIGTERM, so only the SIGKILL that follows ends it.
TEST(THostProcess, TerminateStopsTheChildAndEverythingItStarted) {
  TempDir dir;
  qv::TAutoResetEvent terminate;
  std::thread stopper([&] {
    while (!std::filesystem::exists(dir.File("started")))
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    terminate.Signal();
  });
  auto start = std::chrono::steady_clock::now();
  Result r = RunShell(
      "-c \"sleep 30 & echo $! > pid; trap '' TERM; touch started; "
      "while :; do sleep 0.1; done\"",
      dir.Path(), &terminate);
  stopper.join();
  EXPECT_EQ(r.Code, qv::kTerminatedExitCode);
  EXPECT_FALSE(r.Clean);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  std::ifstream pidFile(dir.File("pid"));
  pid_t grandchild = 0;
  pidFile >> grandchild;
  ASSERT_GT(grandchild, 0);
  EXPECT_TRUE(qvtest::ProcessEnds(grandchild));
  EXPECT_TRUE(NoChildrenLeft());
}

// After the child has ended, a descendant that keeps writing is read until a terminate
// request stops it, soon after the request.
TEST(THostProcess, TerminateStopsTheDrainOfADescendantThatKeepsWriting) {
  TempDir dir;
  qv::TAutoResetEvent terminate;
  std::thread stopper([&] {
    while (!std::filesystem::exists(dir.File("started")))
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    terminate.Signal();
  });
  Recorder rec;
  auto p = qvhost::NewHostProcess();
  p->SetExecutable("/bin/sh");
  p->SetParameters("-c \"yes & echo $! > pid; touch started\"");
  p->SetCaptureOutput(true);
  p->SetStartingDir(dir.Path());
  p->SetTerminateEvent(&terminate);
  p->SetOutputHandler(&rec);
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(p->Run(), qv::kTerminatedExitCode);
  stopper.join();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  EXPECT_TRUE(qvtest::ProcessEnds(std::stoi(TempDir::Read(dir.File("pid")))));
}

}  // namespace
