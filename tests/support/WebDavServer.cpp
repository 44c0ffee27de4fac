#include "WebDavServer.h"

#ifdef _WIN32
#include <stdexcept>

namespace qvtest {

// httpd is a Linux program that tests built for Windows do not start: they skip.
bool WebDavServer::Available() {
  return false;
}
WebDavServer::WebDavServer(std::string, std::string, Auth) {
  throw std::runtime_error("no WebDAV server on Windows");
}
void WebDavServer::Stop() {}
std::string WebDavServer::Write(std::string_view, std::string_view) const {
  return {};
}

}  // namespace qvtest
#else
#include <arpa/inet.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "RunCommand.h"

namespace qvtest {

namespace fs = std::filesystem;

namespace {

constexpr const char* kHttpd = "/usr/sbin/apache2";
constexpr std::string_view kModules = "/usr/lib/apache2/modules/";
constexpr std::string_view kRealm = "qvtest";

// Binds (port 0: any free one) or connects to 127.0.0.1:port; the port, or -1.
int Loopback(int port, bool connectTo) {
  int s = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{AF_INET, htons(static_cast<uint16_t>(port)), {htonl(INADDR_LOOPBACK)}, {}};
  socklen_t len = sizeof a;
  auto* sa = reinterpret_cast<sockaddr*>(&a);
  bool ok =
      connectTo ? connect(s, sa, len) == 0 : bind(s, sa, len) == 0 && getsockname(s, sa, &len) == 0;
  close(s);
  return ok ? ntohs(a.sin_port) : -1;
}

}  // namespace

bool WebDavServer::Available() {
  return fs::exists(kHttpd) && fs::exists(std::string(kModules) + "mod_dav_fs.so");
}

WebDavServer::WebDavServer(std::string user, std::string password, Auth auth)
    : FUser(std::move(user)), FPassword(std::move(password)) {
  // httpd started as root serves as "nobody", which must reach and write the folder.
  fs::create_directories(Root());
  for (const std::string& d : {FDir.Path(), Root()})
    fs::permissions(d, fs::perms::all);
  bool isDigest = auth == Auth::Digest;
  std::string realm = FUser + ":" + std::string(kRealm) + ":";
  std::string users =
      isDigest ? "(printf '%s' " + ShellQuote(realm + FPassword) + " | md5sum | cut -c1-32)"
               : "htpasswd -nbB " + ShellQuote(FUser) + " " + ShellQuote(FPassword);
  FDir.Write("users", (isDigest ? realm : "") + RunCommand(users).out);
  std::string d = FDir.Path(), kind = isDigest ? "Digest" : "Basic", conf;
  for (const char* m : {"mpm_event", "authn_core", "authn_file", "authz_core", "authz_user",
                        "auth_digest", "auth_basic", "dav", "dav_fs"})
    conf +=
        "LoadModule " + std::string(m) + "_module " + std::string(kModules) + "mod_" + m + ".so\n";
  conf += "ServerRoot " + d + "\nServerName 127.0.0.1\nUser nobody\nGroup nogroup\n" +
          "DefaultRuntimeDir " + d + "\nPidFile " + d + "/httpd.pid\nErrorLog " + d +
          "/error.log\nDavLockDB " + d + "/davlock\nDocumentRoot " + Root() + "\n<Directory " +
          Root() + ">\nDav On\nAuthType " + kind + "\nAuth" + kind + "Provider file\nAuthName " +
          std::string(kRealm) + "\nAuthUserFile " + d +
          "/users\nRequire valid-user\n</Directory>\n";
  FDir.Write("httpd.conf", conf);
  for (int attempt = 0; attempt < 3; ++attempt)
    if (Start()) return;
  throw std::runtime_error("httpd did not start:\n" + TempDir::Read(FDir.File("error.log")));
}

// The port is free when chosen but may be taken before httpd listens: the caller retries.
bool WebDavServer::Start() {
  FPort = Loopback(0, false);
  std::string conf = FDir.File("httpd.conf"), listen = "Listen 127.0.0.1:" + std::to_string(FPort);
  FPid = fork();
  if (FPid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);  // a crashed test leaves no server behind
    execl(kHttpd, kHttpd, "-f", conf.c_str(), "-C", listen.c_str(), "-DFOREGROUND", nullptr);
    _exit(127);
  }
  for (int i = 0; i < 200; ++i) {
    if (Loopback(FPort, true) == FPort) return true;
    if (waitpid(FPid, nullptr, WNOHANG) == FPid) {
      FPid = -1;  // it gave up: reaped already
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  Stop();
  return false;
}

void WebDavServer::Stop() {
  if (FPid <= 0) return;
  kill(FPid, SIGTERM);
  waitpid(FPid, nullptr, 0);
  FPid = -1;
}

std::string WebDavServer::Write(std::string_view urlPath, std::string_view bytes) const {
  std::string path = FDir.Write("www" + std::string(urlPath), bytes);
  for (fs::path p = path; p != Root(); p = p.parent_path())
    fs::permissions(p, fs::perms::all);
  return path;
}

}  // namespace qvtest
#endif
