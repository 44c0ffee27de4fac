#include "Qvpagebinding.h"

#include "QvProperties.h"
#include "Qvmstestframe.h"
#include "Qvmstestpublishframe.h"
#include "Qvvc7versioninfoframe.h"
#include "Qvvsdotnetassemblyframe.h"
#include "Qvvsdotnetbuildframe.h"
#include "Qvvsdotnetoptionsframe.h"
#include "Qvvsdotnetpathsframe.h"
#include "Qvvsdotnetprojectframe.h"
#include "Qvvsdotnetpropertypage.h"
#include "Qvvsdotnetsolutioniteratorframe.h"
#include "Qvvsdotnetwebprojectdetectionframe.h"
#include "Qvwin32versioninfoupdaterframe.h"
#include "Vsnetsln.h"

namespace qv {

int PropOrdinal(const TQvPersistent& obj, const char* name) {
  const TPropDescriptor* d = obj.GetPropertyTable().Find(name);
  return d && d->Enum ? d->Enum->ValueOf(obj.GetPropValue(name)) : -1;
}

void SetPropOrdinal(TQvPersistent& obj, const char* name, int ordinal) {
  obj.SetPropValue(name, std::to_string(ordinal));
}

void TProjectChoicePage::AddProjectChoice(const std::string& prefix) {
  FPrefix = prefix;
  Add(TQvControlKind::RadioButton, "rb" + prefix + "All", "All projects");
  Add(TQvControlKind::RadioButton, "rb" + prefix + "Selected", "The projects ticked below");
  NextRow();
  Add(TQvControlKind::CheckList, "lst" + prefix + "Projects");
  NextRow();
}

void TProjectChoicePage::ReadProjectChoice(TCustomQvAction& action, const char* applyProp,
                                           const char* listProp) {
  TQvControl& list = (*this)["lst" + FPrefix + "Projects"];
  list.Items.clear();
  FProjectIds.clear();
  try {
    IntfPtr<IVSDotNetProjects> projects =
        OpenSolution(action.ExpandExpression(action.GetPropValue("Solution"), false), false)
            ->GetProjects();
    for (int i = 0; i < projects->GetCount(); ++i) {
      list.Items.push_back(projects->GetItem(i)->GetName());
      FProjectIds.push_back(projects->GetItem(i)->GetProjectGUID());
    }
  } catch (const std::exception&) {
    // Without a readable solution there is nothing to tick; the Solution page says why.
  }
  TStringList ticked;
  ticked.SetText(action.GetPropValue(listProp));
  list.ItemChecked.assign(list.Items.size(), false);
  for (size_t i = 0; i < FProjectIds.size(); ++i)
    list.ItemChecked[i] = ticked.IndexOf(FProjectIds[i]) >= 0;
  CheckRadio(PropOrdinal(action, applyProp) == 1 ? "rb" + FPrefix + "Selected"
                                                 : "rb" + FPrefix + "All");
}

void TProjectChoicePage::WriteProjectChoice(TCustomQvAction& action, const char* applyProp,
                                            const char* listProp) {
  bool selected = (*this)["rb" + FPrefix + "Selected"].Checked;
  SetPropOrdinal(action, applyProp, selected ? 1 : 0);
  const TQvControl& list = (*this)["lst" + FPrefix + "Projects"];
  TStringList ticked;
  for (size_t i = 0; i < FProjectIds.size(); ++i)
    if (selected && list.ItemChecked[i]) ticked.Add(FProjectIds[i]);
  action.SetPropValue(listProp, ticked.Text());
}

void TProjectChoicePage::EnableProjectChoice(bool enabled) {
  (*this)["rb" + FPrefix + "All"].Enabled = enabled;
  (*this)["rb" + FPrefix + "Selected"].Enabled = enabled;
  (*this)["lst" + FPrefix + "Projects"].Enabled =
      enabled && (*this)["rb" + FPrefix + "Selected"].Checked;
}

void TVSDotNetMSBuildPage::UpdateSolution(bool, IVSDotNetSolution* solution, bool usingMSBuild,
                                          bool vs2008) {
  FUsingMSBuild = usingMSBuild;
  FVS2008 = vs2008;
  FSolutionFile = solution ? solution->GetFileName() : std::string();
  UpdateControls();
}

void TVSDotNetMSBuildPage::ReadMSBuildFlags(const TCustomQvAction& action) {
  int version = PropOrdinal(action, "VStudioVersion");
  FUsingMSBuild = PropBool(action, "UseMSBuild") && version >= int(TVSDotNetVersion::vs2005);
  FVS2008 = version == int(TVSDotNetVersion::vs2008);
}

namespace {
template <class T>
std::unique_ptr<TQvPage> Make() {
  return std::make_unique<T>();
}
}  // namespace

namespace {
// Picking a solution file, or one of its configurations, happens on the Solution page.
class TSolutionEditor : public TQvPropertyEditor {
 public:
  std::string GetPage() const override { return "Solution"; }
};
}  // namespace

void RegisterPackagePages() {
  RegisterPropertyEditorClass(
      "TSolutionEditor", [] { return std::unique_ptr<TQvPropertyEditor>(new TSolutionEditor); });
  RegisterPageClass("TVSDotNetProjectFrame", Make<TVSDotNetProjectFrame>);
  RegisterPageClass("TVSDotNetPathsFrame", Make<TVSDotNetPathsFrame>);
  RegisterPageClass("TVSDotNetBuildFrame", Make<TVSDotNetBuildFrame>);
  RegisterPageClass("TVSDotNetAssemblyFrame", Make<TVSDotNetAssemblyFrame>);
  RegisterPageClass("TVC7VersionInfoFrame", Make<TVC7VersionInfoFrame>);
  RegisterPageClass("TVSDotNetOptionsFrame", Make<TVSDotNetOptionsFrame>);
  RegisterPageClass("TWin32VersionInfoUpdaterFrame", Make<TWin32VersionInfoUpdaterFrame>);
  RegisterPageClass("TSolutionIteratorFrame", Make<TSolutionIteratorFrame>);
  RegisterPageClass("TMSTestFrame", Make<TMSTestFrame>);
  RegisterPageClass("TMSTestPublishFrame", Make<TMSTestPublishFrame>);
  RegisterPageClass("TVSDotNetWebProjectLocationFrame", Make<TVSDotNetWebProjectLocationFrame>);
}

}  // namespace qv
