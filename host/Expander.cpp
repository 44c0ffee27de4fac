#include "Expander.h"

#include <algorithm>
#include <cstdlib>

#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qvhost {

TExpander::TExpander(TEnvironment environment) : FEnvironment(std::move(environment)) {}

std::optional<std::string> TExpander::SystemEnvironment(const std::string& name) {
  return qv::platform::GetEnv(name);
}

void TExpander::Set(TVariables& vars, const std::string& name, const std::string& value) {
  for (auto& [n, v] : vars)
    if (qv::SameText(n, name)) {
      v = value;
      return;
    }
  vars.emplace_back(name, value);
}

const std::string* TExpander::Find(const TVariables& vars, std::string_view name) {
  // From the back, so that an inner loop's variable hides an outer one of the same name.
  for (auto it = vars.rbegin(); it != vars.rend(); ++it)
    if (qv::SameText(it->first, name)) return &it->second;
  return nullptr;
}

void TExpander::SetOverride(const std::string& name, const std::string& value) {
  Set(FOverrides, name, value);
}

void TExpander::SetProjectVariable(const std::string& name, const std::string& value) {
  Set(FProject, name, value);
}

void TExpander::PushLoopVariable(const std::string& name, const std::string& value) {
  FLoop.emplace_back(name, value);
}

void TExpander::PopLoopVariable() {
  if (!FLoop.empty()) FLoop.pop_back();
}

std::optional<std::string> TExpander::Lookup(std::string_view name) const {
  for (const TVariables* vars : {&FLoop, &FOverrides, &FProject})
    if (const std::string* v = Find(*vars, name)) return *v;
  if (FEnvironment) return FEnvironment(std::string(name));
  return std::nullopt;
}

std::string TExpander::Expand(std::string_view text) const {
  return qv::ExpandVariables(text, [this](std::string_view name) { return Lookup(name); });
}

std::vector<std::string> TExpander::VariableNames() const {
  std::vector<std::string> names;
  for (const TVariables* vars : {&FLoop, &FOverrides, &FProject})
    for (const auto& entry : *vars) {
      const std::string& n = entry.first;  // clang 14 cannot capture a structured binding
      if (std::none_of(names.begin(), names.end(),
                       [&](const std::string& s) { return qv::SameText(s, n); }))
        names.push_back(n);
    }
  return names;
}

}  // namespace qvhost
