#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "QvExceptions.h"
#include "QvPlatform.h"

namespace qv::platform {

std::filesystem::path FsPath(std::string_view path) {
  return std::filesystem::path(path);
}

std::string Utf8Path(const std::filesystem::path& path) {
  return path.string();
}

std::FILE* OpenFile(const std::string& path, const char* mode) {
  return std::fopen(path.c_str(), mode);
}

std::string ExecutablePath() {
  std::vector<char> buf(PATH_MAX);
  for (;;) {
    ssize_t n = readlink("/proc/self/exe", buf.data(), buf.size());
    if (n < 0) return {};
    if (static_cast<size_t>(n) < buf.size()) return std::string(buf.data(), static_cast<size_t>(n));
    buf.resize(buf.size() * 2);
  }
}

std::string HostName() {
  char buf[256] = {};
  if (gethostname(buf, sizeof buf - 1) != 0) return {};
  return buf;
}

std::optional<std::string> GetEnv(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  if (!value) return std::nullopt;
  return std::string(value);
}

std::string TempFolder() {
  const char* t = std::getenv("TMPDIR");
  std::string dir = (t && *t) ? t : "/tmp";
  while (dir.size() > 1 && dir.back() == '/')
    dir.pop_back();
  return dir;
}

std::string CurrentDirectory() {
  std::vector<char> buf(PATH_MAX);
  while (!getcwd(buf.data(), buf.size())) {
    if (errno != ERANGE) return "/";
    buf.resize(buf.size() * 2);
  }
  return buf.data();
}

std::tm LocalTime(std::time_t t) {
  std::tm tm{};
  localtime_r(&t, &tm);
  return tm;
}

bool FileExists(const std::string& path) {
  struct stat st;
  return !path.empty() && stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool DirectoryExists(const std::string& path) {
  struct stat st;
  return !path.empty() && stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool IsAbsolutePath(std::string_view path) {
  return !path.empty() && path[0] == '/';
}

bool WriteAll(int fd, std::string_view data) {
  while (!data.empty()) {
    ssize_t n = write(fd, data.data(), data.size());
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data.remove_prefix(static_cast<size_t>(n));
  }
  return true;
}

bool ReadWholeFile(const std::string& path, std::string& out, std::string& error) {
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    error = std::strerror(errno);
    return false;
  }
  // No status call first: most files fit the first read, and reading a folder fails with
  // EISDIR. A file larger than one read is sized once for the rest.
  std::string data;
  char buf[65536];
  for (;;) {
    ssize_t n = read(fd, buf, sizeof buf);
    if (n < 0) {
      if (errno == EINTR) continue;
      error = std::strerror(errno);
      close(fd);
      return false;
    }
    if (n == 0) break;
    struct stat st;
    if (data.empty() && n == static_cast<ssize_t>(sizeof buf) && fstat(fd, &st) == 0)
      data.reserve(static_cast<size_t>(st.st_size));
    data.append(buf, static_cast<size_t>(n));
  }
  close(fd);
  out.swap(data);
  return true;
}

namespace {
[[noreturn]] void WriteFailed(const std::string& path, int err) {
  throw Exception("Unable to write file \"" + path + "\" : " + std::strerror(err));
}

// Temporary files that a killed save of the same file left behind (".NAME.qvtmp.XXXXXX").
void RemoveStaleTemporaries(const std::string& dir, const std::string& name) {
  std::string prefix = "." + name + ".qvtmp.";
  DIR* d = opendir(dir.c_str());
  if (!d) return;
  while (dirent* e = readdir(d)) {
    std::string_view entry = e->d_name;
    if (entry.size() == prefix.size() + 6 && entry.substr(0, prefix.size()) == prefix)
      unlinkat(dirfd(d), e->d_name, 0);
  }
  closedir(d);
}
}  // namespace

void AtomicWriteFile(const std::string& path, std::string_view data) {
  std::string dir = ".";
  std::string name = path;
  if (size_t slash = path.rfind('/'); slash != std::string::npos) {
    dir = slash == 0 ? "/" : path.substr(0, slash);
    name = path.substr(slash + 1);
  }
  struct stat st;
  bool exists = stat(path.c_str(), &st) == 0;
  // A read-only file stays as it is, as on Windows, even for a user whom POSIX would let
  // replace it by a rename.
  if (exists && (st.st_mode & 0222) == 0) WriteFailed(path, EACCES);
  std::string tmp = (dir == "/" ? "" : dir) + "/." + name + ".qvtmp.XXXXXX";
  std::vector<char> tmpl(tmp.begin(), tmp.end());
  tmpl.push_back('\0');
  int fd = mkstemp(tmpl.data());
  if (fd < 0) WriteFailed(path, errno);
  tmp.assign(tmpl.data());

  mode_t mode = 0666 & ~[] {
    mode_t m = umask(0);
    umask(m);
    return m;
  }();
  if (exists) mode = st.st_mode & 07777;

  int err = 0;
  if (!WriteAll(fd, data) || fchmod(fd, mode) != 0 || fsync(fd) != 0) err = errno;
  if (close(fd) != 0 && !err) err = errno;
  if (!err && rename(tmp.c_str(), path.c_str()) != 0) err = errno;
  if (err) {
    unlink(tmp.c_str());
    WriteFailed(path, err);
  }
  RemoveStaleTemporaries(dir, name);
}

void* LoadModule(const std::string& path, std::string& error) {
  void* h = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!h) {
    const char* e = dlerror();
    error = e ? e : "unknown error";
  }
  return h;
}

void* ModuleSymbol(void* module, const char* name) {
  return dlsym(module, name);
}

void UnloadModule(void* module) {
  if (module) dlclose(module);
}

}  // namespace qv::platform
