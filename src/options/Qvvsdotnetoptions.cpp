#include "Qvvsdotnetoptions.h"

#include "QvRegistry.h"
#include "QvServices.h"
#include "QvSysUtils.h"

namespace qv {

namespace {

constexpr const char* kOptionKeys[] = {"MSDevPath", "MSDevPath2003", "MSDevPath2005",
                                       "MSDevPath2008"};
constexpr const char* kRegistryKeys[] = {
    "SOFTWARE\\Microsoft\\VisualStudio\\7.0", "SOFTWARE\\Microsoft\\VisualStudio\\7.1",
    "SOFTWARE\\Microsoft\\VisualStudio\\8.0", "SOFTWARE\\Microsoft\\VisualStudio\\9.0"};

// The folder Visual Studio recorded at installation ("InstallDir"), or empty.
std::string RegistryInstallDir(int index) {
  std::string dir;
  if (!RegistryReadString(TRegistryRoot::LocalMachine, kRegistryKeys[index], "InstallDir", dir))
    return {};
  return dir;
}

using O = TVSDotNetOptions;
const TPropDescriptor kOptionProps[] = {
    StrProp<O, &O::GetDevEnv2002Location, &O::SetDevEnv2002Location>("DevEnvLocation"),
    StrProp<O, &O::GetDevEnv2003Location, &O::SetDevEnv2003Location>("DevEnv2003Location"),
    StrProp<O, &O::GetDevEnv2005Location, &O::SetDevEnv2005Location>("DevEnv2005Location"),
    StrProp<O, &O::GetDevEnv2008Location, &O::SetDevEnv2008Location>("DevEnv2008Location"),
    EnumProp<O, &O::GetDefaultVSVersion, &O::SetDefaultVSVersion>("DefaultVSVersion",
                                                                  TVSDotNetVersionInfo, nullptr),
    StrProp<O, &O::GetStandaloneMSTestDir, &O::SetStandaloneMSTestDir>("StandaloneMSTestDir"),
};

}  // namespace

std::string GetVSName(int version) {
  switch (version) {
    case 0:
      return "Visual Studio 2002";
    case 1:
      return "Visual Studio.NET 2003";
    case 2:
      return "Visual Studio.NET 2005";
    case 3:
      return "Visual Studio.NET 2008";
    default:
      return "Visual Studio";
  }
}

const TPropertyTable TVSDotNetOptions::PropertyTable{
    "TVSDotNetOptions", &TQvOptionsObject::PropertyTable, kOptionProps};

void* TVSDotNetOptions::GetInterface(const TGUID& iid) {
  if (void* p = QueryInterfaceList<IQvVSDotNetOptions>(this, iid)) return p;
  return TQvOptionsObject::GetInterface(iid);
}

void TVSDotNetOptions::SetLocation(int index, const std::string& v) {
  if (FLocations[index] == v) return;
  FLocations[index] = v;
  FModified = true;
}

void TVSDotNetOptions::SetDefaultVSVersion(uint8_t v) {
  if (FDefaultVSVersion == v) return;
  FDefaultVSVersion = v;
  FModified = true;
}

void TVSDotNetOptions::SetStandaloneMSTestDir(const std::string& v) {
  FModified = FModified || FStandaloneMSTestDir != v;
  FStandaloneMSTestDir = v;
}

std::string TVSDotNetOptions::GetDevEnvLocation(int version) const {
  if (version < 0 || version > 3) return {};
  return Trim(FLocations[version]);
}

TVSDotNetVersion TVSDotNetOptions::GetHighestInstalledVSVersion() const {
  for (int v = 4; v >= 0; --v)
    if (!GetDevEnvLocation(v).empty()) return static_cast<TVSDotNetVersion>(v);
  return TVSDotNetVersion::vs2005;
}

void TVSDotNetOptions::LoadOptions(IQvOptionsReader& reader) {
  TQvOptionsObject::LoadOptions(reader);
  for (int i = 0; i < 4; ++i) {
    FLocations[i] = reader.ReadString(kOptionKeys[i], "");
    // Filled through the setter, so that a location found in the registry is saved.
    if (FLocations[i].empty()) SetLocation(i, RegistryInstallDir(i));
  }
  int64_t def = reader.ReadInteger("DefVSVersion", -1);
  FDefaultVSVersion = def <= -1 ? static_cast<uint8_t>(GetHighestInstalledVSVersion())
                                : static_cast<uint8_t>(def & 0xFF);
  FStandaloneMSTestDir = reader.ReadString("StandaloneMSTestDir", "");
}

void TVSDotNetOptions::SaveOptions(IQvOptionsWriter& writer) {
  TQvOptionsObject::SaveOptions(writer);
  for (int i = 0; i < 4; ++i)
    writer.WriteString(kOptionKeys[i], FLocations[i]);
  writer.WriteInteger("DefVSVersion", FDefaultVSVersion);
  writer.WriteString("StandaloneMSTestDir", FStandaloneMSTestDir);
}

IntfPtr<IQvVSDotNetOptions> VSDotNetOptions() {
  if (!QvOptionsServices) return nullptr;
  return Supports<IQvVSDotNetOptions>(
      QvOptionsServices->FindOptions("Visual Studio.Net", "Compilers"));
}

void RegisterOptions() {
  QvOptionsServices->RegisterOptions(OptionsClassOf<TVSDotNetOptions>(), "DEVENV");
  QvScriptingServices->RegisterGlobalObject("VSDotNetOptions", "function VSDotNetOptions: Variant;",
                                            [](const std::vector<TScriptValue>&) -> TScriptValue {
                                              return IntfPtr<IInterface>(VSDotNetOptions());
                                            });
  QvScriptingServices->RegisterEnumeration(TVSDotNetVersionInfo);
}

void NormalizeDevEnvEdits(TDevEnvEdits& edits) {
  for (const char* exe : {"devenv.exe", "devenv.com"})
    for (int i = 0; i < 3; ++i)
      if (ContainsStr(LowerCase(edits[i]), exe)) edits[i] = ExtractFilePath(edits[i]);
  if (ContainsStr(LowerCase(edits[3]), "devenv.com")) edits[2] = ExtractFilePath(edits[3]);
}

}  // namespace qv
