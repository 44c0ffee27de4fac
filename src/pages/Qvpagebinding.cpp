#include "Qvpagebinding.h"

#include "QvProperties.h"
#include "Qvmstestframe.h"
#include "Qvmstestpublishframe.h"
#include "Qvvsdotnetbuildframe.h"
#include "Qvvsdotnetpathsframe.h"
#include "Qvvsdotnetprojectframe.h"
#include "Qvvsdotnetsolutioniteratorframe.h"
#include "Qvvsdotnetwebprojectdetectionframe.h"

namespace qv {

int PropOrdinal(const TQvPersistent& obj, const char* name) {
  const TPropDescriptor* d = obj.GetPropertyTable().Find(name);
  return d && d->Enum ? d->Enum->ValueOf(obj.GetPropValue(name)) : -1;
}

void SetPropOrdinal(TQvPersistent& obj, const char* name, int ordinal) {
  obj.SetPropValue(name, std::to_string(ordinal));
}

namespace {
template <class T>
std::unique_ptr<TQvPage> Make() {
  return std::make_unique<T>();
}
}  // namespace

void RegisterPackagePages() {
  RegisterPageClass("TVSDotNetProjectFrame", Make<TVSDotNetProjectFrame>);
  RegisterPageClass("TVSDotNetPathsFrame", Make<TVSDotNetPathsFrame>);
  RegisterPageClass("TVSDotNetBuildFrame", Make<TVSDotNetBuildFrame>);
  RegisterPageClass("TSolutionIteratorFrame", Make<TSolutionIteratorFrame>);
  RegisterPageClass("TMSTestFrame", Make<TMSTestFrame>);
  RegisterPageClass("TMSTestPublishFrame", Make<TMSTestPublishFrame>);
  RegisterPageClass("TVSDotNetWebProjectLocationFrame", Make<TVSDotNetWebProjectLocationFrame>);
}

}  // namespace qv
