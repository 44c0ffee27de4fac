// A stand-in for Windows-only command-line tools (devenv.com, MSTest.exe): it records how
// it was called and replays a transcript the test prepared.
//
// Everything is steered through the folder named by QV_STANDIN_DIR:
//   calls.txt        one line per call (RecordCall.h)
//   runN.out         what call number N (from 1) writes to standard output, byte for byte;
//                    default.out when there is no runN.out
//   runN.err         the same for standard error (default.err)
//   runN.exit        its exit code as decimal text (default.exit; 0 when neither exists)
//   runN.wait        when present, the call writes runN.started with its process id (and,
//                    when the file says "child", starts a child process whose id goes to
//                    runN.child) and then waits up to a minute to be terminated.
// Built for Windows too, where the child is the stand-in itself, started to wait.
#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
#else
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "RecordCall.h"

namespace {

bool ReadFile(const std::string& path, std::string& out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream ss;
  ss << in.rdbuf();
  out = ss.str();
  return true;
}

// The file for this run, or the default one; false when neither exists.
bool ReadRunFile(const std::string& dir, int run, const char* ext, std::string& out) {
  return ReadFile(dir + "/run" + std::to_string(run) + ext, out) ||
         ReadFile(dir + "/default" + ext, out);
}

int CountLines(const std::string& path) {
  std::string text;
  if (!ReadFile(path, text)) return 0;
  int n = 0;
  for (char c : text)
    n += c == '\n';
  return n;
}

void WriteAll(int fd, const std::string& data) {
  size_t done = 0;
  while (done < data.size()) {
#ifdef _WIN32
    _setmode(fd, _O_BINARY);  // the transcript's bytes, without CR added before LF
    int n = _write(fd, data.data() + done, static_cast<unsigned>(data.size() - done));
#else
    ssize_t n = write(fd, data.data() + done, data.size() - done);
#endif
    if (n <= 0) return;
    done += static_cast<size_t>(n);
  }
}

void SleepTenths(int tenths) {
#ifdef _WIN32
  Sleep(100 * static_cast<DWORD>(tenths));
#else
  for (int i = 0; i < tenths; ++i)
    usleep(100000);
#endif
}

// Starts a child that waits a minute; its process id, or -1.
long StartWaitingChild(const char* self) {
#ifdef _WIN32
  std::string cmd = std::string("\"") + self + "\" --wait-a-minute";
  STARTUPINFOA si{};
  si.cb = sizeof si;
  PROCESS_INFORMATION pi{};
  if (!CreateProcessA(nullptr, cmd.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &si, &pi))
    return -1;
  CloseHandle(pi.hThread);
  CloseHandle(pi.hProcess);
  return static_cast<long>(pi.dwProcessId);
#else
  (void)self;
  pid_t child = fork();
  if (child == 0) {
    execlp("sleep", "sleep", "60", static_cast<char*>(nullptr));
    _exit(127);
  }
  return child;
#endif
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "--wait-a-minute") {
    SleepTenths(600);
    return 0;
  }
  const char* dirEnv = std::getenv("QV_STANDIN_DIR");
  if (!dirEnv) {
    std::fprintf(stderr, "stand-in: QV_STANDIN_DIR is not set\n");
    return 90;
  }
  std::string dir = dirEnv;
  std::string calls = dir + "/calls.txt";
  int run = CountLines(calls) + 1;

  standin::RecordCall(calls, argc, argv);

  std::string text;
  if (ReadRunFile(dir, run, ".out", text)) WriteAll(1, text);
  if (ReadRunFile(dir, run, ".err", text)) WriteAll(2, text);

  std::string wait;
  if (ReadRunFile(dir, run, ".wait", wait)) {
    if (wait.find("child") != std::string::npos) {
      long child = StartWaitingChild(argv[0]);
      std::ofstream(dir + "/run" + std::to_string(run) + ".child") << child << "\n";
    }
#ifdef _WIN32
    long self = static_cast<long>(GetCurrentProcessId());
#else
    long self = static_cast<long>(getpid());
#endif
    std::ofstream(dir + "/run" + std::to_string(run) + ".started") << self << "\n";
    SleepTenths(600);
  }

  std::string exitText;
  return ReadRunFile(dir, run, ".exit", exitText) ? std::atoi(exitText.c_str()) : 0;
}
