// A stand-in for MSTest.exe, which cannot run here: it records how it was called, checks its
// switches as MSTest.exe does and prints a Visual Studio 2008 (or, with QV_MSTEST_VERSION=8,
// 2005) test run's transcript, writing a results file when asked.
//
// Steered through the folder named by QV_STANDIN_DIR:
//   calls.txt    one line per call (see RecordCall.h)
//   tests.txt    the tests of the run, one "Passed NAME" or "Failed NAME" a line (default:
//                one passing test); a line "Summary: TEXT" replaces the summary line
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "RecordCall.h"

namespace {

struct Options {
  std::string container, metadata, results, publish;
  bool nologo = false;
};

const char* const kValueSwitches[] = {
    "/testcontainer:", "/testmetadata:", "/resultsfile:",  "/runconfig:", "/testlist:", "/test:",
    "/publish:",       "/teamproject:",  "/publishbuild:", "/flavor:",    "/platform:"};

// False (with MSTest.exe's message) for a switch it does not know.
bool Parse(int argc, char** argv, Options& o) {
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "/nologo") {
      o.nologo = true;
      continue;
    }
    bool known = false;
    for (std::string sw : kValueSwitches) {
      if (!a.starts_with(sw)) continue;
      known = true;
      std::string v = a.substr(sw.size());
      if (sw == "/testcontainer:") o.container = v;
      if (sw == "/testmetadata:") o.metadata = v;
      if (sw == "/resultsfile:") o.results = v;
      if (sw == "/publish:") o.publish = v;
    }
    if (!known) {
      std::cout << "Invalid switch \"" << a << "\".\nFor switch syntax, type \"MSTest /help\"\n";
      return false;
    }
  }
  return true;
}

void WriteResults(const std::string& path, const std::vector<std::pair<bool, std::string>>& tests,
                  int passed) {
  std::ofstream trx(path, std::ios::binary);
  trx << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
         "<TestRun id=\"4f1a8f5e-2d7c-4b0b-9d8e-1c2a3b4c5d6e\" name=\"builder@BUILDSRV 2008-11-24 "
         "03:10:00\" runUser=\"BUILDSRV\\builder\" "
         "xmlns=\"http://microsoft.com/schemas/VisualStudio/TeamTest/2006\">\r\n"
         "  <ResultSummary outcome=\""
      << (passed == static_cast<int>(tests.size()) ? "Completed" : "Failed")
      << "\">\r\n    <Counters total=\"" << tests.size() << "\" executed=\"" << tests.size()
      << "\" passed=\"" << passed << "\" failed=\"" << tests.size() - passed
      << "\" />\r\n  </ResultSummary>\r\n  <Results>\r\n";
  for (const auto& [ok, name] : tests)
    trx << "    <UnitTestResult testName=\"" << name << "\" outcome=\""
        << (ok ? "Passed" : "Failed") << "\" />\r\n";
  trx << "  </Results>\r\n</TestRun>\r\n";
}

}  // namespace

int main(int argc, char** argv) {
  const char* dirEnv = std::getenv("QV_STANDIN_DIR");
  std::string dir = dirEnv ? dirEnv : ".";
  standin::RecordCall(dir + "/calls.txt", argc, argv);
  Options o;
  const char* version = std::getenv("QV_MSTEST_VERSION");
  bool v8 = version && std::string(version) == "8";
  if (!Parse(argc, argv, o)) return 1;
  if (!o.nologo)
    std::cout << "Microsoft (R) Test Execution Command Line Tool Version "
              << (v8 ? "8.0.50727.42" : "9.0.21022.8")
              << "\nCopyright (c) Microsoft Corporation. All rights reserved.\n";
  std::string container = o.metadata.empty() ? o.container : o.metadata;
  if (container.empty()) {
    std::cout << "Please specify tests to run, or specify the /publish switch to publish "
                 "results.\nFor switch syntax, type \"MSTest /help\"\n";
    return 1;
  }
  if (!std::ifstream(container)) {
    std::cout << "File does not exist: " << container << "\n";
    return 1;
  }
  std::vector<std::pair<bool, std::string>> tests;
  std::string summary;
  std::ifstream list(dir + "/tests.txt");
  for (std::string line; std::getline(list, line);) {
    if (line.rfind("Summary: ", 0) == 0) summary = line.substr(9);
    if (line.rfind("Passed ", 0) == 0 || line.rfind("Failed ", 0) == 0)
      tests.push_back({line[0] == 'P', line.substr(7)});
  }
  if (tests.empty() && !list) tests.push_back({true, "Greeting.Tests.GreeterChecks.Greets"});
  int passed = 0;
  for (const auto& t : tests)
    passed += t.first;
  int failed = static_cast<int>(tests.size()) - passed;
  std::cout << "Loading " << container << "...\nStarting execution...\n\n"
            << "Results               Top Level Tests\n-------               ---------------\n";
  for (const auto& [ok, name] : tests)
    std::cout << (ok ? "Passed" : "Failed") << "                " << name << "\n";
  if (summary.empty()) {
    summary = std::to_string(passed) + "/" + std::to_string(tests.size()) + " test(s) Passed";
    if (failed) summary += ", " + std::to_string(failed) + " Failed";
  }
  std::cout << summary << "\n\nSummary\n-------\n"
            << (failed ? "Test Run Failed.\n" : "Test Run Completed.\n") << "  Passed  " << passed
            << "\n";
  if (failed) std::cout << "  Failed  " << failed << "\n";
  std::cout << "  ---------\n  Total   " << tests.size() << "\n";
  if (!o.results.empty()) {
    WriteResults(o.results, tests, passed);
    std::cout << "Results file:  " << o.results << "\n";
  }
  std::cout << "Run Configuration: Default Run Configuration\n";
  if (!o.publish.empty())
    std::cout << "Waiting to publish...\nPublishing results of test run builder@BUILDSRV "
                 "2008-11-24 03:10:00 to "
              << o.publish << "...\n.....\nPublish completed successfully.\n";
  return failed ? 1 : 0;
}
