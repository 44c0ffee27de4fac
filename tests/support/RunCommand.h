// Runs a command line through the shell and captures what it printed and its exit status;
// watches other processes end. On Windows the command line is a program and its arguments
// (no shell), and the output's CR LF line ends come back as LF.
#pragma once

#include <string>
#include <vector>

namespace qvtest {

struct CommandResult {
  int exitCode;  // -1 when it did not exit normally
  std::string out, err;
};

// `command` is a shell command line; quote arguments with ShellQuote.
CommandResult RunCommand(const std::string& command);
std::string ShellQuote(const std::string& arg);
#ifdef _WIN32
// `command` run in `folder` with this process's environment changed by `environment`: each
// entry NAME=VALUE sets a variable, a bare NAME removes one.
CommandResult RunCommand(const std::string& command, const std::string& folder,
                         const std::vector<std::string>& environment);
#endif

// Sets this process's environment variable `name`, or removes it when `value` is null.
void SetEnv(const std::string& name, const char* value);

// Whether process `pid` ends (is gone, or left a zombie) within `seconds`.
bool ProcessEnds(int pid, double seconds = 3);

}  // namespace qvtest
