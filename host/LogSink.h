// The build log: what actions report, as indented text for people or as JSON lines for
// programs, with the errors and warnings recognised, recapped at the end and, for CI
// servers, annotated.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "CiAnnotations.h"
#include "Diagnostics.h"
#include "QvActions.h"

namespace qvhost {

using qv::TStatusTag;

enum class TLogFormat { Text, JsonLines };

// A metric summed over the run, kept in the order it was first sent.
struct TMetricTotal {
  std::string Group, Name;
  int64_t Value;
};

// How a run ended, for the closing summary.
struct TRunSummary {
  bool Success = true;
  int Actions = 0, Failed = 0;  // actions started, and how many of them failed
  double Seconds = 0;
  bool Saved = true;    // false: the run succeeded but what it changed could not be saved
  int Interrupted = 0;  // the exit status of an interrupted run (130, 143); 0: not interrupted
  int NotStarted = 0;   // actions an interrupted run did not start
};

// Receives the events of a run in order, keeps track of the open message groups and actions,
// and writes each event out through a buffer that is flushed at least every 100 ms, at the
// end of every group and action, and when the log ends.
class TLogSink {
 public:
  using TClock = std::function<double()>;  // seconds since any fixed moment

  virtual ~TLogSink();

  // Makes now the moment event times count from.
  void StartRun();
  // Logs `text`; its error and warning lines in canonical form are recorded as diagnostics,
  // relative files resolved against `baseDir` (the folder the reporting tool ran in).
  void Message(std::string_view text, TStatusTag tag, std::string_view baseDir = {});
  void GroupStart(std::string_view title, int groupType, TStatusTag tag);
  // Closes the innermost group with `tag`, or with the status it was opened with; does
  // nothing when no group is open.
  void GroupEnd(std::optional<TStatusTag> tag);
  // Closes groups with `tag` until only `depth` are open (for actions that left some open).
  void CloseGroupsTo(int depth, std::optional<TStatusTag> tag);
  void Metric(std::string_view group, std::string_view name, int64_t value);
  void ActionStart(std::string_view type, std::string_view caption);
  // Ends the innermost action, which ran for `seconds`.
  void ActionEnd(bool success, double seconds);
  // The closing summary: the recap of errors and warnings, the metrics and the result.
  void RunEnd(const TRunSummary& run);
  // A project file that could not be read, at `line` (0: unknown).
  void InputError(std::string_view file, int64_t line, std::string_view text);
  // Writes CI annotations in `dialect` beside the log (the text log only).
  void SetCiDialect(TCiDialect dialect);
  // Writes out what the buffer holds.
  void Flush();

  // The number of open message groups.
  int Depth() const { return static_cast<int>(FGroups.size()); }
  const std::vector<TMetricTotal>& Metrics() const { return FMetrics; }
  // Each distinct error and warning, in the order first reported.
  const std::vector<TLogDiagnostic>& Diagnostics() const { return FDiagnostics; }
  int64_t ErrorCount() const { return FErrors; }
  int64_t WarningCount() const { return FDiagnostics.size() - FErrors; }

 protected:
  TLogSink(std::ostream& out, TClock clock);
  struct TOpenGroup {
    std::string Title;
    TStatusTag Tag;
  };

  // Writers see the state around the event: a start before its push, an end after its pop.
  // `depth` is the number of open groups around the line (for a group: around the group).
  // `d` is the first diagnostic the message holds, if any.
  virtual void WriteMessage(std::string_view text, TStatusTag tag, int depth,
                            const TLogDiagnostic* d) = 0;
  virtual void WriteGroupStart(const TOpenGroup& group, int groupType, int depth) = 0;
  virtual void WriteGroupEnd(const TOpenGroup& group, std::optional<TStatusTag> tag, int depth) = 0;
  virtual void WriteMetric(std::string_view group, std::string_view name, int64_t value) = 0;
  virtual void WriteActionStart(std::string_view type, std::string_view caption) = 0;
  virtual void WriteActionEnd(std::string_view caption, bool success, double seconds) = 0;
  virtual void WriteRunEnd(const TRunSummary& run) = 0;
  virtual void WriteInputError(std::string_view file, int64_t line, std::string_view text) = 0;

  // Groups plus actions open around the next line: the text log's indentation level.
  int Nesting() const { return static_cast<int>(FGroups.size() + FActions.size()); }
  // Seconds since StartRun (or since the log was made).
  double Time() const { return FClock() - FStart; }
  // Queues one line.
  void Line(std::string_view text);

 private:
  void Annotate(const std::vector<std::string>& lines);
  std::string CurrentProject() const;

  std::ostream& FOut;
  TClock FClock;
  double FStart;
  std::vector<TOpenGroup> FGroups;
  std::vector<std::string> FActions;  // captions of the actions running, outermost first
  std::vector<TMetricTotal> FMetrics;
  std::vector<TLogDiagnostic> FDiagnostics;
  std::set<std::string> FSeen;  // DiagnosticKey of each of FDiagnostics
  int64_t FErrors = 0;
  std::unique_ptr<TCiAnnotations> FCi;

  std::mutex FMutex;  // guards the buffer and the stream against the flushing thread
  std::string FBuffer;
  std::condition_variable FWake;
  bool FClosing = false;
  std::thread FFlusher;
};

// A log writing to `out`. Text lines are coloured when `colour` is set and carry a status
// marker ("[ok]", "[warn]", "[error]") otherwise; JSON lines are never coloured.
std::unique_ptr<TLogSink> NewLogSink(TLogFormat format, std::ostream& out, bool colour,
                                     TLogSink::TClock clock = nullptr);

// True when the text log should be coloured: standard output is a terminal, NO_COLOR is unset
// or empty, and colour was not switched off on the command line.
bool UseColour(bool noColourOption);

}  // namespace qvhost
