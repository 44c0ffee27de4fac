#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

#include "ProcessRunner.h"
#include "QvExceptions.h"

namespace qvhost {

namespace {

constexpr int kPollMs = 50;  // how often a waiting run looks at the terminate event

// Owns a file descriptor.
struct TFd {
  int Fd = -1;
  TFd() = default;
  explicit TFd(int fd) : Fd(fd) {}
  TFd(const TFd&) = delete;
  TFd& operator=(const TFd&) = delete;
  ~TFd() { Close(); }
  void Close() {
    if (Fd >= 0) close(Fd);
    Fd = -1;
  }
};

struct TPipe {
  TFd Read, Write;
  TPipe() {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
      throw qv::Exception(std::string("Cannot create a pipe : ") + std::strerror(errno));
    Read.Fd = fds[0];
    Write.Fd = fds[1];
  }
};

// In the child between fork and exec: only async-signal-safe calls. A failure is reported
// through `status` as an errno value.
[[noreturn]] void StartChild(char* const* argv, const char* dir, int devNull, int out, int err,
                             int status, pid_t host) {
  setsid();  // no controlling terminal, and a process group of its own to stop as a whole
  // A compiler must not outlive a host that was killed outright (the host stops it otherwise).
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != host) _exit(127);
  struct sigaction dfl {};
  dfl.sa_handler = SIG_DFL;
  for (int sig : {SIGINT, SIGTERM, SIGPIPE, SIGCHLD})
    sigaction(sig, &dfl, nullptr);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  if ((dir && chdir(dir) != 0) || dup2(devNull, 0) < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0) {
    int e = errno;
    [[maybe_unused]] ssize_t n = write(status, &e, sizeof e);
    _exit(127);
  }
  execvp(argv[0], argv);
  int e = errno;
  [[maybe_unused]] ssize_t n = write(status, &e, sizeof e);
  _exit(127);
}

int WaitBlocking(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

// SIGTERM to the whole group, SIGKILL after `grace`; returns once the child is reaped.
void StopGroup(pid_t pid, std::chrono::milliseconds grace) {
  kill(-pid, SIGTERM);
  auto deadline = std::chrono::steady_clock::now() + grace;
  int status = 0;
  while (waitpid(pid, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() >= deadline) {
      kill(-pid, SIGKILL);
      WaitBlocking(pid);
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  kill(-pid, SIGKILL);  // whatever of the group outlived the child
}

using TDeliver = std::function<void(bool stdErr, std::string_view chunk)>;

// Reads what one pipe has; false when it has nothing now. At the end of the stream (or on an
// error) `fd` becomes -1; its owner closes it.
bool ReadChunk(int& fd, bool stdErr, const TDeliver& deliver) {
  char buf[65536];
  ssize_t n = read(fd, buf, sizeof buf);
  if (n > 0) {
    deliver(stdErr, std::string_view(buf, static_cast<size_t>(n)));
    return true;
  }
  if (n < 0 && (errno == EINTR || errno == EAGAIN)) return false;
  fd = -1;
  return false;
}

// Once the child has ended: reads what its pipes still hold and what descendants still
// write. Holders that stay silent for `grace` are not waited for, nor are pipes held open
// beyond it by processes that left the group; a terminate request stops the whole group at
// once (false).
bool Drain(pid_t pid, pollfd (&fds)[2], const TDeliver& deliver,
           const std::function<bool()>& terminate, std::chrono::milliseconds grace) {
  using Clock = std::chrono::steady_clock;
  auto start = Clock::now(), lastData = start;
  while (fds[0].fd >= 0 || fds[1].fd >= 0) {
    if (terminate()) {
      kill(-pid, SIGKILL);
      return false;
    }
    if (poll(fds, 2, kPollMs) > 0)
      for (int i = 0; i < 2; ++i)
        if (fds[i].fd >= 0 && (fds[i].revents & (POLLIN | POLLHUP | POLLERR)) &&
            ReadChunk(fds[i].fd, i == 1, deliver))
          lastData = Clock::now();
    auto now = Clock::now();
    bool groupGone = kill(-pid, 0) < 0 && errno == ESRCH;
    if (now - lastData >= grace || (groupGone && now - start >= grace)) break;
  }
  return true;
}

// Delivers output until the child ends and returns its wait status, or nullopt when
// `terminate` asked for it to be stopped. Once the child has ended, what is still buffered in
// the pipes is read; descendants that keep the pipes open are not waited for. The grace
// periods are StopGroup's and Drain's.
std::optional<int> Pump(pid_t pid, int outFd, int errFd, const TDeliver& deliver,
                        const std::function<bool()>& terminate,
                        std::chrono::milliseconds terminateGrace,
                        std::chrono::milliseconds drainGrace) {
  for (int fd : {outFd, errFd})
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
  pollfd fds[2] = {{outFd, POLLIN, 0}, {errFd, POLLIN, 0}};
  int status = 0;
  for (;;) {
    if (poll(fds, 2, kPollMs) > 0)
      for (int i = 0; i < 2; ++i)
        if (fds[i].fd >= 0 && (fds[i].revents & (POLLIN | POLLHUP | POLLERR)))
          ReadChunk(fds[i].fd, i == 1, deliver);
    if (terminate()) {
      StopGroup(pid, terminateGrace);
      return std::nullopt;
    }
    pid_t done = waitpid(pid, &status, WNOHANG);
    if (done == pid || (done < 0 && errno == ECHILD)) break;
  }
  return Drain(pid, fds, deliver, terminate, drainGrace) ? std::optional<int>(status)
                                                         : std::nullopt;
}

}  // namespace

int THostProcess::Run() {
  FExitCode = 0;
  FCleanExit = false;
  std::vector<std::string> args = qv::SplitCommandLine(FParameters);
  args.insert(args.begin(), FExecutable);
  std::vector<char*> argv;
  for (auto& a : args)
    argv.push_back(a.data());
  argv.push_back(nullptr);

  TFd devNull(open("/dev/null", O_RDWR | O_CLOEXEC));
  TPipe out, err, status;
  const char* dir = FStartingDir.empty() ? nullptr : FStartingDir.c_str();
  pid_t host = getpid();
  pid_t pid = fork();
  if (pid < 0) throw qv::Exception("Cannot run \"" + FExecutable + "\" : " + std::strerror(errno));
  if (pid == 0)
    StartChild(argv.data(), dir, devNull.Fd, FCapture ? out.Write.Fd : devNull.Fd,
               FCapture ? err.Write.Fd : devNull.Fd, status.Write.Fd, host);
  out.Write.Close();
  err.Write.Close();
  status.Write.Close();

  int childErrno = 0;
  ssize_t n;
  while ((n = read(status.Read.Fd, &childErrno, sizeof childErrno)) < 0 && errno == EINTR) {
  }
  if (n == sizeof childErrno) {
    WaitBlocking(pid);
    throw qv::Exception("Cannot run \"" + FExecutable + "\" : " + std::strerror(childErrno));
  }
  std::optional<int> wait = Pump(
      pid, out.Read.Fd, err.Read.Fd,
      [this](bool stdErr, std::string_view chunk) { Deliver(stdErr, chunk); },
      [this] { return TerminateRequested(); }, FTerminateGrace, FDrainGrace);
  FlushTails();
  if (!wait) {
    FExitCode = qv::kTerminatedExitCode;
    return FExitCode;
  }
  FCleanExit = WIFEXITED(*wait);
  FExitCode = WIFEXITED(*wait) ? WEXITSTATUS(*wait) : 128 + WTERMSIG(*wait);
  return FExitCode;
}

}  // namespace qvhost
