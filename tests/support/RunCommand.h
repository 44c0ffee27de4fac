// Runs a command line through the shell and captures what it printed and its exit status;
// watches other processes end. On Windows the command line is a program and its arguments
// (no shell), and the output's CR LF line ends come back as LF.
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

// Whether process `pid` ends (is gone, or left a zombie) within `seconds`.
bool ProcessEnds(int pid, double seconds = 3);

}  // namespace qvtest
