// The "VS.NET Solution Iterator" loop action: the host runs the actions nested under it once
// per project of a Visual Studio solution, with the loop variable set to a value of that
// project.
#pragma once

#include <string>

#include "QvActions.h"
#include "Vsnetsln.h"

namespace qv {

enum class TVSIterateSolutionValue : uint8_t { svName, svRelativePath, svFullPath, svProjectId };
extern const TEnumTypeInfo TVSIterateSolutionValueInfo;

class TQvVSSolutionIterator : public TQvBaseIterator {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  std::string GetActionName() const override { return "VS.NET Solution Iterator"; }
  std::string GetActionKeywords() const override { return "Visual Studio VisualStudio Project"; }
  std::string GetFormattedDescription() const override {
    return "VS.NET Solution Iterator [ " + FSolution + " ]";
  }

  // Loads the solution, logs its projects and fills the values; false (logged) stops the loop
  // before its first iteration. A mutual dependency found by the ordering is thrown.
  bool BeforeFirstIteration() override;
  // The value of the current iteration (iterations count from 1).
  std::string GetCurrentValue() override;
  // The value of one project as IterateValue chooses.
  std::string GetValue(IVSDotNetProject& project);

 private:
  static const TPropDescriptor FProps[];

  std::string FSolution;
  TVSIterateSolutionValue FIterateValue = TVSIterateSolutionValue::svFullPath;
  bool FSortByDependency = true;
  bool FIncludeProjectsNotFound = false;
  TStringList FValues;
};

}  // namespace qv
