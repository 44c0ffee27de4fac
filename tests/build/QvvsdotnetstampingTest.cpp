#include <gtest/gtest.h>

#include <filesystem>

#include "Qvvsdotnetaction.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::MemoryPropertySet;
using qvtest::TempDir;

namespace {

const std::string kNative = "{EBCA5A39-9048-46B4-A61E-9AE6B667E41C}";  // OrderNative

// A copy of the 2005 samples, whose native project's version script is other.rc, and an
// action bound to a recording context.
class Stamping : public testing::Test {
 protected:
  TempDir dir;
  IntfPtr<qvtest::RecordingActionContext> ctx = qvtest::RecordingActionContext::Create();
  TQvVSDotNetAction a;
  IntfPtr<IVSDotNetSolution> solution;
  std::string script = dir.File("OrderNative/other.rc");
  Stamping() {
    std::filesystem::copy(QV_EXAMPLES_DIR "/vs2005", dir.Path(),
                          std::filesystem::copy_options::recursive);
    a.BindContext(ctx);
    solution = OpenSolution(dir.File("OrderDesk.sln"), false);
  }
  // Sets each "Name=Value".
  void Set(const std::vector<std::string>& properties) {
    for (const std::string& p : properties)
      a.SetPropValue(p.substr(0, p.find('=')), p.substr(p.find('=') + 1));
  }
};

TEST_F(Stamping, CountsTheBuildUpAndStampsTheChosenProjects) {
  Set({"VersionInfoKeys=CompanyName=Acme\r\nFileVersion=\r\n", "BuildVersion=41",
       "AutoIncBuild=True", "ApplyResourceInfoTo=btSelectedProjects",
       "ResourceSelectedProjects={00000000-0000-0000-0000-000000000000}\r\n" + kNative});
  ASSERT_TRUE(a.StampWin32Resources(*solution)) << ctx->Transcript();
  EXPECT_EQ(a.GetPropValue("ResourceSelectedProjects"), kNative + "\r\n");
  EXPECT_EQ(ctx->Transcript(),
            "> Updating Win32 Version Info (type 0) [0]\n"
            "  [0] Updating Version info in file : " +
                script + "\n< [1]\n");
  // (How the numbers fill the block, the FileVersion value too, is the version-info suite's.)
  EXPECT_NE(TempDir::Read(script).find("FILEVERSION 1,0,0,42\r\n"), std::string::npos);
  a.StampWin32Resources(*solution);
  EXPECT_NE(TempDir::Read(script).find("FILEVERSION 1,0,0,43\r\n"), std::string::npos);
}

TEST_F(Stamping, PropertySetsAndTheirFailures) {
  ctx->PropertySets.emplace_back(new MemoryPropertySet("W", {{"ObjectID", "7"},
                                                             {"MajorVersion", "3"},
                                                             {"DLL", "True"},
                                                             {"SpecialBuild", "True"},
                                                             {"DebugBuild", "False"},
                                                             {"Comments", "nightly"}}));
  // String-table keys match without regard to case and keep their spelling.
  Set({"VersionInfoKeys=debugbuild=x\r\ncomments=old\r\n", "Win32VersionInfoPropertySetName=W"});
  ASSERT_TRUE(a.LoadWin32VersionInfoFromPropertySet());
  EXPECT_EQ(a.GetMajorVersion(), 3);
  EXPECT_TRUE(a.GetIsDLL() && a.GetIsSpecial() && !a.GetIsDebug());
  EXPECT_EQ(a.GetVersionInfoKeys(), "comments=nightly\r\nSpecialBuild=True\r\n");
  Set({"UseWin32PropertySet=True", "Win32VersionInfoPropertySetName="});
  EXPECT_FALSE(a.StampWin32Resources(*solution));
  Set({"Win32VersionInfoPropertySetName=Missing"});
  EXPECT_FALSE(a.StampWin32Resources(*solution));
  // Both failures leave their group open for the host to close.
  EXPECT_EQ(ctx->Transcript(),
            "> Updating Win32 Version Info (type 0) [0]\n"
            "  [3] Win32 PropertySet name is blank\n"
            "  > Updating Win32 Version Info (type 0) [0]\n"
            "    [3] Unable to find property set: Missing\n");
}

TEST_F(Stamping, AssemblyNumbersCountUpAndPropertySetsFillThem) {
  Set({"AssemblyVersion=1|0|*|9", "AssemblyFileVersion=2|0|5|0", "AutoIncAssemblyBuildNumber=True",
       "AutoIncAssemblyRevisionNo=True", "AutoIncAssemblyFileBuildNumber=True"});
  a.CountUpAssemblyNumbers();
  EXPECT_EQ(a.GetAssemblyVersion(), "1|0|1|10");
  EXPECT_EQ(a.GetAssemblyFileVersion(), "2|0|6|0");
  EXPECT_EQ(a.DoAutoIncBuild("1|2|7"), "1|2|8");
  EXPECT_EQ(a.DoAutoIncBuild("1|2|x"), "1|2|0");
  ctx->PropertySets.emplace_back(new MemoryPropertySet(
      "N", {{"Name", "N"}, {"MajorVersion", "4"}, {"RevisionVersion", "3"}, {"Title", "T"}}));
  Set({"DotNetVersionInfoPropertySetName=N"});
  ASSERT_TRUE(a.LoadDotNetVersionInfoFromPropertySet());
  EXPECT_EQ(a.GetAssemblyVersion(), "4|0|1|3");
  EXPECT_EQ(a.GetAssemblyFileVersion(), "4|0|6|3");
  EXPECT_EQ(a.GetPropValue("UpdateAssemblyTitle") + a.GetPropValue("AssemblyTitle") +
                a.GetPropValue("UpdateAssemblyFileVersion"),
            "TrueTTrue");
}

}  // namespace
