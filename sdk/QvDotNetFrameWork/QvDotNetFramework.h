// The host's .NET support: installed framework folders by version, MSBuild verbosity and
// quoting of MSBuild property values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "QvInterfaces.h"
#include "QvProperties.h"

namespace qv {

// MSBuild verbosity, by ordinal.
enum class TMSLogLevel : uint8_t { Quiet, Minimal, Normal, Detailed, Diagnostic };
extern const TEnumTypeInfo TMSLogLevelInfo;

// One installed .NET framework.
struct IQvDotNetFramework : virtual IInterface {
  QV_INTERFACE_ID("{E7B2A154-8C3F-4D06-9A1B-2F5D6C8E0B73}");
  // The version text it was asked for ("v2.0", "v3.5").
  virtual std::string GetVersion() const = 0;
  // Its folder (where MSBuild.exe lives), without a trailing separator.
  virtual std::string GetFolder() const = 0;
};

class IQvDotNetInfo {
 public:
  // The framework installed for a version text, or null.
  virtual IntfPtr<IQvDotNetFramework> GetFramework(const std::string& versionText) = 0;

 protected:
  ~IQvDotNetInfo() = default;
};

// The host's framework lookup; null until the host sets it.
extern IQvDotNetInfo* QvDotNetInfo;

// A framework record with a fixed folder, for hosts that know where frameworks live.
IntfPtr<IQvDotNetFramework> NewDotNetFramework(const std::string& version,
                                               const std::string& folder);

// Makes `value` safe as one MSBuild property value inside /p:NAME=VALUE;...: "%" becomes
// %25, ";" %3B and a double quote %22 (MSBuild unescapes them), so the value survives any
// command-line splitting; a value holding blanks is wrapped in double quotes so that
// Windows keeps it in one argument.
std::string QuoteMSBuildArg(std::string_view value);

}  // namespace qv
