// Action base classes and the host contract an action reaches through its context.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "QvClasses.h"
#include "QvInterfaces.h"
#include "QvProcess.h"
#include "QvProperties.h"

namespace qv {

// Status of a log line or message group.
enum class TStatusTag : uint8_t { Plain = 0, Success = 1, Warning = 2, Error = 3 };

// A named set of values kept by the host (Win32 or .NET version settings).
struct IQvPropertySet : virtual IInterface {
  QV_INTERFACE_ID("{3E8A5C17-0B6D-4F29-8C41-D7E2A9B0F365}");
  virtual std::string GetName() const = 0;
  // The property names as comma text.
  virtual std::string GetPropertyNames() const = 0;
  // The value of a property as text; empty when the set has no such property.
  virtual std::string GetValue(const std::string& name) const = 0;
  virtual void SetValue(const std::string& name, const std::string& value) = 0;
};

// The host's application-wide services reachable from an action's context.
struct IQvApplicationServices : virtual IInterface {
  QV_INTERFACE_ID("{8D1F6B34-2A7C-4E95-B0C3-61E4F8A2D7B9}");
  // Expands variables and expressions; throws Exception when expansion fails.
  virtual std::string ExpandExpression(const std::string& text, bool required) = 0;
  // The names of the build process's variables (for pages that offer them).
  virtual void GetVariableNames(TStringList& names) = 0;
};

// Everything an action asks of its host, bound by the host to each action.
struct IQvActionContext : virtual IInterface {
  QV_INTERFACE_ID("{C52E9A80-6F1D-4B37-A8E4-0D3B7C6F2915}");
  virtual void SendMessage(const std::string& text, TStatusTag tag) = 0;
  virtual void StartMessageGroup(const std::string& title, int groupType, TStatusTag tag) = 0;
  // Closes the innermost group; without a tag the group keeps the status it was opened with.
  virtual void EndMessageGroup(std::optional<TStatusTag> tag) = 0;
  virtual void SendMetricInt(const std::string& group, const std::string& name, int64_t value) = 0;
  // Expands `text` into `result`; false when it fails, the host having reported why under
  // `caption`.
  virtual bool TryExpandExpression(const std::string& caption, const std::string& text,
                                   std::string& result, bool required) = 0;
  // Expands `text`; throws Exception when it fails.
  virtual std::string ExpandExpression(const std::string& text, bool required) = 0;
  // A variable's current value as text (empty when unset).
  virtual std::string GetVariableValue(const std::string& name) = 0;
  // Asks the host to save the action's property `name` back after the run (or no longer).
  virtual void RegisterDynamicProperty(const std::string& name) = 0;
  virtual void UnRegisterDynamicProperty(const std::string& name) = 0;
  // The property set named `name`, or null.
  virtual IntfPtr<IQvPropertySet> FindPropertySet(const std::string& name) = 0;
  virtual std::string EncryptPassword(const std::string& plain) = 0;
  // Throws Exception when `encrypted` cannot be decrypted.
  virtual std::string DecryptPassword(const std::string& encrypted) = 0;
  // A new child process owned by the host (so that the host can stop it).
  virtual IntfPtr<IQvProcess> CreateProcess() = 0;
};

// Where validation reports problems; `editObject` is an object the host may offer to edit
// (the plug-in options), or null.
struct IQvActionValidationError : virtual IInterface {
  QV_INTERFACE_ID("{5A0C3E91-7D48-4B26-9F1E-B8C2D4A6E037}");
  virtual void AddError(const std::string& section, const std::string& message,
                        IInterface* editObject) = 0;
};

// Base of every action. Actions belong to the host, which creates, binds, runs and deletes
// them; their interfaces are not reference counted (AddRef and Release do nothing).
class TCustomQvAction : public TQvPersistent, public virtual IInterface {
 public:
  TCustomQvAction();
  ~TCustomQvAction() override;
  TCustomQvAction(const TCustomQvAction&) = delete;
  TCustomQvAction& operator=(const TCustomQvAction&) = delete;

  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  HResult QueryInterface(const TGUID& iid, void** obj) override;
  int AddRef() override { return -1; }
  int Release() override { return -1; }

  // Binds the host context; until then messages go nowhere and expansion returns the text.
  void BindContext(IntfPtr<IQvActionContext> context);
  IQvActionContext* GetActionContext() const;

  // Identity and help.
  virtual std::string GetActionName() const = 0;
  virtual std::string GetActionKeywords() const { return {}; }
  // The host's standard description: the action's name.
  virtual std::string GetDescription() const { return GetActionName(); }
  virtual std::string GetFormattedDescription() const { return GetDescription(); }
  virtual int GetHelpTopicID() const { return 0; }
  virtual std::string GetQuickHelpFilename() const { return {}; }
  // Append to the lists the host uses for its generic property inspector.
  virtual void GetHiddenProperties(TStringList& list) const;
  virtual void GetPropertyAlias(TStringList& list) const;
  virtual void GetPropertyHelp(TStringList& list) const;

  // Reports problems to `errors`; false when anything was reported.
  virtual bool Validate(IQvActionValidationError* errors);
  // For a dry run: reports, beyond Validate and without starting or writing anything, what
  // would fail the action (`errors`) or deserves a look (`warnings`). Default: nothing.
  virtual void CheckSettings(IQvActionValidationError* errors, IQvActionValidationError* warnings);
  // Runs the action; false fails it. May throw EFailAction.
  virtual bool Execute() = 0;
  virtual bool CanTerminate() const { return false; }
  // Called from another thread while Execute runs; must only signal.
  virtual void TerminateAction() {}
  virtual bool RequiresSync() const { return false; }

  // Host services, forwarded to the context.
  void SendMessage(const std::string& text, TStatusTag tag = TStatusTag::Plain);
  void StartMessageGroup(const std::string& title, int groupType, TStatusTag tag);
  void EndMessageGroup();
  void EndMessageGroup(TStatusTag tag);
  void SendMetricInt(const std::string& group, const std::string& name, int64_t value);
  bool TryExpandExpression(const std::string& caption, const std::string& text, std::string& result,
                           bool required);
  std::string ExpandExpression(const std::string& text, bool required);
  std::string GetVariableValue(const std::string& name);
  void RegisterDynamicProperty(const std::string& name);
  void UnRegisterDynamicProperty(const std::string& name);
  IntfPtr<IQvPropertySet> FindPropertySet(const std::string& name);
  std::string EncryptPassword(const std::string& plain);
  std::string DecryptPassword(const std::string& encrypted);

 protected:
  // Answers the identifiers of the action's own interfaces; overrides defer to the base.
  virtual void* GetInterface(const TGUID& iid);

 private:
  IntfPtr<IQvActionContext> FContext;
};

// An action that runs one or more child processes in turn and can be terminated while one
// of them runs.
class TQvMultiExecAction : public TCustomQvAction, public IQvProcessOutputHandler {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  // The inherited execution does nothing and succeeds.
  bool Execute() override { return true; }
  bool CanTerminate() const override { return true; }

  // A new child process, owned by the host.
  IntfPtr<IQvProcess> NewActionProcess();
  // True when the process ended by itself rather than by a signal or a crash.
  bool CheckProcessCleanExit(IQvProcess* process) const;

  // By default a chunk is logged line by line, plain.
  void OnStdOutData(IQvProcess* process, std::string_view chunk) override;
  void OnStdErrData(IQvProcess* process, std::string_view chunk) override;

 protected:
  // Logs each line of `chunk` with `tag`.
  void LogLines(std::string_view chunk, TStatusTag tag);
};

// An action that runs one executable with a command line it builds through an
// ICommandLineBuilder and judges the exit code.
class TQvExecuteAbstractAction : public TCustomQvAction, public IQvProcessOutputHandler {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  // Full path of the executable, or empty.
  virtual std::string GetExecutable() = 0;
  // Fills the builder; false means "do not run".
  virtual bool GetCommandLine(ICommandLineBuilder* builder) = 0;
  // Working folder; empty keeps the host's.
  virtual std::string GetStartingDir() { return {}; }
  // Success for an exit code; by default exit code 0.
  virtual bool InterpretResult(int exitCode) { return exitCode == 0; }

  // Base handlers log each line plain.
  void OnStdOutData(IQvProcess* process, std::string_view chunk) override;
  void OnStdErrData(IQvProcess* process, std::string_view chunk) override;

  // Builds the command line, runs the executable and interprets its exit code.
  bool Execute() override;
  bool CanTerminate() const override { return true; }
  void TerminateAction() override { FTerminateEvent.Signal(); }

 private:
  TAutoResetEvent FTerminateEvent;
};

// A loop action: the host runs the nested actions once per iteration, after setting the
// loop variable to GetCurrentValue.
class TQvBaseIterator : public TCustomQvAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  // Prepares the loop (and calls SetIterationCount); false stops it before the first pass.
  virtual bool BeforeFirstIteration() { return true; }
  // The loop variable's value for the current iteration.
  virtual std::string GetCurrentValue() = 0;
  // The loop itself is the host's; an iterator's own execution does nothing.
  bool Execute() override { return true; }

  void SetIterationCount(int count) { FIterationCount = count; }
  int GetIterationCount() const { return FIterationCount; }
  // 1-based number of the current iteration (0 before the first).
  int GetCurrentIteration() const { return FCurrentIteration; }
  // Called by the host before each pass.
  void SetCurrentIteration(int n) { FCurrentIteration = n; }

  const std::string& GetVariableName() const { return FVariableName; }
  void SetVariableName(const std::string& name) { FVariableName = name; }

 private:
  int FIterationCount = 0;
  int FCurrentIteration = 0;
  std::string FVariableName;
};

// Splits a chunk of process output into lines (CR LF, LF or CR end a line; the last line
// needs no end) and calls `fn` for each.
template <class Fn>
void ForEachLine(std::string_view chunk, Fn&& fn) {
  size_t start = 0;
  for (size_t i = 0; i < chunk.size(); ++i) {
    if (chunk[i] != '\n' && chunk[i] != '\r') continue;
    fn(chunk.substr(start, i - start));
    if (chunk[i] == '\r' && i + 1 < chunk.size() && chunk[i + 1] == '\n') ++i;
    start = i + 1;
  }
  if (start < chunk.size()) fn(chunk.substr(start));
}

}  // namespace qv
