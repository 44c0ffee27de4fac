#include "Qvvsdotnetprojectframe.h"

#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "Qvpagebinding.h"
#include "Qvvsdotnetoptions.h"

namespace qv {

namespace {
constexpr const char* kDefaultConfigurations[] = {
    "Debug|Any CPU", "Release|Any CPU", "Debug|x86", "Release|x86", "Debug|x64", "Release|x64"};
constexpr const char* kKinds[] = {"optBuildEnabledProjects", "optBuildSelectedProjects",
                                  "optIncludeDisabledProjects"};
constexpr int kFirstMSBuildVersion = static_cast<int>(TVSDotNetVersion::vs2005);
}  // namespace

TVSDotNetProjectFrame::TVSDotNetProjectFrame() {
  Add(TQvControlKind::Label, "lblSolution", "Solution:");
  TQvControl& solution = Add(TQvControlKind::PathEdit, "txtSolution");
  solution.HasAltButton = true;
  solution.AltButtonHint = "Refresh Configuration List";
  solution.OnButton = [this] {
    if (BrowseFileInto("txtSolution", "Select Solution", "Solution Files (*.sln)|*.sln", ".sln"))
      LoadSolutionDetails(false, (*this)["txtSolution"].Text);
  };
  solution.OnAltButton = [this] {
    std::string file = (*this)["txtSolution"].Text;
    if (platform::FileExists(file))
      LoadSolutionDetails(false, file);
    else if (Services())
      Services()->ShowMessage("Solution File not found : \"" + file + "\"");
  };
  NextRow();
  Add(TQvControlKind::Label, "lblConfig", "Configuration:");
  Add(TQvControlKind::ComboBox, "cboConfigs");
  NextRow();
  Add(TQvControlKind::Label, "lblAction", "Action:");
  TQvControl& action = Add(TQvControlKind::DropDownList, "cboAction");
  action.Items = {"Build", "Rebuild", "Clean", "Deploy"};
  action.OnChange = [this] { NotifyPages(false); };
  NextRow();
  Add(TQvControlKind::Label, "lblVSVersion", "Visual Studio Version:");
  TQvControl& version = Add(TQvControlKind::DropDownList, "cboVSVersion");
  for (int v = 0; v <= static_cast<int>(TVSDotNetVersion::vs2008); ++v)
    version.Items.push_back(GetVSName(v));
  version.OnChange = [this] { VersionChanged(); };
  Add(TQvControlKind::CheckBox, "chkUseMSBuild", "Use MSBuild").OnClick = [this] {
    NotifyPages(false);
  };
  StartGroup("Projects");
  Add(TQvControlKind::RadioButton, kKinds[0], "Build all enabled projects");
  NextRow();
  Add(TQvControlKind::RadioButton, kKinds[1], "Build selected projects");
  NextRow();
  Add(TQvControlKind::RadioButton, kKinds[2], "Build all projects, including disabled ones");
  for (const char* kind : kKinds)
    (*this)[kind].OnClick = [this] { ProjectKindChanged(); };
  NextRow();
  Add(TQvControlKind::CheckList, "lstProjects");
  NextRow();
  Add(TQvControlKind::Button, "btnCheckall", "Check All").OnClick = [this] { TickAll(true); };
  Add(TQvControlKind::Button, "btnUncheckAll", "Uncheck All").OnClick = [this] { TickAll(false); };
}

void TVSDotNetProjectFrame::ReadActionData(TCustomQvAction* action) {
  FReading = true;
  (*this)["txtSolution"].Text = action->GetPropValue("Solution");
  (*this)["cboAction"].ItemIndex = PropOrdinal(*action, "BuildAction");
  (*this)["cboVSVersion"].ItemIndex = PropOrdinal(*action, "VStudioVersion");
  (*this)["chkUseMSBuild"].Checked = PropBool(*action, "UseMSBuild");
  int kind = PropOrdinal(*action, "BuildType");
  CheckRadio(kKinds[kind == 2 ? 2 : kind == 1 ? 1 : 0]);
  (*this)["cboConfigs"].Text = action->GetPropValue("SolutionConfiguration");
  std::string file = (*this)["txtSolution"].Text;
  if (platform::FileExists(file)) LoadSolutionDetails(false, file);
  (*this)["cboConfigs"].Text = action->GetPropValue("SolutionConfiguration");
  FReadSelection = action->GetPropValue("SelectedProjects");
  TStringList selected;
  selected.SetText(FReadSelection);
  TQvControl& list = (*this)["lstProjects"];
  IntfPtr<IVSDotNetProjects> projects = FSolution ? FSolution->GetProjects() : nullptr;
  // An entry names its project by identifier, by name or by path as the solution writes it.
  for (size_t i = 0; i < FProjectIds.size(); ++i) {
    IntfPtr<IVSDotNetProject> p = projects->GetItem(static_cast<int>(i));
    for (const std::string& entry : selected)
      if (SameText(entry, FProjectIds[i]) || SameText(entry, p->GetName()) ||
          SameText(entry, p->GetFileName()))
        list.ItemChecked[i] = true;
  }
  FReadTicks = list.ItemChecked;
  FReading = false;
  VersionChanged();
  ProjectKindChanged();
}

void TVSDotNetProjectFrame::WriteActionData(TCustomQvAction* action) {
  action->SetPropValue("Solution", (*this)["txtSolution"].Text);
  SetPropOrdinal(*action, "VStudioVersion", std::max(0, (*this)["cboVSVersion"].ItemIndex));
  SetPropBool(*action, "UseMSBuild", (*this)["chkUseMSBuild"].Checked);
  action->SetPropValue("SolutionConfiguration", (*this)["cboConfigs"].Text);
  SetPropOrdinal(*action, "BuildAction", std::max(0, (*this)["cboAction"].ItemIndex));
  TStringList selected;
  int kind = (*this)[kKinds[0]].Checked ? 0 : (*this)[kKinds[2]].Checked ? 2 : 1;
  const TQvControl& list = (*this)["lstProjects"];
  if (kind == 1 && PropOrdinal(*action, "BuildType") == 1 && list.ItemChecked == FReadTicks) {
    action->SetPropValue("SelectedProjects", FReadSelection);
    return;
  }
  if (kind == 1)
    for (size_t i = 0; i < FProjectIds.size(); ++i)
      if (i < list.ItemChecked.size() && list.ItemChecked[i]) selected.Add(FProjectIds[i]);
  action->SetPropValue("SelectedProjects", selected.Text());
  SetPropOrdinal(*action, "BuildType", kind);
}

void TVSDotNetProjectFrame::LoadSolutionDetails(bool flag, const std::string& fileName) {
  FSolution = nullptr;
  try {
    FSolution = OpenSolution(fileName, false);
  } catch (const std::exception& e) {
    if (Services()) Services()->ShowMessage(std::string("Error opening solution : ") + e.what());
  }
  if (FSolution && !FReading && FSolution->GetVersion() != TVSDotNetVersion::vsUnknown) {
    (*this)["cboVSVersion"].ItemIndex = static_cast<int>(FSolution->GetVersion());
    VersionChanged();
  }
  TQvControl& list = (*this)["lstProjects"];
  list.Items.clear();
  FProjectIds.clear();
  IntfPtr<IVSDotNetProjects> projects = FSolution ? FSolution->GetProjects() : nullptr;
  for (int i = 0; projects && i < projects->GetCount(); ++i) {
    list.Items.push_back(projects->GetItem(i)->GetName());
    FProjectIds.push_back(projects->GetItem(i)->GetProjectGUID());
  }
  list.ItemChecked.assign(list.Items.size(), false);
  RefreshConfigurationList(FSolution.Get());
  NotifyPages(flag);
}

void TVSDotNetProjectFrame::RefreshConfigurationList(IVSDotNetSolution* solution) {
  TQvControl& configs = (*this)["cboConfigs"];
  std::string remembered = configs.Text;
  configs.Items.clear();
  configs.ItemIndex = -1;
  if (!solution) {
    configs.Text = remembered;
  } else {
    IntfPtr<IVSDotNetSolutionConfigurations> list = solution->GetConfigurations();
    for (int i = 0; list && i < list->GetCount(); ++i)
      configs.Items.push_back(list->GetItem(i)->GetName());
    for (size_t i = 0; i < configs.Items.size(); ++i)
      if (!remembered.empty() && configs.Items[i] == remembered) configs.ItemIndex = int(i);
    if (remembered.empty() && !configs.Items.empty()) configs.ItemIndex = 0;
    configs.Text = configs.ItemIndex >= 0 ? configs.Items[configs.ItemIndex] : remembered;
  }
  if (configs.Items.empty()) {
    configs.Items.assign(std::begin(kDefaultConfigurations), std::end(kDefaultConfigurations));
    configs.Text.clear();
  }
}

void TVSDotNetProjectFrame::VersionChanged() {
  TQvControl& version = (*this)["cboVSVersion"];
  if (version.ItemIndex < 0) version.ItemIndex = 0;
  version.Text = version.Items[version.ItemIndex];
  (*this)["chkUseMSBuild"].Enabled = version.ItemIndex >= kFirstMSBuildVersion;
  NotifyPages(false);
}

void TVSDotNetProjectFrame::ProjectKindChanged() {
  bool selected = (*this)[kKinds[1]].Checked;
  for (const char* name : {"lstProjects", "btnCheckall", "btnUncheckAll"})
    (*this)[name].Enabled = selected;
}

void TVSDotNetProjectFrame::TickAll(bool ticked) {
  TQvControl& list = (*this)["lstProjects"];
  list.ItemChecked.assign(list.Items.size(), ticked);
}

// MSBuild builds exactly when the action would (Use MSBuild with 2005 or later).
void TVSDotNetProjectFrame::NotifyPages(bool flag) {
  if (!Services()) return;
  int version = (*this)["cboVSVersion"].ItemIndex;
  bool msbuild = (*this)["chkUseMSBuild"].Checked && version >= kFirstMSBuildVersion;
  bool vs2008 = version == static_cast<int>(TVSDotNetVersion::vs2008);
  for (TQvPage* page : Services()->EditorPages())
    if (auto* other = dynamic_cast<IVSDotNetPropertyPage*>(page))
      other->UpdateSolution(flag, FSolution.Get(), msbuild, vs2008);
}

}  // namespace qv
