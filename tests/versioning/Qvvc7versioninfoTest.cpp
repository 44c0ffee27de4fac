#include "Qvvc7versioninfo.h"

#include <gtest/gtest.h>

#include "QvSysUtils.h"
#include "Qvvsdotnetaction.h"
#include "support/ErrorOf.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::ErrorOf;
using qvtest::TempDir;

namespace {

const std::string kFixtures = QV_FIXTURES_DIR "/versioninfo/";

// The build action is the version-info object; a recording context expands %NAME%.
class VersionInfoParser : public testing::Test {
 protected:
  TempDir dir;
  IntfPtr<qvtest::RecordingActionContext> ctx = qvtest::RecordingActionContext::Create();
  TQvVSDotNetAction info;
  VersionInfoParser() {
    info.BindContext(ctx);
    info.SetMajorVersion(1);
    info.SetMinorVersion(2);
    info.SetReleaseVersion(3);
    info.SetBuildVersion(4);
    info.SetIsDebug(true);
    info.SetIsSpecial(true);
    info.SetIsDLL(true);
    info.SetVersionInfoKeys("CompanyName=Example Ltd\r\nFileVersion=9.9\r\n");
  }
  std::string Update(const std::string& path) {
    GetVersionInfoParser(&info, path)->UpdateVersionInfo(&info);
    return TempDir::Read(path);
  }
  std::string ReadError(std::string_view script) {
    std::string path = dir.Write("bad.rc", script);
    return ErrorOf([&] { GetVersionInfoParser(&info, path)->ReadVersionInfo(&info); });
  }
};

TEST_F(VersionInfoParser, ReadsAnEightBitScript) {
  info.SetVersionInfoKeys("");
  auto parser = GetVersionInfoParser(&info, kFixtures + "vs2003-ansi.rc");
  EXPECT_FALSE(parser->ReadVersionInfo(&info));  // always false, by design
  EXPECT_EQ(info.GetMajorVersion(), 1);
  EXPECT_EQ(info.GetBuildVersion(), 1);
  // Both FILEFLAGS lines of the #ifdef are read; the last one (0x0L) wins. "0x2L" reads as
  // "2L", which is no number, so IsDLL is false.
  EXPECT_FALSE(info.GetIsDebug() || info.GetIsSpecial() || info.GetIsDLL());
  EXPECT_EQ(info.GetLocale(), 0x409);
  EXPECT_EQ(info.GetCodePage(), 1200);
  EXPECT_EQ(info.GetVersionInfoKeys(),
            "Comments=Caf\xe9 edition\r\nCompanyName=Tidewater Tools\r\n"
            "FileDescription=NativeCalc Dynamic Link Library\r\nFileVersion=1, 0, 0, 1\r\n"
            "InternalName=NativeCalc\r\nLegalCopyright=Copyright \xa9 2003\r\n"
            "OriginalFilename=NativeCalc.dll\r\nProductName= NativeCalc Dynamic Link Library\r\n"
            "ProductVersion=1, 0, 0, 1\r\nSpecialBuild=\r\n");
}

TEST_F(VersionInfoParser, ReadQuirksAndErrors) {
  const std::string head = "1 VERSIONINFO\n";
  struct Case {
    std::string script, error, keys;
  } cases[] = {
      {head + "BEGIN\nFILEVERSION 1,0,0,0\nEND\n", "Unexpected FILEVERSION", "unchanged"},
      {head + "END\n", "Unexpected END", "unchanged"},
      {head + "FILEFLAGS 0x21L\nBEGIN\nBEGIN\n", "Unexpected BEGIN", "unchanged"},
      {head + "BEGIN\nBLOCK \"VarFileInfo\"\nBEGIN\nVALUE \"Translation\", 0x409, abc\n",
       "'abc' is not a valid integer value", "unchanged"},
      // A value holding "end" in any case closes the language block early: it is lost.
      {head + "BEGIN\nBLOCK \"StringFileInfo\"\nBEGIN\nBLOCK \"040904b0\"\nBEGIN\n"
              "VALUE \"A\", \"1\"\nVALUE \"Comments\", \"Frontend\"\nVALUE \"B\", \"2\"\nEND\n",
       "(no exception)", "A=1\r\nB=2\r\n"},
      // A quoted VERSIONINFO is no header.
      {"// \"VERSIONINFO\"\nBEGIN\nEND\nEND\n", "(no exception)", "unchanged"},
  };
  for (const auto& c : cases) {
    info.SetVersionInfoKeys("unchanged");
    EXPECT_EQ(ReadError(c.script), c.error) << c.script;
    EXPECT_EQ(info.GetVersionInfoKeys(), c.keys) << c.script;
  }
  ReadError(head + "FILEFLAGS 0x21L\nFILETYPE 0x01L\n");
  EXPECT_TRUE(info.GetIsDebug() && info.GetIsSpecial() && info.GetIsDLL());
  EXPECT_FALSE(info.GetIsPreRelease() || info.GetIsPrivate());
}

// Only the block changes, in the script's own encoding and line breaks: Windows-1252 with
// CR LF, UTF-16 LE with a BOM, and LF without a final newline and without a block (the block
// is appended, the final newline stays missing). Only the first update makes a backup.
TEST_F(VersionInfoParser, ReplacesTheBlockKeepingEveryOtherByte) {
  for (const char* name : {"vs2003-ansi.rc", "vs2008-utf16le.rc", "no-version.rc"}) {
    SCOPED_TRACE(name);
    std::string original = TempDir::Read(kFixtures + name);
    std::string path = dir.Write(name, original);
    EXPECT_EQ(Update(path), TempDir::Read(kFixtures + "expected/" + name));
    Update(path);  // a second update keeps the first backup
    EXPECT_EQ(TempDir::Read(path + ".orig"), original);
  }
}

TEST_F(VersionInfoParser, GeneratedValues) {
  auto expand = [](const std::string& s) { return s == "%EMPTY%" ? std::string() : s + "!"; };
  info.SetVersionInfoKeys("Comments=\r\nTrademark=%EMPTY%\r\nProductName=Calc\r\n");
  info.SetAutoUpdateFileVersion(false);
  info.SetIncludeCompileDate(true);
  std::vector<std::string> block =
      GenerateVersionBlock(info, expand, "Monday, May 4, 2009 9:05 AM");
  // No FileVersion entry: no FILEVERSION line, and the linked product version is empty too.
  EXPECT_EQ(block[1], "FILEFLAGSMASK 0x3FL");
  EXPECT_EQ(block[11], "              VALUE \"Trademark\", \"\"");
  EXPECT_EQ(block[12], "              VALUE \"ProductName\", \"Calc!\"");
  EXPECT_EQ(block[13], "              VALUE \"Compile Date\", \"Monday, May 4, 2009 9:05 AM!\"");
  std::time_t t = 1241427900;  // 2009-05-04 09:05:00 UTC
#ifdef _WIN32
  _putenv_s("TZ", "UTC");
  _tzset();
#else
  setenv("TZ", "UTC", 1);
  tzset();
#endif
  EXPECT_EQ(CompileDateText(t), "Monday, May 4, 2009 9:05 AM");
}

// (A read-only script is refused by the save that every rewriter shares; QvassemblyinfoTest
// pins that refusal.)
TEST_F(VersionInfoParser, AFailureLeavesTheScriptAlone) {
  const std::string bad = "1 VERSIONINFO\r\nBEGIN\r\nBEGIN\r\n";
  std::string path = dir.Write("bad.rc", bad);
  EXPECT_EQ(ErrorOf([&] { Update(path); }), "Unexpected BEGIN");
  EXPECT_EQ(TempDir::Read(path), bad);
}

}  // namespace
