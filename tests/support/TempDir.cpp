#include "TempDir.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>

#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qvtest {

namespace fs = std::filesystem;

// A random name, taken only when no folder has it yet: parallel test processes never share one.
TempDir::TempDir() {
  std::random_device random;
  for (int attempt = 0; attempt < 100 && FPath.empty(); ++attempt) {
    fs::path candidate = fs::temp_directory_path() / ("qvtest." + std::to_string(random()));
    if (fs::create_directory(candidate)) FPath = candidate.string();
  }
  if (FPath.empty()) throw std::runtime_error("cannot create a temporary folder");
}

TempDir::~TempDir() {
  std::error_code ec;
  // Tests may leave read-only folders behind; make them writable before removing.
  for (auto it = fs::recursive_directory_iterator(FPath, ec); !ec && it != fs::end(it);
       it.increment(ec))
    fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
  fs::remove_all(FPath, ec);
}

std::string TempDir::File(std::string_view name) const {
  const std::string separator(1, qv::platform::PathDelim);
  return FPath + separator + qv::StringReplaceAll(name, "/", separator);
}

std::string TempDir::Write(std::string_view name, std::string_view bytes) const {
  std::string path = File(name);
  fs::create_directories(qv::platform::FsPath(path).parent_path());
  std::ofstream out(qv::platform::FsPath(path), std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + path);
  return path;
}

std::string TempDir::Read(const std::string& path) {
  std::string bytes, error;
  if (!qv::platform::ReadWholeFile(path, bytes, error))
    throw std::runtime_error("cannot read " + path + ": " + error);
  return bytes;
}

std::string NativePath(std::string_view posixPath) {
#ifdef _WIN32
  if (posixPath.starts_with('/'))
    return fs::current_path().string().substr(0, 2) + qv::StringReplaceAll(posixPath, "/", "\\");
#endif
  return std::string(posixPath);
}

std::string FileKey(std::string path) {
#ifdef _WIN32
  path = qv::LowerCase(qv::StringReplaceAll(path, "\\", "/"));
#endif
  return path;
}

}  // namespace qvtest
