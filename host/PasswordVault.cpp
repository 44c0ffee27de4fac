#include "PasswordVault.h"

#include <cstdlib>

#include "HostPlatform.h"

namespace qvhost {

std::string TPasswordVault::DefaultKeyFile() {
  const char* env = std::getenv("QV_KEY_FILE");
  if (env && *env) return env;
  return platform::UserConfigFolder() + "/key";
}

}  // namespace qvhost
