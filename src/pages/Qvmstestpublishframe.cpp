#include "Qvmstestpublishframe.h"

#include "Qvpagebinding.h"

namespace qv {

namespace {
constexpr const char* kModes[] = {"rbNoPublish", "rbAutoPublish", "rbPublishSpecific"};
constexpr const char* kEdits[][3] = {{"txtTeamServer", "Team Server:", "TeamServer"},
                                     {"txtTeamProject", "Team Project:", "TeamProject"},
                                     {"txtBuildID", "Build ID:", "BuildId"},
                                     {"txtPlatform", "Build Platform:", "BuildPlatform"},
                                     {"txtFlavor", "Build Flavor:", "BuildFlavor"}};
}  // namespace

TMSTestPublishFrame::TMSTestPublishFrame() {
  StartGroup("Publish Results to Team System:");
  const char* captions[] = {"Don't publish results",
                            "Automatically publish results when running under Team Build",
                            "Publish results using the following settings:"};
  for (size_t i = 0; i < std::size(kModes); ++i) {
    Add(TQvControlKind::RadioButton, kModes[i], captions[i]).OnClick = [this] { UpdateControls(); };
    NextRow();
  }
  for (const auto& [name, label, prop] : kEdits) {
    Add(TQvControlKind::Label, std::string(name) + "Label", label);
    Add(TQvControlKind::Edit, name);
    NextRow();
  }
}

void TMSTestPublishFrame::ReadActionData(TCustomQvAction* action) {
  for (const auto& [name, label, prop] : kEdits)
    (*this)[name].Text = action->GetPropValue(prop);
  int mode = PropOrdinal(*action, "PublishMode");
  if (mode >= 0 && mode < static_cast<int>(std::size(kModes))) CheckRadio(kModes[mode]);
  UpdateControls();
}

// The edits keep their texts while disabled, and those texts are written back.
void TMSTestPublishFrame::WriteActionData(TCustomQvAction* action) {
  for (const auto& [name, label, prop] : kEdits)
    action->SetPropValue(prop, (*this)[name].Text);
  int mode = (*this)["rbNoPublish"].Checked ? 0 : (*this)["rbAutoPublish"].Checked ? 1 : 2;
  SetPropOrdinal(*action, "PublishMode", mode);
}

void TMSTestPublishFrame::UpdateControls() {
  bool specific = (*this)["rbPublishSpecific"].Checked;
  for (const auto& [name, label, prop] : kEdits)
    (*this)[name].Enabled = specific;
}

}  // namespace qv
