// How the stand-ins record a call: one line of calls.txt holding the working folder, then each
// argument, separated by tabs (tabs, newlines and backslashes in them escaped as \t \n \\).
#pragma once

#ifdef _WIN32
#include <direct.h>
#else
#include <unistd.h>
#endif

#include <fstream>
#include <string>

namespace standin {

inline std::string Escape(const std::string& s) {
  std::string r;
  for (char c : s) {
    if (c == '\t')
      r += "\\t";
    else if (c == '\n')
      r += "\\n";
    else if (c == '\\')
      r += "\\\\";
    else
      r += c;
  }
  return r;
}

inline void RecordCall(const std::string& callsFile, int argc, char** argv) {
  char cwd[4096] = {};
#ifdef _WIN32
  if (!_getcwd(cwd, sizeof cwd - 1)) cwd[0] = '?';
#else
  if (!getcwd(cwd, sizeof cwd - 1)) cwd[0] = '?';
#endif
  std::string line = Escape(cwd);
  for (int i = 1; i < argc; ++i)
    line += "\t" + Escape(argv[i]);
  std::ofstream(callsFile, std::ios::app | std::ios::binary) << line << "\n";
}

}  // namespace standin
