// The "Publish Results" page of the Run MSTest action.
#pragma once

#include "QvPages.h"

namespace qv {

class TMSTestPublishFrame : public TQvPage {
 public:
  TMSTestPublishFrame();
  std::string PageName() const override { return "Publish Results"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;

 private:
  void UpdateControls();
};

}  // namespace qv
