#include "WebDavServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "RunCommand.h"

namespace qvtest {

namespace fs = std::filesystem;

namespace {

constexpr const char* kHttpd = "/usr/sbin/apache2";
constexpr const char* kModules = "/usr/lib/apache2/modules/";
constexpr const char* kRealm = "qvtest";

// A port the system just handed out on loopback; httpd takes it over a moment later.
int FreeLoopbackPort() {
  int s = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t len = sizeof a;
  if (bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a) != 0 ||
      getsockname(s, reinterpret_cast<sockaddr*>(&a), &len) != 0)
    throw std::runtime_error("no free loopback port");
  close(s);
  return ntohs(a.sin_port);
}

bool Accepts(int port) {
  int s = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons(static_cast<uint16_t>(port));
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bool ok = connect(s, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
  close(s);
  return ok;
}

std::string Trimmed(std::string s) {
  while (!s.empty() && (s.back() == '\n' || s.back() == ' '))
    s.pop_back();
  return s;
}

}  // namespace

bool WebDavServer::Available() {
  for (const char* m : {"mod_dav.so", "mod_dav_fs.so", "mod_auth_digest.so", "mod_mpm_event.so"})
    if (!fs::exists(std::string(kModules) + m)) return false;
  return fs::exists(kHttpd);
}

WebDavServer::WebDavServer(std::string user, std::string password, Auth auth)
    : FUser(std::move(user)), FPassword(std::move(password)) {
  // httpd started as root serves as "nobody", which must reach and write the folder.
  fs::permissions(FDir.Path(), fs::perms::all, fs::perm_options::replace);
  fs::create_directories(Root());
  fs::create_directories(FDir.File("run"));
  fs::permissions(Root(), fs::perms::all);
  fs::permissions(FDir.File("run"), fs::perms::all);
  std::string hashCmd = "(printf '%s' " + ShellQuote(FUser + ":" + kRealm + ":" + FPassword) +
                        " | md5sum | cut -d' ' -f1)";
  std::string basicCmd = "htpasswd -nbB " + ShellQuote(FUser) + " " + ShellQuote(FPassword);
  std::string users = auth == Auth::Digest
                          ? FUser + ":" + kRealm + ":" + Trimmed(RunCommand(hashCmd).out)
                          : Trimmed(RunCommand(basicCmd).out);
  FDir.Write("users", users + "\n");
  WriteConfig(auth);
  for (int attempt = 0; attempt < 3; ++attempt)
    if (Start()) return;
  throw std::runtime_error("httpd did not start:\n" + TempDir::Read(FDir.File("error.log")));
}

WebDavServer::~WebDavServer() {
  Stop();
}

void WebDavServer::WriteConfig(Auth auth) const {
  std::string d = FDir.Path(), conf = "ServerRoot " + d + "\nServerName 127.0.0.1\n";
  for (const char* m : {"mpm_event", "authn_core", "authn_file", "authz_core", "authz_user",
                        "auth_digest", "auth_basic", "dav", "dav_fs"})
    conf += std::string("LoadModule ") + m + "_module " + kModules + "mod_" + m + ".so\n";
  conf += "User nobody\nGroup nogroup\nDefaultRuntimeDir " + d + "/run\nPidFile " + d +
          "/run/httpd.pid\nErrorLog " + d + "/error.log\nDavLockDB " + d + "/run/davlock\n" +
          "DocumentRoot " + Root() + "\n<Directory " + Root() + ">\n  Dav On\n" +
          (auth == Auth::Digest ? "  AuthType Digest\n  AuthDigestProvider file\n"
                                : "  AuthType Basic\n  AuthBasicProvider file\n") +
          "  AuthName " + kRealm + "\n  AuthUserFile " + d + "/users\n  Require valid-user\n" +
          "</Directory>\n";
  FDir.Write("httpd.conf", conf);
}

bool WebDavServer::Start() {
  FPort = FreeLoopbackPort();
  std::string listen = "Listen 127.0.0.1:" + std::to_string(FPort) + "\n";
  FDir.Write("listen.conf", listen);
  std::string conf = FDir.File("httpd.conf"), include = "Include " + FDir.File("listen.conf");
  FPid = fork();
  if (FPid == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);  // a crashed test leaves no server behind
    execl(kHttpd, kHttpd, "-f", conf.c_str(), "-C", include.c_str(), "-DFOREGROUND", nullptr);
    _exit(127);
  }
  for (int i = 0; i < 200; ++i) {
    if (Accepts(FPort)) return true;
    int status;
    if (waitpid(FPid, &status, WNOHANG) == FPid) {
      FPid = -1;
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
  int status;
  waitpid(FPid, &status, 0);
  FPid = -1;
}

std::string WebDavServer::Write(std::string_view urlPath, std::string_view bytes) const {
  std::string path = FDir.Write("www" + std::string(urlPath), bytes);
  for (fs::path p = path; p != Root(); p = p.parent_path())
    fs::permissions(p, fs::perms::all);
  return path;
}

}  // namespace qvtest
