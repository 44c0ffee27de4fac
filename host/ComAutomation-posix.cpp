#include "ComAutomation.h"

namespace qvhost {

std::shared_ptr<qv::IQvAutomationServices> NewComAutomation() {
  return nullptr;
}

}  // namespace qvhost
