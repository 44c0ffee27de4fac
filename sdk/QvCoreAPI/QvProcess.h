// Child processes as actions see them: the runner interface, its output sink, the
// terminate event and the command-line builder.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "QvInterfaces.h"

namespace qv {

// An unnamed auto-reset event: Signal from any thread; a successful wait resets it.
class TAutoResetEvent {
 public:
  void Signal();
  // Waits up to `timeout`; true (and reset) when it was signalled.
  bool WaitFor(std::chrono::milliseconds timeout);
  // True (and reset) when signalled now; never blocks.
  bool TryWait();

 private:
  std::mutex FMutex;
  std::condition_variable FCond;
  bool FSignalled = false;
};

struct IQvProcess;

// Receives a child's output as it arrives, on the thread that runs the process.
class IQvProcessOutputHandler {
 public:
  virtual void OnStdOutData(IQvProcess* process, std::string_view chunk) = 0;
  virtual void OnStdErrData(IQvProcess* process, std::string_view chunk) = 0;

 protected:
  ~IQvProcessOutputHandler() = default;
};

// Turns the reads of one output pipe into chunks that end at a line end, as hosts hand output
// to IQvProcessOutputHandler: the unfinished tail of a read waits for the next read (a line
// written in pieces, or a CR LF split between reads, arrives whole); a complete line is never
// held back, and a chunk may hold several lines.
class TLineAssembler {
 public:
  using TSink = std::function<void(std::string_view chunk)>;
  // Hands `sink` the whole lines that `read` completes, if any.
  void Feed(std::string_view read, const TSink& sink);
  // Hands `sink` the unfinished last line, if any; call once the stream has ended.
  void Finish(const TSink& sink);

 private:
  std::string FTail;
};

// Exit code a process reports when it was stopped through its terminate event.
inline constexpr int kTerminatedExitCode = 999;

// One child process, configured and then run to its end.
struct IQvProcess : virtual IInterface {
  QV_INTERFACE_ID("{6B0E2C61-3F0A-4D52-9E5B-8C1A7D2F4E90}");
  virtual void SetExecutable(const std::string& path) = 0;
  // The parameters as one Windows-style command-line text (see SplitCommandLine).
  virtual void SetParameters(const std::string& params) = 0;
  // Deliver standard output and error to the handler (otherwise they are discarded).
  virtual void SetCaptureOutput(bool capture) = 0;
  // Run without a console window or terminal.
  virtual void SetHideWindow(bool hide) = 0;
  // Working folder; empty keeps the host's.
  virtual void SetStartingDir(const std::string& dir) = 0;
  // When signalled, the child and its children are stopped and Run returns 999.
  virtual void SetTerminateEvent(TAutoResetEvent* event) = 0;
  virtual void SetOutputHandler(IQvProcessOutputHandler* handler) = 0;
  // Starts the child, delivers its output, waits for its end and returns its exit code.
  // Throws Exception when the child cannot be started.
  virtual int Run() = 0;
  virtual int GetExitCode() const = 0;
  // True when the child ended by itself (not killed by a signal or crashed).
  virtual bool GetCleanExit() const = 0;
};

// Argument options (a set: combine with |).
enum : int {
  caoQuoteValue = 1,   // quote the value when it holds blanks or is empty
  caoNoSeparator = 2,  // write the value directly behind the switch
  caoJoinQuoted = 4,   // both: switch immediately followed by the value, quoted if needed
};

struct IArgument : virtual IInterface {
  QV_INTERFACE_ID("{0C3D7A52-91B4-4F6E-A2D8-5E7F1B3C9A14}");
  virtual std::string GetSwitch() const = 0;
  virtual std::string GetValue() const = 0;
  virtual int GetOptions() const = 0;
  // The argument as it stands in the command line.
  virtual std::string GetText() const = 0;
};

// Builds a Windows-style command line one argument at a time.
struct ICommandLineBuilder : virtual IInterface {
  QV_INTERFACE_ID("{A4F19E07-5C2B-4D83-B6E1-0F9D2C7A3B58}");
  // Prepares the builder for a new command line: drops the arguments added so far.
  virtual void Reset(int options) = 0;
  virtual IntfPtr<IArgument> AddArgument(std::string_view switchText, std::string_view value,
                                         int options) = 0;
  virtual int GetCount() const = 0;
  // The arguments joined by single blanks.
  virtual std::string GetCommandLine() const = 0;
};

// Creates the SDK's command-line builder.
IntfPtr<ICommandLineBuilder> NewCommandLineBuilder();

// Quotes one argument for a Windows command line when it holds blanks, tabs or quotes or
// is empty, escaping quotes and the backslashes before them as the C runtime expects.
std::string QuoteCommandLineArg(std::string_view arg);

// Splits a Windows command-line text into arguments by the Microsoft C runtime's rules:
// blanks and tabs separate; double quotes group and are removed; 2n backslashes before a
// quote give n backslashes, 2n+1 give n and a literal quote; "" inside quotes is a quote.
std::vector<std::string> SplitCommandLine(std::string_view text);

}  // namespace qv
