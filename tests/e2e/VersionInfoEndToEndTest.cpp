// The Win32 Version Info Updater run through qvhost: from a project file whose property set
// holds every name the updater reads, and from the command line.
#include <gtest/gtest.h>

#include "support/RunCommand.h"
#include "support/TempDir.h"

using qvtest::RunCommand;
using qvtest::ShellQuote;
using qvtest::TempDir;

namespace {

const std::string kQvhost = qvtest::ShellQuote(qvtest::NativePath(QV_QVHOST));
const std::string kScript = QV_EXAMPLES_DIR "/vs2008/GreetingNative/App.rc";

const char* const kNames[][2] = {{"MajorVersion", "4"},
                                 {"MinorVersion", "1"},
                                 {"ReleaseVersion", "0"},
                                 {"BuildVersion", "1234"},
                                 {"ProductVersion", "4.1"},
                                 {"FileVersion", "4.1.0.1234"},
                                 {"DebugBuild", "False"},
                                 {"PreReleaseBuild", "True"},
                                 {"SpecialBuild", "False"},
                                 {"PrivateBuild", "False"},
                                 {"SpecialBuildDetails", ""},
                                 {"DLL", "True"},
                                 {"CompanyName", "Harbor Lane Software"},
                                 {"FileDescription", "Greeting native helper"},
                                 {"InternalName", "GreetingNative"},
                                 {"LegalCopyright", "Copyright (C) 2026"},
                                 {"LegalTrademarks", "Greeting is a trademark"},
                                 {"OriginalFilename", "GreetingNative.dll"},
                                 {"ProductName", "Greeting"},
                                 {"CompileDate", "%BUILD_DATE%"},
                                 {"Locale", "$0409"},
                                 {"CodePage", "1200"}};

std::string Project(const std::string& script) {
  std::string set, allowed;
  for (const auto& [name, value] : kNames) {
    set += "      <Property name=\"" + std::string(name) + "\" value=\"" + value + "\"/>\n";
    allowed += "        <Line>" + std::string(name) + "=True</Line>\n";
  }
  return "<?xml version=\"1.0\"?>\n<QvProject>\n  <PropertySets>\n"
         "    <PropertySet name=\"Win32 Release\">\n" +
         set + "    </PropertySet>\n  </PropertySets>\n  <Actions>\n" +
         "    <Action type=\"Win32 Version Info Updater\">\n" +
         "      <Property name=\"ResourceFile\">" + script + "</Property>\n" +
         "      <Property name=\"PropertySetName\">Win32 Release</Property>\n" +
         "      <Property name=\"LinkProductVersion\">False</Property>\n" +
         "      <Property name=\"PropertiesToUpdate\">\n" + allowed +
         "      </Property>\n    </Action>\n  </Actions>\n</QvProject>\n";
}

TEST(VersionInfoEndToEnd, ProjectFileStepWithEveryPropertySetName) {
  TempDir dir;
  std::string original = TempDir::Read(kScript);
  std::string script = dir.Write("App.rc", original);
  std::string project = dir.Write("stamp.qvproj", Project(script));
  auto r = RunCommand(kQvhost + " --no-color run " + ShellQuote(project) + " --options " +
                      ShellQuote(dir.File("o.xml")) + " --var BUILD_DATE=2026-11-24");
  ASSERT_EQ(r.exitCode, 0) << r.out << r.err;
  size_t start = original.find(" FILEVERSION");
  size_t end = original.find("\r\nEND\r\n", original.find("VarFileInfo")) + 5;
  EXPECT_EQ(TempDir::Read(script),
            original.substr(0, start) +
                "FILEVERSION 4,1,0,1234\r\nPRODUCTVERSION 4,1\r\n FILEFLAGSMASK 0x17L\r\n"
                "#ifdef _DEBUG\r\nFILEFLAGS 0x02L\r\n#else\r\nFILEFLAGS 0x02L\r\n#endif\r\n"
                " FILEOS 0x4L\r\nFILETYPE 0x0L\r\n FILESUBTYPE 0x0L\r\nBEGIN\r\n"
                "    BLOCK \"StringFileInfo\"\r\n    BEGIN\r\n        BLOCK \"040904b0\"\r\n"
                "        BEGIN\r\n"
                "            VALUE \"CompanyName\", \"Harbor Lane Software\\0\"\r\n"
                "            VALUE \"CompileDate\", \"%BUILD_DATE%\\0\"\r\n"
                "            VALUE \"FileDescription\", \"Greeting native helper\\0\"\r\n"
                "            VALUE \"FileVersion\", \"4.1.0.1234\\0\"\r\n"
                "            VALUE \"InternalName\", \"GreetingNative\\0\"\r\n"
                "            VALUE \"LegalCopyright\", \"Copyright (C) 2026\\0\"\r\n"
                "            VALUE \"LegalTrademarks\", \"Greeting is a trademark\\0\"\r\n"
                "            VALUE \"OriginalFilename\", \"GreetingNative.dll\\0\"\r\n"
                "            VALUE \"ProductName\", \"Greeting\\0\"\r\n"
                "            VALUE \"ProductVersion\", \"4.1\\0\"\r\n"
                "        END\r\n    END\r\n    BLOCK \"VarFileInfo\"\r\n    BEGIN\r\n"
                "VALUE \"Translation\", 0x0409, 1200\r\n    END\r\nEND" +
                original.substr(end));
  EXPECT_NE(r.out.find("Updating property : BuildVersion - to : 1234"), std::string::npos);
  // The property set is the project's, unchanged by the run.
  EXPECT_EQ(TempDir::Read(project), Project(script));
}

TEST(VersionInfoEndToEnd, CommandLineRunAndAMalformedScript) {
  TempDir dir;
  std::string bad = dir.Write("bad.rc", "1 VERSIONINFO\r\nBEGIN\r\nFILEOS 0x4L\r\n");
  std::string exec = kQvhost + " --no-color --options " + ShellQuote(dir.File("o.xml")) +
                     " exec \"Win32 Version Info Updater\" PropertySetName=W " +
                     "--property-value W.MajorVersion=9 PropertiesToUpdate+=MajorVersion=True ";
  auto r = RunCommand(exec + "ResourceFile=" + ShellQuote(bad));
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_NE(r.out.find("Error Parsing File : Unexpected FILEOS on line : 2"), std::string::npos)
      << r.out;
  EXPECT_EQ(TempDir::Read(bad), "1 VERSIONINFO\r\nBEGIN\r\nFILEOS 0x4L\r\n");
  std::string good = dir.Write("good.rc", "1 VERSIONINFO\nFILEVERSION 1,2,3,4\n");
  r = RunCommand(exec + "ResourceFile=" + ShellQuote(good));
  EXPECT_EQ(r.exitCode, 0) << r.out;
  EXPECT_EQ(TempDir::Read(good), "1 VERSIONINFO\nFILEVERSION 9,2,3,4\n");
}

}  // namespace
