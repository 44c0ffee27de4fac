#include "QvassemblyinfoRewriter.h"

#include "QvText.h"

#include <array>

#include "QvSysUtils.h"

namespace qv {

namespace {
constexpr std::array<const char*, AssemblyAttributeCount> Names = {
    "AssemblyTitle",       "AssemblyComment",     "AssemblyCompany",
    "AssemblyDescription", "AssemblyCopyright",   "AssemblyTrademark",
    "AssemblyProduct",     "AssemblyFileVersion", "AssemblyVersion"};

// The order in which a name on a line is tried; AssemblyComment is deliberately absent.
constexpr std::array<TQvAssemblyAttribute, 8> MatchOrder = {
    TQvAssemblyAttribute::aaTitle,       TQvAssemblyAttribute::aaDescription,
    TQvAssemblyAttribute::aaCompany,     TQvAssemblyAttribute::aaProduct,
    TQvAssemblyAttribute::aaCopyright,   TQvAssemblyAttribute::aaTrademark,
    TQvAssemblyAttribute::aaFileVersion, TQvAssemblyAttribute::aaVersion};

constexpr std::string_view ReflectionPrefix = "System.Reflection.";
constexpr std::string_view AttributeSuffix = "Attribute";

uint16_t BitOf(TQvAssemblyAttribute a) {
  return static_cast<uint16_t>(1u << static_cast<unsigned>(a));
}

bool IsVersion(TQvAssemblyAttribute a) {
  return a == TQvAssemblyAttribute::aaFileVersion || a == TQvAssemblyAttribute::aaVersion;
}

// Versions are kept as "1|0|12|3"; source files want "1.0.12.3".
std::string SourceValue(TQvAssemblyAttribute a, const std::string& value) {
  if (!IsVersion(a)) return value;
  std::string r = value;
  for (char& c : r)
    if (c == '|') c = '.';
  return r;
}

// Fills Value, Closing and Quoted from the text after the "(" at `open`; false when the
// argument list is not closed.
bool ParseArgument(std::string_view line, size_t open, TQvAssemblyAttributeLine& r) {
  size_t arg = SkipBlanks(line, open + 1);
  if (arg < line.size() && line[arg] == '"') {
    size_t close = line.find('"', arg + 1);
    if (close == std::string_view::npos) return false;
    size_t paren = line.find(')', close + 1);
    if (paren == std::string_view::npos) return false;
    r.Value = line.substr(arg + 1, close - arg - 1);
    r.Closing = line.substr(paren + 1);
    r.Quoted = true;
    return true;
  }
  size_t paren = line.rfind(')');
  if (paren == std::string_view::npos || paren < open) return false;
  r.Value = line.substr(open + 1, paren - open - 1);
  r.Closing = line.substr(paren + 1);
  r.Quoted = false;
  return true;
}
}  // namespace

const char* AssemblyAttributeName(TQvAssemblyAttribute attribute) {
  return Names[static_cast<size_t>(attribute)];
}

std::optional<TQvAssemblyAttributeLine> ParseAssemblyAttributeLine(std::string_view line) {
  if (FindText(line, "assembly") == std::string_view::npos) return std::nullopt;
  size_t i = SkipBlanks(line, 0);
  // A comment marker or code before the bracket keeps the line out of reach.
  if (i >= line.size() || (line[i] != '[' && line[i] != '<')) return std::nullopt;
  TQvAssemblyAttributeLine r;
  r.OpenBracket = line[i];
  i = SkipBlanks(line, i + 1);
  size_t end = line.find_first_of(": \t", i);
  if (end == std::string_view::npos) return std::nullopt;
  r.Prefix = Trim(line.substr(i, end - i));
  if (line[end] != ':' || LowerCase(r.Prefix) != "assembly") return std::nullopt;
  size_t open = line.find('(', end + 1);
  if (open == std::string_view::npos) return std::nullopt;
  r.Name = Trim(line.substr(end + 1, open - end - 1));
  if (!ParseArgument(line, open, r)) return std::nullopt;
  return r;
}

std::optional<TQvAssemblyAttribute> MatchAssemblyAttribute(std::string_view name) {
  if (name.starts_with(ReflectionPrefix)) name.remove_prefix(ReflectionPrefix.size());
  if (name.ends_with(AttributeSuffix)) {
    std::string_view bare = name.substr(0, name.size() - AttributeSuffix.size());
    for (TQvAssemblyAttribute a : MatchOrder)
      if (bare == Names[static_cast<size_t>(a)]) return a;
  }
  for (TQvAssemblyAttribute a : MatchOrder)
    if (name == Names[static_cast<size_t>(a)]) return a;
  return std::nullopt;
}

std::string FormatAssemblyAttributeLine(const TQvAssemblyAttributeLine& line,
                                        std::string_view value) {
  std::string r(1, line.OpenBracket);
  r.append(line.Prefix).append(": ").append(line.Name).append("(");
  if (line.Quoted)
    r.append("\"").append(value).append("\")");
  else
    r.append(value).append(")");
  return r.append(line.Closing);
}

std::string FormatAddedAttributeLine(const TQvAssemblyInfoState& state,
                                     TQvAssemblyAttribute attribute, std::string_view value,
                                     bool cppFile) {
  std::string r = state.OpenBracket + state.Prefix + ": " + AssemblyAttributeName(attribute);
  if (cppFile) r.append(AttributeSuffix);
  r.append("(\"").append(value).append("\")");
  return r.append(state.Closing);
}

void RewriteAssemblyInfo(TStringList& lines, bool cppFile, const TQvAssemblyValueFn& valueOf,
                         const TQvAssemblyLogFn& log) {
  TQvAssemblyInfoState state;
  for (int i = 0; i < lines.Count(); ++i) {
    std::optional<TQvAssemblyAttributeLine> line = ParseAssemblyAttributeLine(lines[i]);
    if (!line) continue;
    state.OpenBracket.assign(1, line->OpenBracket);
    state.Prefix = line->Prefix;
    state.Closing = line->Closing;
    state.Quoted = line->Quoted;
    std::optional<TQvAssemblyAttribute> attribute = MatchAssemblyAttribute(line->Name);
    if (!attribute) continue;
    std::optional<std::string> value = valueOf(*attribute);
    if (!value) continue;
    std::string text = SourceValue(*attribute, *value);
    state.NotSeen &= static_cast<uint16_t>(~BitOf(*attribute));
    log("Processing Entry : " + line->Name + " Value : " + text);
    lines.Put(i, FormatAssemblyAttributeLine(*line, text));
  }
  for (int a = 0; a < AssemblyAttributeCount; ++a) {
    auto attribute = static_cast<TQvAssemblyAttribute>(a);
    if (!(state.NotSeen & BitOf(attribute)) || attribute == TQvAssemblyAttribute::aaComment)
      continue;
    std::optional<std::string> value = valueOf(attribute);
    if (!value) continue;
    std::string text = SourceValue(attribute, *value);
    log(std::string("Adding Entry : ") + AssemblyAttributeName(attribute) + " Value : " + text);
    lines.Add(FormatAddedAttributeLine(state, attribute, text, cppFile));
  }
}

}  // namespace qv
