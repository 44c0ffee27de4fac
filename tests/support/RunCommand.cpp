#include "RunCommand.h"

#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <thread>

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

bool ProcessEnds(int pid, double seconds) {
  auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  for (;;) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    std::string stat((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    size_t close = stat.rfind(')');  // the state follows the parenthesised command name
    if (close == std::string::npos || stat.substr(close + 2, 1) == "Z") return true;
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

}  // namespace qvtest
