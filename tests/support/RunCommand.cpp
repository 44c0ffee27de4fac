#include "RunCommand.h"

#ifdef _WIN32
#include "QvWin32.h"
#else
#include <sys/wait.h>
#endif

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <thread>

#include "QvProcess.h"
#include "QvSysUtils.h"
#include "TempDir.h"

namespace qvtest {

#ifdef _WIN32
// Windows has no POSIX shell here: the command line is a program and its arguments, split by
// the C runtime's rules, and the program's text output comes back with LF line ends.
std::string ShellQuote(const std::string& arg) {
  return qv::QuoteCommandLineArg(arg);
}

CommandResult RunCommand(const std::string& command) {
  TempDir dir;
  SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  auto open = [&](const std::string& path, DWORD access, DWORD disposition) {
    return CreateFileW(qv::win32::Wide(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                       &inherit, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  };
  qv::win32::THandle out(open(dir.File("out"), GENERIC_WRITE, CREATE_ALWAYS)),
      err(open(dir.File("err"), GENERIC_WRITE, CREATE_ALWAYS)),
      in(open("NUL", GENERIC_READ, OPEN_EXISTING));
  STARTUPINFOW si{};
  si.cb = sizeof si;
  si.dwFlags = STARTF_USESTDHANDLES;
  si.hStdInput = in.Get();
  si.hStdOutput = out.Get();
  si.hStdError = err.Get();
  std::wstring line = qv::win32::Wide(command);
  PROCESS_INFORMATION pi{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                      nullptr, &si, &pi))
    return {-1, "", "cannot run: " + command};
  qv::win32::THandle process(pi.hProcess), thread(pi.hThread);
  WaitForSingleObject(pi.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(pi.hProcess, &code);
  out.Reset();
  err.Reset();
  auto text = [&](const char* name) {
    return qv::StringReplaceAll(TempDir::Read(dir.File(name)), "\r\n", "\n");
  };
  return {static_cast<int>(code), text("out"), text("err")};
}

bool ProcessEnds(int pid, double seconds) {
  HANDLE h = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(pid));
  if (!h) return true;
  bool ended = WaitForSingleObject(h, static_cast<DWORD>(seconds * 1000)) != WAIT_TIMEOUT;
  CloseHandle(h);
  return ended;
}
#else
std::string ShellQuote(const std::string& arg) {
  std::string r = "'";
  for (char c : arg)
    r += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return r + "'";
}

CommandResult RunCommand(const std::string& command) {
  TempDir dir;
  std::string out = dir.File("out"), err = dir.File("err");
  int status = std::system(
      (command + " >" + ShellQuote(out) + " 2>" + ShellQuote(err) + " </dev/null").c_str());
  CommandResult r{WIFEXITED(status) ? WEXITSTATUS(status) : -1, TempDir::Read(out),
                  TempDir::Read(err)};
  return r;
}

bool ProcessEnds(int pid, double seconds) {
  auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  for (;;) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    std::string stat((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    size_t close = stat.rfind(')');  // the state follows the parenthesised command name
    if (close == std::string::npos || stat.substr(close + 2, 1) == "Z") return true;
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

#endif

}  // namespace qvtest
