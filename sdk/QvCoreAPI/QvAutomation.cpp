#include "QvAutomation.h"

namespace qv {

IQvAutomationServices* QvAutomationServices = nullptr;

IntfPtr<IQvDispatch> CoGetObject(const std::string& moniker) {
  return QvAutomationServices ? QvAutomationServices->CoGetObject(moniker) : nullptr;
}

}  // namespace qv
