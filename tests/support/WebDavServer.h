// A real WebDAV server for tests: Apache httpd with mod_dav on a free loopback port, serving
// a temporary folder behind Digest (or Basic) authentication, stopped when destroyed.
#pragma once

#include <string>
#include <string_view>

#include "TempDir.h"

namespace qvtest {

class WebDavServer {
 public:
  enum class Auth { Digest, Basic };

  // Starts httpd on 127.0.0.1 with one user. Throws std::runtime_error (with httpd's error
  // log) when it does not come up.
  explicit WebDavServer(std::string user = "builder", std::string password = "pa55-w0rd",
                        Auth auth = Auth::Digest);
  // Stops the server (and so also when the test failed).
  ~WebDavServer();
  WebDavServer(const WebDavServer&) = delete;
  WebDavServer& operator=(const WebDavServer&) = delete;

  // Whether httpd and its DAV and authentication modules are installed.
  static bool Available();

  int Port() const { return FPort; }
  const std::string& User() const { return FUser; }
  const std::string& Password() const { return FPassword; }
  // The served folder: URL path "/a/b" is the file Root() + "/a/b".
  std::string Root() const { return FDir.File("www"); }
  // Writes a served file (parent folders created, readable by the server) and returns it.
  std::string Write(std::string_view urlPath, std::string_view bytes) const;
  // Stops the server now; later requests are refused.
  void Stop();

 private:
  void WriteConfig(Auth auth) const;
  bool Start();

  TempDir FDir;
  std::string FUser, FPassword;
  int FPort = 0;
  int FPid = -1;
};

}  // namespace qvtest
