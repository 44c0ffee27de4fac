// Runs a command line through the shell and captures what it printed and its exit status.
#pragma once

#include <string>

namespace qvtest {

struct CommandResult {
  int exitCode;  // -1 when it did not exit normally
  std::string out, err;
};

// `command` is a shell command line; quote arguments with ShellQuote.
CommandResult RunCommand(const std::string& command);
std::string ShellQuote(const std::string& arg);

}  // namespace qvtest
