#include "Qvvsdotnetreg.h"

#include <gtest/gtest.h>

#include "QvPackage.h"
#include "Qvvsdotnetaction.h"
#include "support/RecordingActionContext.h"
#include "support/RecordingServices.h"

using namespace qv;

namespace {

const std::vector<std::string> kRunTimeCalls = {
    "action TQvVSDotNetAction \"Build VS.Net Solution\" Compilers DEVENV",
    "method TQvVSDotNetAction.GetProjectID function _GetProjectID(const ProjectName: string): "
    "string;",
    "method TQvVSDotNetAction.GetProjectName function _GetProjectName(const ProjectId: string): "
    "string;",
    "method TQvVSDotNetAction.GetProjectPath function _GetProjectPath(const ProjectId: string): "
    "string;",
    "options TVSDotNetOptions DEVENV",
    "global VSDotNetOptions function VSDotNetOptions: Variant;",
    "enum TVSDotNetVersion vs2002,vs2003,vs2005,vs2008,vsUnknown",
    "action TQvMSTestAction \"Run MSTest\" Testing Tools MSTEST",
    "action TQvVersionInfoUpdaterAction \"Win32 Version Info Updater\" Compilers VERSIONINFO",
    "action TQvVSSolutionIterator \"VS.NET Solution Iterator\" Compilers SOLUTIONITERATOR",
};

// Through the built module; design time adds editors and ends with the build kind constants.
TEST(QvRegister, DesignTimeThroughTheBuiltPackageModule) {
  auto module = TQvPackageModule::Load(QV_PACKAGE_MODULE);
  EXPECT_STREQ(module->InfoTable()->PackageName, "QvVisualStudioDotNet");
  std::vector<std::string> calls = kRunTimeCalls;
  calls.insert(
      calls.end(),
      {"editor string TQvVSDotNetAction.Solution TSolutionEditor",
       "editor string TQvVSDotNetAction.SolutionConfiguration TSolutionEditor",
       "editor string TQvVSDotNetAction.AssemblyInfo TShowActionPropertiesEditor",
       "editor string TQvVSDotNetAction.Win32VersionInfo TShowActionPropertiesEditor",
       "editor string TQvVSDotNetAction.NSolution TSolutionEditor",
       "editor string TQvVSDotNetAction.NSolutionConfiguration TSolutionEditor",
       "pages TQvVSDotNetAction TVSDotNetProjectFrame,TVSDotNetPathsFrame,TVSDotNetBuildFrame,"
       "TVSDotNetAssemblyFrame,TVC7VersionInfoFrame,TVSDotNetWebProjectLocationFrame",
       "pages TQvVSSolutionIterator TSolutionIteratorFrame",
       "optionpages TVSDotNetOptions TVSDotNetOptionsFrame",
       "pages TQvMSTestAction TMSTestFrame,TMSTestPublishFrame",
       "pages TQvVersionInfoUpdaterAction TWin32VersionInfoUpdaterFrame", "constant baBuild=0",
       "constant baRebuild=1", "constant baClean=2", "constant baDeploy=3"});
  {
    // The services (and the options object they hold) go before the module does.
    qvtest::RecordingServices services;
    module->Initialize();
    module->Register(true);
    EXPECT_EQ(services.Calls, calls);
    module->Finalize();
  }
}

// Run time registers no editors or pages; each script method is bound to its own lookup.
TEST(QvRegister, RunTimeCallsAndScriptMethods) {
  qvtest::RecordingServices services;
  QvRegisterPackage(false);
  EXPECT_EQ(services.Calls, kRunTimeCalls);
  auto ctx = qvtest::RecordingActionContext::Create();
  TQvVSDotNetAction action;
  action.BindContext(ctx);
  action.SetPropValue("Solution", QV_EXAMPLES_DIR "/vs2003/Billing.sln");
  auto call = [&](const char* name, const std::string& arg) {
    return ScriptValueToString(
        services.CallMethod("TQvVSDotNetAction", name, action, {TScriptValue(arg)}));
  };
  const std::string core = "{39667F18-AB01-442C-A2EB-F9059A3C6F9D}";
  EXPECT_EQ(call("GetProjectID", "Billing.Core"), core);
  EXPECT_EQ(call("GetProjectName", core), "Billing.Core");
  EXPECT_EQ(call("GetProjectPath", core), "Billing.Core\\Billing.Core.csproj");
}

}  // namespace
