// The "Solution" page of the build action: the solution, its configuration, the build kind,
// the Visual Studio version and the projects to build.
#pragma once

#include "QvPages.h"
#include "Qvvsdotnetpropertypage.h"

namespace qv {

class TVSDotNetProjectFrame : public TQvPage {
 public:
  TVSDotNetProjectFrame();
  std::string PageName() const override { return "Solution"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;

  // Opens `fileName` and refreshes the version, the project and configuration lists, and the
  // other pages; reports a solution that cannot be opened.
  void LoadSolutionDetails(bool flag, const std::string& fileName);
  void RefreshConfigurationList(IVSDotNetSolution* solution);

 private:
  void VersionChanged();
  void ProjectKindChanged();
  void NotifyPages(bool flag);
  void TickAll(bool ticked);

  IntfPtr<IVSDotNetSolution> FSolution;
  std::vector<std::string> FProjectIds;  // parallel to lstProjects' items
  bool FReading = false;
  // SelectedProjects and the ticks as read, so that an untouched list is written back as it
  // was (entries may name projects by name or path, or hold variables).
  std::string FReadSelection;
  std::vector<bool> FReadTicks;
};

}  // namespace qv
