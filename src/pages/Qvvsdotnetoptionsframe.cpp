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

// The folder part of `text` (up to and including the last separator) when it names `file`.
void StripFile(std::string& text, const char* file, std::string& into) {
  if (LowerCase(text).find(file) == std::string::npos) return;
  size_t slash = text.find_last_of("\\/");
  into = slash == std::string::npos ? std::string() : text.substr(0, slash + 1);
}
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

// A devenv.exe or devenv.com typed in full is cut to its folder; a devenv.com in the 2008 edit
// lands, as folder, in the 2005 edit (the page has always done so).
void TVSDotNetOptionsFrame::WriteOptions(TQvOptionsObject* options) {
  const char* early[] = {"edtDevEnv2002", "edtDevEnv2003", "edtDevEnv2005"};
  for (const char* file : {"devenv.exe", "devenv.com"})
    for (const char* name : early)
      StripFile((*this)[name].Text, file, (*this)[name].Text);
  StripFile((*this)["edtDevEnv2008"].Text, "devenv.com", (*this)["edtDevEnv2005"].Text);
  for (const auto& [name, label, prop] : kLocations)
    options->SetPropValue(prop, (*this)[name].Text);
  if (auto* vs = dynamic_cast<IQvVSDotNetOptions*>(options);
      vs && (*this)["cmbVSVer"].ItemIndex >= 0)
    vs->SetDefaultVSVersion(static_cast<uint8_t>((*this)["cmbVSVer"].ItemIndex));
}

}  // namespace qv
