#include "Qvresolveiisdirectory.h"

#include <cassert>
#include <filesystem>

#include "QvAutomation.h"
#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qv {

namespace {

constexpr std::string_view kNoObject = "Unable to resolve to physical path - no object found";
constexpr std::string_view kVirtualDir = "IIsWebVirtualDir";

std::string Moniker(const TQvURI& uri, int websiteNum, std::string_view path) {
  return "IIS://" + uri.Host + "/w3svc/" + IntToStr(websiteNum) + "/ROOT" + std::string(path);
}

// COM's binding never raises here: whatever goes wrong is "no object".
IntfPtr<IQvDispatch> BindOrFail(const std::string& moniker) {
  IntfPtr<IQvDispatch> object;
  try {
    object = CoGetObject(moniker);
  } catch (const std::exception&) {
    object = nullptr;
  }
  if (!object) throw Exception(std::string(kNoObject));
  return object;
}

// One step up from a plain directory node: the last segment of `path` moves into `suffix`.
// False when the path has no "/" left to climb.
bool WalkUp(std::string& path, std::string& suffix) {
  std::string p = RemoveTrailingSlash(path);
  size_t slash = p.rfind('/');
  if (slash == std::string::npos) return false;
  suffix = "\\" + p.substr(slash + 1) + suffix;
  path = p.substr(0, slash);
  return true;
}

// Another computer's drive is reached through its administrative share.
std::string MakeReachable(const std::string& localPath, const std::string& host) {
  if (host == GetComputerNetName() || UpperCase(host) == "LOCALHOST") return localPath;
  std::string result = localPath;
  if (size_t colon = result.find(':'); colon != std::string::npos) result[colon] = '$';
  return "\\\\" + host + "\\" + result;
}

// Lines joined by a lone carriage return, as the transfer errors have always been written.
std::string CrLines(std::initializer_list<std::string> lines) {
  std::string text;
  for (const std::string& line : lines)
    text += (text.empty() ? "" : "\r") + line;
  return text;
}

}  // namespace

std::string RemoveTrailingSlash(std::string_view s) {
  if (s.ends_with('/')) s.remove_suffix(1);
  return std::string(s);
}

std::string EnsureTrailingSlash(std::string_view s) {
  if (s.empty() || s.ends_with('/')) return std::string(s);
  return std::string(s) + "/";
}

std::string TrimSlashes(std::string_view s) {
  if (s.starts_with('/')) s.remove_prefix(1);
  return RemoveTrailingSlash(s);
}

std::string GetPhysicalDirFromIISDir(const std::string& address, int websiteNum) {
  TQvURI uri = ParseURI(address);
  std::string moniker = Moniker(uri, websiteNum, uri.Path);
  moniker = uri.Path.empty() ? EnsureTrailingSlash(moniker) : RemoveTrailingSlash(moniker);
  IntfPtr<IQvDispatch> node = BindOrFail(moniker);
  std::string path = uri.Path, suffix;
  std::string nodeClass = node->GetProperty("class");
  while (nodeClass != kVirtualDir && WalkUp(path, suffix)) {
    node = BindOrFail(Moniker(uri, websiteNum, path));
    nodeClass = node->GetProperty("class");
  }
  if (nodeClass != kVirtualDir)
    throw Exception("Unable to resolve to physical path - found " + nodeClass +
                    "\rOriginal IIS uri: ");
  return MakeReachable(node->GetProperty("Path") + suffix + "\\" + uri.Document, uri.Host);
}

std::string BuildShareName(const std::string& address, const std::string& shareName) {
  TQvURI uri = ParseURI(address);
  return "\\\\" + uri.Host + "\\" + shareName + "\\" + TrimSlashes(uri.Path) + "\\" + uri.Document;
}

void GetProjectFileUsingWebDAV(TQvWebDavClient* client, const std::string& address,
                               std::string& remoteDir, std::string& localFile) {
  assert(client && "GetProjectFileUsingWebDAV needs a client");
  TQvURI uri = ParseURI(address);
  remoteDir = TrimSlashes(uri.Path);
  client->ServerName = uri.Host;
  client->Port = StrToIntDef(uri.Port, 80);
  if (!client->Connect())
    throw Exception("Unable to connect using WebDAV : " + client->LastError());
  localFile = GetFileUsingWebDAV(*client, remoteDir, uri.Document);
}

std::string GetFileUsingWebDAV(TQvWebDavClient& client, const std::string& remoteDir,
                               const std::string& fileName) {
  std::string localFile = IncludeTrailingPathDelimiter(GetTempFolder()) + fileName;
  std::error_code ignored;
  std::filesystem::remove(platform::FsPath(localFile), ignored);
  std::string remote = "/" + remoteDir + "/" + fileName;
  if (!client.DownloadFile(localFile, remote))
    throw Exception(CrLines({"Error retrieving file with WebDAV: " + client.LastError(),
                             "Download filename: " + localFile, "Servername: " + client.ServerName,
                             "Serverport: " + IntToStr(client.Port), "UserID: " + client.UserName,
                             "Requested file: " + remote}));
  return localFile;
}

void PutFileUsingWebDAV(TQvWebDavClient& client, const std::string& localFile,
                        const std::string& remoteDir) {
  std::string remote = "/" + remoteDir + "/";
  if (!client.UploadFile(localFile, remote))
    throw Exception(CrLines({"Error uploading file with WebDAV: " + client.LastError(),
                             "Local filename: " + localFile, "Servername: " + client.ServerName,
                             "Serverport: " + IntToStr(client.Port), "UserID: " + client.UserName,
                             "Remote Path: " + remote}));
}

}  // namespace qv
