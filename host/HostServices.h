// The registration services the host offers its packages (actions, scripting, options), and
// what the packages registered through them.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "QvOptions.h"
#include "QvServices.h"

namespace qvhost {

class TOptionsStore;

struct TActionRegistration {
  std::string Caption, Category, Icon;
  const qv::TQvActionClass* Class;
};

struct TPropertyEditorRegistration {
  std::string PropertyType;
  const qv::TQvActionClass* Class;
  std::string PropertyName, Editor;
};

struct TMethodRegistration {
  const qv::TQvActionClass* Class;
  std::string Name, Signature;
};

struct TConstantRegistration {
  std::string Name;
  int64_t Value;
};

struct TGlobalObjectRegistration {
  std::string Name, Signature;
};

// An options class with the single object the host made of it.
struct TOptionsRegistration {
  const qv::TQvOptionsClass* Class;
  std::string Icon;
  qv::IntfPtr<qv::IInterface> Object;  // holds the object's reference
  qv::TQvOptionsObject* Options;
};

// Everything packages register, in registration order. Registering an action or options class
// a second time throws qv::Exception, which reaches the host through QvRegister.
class THostServices : public qv::IQvActionServices,
                      public qv::IQvScriptingServices,
                      public qv::IQvOptionsServices {
 public:
  THostServices() = default;
  THostServices(const THostServices&) = delete;
  THostServices& operator=(const THostServices&) = delete;
  ~THostServices();

  void RegisterAction(const std::string& caption, const std::string& category,
                      const std::string& iconName, const qv::TQvActionClass& cls) override;
  void RegisterActionPages(const qv::TQvActionClass& cls,
                           const std::vector<std::string>& pageClasses) override;
  void RegisterPropertyEditor(const std::string& propertyType, const qv::TQvActionClass& cls,
                              const std::string& propertyName,
                              const std::string& editorClass) override;
  void RegisterMethod(const qv::TQvActionClass& cls, const std::string& name,
                      const std::string& signature, qv::TScriptMethodHandler handler) override;
  void RegisterConstant(const std::string& name, int64_t value) override;
  void RegisterGlobalObject(const std::string& name, const std::string& signature,
                            qv::TScriptFunctionHandler handler) override;
  void RegisterEnumeration(const qv::TEnumTypeInfo& type) override;
  // Creates the class's single object; LoadOptions fills it later.
  void RegisterOptions(const qv::TQvOptionsClass& cls, const std::string& iconName) override;
  void RegisterOptionPages(const qv::TQvOptionsClass& cls,
                           const std::vector<std::string>& pageClasses) override;
  // The options object with this name and category (any letter case), or null.
  qv::IntfPtr<qv::IInterface> FindOptions(const std::string& name,
                                          const std::string& category) override;

  // The action type with this class name or, failing that, caption (any letter case); null
  // when there is none.
  const TActionRegistration* FindAction(std::string_view typeOrCaption) const;

  // Loads every options object from `store` (in registration order).
  void LoadOptions(TOptionsStore& store);
  // Saves the modified options objects into `store` and writes it; true when any was saved.
  bool SaveModifiedOptions(TOptionsStore& store);
  // Destroys the options objects; their classes live in packages, so this precedes unloading.
  void ReleaseOptions();

  const std::vector<TActionRegistration>& Actions() const { return FActions; }
  const std::vector<TPropertyEditorRegistration>& PropertyEditors() const { return FEditors; }
  // Page classes by action or options class name, in the order they were registered.
  const std::vector<std::pair<std::string, std::vector<std::string>>>& ActionPages() const {
    return FActionPages;
  }
  const std::vector<std::pair<std::string, std::vector<std::string>>>& OptionPages() const {
    return FOptionPages;
  }
  const std::vector<TMethodRegistration>& Methods() const { return FMethods; }
  const std::vector<TConstantRegistration>& Constants() const { return FConstants; }
  const std::vector<TGlobalObjectRegistration>& GlobalObjects() const { return FGlobals; }
  const std::vector<const qv::TEnumTypeInfo*>& Enumerations() const { return FEnums; }
  const std::vector<TOptionsRegistration>& Options() const { return FOptions; }
  // Every registration call, one line each, in the order the packages made them.
  const std::vector<std::string>& Sequence() const { return FSequence; }

 private:
  std::vector<TActionRegistration> FActions;
  std::vector<TPropertyEditorRegistration> FEditors;
  std::vector<std::pair<std::string, std::vector<std::string>>> FActionPages, FOptionPages;
  std::vector<TMethodRegistration> FMethods;
  std::vector<TConstantRegistration> FConstants;
  std::vector<TGlobalObjectRegistration> FGlobals;
  std::vector<const qv::TEnumTypeInfo*> FEnums;
  std::vector<TOptionsRegistration> FOptions;
  std::vector<std::string> FSequence;
};

}  // namespace qvhost
