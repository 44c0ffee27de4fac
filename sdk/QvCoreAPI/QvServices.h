// The host's registration services, reached by packages through global service slots that
// the host fills before it calls a package's Initialize.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "QvInterfaces.h"
#include "QvProperties.h"

namespace qv {

class TCustomQvAction;
class TQvOptionsObject;

// An action type as the host knows it: its class name, a factory and its property table.
struct TQvActionClass {
  std::string_view ClassName;
  TCustomQvAction* (*Create)();
  const TPropertyTable* Properties;
};

// An options type: class name, factory (the object comes with one reference) and table.
struct TQvOptionsClass {
  std::string_view ClassName;
  TQvOptionsObject* (*Create)();
  const TPropertyTable* Properties;
};

// The class name a property table gives. Out of line on purpose: a translation unit that sees
// the table's initializer could otherwise initialize the records below at compile time while
// another initializes them at run time, and the linker may pair one's code with the other's
// variable, leaving the name empty.
std::string_view TableClassName(const TPropertyTable& table);

// The class record of action class T (T::PropertyTable names the class).
template <class T>
const TQvActionClass& ActionClassOf() {
  static const TQvActionClass cls{TableClassName(T::PropertyTable),
                                  []() -> TCustomQvAction* { return new T; }, &T::PropertyTable};
  return cls;
}

template <class T>
const TQvOptionsClass& OptionsClassOf() {
  static const TQvOptionsClass cls{TableClassName(T::PropertyTable),
                                   []() -> TQvOptionsObject* { return new T; }, &T::PropertyTable};
  return cls;
}

// A value passed to or returned from a script.
using TScriptValue = std::variant<std::monostate, bool, int64_t, std::string, IntfPtr<IInterface>>;
// The text of a script value (booleans "True"/"False", integers in decimal, empty for none).
std::string ScriptValueToString(const TScriptValue& v);

using TScriptMethodHandler = TScriptValue (*)(TCustomQvAction& self,
                                              const std::vector<TScriptValue>& args);
using TScriptFunctionHandler = TScriptValue (*)(const std::vector<TScriptValue>& args);

class IQvActionServices {
 public:
  virtual void RegisterAction(const std::string& caption, const std::string& category,
                              const std::string& iconName, const TQvActionClass& cls) = 0;
  // The pages of an action class, shown in this order.
  virtual void RegisterActionPages(const TQvActionClass& cls,
                                   const std::vector<std::string>& pageClasses) = 0;
  virtual void RegisterPropertyEditor(const std::string& propertyType, const TQvActionClass& cls,
                                      const std::string& propertyName,
                                      const std::string& editorClass) = 0;

 protected:
  ~IQvActionServices() = default;
};

class IQvScriptingServices {
 public:
  // A method callable on actions of `cls`; `signature` describes it for the script engine.
  virtual void RegisterMethod(const TQvActionClass& cls, const std::string& name,
                              const std::string& signature, TScriptMethodHandler handler) = 0;
  virtual void RegisterConstant(const std::string& name, int64_t value) = 0;
  // A global function that scripts call by name (such as an options accessor).
  virtual void RegisterGlobalObject(const std::string& name, const std::string& signature,
                                    TScriptFunctionHandler handler) = 0;
  virtual void RegisterEnumeration(const TEnumTypeInfo& type) = 0;

 protected:
  ~IQvScriptingServices() = default;
};

class IQvOptionsServices {
 public:
  virtual void RegisterOptions(const TQvOptionsClass& cls, const std::string& iconName) = 0;
  virtual void RegisterOptionPages(const TQvOptionsClass& cls,
                                   const std::vector<std::string>& pageClasses) = 0;
  // The registered options object with this name and category, or null.
  virtual IntfPtr<IInterface> FindOptions(const std::string& name, const std::string& category) = 0;

 protected:
  ~IQvOptionsServices() = default;
};

// The service slots. The host sets them before loading packages; null means "no host".
extern IQvActionServices* QvActionServices;
extern IQvScriptingServices* QvScriptingServices;
extern IQvOptionsServices* QvOptionsServices;

}  // namespace qv
