// The AssemblyInfo updater: stamps title, company, copyright, versions and the rest into the
// AssemblyInfo source of each chosen .NET project of a solution (C#, VB, managed C++, J#).
#pragma once

#include <memory>
#include <string>

#include "QvActions.h"
#include "QvInterfaces.h"
#include "QvassemblyinfoRewriter.h"
#include "Vsnetsln.h"

namespace qv {

// What the updater reads from the build action: it implements this over its published
// properties, and answers it from QueryInterface.
struct IQvAssemblyInfoSettings : virtual IInterface {
  QV_INTERFACE_ID("{7C3A91E2-58D4-4B0F-A6E1-2F9D0B84C5A3}");
  // UpdateAssemblyTitle ... UpdateAssemblyVersion.
  virtual bool GetUpdateAssemblyAttribute(TQvAssemblyAttribute attribute) = 0;
  // AssemblyTitle ... AssemblyProductName, AssemblyFileVersion, AssemblyVersion, unexpanded
  // (versions with "|" between parts); empty for AssemblyComment.
  virtual std::string GetAssemblyAttributeValue(TQvAssemblyAttribute attribute) = 0;
  virtual bool GetLinkAssemblyFileVersionInfo() = 0;
  // ProjLocationDetectMethod: 0 IIS metabase, 1 network share, 2 WebDAV.
  virtual int GetProjLocationDetectMethodValue() = 0;
  virtual int32_t GetWMIWebsiteNum() = 0;
  virtual std::string GetSharePath() = 0;
  virtual std::string GetWebDAVUsername() = 0;
  // The password in plain text.
  virtual std::string GetWebDAVPassword() = 0;
};

// The web-project routines (IIS metabase, share name, WebDAV transfers) the updater needs,
// given by the build action; each throws Exception with its own message on failure.
struct TQvWebProjectRoutines {
  std::function<std::string(const std::string& address, int websiteNum)> GetPhysicalDirFromIISDir;
  std::function<std::string(const std::string& address, const std::string& shareName)>
      BuildShareName;
  // Opens (once) a WebDAV client with the user name and password, downloads the project
  // file; gives the remote directory and the local copy.
  std::function<void(const std::string& user, const std::string& password,
                     const std::string& address, std::string& remoteDir, std::string& localFile)>
      GetProjectFileUsingWebDAV;
  // Downloads "/REMOTEDIR/FILENAME" and returns the local copy.
  std::function<std::string(const std::string& remoteDir, const std::string& fileName)>
      GetFileUsingWebDAV;
  // Uploads the local file into "/REMOTEDIR/".
  std::function<void(const std::string& localFile, const std::string& remoteDir)>
      PutFileUsingWebDAV;
  // Closes the WebDAV client if one was opened.
  std::function<void()> CloseWebDAV;
};

// Updates AssemblyInfo files; created per build run by GetAssemblyInfoUpdater.
struct IQvAssemblyInfoUpdater : virtual IInterface {
  QV_INTERFACE_ID("{E4B2D8A1-3C6F-4A95-9E07-81D5C2F6B3A9}");
  // Every project of the solution, in solution order. Throws Exception on a missing project
  // file ("ERROR : Unable to find : PATH") or a file that cannot be read or written.
  virtual void UpdateAllAssemblyInfo() = 0;
  // The projects named by identifier in `projectIds` (with `filter`, only those also in
  // it), in the order of `projectIds`; unknown identifiers are logged and passed over.
  virtual void UpdateAssemblyInfo(const TStringList& projectIds, const TStringList* filter) = 0;
};

// The updater of `solution` for the build action `action`, which must answer
// IQvAssemblyInfoSettings; `web` reaches web projects (without it, they are not found).
// Throws Exception when the action lacks the settings interface.
IntfPtr<IQvAssemblyInfoUpdater> GetAssemblyInfoUpdater(IntfPtr<IVSDotNetSolution> solution,
                                                       TCustomQvAction& action,
                                                       TQvWebProjectRoutines web = {});

// The declared log callback of the unit; messages go through the action's SendMessage.
using TSendMessageProc = std::function<void(const std::string&)>;

}  // namespace qv
