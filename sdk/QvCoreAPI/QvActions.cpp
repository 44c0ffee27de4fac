#include "QvActions.h"

#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qv {

namespace {

// Stands in for the host while an action is not bound: messages go nowhere, texts expand
// to themselves, and whatever needs the host for real (passwords, processes) fails.
class TUnboundContext : public TInterfacedObject, public IQvActionContext {
 public:
  void SendMessage(const std::string&, TStatusTag) override {}
  void StartMessageGroup(const std::string&, int, TStatusTag) override {}
  void EndMessageGroup(std::optional<TStatusTag>) override {}
  void SendMetricInt(const std::string&, const std::string&, int64_t) override {}
  bool TryExpandExpression(const std::string&, const std::string& text, std::string& result,
                           bool) override {
    result = text;
    return true;
  }
  std::string ExpandExpression(const std::string& text, bool) override { return text; }
  std::string GetVariableValue(const std::string&) override { return {}; }
  void RegisterDynamicProperty(const std::string&) override {}
  void UnRegisterDynamicProperty(const std::string&) override {}
  IntfPtr<IQvPropertySet> FindPropertySet(const std::string&) override { return nullptr; }
  std::string EncryptPassword(const std::string&) override { throw NoHost("encrypt passwords"); }
  std::string DecryptPassword(const std::string&) override { throw NoHost("decrypt passwords"); }
  IntfPtr<IQvProcess> CreateProcess() override { throw NoHost("run processes"); }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IQvActionContext>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  static Exception NoHost(const char* what) {
    return Exception(std::string("The action is not bound to a host and cannot ") + what);
  }
};

IQvActionContext* UnboundContext() {
  static IntfPtr<IQvActionContext> instance = MakeIntf<IQvActionContext, TUnboundContext>();
  return instance.Get();
}

}  // namespace

// ---- TCustomQvAction --------------------------------------------------------------------

const TPropertyTable TCustomQvAction::PropertyTable{"TCustomQvAction", nullptr, {}};

TCustomQvAction::TCustomQvAction() = default;
TCustomQvAction::~TCustomQvAction() = default;

HResult TCustomQvAction::QueryInterface(const TGUID& iid, void** obj) {
  *obj = GetInterface(iid);
  return *obj ? HResult::S_OK : HResult::E_NOINTERFACE;
}

void* TCustomQvAction::GetInterface(const TGUID& iid) {
  if (iid == IInterface::IID) return static_cast<IInterface*>(this);
  return nullptr;
}

void TCustomQvAction::BindContext(IntfPtr<IQvActionContext> context) {
  FContext = std::move(context);
}

IQvActionContext* TCustomQvAction::GetActionContext() const {
  return FContext ? FContext.Get() : UnboundContext();
}

void TCustomQvAction::GetHiddenProperties(TStringList&) const {}
void TCustomQvAction::GetPropertyAlias(TStringList&) const {}
void TCustomQvAction::GetPropertyHelp(TStringList&) const {}
bool TCustomQvAction::Validate(IQvActionValidationError*) {
  return true;
}

void TCustomQvAction::CheckSettings(IQvActionValidationError*, IQvActionValidationError*) {}

void TCustomQvAction::SendMessage(const std::string& text, TStatusTag tag) {
  GetActionContext()->SendMessage(text, tag);
}
void TCustomQvAction::StartMessageGroup(const std::string& title, int groupType, TStatusTag tag) {
  GetActionContext()->StartMessageGroup(title, groupType, tag);
}
void TCustomQvAction::EndMessageGroup() {
  GetActionContext()->EndMessageGroup(std::nullopt);
}
void TCustomQvAction::EndMessageGroup(TStatusTag tag) {
  GetActionContext()->EndMessageGroup(tag);
}
void TCustomQvAction::SendMetricInt(const std::string& group, const std::string& name,
                                    int64_t value) {
  GetActionContext()->SendMetricInt(group, name, value);
}
bool TCustomQvAction::TryExpandExpression(const std::string& caption, const std::string& text,
                                          std::string& result, bool required) {
  return GetActionContext()->TryExpandExpression(caption, text, result, required);
}
std::string TCustomQvAction::ExpandExpression(const std::string& text, bool required) {
  return GetActionContext()->ExpandExpression(text, required);
}
std::string TCustomQvAction::GetVariableValue(const std::string& name) {
  return GetActionContext()->GetVariableValue(name);
}
void TCustomQvAction::RegisterDynamicProperty(const std::string& name) {
  GetActionContext()->RegisterDynamicProperty(name);
}
void TCustomQvAction::UnRegisterDynamicProperty(const std::string& name) {
  GetActionContext()->UnRegisterDynamicProperty(name);
}
IntfPtr<IQvPropertySet> TCustomQvAction::FindPropertySet(const std::string& name) {
  return GetActionContext()->FindPropertySet(name);
}
std::string TCustomQvAction::EncryptPassword(const std::string& plain) {
  return GetActionContext()->EncryptPassword(plain);
}
std::string TCustomQvAction::DecryptPassword(const std::string& encrypted) {
  return GetActionContext()->DecryptPassword(encrypted);
}

// ---- TQvMultiExecAction -----------------------------------------------------------------

const TPropertyTable TQvMultiExecAction::PropertyTable{
    "TQvMultiExecAction", &TCustomQvAction::PropertyTable, {}};

IntfPtr<IQvProcess> TQvMultiExecAction::NewActionProcess() {
  return GetActionContext()->CreateProcess();
}

bool TQvMultiExecAction::CheckProcessCleanExit(IQvProcess* process) const {
  return process && process->GetCleanExit();
}

void TQvMultiExecAction::LogLines(std::string_view chunk, TStatusTag tag) {
  ForEachLine(chunk, [&](std::string_view line) { SendMessage(std::string(line), tag); });
}

void TQvMultiExecAction::OnStdOutData(IQvProcess*, std::string_view chunk) {
  LogLines(chunk, TStatusTag::Plain);
}

void TQvMultiExecAction::OnStdErrData(IQvProcess*, std::string_view chunk) {
  LogLines(chunk, TStatusTag::Plain);
}

// ---- TQvExecuteAbstractAction -----------------------------------------------------------

const TPropertyTable TQvExecuteAbstractAction::PropertyTable{
    "TQvExecuteAbstractAction", &TCustomQvAction::PropertyTable, {}};

void TQvExecuteAbstractAction::OnStdOutData(IQvProcess*, std::string_view chunk) {
  ForEachLine(chunk, [&](std::string_view line) { SendMessage(std::string(line)); });
}

void TQvExecuteAbstractAction::OnStdErrData(IQvProcess*, std::string_view chunk) {
  ForEachLine(chunk, [&](std::string_view line) { SendMessage(std::string(line)); });
}

bool TQvExecuteAbstractAction::Execute() {
  std::string exe = GetExecutable();
  if (exe.empty()) {
    SendMessage("No executable to run.", TStatusTag::Error);
    return false;
  }
  if (!platform::FileExists(exe)) throw EFailAction("Executable not found : " + exe);
  IntfPtr<ICommandLineBuilder> builder = NewCommandLineBuilder();
  if (!GetCommandLine(builder.Get())) return false;

  IntfPtr<IQvProcess> process = GetActionContext()->CreateProcess();
  process->SetExecutable(exe);
  process->SetParameters(builder->GetCommandLine());
  process->SetCaptureOutput(true);
  process->SetHideWindow(true);
  process->SetStartingDir(GetStartingDir());
  process->SetTerminateEvent(&FTerminateEvent);
  process->SetOutputHandler(this);
  SendMessage("Running " + exe + " with parameters : " + builder->GetCommandLine());
  int code = process->Run();
  if (code == kTerminatedExitCode) {
    SendMessage("Action Terminated by User.", TStatusTag::Error);
    return false;
  }
  return process->GetCleanExit() && InterpretResult(code);
}

// ---- TQvBaseIterator --------------------------------------------------------------------

namespace {
const TPropDescriptor kIteratorProps[] = {
    StrProp<TQvBaseIterator, &TQvBaseIterator::GetVariableName, &TQvBaseIterator::SetVariableName>(
        "VariableName"),
};
}  // namespace

const TPropertyTable TQvBaseIterator::PropertyTable{
    "TQvBaseIterator", &TCustomQvAction::PropertyTable, kIteratorProps};

}  // namespace qv
