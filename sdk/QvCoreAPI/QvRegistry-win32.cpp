#include <windows.h>

#include "QvRegistry.h"

namespace qv {

namespace {

class TNativeRegistry : public IQvRegistryReader {
 public:
  bool ReadString(TRegistryRoot root, const std::string& key, const std::string& name,
                  std::string& value) override {
    HKEY base = root == TRegistryRoot::LocalMachine  ? HKEY_LOCAL_MACHINE
                : root == TRegistryRoot::CurrentUser ? HKEY_CURRENT_USER
                : root == TRegistryRoot::ClassesRoot ? HKEY_CLASSES_ROOT
                                                     : HKEY_USERS;
    HKEY h;
    if (RegOpenKeyExA(base, key.c_str(), 0, KEY_READ, &h) != ERROR_SUCCESS) return false;
    DWORD type = 0, size = 0;
    bool ok = RegQueryValueExA(h, name.c_str(), nullptr, &type, nullptr, &size) == ERROR_SUCCESS &&
              (type == REG_SZ || type == REG_EXPAND_SZ);
    if (ok) {
      std::string buf(size, '\0');
      ok = RegQueryValueExA(h, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(buf.data()),
                            &size) == ERROR_SUCCESS;
      if (ok) value.assign(buf.c_str());
    }
    RegCloseKey(h);
    return ok;
  }
};

}  // namespace

std::unique_ptr<IQvRegistryReader> NewNativeRegistryReader() {
  return std::make_unique<TNativeRegistry>();
}

}  // namespace qv
