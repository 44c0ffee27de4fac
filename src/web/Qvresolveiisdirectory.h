// Finding the files of a web project that Visual Studio lists by its web address: through
// the IIS metabase of the server, through a network share, or by WebDAV transfers.
#pragma once

#include <string>
#include <string_view>

#include "QvWebDav.h"

namespace qv {

// The physical directory serving the address's path, a backslash and the document name,
// read from the IIS metabase of site `websiteNum`; an administrative share path
// (\\HOST\C$\...) when the address names another computer. Throws Exception when the
// metabase has no such node or it does not lead to a virtual directory.
std::string GetPhysicalDirFromIISDir(const std::string& address, int websiteNum);

// "\\HOST\SHARE\PATH\DOCUMENT" for the address, the path without its leading and trailing
// "/" (inner "/" kept).
std::string BuildShareName(const std::string& address, const std::string& shareName);

// Connects `client` (user name and password already set) to the address's server and
// downloads the project file into the temporary folder. Returns the remote directory (the
// path without leading and trailing "/") and the local file. Throws Exception with the
// client's reason when it cannot connect or download.
void GetProjectFileUsingWebDAV(TQvWebDavClient* client, const std::string& address,
                               std::string& remoteDir, std::string& localFile);

// Downloads "/REMOTEDIR/FILENAME" into the temporary folder (replacing an earlier file of
// that name) and returns the local file. Throws Exception describing the transfer on failure.
std::string GetFileUsingWebDAV(TQvWebDavClient& client, const std::string& remoteDir,
                               const std::string& fileName);

// Uploads `localFile` into the collection "/REMOTEDIR/" under its own name. Throws Exception
// describing the transfer on failure.
void PutFileUsingWebDAV(TQvWebDavClient& client, const std::string& localFile,
                        const std::string& remoteDir);

// The text with exactly one trailing "/" removed, when it has one.
std::string RemoveTrailingSlash(std::string_view s);
// The text with a "/" appended unless it is empty or already ends in one.
std::string EnsureTrailingSlash(std::string_view s);
// The text with at most one leading and one trailing "/" removed.
std::string TrimSlashes(std::string_view s);

}  // namespace qv
