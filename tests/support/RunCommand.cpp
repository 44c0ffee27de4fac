#include "RunCommand.h"

#ifdef _WIN32
#include "QvWin32.h"
#endif

#include <chrono>
#include <optional>
#include <thread>

#include "ProcessRunner.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qvtest {

namespace {
struct Capture : qv::IQvProcessOutputHandler {
  std::string text[2];
  void OnStdOutData(qv::IQvProcess*, std::string_view chunk) override { text[0] += chunk; }
  void OnStdErrData(qv::IQvProcess*, std::string_view chunk) override { text[1] += chunk; }
};
}  // namespace

CommandResult RunCommand(const std::string& command, const std::string& folder,
                         const std::vector<std::string>& environment) {
  // The child inherits this process's environment: changed for the run, then restored.
  std::vector<std::pair<std::string, std::optional<std::string>>> saved;
  for (const auto& change : environment) {
    size_t eq = change.find('=');
    saved.emplace_back(change.substr(0, eq), qv::platform::GetEnv(change.substr(0, eq)));
    SetEnv(saved.back().first, eq == std::string::npos ? nullptr : change.c_str() + eq + 1);
  }
  auto process = qvhost::NewHostProcess();
#ifdef _WIN32
  // The program is the first argument; what follows it is passed on as it stands.
  size_t end = command.starts_with('"') ? command.find('"', 1) + 1 : command.find(' ');
  process->SetExecutable(qv::SplitCommandLine(command.substr(0, end)).at(0));
  process->SetParameters(end < command.size() ? command.substr(end + 1) : "");
#else
  process->SetExecutable("/bin/sh");
  process->SetParameters("-c " + qv::QuoteCommandLineArg(command));
#endif
  Capture capture;
  process->SetCaptureOutput(true);
  process->SetHideWindow(true);
  process->SetStartingDir(folder);
  process->SetOutputHandler(&capture);
  int code = process->Run();
  for (const auto& [name, value] : saved)
    SetEnv(name, value ? value->c_str() : nullptr);
#ifdef _WIN32
  for (auto& text : capture.text)
    text = qv::StringReplaceAll(text, "\r\n", "\n");
#endif
  return {code, capture.text[0], capture.text[1]};
}

#ifdef _WIN32
std::string ShellQuote(const std::string& arg) {
  return qv::QuoteCommandLineArg(arg);
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
