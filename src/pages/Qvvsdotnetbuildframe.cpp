#include "Qvvsdotnetbuildframe.h"

#include "Qvpagebinding.h"

namespace qv {

namespace {
constexpr const char* kChecks[][2] = {{"chkTargetFramework", "OverrideTargetFramework"},
                                      {"chkOverrideCompiler", "OverrideCompiler"},
                                      {"chkDebug", "DebugConstant"},
                                      {"chkTrace", "TraceConstant"},
                                      {"chkOptimize", "Optimize"},
                                      {"chkAllowUnsafe", "AllowUnsafe"},
                                      {"chkOverrideWarnings", "OverrideWarnings"},
                                      {"chkAllWarningsAsErrors", "AllWarningsAsErrors"},
                                      {"chkSpecifiedWarningsAsErrors", "SelectedWarningsAsErrors"},
                                      {"chkDisableWarnings", "DisableSelectedWarnings"},
                                      {"chkUseEnv", "UseEnv"}};
constexpr const char* kEdits[][2] = {{"edtConstants", "CompilerConstants"},
                                     {"edtWarningsAsErrors", "WarningsAsErrors"},
                                     {"edtDisableWarnings", "DisableWarnings"}};
// Lists whose item index is the property's value (an ordinal or a number).
constexpr const char* kLists[][2] = {{"cmbTargetFramework", "TargetFramework"},
                                     {"cmbWarnLevel", "WarningLevel"},
                                     {"cmbMaxCPUs", "MaxCPUs"},
                                     {"cbLogLevel", "LogLevel"}};
}  // namespace

TVSDotNetBuildFrame::TVSDotNetBuildFrame() {
  auto check = [this](const char* name, const char* caption) -> TQvControl& {
    TQvControl& c = Add(TQvControlKind::CheckBox, name, caption);
    c.OnClick = [this] { UpdateControls(); };
    return c;
  };
  StartGroup("Target Framework");
  check("chkTargetFramework", "Override Target Framework");
  Add(TQvControlKind::DropDownList, "cmbTargetFramework").Items = {"v2.0", "v3.0", "v3.5"};
  Add(TQvControlKind::Label, "lblVS2008Only1", "(VS2008 Only)");
  StartGroup("Compiler");
  check("chkOverrideCompiler", "Override Compiler Settings");
  NextRow();
  Add(TQvControlKind::Label, "lblConstants", "Conditional Compilation Constants:");
  Add(TQvControlKind::Edit, "edtConstants");
  NextRow();
  check("chkDebug", "Define DEBUG constant");
  check("chkTrace", "Define TRACE constant");
  NextRow();
  check("chkOptimize", "Optimize code");
  check("chkAllowUnsafe", "Allow unsafe code");
  StartGroup("Warnings");
  check("chkOverrideWarnings", "Override Warning Settings");
  NextRow();
  Add(TQvControlKind::Label, "lblWarnLevel", "Warning Level:");
  Add(TQvControlKind::DropDownList, "cmbWarnLevel").Items = {"0", "1", "2", "3", "4"};
  NextRow();
  check("chkAllWarningsAsErrors", "Treat All Warnings as Errors");
  NextRow();
  check("chkSpecifiedWarningsAsErrors", "Treat Specified Warnings as Errors:");
  Add(TQvControlKind::Edit, "edtWarningsAsErrors");
  NextRow();
  check("chkDisableWarnings", "Suppress Warnings:");
  Add(TQvControlKind::Edit, "edtDisableWarnings");
  StartGroup("Options");
  check("chkUseEnv", "Use Environment Variables for C++ Paths");
  NextRow();
  Add(TQvControlKind::Label, "lblMaxCPUs", "Maximum CPUs:");
  TQvControl& cpus = Add(TQvControlKind::DropDownList, "cmbMaxCPUs");
  cpus.Items.push_back("All Available");
  for (int i = 1; i <= 10; ++i)
    cpus.Items.push_back(std::to_string(i));
  Add(TQvControlKind::Label, "lblVS2008Only2", "(VS2008 Only)");
  NextRow();
  Add(TQvControlKind::Label, "lblLogLevel", "Logging Level:");
  Add(TQvControlKind::DropDownList, "cbLogLevel").Items = {"Quiet", "Minimal", "Normal", "Detailed",
                                                           "Diagnostic"};
  NextRow();
  Add(TQvControlKind::Label, "lblUseMSbuildRequired",
      "These options require Use MSBuild to be checked on the Solution tab");
}

void TVSDotNetBuildFrame::ReadActionData(TCustomQvAction* action) {
  for (const auto& [control, prop] : kChecks)
    (*this)[control].Checked = PropBool(*action, prop);
  for (const auto& [control, prop] : kEdits)
    (*this)[control].Text = action->GetPropValue(prop);
  for (const auto& [control, prop] : kLists) {
    TQvControl& list = (*this)[control];
    int index = PropOrdinal(*action, prop);
    if (index < 0) index = static_cast<int>(StrToInt64Def(action->GetPropValue(prop), -1));
    list.ItemIndex = index >= 0 && index < static_cast<int>(list.Items.size()) ? index : -1;
    list.Text = list.ItemIndex >= 0 ? list.Items[list.ItemIndex] : "";
  }
  ReadMSBuildFlags(*action);
  UpdateControls();
}

void TVSDotNetBuildFrame::WriteActionData(TCustomQvAction* action) {
  for (const auto& [control, prop] : kChecks)
    SetPropBool(*action, prop, (*this)[control].Checked);
  for (const auto& [control, prop] : kEdits)
    action->SetPropValue(prop, (*this)[control].Text);
  for (const auto& [control, prop] : kLists)
    if ((*this)[control].ItemIndex >= 0)
      action->SetPropValue(prop, std::to_string((*this)[control].ItemIndex));
}

void TVSDotNetBuildFrame::UpdateControls() {
  auto& self = *this;
  bool m = FUsingMSBuild, v = FVS2008;
  for (const char* name :
       {"chkOverrideCompiler", "chkOverrideWarnings", "cbLogLevel", "lblLogLevel"})
    self[name].Enabled = m;
  bool compiler = m && self["chkOverrideCompiler"].Checked;
  for (const char* name :
       {"lblConstants", "edtConstants", "chkDebug", "chkTrace", "chkOptimize", "chkAllowUnsafe"})
    self[name].Enabled = compiler;
  bool w = m && self["chkOverrideWarnings"].Checked;
  for (const char* name : {"cmbWarnLevel", "lblWarnLevel", "chkDisableWarnings"})
    self[name].Enabled = w;
  self["edtDisableWarnings"].Enabled = w && self["chkDisableWarnings"].Checked;
  // The two ways of turning warnings into errors exclude each other.
  self["chkAllWarningsAsErrors"].Enabled = w && !self["chkSpecifiedWarningsAsErrors"].Checked;
  self["chkSpecifiedWarningsAsErrors"].Enabled = w && !self["chkAllWarningsAsErrors"].Checked;
  self["edtWarningsAsErrors"].Enabled =
      self["chkSpecifiedWarningsAsErrors"].Enabled && self["chkSpecifiedWarningsAsErrors"].Checked;
  for (const char* name : {"chkTargetFramework", "cmbMaxCPUs", "lblMaxCPUs"})
    self[name].Enabled = m && v;
  self["cmbTargetFramework"].Enabled =
      self["chkTargetFramework"].Enabled && self["chkTargetFramework"].Checked;
  self["lblVS2008Only1"].Visible = self["lblVS2008Only2"].Visible = m && !v;
  self["lblUseMSbuildRequired"].Visible = !m;
  self["chkUseEnv"].Enabled = true;
}

}  // namespace qv
