#include "QvRegistry.h"

namespace qv {

// There is no native registry here; hosts install a TRegFileRegistry instead.
std::unique_ptr<IQvRegistryReader> NewNativeRegistryReader() {
  return nullptr;
}

}  // namespace qv
