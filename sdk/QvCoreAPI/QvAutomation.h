// Automation objects named by monikers (COM's CoGetObject), through the host: on Windows the
// system binds them; elsewhere the host answers the monikers it can stand in for.
#pragma once

#include <string>

#include "QvInterfaces.h"

namespace qv {

// An automation object whose properties are read by name.
struct IQvDispatch : virtual IInterface {
  QV_INTERFACE_ID("{9A4E1D72-3C58-4B0F-A6D1-E82F5B7C9034}");
  // The value of property `name` as text. Throws Exception when the object has no such
  // property.
  virtual std::string GetProperty(const std::string& name) = 0;
};

class IQvAutomationServices {
 public:
  // The object `moniker` names, or null when nothing answers to it. May throw.
  virtual IntfPtr<IQvDispatch> CoGetObject(const std::string& moniker) = 0;

 protected:
  ~IQvAutomationServices() = default;
};

// The host's moniker binding; null when the host offers none.
extern IQvAutomationServices* QvAutomationServices;

// The object `moniker` names through QvAutomationServices; null without a host or when
// nothing answers. Exceptions of the binding pass through.
IntfPtr<IQvDispatch> CoGetObject(const std::string& moniker);

}  // namespace qv
