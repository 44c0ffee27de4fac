// Registration services for tests: every call is recorded as one line of text, in order;
// registered script handlers and options objects can then be called and found.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "QvServices.h"

namespace qvtest {

class RecordingServices : public qv::IQvActionServices,
                          public qv::IQvScriptingServices,
                          public qv::IQvOptionsServices {
 public:
  // Installs itself in the global service slots; the previous slots come back on destruction.
  RecordingServices();
  ~RecordingServices();
  RecordingServices(const RecordingServices&) = delete;
  RecordingServices& operator=(const RecordingServices&) = delete;

  // IQvActionServices
  void RegisterAction(const std::string& caption, const std::string& category,
                      const std::string& iconName, const qv::TQvActionClass& cls) override;
  void RegisterActionPages(const qv::TQvActionClass& cls,
                           const std::vector<std::string>& pages) override;
  void RegisterPropertyEditor(const std::string& propertyType, const qv::TQvActionClass& cls,
                              const std::string& propertyName,
                              const std::string& editorClass) override;
  // IQvScriptingServices
  void RegisterMethod(const qv::TQvActionClass& cls, const std::string& name,
                      const std::string& signature, qv::TScriptMethodHandler handler) override;
  void RegisterConstant(const std::string& name, int64_t value) override;
  void RegisterGlobalObject(const std::string& name, const std::string& signature,
                            qv::TScriptFunctionHandler handler) override;
  void RegisterEnumeration(const qv::TEnumTypeInfo& type) override;
  // IQvOptionsServices: registering creates the single options object.
  void RegisterOptions(const qv::TQvOptionsClass& cls, const std::string& iconName) override;
  void RegisterOptionPages(const qv::TQvOptionsClass& cls,
                           const std::vector<std::string>& pages) override;
  qv::IntfPtr<qv::IInterface> FindOptions(const std::string& name,
                                          const std::string& category) override;

  // Calls a registered method as a script engine would.
  qv::TScriptValue CallMethod(const std::string& className, const std::string& name,
                              qv::TCustomQvAction& self, const std::vector<qv::TScriptValue>& args);
  qv::TScriptValue CallGlobal(const std::string& name, const std::vector<qv::TScriptValue>& args);

  std::vector<std::string> Calls;
  std::map<std::string, int64_t> Constants;

 private:
  std::map<std::string, qv::TScriptMethodHandler> FMethods;  // "Class.Name"
  std::map<std::string, qv::TScriptFunctionHandler> FGlobals;
  std::vector<qv::IntfPtr<qv::IInterface>> FOptions;
  qv::IQvActionServices* FSavedActions;
  qv::IQvScriptingServices* FSavedScripting;
  qv::IQvOptionsServices* FSavedOptions;
};

}  // namespace qvtest
