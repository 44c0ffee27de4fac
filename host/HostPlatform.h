// The operating-system services the host needs beyond the SDK's, one implementation file per
// platform (HostPlatform-posix.cpp, HostPlatform-win32.cpp).
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace qvhost::platform {

// The host's per-user configuration folder, without a trailing separator:
// $XDG_CONFIG_HOME/quorvex or ~/.config/quorvex (%APPDATA%\Quorvex on Windows).
std::string UserConfigFolder();

// The full path of an executable program: `name` itself when it holds a folder separator,
// otherwise the first match along PATH; empty when there is none.
std::string FindProgram(const std::string& name);

// True when standard output is an interactive terminal (on Windows, a console that takes the
// log's colour sequences, which this switches on).
bool StdoutIsTerminal();

// Reads the whole file at `path`. When it does not exist, creates it (and its folder) readable
// and writable by the current user only, filled with `makeContent()`, and returns that.
// Throws qv::Exception naming the file when it can be neither read nor created.
std::string ReadOrCreatePrivateFile(const std::string& path,
                                    const std::function<std::string()>& makeContent);

// While alive, calls `onInterrupt` on a thread of its own each time the user interrupts the
// host (Ctrl-C) or the system asks it to terminate, with the exit status an interrupted run
// ends with (130 for an interrupt, 143 for a termination request). Restores the previous
// handling on destruction. One watcher at a time.
class TInterruptWatcher {
 public:
  explicit TInterruptWatcher(std::function<void(int exitStatus)> onInterrupt);
  ~TInterruptWatcher();
  TInterruptWatcher(const TInterruptWatcher&) = delete;
  TInterruptWatcher& operator=(const TInterruptWatcher&) = delete;

 private:
  struct Impl;
  std::unique_ptr<Impl> FImpl;
};

}  // namespace qvhost::platform
