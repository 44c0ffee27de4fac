// The host's process runner: the child processes actions start through their context.
#pragma once

#include <chrono>
#include <string>

#include "QvProcess.h"

namespace qvhost {

// One child process (see qv::IQvProcess). The child runs in its working folder without a
// terminal or console and with no input; its parameters text is split by the Windows C
// runtime's rules. Standard output and error reach the handler separately, chunk by chunk as
// they arrive, on the thread that called Run. When the terminate event is signalled the child
// and everything it started are stopped and Run returns 999. Run is implemented per platform
// (ProcessRunner-posix.cpp, ProcessRunner-win32.cpp).
class THostProcess : public qv::TInterfacedObject, public qv::IQvProcess {
 public:
  void SetExecutable(const std::string& path) override { FExecutable = path; }
  void SetParameters(const std::string& params) override { FParameters = params; }
  void SetCaptureOutput(bool capture) override { FCapture = capture; }
  void SetHideWindow(bool hide) override { FHideWindow = hide; }
  void SetStartingDir(const std::string& dir) override { FStartingDir = dir; }
  void SetTerminateEvent(qv::TAutoResetEvent* event) override { FTerminate = event; }
  void SetOutputHandler(qv::IQvProcessOutputHandler* handler) override { FHandler = handler; }
  // Throws qv::Exception "Cannot run "EXE" : REASON" when the child cannot be started.
  int Run() override;
  int GetExitCode() const override { return FExitCode; }
  const std::string& StartingDir() const { return FStartingDir; }
  bool GetCleanExit() const override { return FCleanExit; }
  // On POSIX: how long a child asked to terminate has between SIGTERM and SIGKILL, and how
  // long, once the child has ended, descendants that hold its pipes open and write nothing
  // are waited for (one second each unless set). Windows has neither period.
  void SetGracePeriods(std::chrono::milliseconds terminate, std::chrono::milliseconds drain) {
    FTerminateGrace = terminate;
    FDrainGrace = drain;
  }

 protected:
  void* GetInterface(const qv::TGUID& iid) override;
  // Hands output to the handler (when output is captured and a handler is set) in chunks
  // that end at a line end; the unfinished last line waits for the next chunk.
  void Deliver(bool stdErr, std::string_view chunk);
  // Hands over the unfinished last lines; call once the streams have ended.
  void FlushTails();
  bool TerminateRequested() { return FTerminate && FTerminate->TryWait(); }

  std::string FExecutable, FParameters, FStartingDir;
  bool FCapture = false;
  bool FHideWindow = false;
  qv::TAutoResetEvent* FTerminate = nullptr;
  qv::IQvProcessOutputHandler* FHandler = nullptr;
  int FExitCode = 0;
  bool FCleanExit = false;
  std::chrono::milliseconds FTerminateGrace{1000}, FDrainGrace{1000};
  qv::TLineAssembler FLines[2];  // standard output's and error's
};

// A new process object for an action.
qv::IntfPtr<qv::IQvProcess> NewHostProcess();

}  // namespace qvhost
