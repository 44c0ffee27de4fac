// The host's WebDAV transport on libcurl: OPTIONS to connect, GET to download, PUT to
// upload, with HTTP Basic or Digest authentication.
#pragma once

#include "QvWebDav.h"

namespace qvhost {

class TCurlWebDav final : public qv::IQvWebDavServices {
 public:
  TCurlWebDav();
  // A session to http://SERVER:PORT with the target's credentials.
  qv::IntfPtr<qv::IQvWebDavSession> NewSession(const qv::TQvWebDavTarget& target) override;
};

// `path` with every byte outside letters, digits, "-", ".", "_", "~" and "/" written as %XX.
std::string EncodeUrlPath(std::string_view path);

}  // namespace qvhost
