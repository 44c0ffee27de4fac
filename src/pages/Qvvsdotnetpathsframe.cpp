#include "Qvvsdotnetpathsframe.h"

#include "Qvpagebinding.h"

namespace qv {

TVSDotNetPathsFrame::TVSDotNetPathsFrame() {
  Add(TQvControlKind::Label, "lblOutputDir", "Output Directory:");
  TQvControl& output = Add(TQvControlKind::PathEdit, "edtOutputDir");
  output.OnButton = [this] { BrowseFolderInto("edtOutputDir", "Select Directory"); };
  NextRow();
  Add(TQvControlKind::CheckBox, "chkOverrideReferencePaths", "Override Reference Paths").OnClick =
      [this] { UpdateControls(); };
  NextRow();
  Add(TQvControlKind::Label, "lblRefPaths", "Reference Paths (one per line):");
  NextRow();
  Add(TQvControlKind::Memo, "edtRefPaths");
  Add(TQvControlKind::Button, "btnAddRefPath", "Add...").OnClick = [this] {
    std::string chosen;
    TQvControl& paths = (*this)["edtRefPaths"];
    if (!Services() || !Services()->BrowseFolder("Reference Path", "", chosen)) return;
    TStringList lines;
    lines.SetText(paths.Text);
    lines.Add(chosen);
    paths.Text = lines.Text();
  };
  NextRow();
  Add(TQvControlKind::Label, "lblUseMSbuildRequired",
      "These options require Use MSBuild to be checked on the Solution tab");
}

void TVSDotNetPathsFrame::ReadActionData(TCustomQvAction* action) {
  (*this)["edtOutputDir"].Text = action->GetPropValue("OutputDirectory");
  (*this)["chkOverrideReferencePaths"].Checked = PropBool(*action, "OverrideReferencePaths");
  (*this)["edtRefPaths"].Text = action->GetPropValue("ReferencePaths");
  ReadMSBuildFlags(*action);
  UpdateControls();
}

void TVSDotNetPathsFrame::WriteActionData(TCustomQvAction* action) {
  action->SetPropValue("OutputDirectory", (*this)["edtOutputDir"].Text);
  SetPropBool(*action, "OverrideReferencePaths", (*this)["chkOverrideReferencePaths"].Checked);
  action->SetPropValue("ReferencePaths", (*this)["edtRefPaths"].Text);
}

void TVSDotNetPathsFrame::UpdateControls() {
  auto& self = *this;
  for (const char* name : {"lblOutputDir", "edtOutputDir", "chkOverrideReferencePaths"})
    self[name].Enabled = FUsingMSBuild;
  bool paths = FUsingMSBuild && self["chkOverrideReferencePaths"].Checked;
  for (const char* name : {"edtRefPaths", "btnAddRefPath", "lblRefPaths"})
    self[name].Enabled = paths;
  self["lblUseMSbuildRequired"].Visible = !FUsingMSBuild;
}

}  // namespace qv
