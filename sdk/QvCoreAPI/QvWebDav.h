// The host's WebDAV client: packages create a TQvWebDavClient, set where and as whom to
// connect, and fetch and store files; the transfers are done by the host's transport.
#pragma once

#include <string>

#include "QvInterfaces.h"

namespace qv {

// Where a WebDAV session goes and who it is.
struct TQvWebDavTarget {
  std::string ServerName;
  int Port = 80;
  std::string UserName, Password;
};

// One WebDAV session as the host implements it. Every operation returns false and sets
// `error` to why (the status line of the answer, or the transport's reason) on failure.
struct IQvWebDavSession : virtual IInterface {
  QV_INTERFACE_ID("{6C2B9E41-8D07-4A3F-B5E2-19F0C7D4A863}");
  // Checks that the server answers and accepts the credentials.
  virtual bool Connect(std::string& error) = 0;
  // Stores the resource `remotePath` in `localFile`; the file is left untouched on failure.
  virtual bool DownloadFile(const std::string& localFile, const std::string& remotePath,
                            std::string& error) = 0;
  // Stores `localFile` in the collection `remoteDir` (ending in "/") under its own name.
  virtual bool UploadFile(const std::string& localFile, const std::string& remoteDir,
                          std::string& error) = 0;
};

class IQvWebDavServices {
 public:
  // A new session to `target`; nothing is sent until Connect.
  virtual IntfPtr<IQvWebDavSession> NewSession(const TQvWebDavTarget& target) = 0;

 protected:
  ~IQvWebDavServices() = default;
};

// The host's WebDAV transport; null when the host offers none (every Connect then fails).
extern IQvWebDavServices* QvWebDavServices;

// The WebDAV client packages use. Set ServerName, Port, UserName and Password, Connect, then
// download and upload; each operation returns true on success and otherwise leaves the
// reason in LastError (which never holds the password).
class TQvWebDavClient {
 public:
  TQvWebDavClient() = default;
  TQvWebDavClient(const TQvWebDavClient&) = delete;
  TQvWebDavClient& operator=(const TQvWebDavClient&) = delete;

  int Port = 80;
  std::string ServerName;
  std::string UserName;
  std::string Password;
  const std::string& LastError() const { return FLastError; }

  // Opens a session with the current settings and checks the server accepts them.
  bool Connect();
  // Ends the session; later transfers fail until the next Connect.
  void Disconnect();
  // Fetches `remotePath` ("/"-rooted) into `localFile`.
  bool DownloadFile(const std::string& localFile, const std::string& remotePath);
  // Stores `localFile` under its own name in the collection `remotePath` (ending in "/").
  bool UploadFile(const std::string& localFile, const std::string& remotePath);

 private:
  bool Connected();

  IntfPtr<IQvWebDavSession> FSession;
  std::string FLastError;
};

}  // namespace qv
