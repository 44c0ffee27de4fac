// An action context that only counts what an action logs and keeps its group depth, for
// benchmarks and fuzz targets that push large amounts of output through an action.
#pragma once

#include "QvActions.h"

namespace qvtest {

class CountingActionContext : public qv::TInterfacedObject, public qv::IQvActionContext {
 public:
  long Lines[4] = {};
  long Metrics = 0;
  int Depth = 0;
  void SendMessage(const std::string&, qv::TStatusTag tag) override {
    ++Lines[static_cast<int>(tag) & 3];
  }
  void StartMessageGroup(const std::string&, int, qv::TStatusTag) override { ++Depth; }
  void EndMessageGroup(std::optional<qv::TStatusTag>) override {
    if (Depth > 0) --Depth;
  }
  void SendMetricInt(const std::string&, const std::string&, int64_t) override { ++Metrics; }
  bool TryExpandExpression(const std::string&, const std::string& t, std::string& r,
                           bool) override {
    r = t;
    return true;
  }
  std::string ExpandExpression(const std::string& t, bool) override { return t; }
  std::string GetVariableValue(const std::string&) override { return {}; }
  void RegisterDynamicProperty(const std::string&) override {}
  void UnRegisterDynamicProperty(const std::string&) override {}
  qv::IntfPtr<qv::IQvPropertySet> FindPropertySet(const std::string&) override { return nullptr; }
  std::string EncryptPassword(const std::string& p) override { return p; }
  std::string DecryptPassword(const std::string& p) override { return p; }
  qv::IntfPtr<qv::IQvProcess> CreateProcess() override { return nullptr; }

 protected:
  void* GetInterface(const qv::TGUID& iid) override {
    if (void* p = qv::QueryInterfaceList<qv::IQvActionContext>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }
};

}  // namespace qvtest
