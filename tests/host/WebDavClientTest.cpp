#include "WebDavClient.h"

#include <gtest/gtest.h>

#include "support/TempDir.h"
#include "support/WebDavServer.h"

namespace {

using qvtest::WebDavServer;

class WebDavClient : public ::testing::Test {
 protected:
  void TearDown() override { qv::QvWebDavServices = nullptr; }
  qvtest::TempDir Dir;
  qvhost::TCurlWebDav Transport;
  qv::TQvWebDavClient Client;
};

// A body larger than one read, so that Digest's second PUT has to rewind the file.
TEST_F(WebDavClient, TransfersWithBasicAndDigest) {
  if (!WebDavServer::Available()) GTEST_SKIP() << "apache2 with mod_dav is missing";
  std::string body(300000, 'x');
  body += "end";
  for (auto auth : {WebDavServer::Auth::Basic, WebDavServer::Auth::Digest}) {
    WebDavServer server("ci user", "p@ss word", auth);
    server.Write("/a b/keep.txt", "");
    qv::QvWebDavServices = &Transport;
    Client.ServerName = "127.0.0.1";
    Client.Port = server.Port();
    Client.UserName = server.User();
    Client.Password = server.Password();
    ASSERT_TRUE(Client.Connect()) << Client.LastError();
    std::string local = Dir.Write("up load.bin", body);
    ASSERT_TRUE(Client.UploadFile(local, "/a b/")) << Client.LastError();
    EXPECT_EQ(qvtest::TempDir::Read(server.Root() + "/a b/up load.bin"), body);
    ASSERT_TRUE(Client.DownloadFile(Dir.File("back"), "/a b/up load.bin")) << Client.LastError();
    EXPECT_EQ(qvtest::TempDir::Read(Dir.File("back")), body);
    EXPECT_FALSE(Client.DownloadFile(Dir.File("back"), "/a b/none"));
    EXPECT_EQ(Client.LastError() + " " + qvtest::TempDir::Read(Dir.File("back")).substr(0, 3),
              "HTTP/1.1 404 Not Found xxx");
  }
}

TEST_F(WebDavClient, NeedsAHostAndAConnection) {
  Client.ServerName = "srv";
  EXPECT_FALSE(Client.Connect());
  EXPECT_EQ(Client.LastError(), "This host offers no WebDAV client");
  EXPECT_FALSE(Client.UploadFile(Dir.File("x"), "/"));
  EXPECT_EQ(Client.LastError(), "Not connected to srv");
  EXPECT_EQ(qvhost::EncodeUrlPath("/a b/%é~"), "/a%20b/%25%C3%A9~");
}

}  // namespace
