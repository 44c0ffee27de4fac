// An action context for tests: records what an action logs, measures, expands and asks of
// its host, and answers from maps the test fills.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

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

// A property set with ordered name/value pairs.
class MemoryPropertySet : public qv::TInterfacedObject, public qv::IQvPropertySet {
 public:
  explicit MemoryPropertySet(std::string name) : FName(std::move(name)) {}
  std::string GetName() const override { return FName; }
  std::string GetPropertyNames() const override;
  std::string GetValue(const std::string& name) const override;
  void SetValue(const std::string& name, const std::string& value) override;

 protected:
  void* GetInterface(const qv::TGUID& iid) override;

 private:
  std::string FName;
  std::vector<std::pair<std::string, std::string>> FValues;
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
  qv::IntfPtr<qv::IQvPropertySet> FindPropertySet(const std::string& name) override;
  std::string EncryptPassword(const std::string& plain) override;
  std::string DecryptPassword(const std::string& encrypted) override;
  qv::IntfPtr<qv::IQvProcess> CreateProcess() override;
  // IQvApplicationServices
  void GetVariableNames(qv::TStringList& names) override;

  // What the test sets up.
  std::map<std::string, std::string> Variables;
  // Texts (before expansion) whose expansion fails.
  std::set<std::string> FailingExpansions;
  std::map<std::string, qv::IntfPtr<qv::IQvPropertySet>> PropertySets;
  std::function<qv::IntfPtr<qv::IQvProcess>()> ProcessFactory;

  // What the action did.
  std::vector<LogEntry> Log;
  std::vector<Metric> Metrics;
  // Expansion failures reported, as "caption: text".
  std::vector<std::string> ExpansionFailures;
  // Dynamic-property calls in order: "+Name" registers, "-Name" unregisters.
  std::vector<std::string> DynamicPropertyCalls;
  std::set<std::string> DynamicProperties;
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
  std::string Expand(const std::string& text);
};

}  // namespace qvtest
