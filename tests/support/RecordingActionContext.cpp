#include "RecordingActionContext.h"

#include "QvExceptions.h"
#include "QvUtils.h"

namespace qvtest {

using namespace qv;

std::string MemoryPropertySet::GetPropertyNames() const {
  TStringList names;
  for (const auto& [n, v] : FValues)
    names.Add(n);
  return names.CommaText();
}

std::string MemoryPropertySet::GetValue(const std::string& name) const {
  for (const auto& [n, v] : FValues)
    if (n == name) return v;
  return {};
}

void MemoryPropertySet::SetValue(const std::string& name, const std::string& value) {
  for (auto& [n, v] : FValues)
    if (n == name) {
      v = value;
      return;
    }
  FValues.emplace_back(name, value);
}

void* MemoryPropertySet::GetInterface(const TGUID& iid) {
  if (void* p = QueryInterfaceList<IQvPropertySet>(this, iid)) return p;
  return TInterfacedObject::GetInterface(iid);
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
  Log.push_back({LogEntry::GroupStart, title, static_cast<int>(tag), Depth, groupType});
  ++Depth;
}

void RecordingActionContext::EndMessageGroup(std::optional<TStatusTag> tag) {
  if (Depth > 0) --Depth;
  Log.push_back({LogEntry::GroupEnd, "", tag ? static_cast<int>(*tag) : -1, Depth, 0});
}

void RecordingActionContext::SendMetricInt(const std::string& group, const std::string& name,
                                           int64_t value) {
  Metrics.push_back({group, name, value});
}

std::string RecordingActionContext::Expand(const std::string& text) {
  if (FailingExpansions.count(text)) throw Exception("Expansion of \"" + text + "\" failed");
  return ExpandVariables(text, [this](std::string_view name) -> std::optional<std::string> {
    auto it = Variables.find(std::string(name));
    if (it == Variables.end()) return std::nullopt;
    return it->second;
  });
}

bool RecordingActionContext::TryExpandExpression(const std::string& caption,
                                                 const std::string& text, std::string& result,
                                                 bool) {
  try {
    result = Expand(text);
    return true;
  } catch (const Exception& e) {
    ExpansionFailures.push_back(caption + ": " + text);
    return false;
  }
}

std::string RecordingActionContext::ExpandExpression(const std::string& text, bool) {
  return Expand(text);
}

std::string RecordingActionContext::GetVariableValue(const std::string& name) {
  auto it = Variables.find(name);
  return it == Variables.end() ? std::string() : it->second;
}

void RecordingActionContext::RegisterDynamicProperty(const std::string& name) {
  DynamicPropertyCalls.push_back("+" + name);
  DynamicProperties.insert(name);
}

void RecordingActionContext::UnRegisterDynamicProperty(const std::string& name) {
  DynamicPropertyCalls.push_back("-" + name);
  DynamicProperties.erase(name);
}

IntfPtr<IQvPropertySet> RecordingActionContext::FindPropertySet(const std::string& name) {
  auto it = PropertySets.find(name);
  return it == PropertySets.end() ? nullptr : it->second;
}

// Reversible and never equal to the plain text, which is all a test needs to see.
std::string RecordingActionContext::EncryptPassword(const std::string& plain) {
  static const char* hex = "0123456789ABCDEF";
  std::string r = "ENC:";
  for (unsigned char c : plain) {
    r += hex[(c ^ 0x5A) >> 4];
    r += hex[(c ^ 0x5A) & 15];
  }
  return r;
}

std::string RecordingActionContext::DecryptPassword(const std::string& encrypted) {
  if (encrypted.empty()) return {};
  if (encrypted.rfind("ENC:", 0) != 0 || encrypted.size() % 2 != 0)
    throw Exception("Cannot decrypt password");
  std::string r;
  for (size_t i = 4; i + 1 < encrypted.size(); i += 2)
    r += static_cast<char>(std::stoi(encrypted.substr(i, 2), nullptr, 16) ^ 0x5A);
  return r;
}

IntfPtr<IQvProcess> RecordingActionContext::CreateProcess() {
  if (!ProcessFactory) throw Exception("No process factory set in the test context");
  return ProcessFactory();
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
    switch (e.kind) {
      case LogEntry::Message:
        out += tag + " " + e.text;
        break;
      case LogEntry::GroupStart:
        out += "> " + e.text + " (type " + std::to_string(e.groupType) + ") " + tag;
        break;
      case LogEntry::GroupEnd:
        out += tag.empty() ? "<" : "< " + tag;
        break;
    }
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
