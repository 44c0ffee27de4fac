// The build action's dry run: what a build of these settings would trip over, found by
// reading the solution only.
#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "Qvvsdotnetaction.h"

namespace qv {

namespace {

// The expanded text, or nullopt with the reason reported under `section`.
std::optional<std::string> Expanded(TCustomQvAction& action, const std::string& text,
                                    const char* section, IQvActionValidationError* errors) {
  try {
    return action.ExpandExpression(text, false);
  } catch (const Exception& e) {
    errors->AddError(section, e.what(), nullptr);
    return std::nullopt;
  }
}

std::string ConfigurationNames(IVSDotNetSolutionConfigurations* configurations) {
  std::string names;
  for (int i = 0; configurations && i < configurations->GetCount(); ++i)
    names += (i > 0 ? ", " : "") + configurations->GetItem(i)->GetName();
  return names.empty() ? "none" : names;
}

}  // namespace

void TQvCustomVSDotNetAction::CheckSettings(IQvActionValidationError* errors,
                                            IQvActionValidationError* warnings) {
  std::optional<std::string> fileName = Expanded(*this, FSolution, "Solution", errors);
  if (!fileName || fileName->empty()) return;
  if (!platform::FileExists(*fileName)) {
    errors->AddError("Solution", "Solution File \"" + *fileName + "\" does not exist", nullptr);
    return;
  }
  IntfPtr<IVSDotNetSolution> solution;
  try {
    solution = OpenSolution(*fileName, false);
  } catch (const std::exception& e) {
    errors->AddError("Solution", std::string("Error Parsing Solution File : ") + e.what(), nullptr);
    return;
  }
  std::optional<std::string> configuration =
      Expanded(*this, FSolutionConfiguration, "SolutionConfiguration", errors);
  IntfPtr<IVSDotNetSolutionConfigurations> configurations = solution->GetConfigurations();
  bool found = false;
  for (int i = 0; configurations && i < configurations->GetCount(); ++i)
    found = found || SameText(configurations->GetItem(i)->GetName(), configuration.value_or(""));
  if (configuration && !found)
    errors->AddError("SolutionConfiguration",
                     "The solution has no configuration \"" + *configuration +
                         "\"; it has: " + ConfigurationNames(configurations.Get()),
                     nullptr);
  if (FBuildType == TVSDotNetBuildType::btSelectedProjects) {
    IntfPtr<IVSDotNetProjects> projects = solution->GetProjects();
    for (const std::string& entry : FSelectedProjects) {
      std::string id = entry.starts_with("{") ? entry : GetProjectID(entry);
      if (id.empty() || !projects->FindByGUID(id))
        errors->AddError("SelectedProjects", "Project " + entry + " is not in the solution",
                         nullptr);
    }
  }
  if (solution->GetVersion() != FVStudioVersion)
    warnings->AddError("VStudioVersion",
                       "The action builds with " +
                           TVSDotNetVersionInfo.NameOf(int(FVStudioVersion)) +
                           " but the solution file is in " +
                           TVSDotNetVersionInfo.NameOf(int(solution->GetVersion())) + " format",
                       nullptr);
}

}  // namespace qv
