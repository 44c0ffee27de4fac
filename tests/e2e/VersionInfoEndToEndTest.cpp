// The Win32 Version Info Updater run through qvhost exec, its property set given on the
// command line. (The demo's first step runs it from a project file's property set; see
// BuildEndToEndTest. A malformed script's message and the script left alone are the updater's
// suite's, the exit status of a failed action the host's.)
#include <gtest/gtest.h>

#include "support/RunCommand.h"
#include "support/TempDir.h"

using qvtest::ShellQuote;
using qvtest::TempDir;

namespace {

// LF line ends stay LF.
TEST(VersionInfoEndToEnd, CommandLineRun) {
  TempDir dir;
  std::string script = dir.Write("good.rc", "1 VERSIONINFO\nFILEVERSION 1,2,3,4\n");
  auto r = qvtest::RunCommand(
      ShellQuote(qvtest::NativePath(QV_QVHOST)) + " --no-color --options " +
      ShellQuote(dir.File("o.xml")) + " exec \"Win32 Version Info Updater\" PropertySetName=W " +
      "--property-value W.MajorVersion=9 " +
      "PropertiesToUpdate+=MajorVersion=True ResourceFile=" + ShellQuote(script));
  EXPECT_EQ(r.exitCode, 0) << r.out;
  EXPECT_EQ(TempDir::Read(script), "1 VERSIONINFO\nFILEVERSION 9,2,3,4\n");
}

}  // namespace
