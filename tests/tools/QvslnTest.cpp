#include <gtest/gtest.h>

#include <filesystem>

#include "QvUtils.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"

using qvtest::RunCommand;
using qvtest::ShellQuote;
using qvtest::TempDir;

namespace {

const std::string kQvsln = ShellQuote(qvtest::NativePath(QV_QVSLN));

// A copy of fixtures/qvsln: two projects where the first depends on the second through a
// global section only, one of them a Visual C++ project with a version script. The JSON
// model keeps the file's order; --resort applies the global dependency.
TEST(Qvsln, JsonModelAndResortedReport) {
  TempDir dir;
  std::filesystem::copy(QV_FIXTURES_DIR "/qvsln", dir.Path(),
                        std::filesystem::copy_options::recursive);
  std::string sln = dir.File("S.sln"), rc = qv::JsonString(dir.File("Native/Native.rc"));
  auto r = RunCommand(kQvsln + " --json " + ShellQuote(sln));
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_EQ(r.out,
            "{\"fileName\":" + qv::JsonString(sln) +
                ",\"version\":\"vs2003\",\"configurations\":[\"Debug\"],\"projects\":["
                "{\"name\":\"Native\",\"fileName\":\"Native\\\\Native.vcproj\","
                "\"projectTypeGUID\":\"{8BC9CEB8-8B4A-11D0-8D11-00A0C983F5F7}\","
                "\"projectGUID\":\"{11111111-1111-1111-1111-111111111111}\",\"isVCProject\":true,"
                "\"dependencies\":[\"{22222222-2222-2222-2222-222222222222}\"],"
                "\"resourceFiles\":[" +
                rc + "],\"versionInfoFile\":" + rc +
                ",\"configurations\":[]},"
                "{\"name\":\"Lib\",\"fileName\":\"Lib\\\\Lib.csproj\","
                "\"projectTypeGUID\":\"{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}\","
                "\"projectGUID\":\"{22222222-2222-2222-2222-222222222222}\",\"isVCProject\":false,"
                "\"dependencies\":[],\"resourceFiles\":[],\"versionInfoFile\":\"\","
                "\"configurations\":[{\"solutionConfiguration\":\"Debug\","
                "\"projectConfiguration\":\"Debug|.NET\",\"active\":false}]}]}\n");
  r = RunCommand(kQvsln + " --resort " + ShellQuote(sln));
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_NE(r.out.find("  1. Lib  {22222222-2222-2222-2222-222222222222}\n"), std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("depends on: {22222222-2222-2222-2222-222222222222} (Lib)"),
            std::string::npos);
}

TEST(Qvsln, FailuresAndBadUsage) {
  TempDir dir;
  std::string bad = dir.Write("bad.sln", "not a solution\r\n");
  auto r = RunCommand(kQvsln + " " + ShellQuote(bad));
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_EQ(r.err, "qvsln: Invalid Visual Studio Solution Header : not a solution\n");
  EXPECT_EQ(r.out, "");
  r = RunCommand(kQvsln + " " + ShellQuote(dir.File("missing.sln")));
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_EQ(r.err.rfind("qvsln: Cannot open file \"" + dir.File("missing.sln") + "\".", 0), 0u);
  EXPECT_EQ(RunCommand(kQvsln).exitCode, 2);
  EXPECT_EQ(RunCommand(kQvsln + " --bogus x.sln").exitCode, 2);
  EXPECT_EQ(RunCommand(kQvsln + " --help").exitCode, 0);
}

}  // namespace
