#include "WebDavClient.h"

#include <curl/curl.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>

#include "QvInterfaces.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qvhost {

namespace {

constexpr long kConnectTimeoutSeconds = 20;
constexpr long kTransferTimeoutSeconds = 600;

struct TFileCloser {
  void operator()(FILE* f) const { std::fclose(f); }
};
using TFilePtr = std::unique_ptr<FILE, TFileCloser>;

struct TCurlCleanup {
  void operator()(CURL* c) const { curl_easy_cleanup(c); }
};

// The last status line seen: with Digest the first answer is a 401 and only the last counts.
size_t OnHeader(char* data, size_t size, size_t count, void* user) {
  std::string_view line(data, size * count);
  if (line.starts_with("HTTP/")) {
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n'))
      line.remove_suffix(1);
    *static_cast<std::string*>(user) = line;
  }
  return size * count;
}

size_t Discard(char*, size_t size, size_t count, void*) {
  return size * count;
}

// Digest answers the first PUT with 401, so curl sends the body again from the start.
int SeekFile(void* user, curl_off_t offset, int origin) {
  return fseeko(static_cast<FILE*>(user), offset, origin) == 0 ? CURL_SEEKFUNC_OK
                                                               : CURL_SEEKFUNC_CANTSEEK;
}

class TCurlSession : public qv::TInterfacedObject, public qv::IQvWebDavSession {
 public:
  explicit TCurlSession(qv::TQvWebDavTarget target) : FTarget(std::move(target)) {}

  bool Connect(std::string& error) override {
    auto curl = NewRequest("/");
    curl_easy_setopt(curl.get(), CURLOPT_CUSTOMREQUEST, "OPTIONS");
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, Discard);
    return Perform(curl.get(), error);
  }

  bool DownloadFile(const std::string& localFile, const std::string& remotePath,
                    std::string& error) override;
  bool UploadFile(const std::string& localFile, const std::string& remoteDir,
                  std::string& error) override;

 protected:
  void* GetInterface(const qv::TGUID& iid) override {
    if (void* p = qv::QueryInterfaceList<qv::IQvWebDavSession>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  std::unique_ptr<CURL, TCurlCleanup> NewRequest(const std::string& remotePath);
  bool Perform(CURL* curl, std::string& error);

  qv::TQvWebDavTarget FTarget;
  std::string FUrl, FStatusLine;
};

std::unique_ptr<CURL, TCurlCleanup> TCurlSession::NewRequest(const std::string& remotePath) {
  std::unique_ptr<CURL, TCurlCleanup> curl(curl_easy_init());
  CURL* c = curl.get();
  std::string url =
      "http://" + FTarget.ServerName + ":" + qv::IntToStr(FTarget.Port) + EncodeUrlPath(remotePath);
  FUrl = url;
  curl_easy_setopt(c, CURLOPT_URL, FUrl.c_str());
  curl_easy_setopt(c, CURLOPT_USERNAME, FTarget.UserName.c_str());
  curl_easy_setopt(c, CURLOPT_PASSWORD, FTarget.Password.c_str());
  curl_easy_setopt(c, CURLOPT_HTTPAUTH, CURLAUTH_BASIC | CURLAUTH_DIGEST);
  curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, kConnectTimeoutSeconds);
  curl_easy_setopt(c, CURLOPT_TIMEOUT, kTransferTimeoutSeconds);
  curl_easy_setopt(c, CURLOPT_HEADERFUNCTION, OnHeader);
  curl_easy_setopt(c, CURLOPT_HEADERDATA, &FStatusLine);
  FStatusLine.clear();
  return curl;
}

// Success is 200, 201 or 204; anything else fails with the answer's status line. A transport
// failure names curl's reason and the address (which never carries the credentials).
bool TCurlSession::Perform(CURL* curl, std::string& error) {
  CURLcode rc = curl_easy_perform(curl);
  if (rc != CURLE_OK) {
    error = std::string(curl_easy_strerror(rc)) + " (" + FUrl + ")";
    return false;
  }
  long status = 0;
  curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
  if (status == 200 || status == 201 || status == 204) return true;
  error = FStatusLine.empty() ? "HTTP status " + qv::IntToStr(status) : FStatusLine;
  return false;
}

// The answer goes to a file beside the target that replaces it only once it is complete.
bool TCurlSession::DownloadFile(const std::string& localFile, const std::string& remotePath,
                                std::string& error) {
  std::string partial = localFile + ".part";
  TFilePtr out(qv::platform::OpenFile(partial, "wb"));
  if (!out) {
    error = "Cannot create \"" + partial + "\"";
    return false;
  }
  auto curl = NewRequest(remotePath);
  curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, out.get());
  bool ok = Perform(curl.get(), error);
  if (std::fclose(out.release()) != 0 && ok) {
    error = "Cannot write \"" + partial + "\"";
    ok = false;
  }
  std::error_code ec;
  if (ok)
    std::filesystem::rename(qv::platform::FsPath(partial), qv::platform::FsPath(localFile), ec);
  if (ec) error = "Cannot replace \"" + localFile + "\": " + ec.message();
  if (!ok || ec) std::filesystem::remove(qv::platform::FsPath(partial), ec);
  return ok && !ec;
}

bool TCurlSession::UploadFile(const std::string& localFile, const std::string& remoteDir,
                              std::string& error) {
  TFilePtr in(qv::platform::OpenFile(localFile, "rb"));
  std::error_code ec;
  auto size = std::filesystem::file_size(qv::platform::FsPath(localFile), ec);
  if (!in || ec) {
    error = "Cannot read \"" + localFile + "\"";
    return false;
  }
  std::string dir = remoteDir.ends_with('/') ? remoteDir : remoteDir + "/";
  auto curl = NewRequest(dir + qv::ExtractFileName(localFile));
  curl_easy_setopt(curl.get(), CURLOPT_UPLOAD, 1L);
  curl_easy_setopt(curl.get(), CURLOPT_READDATA, in.get());
  curl_easy_setopt(curl.get(), CURLOPT_SEEKFUNCTION, SeekFile);
  curl_easy_setopt(curl.get(), CURLOPT_SEEKDATA, in.get());
  curl_easy_setopt(curl.get(), CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(size));
  curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, Discard);
  return Perform(curl.get(), error);
}

}  // namespace

TCurlWebDav::TCurlWebDav() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

qv::IntfPtr<qv::IQvWebDavSession> TCurlWebDav::NewSession(const qv::TQvWebDavTarget& target) {
  return qv::MakeIntf<qv::IQvWebDavSession, TCurlSession>(target);
}

std::string EncodeUrlPath(std::string_view path) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string url;
  for (char ch : path) {
    auto c = static_cast<unsigned char>(ch);
    bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                 c == '-' || c == '.' || c == '_' || c == '~' || c == '/';
    if (plain) {
      url += ch;
    } else {
      url += '%';
      url += kHex[c >> 4];
      url += kHex[c & 15];
    }
  }
  return url;
}

}  // namespace qvhost
