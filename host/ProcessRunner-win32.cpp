// Child processes on Windows: CreateProcessW with redirected pipes and no console window, in a
// job object that ends with qvhost (so nothing it started outlives it) and that a terminate
// request stops as a whole.
#include <string>

#include "ProcessRunner.h"
#include "QvExceptions.h"
#include "QvWin32.h"

namespace qvhost {

namespace {

using qv::win32::THandle;

constexpr DWORD kPollMs = 50;

[[noreturn]] void CannotRun(const std::string& exe, DWORD error) {
  throw qv::Exception("Cannot run \"" + exe + "\" : " + qv::win32::PortableErrorText(error));
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

// A job whose processes all end when its last handle closes (qvhost's, when qvhost ends).
HANDLE NewJob() {
  HANDLE job = CreateJobObjectW(nullptr, nullptr);
  if (!job) return nullptr;
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

}  // namespace

// The child runs in a job object, so that stopping it stops everything it started; its output
// is polled on the calling thread, so that the handler runs there.
int THostProcess::Run() {
  FExitCode = 0;
  FCleanExit = false;
  SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE h[4] = {};
  if (!CreatePipe(&h[0], &h[1], &inherit, 0) || !CreatePipe(&h[2], &h[3], &inherit, 0))
    CannotRun(FExecutable, GetLastError());
  THandle outRead(h[0]), outWrite(h[1]), errRead(h[2]), errWrite(h[3]);
  SetHandleInformation(outRead.Get(), HANDLE_FLAG_INHERIT, 0);
  SetHandleInformation(errRead.Get(), HANDLE_FLAG_INHERIT, 0);
  THandle nul(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          &inherit, OPEN_EXISTING, 0, nullptr));

  STARTUPINFOW si{};
  si.cb = sizeof si;
  si.dwFlags = STARTF_USESTDHANDLES | STARTF_USESHOWWINDOW;
  si.wShowWindow = FHideWindow ? SW_HIDE : SW_SHOWNORMAL;
  si.hStdInput = nul.Get();
  si.hStdOutput = FCapture ? outWrite.Get() : nul.Get();
  si.hStdError = FCapture ? errWrite.Get() : nul.Get();
  std::wstring exe = qv::win32::Wide(FExecutable);
  std::wstring cmd = qv::win32::Wide(qv::QuoteCommandLineArg(FExecutable) + " " + FParameters);
  std::wstring dir = qv::win32::Wide(FStartingDir);
  PROCESS_INFORMATION pi{};
  DWORD flags = CREATE_SUSPENDED | CREATE_NEW_PROCESS_GROUP | CREATE_UNICODE_ENVIRONMENT |
                (FHideWindow ? CREATE_NO_WINDOW : 0);
  if (!CreateProcessW(exe.c_str(), cmd.data(), nullptr, nullptr, TRUE, flags, nullptr,
                      dir.empty() ? nullptr : dir.c_str(), &si, &pi))
    CannotRun(FExecutable, GetLastError());
  THandle process(pi.hProcess), thread(pi.hThread), job(NewJob());
  AssignProcessToJobObject(job.Get(), pi.hProcess);
  ResumeThread(pi.hThread);
  outWrite.Reset();
  errWrite.Reset();

  auto deliver = [](THostProcess& self, bool stdErr, std::string_view chunk) {
    self.Deliver(stdErr, chunk);
  };
  for (;;) {
    bool running = WaitForSingleObject(pi.hProcess, kPollMs) == WAIT_TIMEOUT;
    Drain(outRead.Get(), false, *this, deliver);
    Drain(errRead.Get(), true, *this, deliver);
    if (TerminateRequested()) {
      TerminateJobObject(job.Get(), qv::kTerminatedExitCode);
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
