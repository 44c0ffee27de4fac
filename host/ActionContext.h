// What an action reaches of its host: the context bound to each action, the project's
// property sets, and the services every action of a run shares.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "QvActions.h"

namespace qvhost {

class TExpander;
class TLogSink;
class TPasswordVault;

// A property set of the project. It remembers which values the run set, so that the host can
// save them back.
class THostPropertySet : public qv::TInterfacedObject, public qv::IQvPropertySet {
 public:
  THostPropertySet(std::string name, pugi::xml_node node) : FName(std::move(name)), FNode(node) {}

  std::string GetName() const override { return FName; }
  std::string GetPropertyNames() const override;
  // Names compare without regard to letter case.
  std::string GetValue(const std::string& name) const override;
  void SetValue(const std::string& name, const std::string& value) override;

  // Sets a value as loaded, without counting it as a change.
  void LoadValue(const std::string& name, const std::string& value);
  // The names whose values the run set, in the order first set.
  const std::vector<std::string>& ChangedNames() const { return FChanged; }
  pugi::xml_node Node() const { return FNode; }

 protected:
  void* GetInterface(const qv::TGUID& iid) override;

 private:
  std::pair<std::string, std::string>* Find(const std::string& name);

  std::string FName;
  pugi::xml_node FNode;
  std::vector<std::pair<std::string, std::string>> FValues;
  std::vector<std::string> FChanged;
};

// The services every action of a run shares.
struct TRunEnvironment {
  TLogSink& Log;
  TExpander& Expander;
  TPasswordVault& Vault;
  std::vector<qv::IntfPtr<THostPropertySet>> PropertySets;
  // Makes a child process for an action; unset while the host cannot run processes.
  std::function<qv::IntfPtr<qv::IQvProcess>()> NewProcess;
};

// The context the host binds to one action: its log lines go to the run's log (files that
// diagnostics name relative resolved against the folder its last process ran in), expansion
// failures are reported under the caption given, and its dynamic properties are collected.
class TActionContext : public qv::TInterfacedObject,
                       public qv::IQvActionContext,
                       public qv::IQvApplicationServices {
 public:
  explicit TActionContext(TRunEnvironment& env) : FEnv(env) {}

  // Marks the start of a run of the action: groups open now are not the action's to close.
  void BeginRun();

  void SendMessage(const std::string& text, qv::TStatusTag tag) override;
  void StartMessageGroup(const std::string& title, int groupType, qv::TStatusTag tag) override;
  // Closes the innermost group the action opened; groups opened around it stay open.
  void EndMessageGroup(std::optional<qv::TStatusTag> tag) override;
  void SendMetricInt(const std::string& group, const std::string& name, int64_t value) override;
  // On failure logs "CAPTION: REASON" as an error line and returns false.
  bool TryExpandExpression(const std::string& caption, const std::string& text, std::string& result,
                           bool required) override;
  std::string ExpandExpression(const std::string& text, bool required) override;
  std::string GetVariableValue(const std::string& name) override;
  void RegisterDynamicProperty(const std::string& name) override;
  void UnRegisterDynamicProperty(const std::string& name) override;
  qv::IntfPtr<qv::IQvPropertySet> FindPropertySet(const std::string& name) override;
  std::string EncryptPassword(const std::string& plain) override;
  std::string DecryptPassword(const std::string& encrypted) override;
  // Throws qv::Exception when the host has no process runner.
  qv::IntfPtr<qv::IQvProcess> CreateProcess() override;
  void GetVariableNames(qv::TStringList& names) override;

  // The properties registered as dynamic, in registration order.
  const std::vector<std::string>& DynamicProperties() const { return FDynamic; }
  // The number of groups open when the action started.
  int BaseDepth() const { return FBaseDepth; }

 protected:
  void* GetInterface(const qv::TGUID& iid) override;

 private:
  TRunEnvironment& FEnv;
  std::vector<std::string> FDynamic;
  int FBaseDepth = 0;
  qv::IntfPtr<qv::IQvProcess> FLastProcess;  // the last process the action made
};

}  // namespace qvhost
