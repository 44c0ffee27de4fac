#include "HostSession.h"

#ifdef _WIN32
#include "QvWin32.h"
#else
#include <sys/stat.h>
#endif

#include <cstdint>

#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "QvSysUtils.h"
#include "support/ErrorOf.h"

using qvhosttest::TestHost;
using qvtest::ErrorOf;
using qvtest::TempDir;

namespace {

// Which file `path` names: a file written anew in its place is another.
uint64_t FileId(const std::string& path) {
#ifdef _WIN32
  qv::win32::THandle file(CreateFileW(qv::win32::Wide(path).c_str(), 0,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
  BY_HANDLE_FILE_INFORMATION info{};
  GetFileInformationByHandle(file.Get(), &info);
  return uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow;
#else
  struct stat st {};
  stat(path.c_str(), &st);
  return st.st_ino;
#endif
}

const char* kRegistry =
    "Windows Registry Editor Version 5.00\r\n\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Quorvex\\HostTest]\r\n"
    "\"ToolFolder\"=\"C:\\\\Tools\\\\\"\r\n";

TEST(THostSession, FillsOptionsFromTheStoreAndTheRegistryAndSavesThemWhenModified) {
  TempDir dir;
  dir.Write("registry.reg", kRegistry);
  std::string options = dir.Write("options.xml",
                                  "<QvOptions><Section key='QvHostTest'>"
                                  "<Value name='Level'>3</Value></Section></QvOptions>");
  {
    TestHost host(dir);
    EXPECT_EQ(host.Session->ExecAction("Show Environment", {}), qvhost::kExitSuccess);
    EXPECT_NE(host.Out.str().find("  Tool folder: C:\\Tools\\\n  Level: 3\n"), std::string::npos)
        << host.Out.str();
  }
  // Found in the registry, so modified, so saved.
  std::string saved =
      "<?xml version=\"1.0\"?>\n"
      "<QvOptions>\n"
      "  <Section key=\"QvHostTest\">\n"
      "    <Value name=\"Level\" type=\"integer\">3</Value>\n"
      "    <Value name=\"ToolFolder\" type=\"string\">C:\\Tools\\</Value>\n"
      "  </Section>\n"
      "</QvOptions>\n";
  EXPECT_EQ(TempDir::Read(options), saved);

  // Now the store has a folder: the registry is not asked, nothing is modified or written.
  dir.Write("registry.reg", "REGEDIT4\r\n");
  uint64_t before = FileId(options);
  {
    TestHost host(dir);
    EXPECT_EQ(host.Session->ExecAction("TQvTestEnvironmentAction", {}), qvhost::kExitSuccess);
    EXPECT_NE(host.Out.str().find("Tool folder: C:\\Tools\\\n"), std::string::npos);
  }
  EXPECT_EQ(FileId(options), before);
  {
    TestHost host(dir);
    EXPECT_EQ(host.Session->ExecAction("Show Environment", {"NewLevel=4"}), qvhost::kExitSuccess);
  }
  EXPECT_EQ(TempDir::Read(options), qv::StringReplaceAll(saved, ">3<", ">4<"));
}

TEST(THostSession, AnswersFrameworkLookupsFromTheCommandLineOrTheFallback) {
  TempDir dir;
  auto shown = [&](const std::function<void(qvhost::THostSettings&)>& adjust, const char* version) {
    TestHost host(dir, adjust);
    host.Session->ExecAction("Show Environment", {std::string("Framework=") + version});
    std::string out = host.Out.str();
    size_t at = out.find("  Framework ");
    return at == std::string::npos ? out : out.substr(at + 2, out.find('\n', at) - at - 2);
  };
  auto named = [](qvhost::THostSettings& s) {
    s.Frameworks = {{"v2.0", "/opt/old"}, {"V3.5", "/opt/msbuild35/"}};
  };
  EXPECT_EQ(shown(named, "v3.5"), "Framework v3.5: /opt/msbuild35");
  EXPECT_EQ(shown(named, "3.5"), "Framework 3.5: /opt/msbuild35");
  EXPECT_EQ(shown(named, "v4.0"), "Framework v4.0 is not installed");
  auto fallback = [](qvhost::THostSettings& s) { s.FallbackFramework = "/opt/launcher"; };
  EXPECT_EQ(shown(fallback, "v3.5"), "Framework v3.5: /opt/launcher");
  EXPECT_EQ(shown(fallback, "v2.0"), "Framework v2.0: /opt/launcher");
  EXPECT_EQ(shown(fallback, "v4.0"), "Framework v4.0 is not installed")
      << "xbuild stands in only for the versions Visual Studio 2005 and 2008 build with";

  // Auto: dotnet's launcher where dotnet is, else xbuild's; a chosen one wherever it is.
  using qvhost::TMSBuildEngine;
  auto folder = [&dir](TMSBuildEngine e) { return qvhost::MSBuildLauncherFolder(dir.Path(), e); };
  const char* aProgram = QV_QVHOST;
  qvtest::SetEnv("QV_XBUILD", aProgram);
  qvtest::SetEnv("QV_DOTNET", "/nonexistent/dotnet");
  EXPECT_EQ(folder(TMSBuildEngine::Auto), "");
  dir.Write("mono/MSBuild.exe", "#!/bin/sh\n");
  dir.Write("dotnet/MSBuild.exe", "#!/bin/sh\n");
  EXPECT_EQ(folder(TMSBuildEngine::Auto), dir.File("mono"));
  EXPECT_EQ(folder(TMSBuildEngine::DotNet), dir.File("dotnet"));
  qvtest::SetEnv("QV_DOTNET", aProgram);
  EXPECT_EQ(folder(TMSBuildEngine::Auto), dir.File("dotnet"));
  EXPECT_EQ(folder(TMSBuildEngine::XBuild), dir.File("mono"));
  qvtest::SetEnv("QV_DOTNET", "/nonexistent/dotnet");
  qvtest::SetEnv("QV_XBUILD", "/nonexistent/xbuild");
  EXPECT_EQ(folder(TMSBuildEngine::Auto), "");
  qvtest::SetEnv("QV_XBUILD", nullptr);
  qvtest::SetEnv("QV_DOTNET", nullptr);
}

TEST(THostSession, ExecRunsOneActionByCaptionOrClassNameWithAssignments) {
  TempDir dir;
  TestHost host(dir);
  EXPECT_EQ(host.Session->ExecAction("FAIL", {"Mode=2", "Message=no"}), qvhost::kExitBuildFailed);
  EXPECT_NE(host.Out.str().find("    [error] no\n"), std::string::npos) << host.Out.str();
  EXPECT_EQ(ErrorOf([&] { host.Session->ExecAction("Nothing Like It", {}); }),
            "Unknown action type \"Nothing Like It\" (qvhost actions lists the types)");
  std::unique_ptr<qv::TCustomQvAction> action(
      host.Session->Services().FindAction("log messages")->Class->Create());
  struct Case {
    const char* assignment;
    const char* property;
    const char* result;  // the property's value afterwards, or the error
  } cases[] = {
      {"Details=one\\ntwo", "Details", "one\r\ntwo\r\n"},
      {"Details+=three", "Details", "one\r\ntwo\r\nthree\r\n"},
      {"Text=a\\nb = c", "Text", "a\\nb = c"},
      {" Warnings =7", "Warnings", "7"},
      {"Warnings=many", "Warnings", "Invalid value 'many' for property \"Warnings\""},
      {"Text+=more", "Text", "Text+= adds a line to a string list, and Text is not one"},
      {"Colour=red", "Text", "Unknown property \"Colour\" of TQvTestLogAction"},
      {"Colour+=red", "Text", "Unknown property \"Colour\" of TQvTestLogAction"},
      {"=x", "Text", "Expected NAME=VALUE or NAME+=LINE, not \"=x\""},
      {"Text", "Text", "Expected NAME=VALUE or NAME+=LINE, not \"Text\""},
  };
  for (const auto& c : cases) {
    std::string error = ErrorOf([&] { qvhost::ApplyAssignment(*action, c.assignment); });
    EXPECT_EQ(error == "(no exception)" ? action->GetPropValue(c.property) : error, c.result)
        << c.assignment;
  }
}

}  // namespace
