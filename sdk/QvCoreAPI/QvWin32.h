// Windows helpers for the platform files of the SDK and the host: UTF-8 <-> UTF-16 at every
// system call, an owned handle, and the system's text for an error. Included only by
// *-win32.cpp files.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

namespace qv::win32 {

inline std::wstring Wide(std::string_view utf8) {
  if (utf8.empty()) return {};
  int n = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring r(static_cast<size_t>(n), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), r.data(), n);
  return r;
}

inline std::string Utf8(std::wstring_view wide) {
  if (wide.empty()) return {};
  int n = WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0,
                              nullptr, nullptr);
  std::string r(static_cast<size_t>(n), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), r.data(), n, nullptr,
                      nullptr);
  return r;
}

// The system's message for `error`, without the line break it ends with.
inline std::string ErrorText(DWORD error) {
  wchar_t* text = nullptr;
  DWORD n = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string r = n ? Utf8(std::wstring_view(text, n)) : "error " + std::to_string(error);
  if (text) LocalFree(text);
  while (!r.empty() && (r.back() == '\n' || r.back() == '\r' || r.back() == ' '))
    r.pop_back();
  return r;
}

// The errno that matches a system error, so that messages read as on other platforms.
inline int ErrnoOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
    case ERROR_MOD_NOT_FOUND:
      return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return EACCES;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return EEXIST;
    case ERROR_DIRECTORY:
      return EISDIR;
    case ERROR_BAD_EXE_FORMAT:
      return ENOEXEC;
    default:
      return EIO;
  }
}

// The text other platforms give for `error` ("No such file or directory").
inline std::string PortableErrorText(DWORD error) {
  return std::strerror(ErrnoOf(error));
}

// A handle closed when it goes; invalid handles of either kind count as none.
class THandle {
 public:
  THandle() = default;
  explicit THandle(HANDLE h) { Reset(h); }
  THandle(const THandle&) = delete;
  THandle& operator=(const THandle&) = delete;
  ~THandle() { Reset(); }
  void Reset(HANDLE h = nullptr) {
    if (FHandle) CloseHandle(FHandle);
    FHandle = h == INVALID_HANDLE_VALUE ? nullptr : h;
  }
  HANDLE Get() const { return FHandle; }
  HANDLE Release() {
    HANDLE h = FHandle;
    FHandle = nullptr;
    return h;
  }
  explicit operator bool() const { return FHandle != nullptr; }

 private:
  HANDLE FHandle = nullptr;
};

}  // namespace qv::win32
