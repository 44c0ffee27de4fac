#include "Qvassemblyinfo.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>

#include "QvSysUtils.h"
#include "support/ErrorOf.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qv;
using A = TQvAssemblyAttribute;

namespace {
// The build action's side of the updater: switched-on attributes with their values.
class StampAction : public qvtest::RecordingAction, public IQvAssemblyInfoSettings {
 public:
  std::map<A, std::string> Values;
  bool GetUpdateAssemblyAttribute(A a) override { return Values.count(a) > 0; }
  std::string GetAssemblyAttributeValue(A a) override { return Values[a]; }
  bool GetLinkAssemblyFileVersionInfo() override { return true; }
  int GetProjLocationDetectMethodValue() override { return Method; }
  int Method = 1;
  int32_t GetWMIWebsiteNum() override { return 1; }
  std::string GetSharePath() override { return "wwwroot$"; }
  std::string GetWebDAVUsername() override { return {}; }
  std::string GetWebDAVPassword() override { return {}; }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IQvAssemblyInfoSettings>(this, iid)) return p;
    return RecordingAction::GetInterface(iid);
  }
};

const std::string Fixtures = QV_FIXTURES_DIR "/assemblyinfo";
const char* Files[] = {"Scribble/Properties/AssemblyInfo.cs", "Ledger/AssemblyInfo.vb",
                       "Inkwell/AssemblyInfo.cpp", "Quill/AssemblyInfo.jsl"};

class QvassemblyinfoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::copy(Fixtures, dir.Path(), std::filesystem::copy_options::recursive);
    std::filesystem::remove_all(dir.File("expected"));
    action.ctx->Variables["BUILD"] = "40";
    action.Values = {{A::aaTitle, "Stamped"},
                     {A::aaComment, "never"},
                     {A::aaCompany, "Fabrikam"},
                     {A::aaFileVersion, "9|9|9|9"},
                     {A::aaVersion, "2|1|%BUILD%|0"}};
  }
  IntfPtr<IQvAssemblyInfoUpdater> Updater(bool includeMissing = false) {
    return GetAssemblyInfoUpdater(OpenSolution(dir.File("Stamp.sln"), includeMissing), action);
  }
  std::string Transcript() { return StringReplaceAll(action.ctx->Transcript(), dir.Path(), "$D"); }
  qvtest::TempDir dir;
  StampAction action;
};
}  // namespace

TEST_F(QvassemblyinfoTest, StampsEveryLanguageKeepingEncodingAndBackingUp) {
  Updater()->UpdateAllAssemblyInfo();
  for (const char* f : Files) {
    EXPECT_EQ(qvtest::TempDir::Read(dir.File(f)),
              qvtest::TempDir::Read(Fixtures + "/expected/" + ExtractFileName(f)))
        << f;
    EXPECT_EQ(qvtest::TempDir::Read(dir.File(f) + ".bak"),
              qvtest::TempDir::Read(Fixtures + "/" + f));
  }
  EXPECT_EQ(qvtest::FileKey(Transcript()),
            qvtest::FileKey(qvtest::TempDir::Read(Fixtures + "/expected/transcript.txt")));

  Updater()->UpdateAllAssemblyInfo();  // the backup now holds the first run's result
  EXPECT_EQ(qvtest::TempDir::Read(dir.File(Files[3]) + ".bak"),
            qvtest::TempDir::Read(Fixtures + "/expected/AssemblyInfo.jsl"));
}

TEST_F(QvassemblyinfoTest, ChosenProjectsOnlyAndUnknownIdentifiersLogged) {
  TStringList filter{"{6E1A4B2C-3D5F-4A7B-8C9D-0E1F2A3B4C5D}"};
  Updater()->UpdateAssemblyInfo(
      {"{00000000-0000-0000-0000-000000000000}", "{7F8B0C35-E7A9-4D2F-B3C4-7E9A1B3D5F7C}",
       "{6E1A4B2C-3D5F-4A7B-8C9D-0E1F2A3B4C5D}"},
      nullptr);
  Updater()->UpdateAssemblyInfo({"{7F8B0C35-E7A9-4D2F-B3C4-7E9A1B3D5F7C}"}, &filter);
  EXPECT_EQ(action.ctx->Messages()[0], "[0] 3 projects to process.");
  EXPECT_EQ(action.ctx->Messages()[1],
            "[3] ProjectID : {00000000-0000-0000-0000-000000000000} - not found in solution");
  EXPECT_EQ(action.ctx->Messages()[2],
            "[0] Processing Project File : " + dir.File("Bare/Bare.csproj"));
  EXPECT_EQ(action.ctx->Messages().back(), "[0] 0 projects to process.");
}

TEST_F(QvassemblyinfoTest, MissingProjectOrReadOnlyFileFailsNamingItAndLosesNothing) {
  std::filesystem::remove(dir.File("Bare/Bare.csproj"));
  EXPECT_EQ(qvtest::ErrorOf([&] { Updater(true)->UpdateAllAssemblyInfo(); }),
            "ERROR : Unable to find : " + dir.File("Bare/Bare.csproj"));
  std::string path = dir.File(Files[0]), before = qvtest::TempDir::Read(Fixtures + "/" + Files[0]);
  dir.Write(Files[0], before);
  chmod(path.c_str(), 0444);
  EXPECT_EQ(qvtest::FileKey(qvtest::ErrorOf([&] { Updater()->UpdateAllAssemblyInfo(); })),
            qvtest::FileKey("Unable to write file \"" + path + "\" : Permission denied"));
  EXPECT_EQ(qvtest::TempDir::Read(path), before);
  EXPECT_EQ(qvtest::TempDir::Read(path + ".bak"), before);
}

// WebDAV: the project file and its AssemblyInfo come from the site and go back to it (the
// site, like IIS, answers the lower-cased reference).
TEST_F(QvassemblyinfoTest, WebProjectsOverWebDAVAreFetchedStampedAndPutBack) {
  std::string site = dir.File("site/"), calls;
  std::filesystem::create_directories(dir.File("local"));
  dir.Write("site/Web/properties/assemblyinfo.cs", "[assembly: AssemblyTitle(\"Old\")]\r\n");
  dir.Write("site/Web/Web.csproj", "<Compile Include=\"Properties\\AssemblyInfo.cs\" />");
  auto fetch = [&](const std::string& remote, const std::string& name) {
    calls += "get " + remote + " " + name + "\n";
    std::filesystem::copy_file(site + remote + "/" + name, dir.File("local/" + name));
    return dir.File("local/" + name);
  };
  TQvWebProjectRoutines web;
  web.GetProjectFileUsingWebDAV = [&](auto&, auto&, auto&, std::string& remote,
                                      std::string& local) {
    local = fetch(remote = "Web", "Web.csproj");
  };
  web.GetFileUsingWebDAV = fetch;
  web.PutFileUsingWebDAV = [&](const std::string& local, const std::string& remote) {
    calls += "put " + remote + "\n";
    std::string target = site + remote + "/" + ExtractFileName(local);
    std::filesystem::remove(target);
    std::filesystem::copy_file(local, target);
  };
  web.CloseWebDAV = [&] { calls += "close\n"; };
  action.Method = 2;
  action.Values = {{A::aaTitle, "Stamped"}};
  GetAssemblyInfoUpdater(
      OpenSolution(
          dir.Write(
              "W.sln",
              "Microsoft Visual Studio Solution File, "
              "Format Version 8.00\nProject(\"{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}\") = \"Web\", "
              "\"http://localhost/Web/Web.csproj\", \"{W}\"\nEndProject\nGlobal\nEndGlobal\n"),
          false),
      action, web)
      ->UpdateAllAssemblyInfo();
  EXPECT_EQ(calls,
            "get Web Web.csproj\nget Web/properties assemblyinfo.cs\nput Web/properties\nclose\n");
  EXPECT_EQ(qvtest::TempDir::Read(site + "Web/properties/assemblyinfo.cs"),
            "[assembly: AssemblyTitle(\"Stamped\")]\r\n");
}
