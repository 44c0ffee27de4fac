#include "QvWebDav.h"

namespace qv {

IQvWebDavServices* QvWebDavServices = nullptr;

bool TQvWebDavClient::Connect() {
  FSession.Reset();
  FLastError.clear();
  if (!QvWebDavServices) {
    FLastError = "This host offers no WebDAV client";
    return false;
  }
  IntfPtr<IQvWebDavSession> session =
      QvWebDavServices->NewSession(TQvWebDavTarget{ServerName, Port, UserName, Password});
  if (!session->Connect(FLastError)) return false;
  FSession = session;
  return true;
}

void TQvWebDavClient::Disconnect() {
  FSession.Reset();
}

bool TQvWebDavClient::Connected() {
  if (FSession) return true;
  FLastError = "Not connected to " + ServerName;
  return false;
}

bool TQvWebDavClient::DownloadFile(const std::string& localFile, const std::string& remotePath) {
  FLastError.clear();
  return Connected() && FSession->DownloadFile(localFile, remotePath, FLastError);
}

bool TQvWebDavClient::UploadFile(const std::string& localFile, const std::string& remotePath) {
  FLastError.clear();
  return Connected() && FSession->UploadFile(localFile, remotePath, FLastError);
}

}  // namespace qv
