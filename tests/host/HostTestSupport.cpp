#include "HostTestSupport.h"

#include <regex>

#include "QvPlatform.h"

namespace qvhosttest {

using qvtest::ShellQuote;

TestHost::TestHost(const qvtest::TempDir& dir,
                   const std::function<void(qvhost::THostSettings&)>& adjust) {
  qvhost::THostSettings settings;
  settings.DefaultPackages = false;
  settings.Packages = {QV_HOST_TEST_PACKAGE};
  settings.OptionsFile = dir.File("options.xml");
  settings.KeyFile = dir.File("key");
  if (qv::platform::FileExists(dir.File("registry.reg")))
    settings.RegistryFile = dir.File("registry.reg");
  if (adjust) adjust(settings);
  Session = std::make_unique<qvhost::THostSession>(settings, Out, [] { return 0.0; });
}

std::string QvhostCommand(const std::string& args) {
  return ShellQuote(QV_QVHOST) + " --no-default-packages --package " +
         ShellQuote(QV_HOST_TEST_PACKAGE) + " " + args;
}

// The per-user folder is XDG_CONFIG_HOME's on POSIX, APPDATA's on Windows.
qvtest::CommandResult RunInDir(const qvtest::TempDir& dir, const std::string& command,
                               const std::string& env) {
  std::vector<std::string> environment = {"QV_REGISTRY", "QV_KEY_FILE", "NO_COLOR=1",
                                          "XDG_CONFIG_HOME=" + dir.File("config"),
                                          "APPDATA=" + dir.File("config")};
  std::istringstream assignments(env);
  for (std::string assignment; assignments >> assignment;)
    environment.push_back(assignment);
  return qvtest::RunCommand(command, dir.Path(), environment);
}

qvtest::CommandResult RunQvhost(const qvtest::TempDir& dir, const std::string& args,
                                const std::string& env) {
  return RunInDir(dir, QvhostCommand(args), env);
}

std::string WithoutTimes(std::string_view log) {
  std::string out = std::regex_replace(std::string(log), std::regex(" in [0-9.]+ s"), " in T s");
  return std::regex_replace(out, std::regex("(\"time\"|\"seconds\"):[0-9.]+"), "$1:T");
}

}  // namespace qvhosttest
