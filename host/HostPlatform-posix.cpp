#include <fcntl.h>
#include <pwd.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "HostPlatform.h"
#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qvhost::platform {

std::string UserConfigFolder() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  // The XDG base directory rules ignore a relative XDG_CONFIG_HOME.
  if (xdg && xdg[0] == '/') return qv::ExcludeTrailingPathDelimiter(xdg) + "/quorvex";
  const char* home = std::getenv("HOME");
  std::string base = home && *home ? home : "";
  if (base.empty())
    if (const passwd* pw = getpwuid(getuid())) base = pw->pw_dir;
  return qv::ExcludeTrailingPathDelimiter(base) + "/.config/quorvex";
}

std::string FindProgram(const std::string& name) {
  auto runnable = [](const std::string& path) {
    return qv::platform::FileExists(path) && access(path.c_str(), X_OK) == 0;
  };
  if (name.find('/') != std::string::npos) return runnable(name) ? name : "";
  const char* path = std::getenv("PATH");
  std::string_view rest = path ? path : "";
  while (!rest.empty()) {
    size_t colon = rest.find(':');
    std::string dir(rest.substr(0, colon));
    rest = colon == std::string_view::npos ? "" : rest.substr(colon + 1);
    std::string candidate = (dir.empty() ? "." : dir) + "/" + name;
    if (runnable(candidate)) return candidate;
  }
  return {};
}

bool StdoutIsTerminal() {
  return isatty(STDOUT_FILENO) == 1;
}

namespace {

[[noreturn]] void Fail(const std::string& path, const char* what, int err) {
  throw qv::Exception(std::string("Cannot ") + what + " \"" + path + "\" : " + std::strerror(err));
}

void MakeFolders(const std::string& folder) {
  if (folder.empty() || qv::platform::DirectoryExists(folder)) return;
  MakeFolders(qv::ExtractFileDir(folder));
  if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) Fail(folder, "create folder", errno);
}

// Publishes a fully written temporary file under `path` unless one appeared meanwhile: link()
// never replaces, so two hosts starting at once agree on the first file.
bool CreateExclusive(const std::string& path, const std::string& content) {
  std::string tmpl = path + ".XXXXXX";
  std::vector<char> buf(tmpl.begin(), tmpl.end());
  buf.push_back('\0');
  int fd = mkstemp(buf.data());  // mode 0600
  if (fd < 0) Fail(path, "create", errno);
  bool ok = qv::platform::WriteAll(fd, content) && fsync(fd) == 0;
  int err = errno;
  close(fd);
  if (ok && link(buf.data(), path.c_str()) != 0) {
    err = errno;
    ok = false;
  }
  unlink(buf.data());
  if (!ok && err != EEXIST) Fail(path, "create", err);
  return ok;
}

}  // namespace

std::string ReadOrCreatePrivateFile(const std::string& path,
                                    const std::function<std::string()>& makeContent) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    std::string data, error;
    if (qv::platform::ReadWholeFile(path, data, error)) return data;
    struct stat st;
    if (stat(path.c_str(), &st) == 0 || errno != ENOENT)
      throw qv::Exception("Cannot read \"" + path + "\" : " + error);
    MakeFolders(qv::ExtractFileDir(path));
    std::string content = makeContent();
    if (CreateExclusive(path, content)) return content;
  }
  Fail(path, "create", EEXIST);
}

// ---- interrupts -----------------------------------------------------------------------------

namespace {
int gWakePipe[2] = {-1, -1};

// Only async-signal-safe work here: the watcher thread does the rest.
void OnSignal(int signal) {
  int saved = errno;
  char c = signal == SIGTERM ? 't' : 'i';
  [[maybe_unused]] ssize_t n = write(gWakePipe[1], &c, 1);
  errno = saved;
}
}  // namespace

struct TInterruptWatcher::Impl {
  std::thread Thread;
  struct sigaction OldInt {};
  struct sigaction OldTerm {};
};

TInterruptWatcher::TInterruptWatcher(std::function<void(int)> onInterrupt) : FImpl(new Impl) {
  if (pipe2(gWakePipe, O_CLOEXEC) != 0) throw qv::Exception("Cannot watch for interrupts");
  FImpl->Thread = std::thread([fd = gWakePipe[0], fn = std::move(onInterrupt)] {
    char c;
    for (;;) {
      ssize_t n = read(fd, &c, 1);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0 || c == 'q') return;
      fn(c == 't' ? 128 + SIGTERM : 128 + SIGINT);
    }
  });
  struct sigaction sa {};
  sa.sa_handler = OnSignal;
  sigemptyset(&sa.sa_mask);
  sa.sa_flags = SA_RESTART;
  sigaction(SIGINT, &sa, &FImpl->OldInt);
  sigaction(SIGTERM, &sa, &FImpl->OldTerm);
}

TInterruptWatcher::~TInterruptWatcher() {
  sigaction(SIGINT, &FImpl->OldInt, nullptr);
  sigaction(SIGTERM, &FImpl->OldTerm, nullptr);
  char c = 'q';
  [[maybe_unused]] ssize_t n = write(gWakePipe[1], &c, 1);
  FImpl->Thread.join();
  close(gWakePipe[0]);
  close(gWakePipe[1]);
  gWakePipe[0] = gWakePipe[1] = -1;
}

}  // namespace qvhost::platform
