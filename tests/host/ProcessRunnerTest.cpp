#include "ProcessRunner.h"

#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"

using namespace std::chrono_literals;

namespace {

std::string Numbers(int to) {
  std::string s;
  for (int i = 1; i <= to; ++i)
    s += std::to_string(i) + "\n";
  return s;
}

// Runs /bin/sh in the test's folder with grace periods of 100 ms, its output captured here.
class THostProcessTest : public ::testing::Test, public qv::IQvProcessOutputHandler {
 protected:
  void OnStdOutData(qv::IQvProcess*, std::string_view chunk) override { Out += chunk; }
  void OnStdErrData(qv::IQvProcess*, std::string_view chunk) override { Err += chunk; }
  int Shell(const std::string& params) {
    P->SetExecutable("/bin/sh");
    P->SetParameters(params);
    P->SetCaptureOutput(true);
    P->SetStartingDir(Dir.Path());
    P->SetOutputHandler(this);
    P->SetGracePeriods(100ms, 100ms);
    int code = P->Run();
    EXPECT_EQ(code, P->GetExitCode());
    return code;
  }
  static bool NoChildrenLeft() {
    int status;
    return waitpid(-1, &status, WNOHANG) < 0 && errno == ECHILD;
  }
  qvtest::TempDir Dir;
  qv::IntfPtr<qvhost::THostProcess> P{new qvhost::THostProcess};
  std::string Out, Err;
};

TEST_F(THostProcessTest, DeliversEachStreamWholeAndSaysHowTheChildEnded) {
  EXPECT_EQ(Shell("-c \"seq 1 60000; seq 1 40000 >&2; echo tail; exit 3\""), 3);
  EXPECT_TRUE(P->GetCleanExit());
  EXPECT_EQ(Out, Numbers(60000) + "tail\n");
  EXPECT_EQ(Err, Numbers(40000));
  EXPECT_EQ(Shell("-c \"kill -KILL $$\""), 128 + SIGKILL);
  EXPECT_FALSE(P->GetCleanExit());
  auto missing = qvhost::NewHostProcess();
  missing->SetExecutable("/nonexistent/tool");
  EXPECT_EQ(qvtest::ErrorOf([&] { missing->Run(); }),
            "Cannot run \"/nonexistent/tool\" : No such file or directory");
  EXPECT_TRUE(NoChildrenLeft());
}

// Parameters split as the Windows C runtime does; no input; its own session, in its folder.
TEST_F(THostProcessTest, SplitsParametersAsWindowsDoesAndRunsDetachedInItsFolder) {
  Shell(
      "-c \"printf '[%s]' \\\"$@\\\"; pwd; read x; echo [$x]; read -r s < /proc/$$/stat; "
      "set -- $s; [ $1 = $6 ] && echo leader\" sh \"a b\" c\\\"d \"\"");
  EXPECT_EQ(Out, "[a b][c\"d][]" + Dir.Path() + "\n[]\nleader\n");
}

// A request while the child runs (its shell ignores SIGTERM, so only the SIGKILL after the
// grace period ends it), and one after it has ended while a descendant keeps writing (which
// holds up the drain until then): the run ends with 999 and leaves no descendant behind.
TEST_F(THostProcessTest, TerminateStopsTheChildAndEverythingItStarted) {
  const struct {
    const char* script;
    std::chrono::milliseconds delay;  // after the child is under way
  } cases[] = {
      {"sleep 30 & echo $! > pid; trap '' TERM; touch started; while :; do sleep 0.1; done", 0ms},
      {"yes & echo $! > pid; touch started", 200ms},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.script);
    std::filesystem::remove(Dir.File("started"));
    qv::TAutoResetEvent terminate;
    std::thread stopper([&] {
      while (!std::filesystem::exists(Dir.File("started")))
        std::this_thread::sleep_for(10ms);
      std::this_thread::sleep_for(c.delay);
      terminate.Signal();
    });
    P->SetTerminateEvent(&terminate);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Shell(std::string("-c \"") + c.script + "\""), qv::kTerminatedExitCode);
    stopper.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    EXPECT_FALSE(P->GetCleanExit());
    EXPECT_TRUE(qvtest::ProcessEnds(std::stoi(qvtest::TempDir::Read(Dir.File("pid")))));
    EXPECT_TRUE(NoChildrenLeft());
  }
}

}  // namespace
