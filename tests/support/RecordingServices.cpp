#include "RecordingServices.h"

#include "QvExceptions.h"
#include "QvOptions.h"

namespace qvtest {

using namespace qv;

namespace {
std::string Join(const std::vector<std::string>& items) {
  std::string r;
  for (const auto& s : items)
    r += (r.empty() ? "" : ",") + s;
  return r;
}
}  // namespace

RecordingServices::RecordingServices()
    : FSavedActions(QvActionServices),
      FSavedScripting(QvScriptingServices),
      FSavedOptions(QvOptionsServices) {
  QvActionServices = this;
  QvScriptingServices = this;
  QvOptionsServices = this;
}

RecordingServices::~RecordingServices() {
  QvActionServices = FSavedActions;
  QvScriptingServices = FSavedScripting;
  QvOptionsServices = FSavedOptions;
}

void RecordingServices::RegisterAction(const std::string& caption, const std::string& category,
                                       const std::string& iconName, const TQvActionClass& cls) {
  Calls.push_back("action " + std::string(cls.ClassName) + " \"" + caption + "\" " + category +
                  " " + iconName);
}

void RecordingServices::RegisterActionPages(const TQvActionClass& cls,
                                            const std::vector<std::string>& pages) {
  Calls.push_back("pages " + std::string(cls.ClassName) + " " + Join(pages));
}

void RecordingServices::RegisterPropertyEditor(const std::string& propertyType,
                                               const TQvActionClass& cls,
                                               const std::string& propertyName,
                                               const std::string& editorClass) {
  Calls.push_back("editor " + propertyType + " " + std::string(cls.ClassName) + "." + propertyName +
                  " " + editorClass);
}

void RecordingServices::RegisterMethod(const TQvActionClass& cls, const std::string& name,
                                       const std::string& signature, TScriptMethodHandler handler) {
  Calls.push_back("method " + std::string(cls.ClassName) + "." + name + " " + signature);
  FMethods[std::string(cls.ClassName) + "." + name] = handler;
}

void RecordingServices::RegisterConstant(const std::string& name, int64_t value) {
  Calls.push_back("constant " + name + "=" + std::to_string(value));
  Constants[name] = value;
}

void RecordingServices::RegisterGlobalObject(const std::string& name, const std::string& signature,
                                             TScriptFunctionHandler handler) {
  Calls.push_back("global " + name + " " + signature);
  FGlobals[name] = handler;
}

void RecordingServices::RegisterEnumeration(const TEnumTypeInfo& type) {
  std::vector<std::string> values(type.Values.begin(), type.Values.end());
  Calls.push_back("enum " + std::string(type.Name) + " " + Join(values));
}

void RecordingServices::RegisterOptions(const TQvOptionsClass& cls, const std::string& iconName) {
  Calls.push_back("options " + std::string(cls.ClassName) + " " + iconName);
  TQvOptionsObject* obj = cls.Create();
  FOptions.emplace_back(static_cast<IInterface*>(obj));
}

void RecordingServices::RegisterOptionPages(const TQvOptionsClass& cls,
                                            const std::vector<std::string>& pages) {
  Calls.push_back("optionpages " + std::string(cls.ClassName) + " " + Join(pages));
}

IntfPtr<IInterface> RecordingServices::FindOptions(const std::string& name,
                                                   const std::string& category) {
  for (const auto& o : FOptions) {
    auto* obj = dynamic_cast<TQvOptionsObject*>(o.Get());
    if (obj && obj->GetName() == name && obj->GetCategory() == category) return o;
  }
  return nullptr;
}

TScriptValue RecordingServices::CallMethod(const std::string& className, const std::string& name,
                                           TCustomQvAction& self,
                                           const std::vector<TScriptValue>& args) {
  auto it = FMethods.find(className + "." + name);
  if (it == FMethods.end()) throw Exception("No script method " + className + "." + name);
  return it->second(self, args);
}

TScriptValue RecordingServices::CallGlobal(const std::string& name,
                                           const std::vector<TScriptValue>& args) {
  auto it = FGlobals.find(name);
  if (it == FGlobals.end()) throw Exception("No script global " + name);
  return it->second(args);
}

}  // namespace qvtest
