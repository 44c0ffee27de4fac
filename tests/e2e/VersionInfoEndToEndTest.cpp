// The Win32 Version Info Updater run through qvhost exec, its property set given on the
// command line. (The demo's first step runs it from a project file's property set; see
// BuildEndToEndTest.)
#include <gtest/gtest.h>

#include "support/RunCommand.h"
#include "support/TempDir.h"

using qvtest::RunCommand;
using qvtest::ShellQuote;
using qvtest::TempDir;

namespace {

TEST(VersionInfoEndToEnd, CommandLineRunAndAMalformedScript) {
  TempDir dir;
  std::string exec = ShellQuote(qvtest::NativePath(QV_QVHOST)) + " --no-color --options " +
                     ShellQuote(dir.File("o.xml")) +
                     " exec \"Win32 Version Info Updater\" PropertySetName=W " +
                     "--property-value W.MajorVersion=9 PropertiesToUpdate+=MajorVersion=True ";
  std::string bad = dir.Write("bad.rc", "1 VERSIONINFO\r\nBEGIN\r\nFILEOS 0x4L\r\n");
  auto r = RunCommand(exec + "ResourceFile=" + ShellQuote(bad));
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_NE(r.out.find("Error Parsing File : Unexpected FILEOS on line : 2"), std::string::npos)
      << r.out;
  EXPECT_EQ(TempDir::Read(bad), "1 VERSIONINFO\r\nBEGIN\r\nFILEOS 0x4L\r\n");
  // LF line ends stay LF.
  std::string good = dir.Write("good.rc", "1 VERSIONINFO\nFILEVERSION 1,2,3,4\n");
  r = RunCommand(exec + "ResourceFile=" + ShellQuote(good));
  EXPECT_EQ(r.exitCode, 0) << r.out;
  EXPECT_EQ(TempDir::Read(good), "1 VERSIONINFO\nFILEVERSION 9,2,3,4\n");
}

}  // namespace
