// An action context for tests: records what an action logs, measures, expands and asks of
// its host, answers from maps the test fills, and gives the action processes that replay
// scripts instead of running anything.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "ActionContext.h"
#include "QvActions.h"

namespace qvtest {

using qv::TStatusTag;

struct LogEntry {
  enum Kind { Message, GroupStart, GroupEnd } kind;
  std::string text;  // message text or group title
  int tag;           // -1 for a group end without a tag
  int depth;         // group nesting at the time of the call
  int groupType;
};

struct Metric {
  std::string group, name;
  int64_t value;
  bool operator==(const Metric&) const = default;
};

// What one process run does: the chunks it writes, as the reads of its pipes (all of standard
// output, then standard error), and how it ends.
struct ProcessScript {
  std::vector<std::string> out;
  int exitCode = 0;
  bool clean = true;
  std::vector<std::string> err = {};
};

// What a process was given when it ran.
struct ProcessRun {
  std::string exe, params, dir;
};

// A property set held in memory: the host's own, filled with `values`.
class MemoryPropertySet : public qvhost::THostPropertySet {
 public:
  MemoryPropertySet(std::string name,
                    const std::vector<std::pair<std::string, std::string>>& values)
      : THostPropertySet(std::move(name), {}) {
    for (const auto& [n, v] : values)
      LoadValue(n, v);
  }
};

class RecordingActionContext : public qv::TInterfacedObject,
                               public qv::IQvActionContext,
                               public qv::IQvApplicationServices {
 public:
  // Creates a context with one reference held by the returned pointer.
  static qv::IntfPtr<RecordingActionContext> Create();

  // IQvActionContext
  void SendMessage(const std::string& text, TStatusTag tag) override;
  void StartMessageGroup(const std::string& title, int groupType, TStatusTag tag) override;
  void EndMessageGroup(std::optional<TStatusTag> tag) override;
  void SendMetricInt(const std::string& group, const std::string& name, int64_t value) override;
  bool TryExpandExpression(const std::string& caption, const std::string& text, std::string& result,
                           bool required) override;
  std::string ExpandExpression(const std::string& text, bool required) override;
  std::string GetVariableValue(const std::string& name) override;
  void RegisterDynamicProperty(const std::string& name) override;
  void UnRegisterDynamicProperty(const std::string& name) override;
  // The set of PropertySets with that name (any letter case), or null.
  qv::IntfPtr<qv::IQvPropertySet> FindPropertySet(const std::string& name) override;
  std::string EncryptPassword(const std::string& plain) override;
  std::string DecryptPassword(const std::string& encrypted) override;
  // Each process replays the next of Scripts (an empty, successful run once none are left).
  qv::IntfPtr<qv::IQvProcess> CreateProcess() override;
  // IQvApplicationServices
  void GetVariableNames(qv::TStringList& names) override;

  // What the test sets up.
  std::map<std::string, std::string> Variables;
  std::deque<ProcessScript> Scripts;
  std::vector<qv::IntfPtr<MemoryPropertySet>> PropertySets;

  // What the action did.
  std::vector<LogEntry> Log;
  std::vector<Metric> Metrics;
  // Dynamic-property calls in order: "+Name" registers, "-Name" unregisters.
  std::vector<std::string> DynamicPropertyCalls;
  std::vector<ProcessRun> Runs;
  int Depth = 0;

  // The log as text, one entry per line, indented two blanks per group level:
  // "[T] text" for a message with tag T, "> title (type G) [T]" for a group start,
  // "< [T]" (or "<") for a group end.
  std::string Transcript() const;
  // Messages only, as "[T] text".
  std::vector<std::string> Messages() const;

 protected:
  void* GetInterface(const qv::TGUID& iid) override;

 private:
  const std::string* FindVariable(std::string_view name) const;
};

// An action that does nothing itself, bound to its own recording context.
class RecordingAction : public qv::TQvMultiExecAction {
 public:
  qv::IntfPtr<RecordingActionContext> ctx = RecordingActionContext::Create();
  RecordingAction() { BindContext(ctx); }
  std::string GetActionName() const override { return "Recording Action"; }
  bool Execute() override { return true; }
};

}  // namespace qvtest
