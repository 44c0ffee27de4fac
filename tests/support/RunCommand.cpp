#include "RunCommand.h"

#ifdef _WIN32
#include "QvWin32.h"
#else
#include <sys/wait.h>
#endif

#include <chrono>
#include <cstdlib>
#include <map>
#include <thread>

#include "QvPlatform.h"
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
  return RunCommand(command, "", {});
}

namespace {
// The environment block of this process with `changes` applied: names compared without case,
// as Windows does, and sorted, as CreateProcessW expects.
std::wstring EnvironmentBlock(const std::vector<std::string>& changes) {
  auto upper = [](std::wstring s) {
    for (auto& c : s)
      c = towupper(c);
    return s;
  };
  std::map<std::wstring, std::wstring> vars;  // upper-case name -> NAME=VALUE
  wchar_t* current = GetEnvironmentStringsW();
  for (const wchar_t* p = current; *p; p += wcslen(p) + 1) {
    std::wstring entry(p);
    vars[upper(entry.substr(0, entry.find(L'=', 1)))] = entry;
  }
  FreeEnvironmentStringsW(current);
  for (const auto& change : changes) {
    std::wstring entry = qv::win32::Wide(change);
    size_t eq = entry.find(L'=');
    if (eq == std::wstring::npos)
      vars.erase(upper(entry));
    else
      vars[upper(entry.substr(0, eq))] = entry;
  }
  std::wstring block;
  for (const auto& [name, entry] : vars)
    block += entry + L'\0';
  return block + L'\0';
}
}  // namespace

CommandResult RunCommand(const std::string& command, const std::string& folder,
                         const std::vector<std::string>& environment) {
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
  std::wstring block = EnvironmentBlock(environment), cwd = qv::win32::Wide(folder);
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                      CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT, block.data(),
                      folder.empty() ? nullptr : cwd.c_str(), &si, &pi))
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

void SetEnv(const std::string& name, const char* value) {
  _wputenv_s(qv::win32::Wide(name).c_str(), value ? qv::win32::Wide(value).c_str() : L"");
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
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, TempDir::Read(out), TempDir::Read(err)};
}

void SetEnv(const std::string& name, const char* value) {
  if (value)
    setenv(name.c_str(), value, 1);
  else
    unsetenv(name.c_str());
}

bool ProcessEnds(int pid, double seconds) {
  auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  for (;;) {
    std::string stat, error;  // none once the process is gone
    qv::platform::ReadWholeFile("/proc/" + std::to_string(pid) + "/stat", stat, error);
    size_t close = stat.rfind(')');  // the state follows the parenthesised command name
    if (close == std::string::npos || stat.substr(close + 2, 1) == "Z") return true;
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

#endif

}  // namespace qvtest
