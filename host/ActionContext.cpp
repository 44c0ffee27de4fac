#include "ActionContext.h"

#include <algorithm>

#include "Expander.h"
#include "LogSink.h"
#include "PasswordVault.h"
#include "ProcessRunner.h"
#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qvhost {

// ---- THostPropertySet ---------------------------------------------------------------------

void* THostPropertySet::GetInterface(const qv::TGUID& iid) {
  if (void* p = qv::QueryInterfaceList<qv::IQvPropertySet>(this, iid)) return p;
  return TInterfacedObject::GetInterface(iid);
}

std::pair<std::string, std::string>* THostPropertySet::Find(const std::string& name) {
  for (auto& v : FValues)
    if (qv::SameText(v.first, name)) return &v;
  return nullptr;
}

std::string THostPropertySet::GetPropertyNames() const {
  qv::TStringList names;
  for (const auto& v : FValues)
    names.Add(v.first);
  return names.CommaText();
}

std::string THostPropertySet::GetValue(const std::string& name) const {
  for (const auto& v : FValues)
    if (qv::SameText(v.first, name)) return v.second;
  return {};
}

void THostPropertySet::LoadValue(const std::string& name, const std::string& value) {
  if (auto* v = Find(name))
    v->second = value;
  else
    FValues.emplace_back(name, value);
}

void THostPropertySet::SetValue(const std::string& name, const std::string& value) {
  LoadValue(name, value);
  std::string stored = Find(name)->first;
  if (std::find(FChanged.begin(), FChanged.end(), stored) == FChanged.end())
    FChanged.push_back(stored);
}

// ---- TActionContext ------------------------------------------------------------------------

void* TActionContext::GetInterface(const qv::TGUID& iid) {
  if (void* p = qv::QueryInterfaceList<qv::IQvActionContext, qv::IQvApplicationServices>(this, iid))
    return p;
  return TInterfacedObject::GetInterface(iid);
}

void TActionContext::BeginRun() {
  FBaseDepth = FEnv.Log.Depth();
}

// Tools such as devenv name files relative to the folder they run in.
void TActionContext::SendMessage(const std::string& text, qv::TStatusTag tag) {
  auto* process = dynamic_cast<THostProcess*>(FLastProcess.Get());
  FEnv.Log.Message(text, tag, process ? std::string_view(process->StartingDir()) : "");
}

void TActionContext::StartMessageGroup(const std::string& title, int groupType,
                                       qv::TStatusTag tag) {
  FEnv.Log.GroupStart(title, groupType, tag);
}

void TActionContext::EndMessageGroup(std::optional<qv::TStatusTag> tag) {
  if (FEnv.Log.Depth() > FBaseDepth) FEnv.Log.GroupEnd(tag);
}

void TActionContext::SendMetricInt(const std::string& group, const std::string& name,
                                   int64_t value) {
  FEnv.Log.Metric(group, name, value);
}

bool TActionContext::TryExpandExpression(const std::string& caption, const std::string& text,
                                         std::string& result, bool) {
  try {
    result = FEnv.Expander.Expand(text);
    return true;
  } catch (const qv::Exception& e) {
    SendMessage(caption + ": " + e.what(), qv::TStatusTag::Error);
    return false;
  }
}

std::string TActionContext::ExpandExpression(const std::string& text, bool) {
  return FEnv.Expander.Expand(text);
}

std::string TActionContext::GetVariableValue(const std::string& name) {
  return FEnv.Expander.Lookup(name).value_or(std::string());
}

void TActionContext::GetVariableNames(qv::TStringList& names) {
  for (const auto& n : FEnv.Expander.VariableNames())
    names.Add(n);
}

void TActionContext::RegisterDynamicProperty(const std::string& name) {
  for (const auto& n : FDynamic)
    if (qv::SameText(n, name)) return;
  FDynamic.push_back(name);
}

void TActionContext::UnRegisterDynamicProperty(const std::string& name) {
  std::erase_if(FDynamic, [&](const std::string& n) { return qv::SameText(n, name); });
}

qv::IntfPtr<qv::IQvPropertySet> TActionContext::FindPropertySet(const std::string& name) {
  for (const auto& set : FEnv.PropertySets)
    if (qv::SameText(set->GetName(), name)) return qv::IntfPtr<qv::IQvPropertySet>(set.Get());
  return nullptr;
}

std::string TActionContext::EncryptPassword(const std::string& plain) {
  return FEnv.Vault.Encrypt(plain);
}

std::string TActionContext::DecryptPassword(const std::string& encrypted) {
  return FEnv.Vault.Decrypt(encrypted);
}

qv::IntfPtr<qv::IQvProcess> TActionContext::CreateProcess() {
  if (!FEnv.NewProcess) throw qv::Exception("Running processes is not available in this host yet");
  FLastProcess = FEnv.NewProcess();
  return FLastProcess;
}

}  // namespace qvhost
