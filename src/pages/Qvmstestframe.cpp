#include "Qvmstestframe.h"

#include "Qvpagebinding.h"
#include "Qvvsdotnetoptions.h"

namespace qv {

namespace {
// The versions offered, each carried by its entry; "Standalone MSTest" follows them.
constexpr TVSDotNetVersion kOffered[] = {TVSDotNetVersion::vs2005, TVSDotNetVersion::vs2008,
                                         TVSDotNetVersion::vsUnknown};
constexpr const char* kTextProps[][2] = {{"txtAssemblyFilename", "AssemblyFileName"},
                                         {"txtConfigFileName", "ConfigFileName"},
                                         {"txtOutputFileName", "OutputFileName"},
                                         {"edtTestMetadata", "MetadataFile"},
                                         {"txtTestList", "TestList"},
                                         {"txtTests", "Tests"}};
constexpr const char* kBoolProps[][2] = {{"rbUseTestMetadata", "UseMetadataFile"},
                                         {"chkSpecifyTestList", "SpecifyTestList"},
                                         {"chkSpecifyTests", "SpecifyTests"},
                                         {"chkShowBanner", "ShowBanner"}};
}  // namespace

TQvControl& TMSTestFrame::AddPathEdit(const char* name, const char* label, const char* filter) {
  if (*label) Add(TQvControlKind::Label, std::string(name) + "Label", label);
  TQvControl& edit = Add(TQvControlKind::PathEdit, name);
  edit.ButtonHint = "Click to Edit Path";
  edit.OnButton = [this, name, filter] { BrowseFileInto(name, "", filter); };
  NextRow();
  return edit;
}

TMSTestFrame::TMSTestFrame() {
  Add(TQvControlKind::RadioButton, "RadioButton1", "Test Container file or assembly:");
  NextRow();
  AddPathEdit("txtAssemblyFilename", "",
              "Assemblies (*.dll, *.exe)|*.dll;*.exe|All Files (*.*)|*.*");
  Add(TQvControlKind::RadioButton, "rbUseTestMetadata", "Test Metadata File:");
  NextRow();
  AddPathEdit("edtTestMetadata", "", "Test Metadata Files (.vsmdi)|*.vsmdi|All Files (*.*)|*.*");
  AddPathEdit("txtConfigFileName", "Run Configuration File",
              "Run Config Files (*.testrunconfig)|*.testrunconfig|All Files (*.*)|*.*");
  AddPathEdit("txtOutputFileName",
              "Results file path:", "Output File (*.trx)|*.trx|All Files (*.*)|*.*");
  Add(TQvControlKind::CheckBox, "chkSpecifyTestList", "Specify Test Lists:");
  Add(TQvControlKind::Edit, "txtTestList");
  NextRow();
  Add(TQvControlKind::CheckBox, "chkSpecifyTests", "Specify Tests:");
  Add(TQvControlKind::Edit, "txtTests");
  NextRow();
  Add(TQvControlKind::Label, "lblSeparate", "(Separate multiple tests or test lists with commas.)");
  NextRow();
  Add(TQvControlKind::Label, "lblVersion", "Version:");
  Add(TQvControlKind::DropDownList, "cmbVSVer");
  NextRow();
  Add(TQvControlKind::CheckBox, "chkShowBanner", "Show banner at startup");
  for (const char* name :
       {"RadioButton1", "rbUseTestMetadata", "chkSpecifyTestList", "chkSpecifyTests"})
    (*this)[name].OnClick = [this] { UpdateControls(); };
}

void TMSTestFrame::InitPage(TCustomQvAction*) {
  TQvControl& versions = (*this)["cmbVSVer"];
  versions.Items.clear();
  for (TVSDotNetVersion v : kOffered)
    versions.Items.push_back(GetVSName(v));
  versions.Items.push_back("Standalone MSTest");
}

void TMSTestFrame::ReadActionData(TCustomQvAction* action) {
  for (const auto& [control, prop] : kTextProps)
    (*this)[control].Text = action->GetPropValue(prop);
  TQvControl& versions = (*this)["cmbVSVer"];
  int version = PropOrdinal(*action, "VisualStudioVer");
  versions.ItemIndex = -1;
  for (size_t i = 0; i < std::size(kOffered); ++i)
    if (static_cast<int>(kOffered[i]) == version) versions.ItemIndex = static_cast<int>(i);
  if (PropBool(*action, "UseStandaloneMSTest"))
    versions.ItemIndex = static_cast<int>(versions.Items.size()) - 1;
  versions.Text = versions.ItemIndex >= 0 ? versions.Items[versions.ItemIndex] : "";
  for (const auto& [control, prop] : kBoolProps)
    (*this)[control].Checked = PropBool(*action, prop);
  (*this)["RadioButton1"].Checked = !(*this)["rbUseTestMetadata"].Checked;
  UpdateControls();
}

void TMSTestFrame::WriteActionData(TCustomQvAction* action) {
  for (const auto& [control, prop] : kTextProps)
    action->SetPropValue(prop, (*this)[control].Text);
  const TQvControl& versions = (*this)["cmbVSVer"];
  bool standalone = versions.ItemIndex == static_cast<int>(versions.Items.size()) - 1;
  if (!standalone && versions.ItemIndex >= 0) {
    SetPropOrdinal(*action, "VisualStudioVer", static_cast<int>(kOffered[versions.ItemIndex]));
  } else if (standalone) {
    // The standalone tool is versioned by the options' default, 2005 at the least.
    IntfPtr<IQvVSDotNetOptions> options = VSDotNetOptions();
    int version = options ? options->GetDefaultVSVersion() : 0;
    SetPropOrdinal(*action, "VisualStudioVer",
                   std::max(version, static_cast<int>(TVSDotNetVersion::vs2005)));
  }
  SetPropBool(*action, "UseStandaloneMSTest", standalone);
  for (const auto& [control, prop] : kBoolProps)
    SetPropBool(*action, prop, (*this)[control].Checked);
}

void TMSTestFrame::UpdateControls() {
  bool metadata = (*this)["rbUseTestMetadata"].Checked;
  (*this)["edtTestMetadata"].Enabled = metadata;
  (*this)["txtAssemblyFilename"].Enabled = !metadata;
  TQvControl& lists = (*this)["chkSpecifyTestList"];
  lists.Enabled = metadata;
  (*this)["txtTestList"].Enabled = lists.Enabled && lists.Checked;
  (*this)["txtTests"].Enabled = (*this)["chkSpecifyTests"].Checked;
}

}  // namespace qv
