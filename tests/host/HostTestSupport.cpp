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

#ifdef _WIN32
// No shell on Windows: the folder and the environment go to the process directly, and the
// per-user folder is APPDATA's.
std::string QvhostCommand(const qvtest::TempDir&, const std::string& args, const std::string&) {
  return ShellQuote(QV_QVHOST) + " --no-default-packages --package " +
         ShellQuote(QV_HOST_TEST_PACKAGE) + " " + args;
}

qvtest::CommandResult RunQvhost(const qvtest::TempDir& dir, const std::string& args,
                                const std::string& env) {
  std::vector<std::string> environment = {"QV_REGISTRY", "QV_KEY_FILE", "NO_COLOR=1",
                                          "APPDATA=" + dir.File("config")};
  std::istringstream assignments(env);
  for (std::string assignment; assignments >> assignment;)
    environment.push_back(assignment);
  return qvtest::RunCommand(QvhostCommand(dir, args, env), dir.Path(), environment);
}
#else
std::string QvhostCommand(const qvtest::TempDir& dir, const std::string& args,
                          const std::string& env) {
  return "cd " + ShellQuote(dir.Path()) + " && exec env" +
         " -u QV_REGISTRY -u QV_KEY_FILE XDG_CONFIG_HOME=" + ShellQuote(dir.File("config")) +
         " NO_COLOR=1 " + env + " " + ShellQuote(QV_QVHOST) + " --no-default-packages --package " +
         ShellQuote(QV_HOST_TEST_PACKAGE) + " " + args;
}

qvtest::CommandResult RunQvhost(const qvtest::TempDir& dir, const std::string& args,
                                const std::string& env) {
  return qvtest::RunCommand(QvhostCommand(dir, args, env));
}
#endif

std::string WithoutTimes(std::string_view log) {
  std::string out = std::regex_replace(std::string(log), std::regex(" in [0-9.]+ s"), " in T s");
  return std::regex_replace(out, std::regex("(\"time\"|\"seconds\"):[0-9.]+"), "$1:T");
}

}  // namespace qvhosttest
