#include "RunCommand.h"

#include <sys/wait.h>

#include <cstdlib>

#include "TempDir.h"

namespace qvtest {

std::string ShellQuote(const std::string& arg) {
  std::string r = "'";
  for (char c : arg)
    r += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return r + "'";
}

CommandResult RunCommand(const std::string& command) {
  TempDir dir;
  std::string out = dir.File("out"), err = dir.File("err");
  int status = std::system(
      (command + " >" + ShellQuote(out) + " 2>" + ShellQuote(err) + " </dev/null").c_str());
  CommandResult r{WIFEXITED(status) ? WEXITSTATUS(status) : -1, TempDir::Read(out),
                  TempDir::Read(err)};
  return r;
}

}  // namespace qvtest
