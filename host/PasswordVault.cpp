#include "PasswordVault.h"

#include "HostPlatform.h"
#include "QvPlatform.h"

namespace qvhost {

std::string TPasswordVault::DefaultKeyFile() {
  std::string env = qv::platform::GetEnv("QV_KEY_FILE").value_or("");
  if (!env.empty()) return env;
  return platform::UserConfigFolder() + "/key";
}

}  // namespace qvhost
