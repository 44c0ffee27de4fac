#include "TempDir.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "QvPlatform.h"

#include <stdlib.h>

namespace qvtest {

namespace fs = std::filesystem;

TempDir::TempDir() {
#ifdef _WIN32
  std::random_device random;
  for (int attempt = 0; attempt < 100 && FPath.empty(); ++attempt) {
    fs::path candidate = fs::temp_directory_path() / ("qvtest." + std::to_string(random()));
    if (fs::create_directory(candidate)) FPath = candidate.string();
  }
  if (FPath.empty()) throw std::runtime_error("cannot create a temporary folder");
#else
  std::string tmpl = (fs::temp_directory_path() / "qvtest.XXXXXX").string();
  std::vector<char> buf(tmpl.begin(), tmpl.end());
  buf.push_back('\0');
  if (!mkdtemp(buf.data())) throw std::runtime_error("mkdtemp failed");
  FPath = buf.data();
#endif
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
#ifdef _WIN32
  std::string native(name);
  for (char& c : native)
    if (c == '/') c = '\\';
  return FPath + "\\" + native;
#else
  return FPath + "/" + std::string(name);
#endif
}

std::string TempDir::Write(std::string_view name, std::string_view bytes) const {
  std::string path = File(name);
  fs::create_directories(qv::platform::FsPath(path).parent_path());
  std::ofstream out(qv::platform::FsPath(path), std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + path);
  return path;
}

std::string NativePath(std::string_view posixPath) {
  std::string r(posixPath);
#ifdef _WIN32
  if (r.empty() || r[0] != '/') return r;
  for (char& c : r)
    if (c == '/') c = '\\';
  r = fs::current_path().string().substr(0, 2) + r;
#endif
  return r;
}

std::string FileKey(std::string path) {
#ifdef _WIN32
  for (char& c : path)
    c = c == '\\' ? '/' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
#endif
  return path;
}

std::string TempDir::Read(const std::string& path) {
  std::ifstream in(qv::platform::FsPath(path), std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  std::ostringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

}  // namespace qvtest
