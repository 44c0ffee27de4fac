#include "Qvvc7versioninfoframe.h"

#include "Qvvc7versioninfo.h"

namespace qv {

namespace {
constexpr const char* kNumbers[][3] = {
    {"edtMajor", "Major:", "MajorVersion"},       {"edtMinor", "Minor:", "MinorVersion"},
    {"edtRelease", "Release:", "ReleaseVersion"}, {"edtBuild", "Build:", "BuildVersion"},
    {"edtLocale", "Locale:", "Locale"},           {"edtCodePage", "Code page:", "CodePage"}};
constexpr const char* kChecks[][3] = {
    {"chkDebug", "Debug build", "IsDebug"},
    {"chkPreRelease", "Pre-release", "IsPreRelease"},
    {"chkSpecial", "Special build", "IsSpecial"},
    {"chkPrivate", "Private build", "IsPrivate"},
    {"chkDLL", "DLL", "IsDLL"},
    {"chkIncludeCompileDate", "Include the compile date", "IncludeCompileDate"},
    {"chkLinkFileAndProductVersion", "Product version follows the file version",
     "LinkFileAndProductVersion"},
    {"chkAutoUpdateFileVersion", "Update the file version", "AutoUpdateFileVersion"},
    {"chkAutoIncBuild", "Count the build number up", "AutoIncBuild"},
    {"chkUseWin32PropertySet", "Take the values from the property set:", "UseWin32PropertySet"}};
}  // namespace

TVC7VersionInfoFrame::TVC7VersionInfoFrame() {
  Add(TQvControlKind::CheckBox, "chkUpdateWin32Resource",
      "Update version resources before building");
  StartGroup("Projects");
  AddProjectChoice("Resource");
  StartGroup("Version");
  for (size_t i = 0; i < std::size(kNumbers); ++i) {
    if (i == 4) NextRow();
    Add(TQvControlKind::Label, std::string(kNumbers[i][0]) + "Label", kNumbers[i][1]);
    Add(TQvControlKind::SpinEdit, kNumbers[i][0]);
  }
  NextRow();
  Add(TQvControlKind::Button, "btnReadScript", "Read from a resource script...").OnClick = [this] {
    ReadScript();
  };
  StartGroup("Flags and switches");
  for (size_t i = 0; i < std::size(kChecks); ++i) {
    if (i == 5 || i == 7 || i == 9) NextRow();
    Add(TQvControlKind::CheckBox, kChecks[i][0], kChecks[i][1]).OnClick = [this] {
      UpdateControls();
    };
  }
  Add(TQvControlKind::Edit, "edtWin32PropertySet");
  StartGroup("String table (one NAME=VALUE a line)");
  Add(TQvControlKind::Memo, "memKeys");
  (*this)["chkUpdateWin32Resource"].OnClick = [this] { UpdateControls(); };
  (*this)["rbResourceAll"].OnClick =
      (*this)["rbResourceSelected"].OnClick = [this] { UpdateControls(); };
}

void TVC7VersionInfoFrame::ReadActionData(TCustomQvAction* action) {
  auto& self = *this;
  self["chkUpdateWin32Resource"].Checked = PropBool(*action, "UpdateWin32Resource");
  for (const auto& [name, label, prop] : kNumbers)
    self[name].Text = action->GetPropValue(prop);
  for (const auto& [name, caption, prop] : kChecks)
    self[name].Checked = PropBool(*action, prop);
  self["edtWin32PropertySet"].Text = action->GetPropValue("Win32VersionInfoPropertySetName");
  self["memKeys"].Text = action->GetPropValue("VersionInfoKeys");
  ReadProjectChoice(*action, "ApplyResourceInfoTo", "ResourceSelectedProjects");
  UpdateControls();
}

void TVC7VersionInfoFrame::WriteActionData(TCustomQvAction* action) {
  auto& self = *this;
  SetPropBool(*action, "UpdateWin32Resource", self["chkUpdateWin32Resource"].Checked);
  for (const auto& [name, label, prop] : kNumbers)
    action->SetPropValue(prop, self[name].Text);
  for (const auto& [name, caption, prop] : kChecks)
    SetPropBool(*action, prop, self[name].Checked);
  action->SetPropValue("Win32VersionInfoPropertySetName", self["edtWin32PropertySet"].Text);
  action->SetPropValue("VersionInfoKeys", self["memKeys"].Text);
  WriteProjectChoice(*action, "ApplyResourceInfoTo", "ResourceSelectedProjects");
}

bool TVC7VersionInfoFrame::Validate(std::string& message) {
  for (const auto& [name, label, prop] : kNumbers) {
    const std::string& text = (*this)[name].Text;
    if (StrToInt64Def(text, -1) < 0 || Trim(text).empty()) {
      message = std::string(label) + " must be a whole number, not \"" + text + "\"";
      return false;
    }
  }
  return true;
}

void TVC7VersionInfoFrame::UpdateControls() {
  bool on = (*this)["chkUpdateWin32Resource"].Checked;
  for (const auto& c : Controls())
    if (c->Name != "chkUpdateWin32Resource") c->Enabled = on;
  (*this)["edtWin32PropertySet"].Enabled = on && (*this)["chkUseWin32PropertySet"].Checked;
  EnableProjectChoice(on);
}

// The script's values land in the action first, so the page shows exactly what the build
// would write back.
void TVC7VersionInfoFrame::ReadScript() {
  auto* info = dynamic_cast<IQvVC7VersionInfo*>(FAction);
  std::string file;
  if (!info || !Services() ||
      !Services()->BrowseFile("Resource Script", "Resource Scripts (*.rc)|*.rc|All Files (*.*)|*.*",
                              ".rc", "", file))
    return;
  try {
    GetVersionInfoParser(FAction, file)->ReadVersionInfo(info);
  } catch (const std::exception& e) {
    Services()->ShowMessage(std::string("Error parsing resource file : ") + e.what());
    return;
  }
  ReadActionData(FAction);
}

}  // namespace qv
