// The build log: what actions report, as indented text for people or as JSON lines for
// programs.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "QvActions.h"

namespace qvhost {

using qv::TStatusTag;

enum class TLogFormat { Text, JsonLines };

// A metric summed over the run, kept in the order it was first sent.
struct TMetricTotal {
  std::string Group, Name;
  int64_t Value;
};

// Receives the events of a run in order, keeps track of the open message groups and actions,
// and writes each event out as it arrives (flushed, so that a stopped host leaves its log).
class TLogSink {
 public:
  virtual ~TLogSink();

  void Message(std::string_view text, TStatusTag tag);
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
  // The closing summary of a build: `failed` of `actions` actions failed.
  // `saved` false: the run succeeded but what it changed could not be saved.
  void RunEnd(bool success, int actions, int failed, double seconds, bool saved = true);

  // The number of open message groups.
  int Depth() const { return static_cast<int>(FGroups.size()); }
  const std::vector<TMetricTotal>& Metrics() const { return FMetrics; }

 protected:
  explicit TLogSink(std::ostream& out) : FOut(out) {}
  struct TOpenGroup {
    std::string Title;
    TStatusTag Tag;
  };

  // Writers see the state around the event: a start before its push, an end after its pop.
  // `depth` is the number of open groups around the line (for a group: around the group).
  virtual void WriteMessage(std::string_view text, TStatusTag tag, int depth) = 0;
  virtual void WriteGroupStart(const TOpenGroup& group, int groupType, int depth) = 0;
  virtual void WriteGroupEnd(const TOpenGroup& group, std::optional<TStatusTag> tag, int depth) = 0;
  virtual void WriteMetric(std::string_view group, std::string_view name, int64_t value) = 0;
  virtual void WriteActionStart(std::string_view type, std::string_view caption) = 0;
  virtual void WriteActionEnd(std::string_view caption, bool success, double seconds) = 0;
  virtual void WriteRunEnd(bool success, int actions, int failed, double seconds, bool saved) = 0;

  // Groups plus actions open around the next line: the text log's indentation level.
  int Nesting() const { return static_cast<int>(FGroups.size() + FActions.size()); }
  // Writes one line and flushes it.
  void Line(std::string_view text);

 private:
  std::ostream& FOut;
  std::vector<TOpenGroup> FGroups;
  std::vector<std::string> FActions;  // captions of the actions running, outermost first
  std::vector<TMetricTotal> FMetrics;
};

// A log writing to `out`. Text lines are coloured when `colour` is set and carry a status
// marker ("[ok]", "[warn]", "[error]") otherwise; JSON lines are never coloured.
std::unique_ptr<TLogSink> NewLogSink(TLogFormat format, std::ostream& out, bool colour);

// True when the text log should be coloured: standard output is a terminal, NO_COLOR is unset
// or empty, and colour was not switched off on the command line.
bool UseColour(bool noColourOption);

}  // namespace qvhost
