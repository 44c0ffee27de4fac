#include <windows.h>

#include <string>

#include "ProcessRunner.h"
#include "QvExceptions.h"

namespace qvhost {

namespace {

constexpr DWORD kPollMs = 50;

struct THandle {
  HANDLE H = nullptr;
  ~THandle() {
    if (H && H != INVALID_HANDLE_VALUE) CloseHandle(H);
  }
};

[[noreturn]] void CannotRun(const std::string& exe) {
  throw qv::Exception("Cannot run \"" + exe + "\" : error " + std::to_string(GetLastError()));
}

// Reads whatever the pipe holds now, without blocking.
void Drain(HANDLE pipe, bool stdErr, THostProcess& self,
           void (*deliver)(THostProcess&, bool, std::string_view)) {
  char buf[65536];
  DWORD avail = 0, got = 0;
  while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &avail, nullptr) && avail > 0) {
    if (!ReadFile(pipe, buf, avail < sizeof buf ? avail : sizeof buf, &got, nullptr)) return;
    deliver(self, stdErr, std::string_view(buf, got));
  }
}

}  // namespace

// The child runs in a job object, so that stopping it stops everything it started; its output
// is polled on the calling thread, so that the handler runs there.
int THostProcess::Run() {
  FExitCode = 0;
  FCleanExit = false;
  SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  THandle outRead, outWrite, errRead, errWrite, nul, job;
  if (!CreatePipe(&outRead.H, &outWrite.H, &inherit, 0) ||
      !CreatePipe(&errRead.H, &errWrite.H, &inherit, 0))
    CannotRun(FExecutable);
  SetHandleInformation(outRead.H, HANDLE_FLAG_INHERIT, 0);
  SetHandleInformation(errRead.H, HANDLE_FLAG_INHERIT, 0);
  nul.H = CreateFileA("NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                      &inherit, OPEN_EXISTING, 0, nullptr);

  STARTUPINFOA si{};
  si.cb = sizeof si;
  si.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
  si.wShowWindow = FHideWindow ? SW_HIDE : SW_SHOWNORMAL;
  si.hStdInput = nul.H;
  si.hStdOutput = FCapture ? outWrite.H : nul.H;
  si.hStdError = FCapture ? errWrite.H : nul.H;
  std::string cmd = qv::QuoteCommandLineArg(FExecutable) + " " + FParameters;
  PROCESS_INFORMATION pi{};
  DWORD flags = CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP | (FHideWindow ? CREATE_NO_WINDOW : 0);
  if (!CreateProcessA(FExecutable.c_str(), cmd.data(), nullptr, nullptr, TRUE, flags, nullptr,
                      FStartingDir.empty() ? nullptr : FStartingDir.c_str(), &si, &pi))
    CannotRun(FExecutable);
  THandle process{pi.hProcess}, thread{pi.hThread};
  job.H = CreateJobObjectA(nullptr, nullptr);
  AssignProcessToJobObject(job.H, pi.hProcess);
  ResumeThread(pi.hThread);
  CloseHandle(outWrite.H);
  CloseHandle(errWrite.H);
  outWrite.H = errWrite.H = nullptr;

  auto deliver = [](THostProcess& self, bool stdErr, std::string_view chunk) {
    self.Deliver(stdErr, chunk);
  };
  for (;;) {
    bool running = WaitForSingleObject(pi.hProcess, kPollMs) == WAIT_TIMEOUT;
    Drain(outRead.H, false, *this, deliver);
    Drain(errRead.H, true, *this, deliver);
    if (TerminateRequested()) {
      TerminateJobObject(job.H, qv::kTerminatedExitCode);
      WaitForSingleObject(pi.hProcess, INFINITE);
      FlushTails();
      FExitCode = qv::kTerminatedExitCode;
      return FExitCode;
    }
    if (!running) break;
  }
  FlushTails();
  DWORD code = 0;
  GetExitCodeProcess(pi.hProcess, &code);
  FExitCode = static_cast<int>(code);
  // Windows has no signals: an exception code in the exit status means a crash.
  FCleanExit = (code & 0xC0000000u) != 0xC0000000u;
  return FExitCode;
}

}  // namespace qvhost
