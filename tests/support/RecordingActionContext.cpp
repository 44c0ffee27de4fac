#include "RecordingActionContext.h"

#include "ProcessRunner.h"
#include "QvExceptions.h"
#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qvtest {

using namespace qv;

namespace {

// Records what it was given and, when run, replays its script through the host's delivery of
// output (whole lines, only when captured): all of standard output, then all of standard error.
class ScriptedProcess : public qvhost::THostProcess {
 public:
  ScriptedProcess(std::vector<ProcessRun>& runs, ProcessScript script)
      : FRuns(runs), FScript(std::move(script)) {}
  int Run() override {
    FRuns.push_back({FExecutable, FParameters, FStartingDir});
    for (bool err : {false, true}) {
      for (const auto& chunk : err ? FScript.err : FScript.out)
        Deliver(err, chunk);
      FlushTails();
    }
    FExitCode = FScript.exitCode;
    FCleanExit = FScript.clean;
    return FExitCode;
  }

 private:
  std::vector<ProcessRun>& FRuns;
  ProcessScript FScript;
};

}  // namespace

IntfPtr<IQvPropertySet> RecordingActionContext::FindPropertySet(const std::string& name) {
  for (const auto& set : PropertySets)
    if (SameText(set->GetName(), name)) return IntfPtr<IQvPropertySet>(set.Get());
  return nullptr;
}

IntfPtr<RecordingActionContext> RecordingActionContext::Create() {
  return IntfPtr<RecordingActionContext>(new RecordingActionContext);
}

void* RecordingActionContext::GetInterface(const TGUID& iid) {
  if (void* p = QueryInterfaceList<IQvActionContext, IQvApplicationServices>(this, iid)) return p;
  return TInterfacedObject::GetInterface(iid);
}

void RecordingActionContext::SendMessage(const std::string& text, TStatusTag tag) {
  Log.push_back({LogEntry::Message, text, static_cast<int>(tag), Depth, 0});
}

void RecordingActionContext::StartMessageGroup(const std::string& title, int groupType,
                                               TStatusTag tag) {
  Log.push_back({LogEntry::GroupStart, title, static_cast<int>(tag), Depth++, groupType});
}

// As in the host, an end without an open group is ignored.
void RecordingActionContext::EndMessageGroup(std::optional<TStatusTag> tag) {
  if (Depth == 0) return;
  --Depth;
  Log.push_back({LogEntry::GroupEnd, "", tag ? static_cast<int>(*tag) : -1, Depth, 0});
}

void RecordingActionContext::SendMetricInt(const std::string& group, const std::string& name,
                                           int64_t value) {
  Metrics.push_back({group, name, value});
}

// Variable names compare without regard to case, as the host's do.
const std::string* RecordingActionContext::FindVariable(std::string_view name) const {
  for (const auto& [n, v] : Variables)
    if (SameText(n, name)) return &v;
  return nullptr;
}

std::string RecordingActionContext::ExpandExpression(const std::string& text, bool) {
  return ExpandVariables(text, [this](std::string_view name) -> std::optional<std::string> {
    if (const std::string* value = FindVariable(name)) return *value;
    return std::nullopt;
  });
}

bool RecordingActionContext::TryExpandExpression(const std::string& caption,
                                                 const std::string& text, std::string& result,
                                                 bool required) {
  try {
    result = ExpandExpression(text, required);
    return true;
  } catch (const Exception& e) {
    SendMessage(caption + ": " + e.what(), TStatusTag::Error);
    return false;
  }
}

std::string RecordingActionContext::GetVariableValue(const std::string& name) {
  const std::string* value = FindVariable(name);
  return value ? *value : std::string();
}

void RecordingActionContext::RegisterDynamicProperty(const std::string& name) {
  DynamicPropertyCalls.push_back("+" + name);
}

void RecordingActionContext::UnRegisterDynamicProperty(const std::string& name) {
  DynamicPropertyCalls.push_back("-" + name);
}

// Reversible and never equal to the plain text, which is all a test needs to see.
std::string RecordingActionContext::EncryptPassword(const std::string& plain) {
  return "ENC:" + std::string(plain.rbegin(), plain.rend());
}

std::string RecordingActionContext::DecryptPassword(const std::string& encrypted) {
  if (encrypted.empty()) return {};
  if (!encrypted.starts_with("ENC:")) throw Exception("Cannot decrypt password");
  return std::string(encrypted.rbegin(), encrypted.rend() - 4);
}

IntfPtr<IQvProcess> RecordingActionContext::CreateProcess() {
  ProcessScript script;
  if (!Scripts.empty()) {
    script = Scripts.front();
    Scripts.pop_front();
  }
  return IntfPtr<IQvProcess>(new ScriptedProcess(Runs, script));
}

void RecordingActionContext::GetVariableNames(TStringList& names) {
  for (const auto& [n, v] : Variables)
    names.Add(n);
}

std::string RecordingActionContext::Transcript() const {
  std::string out;
  for (const auto& e : Log) {
    out.append(static_cast<size_t>(e.depth) * 2, ' ');
    std::string tag = e.tag >= 0 ? "[" + std::to_string(e.tag) + "]" : "";
    if (e.kind == LogEntry::Message) out += tag + " " + e.text;
    if (e.kind == LogEntry::GroupStart)
      out += "> " + e.text + " (type " + std::to_string(e.groupType) + ") " + tag;
    if (e.kind == LogEntry::GroupEnd) out += tag.empty() ? "<" : "< " + tag;
    out += "\n";
  }
  return out;
}

std::vector<std::string> RecordingActionContext::Messages() const {
  std::vector<std::string> r;
  for (const auto& e : Log)
    if (e.kind == LogEntry::Message) r.push_back("[" + std::to_string(e.tag) + "] " + e.text);
  return r;
}

}  // namespace qvtest
