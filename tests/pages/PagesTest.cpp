// The package's pages driven through the page model, with the host's design-time services
// scripted: what a user sees after reading an action, and what writing the page stores.
#include <gtest/gtest.h>

#include <array>

#include "Qvmstestaction.h"
#include "Qvmstestframe.h"
#include "Qvmstestpublishframe.h"
#include "Qvvsdotnetaction.h"
#include "Qvvsdotnetbuildframe.h"
#include "Qvvsdotnetoptions.h"
#include "Qvvsdotnetoptionsframe.h"
#include "Qvvsdotnetpathsframe.h"
#include "Qvvsdotnetprojectframe.h"
#include "Qvvsdotnetsolutioniterator.h"
#include "Qvvsdotnetsolutioniteratorframe.h"
#include "Qvvsdotnetwebprojectdetectionframe.h"
#include "support/RecordingActionContext.h"
#include "support/RecordingServices.h"

using namespace qv;

namespace {

// Answers each browse with the next scripted choice ("" cancels) and records what was asked.
struct ScriptedDesign : IQvDesignServices {
  std::vector<std::string> Choices, Asked, Messages;
  bool BrowseFile(const std::string& title, const std::string& filter, const std::string& ext,
                  const std::string& start, std::string& chosen) override {
    Asked.push_back(title + "|" + filter + "|" + ext + "|" + start);
    chosen = Choices.empty() ? "" : Choices.front();
    if (!Choices.empty()) Choices.erase(Choices.begin());
    return !chosen.empty();
  }
  bool BrowseFolder(const std::string& title, const std::string& start,
                    std::string& chosen) override {
    return BrowseFile(title, "", "", start, chosen);
  }
  void ShowMessage(const std::string& text) override { Messages.push_back(text); }
  std::vector<std::string> VariableNames() override { return {"Project", "Config"}; }
  TQvOptionsObject* Options(const std::string&) override { return nullptr; }
  std::vector<TQvPage*> EditorPages() override { return Editor; }
  std::vector<TQvPage*> Editor;
};

struct Pages : ::testing::Test {
  qvtest::RecordingServices services;
  ScriptedDesign design;
  void SetUp() override { RegisterOptions(); }
  // Opens `page` on `action` as the host does.
  void Open(TQvPage& page, TCustomQvAction& action) {
    action.BindContext(qvtest::RecordingActionContext::Create());
    page.SetServices(&design);
    page.InitFrame();
    page.InitPage(&action);
    page.ReadActionData(&action);
  }
};

TEST_F(Pages, IteratorBindsValueButtonsByMeaningAndKeepsOnlyKnownVariables) {
  const std::pair<const char*, const char*> values[] = {{"svName", "rbName"},
                                                        {"svRelativePath", "rbRelPath"},
                                                        {"svFullPath", "rbAbsPath"},
                                                        {"svProjectId", "rbProjId"}};
  for (const auto& [value, button] : values) {
    TQvVSSolutionIterator action;
    action.SetPropValue("IterateValue", value);
    action.SetPropValue("VariableName", "Gone");
    TSolutionIteratorFrame page;
    Open(page, action);
    EXPECT_TRUE(page[button].Checked) << value;
    EXPECT_EQ(page["cmbVariable"].ItemIndex, -1);
    EXPECT_TRUE(page["rbDepOrder"].Checked);
    page.WriteActionData(&action);
    EXPECT_EQ(action.GetPropValue("IterateValue"), value);
    EXPECT_EQ(action.GetPropValue("VariableName"), "");
  }
  TQvVSSolutionIterator action;
  action.SetPropValue("SortByDependency", "False");
  action.SetPropValue("IncludeProjectsNotFound", "False");
  TSolutionIteratorFrame page;
  Open(page, action);
  EXPECT_TRUE(page["RadioButton2"].Checked);
  EXPECT_TRUE(page["chkOnlyFoundFiles"].Checked);
  for (const char* b : {"rbName", "rbAbsPath", "rbRelPath", "rbProjId"})
    page[b].Checked = false;
  page.Choose("cmbVariable", 1);
  design.Choices = {"/src/App.sln", ""};
  page.PressBrowse("txtSolution");
  page.PressBrowse("txtSolution");  // cancelled: the text stays
  page.WriteActionData(&action);
  EXPECT_EQ(action.GetPropValue("IterateValue"), "svProjectId");
  EXPECT_EQ(action.GetPropValue("VariableName"), "Config");
  EXPECT_EQ(action.GetPropValue("Solution"), "/src/App.sln");
  EXPECT_EQ(design.Asked.at(1), "Select Solution|Solution Files (*.sln)|*.sln|.sln|/src/App.sln");
}

TEST_F(Pages, MSTestSettingsOfferVersionsAndStoreStandaloneAtLeastAs2005) {
  TQvMSTestAction action;
  action.SetPropValue("VisualStudioVer", "vs2008");
  action.SetPropValue("UseStandaloneMSTest", "True");
  TMSTestFrame page;
  Open(page, action);
  EXPECT_EQ(page["cmbVSVer"].Items,
            (std::vector<std::string>{"Visual Studio.NET 2005", "Visual Studio.NET 2008",
                                      "Visual Studio", "Standalone MSTest"}));
  EXPECT_EQ(page["cmbVSVer"].Text, "Standalone MSTest");
  // The container button is chosen: the metadata and test-list controls are off.
  EXPECT_TRUE(page["RadioButton1"].Checked);
  EXPECT_FALSE(page["edtTestMetadata"].Enabled);
  EXPECT_TRUE(page["txtAssemblyFilename"].Enabled);
  EXPECT_FALSE(page["chkSpecifyTestList"].Enabled);
  EXPECT_FALSE(page["txtTestList"].Enabled);
  VSDotNetOptions()->SetDefaultVSVersion(0);
  page.WriteActionData(&action);
  EXPECT_EQ(action.GetPropValue("VisualStudioVer"), "vs2005");
  EXPECT_EQ(action.GetPropValue("UseStandaloneMSTest"), "True");

  page.Toggle("rbUseTestMetadata");
  page.Toggle("chkSpecifyTestList");
  EXPECT_TRUE(page["edtTestMetadata"].Enabled);
  EXPECT_FALSE(page["txtAssemblyFilename"].Enabled);
  EXPECT_TRUE(page["txtTestList"].Enabled);
  page.Choose("cmbVSVer", 1);
  page.WriteActionData(&action);
  EXPECT_EQ(action.GetPropValue("VisualStudioVer"), "vs2008");
  EXPECT_EQ(action.GetPropValue("UseStandaloneMSTest"), "False");
  EXPECT_EQ(action.GetPropValue("UseMetadataFile"), "True");
}

TEST_F(Pages, PublishEditsAreOffUnlessSpecificYetAlwaysWrittenBack) {
  const std::pair<const char*, bool> modes[] = {
      {"pbNone", false}, {"pbAuto", false}, {"pbSpecify", true}};
  for (const auto& [mode, enabled] : modes) {
    TQvMSTestAction action;
    action.SetPropValue("PublishMode", mode);
    action.SetPropValue("TeamServer", "http://tfs:8080");
    TMSTestPublishFrame page;
    Open(page, action);
    EXPECT_EQ(page["txtTeamServer"].Enabled, enabled) << mode;
    page.Type("txtTeamServer", "http://other:8080");
    page.WriteActionData(&action);
    EXPECT_EQ(action.GetPropValue("PublishMode"), mode);
    EXPECT_EQ(action.GetPropValue("TeamServer"), "http://other:8080");
  }
}

TEST_F(Pages, ProjectDetectionShowsThePasswordPlainAndStoresItEncrypted) {
  TQvVSDotNetAction action;
  TVSDotNetWebProjectLocationFrame page;
  action.BindContext(qvtest::RecordingActionContext::Create());
  action.SetPropValue("WebDAVPassword", "s3cret");
  action.SetPropValue("ProjLocationDetectMethod", "useShare");
  Open(page, action);
  EXPECT_EQ(page["edtPassword"].Text, "s3cret");
  EXPECT_TRUE(page["rbNetworkShare"].Checked);
  page.Toggle("rbWebDAV");
  page.Type("edtPassword", "n3w");
  std::string message;
  ASSERT_TRUE(page.Validate(message));
  page.WriteActionData(&action);
  EXPECT_EQ(action.GetPropValue("ProjLocationDetectMethod"), "useWebDAV");
  EXPECT_EQ(action.GetPropValue("_WebDAVPassword"), "ENC:w3n");
  page.Type("spiWebsiteNumber", "1a");
  EXPECT_FALSE(page.Validate(message));
  EXPECT_EQ(message, "The website number must be a whole number, not \"1a\"");
}

TEST_F(Pages, SolutionPageDrivesTheBuildAndPathsPagesAndFallsBackToDefaults) {
  TQvVSDotNetAction action;
  action.SetPropValue("Solution", QV_EXAMPLES_DIR "/vs2008/Greeting.sln");
  action.SetPropValue("SolutionConfiguration", "Release|Any CPU");
  action.SetPropValue("VStudioVersion", "vs2008");
  action.SetPropValue("BuildType", "btSelectedProjects");
  // The build action's first three pages in one editor, as the host opens them.
  TVSDotNetProjectFrame s;
  TVSDotNetPathsFrame paths;
  TVSDotNetBuildFrame build;
  design.Editor = {&s, &paths, &build};
  for (TQvPage* page : design.Editor)
    Open(*page, action);
  EXPECT_EQ(s["cboConfigs"].Items, (std::vector<std::string>{"Debug|Any CPU", "Release|Any CPU"}));
  EXPECT_EQ(s["cboConfigs"].Text, "Release|Any CPU");
  ASSERT_GE(s["lstProjects"].Items.size(), 2u);
  EXPECT_TRUE(build["chkOverrideCompiler"].Enabled);
  EXPECT_TRUE(build["cmbMaxCPUs"].Enabled);

  // Visual Studio .NET 2003: no MSBuild, and the other pages say it is needed. (The editor
  // window's suite checks the build page's notice and the warning switches below through real
  // widgets.)
  s.Choose("cboVSVersion", 1);
  EXPECT_FALSE(s["chkUseMSBuild"].Enabled);
  EXPECT_FALSE(build["chkOverrideCompiler"].Enabled);
  EXPECT_TRUE(paths["lblUseMSbuildRequired"].Visible);
  EXPECT_FALSE(paths["edtOutputDir"].Enabled);
  s.Choose("cboVSVersion", 2);  // 2005: MSBuild, but not the 2008-only options
  EXPECT_TRUE(build["lblVS2008Only1"].Visible);
  EXPECT_FALSE(build["cmbMaxCPUs"].Enabled);

  build.Toggle("chkOverrideWarnings");
  build.Toggle("chkAllWarningsAsErrors");
  EXPECT_FALSE(build["edtWarningsAsErrors"].Enabled);

  s.TickItem("lstProjects", 1, true);
  s.TickItem("lstProjects", 0, true);
  s.WriteActionData(&action);
  TStringList selected;
  selected.SetText(action.GetPropValue("SelectedProjects"));
  EXPECT_EQ(selected.Count(), 2);
  EXPECT_EQ(action.GetPropValue("VStudioVersion"), "vs2005");
  s.Toggle("optBuildEnabledProjects");
  EXPECT_FALSE(s["lstProjects"].Enabled);
  s.WriteActionData(&action);
  EXPECT_EQ(action.GetPropValue("BuildType"), "btAllProjects");
  EXPECT_EQ(action.GetPropValue("SelectedProjects"), "");

  // A solution that cannot be opened leaves the default configurations.
  s.LoadSolutionDetails(false, "/nonexistent/App.sln");
  EXPECT_EQ(s["cboConfigs"].Items.size(), 6u);
  EXPECT_EQ(s["cboConfigs"].Items[5], "Release|x64");
  ASSERT_EQ(design.Messages.size(), 1u);
  EXPECT_EQ(design.Messages[0].rfind("Error opening solution : ", 0), 0u) << design.Messages[0];
  s.Type("txtSolution", "/nonexistent/App.sln");
  s.PressAltButton("txtSolution");
  EXPECT_EQ(design.Messages.back(), "Solution File not found : \"/nonexistent/App.sln\"");
}

// The 2002, 2003, 2005 and 2008 edits as typed, and the locations stored.
TEST_F(Pages, OptionsPageCutsDevenvPathsToTheirFolderThe2008OneInto2005) {
  using Edits = std::array<std::string, 4>;
  const std::pair<Edits, Edits> cases[] = {
      {{"C:\\VS7\\devenv.exe", "C:\\VS71\\DEVENV.COM", "C:\\VS8\\", "C:\\VS9\\devenv.exe"},
       {"C:\\VS7\\", "C:\\VS71\\", "C:\\VS8\\", "C:\\VS9\\devenv.exe"}},
      {{"", "C:\\VS7\\Common7\\IDE\\DEVENV.EXE", "C:\\VS8\\", "C:\\VS9\\Common7\\IDE\\devenv.com"},
       {"", "C:\\VS7\\Common7\\IDE\\", "C:\\VS9\\Common7\\IDE\\",
        "C:\\VS9\\Common7\\IDE\\devenv.com"}},
      {{"/opt/vs/devenv.com", "", "", ""}, {"/opt/vs/", "", "", ""}},
  };
  const char* edits[] = {"edtDevEnv2002", "edtDevEnv2003", "edtDevEnv2005", "edtDevEnv2008"};
  auto* options = dynamic_cast<TQvOptionsObject*>(VSDotNetOptions().Get());
  for (const auto& [typed, stored] : cases) {
    TVSDotNetOptionsFrame page;
    page.SetServices(&design);
    page.InitPage(nullptr);
    page.ReadOptions(options);
    for (int i = 0; i < 4; ++i)
      page.Type(edits[i], typed[i]);
    page.Choose("cmbVSVer", 5);
    page.WriteOptions(options);
    for (int i = 0; i < 4; ++i)
      EXPECT_EQ(VSDotNetOptions()->GetDevEnvLocation(i), stored[i]) << typed[i];
  }
  EXPECT_EQ(VSDotNetOptions()->GetDefaultVSVersion(), 5);
}

}  // namespace
