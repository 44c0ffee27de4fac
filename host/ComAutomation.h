// Automation objects bound through COM monikers (Windows): "IIS://HOST/W3SVC/N/ROOT/..." reaches
// the IIS metabase through ADSI as on a build machine with IIS. COM is initialised on each
// thread that binds (the action threads), once per thread.
#pragma once

#include <memory>

#include "QvAutomation.h"

namespace qvhost {

// The system's COM monikers; null where the platform has none (not Windows).
std::shared_ptr<qv::IQvAutomationServices> NewComAutomation();

}  // namespace qvhost
