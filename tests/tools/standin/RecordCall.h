// How the stand-ins record a call: one line of calls.txt holding the working folder, then each
// argument, separated by tabs (tabs, newlines and backslashes in them escaped as \t \n \\).
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace standin {

inline std::string Escape(const std::string& s) {
  std::string r;
  for (char c : s)
    r += c == '\t' ? "\\t" : c == '\n' ? "\\n" : c == '\\' ? "\\\\" : std::string(1, c);
  return r;
}

inline void RecordCall(const std::string& callsFile, int argc, char** argv) {
  std::error_code ec;
  std::string line = Escape(std::filesystem::current_path(ec).string());
  for (int i = 1; i < argc; ++i)
    line += "\t" + Escape(argv[i]);
  std::ofstream(callsFile, std::ios::app | std::ios::binary) << line << "\n";
}

// The bytes of a file; false when it cannot be read.
inline bool ReadFile(const std::string& path, std::string& out) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  out = bytes.str();
  return static_cast<bool>(in);
}

}  // namespace standin
