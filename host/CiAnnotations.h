// Annotations for continuous-integration servers, written beside the text log: collapsible
// groups, errors and warnings attached to their files, a failed result, and metrics, each in
// the dialect and with the escaping its server's agent reads.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Diagnostics.h"

namespace qvhost {

enum class TCiDialect { None, Azure, GitHub, TeamCity };

// "none", "azure", "github" or "teamcity" (any case); false for anything else.
bool ParseCiDialect(std::string_view name, TCiDialect& dialect);
// The server the host runs under, told by its environment: Azure Pipelines (TF_BUILD set),
// GitHub Actions (GITHUB_ACTIONS "true"), TeamCity (TEAMCITY_VERSION set), else None.
TCiDialect DetectCiDialect(const std::function<const char*(const char*)>& getEnv);

// Turns log events into annotation lines (without line breaks); an event the dialect has no
// annotation for gives no line.
class TCiAnnotations {
 public:
  explicit TCiAnnotations(TCiDialect dialect) : FDialect(dialect) {}

  std::vector<std::string> GroupStart(std::string_view title) const;
  std::vector<std::string> GroupEnd(std::string_view title) const;
  std::vector<std::string> Diagnostic(const TLogDiagnostic& d) const;
  std::vector<std::string> ActionFailed(std::string_view caption) const;
  // The totals of the run's metrics ("GROUP.NAME", value) and its result.
  std::vector<std::string> RunEnd(
      bool success, const std::vector<std::pair<std::string, int64_t>>& metrics) const;

 private:
  TCiDialect FDialect;
};

// The escapings, for tests: Azure's message text and property values, GitHub's message text
// and property values, TeamCity's attribute values.
std::string AzureData(std::string_view s);
std::string AzureProperty(std::string_view s);
std::string GitHubData(std::string_view s);
std::string GitHubProperty(std::string_view s);
std::string TeamCityValue(std::string_view s);

}  // namespace qvhost
