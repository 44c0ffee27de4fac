// Version stamping before a build: counted-up numbers, property sets, and the Win32
// version resources of the chosen Visual C++ projects.
#include <algorithm>
#include <memory>

#include "QvExceptions.h"
#include "QvSysUtils.h"
#include "QvUtils.h"
#include "Qvresolveiisdirectory.h"
#include "Qvvc7versioninfo.h"
#include "Qvvsdotnetaction.h"

namespace qv {

namespace {

// A 32-bit number plus one, wrapping round at the top as the Win32 tools' integers do.
int32_t Next(int32_t v) {
  return static_cast<int32_t>(static_cast<uint32_t>(v) + 1u);
}

// A part's text plus one; a part that is no 32-bit number ("*", an expression) restarts at 1.
std::string CountedUp(const std::string& part) {
  return IntToStr(Next(StrToIntDef(part, 0)));
}

// The set named `name`, or null after logging that there is none.
IntfPtr<IQvPropertySet> FoundOrReported(TCustomQvAction& action, const std::string& name) {
  IntfPtr<IQvPropertySet> set = action.FindPropertySet(name);
  if (!set) action.SendMessage("Unable to find property set: " + name, TStatusTag::Error);
  return set;
}

// The property names of a set, without the two every set carries.
std::vector<std::string> SetPropertyNames(IQvPropertySet& set) {
  TStringList names;
  names.SetCommaText(set.GetPropertyNames());
  std::vector<std::string> out;
  for (const std::string& n : names)
    if (!SameText(n, "ObjectID") && !SameText(n, "Name")) out.push_back(n);
  return out;
}

}  // namespace

std::string TQvCustomVSDotNetAction::DoAutoIncBuild(const std::string& text) {
  size_t bar = text.rfind('|');
  std::string kept = bar == std::string::npos ? std::string() : text.substr(0, bar + 1);
  std::string rest = ExpandExpression(text.substr(kept.size()), true);
  return kept + IntToStr(Next(StrToIntDef(rest, -1)));
}

void TQvCustomVSDotNetAction::CountUpAssemblyNumbers() {
  if (FAutoIncAssemblyRevisionNo) {
    FAssemblyVersionParts[3] = CountedUp(FAssemblyVersionParts[3]);
    ResetAssemblyVersion();
  }
  if (FAutoIncAssemblyFileRevisionNo) {
    FAssemblyFileVersionParts[3] = CountedUp(FAssemblyFileVersionParts[3]);
    ResetAssemblyFileVersion();
  }
  if (FAutoIncAssemblyBuildNumber) {
    FAssemblyVersionParts[2] = CountedUp(FAssemblyVersionParts[2]);
    ResetAssemblyVersion();
  }
  if (FAutoIncAssemblyFileBuildNumber) {
    FAssemblyFileVersionParts[2] = CountedUp(FAssemblyFileVersionParts[2]);
    ResetAssemblyFileVersion();
  }
}

namespace {

// The web-project routines over one WebDAV client, opened on the first WebDAV project and
// kept for the run so that files can be put back.
TQvWebProjectRoutines WebRoutines(std::shared_ptr<TQvWebDavClient> client) {
  TQvWebProjectRoutines web;
  web.GetPhysicalDirFromIISDir = &GetPhysicalDirFromIISDir;
  web.BuildShareName = &BuildShareName;
  web.GetProjectFileUsingWebDAV = [client](const std::string& user, const std::string& password,
                                           const std::string& address, std::string& remoteDir,
                                           std::string& localFile) {
    client->UserName = user;
    client->Password = password;
    GetProjectFileUsingWebDAV(client.get(), address, remoteDir, localFile);
  };
  // Folders of a project's file references are written with "\"; URLs take "/".
  web.GetFileUsingWebDAV = [client](const std::string& remoteDir, const std::string& fileName) {
    return GetFileUsingWebDAV(*client, StringReplaceAll(remoteDir, "\\", "/"), fileName);
  };
  web.PutFileUsingWebDAV = [client](const std::string& localFile, const std::string& remoteDir) {
    PutFileUsingWebDAV(*client, localFile, StringReplaceAll(remoteDir, "\\", "/"));
  };
  web.CloseWebDAV = [client] { client->Disconnect(); };
  return web;
}

}  // namespace

bool TQvCustomVSDotNetAction::GetUpdateAssemblyAttribute(TQvAssemblyAttribute attribute) {
  const bool* switches[] = {
      &FUpdateAssemblyTitle,       &FUpdateAssemblyComment,     &FUpdateAssemblyCompany,
      &FUpdateAssemblyDescription, &FUpdateAssemblyCopyright,   &FUpdateAssemblyTradeMark,
      &FUpdateAssemblyProductName, &FUpdateAssemblyFileVersion, &FUpdateAssemblyVersion};
  return *switches[static_cast<size_t>(attribute)];
}

std::string TQvCustomVSDotNetAction::GetAssemblyAttributeValue(TQvAssemblyAttribute attribute) {
  switch (attribute) {
    case TQvAssemblyAttribute::aaTitle:
      return FAssemblyTitle;
    case TQvAssemblyAttribute::aaComment:
      return {};
    case TQvAssemblyAttribute::aaCompany:
      return FAssemblyCompany;
    case TQvAssemblyAttribute::aaDescription:
      return FAssemblyDescription;
    case TQvAssemblyAttribute::aaCopyright:
      return FAssemblyCopyright;
    case TQvAssemblyAttribute::aaTrademark:
      return FAssemblyTradeMark;
    case TQvAssemblyAttribute::aaProduct:
      return FAssemblyProductName;
    case TQvAssemblyAttribute::aaFileVersion:
      return FAssemblyFileVersion;
    case TQvAssemblyAttribute::aaVersion:
      return FAssemblyVersion;
  }
  return {};
}

bool TQvCustomVSDotNetAction::DoUpdateAssemblyInfo(IVSDotNetSolution& solution) {
  StartMessageGroup("Updating AssemblyInfo", 0, TStatusTag::Plain);
  bool ok = true;
  if (!FUseDotNetPropertySet) {
    CountUpAssemblyNumbers();
  } else if (FDotNetVersionInfoPropertySetName.empty()) {
    SendMessage("DotNet PropertySet name is blank", TStatusTag::Error);
    ok = false;
  } else {
    ok = LoadDotNetVersionInfoFromPropertySet();
  }
  if (ok) {
    try {
      IntfPtr<IQvAssemblyInfoUpdater> updater =
          GetAssemblyInfoUpdater(IntfPtr<IVSDotNetSolution>(&solution), *this,
                                 WebRoutines(std::make_shared<TQvWebDavClient>()));
      if (FApplyAssemblyInfoTo == TVSDotNetBuildType::btSelectedProjects) {
        PruneStaleProjects(solution, FAssemblySelectedProjects);
        bool onlyBuilt = FBuildType != TVSDotNetBuildType::btAllProjects;
        if (onlyBuilt) PruneStaleProjects(solution, FSelectedProjects);
        updater->UpdateAssemblyInfo(FAssemblySelectedProjects,
                                    onlyBuilt ? &FSelectedProjects : nullptr);
      } else {
        updater->UpdateAllAssemblyInfo();
      }
    } catch (const std::exception& e) {
      SendMessage(std::string("Error Updating Assembly Info : ") + e.what(), TStatusTag::Error);
      ok = false;
    }
  }
  EndMessageGroup(ok ? TStatusTag::Success : TStatusTag::Error);
  return ok;
}

bool TQvCustomVSDotNetAction::LoadDotNetVersionInfoFromPropertySet() {
  IntfPtr<IQvPropertySet> set = FoundOrReported(*this, FDotNetVersionInfoPropertySetName);
  if (!set) return false;
  static const char* const kParts[] = {"MajorVersion", "MinorVersion", "BuildVersion",
                                       "RevisionVersion"};
  const std::pair<const char*, std::pair<std::string*, bool*>> texts[] = {
      {"Title", {&FAssemblyTitle, &FUpdateAssemblyTitle}},
      {"Description", {&FAssemblyDescription, &FUpdateAssemblyDescription}},
      {"Company", {&FAssemblyCompany, &FUpdateAssemblyCompany}},
      {"Product", {&FAssemblyProductName, &FUpdateAssemblyProductName}},
      {"Copyright", {&FAssemblyCopyright, &FUpdateAssemblyCopyright}},
      {"Trademark", {&FAssemblyTradeMark, &FUpdateAssemblyTradeMark}},
  };
  for (const std::string& name : SetPropertyNames(*set)) {
    std::string value = set->GetValue(name);
    for (size_t i = 0; i < 4; ++i)
      if (SameText(name, kParts[i])) {
        FAssemblyVersionParts[i] = FAssemblyFileVersionParts[i] = value;
        FUpdateAssemblyVersion = FUpdateAssemblyFileVersion = true;
      }
    for (const auto& [key, target] : texts)
      if (SameText(name, key)) {
        *target.first = value;
        *target.second = true;
      }
  }
  ResetAssemblyVersion();
  ResetAssemblyFileVersion();
  return true;
}

bool TQvCustomVSDotNetAction::LoadWin32VersionInfoFromPropertySet() {
  IntfPtr<IQvPropertySet> set = FoundOrReported(*this, FWin32VersionInfoPropertySetName);
  if (!set) return false;
  const std::pair<const char*, bool TQvCustomVSDotNetAction::*> flags[] = {
      {"DebugBuild", &TQvCustomVSDotNetAction::FIsDebug},
      {"SpecialBuild", &TQvCustomVSDotNetAction::FIsSpecial},
      {"PrivateBuild", &TQvCustomVSDotNetAction::FIsPrivate},
      {"PreReleaseBuild", &TQvCustomVSDotNetAction::FIsPreRelease},
  };
  for (const std::string& name : SetPropertyNames(*set)) {
    std::string value = set->GetValue(name);
    if (HasProperty(name)) {
      SetPropValue(name, value);
      continue;
    }
    if (SameText(name, "DLL")) {
      FIsDLL = StrToBoolDef(value, false);
      continue;
    }
    auto flag = std::find_if(std::begin(flags), std::end(flags),
                             [&](const auto& f) { return SameText(name, f.first); });
    if (flag == std::end(flags)) {
      SetVersionInfoKey(name, value);
    } else if ((this->*flag->second = StrToBoolDef(value, false))) {
      SetVersionInfoKey(name, value);
    } else {
      RemoveVersionInfoKey(name);
    }
  }
  return true;
}

bool TQvCustomVSDotNetAction::ApplyVersionInfo(const std::string& fileName) {
  try {
    IntfPtr<IQvVC7VersionInfoParser> parser = GetVersionInfoParser(this, fileName);
    SendMessage("Updating Version info in file : " + fileName, TStatusTag::Plain);
    parser->UpdateVersionInfo(this);
    return true;
  } catch (const std::exception& e) {
    SendMessage(e.what(), TStatusTag::Error);
    return false;
  }
}

// Drops identifiers that name no project of the solution any more.
void TQvCustomVSDotNetAction::PruneStaleProjects(IVSDotNetSolution& solution, TStringList& ids) {
  IntfPtr<IVSDotNetProjects> projects = solution.GetProjects();
  for (int i = ids.Count() - 1; i >= 0; --i)
    if (!projects->FindByGUID(ids[i])) ids.Delete(i);
}

bool TQvCustomVSDotNetAction::DoUpdateWin32VersionInfo(IVSDotNetSolution& solution) {
  if (FAutoIncBuild) {
    FBuildVersion = Next(FBuildVersion);
    UpdateFileVersion();
  }
  IntfPtr<IVSDotNetProjects> projects = solution.GetProjects();
  std::vector<IntfPtr<IVSDotNetProject>> chosen;
  if (FApplyResourceInfoTo == TVSDotNetBuildType::btSelectedProjects) {
    PruneStaleProjects(solution, FResourceSelectedProjects);
    for (const std::string& id : FResourceSelectedProjects)
      chosen.push_back(projects->FindByGUID(id));
  } else {
    for (int i = 0; i < projects->GetCount(); ++i)
      chosen.push_back(projects->GetItem(i));
  }
  for (const auto& project : chosen) {
    std::string script = project->GetVersionInfoFile();
    if (!script.empty() && !ApplyVersionInfo(script)) return false;
  }
  return true;
}

bool TQvCustomVSDotNetAction::StampWin32Resources(IVSDotNetSolution& solution) {
  StartMessageGroup("Updating Win32 Version Info", 0, TStatusTag::Plain);
  if (FUseWin32PropertySet) {
    // The group stays open on these two failures; the host closes it with the action.
    if (FWin32VersionInfoPropertySetName.empty()) {
      SendMessage("Win32 PropertySet name is blank", TStatusTag::Error);
      return false;
    }
    if (!LoadWin32VersionInfoFromPropertySet()) return false;
  }
  bool ok = DoUpdateWin32VersionInfo(solution);
  EndMessageGroup(ok ? TStatusTag::Success : TStatusTag::Error);
  return ok;
}

}  // namespace qv
