#include "HostSession.h"

#include <sstream>

#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "QvSysUtils.h"
#include "support/ErrorOf.h"

using qvhosttest::TestHost;
using qvtest::TempDir;

namespace {

// The log of one Show Environment action run with `assignments` in a fresh session.
std::string ShowEnvironment(const TempDir& dir, const std::vector<std::string>& assignments = {}) {
  TestHost host(dir);
  EXPECT_EQ(host.Session->ExecAction("Show Environment", assignments), qvhost::kExitSuccess);
  return host.Out.str();
}

TEST(THostSession, FillsOptionsFromTheStoreAndTheRegistryAndSavesThemWhenModified) {
  TempDir dir;
  dir.Write("registry.reg",
            "Windows Registry Editor Version 5.00\r\n\r\n"
            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Quorvex\\HostTest]\r\n"
            "\"ToolFolder\"=\"C:\\\\Tools\\\\\"\r\n");
  std::string options = dir.Write("options.xml",
                                  "<QvOptions><Section key='QvHostTest'>"
                                  "<Value name='Level'>3</Value></Section></QvOptions>");
  std::string log = ShowEnvironment(dir);
  EXPECT_NE(log.find("  Tool folder: C:\\Tools\\\n  Level: 3\n"), std::string::npos) << log;
  // Found in the registry, so modified, so saved.
  const std::string saved =
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
  const std::string written = qv::StringReplaceAll(saved, "  ", "\t");
  dir.Write("options.xml", written);
  log = ShowEnvironment(dir);
  EXPECT_NE(log.find("  Tool folder: C:\\Tools\\\n  Level: 3\n"), std::string::npos) << log;
  EXPECT_EQ(TempDir::Read(options), written);
  ShowEnvironment(dir, {"NewLevel=4"});
  EXPECT_EQ(TempDir::Read(options), qv::StringReplaceAll(saved, ">3<", ">4<"));
}

TEST(THostSession, AnswersFrameworkLookupsFromTheCommandLineOrTheFallback) {
  TempDir dir;
  TestHost host(dir, [](qvhost::THostSettings& s) {
    s.Frameworks = {{"V3.5", "/opt/msbuild35/"}};
    s.FallbackFramework = "/opt/launcher";
  });
  for (const char* version : {"v3.5", "3.5", "v2.0", "v4.0"})
    host.Session->ExecAction("Show Environment", {std::string("Framework=") + version});
  std::string frameworks;
  std::istringstream log(host.Out.str());
  for (std::string line; std::getline(log, line);)
    if (line.starts_with("  Framework ")) frameworks += line.substr(2) + "\n";
  // xbuild stands in only for the versions Visual Studio 2005 and 2008 build with.
  EXPECT_EQ(frameworks,
            "Framework v3.5: /opt/msbuild35\n"
            "Framework 3.5: /opt/msbuild35\n"
            "Framework v2.0: /opt/launcher\n"
            "Framework v4.0 is not installed\n");

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

TEST(THostSession, AssignmentsSetValuesAndAddLines) {
  TempDir dir;
  TestHost host(dir);
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
      {"Text+=more", "Text", "Text+= adds a line to a string list, and Text is not one"},
      {"Colour+=red", "Text", "Unknown property \"Colour\" of TQvTestLogAction"},
      {"=x", "Text", "Expected NAME=VALUE or NAME+=LINE, not \"=x\""},
      {"Text", "Text", "Expected NAME=VALUE or NAME+=LINE, not \"Text\""},
  };
  for (const auto& c : cases) {
    std::string error = qvtest::ErrorOf([&] { qvhost::ApplyAssignment(*action, c.assignment); });
    EXPECT_EQ(error == "(no exception)" ? action->GetPropValue(c.property) : error, c.result)
        << c.assignment;
  }
}

}  // namespace
