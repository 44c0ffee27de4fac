// The "Paths" page of the build action: MSBuild's output folder and reference paths.
#pragma once

#include "Qvvsdotnetpropertypage.h"

namespace qv {

class TVSDotNetPathsFrame : public TVSDotNetMSBuildPage {
 public:
  TVSDotNetPathsFrame();
  std::string PageName() const override { return "Paths"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;

 private:
  void UpdateControls() override;
};

}  // namespace qv
