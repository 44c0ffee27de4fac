#include "Qvassemblyinfo.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "QvSysUtils.h"
#include "Qvvsdotnetaction.h"
#include "support/ErrorOf.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::FileKey;
using qvtest::TempDir;

namespace {
const std::string Fixtures = QV_FIXTURES_DIR "/assemblyinfo";
const char* Files[] = {"Scribble/Properties/AssemblyInfo.cs", "Ledger/AssemblyInfo.vb",
                       "Inkwell/AssemblyInfo.cpp", "Quill/AssemblyInfo.jsl"};

// A copy of fixtures/assemblyinfo and the build action, whose settings the updater reads:
// title, comment, company and both versions switched on, the file version linked to the
// version.
class QvassemblyinfoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::copy(Fixtures, dir.Path(), std::filesystem::copy_options::recursive);
    std::filesystem::remove_all(dir.File("expected"));
    action.BindContext(ctx);
    ctx->Variables["BUILD"] = "40";
    for (const auto& [name, value] : {std::pair<std::string, std::string>{"Title", "Stamped"},
                                      {"Comment", "never"},
                                      {"Company", "Fabrikam"},
                                      {"FileVersion", "9|9|9|9"},
                                      {"Version", "2|1|%BUILD%|0"}}) {
      action.SetPropValue("UpdateAssembly" + name, "True");
      action.SetPropValue("Assembly" + name, value);
    }
    action.SetPropValue("LinkAssemblyFileVersionInfo", "True");
  }
  IntfPtr<IQvAssemblyInfoUpdater> Updater(bool includeMissing = false) {
    return GetAssemblyInfoUpdater(OpenSolution(dir.File("Stamp.sln"), includeMissing), action);
  }
  TempDir dir;
  IntfPtr<qvtest::RecordingActionContext> ctx = qvtest::RecordingActionContext::Create();
  TQvVSDotNetAction action;
};
}  // namespace

// C# in Windows-1252, VB in UTF-16 LE, managed C++ in UTF-8 with a BOM, J# in ASCII.
TEST_F(QvassemblyinfoTest, StampsEveryLanguageKeepingEncodingAndBackingUp) {
  Updater()->UpdateAllAssemblyInfo();
  for (const char* f : Files) {
    EXPECT_EQ(TempDir::Read(dir.File(f)),
              TempDir::Read(Fixtures + "/expected/" + ExtractFileName(f)))
        << f;
    EXPECT_EQ(TempDir::Read(dir.File(f) + ".bak"), TempDir::Read(Fixtures + "/" + f));
  }
  EXPECT_EQ(FileKey(StringReplaceAll(ctx->Transcript(), dir.Path(), "$D")),
            FileKey(TempDir::Read(Fixtures + "/expected/transcript.txt")));

  Updater()->UpdateAllAssemblyInfo();  // the backup now holds the first run's result
  EXPECT_EQ(TempDir::Read(dir.File(Files[3]) + ".bak"),
            TempDir::Read(Fixtures + "/expected/AssemblyInfo.jsl"));
}

TEST_F(QvassemblyinfoTest, ChosenProjectsOnlyAndUnknownIdentifiersLogged) {
  TStringList filter{"{6E1A4B2C-3D5F-4A7B-8C9D-0E1F2A3B4C5D}"};
  Updater()->UpdateAssemblyInfo(
      {"{00000000-0000-0000-0000-000000000000}", "{7F8B0C35-E7A9-4D2F-B3C4-7E9A1B3D5F7C}",
       "{6E1A4B2C-3D5F-4A7B-8C9D-0E1F2A3B4C5D}"},
      nullptr);
  Updater()->UpdateAssemblyInfo({"{7F8B0C35-E7A9-4D2F-B3C4-7E9A1B3D5F7C}"}, &filter);
  EXPECT_EQ(ctx->Messages()[0], "[0] 3 projects to process.");
  EXPECT_EQ(ctx->Messages()[1],
            "[3] ProjectID : {00000000-0000-0000-0000-000000000000} - not found in solution");
  EXPECT_EQ(ctx->Messages()[2], "[0] Processing Project File : " + dir.File("Bare/Bare.csproj"));
  EXPECT_EQ(ctx->Messages().back(), "[0] 0 projects to process.");
}

TEST_F(QvassemblyinfoTest, MissingProjectOrReadOnlyFileFailsNamingItAndLosesNothing) {
  std::filesystem::remove(dir.File("Bare/Bare.csproj"));
  EXPECT_EQ(qvtest::ErrorOf([&] { Updater(true)->UpdateAllAssemblyInfo(); }),
            "ERROR : Unable to find : " + dir.File("Bare/Bare.csproj"));
  std::string path = dir.File(Files[0]), before = TempDir::Read(Fixtures + "/" + Files[0]);
  dir.Write(Files[0], before);
  chmod(path.c_str(), 0444);
  EXPECT_EQ(FileKey(qvtest::ErrorOf([&] { Updater()->UpdateAllAssemblyInfo(); })),
            FileKey("Unable to write file \"" + path + "\" : Permission denied"));
  EXPECT_EQ(TempDir::Read(path), before);
  EXPECT_EQ(TempDir::Read(path + ".bak"), before);
}

// WebDAV: the project file and its AssemblyInfo are fetched (the site, like IIS, answers the
// lower-cased reference), and the stamped file is put back into its folder.
TEST_F(QvassemblyinfoTest, WebProjectsOverWebDAVAreFetchedStampedAndPutBack) {
  std::string calls;
  TQvWebProjectRoutines web;
  web.GetProjectFileUsingWebDAV = [&](auto&, auto&, const std::string& address, std::string& remote,
                                      std::string& local) {
    calls += "project " + address + "\n";
    remote = "Web";
    local = dir.Write("local/Web.csproj", "<Compile Include=\"Properties\\AssemblyInfo.cs\" />");
  };
  web.GetFileUsingWebDAV = [&](const std::string& remote, const std::string& name) {
    calls += "get " + remote + " " + name + "\n";
    return dir.Write("local/" + name, "[assembly: AssemblyTitle(\"Old\")]\r\n");
  };
  web.PutFileUsingWebDAV = [&](const std::string& local, const std::string& remote) {
    calls += "put " + remote + "\n" + TempDir::Read(local);
  };
  web.CloseWebDAV = [&] { calls += "close\n"; };
  action.SetPropValue("ProjLocationDetectMethod", "useWebDAV");
  std::string sln =
      dir.Write("W.sln",
                "Microsoft Visual Studio Solution File, Format Version 8.00\n"
                "Project(\"{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}\") = \"Web\", "
                "\"http://localhost/Web/Web.csproj\", \"{W}\"\nEndProject\nGlobal\nEndGlobal\n");
  GetAssemblyInfoUpdater(OpenSolution(sln, false), action, web)->UpdateAllAssemblyInfo();
  EXPECT_EQ(calls,
            "project http://localhost/Web/Web.csproj\nget Web/properties assemblyinfo.cs\n"
            "put Web/properties\n[assembly: AssemblyTitle(\"Stamped\")]\r\n"
            "[assembly: AssemblyCompany(\"Fabrikam\")]\r\n"
            "[assembly: AssemblyFileVersion(\"2.1.40.0\")]\r\n"
            "[assembly: AssemblyVersion(\"2.1.40.0\")]\r\nclose\n");
  EXPECT_FALSE(std::filesystem::exists(dir.File("local/assemblyinfo.cs"))) << "the copy is removed";
}
