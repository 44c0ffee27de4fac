// Feeds arbitrary bytes to the host's IIS metabase export reader and looks a few monikers up
// in whatever it accepted.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Metabase.h"
#include "QvExceptions.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    auto metabase = qvhost::TMetabase::LoadFromText(text, "MetaBase.xml");
    for (const char* moniker : {"IIS://localhost/w3svc/1/ROOT", "IIS://h/W3SVC/1/root/App/",
                                "IIS://h", "iis://", "IIS:/x"}) {
      if (auto node = metabase->CoGetObject(moniker)) {
        node->GetProperty("class");
        try {
          node->GetProperty("Path");
        } catch (const qv::Exception&) {
        }
      }
    }
  } catch (const qv::Exception&) {
  }
  return 0;
}
