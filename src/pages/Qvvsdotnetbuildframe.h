// The "Build" page of the build action: MSBuild's compiler, warning, framework, processor and
// logging overrides.
#pragma once

#include "Qvvsdotnetpropertypage.h"

namespace qv {

class TVSDotNetBuildFrame : public TVSDotNetMSBuildPage {
 public:
  TVSDotNetBuildFrame();
  std::string PageName() const override { return "Build"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;

 private:
  void UpdateControls() override;
};

}  // namespace qv
