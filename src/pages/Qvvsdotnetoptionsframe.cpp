#include "Qvvsdotnetoptionsframe.h"

#include "Qvpagebinding.h"
#include "Qvvsdotnetoptions.h"

namespace qv {

namespace {
constexpr const char* kLocations[][3] = {
    {"edtDevEnv2002", "Visual Studio 2002:", "DevEnvLocation"},
    {"edtDevEnv2003", "Visual Studio .NET 2003:", "DevEnv2003Location"},
    {"edtDevEnv2005", "Visual Studio 2005:", "DevEnv2005Location"},
    {"edtDevEnv2008", "Visual Studio 2008:", "DevEnv2008Location"},
    {"edtMSTestDir", "Standalone MSTest:", "StandaloneMSTestDir"}};
}  // namespace

TVSDotNetOptionsFrame::TVSDotNetOptionsFrame() {
  StartGroup("Visual Studio Locations");
  for (const auto& [name, label, prop] : kLocations) {
    Add(TQvControlKind::Label, std::string(name) + "Label", label);
    std::string control = name;
    bool msTest = control == "edtMSTestDir";
    Add(TQvControlKind::PathEdit, name).OnButton = [this, control, msTest] {
      BrowseFolderInto(control, msTest ? "Standalone MSTest Directory" : "Devenv.com Location");
    };
    NextRow();
  }
  StartGroup("Default Version");
  Add(TQvControlKind::DropDownList, "cmbVSVer");
}

void TVSDotNetOptionsFrame::InitPage(TCustomQvAction*) {
  TQvControl& versions = (*this)["cmbVSVer"];
  versions.Items.clear();
  for (int v = 0; v <= static_cast<int>(TVSDotNetVersion::vsUnknown); ++v)
    versions.Items.push_back(GetVSName(v));
  versions.Items.push_back("Standalone MSTest");
}

void TVSDotNetOptionsFrame::ReadOptions(TQvOptionsObject* options) {
  for (const auto& [name, label, prop] : kLocations)
    (*this)[name].Text = options->GetPropValue(prop);
  TQvControl& versions = (*this)["cmbVSVer"];
  auto* vs = dynamic_cast<IQvVSDotNetOptions*>(options);
  versions.ItemIndex = vs ? vs->GetDefaultVSVersion() : -1;
  if (versions.ItemIndex >= static_cast<int>(versions.Items.size())) versions.ItemIndex = -1;
}

void TVSDotNetOptionsFrame::WriteOptions(TQvOptionsObject* options) {
  TDevEnvEdits edits;  // the first four locations
  for (size_t i = 0; i < edits.size(); ++i)
    edits[i] = (*this)[kLocations[i][0]].Text;
  NormalizeDevEnvEdits(edits);
  for (size_t i = 0; i < edits.size(); ++i)
    (*this)[kLocations[i][0]].Text = edits[i];
  for (const auto& [name, label, prop] : kLocations)
    options->SetPropValue(prop, (*this)[name].Text);
  if (auto* vs = dynamic_cast<IQvVSDotNetOptions*>(options);
      vs && (*this)["cmbVSVer"].ItemIndex >= 0)
    vs->SetDefaultVSVersion(static_cast<uint8_t>((*this)["cmbVSVer"].ItemIndex));
}

}  // namespace qv
