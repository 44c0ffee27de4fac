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
  // Whether httpd with mod_dav is installed (tests skip without it).
  static bool Available();
  // Starts httpd on 127.0.0.1 with one user; throws std::runtime_error with its error log
  // when it does not come up.
  explicit WebDavServer(std::string user = "builder", std::string password = "pa55-w0rd",
                        Auth auth = Auth::Digest);
  // Stops the server, also when the test failed.
  ~WebDavServer() { Stop(); }
  WebDavServer(const WebDavServer&) = delete;
  WebDavServer& operator=(const WebDavServer&) = delete;

  int Port() const { return FPort; }
  const std::string& User() const { return FUser; }
  const std::string& Password() const { return FPassword; }
  // The served folder: URL path "/a/b" is the file Root() + "/a/b".
  std::string Root() const { return FDir.File("www"); }
  // Writes a served file, readable and replaceable by the server; returns its path.
  std::string Write(std::string_view urlPath, std::string_view bytes) const;
  // Stops the server now; later requests are refused.
  void Stop();

 private:
  bool Start();

  TempDir FDir;
  std::string FUser, FPassword;
  int FPort = 0;
  int FPid = -1;
};

}  // namespace qvtest
