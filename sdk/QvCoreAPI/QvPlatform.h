// The operating-system services the SDK needs, one implementation file per platform
// (QvPlatform-posix.cpp, QvPlatform-win32.cpp); nothing else in the SDK tests the platform.
#pragma once

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace qv::platform {

// The native folder separator.
#ifdef _WIN32
inline constexpr char PathDelim = '\\';
#else
inline constexpr char PathDelim = '/';
#endif

// `path` (UTF-8, as every path in the SDK) as a std::filesystem path, and back. On Windows
// through UTF-16, so that names outside the ANSI code page survive; unchanged elsewhere.
std::filesystem::path FsPath(std::string_view path);
std::string Utf8Path(const std::filesystem::path& path);
// std::fopen for a UTF-8 path.
std::FILE* OpenFile(const std::string& path, const char* mode);

// Full path of the running executable.
std::string ExecutablePath();
// This computer's network name as the system reports it.
std::string HostName();
// The environment variable `name`, or nullopt when it is not set. UTF-8 on every platform (on
// Windows read through UTF-16).
std::optional<std::string> GetEnv(const std::string& name);
// The temporary folder, without a trailing separator.
std::string TempFolder();
// The process's current folder.
std::string CurrentDirectory();
// The broken-down local time of `t`.
std::tm LocalTime(std::time_t t);
// True when a regular file (or a link to one) exists at `path`.
bool FileExists(const std::string& path);
// True when a folder exists at `path`.
bool DirectoryExists(const std::string& path);
// True when `path` is absolute for this platform.
bool IsAbsolutePath(std::string_view path);

// Writes all of `data` to the file descriptor `fd`, retrying interrupted and partial writes;
// false (errno set) when the system refuses.
bool WriteAll(int fd, std::string_view data);

// Reads a whole file. Returns false and sets `error` (the system's reason) on failure.
bool ReadWholeFile(const std::string& path, std::string& out, std::string& error);
// Replaces `path` with `data` atomically: a temporary file beside it, then a rename.
// Keeps the permissions of an existing file. Throws Exception naming the file on failure;
// the original file is then untouched.
void AtomicWriteFile(const std::string& path, std::string_view data);

// Loads a shared module; returns null and sets `error` on failure.
void* LoadModule(const std::string& path, std::string& error);
// Looks up an exported symbol; null when absent.
void* ModuleSymbol(void* module, const char* name);
void UnloadModule(void* module);

}  // namespace qv::platform
