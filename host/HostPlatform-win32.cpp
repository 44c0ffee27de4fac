// The host's platform services on Windows, through the wide API (names are UTF-8 here).
#include <io.h>

#include <cstdio>
#include <cstdlib>

#include "HostPlatform.h"
#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvWin32.h"

namespace qvhost::platform {

using qv::win32::Utf8;
using qv::win32::Wide;

std::string UserConfigFolder() {
  return qv::ExcludeTrailingPathDelimiter(qv::platform::GetEnv("APPDATA").value_or(".")) +
         "\\Quorvex";
}

std::string FindProgram(const std::string& name) {
  wchar_t found[MAX_PATH];
  DWORD n = SearchPathW(nullptr, Wide(name).c_str(), L".exe", MAX_PATH, found, nullptr);
  return n > 0 && n < MAX_PATH ? Utf8(std::wstring_view(found, n)) : std::string();
}

// A console shows the log's colours once it interprets escape sequences (Windows 10 and
// later); one that cannot gets the plain log.
bool StdoutIsTerminal() {
  if (_isatty(_fileno(stdout)) == 0) return false;
  HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) &&
         SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

namespace {
[[noreturn]] void Fail(const std::string& path, const char* what) {
  throw qv::Exception(std::string("Cannot ") + what + " \"" + path +
                      "\" : " + qv::win32::PortableErrorText(GetLastError()));
}

void MakeFolders(const std::string& folder) {
  if (folder.empty() || qv::platform::DirectoryExists(folder)) return;
  MakeFolders(qv::ExtractFileDir(folder));
  if (!CreateDirectoryW(Wide(folder).c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
    Fail(folder, "create folder");
}
}  // namespace

// Files under %APPDATA% inherit the profile's access list, which admits only the user.
std::string ReadOrCreatePrivateFile(const std::string& path,
                                    const std::function<std::string()>& makeContent) {
  std::string data, error;
  if (qv::platform::ReadWholeFile(path, data, error)) return data;
  MakeFolders(qv::ExtractFileDir(path));
  HANDLE h = CreateFileW(Wide(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) {
    if (GetLastError() == ERROR_FILE_EXISTS && qv::platform::ReadWholeFile(path, data, error))
      return data;
    Fail(path, "create");
  }
  std::string content = makeContent();
  DWORD written = 0;
  bool ok = WriteFile(h, content.data(), static_cast<DWORD>(content.size()), &written, nullptr) &&
            written == content.size();
  CloseHandle(h);
  if (!ok) {
    DeleteFileW(Wide(path).c_str());
    Fail(path, "write");
  }
  return content;
}

// ---- interrupts -----------------------------------------------------------------------------

namespace {
std::function<void(int)>* gOnInterrupt = nullptr;

// Windows calls console handlers on a thread of their own, so the work may happen right here.
BOOL WINAPI OnConsoleEvent(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT && event != CTRL_CLOSE_EVENT) return FALSE;
  if (gOnInterrupt) (*gOnInterrupt)(event == CTRL_CLOSE_EVENT ? 143 : 130);
  return TRUE;
}
}  // namespace

struct TInterruptWatcher::Impl {
  std::function<void(int)> OnInterrupt;
};

TInterruptWatcher::TInterruptWatcher(std::function<void(int)> onInterrupt) : FImpl(new Impl) {
  FImpl->OnInterrupt = std::move(onInterrupt);
  gOnInterrupt = &FImpl->OnInterrupt;
  SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

TInterruptWatcher::~TInterruptWatcher() {
  SetConsoleCtrlHandler(OnConsoleEvent, FALSE);
  gOnInterrupt = nullptr;
}

}  // namespace qvhost::platform
