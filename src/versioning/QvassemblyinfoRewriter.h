// The AssemblyInfo line rules: which lines are assembly attribute lines, how an attribute's
// argument is replaced and how a missing attribute is appended. Lines in, lines out, no I/O.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "QvClasses.h"

namespace qv {

// The nine assembly attributes, in the order of their bits in the per-file "not seen" set.
enum class TQvAssemblyAttribute : uint8_t {
  aaTitle,
  aaComment,
  aaCompany,
  aaDescription,
  aaCopyright,
  aaTrademark,
  aaProduct,
  aaFileVersion,
  aaVersion
};
inline constexpr int AssemblyAttributeCount = 9;

// The attribute's name as written in source ("AssemblyTitle", ...).
const char* AssemblyAttributeName(TQvAssemblyAttribute attribute);

// One assembly attribute line taken apart: "[assembly: AssemblyTitle("Foo")]" gives
// OpenBracket "[", Prefix "assembly", Name "AssemblyTitle", Value "Foo", Closing "]".
struct TQvAssemblyAttributeLine {
  char OpenBracket = 0;
  std::string Prefix;
  std::string Name;
  std::string Value;
  std::string Closing;
  bool Quoted = false;
};

// Takes a line apart; nullopt when it is not an assembly attribute line (no "assembly" in it,
// no "[" or "<" as first non-blank, no "assembly:" prefix, or no argument list).
std::optional<TQvAssemblyAttributeLine> ParseAssemblyAttributeLine(std::string_view line);

// The attribute a name on a line stands for: the name itself, with the "Attribute" suffix,
// the "System.Reflection." prefix or both, in exact case. AssemblyComment never matches.
std::optional<TQvAssemblyAttribute> MatchAssemblyAttribute(std::string_view name);

// The line rebuilt with `value` as its argument, quoted as it was; leading blanks dropped.
std::string FormatAssemblyAttributeLine(const TQvAssemblyAttributeLine& line,
                                        std::string_view value);

// The per-file state: attributes not yet seen, and the shape of the last recognised line,
// which appended lines copy. A file without any attribute line gives appended lines
// that start with the character of code 0, as the updater always has.
struct TQvAssemblyInfoState {
  uint16_t NotSeen = 511;
  std::string OpenBracket = std::string(1, '\0');
  std::string Prefix;
  std::string Closing;
  bool Quoted = false;
};

// The line appended for a missing attribute: always quoted; "Attribute" after the name in a
// managed C++ file.
std::string FormatAddedAttributeLine(const TQvAssemblyInfoState& state,
                                     TQvAssemblyAttribute attribute, std::string_view value,
                                     bool cppFile);

// The new value of an attribute (expanded), or nullopt when its update is switched off.
using TQvAssemblyValueFn = std::function<std::optional<std::string>(TQvAssemblyAttribute)>;
// Receives each progress line ("Processing Entry : ...", "Adding Entry : ...").
using TQvAssemblyLogFn = std::function<void(const std::string&)>;

// Rewrites the attribute lines of one AssemblyInfo file in place and appends the switched-on
// attributes the file lacks (never AssemblyComment). Untouched lines stay as they are.
// The "|" between version parts becomes "." in both version attributes.
void RewriteAssemblyInfo(TStringList& lines, bool cppFile, const TQvAssemblyValueFn& valueOf,
                         const TQvAssemblyLogFn& log);

}  // namespace qv
