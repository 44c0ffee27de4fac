#include "WebDavClient.h"

#include <gtest/gtest.h>

#include "support/TempDir.h"
#include "support/WebDavServer.h"

namespace {

using qvtest::WebDavServer;

// A body larger than one read, so that Digest's second PUT has to rewind the file; names and
// credentials with blanks.
TEST(WebDavClient, TransfersWithBasicAndDigest) {
  if (!WebDavServer::Available()) GTEST_SKIP() << "apache2 with mod_dav is missing";
  qvtest::TempDir dir;
  qvhost::TCurlWebDav transport;
  qv::TQvWebDavClient client;
  std::string body = std::string(300000, 'x') + "end", local = dir.Write("up load.bin", body);
  EXPECT_FALSE(client.Connect());
  EXPECT_EQ(client.LastError(), "This host offers no WebDAV client");
  qv::QvWebDavServices = &transport;
  for (auto auth : {WebDavServer::Auth::Basic, WebDavServer::Auth::Digest}) {
    WebDavServer server("ci user", "p@ss word", auth);
    server.Write("/a b/keep.txt", "");
    client.ServerName = "127.0.0.1";
    client.Port = server.Port();
    client.UserName = server.User();
    client.Password = server.Password();
    ASSERT_TRUE(client.Connect()) << client.LastError();
    ASSERT_TRUE(client.UploadFile(local, "/a b/")) << client.LastError();
    ASSERT_TRUE(client.DownloadFile(dir.File("back"), "/a b/up load.bin")) << client.LastError();
    EXPECT_EQ(qvtest::TempDir::Read(dir.File("back")), body);
    EXPECT_FALSE(client.DownloadFile(dir.File("back"), "/a b/none"));
    EXPECT_EQ(client.LastError() + qvtest::TempDir::Read(dir.File("back")).substr(299998),
              "HTTP/1.1 404 Not Foundxxend");
  }
  qv::QvWebDavServices = nullptr;
}

}  // namespace
