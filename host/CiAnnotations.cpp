#include "CiAnnotations.h"

#include "QvSysUtils.h"

namespace qvhost {

namespace {

// Replaces each byte found in `from` by the text at the same index of `to`.
std::string Escape(std::string_view s, std::string_view from,
                   std::initializer_list<std::string_view> to) {
  std::string out;
  out.reserve(s.size());
  for (char c : s) {
    size_t i = from.find(c);
    if (i == std::string_view::npos)
      out += c;
    else
      out += to.begin()[i];
  }
  return out;
}

// The next code point of UTF-8 text at `i` (a stray byte reads as itself), advancing `i`.
uint32_t NextCodePoint(std::string_view s, size_t& i) {
  auto c = static_cast<unsigned char>(s[i++]);
  int extra = c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : 0;
  uint32_t cp = extra == 0 ? c : c & (0x3F >> extra);
  size_t start = i;
  for (int k = 0; k < extra; ++k) {
    if (i >= s.size() || (static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) {
      i = start;
      return c;
    }
    cp = (cp << 6) | (static_cast<unsigned char>(s[i++]) & 0x3F);
  }
  return cp;
}

std::string Hex4(uint32_t unit) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string s = "|0x";
  for (int shift = 12; shift >= 0; shift -= 4)
    s += kDigits[(unit >> shift) & 0xF];
  return s;
}

std::string Position(const TLogDiagnostic& d, std::string_view fileKey, std::string_view lineKey,
                     std::string_view columnKey, char separator,
                     std::string (*escape)(std::string_view)) {
  std::string s;
  auto add = [&](std::string_view key, const std::string& value) {
    if (!s.empty()) s += separator;
    s += std::string(key) + "=" + escape(value);
  };
  if (!d.File.empty()) add(fileKey, d.File);
  if (d.Line > 0) add(lineKey, std::to_string(d.Line));
  if (d.Column > 0) add(columnKey, std::to_string(d.Column));
  return s;
}

std::string TeamCity(std::string_view message, std::string_view attributes) {
  return "##teamcity[" + std::string(message) + " " + std::string(attributes) + "]";
}

}  // namespace

std::string AzureData(std::string_view s) {
  return Escape(s, "%\r\n", {"%AZP25", "%0D", "%0A"});
}

std::string AzureProperty(std::string_view s) {
  return Escape(s, "%\r\n;]", {"%AZP25", "%0D", "%0A", "%3B", "%5D"});
}

std::string GitHubData(std::string_view s) {
  return Escape(s, "%\r\n", {"%25", "%0D", "%0A"});
}

std::string GitHubProperty(std::string_view s) {
  return Escape(s, "%\r\n:,", {"%25", "%0D", "%0A", "%3A", "%2C"});
}

// TeamCity reads "|" escapes, and "|0xNNNN" for each UTF-16 unit beyond ASCII.
std::string TeamCityValue(std::string_view s) {
  std::string out;
  for (size_t i = 0; i < s.size();) {
    uint32_t cp = NextCodePoint(s, i);
    switch (cp) {
      case '|':
        out += "||";
        break;
      case '\'':
        out += "|'";
        break;
      case '\n':
        out += "|n";
        break;
      case '\r':
        out += "|r";
        break;
      case '[':
        out += "|[";
        break;
      case ']':
        out += "|]";
        break;
      default:
        if (cp < 0x80) {
          out += static_cast<char>(cp);
        } else if (cp < 0x10000) {
          out += Hex4(cp);
        } else {
          cp -= 0x10000;
          out += Hex4(0xD800 + (cp >> 10)) + Hex4(0xDC00 + (cp & 0x3FF));
        }
    }
  }
  return out;
}

bool ParseCiDialect(std::string_view name, TCiDialect& dialect) {
  static const std::pair<std::string_view, TCiDialect> kNames[] = {
      {"none", TCiDialect::None},
      {"azure", TCiDialect::Azure},
      {"github", TCiDialect::GitHub},
      {"teamcity", TCiDialect::TeamCity}};
  for (const auto& [n, d] : kNames)
    if (qv::SameText(n, name)) {
      dialect = d;
      return true;
    }
  return false;
}

TCiDialect DetectCiDialect(const std::function<const char*(const char*)>& getEnv) {
  if (getEnv("TF_BUILD")) return TCiDialect::Azure;
  const char* github = getEnv("GITHUB_ACTIONS");
  if (github && std::string_view(github) == "true") return TCiDialect::GitHub;
  if (getEnv("TEAMCITY_VERSION")) return TCiDialect::TeamCity;
  return TCiDialect::None;
}

std::vector<std::string> TCiAnnotations::GroupStart(std::string_view title) const {
  switch (FDialect) {
    case TCiDialect::Azure:
      return {"##[group]" + AzureData(title)};
    case TCiDialect::GitHub:
      return {"::group::" + GitHubData(title)};
    case TCiDialect::TeamCity:
      return {TeamCity("blockOpened", "name='" + TeamCityValue(title) + "'")};
    case TCiDialect::None:
      break;
  }
  return {};
}

std::vector<std::string> TCiAnnotations::GroupEnd(std::string_view title) const {
  switch (FDialect) {
    case TCiDialect::Azure:
      return {"##[endgroup]"};
    case TCiDialect::GitHub:
      return {"::endgroup::"};
    case TCiDialect::TeamCity:
      return {TeamCity("blockClosed", "name='" + TeamCityValue(title) + "'")};
    case TCiDialect::None:
      break;
  }
  return {};
}

std::vector<std::string> TCiAnnotations::Diagnostic(const TLogDiagnostic& d) const {
  std::string severity = d.Error ? "error" : "warning";
  switch (FDialect) {
    case TCiDialect::Azure: {
      std::string props = "type=" + severity;
      std::string position =
          Position(d, "sourcepath", "linenumber", "columnnumber", ';', AzureProperty);
      if (!position.empty()) props += ";" + position;
      if (!d.Code.empty()) props += ";code=" + AzureProperty(d.Code);
      return {"##vso[task.logissue " + props + "]" + AzureData(d.Text)};
    }
    case TCiDialect::GitHub: {
      std::string props = Position(d, "file", "line", "col", ',', GitHubProperty);
      if (!d.Code.empty())
        props += (props.empty() ? "" : ",") + ("title=" + GitHubProperty(d.Code));
      return {"::" + severity + (props.empty() ? "" : " " + props) + "::" + GitHubData(d.Text)};
    }
    case TCiDialect::TeamCity: {
      std::string details = FormatDiagnostic(d);
      return {TeamCity("message", "text='" + TeamCityValue(d.Text) + "' status='" +
                                      (d.Error ? "ERROR" : "WARNING") + "' errorDetails='" +
                                      TeamCityValue(details) + "'")};
    }
    case TCiDialect::None:
      break;
  }
  return {};
}

std::vector<std::string> TCiAnnotations::ActionFailed(std::string_view caption) const {
  if (FDialect != TCiDialect::TeamCity) return {};
  // An identity names the same problem from build to build; TeamCity takes at most 60
  // characters, so a long caption is cut where no UTF-8 sequence is split.
  std::string identity(caption.substr(0, 60));
  while (!identity.empty() && caption.size() > identity.size() &&
         (static_cast<unsigned char>(caption[identity.size()]) & 0xC0) == 0x80)
    identity.pop_back();
  return {TeamCity("buildProblem", "description='" +
                                       TeamCityValue(std::string(caption) + " failed") +
                                       "' identity='" + TeamCityValue(identity) + "'")};
}

std::vector<std::string> TCiAnnotations::RunEnd(
    bool success, const std::vector<std::pair<std::string, int64_t>>& metrics) const {
  std::vector<std::string> lines;
  if (FDialect == TCiDialect::TeamCity)
    for (const auto& [key, value] : metrics)
      lines.push_back(TeamCity("buildStatisticValue", "key='" + TeamCityValue(key) + "' value='" +
                                                          std::to_string(value) + "'"));
  if (!success && FDialect == TCiDialect::Azure)
    lines.push_back("##vso[task.complete result=Failed;]");
  return lines;
}

}  // namespace qvhost
