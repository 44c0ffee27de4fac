// The plug-in's options: where each Visual Studio edition keeps devenv.com, the default
// edition and a standalone MSTest folder, kept in the host's options store.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "QvOptions.h"
#include "Vsnetsln.h"

namespace qv {

// The display name of an edition ("Visual Studio" for anything above vs2008).
std::string GetVSName(int version);
inline std::string GetVSName(TVSDotNetVersion v) {
  return GetVSName(static_cast<int>(v));
}

struct IQvVSDotNetOptions : virtual IInterface {
  QV_INTERFACE_ID("{4C7D2E19-8B3A-4F61-A05E-93D1B6C2F847}");
  virtual std::string GetDevEnv2002Location() const = 0;
  virtual std::string GetDevEnv2003Location() const = 0;
  virtual std::string GetDevEnv2005Location() const = 0;
  virtual std::string GetDevEnv2008Location() const = 0;
  virtual std::string GetStandaloneMSTestDir() const = 0;
  // The stored byte: a TVSDotNetVersion, or 5 for "Standalone MSTest".
  virtual uint8_t GetDefaultVSVersion() const = 0;
  virtual void SetDevEnv2002Location(const std::string& v) = 0;
  virtual void SetDevEnv2003Location(const std::string& v) = 0;
  virtual void SetDevEnv2005Location(const std::string& v) = 0;
  virtual void SetDevEnv2008Location(const std::string& v) = 0;
  virtual void SetDefaultVSVersion(uint8_t v) = 0;
  virtual void SetStandaloneMSTestDir(const std::string& v) = 0;
  // The stored folder of vs2002..vs2008, trimmed; empty for any other value.
  virtual std::string GetDevEnvLocation(int version) const = 0;
  // The newest edition with a configured folder; vs2005 when none has one.
  virtual TVSDotNetVersion GetHighestInstalledVSVersion() const = 0;
};

class TVSDotNetOptions : public TQvOptionsObject, public IQvVSDotNetOptions {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  void LoadOptions(IQvOptionsReader& reader) override;
  void SaveOptions(IQvOptionsWriter& writer) override;
  std::string GetName() const override { return "Visual Studio.Net"; }
  std::string GetCategory() const override { return "Compilers"; }
  std::string GetOptionKey() const override { return "VisualStudioDotNet"; }

  std::string GetDevEnv2002Location() const override { return FLocations[0]; }
  std::string GetDevEnv2003Location() const override { return FLocations[1]; }
  std::string GetDevEnv2005Location() const override { return FLocations[2]; }
  std::string GetDevEnv2008Location() const override { return FLocations[3]; }
  std::string GetStandaloneMSTestDir() const override { return FStandaloneMSTestDir; }
  uint8_t GetDefaultVSVersion() const override { return FDefaultVSVersion; }
  void SetDevEnv2002Location(const std::string& v) override { SetLocation(0, v); }
  void SetDevEnv2003Location(const std::string& v) override { SetLocation(1, v); }
  void SetDevEnv2005Location(const std::string& v) override { SetLocation(2, v); }
  void SetDevEnv2008Location(const std::string& v) override { SetLocation(3, v); }
  void SetDefaultVSVersion(uint8_t v) override;
  void SetStandaloneMSTestDir(const std::string& v) override;
  std::string GetDevEnvLocation(int version) const override;
  TVSDotNetVersion GetHighestInstalledVSVersion() const override;

 protected:
  void* GetInterface(const TGUID& iid) override;

 private:
  void SetLocation(int index, const std::string& v);

  std::array<std::string, 4> FLocations;  // vs2002, vs2003, vs2005, vs2008
  uint8_t FDefaultVSVersion = static_cast<uint8_t>(TVSDotNetVersion::vs2005);
  std::string FStandaloneMSTestDir;
};

// The options object the host holds under "Visual Studio.Net" / "Compilers", or null.
IntfPtr<IQvVSDotNetOptions> VSDotNetOptions();

// Registers the options class (icon "DEVENV"), the script accessor "VSDotNetOptions" and
// the TVSDotNetVersion enumeration with the host.
void RegisterOptions();

// The texts of the four location edits of the options page (2002, 2003, 2005, 2008).
using TDevEnvEdits = std::array<std::string, 4>;
// What the options page does to its edits before saving them: a 2002, 2003 or 2005 text
// naming devenv.exe, then devenv.com, is cut to its folder (with the separator); a 2008
// text naming devenv.com puts its folder into the 2005 edit and stays as it is.
void NormalizeDevEnvEdits(TDevEnvEdits& edits);

}  // namespace qv
