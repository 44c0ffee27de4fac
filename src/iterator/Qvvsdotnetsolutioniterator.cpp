#include "Qvvsdotnetsolutioniterator.h"

#include <array>

#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qv {

namespace {
constexpr std::array<std::string_view, 4> kIterateNames{"svName", "svRelativePath", "svFullPath",
                                                        "svProjectId"};
}  // namespace

const TEnumTypeInfo TVSIterateSolutionValueInfo{"TVSIterateSolutionValue", kIterateNames};

using I = TQvVSSolutionIterator;

const TPropDescriptor I::FProps[] = {
    StrProp<I, &I::FSolution>("Solution"),
    EnumProp<I, &I::FIterateValue>("IterateValue", TVSIterateSolutionValueInfo, "svFullPath"),
    BoolProp<I, &I::FSortByDependency>("SortByDependency", true),
    BoolProp<I, &I::FIncludeProjectsNotFound>("IncludeProjectsNotFound"),
};

const TPropertyTable I::PropertyTable{"TQvVSSolutionIterator", &TQvBaseIterator::PropertyTable,
                                      I::FProps};

bool I::BeforeFirstIteration() {
  std::string path;
  if (!TryExpandExpression("Solution Path", FSolution, path, true)) return false;
  if (!platform::FileExists(path)) {
    SendMessage("Solution not found : " + path, TStatusTag::Error);
    return false;
  }
  SendMessage("Loading solution file : " + path, TStatusTag::Plain);
  IntfPtr<IVSDotNetSolution> solution;
  try {
    solution = OpenSolution(path, FIncludeProjectsNotFound);
  } catch (const std::exception& e) {
    SendMessage(std::string("Failed to load solution file : ") + e.what(), TStatusTag::Error);
    return false;
  }
  IntfPtr<IVSDotNetProjects> projects = solution->GetProjects();
  SendMessage("Found " + IntToStr(projects->GetCount()) + " projects:", TStatusTag::Plain);
  if (FSortByDependency) {
    SendMessage("Sorting in dependency order...", TStatusTag::Plain);
    projects->SortByDependency();  // a mutual dependency is thrown out of the action
  }
  FValues.Clear();
  for (int i = 0; i < projects->GetCount(); ++i) {
    IntfPtr<IVSDotNetProject> project = projects->GetItem(i);
    SendMessage(
        project->GetName() + " - " + project->GetFileName() + " - " + project->GetProjectGUID(),
        TStatusTag::Plain);
    FValues.Add(GetValue(*project));
  }
  SetIterationCount(projects->GetCount());
  return true;
}

std::string I::GetCurrentValue() {
  return FValues[GetCurrentIteration() - 1];
}

std::string I::GetValue(IVSDotNetProject& project) {
  switch (FIterateValue) {
    case TVSIterateSolutionValue::svName:
      return project.GetName();
    case TVSIterateSolutionValue::svRelativePath:
      return project.GetFileName();
    case TVSIterateSolutionValue::svFullPath:
      return ExpandRelativePath(project.GetFileName(),
                                ExtractFileDir(ExpandExpression(FSolution, false)));
    case TVSIterateSolutionValue::svProjectId:
      return project.GetProjectGUID();
  }
  return {};
}

}  // namespace qv
