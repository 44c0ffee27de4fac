// The "Paths" page of the build action: MSBuild's output folder and reference paths.
#pragma once

#include "QvPages.h"
#include "Qvvsdotnetpropertypage.h"

namespace qv {

class TVSDotNetPathsFrame : public TQvPage, public IVSDotNetPropertyPage {
 public:
  TVSDotNetPathsFrame();
  std::string PageName() const override { return "Paths"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;
  void UpdateSolution(bool flag, IVSDotNetSolution* solution, bool usingMSBuild,
                      bool vs2008) override;

 private:
  void UpdateControls();

  bool FUsingMSBuild = false;
  std::string FSolutionFile;
};

}  // namespace qv
