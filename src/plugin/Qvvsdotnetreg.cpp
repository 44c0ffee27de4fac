#include "Qvvsdotnetreg.h"

#include "Qvpagebinding.h"

#include "QvServices.h"
#include "Qvmstestaction.h"
#include "Qvversioninfoupdateraction.h"
#include "Qvvsdotnetaction.h"
#include "Qvvsdotnetoptions.h"
#include "Qvvsdotnetsolutioniterator.h"

namespace qv {

namespace {

using TProjectLookup = std::string (TQvCustomVSDotNetAction::*)(const std::string&);

// The script sees a function of one text argument; the handler calls the action's
// operation of the same name.
template <TProjectLookup Op>
TScriptValue CallProjectLookup(TCustomQvAction& self, const std::vector<TScriptValue>& args) {
  auto& action = dynamic_cast<TQvCustomVSDotNetAction&>(self);
  std::string arg = args.empty() ? std::string() : ScriptValueToString(args[0]);
  return (action.*Op)(arg);
}

void RegisterBuildAction() {
  const TQvActionClass& cls = ActionClassOf<TQvVSDotNetAction>();
  QvActionServices->RegisterAction("Build VS.Net Solution", "Compilers", "DEVENV", cls);
  QvScriptingServices->RegisterMethod(cls, "GetProjectID",
                                      "function _GetProjectID(const ProjectName: string): string;",
                                      &CallProjectLookup<&TQvCustomVSDotNetAction::GetProjectID>);
  QvScriptingServices->RegisterMethod(cls, "GetProjectName",
                                      "function _GetProjectName(const ProjectId: string): string;",
                                      &CallProjectLookup<&TQvCustomVSDotNetAction::GetProjectName>);
  QvScriptingServices->RegisterMethod(cls, "GetProjectPath",
                                      "function _GetProjectPath(const ProjectId: string): string;",
                                      &CallProjectLookup<&TQvCustomVSDotNetAction::GetProjectPath>);
}

void RegisterPropertyEditors() {
  const TQvActionClass& cls = ActionClassOf<TQvVSDotNetAction>();
  const std::pair<const char*, const char*> editors[] = {
      {"Solution", "TSolutionEditor"},
      {"SolutionConfiguration", "TSolutionEditor"},
      {"AssemblyInfo", "TShowActionPropertiesEditor"},
      {"Win32VersionInfo", "TShowActionPropertiesEditor"},
      {"NSolution", "TSolutionEditor"},
      {"NSolutionConfiguration", "TSolutionEditor"},
  };
  for (auto [property, editor] : editors)
    QvActionServices->RegisterPropertyEditor("string", cls, property, editor);
}

void RegisterBuildKindConstants() {
  for (int i = 0; i < static_cast<int>(TVSDotNetBuildActionInfo.Values.size()); ++i)
    QvScriptingServices->RegisterConstant(std::string(TVSDotNetBuildActionInfo.Values[i]), i);
}

}  // namespace

void QvRegisterPackage(bool registerDesignTime) {
  RegisterBuildAction();  // steps 1 and 2
  RegisterOptions();      // step 3
  // Steps 4 to 6 register the MSTest, version info updater and solution iterator actions.
  QvActionServices->RegisterAction("Run MSTest", "Testing Tools", "MSTEST",
                                   ActionClassOf<TQvMSTestAction>());  // step 4
  QvActionServices->RegisterAction("Win32 Version Info Updater", "Compilers", "VERSIONINFO",
                                   ActionClassOf<TQvVersionInfoUpdaterAction>());  // step 5
  QvActionServices->RegisterAction("VS.NET Solution Iterator", "Compilers", "SOLUTIONITERATOR",
                                   ActionClassOf<TQvVSSolutionIterator>());  // step 6
  if (!registerDesignTime) return;                                           // step 7
  RegisterPropertyEditors();                                                 // step 8
  RegisterPackagePages();  // the classes behind the names below, for the host to create
  // Steps 9 to 13: the action pages, in the order the editor shows them, and the options page.
  QvActionServices->RegisterActionPages(
      ActionClassOf<TQvVSDotNetAction>(),
      {"TVSDotNetProjectFrame", "TVSDotNetPathsFrame", "TVSDotNetBuildFrame",
       "TVSDotNetAssemblyFrame", "TVC7VersionInfoFrame", "TVSDotNetWebProjectLocationFrame"});
  QvActionServices->RegisterActionPages(ActionClassOf<TQvVSSolutionIterator>(),
                                        {"TSolutionIteratorFrame"});
  QvOptionsServices->RegisterOptionPages(OptionsClassOf<TVSDotNetOptions>(),
                                         {"TVSDotNetOptionsFrame"});
  QvActionServices->RegisterActionPages(ActionClassOf<TQvMSTestAction>(),
                                        {"TMSTestFrame", "TMSTestPublishFrame"});
  QvActionServices->RegisterActionPages(ActionClassOf<TQvVersionInfoUpdaterAction>(),
                                        {"TWin32VersionInfoUpdaterFrame"});
  RegisterBuildKindConstants();  // step 14
}

}  // namespace qv
