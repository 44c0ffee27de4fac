// What the host's tests share: a host session over the package of test actions, runs of the
// qvhost executable, and logs made comparable.
#pragma once

#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "HostSession.h"
#include "support/RunCommand.h"
#include "support/TempDir.h"

namespace qvhosttest {

// A session with only the test package loaded, its options store, key file and registry
// stand-in in `dir` (options.xml, key, registry.reg when present), logging text without colour
// into Out, and a clock that stands still (every action takes "0.000 s").
struct TestHost {
  explicit TestHost(const qvtest::TempDir& dir,
                    const std::function<void(qvhost::THostSettings&)>& adjust = {});
  std::ostringstream Out;
  std::unique_ptr<qvhost::THostSession> Session;
};

// The command line that runs qvhost with only the test package and `args`.
std::string QvhostCommand(const std::string& args);
// `command` run with `dir` as working folder, qvhost's per-user folder inside it, NO_COLOR set,
// and `env` (NAME=VALUE assignments separated by blanks) added to its environment.
qvtest::CommandResult RunInDir(const qvtest::TempDir& dir, const std::string& command,
                               const std::string& env = "");
// RunInDir of QvhostCommand(args).
qvtest::CommandResult RunQvhost(const qvtest::TempDir& dir, const std::string& args,
                                const std::string& env = "");

// The log with every elapsed time written as T: "in T s", "time":T and "seconds":T.
std::string WithoutTimes(std::string_view log);

}  // namespace qvhosttest
