// The registry as Windows has it: read-only, through the wide API, values as UTF-8.
#include "QvRegistry.h"
#include "QvWin32.h"

namespace qv {

namespace {

HKEY RootKey(TRegistryRoot root) {
  switch (root) {
    case TRegistryRoot::LocalMachine:
      return HKEY_LOCAL_MACHINE;
    case TRegistryRoot::CurrentUser:
      return HKEY_CURRENT_USER;
    case TRegistryRoot::ClassesRoot:
      return HKEY_CLASSES_ROOT;
    default:
      return HKEY_USERS;
  }
}

class TNativeRegistry : public IQvRegistryReader {
 public:
  bool ReadString(TRegistryRoot root, const std::string& key, const std::string& name,
                  std::string& value) override {
    HKEY h;
    if (RegOpenKeyExW(RootKey(root), win32::Wide(key).c_str(), 0, KEY_READ, &h) != ERROR_SUCCESS)
      return false;
    std::wstring wideName = win32::Wide(name);
    DWORD type = 0, size = 0;
    bool ok =
        RegQueryValueExW(h, wideName.c_str(), nullptr, &type, nullptr, &size) == ERROR_SUCCESS &&
        (type == REG_SZ || type == REG_EXPAND_SZ);
    if (ok) {
      std::wstring buf(size / sizeof(wchar_t) + 1, L'\0');
      ok = RegQueryValueExW(h, wideName.c_str(), nullptr, nullptr,
                            reinterpret_cast<BYTE*>(buf.data()), &size) == ERROR_SUCCESS;
      if (ok) value = win32::Utf8(buf.c_str());  // up to the terminating null
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
