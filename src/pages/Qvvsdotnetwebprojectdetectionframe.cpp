#include "Qvvsdotnetwebprojectdetectionframe.h"

#include "QvSysUtils.h"
#include "Qvpagebinding.h"

namespace qv {

namespace {
constexpr const char* kMethods[] = {"rbWMI", "rbNetworkShare", "rbWebDAV"};
// The password goes through the action's accessors, which keep it encrypted in storage.
constexpr const char* kTexts[][2] = {
    {"edtShare", "SharePath"}, {"edtUser", "WebDAVUsername"}, {"edtPassword", "WebDAVPassword"}};
}  // namespace

TVSDotNetWebProjectLocationFrame::TVSDotNetWebProjectLocationFrame() {
  StartGroup("Web Project Location Detection");
  Add(TQvControlKind::Label, "lblNote1",
      "Project Location detection is only required if Assembly Info requires updating, ");
  NextRow();
  Add(TQvControlKind::Label, "lblNote2", "and the project is a web project ");
  NextRow();
  Add(TQvControlKind::RadioButton, "rbWMI", "Use WMI - Specify website number");
  TQvControl& number = Add(TQvControlKind::SpinEdit, "spiWebsiteNumber");
  number.Min = 0;
  number.Max = 1000000;
  NextRow();
  Add(TQvControlKind::RadioButton, "rbNetworkShare", "Use Network Share - specify share name");
  Add(TQvControlKind::Edit, "edtShare");
  NextRow();
  Add(TQvControlKind::RadioButton, "rbWebDAV", "Use WebDAV");
  NextRow();
  Add(TQvControlKind::Label, "lblUser", "Username");
  Add(TQvControlKind::Edit, "edtUser");
  NextRow();
  Add(TQvControlKind::Label, "lblPassword", "Password");
  Add(TQvControlKind::Edit, "edtPassword");
}

void TVSDotNetWebProjectLocationFrame::ReadActionData(TCustomQvAction* action) {
  int method = PropOrdinal(*action, "ProjLocationDetectMethod");
  for (int i = 0; i < static_cast<int>(std::size(kMethods)); ++i)
    (*this)[kMethods[i]].Checked = i == method;
  for (const auto& [control, prop] : kTexts)
    (*this)[control].Text = action->GetPropValue(prop);
  TQvControl& number = (*this)["spiWebsiteNumber"];
  number.Text = action->GetPropValue("WMIWebsiteNum");
  number.Value = StrToInt64Def(number.Text, 0);
}

void TVSDotNetWebProjectLocationFrame::WriteActionData(TCustomQvAction* action) {
  // Tested in order, the last checked one winning; none checked keeps the stored method.
  for (int i = 0; i < static_cast<int>(std::size(kMethods)); ++i)
    if ((*this)[kMethods[i]].Checked) SetPropOrdinal(*action, "ProjLocationDetectMethod", i);
  action->SetPropValue("SharePath", (*this)["edtShare"].Text);
  action->SetPropValue("WMIWebsiteNum", (*this)["spiWebsiteNumber"].Text);
  action->SetPropValue("WebDAVUsername", (*this)["edtUser"].Text);
  action->SetPropValue("WebDAVPassword", (*this)["edtPassword"].Text);
}

bool TVSDotNetWebProjectLocationFrame::Validate(std::string& message) {
  const std::string& text = (*this)["spiWebsiteNumber"].Text;
  if (StrToInt64Def(text, -1) >= 0 && !Trim(text).empty()) return true;
  message = "The website number must be a whole number, not \"" + text + "\"";
  return false;
}

}  // namespace qv
