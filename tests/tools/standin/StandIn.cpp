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
#include <unistd.h>
#endif

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "RecordCall.h"

namespace {

// The file for this run, or the default one; false when neither exists.
bool ReadRunFile(const std::string& dir, int run, const char* ext, std::string& out) {
  return standin::ReadFile(dir + "/run" + std::to_string(run) + ext, out) ||
         standin::ReadFile(dir + "/default" + ext, out);
}

void Write(std::FILE* stream, const std::string& data) {
#ifdef _WIN32
  _setmode(_fileno(stream), _O_BINARY);  // the transcript's bytes, without CR added before LF
#endif
  std::fwrite(data.data(), 1, data.size(), stream);
  std::fflush(stream);
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
    std::this_thread::sleep_for(std::chrono::minutes(1));
    return 0;
  }
  const char* dirEnv = std::getenv("QV_STANDIN_DIR");
  if (!dirEnv) {
    std::fprintf(stderr, "stand-in: QV_STANDIN_DIR is not set\n");
    return 90;
  }
  std::string dir = dirEnv, calls = dir + "/calls.txt", text;
  int run = standin::ReadFile(calls, text) ? std::count(text.begin(), text.end(), '\n') + 1 : 1;
  standin::RecordCall(calls, argc, argv);

  if (ReadRunFile(dir, run, ".out", text)) Write(stdout, text);
  if (ReadRunFile(dir, run, ".err", text)) Write(stderr, text);
  std::string prefix = dir + "/run" + std::to_string(run);
  if (ReadRunFile(dir, run, ".wait", text)) {
    if (text.find("child") != std::string::npos)
      std::ofstream(prefix + ".child") << StartWaitingChild(argv[0]) << "\n";
#ifdef _WIN32
    std::ofstream(prefix + ".started") << GetCurrentProcessId() << "\n";
#else
    std::ofstream(prefix + ".started") << getpid() << "\n";
#endif
    std::this_thread::sleep_for(std::chrono::minutes(1));
  }
  return ReadRunFile(dir, run, ".exit", text) ? std::atoi(text.c_str()) : 0;
}
