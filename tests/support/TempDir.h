// A scoped temporary folder per test, removed with everything in it at the end.
#pragma once

#include <string>
#include <string_view>

namespace qvtest {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // The folder, without a trailing separator.
  const std::string& Path() const { return FPath; }
  // Path of `name` ("/"-separated) inside the folder, with this platform's separators.
  std::string File(std::string_view name) const;
  // Writes `bytes` to `name` (creating parent folders) and returns its path.
  std::string Write(std::string_view name, std::string_view bytes) const;
  // Reads a whole file; throws std::runtime_error when it cannot.
  static std::string Read(const std::string& path);

 private:
  std::string FPath;
};

// A "/"-rooted path as this platform writes it: unchanged on POSIX; on Windows on the current
// drive with backslashes ("/src/a.cs" is "C:\\src\\a.cs"). Other texts come back unchanged.
std::string NativePath(std::string_view posixPath);

// The form that every spelling of one file's path shares on this platform: unchanged on POSIX;
// on Windows, whose file systems answer for letter case themselves (so paths keep the
// spelling the project files use), lower case with "/" separators.
std::string FileKey(std::string path);

}  // namespace qvtest
