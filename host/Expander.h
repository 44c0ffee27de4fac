// %NAME% expansion over the host's variables.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qvhost {

// The variables of a run and their precedence: loop variables (innermost first), then values
// given on the command line, then the project's variables, then the environment. Names other
// than the environment's compare without regard to letter case.
class TExpander {
 public:
  using TEnvironment = std::function<std::optional<std::string>(const std::string& name)>;

  // `environment` answers names no other source knows; by default the process environment.
  explicit TExpander(TEnvironment environment = SystemEnvironment);

  // A value given on the command line (--var); a later one for the same name replaces it.
  void SetOverride(const std::string& name, const std::string& value);
  // A variable of the project; a later one for the same name replaces it.
  void SetProjectVariable(const std::string& name, const std::string& value);
  // Makes `name` the loop variable of an iteration until the matching PopLoopVariable.
  void PushLoopVariable(const std::string& name, const std::string& value);
  void PopLoopVariable();

  // The value of a variable, or nullopt when no source knows it.
  std::optional<std::string> Lookup(std::string_view name) const;
  // Replaces %NAME% by its value and %% by %. Throws qv::Exception
  // "Variable "NAME" is not defined" for a name no source knows.
  std::string Expand(std::string_view text) const;
  // The names of the loop, command-line and project variables, each once, in that order.
  std::vector<std::string> VariableNames() const;

  // Reads the process environment.
  static std::optional<std::string> SystemEnvironment(const std::string& name);

 private:
  using TVariables = std::vector<std::pair<std::string, std::string>>;
  static void Set(TVariables& vars, const std::string& name, const std::string& value);
  static const std::string* Find(const TVariables& vars, std::string_view name);

  TEnvironment FEnvironment;
  TVariables FLoop, FOverrides, FProject;
};

}  // namespace qvhost
