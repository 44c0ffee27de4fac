#include "Qvwin32versioninfoupdaterframe.h"

#include "Qvpagebinding.h"

namespace qv {

namespace {
// The names a Win32 version property set holds, in the order a script lists them.
constexpr const char* kVocabulary[] = {
    "MajorVersion",    "MinorVersion",     "ReleaseVersion",      "BuildVersion",
    "ProductVersion",  "FileVersion",      "DebugBuild",          "PreReleaseBuild",
    "SpecialBuild",    "PrivateBuild",     "SpecialBuildDetails", "DLL",
    "CompanyName",     "FileDescription",  "InternalName",        "LegalCopyright",
    "LegalTrademarks", "OriginalFilename", "ProductName",         "CompileDate",
    "Locale",          "CodePage"};
constexpr const char* kSwitches[][3] = {
    {"chkLinkProductVersion", "Product version follows the file version", "LinkProductVersion"},
    {"chkAutoUpdateFileVersion", "Update the file version", "AutoUpdateFileVersion"},
    {"chkUpdateProductVersion", "Update the product version", "UpdateProductVersion"}};
}  // namespace

TWin32VersionInfoUpdaterFrame::TWin32VersionInfoUpdaterFrame() {
  Add(TQvControlKind::Label, "lblResourceFile", "Resource script (.rc):");
  Add(TQvControlKind::PathEdit, "edtResourceFile").OnButton = [this] {
    BrowseFileInto("edtResourceFile", "Resource Script",
                   "Resource Scripts (*.rc)|*.rc|All Files (*.*)|*.*", ".rc");
  };
  NextRow();
  Add(TQvControlKind::Label, "lblPropertySet", "Property set:");
  Add(TQvControlKind::Edit, "edtPropertySet");
  StartGroup("Values to take from the property set");
  TQvControl& list = Add(TQvControlKind::CheckList, "lstProperties");
  list.Items.assign(std::begin(kVocabulary), std::end(kVocabulary));
  list.ItemChecked.assign(list.Items.size(), false);
  StartGroup("Versions");
  for (const auto& [name, caption, prop] : kSwitches) {
    Add(TQvControlKind::CheckBox, name, caption);
    NextRow();
  }
}

void TWin32VersionInfoUpdaterFrame::ReadActionData(TCustomQvAction* action) {
  (*this)["edtResourceFile"].Text = action->GetPropValue("ResourceFile");
  (*this)["edtPropertySet"].Text = action->GetPropValue("PropertySetName");
  TStringList chosen;
  chosen.SetText(action->GetPropValue("PropertiesToUpdate"));
  TQvControl& list = (*this)["lstProperties"];
  for (size_t i = 0; i < list.Items.size(); ++i)
    list.ItemChecked[i] = SameText(chosen.Values(list.Items[i]), "True");
  for (const auto& [name, caption, prop] : kSwitches)
    (*this)[name].Checked = PropBool(*action, prop);
}

// The stored list keeps its lines and order: a ticked name reads True, a name it already
// holds reads False when unticked, and names it lacks stay out unless ticked.
void TWin32VersionInfoUpdaterFrame::WriteActionData(TCustomQvAction* action) {
  action->SetPropValue("ResourceFile", (*this)["edtResourceFile"].Text);
  action->SetPropValue("PropertySetName", (*this)["edtPropertySet"].Text);
  const TQvControl& list = (*this)["lstProperties"];
  TStringList chosen;
  chosen.SetText(action->GetPropValue("PropertiesToUpdate"));
  for (size_t i = 0; i < list.Items.size(); ++i) {
    bool stored = chosen.IndexOfName(list.Items[i]) >= 0;
    bool wasOn = SameText(chosen.Values(list.Items[i]), "True");
    if (list.ItemChecked[i] != wasOn && (stored || list.ItemChecked[i]))
      chosen.SetValue(list.Items[i], list.ItemChecked[i] ? "True" : "False");
  }
  action->SetPropValue("PropertiesToUpdate", chosen.Text());
  for (const auto& [name, caption, prop] : kSwitches)
    SetPropBool(*action, prop, (*this)[name].Checked);
}

}  // namespace qv
