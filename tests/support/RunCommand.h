// Runs a command line through the host's process runner and captures what it printed and its
// exit status; watches other processes end. On POSIX the command line goes to the shell; on
// Windows it is a program and its arguments (no shell), and the output's CR LF line ends come
// back as LF.
#pragma once

#include <string>
#include <vector>

namespace qvtest {

struct CommandResult {
  int exitCode;  // 128 + the signal's number when a signal ended it
  std::string out, err;
};

// `command` (quote arguments with ShellQuote) run in `folder` (empty: this process's) with this
// process's environment changed by `environment`: each entry NAME=VALUE sets a variable, a bare
// NAME removes one.
CommandResult RunCommand(const std::string& command, const std::string& folder = "",
                         const std::vector<std::string>& environment = {});
std::string ShellQuote(const std::string& arg);

// Sets this process's environment variable `name`, or removes it when `value` is null.
void SetEnv(const std::string& name, const char* value);

// Whether process `pid` ends (is gone, or left a zombie) within `seconds`.
bool ProcessEnds(int pid, double seconds = 3);

}  // namespace qvtest
