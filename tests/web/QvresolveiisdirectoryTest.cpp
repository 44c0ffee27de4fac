#include "Qvresolveiisdirectory.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "Metabase.h"
#include "QvUtils.h"
#include "WebDavClient.h"
#include "support/ErrorOf.h"
#include "support/RunCommand.h"
#include "support/WebDavServer.h"

namespace qv {
namespace {

using qvtest::ErrorOf;
const std::string kNoObject = "Unable to resolve to physical path - no object found";

TEST(WebLocation, StringRulesAndShareNames) {
  EXPECT_EQ(RemoveTrailingSlash("/a//") + EnsureTrailingSlash("") + "|" + EnsureTrailingSlash("a"),
            "/a/|a/");
  EXPECT_EQ(TrimSlashes("//a//") + "|" + TrimSlashes("/") + EnsureTrailingSlash("a/"), "/a/|a/");
  EXPECT_EQ(BuildShareName("http://H/Web/App/App.vbproj", "S"), R"(\\H\S\Web/App\App.vbproj)");
  EXPECT_EQ(BuildShareName("http://H:8080/App.csproj", "S"), R"(\\H\S\\App.csproj)");
}

TEST(WebLocation, MetabaseLookupFindsThePhysicalDirectory) {
  auto metabase = qvhost::TMetabase::LoadFromText(R"(<?xml version ="1.0"?>
<configuration xmlns="urn:microsoft-catalog:XML_Metabase_V54_0"><MBProperty>
<IIsWebVirtualDir Location ="/LM/W3SVC/1/ROOT" Path="c:\inetpub\wwwroot"></IIsWebVirtualDir>
<IIsWebVirtualDir Location ="/LM/W3SVC/1/ROOT/App" Path="D:\Web\App"/>
<IIsWebDirectory Location ="/lm/w3svc/1/root/app/Sub"/><IIsWebDirectory Location ="/LM/W3SVC/2/ROOT"/>
</MBProperty></configuration>)",
                                                  "MetaBase.xml");
  const struct {
    std::string address;
    int site;
    std::string expected;
  } cases[] = {
      {"http://localhost/App.csproj", 1, R"(c:\inetpub\wwwroot\App.csproj)"},
      {"http://LocalHost/App/App.csproj", 1, R"(D:\Web\App\App.csproj)"},
      {"http://localhost/App/Sub/Web.csproj", 1, R"(D:\Web\App\Sub\Web.csproj)"},
      {"http://" + GetComputerNetName() + "/App/My%20Web.csproj", 1, R"(D:\Web\App\My Web.csproj)"},
      {"http://buildsrv/App/Sub/Web.csproj", 1, R"(\\buildsrv\D$\Web\App\Sub\Web.csproj)"},
      {"http://localhost/Gone/Web.csproj", 1, kNoObject},
      {"http://localhost/Web.csproj", 2,
       "Unable to resolve to physical path - found IIsWebDirectory\rOriginal IIS uri: "},
  };
  QvAutomationServices = metabase.get();
  for (const auto& c : cases) {
    std::string result;
    std::string error = ErrorOf([&] { result = GetPhysicalDirFromIISDir(c.address, c.site); });
    EXPECT_EQ(result.empty() ? error : result, c.expected) << c.address << " site " << c.site;
  }
  QvAutomationServices = nullptr;
  EXPECT_EQ(ErrorOf([] { GetPhysicalDirFromIISDir("http://localhost/App.csproj", 1); }), kNoObject);
}

// A web project served over WebDAV from a folder with blanks, on the server's own port.
class WebDavLocation : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!qvtest::WebDavServer::Available()) GTEST_SKIP() << "apache2 with mod_dav is missing";
    Server = std::make_unique<qvtest::WebDavServer>();
    qvtest::SetEnv("TMPDIR", Downloads.Path().c_str());  // parallel tests download the same names
    Server->Write("/My Web/App/App.csproj", "<Project/>\r\n");
    QvWebDavServices = &Transport;
    Client.UserName = Server->User();
    Client.Password = Server->Password();
  }
  void TearDown() override {
    QvWebDavServices = nullptr;
    qvtest::SetEnv("TMPDIR", nullptr);
  }
  std::string Connect() {
    std::string address = "http://127.0.0.1:" + Port() + "/My%20Web/App/App.csproj";
    return ErrorOf([&] { GetProjectFileUsingWebDAV(&Client, address, RemoteDir, LocalFile); });
  }
  std::string Port() { return std::to_string(Server->Port()); }

  qvtest::TempDir Downloads;
  std::unique_ptr<qvtest::WebDavServer> Server;
  qvhost::TCurlWebDav Transport;
  TQvWebDavClient Client;
  std::string RemoteDir, LocalFile;
};

// The project file is found and downloaded; failures say why, and no message shows the
// password. (A refused password, and fetching and putting back a file the action stamps, run
// end to end in BuildEndToEndTest's Stamping.WebProjectOverWebDAV.)
TEST_F(WebDavLocation, ConnectsAndFailuresSayWhyWithoutThePassword) {
  ASSERT_EQ(Connect(), "(no exception)");
  EXPECT_EQ(RemoteDir + "|" + qvtest::TempDir::Read(LocalFile), "My Web/App|<Project/>\r\n");
  std::string name = "Missing.cs",
              tail = "\rServername: 127.0.0.1\rServerport: " + Port() + "\rUserID: builder\r";
  std::string local = Downloads.Write(name, "an earlier download");
  std::string missing = ErrorOf([&] { GetFileUsingWebDAV(Client, "My Web", name); });
  EXPECT_EQ(missing,
            "Error retrieving file with WebDAV: HTTP/1.1 404 Not Found\rDownload filename: " +
                local + tail + "Requested file: /My Web/" + name);
  EXPECT_FALSE(std::filesystem::exists(local));
  EXPECT_EQ(ErrorOf([&] { PutFileUsingWebDAV(Client, LocalFile, "No/Such"); }),
            "Error uploading file with WebDAV: HTTP/1.1 409 Conflict\rLocal filename: " +
                LocalFile + tail + "Remote Path: /No/Such/");
  Server->Stop();
  std::string down = Connect();
  EXPECT_EQ(down, "Unable to connect using WebDAV : Couldn't connect to server (http://127.0.0.1:" +
                      Port() + "/)");
  for (const std::string& message : {missing, down})
    EXPECT_EQ(message.find(Server->Password()), std::string::npos) << message;
}

}  // namespace
}  // namespace qv
