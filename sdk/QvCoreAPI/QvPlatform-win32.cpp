// The platform services on Windows. Paths and texts are UTF-8 throughout the SDK; every call
// into the system goes through the wide (UTF-16) API, so names outside the ANSI code page work.
#include <io.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvWin32.h"

namespace qv::platform {

namespace {
DWORD Attributes(const std::string& path) {
  return path.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(win32::Wide(path).c_str());
}
}  // namespace

std::filesystem::path FsPath(std::string_view path) {
  return std::filesystem::path(win32::Wide(path));
}

std::string Utf8Path(const std::filesystem::path& path) {
  return win32::Utf8(path.native());
}

std::FILE* OpenFile(const std::string& path, const char* mode) {
  return _wfopen(win32::Wide(path).c_str(), win32::Wide(mode).c_str());
}

std::string ExecutablePath() {
  std::vector<wchar_t> buf(MAX_PATH);
  for (;;) {
    DWORD n = GetModuleFileNameW(nullptr, buf.data(), static_cast<DWORD>(buf.size()));
    if (n == 0) return {};
    if (n < buf.size()) return win32::Utf8(std::wstring_view(buf.data(), n));
    buf.resize(buf.size() * 2);
  }
}

std::string HostName() {
  wchar_t buf[MAX_COMPUTERNAME_LENGTH + 1] = {};
  DWORD size = MAX_COMPUTERNAME_LENGTH + 1;
  if (!GetComputerNameW(buf, &size)) return {};
  return win32::Utf8(std::wstring_view(buf, size));
}

std::optional<std::string> GetEnv(const std::string& name) {
  const wchar_t* value = _wgetenv(win32::Wide(name).c_str());
  if (!value) return std::nullopt;
  return win32::Utf8(value);
}

std::string TempFolder() {
  wchar_t buf[MAX_PATH + 2] = {};
  DWORD n = GetTempPathW(MAX_PATH + 1, buf);
  std::string dir = n ? win32::Utf8(std::wstring_view(buf, n)) : std::string("C:\\Windows\\Temp");
  while (dir.size() > 3 && (dir.back() == '\\' || dir.back() == '/'))
    dir.pop_back();
  return dir;
}

std::string CurrentDirectory() {
  DWORD n = GetCurrentDirectoryW(0, nullptr);
  std::vector<wchar_t> buf(n + 1);
  n = GetCurrentDirectoryW(static_cast<DWORD>(buf.size()), buf.data());
  return n ? win32::Utf8(std::wstring_view(buf.data(), n)) : std::string("C:\\");
}

std::tm LocalTime(std::time_t t) {
  std::tm tm{};
  localtime_s(&tm, &t);
  return tm;
}

bool FileExists(const std::string& path) {
  DWORD a = Attributes(path);
  return a != INVALID_FILE_ATTRIBUTES && !(a & FILE_ATTRIBUTE_DIRECTORY);
}

bool DirectoryExists(const std::string& path) {
  DWORD a = Attributes(path);
  return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsAbsolutePath(std::string_view path) {
  auto sep = [](char c) { return c == '\\' || c == '/'; };
  bool drive = path.size() >= 3 && path[1] == ':' && sep(path[2]) &&
               ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
  bool unc = path.size() >= 2 && sep(path[0]) && sep(path[1]);
  return drive || unc;
}

bool WriteAll(int fd, std::string_view data) {
  while (!data.empty()) {
    unsigned chunk = data.size() > (1u << 30) ? (1u << 30) : static_cast<unsigned>(data.size());
    int n = _write(fd, data.data(), chunk);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data.remove_prefix(static_cast<size_t>(n));
  }
  return true;
}

bool ReadWholeFile(const std::string& path, std::string& out, std::string& error) {
  win32::THandle file(CreateFileW(win32::Wide(path).c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    DWORD e = GetLastError();
    // Opening a folder is refused as access denied; say what it is.
    error = e == ERROR_ACCESS_DENIED && DirectoryExists(path) ? std::strerror(EISDIR)
                                                              : win32::PortableErrorText(e);
    return false;
  }
  std::string data;
  LARGE_INTEGER size{};
  if (GetFileSizeEx(file.Get(), &size) && size.QuadPart > 0)
    data.reserve(static_cast<size_t>(size.QuadPart));
  char buf[65536];
  for (;;) {
    DWORD n = 0;
    if (!ReadFile(file.Get(), buf, sizeof buf, &n, nullptr)) {
      error = win32::PortableErrorText(GetLastError());
      return false;
    }
    if (n == 0) break;
    data.append(buf, n);
  }
  out.swap(data);
  return true;
}

namespace {
[[noreturn]] void WriteFailed(const std::string& path, DWORD error) {
  throw Exception("Unable to write file \"" + path + "\" : " + win32::PortableErrorText(error));
}

// Temporary files that a killed save of the same file left behind (".NAME.qvtmp.XXXXXX").
void RemoveStaleTemporaries(const std::string& dir, const std::string& name) {
  std::string prefix = "." + name + ".qvtmp.";
  WIN32_FIND_DATAW found;
  HANDLE h = FindFirstFileW(win32::Wide(dir + "\\" + prefix + "??????").c_str(), &found);
  if (h == INVALID_HANDLE_VALUE) return;
  do {
    std::string entry = win32::Utf8(found.cFileName);
    if (entry.size() == prefix.size() + 6 && entry.compare(0, prefix.size(), prefix) == 0)
      DeleteFileW(win32::Wide(dir + "\\" + entry).c_str());
  } while (FindNextFileW(h, &found));
  FindClose(h);
}

std::string TemporaryName(const std::string& dir, const std::string& name) {
  static const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
  unsigned long long seed =
      GetTickCount64() ^ (static_cast<unsigned long long>(GetCurrentProcessId()) << 20);
  std::string suffix;
  for (int i = 0; i < 6; ++i) {
    seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
    suffix += kLetters[(seed >> 33) % (sizeof kLetters - 1)];
  }
  return dir + "\\." + name + ".qvtmp." + suffix;
}
}  // namespace

void AtomicWriteFile(const std::string& path, std::string_view data) {
  std::string dir = ".";
  std::string name = path;
  if (size_t sep = path.find_last_of("\\/"); sep != std::string::npos) {
    dir = path.substr(0, sep);
    name = path.substr(sep + 1);
  }
  DWORD attributes = Attributes(path);
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY))
    WriteFailed(path, ERROR_ACCESS_DENIED);

  std::string tmp;
  win32::THandle file;
  for (int attempt = 0; attempt < 100 && !file; ++attempt) {
    tmp = TemporaryName(dir, name);
    file.Reset(CreateFileW(win32::Wide(tmp).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file && GetLastError() != ERROR_FILE_EXISTS) WriteFailed(path, GetLastError());
  }
  if (!file) WriteFailed(path, ERROR_FILE_EXISTS);

  DWORD err = 0;
  for (std::string_view rest = data; !rest.empty() && !err;) {
    DWORD chunk = rest.size() > (1u << 30) ? (1u << 30) : static_cast<DWORD>(rest.size());
    DWORD written = 0;
    if (!WriteFile(file.Get(), rest.data(), chunk, &written, nullptr))
      err = GetLastError();
    else
      rest.remove_prefix(written);
  }
  if (!err && !FlushFileBuffers(file.Get())) err = GetLastError();
  file.Reset();
  if (!err && !MoveFileExW(win32::Wide(tmp).c_str(), win32::Wide(path).c_str(),
                           MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    err = GetLastError();
  if (err) {
    DeleteFileW(win32::Wide(tmp).c_str());
    WriteFailed(path, err);
  }
  RemoveStaleTemporaries(dir, name);
}

void* LoadModule(const std::string& path, std::string& error) {
  // A module's own folder is searched for the DLLs it needs (the SDK's, beside it).
  DWORD flags = IsAbsolutePath(path)
                    ? LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS
                    : 0;
  HMODULE h = LoadLibraryExW(win32::Wide(path).c_str(), nullptr, flags);
  if (!h) error = win32::ErrorText(GetLastError());
  return reinterpret_cast<void*>(h);
}

void* ModuleSymbol(void* module, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void UnloadModule(void* module) {
  if (module) FreeLibrary(static_cast<HMODULE>(module));
}

}  // namespace qv::platform
