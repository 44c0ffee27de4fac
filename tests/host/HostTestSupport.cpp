#include "HostTestSupport.h"

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

std::string WithoutTimes(std::string_view log) {
  std::string out;
  size_t pos = 0;
  while (pos < log.size()) {
    size_t at = log.find(" in ", pos);
    if (at == std::string_view::npos) break;
    size_t end = at + 4;
    while (end < log.size() && (isdigit(static_cast<unsigned char>(log[end])) || log[end] == '.'))
      ++end;
    bool time = end > at + 4 && log.substr(end, 2) == " s";
    out.append(log.substr(pos, at + 4 - pos));
    out += time ? "T" : std::string(log.substr(at + 4, end - at - 4));
    pos = end;
  }
  out.append(log.substr(pos));
  return out;
}

}  // namespace qvhosttest
