#include "Qvversioninfoupdateraction.h"

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::ErrorOf;
using qvtest::MemoryPropertySet;
using qvtest::TempDir;

namespace {

const std::string kFixtures = QV_FIXTURES_DIR "/versioninfo/";

// An updater bound to a recording context that holds the property set "Win32".
class Updater : public testing::Test {
 protected:
  TempDir dir;
  IntfPtr<qvtest::RecordingActionContext> ctx = qvtest::RecordingActionContext::Create();
  TQvVersionInfoUpdaterAction a;
  Updater() {
    a.BindContext(ctx);
    TStringList set;
    set.SetText(
        "MajorVersion=3\nMinorVersion=1\nReleaseVersion=0\nBuildVersion=42\nDebugBuild=True\n"
        "PreReleaseBuild=False\nSpecialBuild=False\nPrivateBuild=False\nDLL=True\nCodePage=1252\n"
        "CompanyName=Example Ltd\nLegalTrademarks=\nProductName=Calc\nLocale=$0407\n");
    std::vector<std::pair<std::string, std::string>> values;
    for (int i = 0; i < set.Count(); ++i)
      values.emplace_back(set.Names(i), set.ValueFromIndex(i));
    ctx->PropertySets.emplace_back(new MemoryPropertySet("Win32", values));
    a.SetPropValue("PropertySetName", "Win32");
  }
  void Allow(std::initializer_list<const char*> names) {
    TStringList allowed;
    for (const char* n : names)
      allowed.Add(std::string(n) + "=True");
    a.SetPropertiesToUpdate(allowed);
  }
  // Runs ParseAndUpdate over `text` and returns the lines ("\n"-separated) or the error.
  std::string Parse(const std::string& text) {
    TStringList lines;
    lines.SetText(text);
    a.UsePropertySet(ctx->FindPropertySet("Win32"));
    std::string error = ErrorOf([&] { a.ParseAndUpdate(lines); });
    if (error != "(no exception)") return error;
    std::string out;
    for (const std::string& line : lines)
      out += line + "\n";
    return out;
  }
};

TEST_F(Updater, RewritesTheFixtureFromThePropertySet) {
  Allow({"MajorVersion", "MinorVersion", "ReleaseVersion", "BuildVersion", "DebugBuild", "DLL",
         "CompanyName", "LegalTrademarks", "ProductName", "Locale", "CodePage"});
  std::string original = TempDir::Read(kFixtures + "vs2003-ansi.rc");
  std::string path = dir.Write("app.rc", original);
  a.SetPropValue("ResourceFile", path);
  ASSERT_TRUE(a.Execute()) << ctx->Transcript();
  EXPECT_EQ(TempDir::Read(path), TempDir::Read(kFixtures + "expected/updater-vs2003-ansi.rc"));
  EXPECT_EQ(ctx->Messages()[0], "[0] Updating property : MajorVersion - to : 3");
}

TEST_F(Updater, ParseRulesAndErrors) {
  Allow({"DebugBuild", "PreReleaseBuild", "SpecialBuild", "PrivateBuild", "CompanyName",
         "FileDescription", "ProductName"});
  const std::string v = "1 VERSIONINFO\n", sfi = "BEGIN\nBLOCK \"StringFileInfo\"\nBEGIN\n";
  const std::pair<std::string, std::string> cases[] = {
      {v + "BEGIN\nFILEVERSION 1,0,0,0\n", "Unexpected FILEVERSION on line : 2"},
      {v + "BEGIN\nBLOCK \"Other\"\nBEGIN\n", "Unexpected BEGIN on line : 3"},
      {v + "BEGIN\nBLOCK \"VarFileInfo\"\nBEGIN\nBEGIN\n", "Unexpected BEGIN"},
      // Only DebugBuild is true in the set: every other bit is lost.
      {v + "  FILEFLAGS 0x3fL\n", v + "FILEFLAGS 0x01L\n"},
      // Linked to a file version not yet seen: nothing follows the keyword.
      {v + "PRODUCTVERSION 1,0\n", v + "PRODUCTVERSION \n"},
      // Not allowed to change DLL: only the indentation changes.
      {v + "   FILETYPE 0x1L\n", v + "FILETYPE 0x1L\n"},
      {"// \"VERSIONINFO\"\nFILEVERSION x\n", "// \"VERSIONINFO\"\nFILEVERSION x\n"},
      // FileDescription is allowed but empty in the set, so it is not added; a value holding
      // "End" stays a value; values come out sorted where the first one stood.
      {v + sfi + "BLOCK \"0\"\nBEGIN\n// first\nVALUE \"Zeta\", \"The End\"\n" +
           "VALUE \"LegalTrademarks\", \"TM\"\nEND\nEND\nEND\nrest\n",
       v + sfi + "BLOCK \"0\"\nBEGIN\n// first\n" +
           "            VALUE \"CompanyName\", \"Example Ltd\\0\"\n" +
           "            VALUE \"LegalTrademarks\", \"TM\\0\"\n" +
           "            VALUE \"ProductName\", \"Calc\\0\"\n" +
           "            VALUE \"Zeta\", \"The End\\0\"\nEND\nEND\nEND\nrest\n"},
      {v + sfi + "BLOCK \"0\"\nBEGIN\nEND\n", "List index out of bounds (-1)"},
  };
  for (const auto& [in, out] : cases)
    EXPECT_EQ(Parse(in), out) << in;
}

TEST_F(Updater, ExecuteReportsEachFailingStep) {
  EXPECT_TRUE(a.Execute() == false &&
              ctx->Messages().back() ==
                  "[3] Error loading resource file : Cannot open file \"\". "
                  "No such file or directory");
  a.SetPropValue("ResourceFile", dir.Write("bad.rc", "1 VERSIONINFO\r\nEND\r\n"));
  EXPECT_FALSE(a.Execute());
  EXPECT_EQ(ctx->Messages().back(), "[3] Error Parsing File : Unexpected END on line : 1");
  EXPECT_EQ(TempDir::Read(dir.File("bad.rc")), "1 VERSIONINFO\r\nEND\r\n");
  a.SetPropValue("PropertySetName", "Nope");
  EXPECT_FALSE(a.Execute());
  EXPECT_EQ(ctx->Messages().back(), "[3] Unable to find property set: Nope");
  // A script without a version resource is saved unchanged and the action succeeds.
  std::string plain = TempDir::Read(kFixtures + "no-version.rc");
  a.SetPropValue("PropertySetName", "Win32");
  a.SetPropValue("ResourceFile", dir.Write("plain.rc", plain));
  EXPECT_TRUE(a.Execute());
  EXPECT_EQ(TempDir::Read(dir.File("plain.rc")), plain);
}

}  // namespace
