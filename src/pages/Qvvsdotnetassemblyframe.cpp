#include "Qvvsdotnetassemblyframe.h"

#include "Qvpagebinding.h"

namespace qv {

namespace {
// The attribute texts, each switched on by its own box.
constexpr const char* kAttributes[][3] = {{"Title", "Title:", "AssemblyTitle"},
                                          {"Description", "Description:", "AssemblyDescription"},
                                          {"Comment", "Comment:", "AssemblyComment"},
                                          {"Company", "Company:", "AssemblyCompany"},
                                          {"ProductName", "Product:", "AssemblyProductName"},
                                          {"Copyright", "Copyright:", "AssemblyCopyright"},
                                          {"TradeMark", "Trademark:", "AssemblyTradeMark"}};
constexpr const char* kParts[] = {"Major", "Minor", "Build", "Revision"};
constexpr const char* kSwitches[][3] = {
    {"chkAutoIncAssemblyBuildNumber", "Count the build number up", "AutoIncAssemblyBuildNumber"},
    {"chkAutoIncAssemblyRevisionNo", "Count the revision up", "AutoIncAssemblyRevisionNo"},
    {"chkAutoIncAssemblyFileBuildNumber", "Count the file build number up",
     "AutoIncAssemblyFileBuildNumber"},
    {"chkAutoIncAssemblyFileRevisionNo", "Count the file revision up",
     "AutoIncAssemblyFileRevisionNo"},
    {"chkLinkAssemblyFileVersionInfo", "File version follows the assembly version",
     "LinkAssemblyFileVersionInfo"},
    {"chkUseDotNetPropertySet", "Take the values from the property set:", "UseDotNetPropertySet"}};
constexpr const char* kVersions[][2] = {{"AssemblyVersion", "Assembly version:"},
                                        {"AssemblyFileVersion", "File version:"}};
}  // namespace

TVSDotNetAssemblyFrame::TVSDotNetAssemblyFrame() {
  Add(TQvControlKind::CheckBox, "chkUpdateAssemblyInfo",
      "Update AssemblyInfo files before building");
  StartGroup("Projects");
  AddProjectChoice("Assembly");
  StartGroup("Attributes");
  for (const auto& [name, label, prop] : kAttributes) {
    Add(TQvControlKind::CheckBox, std::string("chkUpdateAssembly") + name, label);
    Add(TQvControlKind::Edit, std::string("edtAssembly") + name);
    NextRow();
  }
  StartGroup("Versions");
  for (const auto& [prop, label] : kVersions) {
    Add(TQvControlKind::CheckBox, std::string("chkUpdate") + prop, label);
    for (const char* part : kParts) {
      TQvControl& edit = Add(TQvControlKind::Edit, std::string("edt") + prop + part);
      edit.Hint = part;
      edit.Chars = 8;
    }
    NextRow();
  }
  for (const auto& [name, caption, prop] : kSwitches) {
    NextRow();
    Add(TQvControlKind::CheckBox, name, caption);
  }
  Add(TQvControlKind::Edit, "edtDotNetPropertySet");  // beside its box
  for (const auto& c : Controls())
    if (c->Kind == TQvControlKind::CheckBox || c->Kind == TQvControlKind::RadioButton)
      c->OnClick = [this] { UpdateControls(); };
}

void TVSDotNetAssemblyFrame::ReadActionData(TCustomQvAction* action) {
  auto& self = *this;
  self["chkUpdateAssemblyInfo"].Checked = PropBool(*action, "UpdateAssemblyInfo");
  for (const auto& [name, label, prop] : kAttributes) {
    self[std::string("chkUpdateAssembly") + name].Checked =
        PropBool(*action, (std::string("UpdateAssembly") + name).c_str());
    self[std::string("edtAssembly") + name].Text = action->GetPropValue(prop);
  }
  for (const auto& [prop, label] : kVersions) {
    self[std::string("chkUpdate") + prop].Checked =
        PropBool(*action, (std::string("Update") + prop).c_str());
    for (const char* part : kParts)
      self[std::string("edt") + prop + part].Text = action->GetPropValue(std::string(prop) + part);
  }
  for (const auto& [name, caption, prop] : kSwitches)
    self[name].Checked = PropBool(*action, prop);
  self["edtDotNetPropertySet"].Text = action->GetPropValue("DotNetVersionInfoPropertySetName");
  ReadProjectChoice(*action, "ApplyAssemblyInfoTo", "AssemblySelectedProjects");
  UpdateControls();
}

void TVSDotNetAssemblyFrame::WriteActionData(TCustomQvAction* action) {
  auto& self = *this;
  SetPropBool(*action, "UpdateAssemblyInfo", self["chkUpdateAssemblyInfo"].Checked);
  for (const auto& [name, label, prop] : kAttributes) {
    SetPropBool(*action, (std::string("UpdateAssembly") + name).c_str(),
                self[std::string("chkUpdateAssembly") + name].Checked);
    action->SetPropValue(prop, self[std::string("edtAssembly") + name].Text);
  }
  for (const auto& [prop, label] : kVersions) {
    SetPropBool(*action, (std::string("Update") + prop).c_str(),
                self[std::string("chkUpdate") + prop].Checked);
    for (const char* part : kParts)
      action->SetPropValue(std::string(prop) + part, self[std::string("edt") + prop + part].Text);
  }
  for (const auto& [name, caption, prop] : kSwitches)
    SetPropBool(*action, prop, self[name].Checked);
  action->SetPropValue("DotNetVersionInfoPropertySetName", self["edtDotNetPropertySet"].Text);
  WriteProjectChoice(*action, "ApplyAssemblyInfoTo", "AssemblySelectedProjects");
}

void TVSDotNetAssemblyFrame::UpdateControls() {
  auto& self = *this;
  bool on = self["chkUpdateAssemblyInfo"].Checked;
  for (const auto& c : Controls())
    if (c->Name != "chkUpdateAssemblyInfo") c->Enabled = on;
  for (const auto& [name, label, prop] : kAttributes)
    self[std::string("edtAssembly") + name].Enabled =
        on && self[std::string("chkUpdateAssembly") + name].Checked;
  for (const auto& [prop, label] : kVersions)
    for (const char* part : kParts)
      self[std::string("edt") + prop + part].Enabled =
          on && self[std::string("chkUpdate") + prop].Checked;
  self["edtDotNetPropertySet"].Enabled = on && self["chkUseDotNetPropertySet"].Checked;
  EnableProjectChoice(on);
}

}  // namespace qv
