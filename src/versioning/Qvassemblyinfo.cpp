#include "Qvassemblyinfo.h"

#include <filesystem>

#include "QvExceptions.h"
#include "QvPaths.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qv {

namespace {
constexpr int useWebDAV = 2;

class TQvAssemblyInfoUpdater : public TInterfacedObject, public IQvAssemblyInfoUpdater {
 public:
  TQvAssemblyInfoUpdater(IntfPtr<IVSDotNetSolution> solution, TCustomQvAction& action,
                         IntfPtr<IQvAssemblyInfoSettings> settings, TQvWebProjectRoutines web)
      : FSolution(std::move(solution)),
        FAction(action),
        FSettings(std::move(settings)),
        FWeb(std::move(web)),
        FSolutionDir(ExtractFilePath(FSolution->GetFileName())) {}

  void UpdateAllAssemblyInfo() override;
  void UpdateAssemblyInfo(const TStringList& projectIds, const TStringList* filter) override;

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IQvAssemblyInfoUpdater>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  void ProcessProjects(const TStringList& ids);
  void ProcessProject(const std::string& id);
  std::string LocateProjectFile(const std::string& fileName, bool web);
  void ProcessWebDAVFile(const std::string& reference);
  void ProcessFile(const std::string& path);
  std::optional<std::string> ValueOf(TQvAssemblyAttribute attribute);

  IntfPtr<IVSDotNetSolution> FSolution;
  TCustomQvAction& FAction;
  IntfPtr<IQvAssemblyInfoSettings> FSettings;
  TQvWebProjectRoutines FWeb;
  std::string FSolutionDir;
  std::string FRemoteDir;  // of the web project last fetched over WebDAV
  bool FWebDAVOpen = false;
};

// The first AssemblyInfo reference of a project file, lower-cased as found; empty when the
// file has none.
std::string FindAssemblyInfoReference(const std::string& projectFile) {
  TStringList lines;
  LoadUnicodeFile(projectFile, lines);
  std::string text = LowerCase(lines.Text());
  size_t at = text.find("assemblyinfo.");
  if (at == std::string::npos) return {};
  size_t open = text.rfind('"', at);
  if (open == std::string::npos) return {};
  size_t close = text.find('"', at);
  if (close == std::string::npos) return {};
  return text.substr(open + 1, close - open - 1);
}

void TQvAssemblyInfoUpdater::UpdateAllAssemblyInfo() {
  TStringList ids;
  IntfPtr<IVSDotNetProjects> projects = FSolution->GetProjects();
  for (int i = 0; i < projects->GetCount(); ++i)
    ids.Add(projects->GetItem(i)->GetProjectGUID());
  ProcessProjects(ids);
}

void TQvAssemblyInfoUpdater::UpdateAssemblyInfo(const TStringList& projectIds,
                                                const TStringList* filter) {
  TStringList ids;
  for (const std::string& id : projectIds)
    if (!filter || filter->IndexOf(id) >= 0) ids.Add(id);
  ProcessProjects(ids);
}

void TQvAssemblyInfoUpdater::ProcessProjects(const TStringList& ids) {
  FAction.SendMessage(IntToStr(ids.Count()) + " projects to process.");
  try {
    for (const std::string& id : ids)
      ProcessProject(id);
  } catch (...) {
    if (FWebDAVOpen && FWeb.CloseWebDAV) FWeb.CloseWebDAV();
    FWebDAVOpen = false;
    throw;
  }
  if (FWebDAVOpen && FWeb.CloseWebDAV) FWeb.CloseWebDAV();
  FWebDAVOpen = false;
}

void TQvAssemblyInfoUpdater::ProcessProject(const std::string& id) {
  IntfPtr<IVSDotNetProject> project = FSolution->GetProjects()->FindByGUID(id);
  if (!project) {
    FAction.SendMessage("ProjectID : " + id + " - not found in solution", TStatusTag::Error);
    return;
  }
  std::string fileName = project->GetFileName();
  bool web = ContainsStr(LowerCase(fileName), "http://");
  std::string path = LocateProjectFile(fileName, web);
  if (!platform::FileExists(path)) throw Exception("ERROR : Unable to find : " + path);
  FAction.SendMessage("Processing Project File : " + path);
  std::string reference = FindAssemblyInfoReference(path);
  if (reference.empty()) return;
  if (web && FSettings->GetProjLocationDetectMethodValue() == useWebDAV)
    ProcessWebDAVFile(reference);
  else
    ProcessFile(ResolvePathCase(ExpandRelativePath(reference, ExtractFilePath(path))));
}

std::string TQvAssemblyInfoUpdater::LocateProjectFile(const std::string& fileName, bool web) {
  if (!web) return ResolvePathCase(ExpandRelativePath(fileName, FSolutionDir));
  std::string path;
  switch (FSettings->GetProjLocationDetectMethodValue()) {
    case 0:
      if (FWeb.GetPhysicalDirFromIISDir)
        path = FWeb.GetPhysicalDirFromIISDir(fileName, FSettings->GetWMIWebsiteNum());
      break;
    case 1:
      if (FWeb.BuildShareName) path = FWeb.BuildShareName(fileName, FSettings->GetSharePath());
      break;
    case useWebDAV:
      if (FWeb.GetProjectFileUsingWebDAV) {
        FWebDAVOpen = true;
        FWeb.GetProjectFileUsingWebDAV(FSettings->GetWebDAVUsername(),
                                       FSettings->GetWebDAVPassword(), fileName, FRemoteDir, path);
      }
      break;
    default:
      break;
  }
  return ResolvePathCase(path);
}

void TQvAssemblyInfoUpdater::ProcessWebDAVFile(const std::string& reference) {
  std::string remoteDir = FRemoteDir;
  std::string relativeDir = ExcludeTrailingPathDelimiter(ExtractFilePath(reference));
  if (!relativeDir.empty()) remoteDir += "/" + StringReplaceAll(relativeDir, "\\", "/");
  std::string local = FWeb.GetFileUsingWebDAV(remoteDir, ExtractFileName(reference));
  ProcessFile(local);
  FWeb.PutFileUsingWebDAV(local, remoteDir);
  // The local copy (and its backup) served only this transfer.
  std::error_code ec;
  std::filesystem::remove(platform::FsPath(local), ec);
  std::filesystem::remove(platform::FsPath(local + ".bak"), ec);
}

void TQvAssemblyInfoUpdater::ProcessFile(const std::string& path) {
  FAction.SendMessage("Processing AssemblyInfo File : " + path);
  std::string backup = path + ".bak";
  std::error_code ec;
  if (!std::filesystem::remove(platform::FsPath(backup), ec) && ec)
    throw Exception("Unable to delete file \"" + backup + "\" : " + ec.message());
  TStringList lines;
  lines.LoadFromFile(path);
  FAction.SendMessage("Backingup AssemblyInfo File : " + path + " to :" + backup);
  // The backup is the file's bytes as they were, whatever the codec would make of them.
  std::string bytes, error;
  if (!platform::ReadWholeFile(path, bytes, error))
    throw Exception("Cannot open file \"" + path + "\". " + error);
  platform::AtomicWriteFile(backup, bytes);
  RewriteAssemblyInfo(
      lines, UpperCase(ExtractFileExt(path)) == ".CPP",
      [this](TQvAssemblyAttribute a) { return ValueOf(a); },
      [this](const std::string& text) { FAction.SendMessage(text); });
  lines.SaveToFile(path);
}

std::optional<std::string> TQvAssemblyInfoUpdater::ValueOf(TQvAssemblyAttribute attribute) {
  if (attribute == TQvAssemblyAttribute::aaComment) return std::nullopt;
  if (!FSettings->GetUpdateAssemblyAttribute(attribute)) return std::nullopt;
  TQvAssemblyAttribute source = attribute;
  if (attribute == TQvAssemblyAttribute::aaFileVersion &&
      FSettings->GetLinkAssemblyFileVersionInfo())
    source = TQvAssemblyAttribute::aaVersion;
  return FAction.ExpandExpression(FSettings->GetAssemblyAttributeValue(source), true);
}
}  // namespace

IntfPtr<IQvAssemblyInfoUpdater> GetAssemblyInfoUpdater(IntfPtr<IVSDotNetSolution> solution,
                                                       TCustomQvAction& action,
                                                       TQvWebProjectRoutines web) {
  IntfPtr<IQvAssemblyInfoSettings> settings = Supports<IQvAssemblyInfoSettings>(&action);
  if (!settings)
    throw Exception("The action \"" + action.GetActionName() + "\" has no AssemblyInfo settings");
  return MakeIntf<IQvAssemblyInfoUpdater, TQvAssemblyInfoUpdater>(
      std::move(solution), action, std::move(settings), std::move(web));
}

}  // namespace qv
