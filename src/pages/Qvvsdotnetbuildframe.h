// The "Build" page of the build action: MSBuild's compiler, warning, framework, processor and
// logging overrides.
#pragma once

#include "QvPages.h"
#include "Qvvsdotnetpropertypage.h"

namespace qv {

class TVSDotNetBuildFrame : public TQvPage, public IVSDotNetPropertyPage {
 public:
  TVSDotNetBuildFrame();
  std::string PageName() const override { return "Build"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;
  void UpdateSolution(bool flag, IVSDotNetSolution* solution, bool usingMSBuild,
                      bool vs2008) override;

 private:
  void UpdateControls();

  bool FUsingMSBuild = false, FVS2008 = false;
};

}  // namespace qv
