// The "Project Detection" page of the build action: how the folder of a web project is found.
#pragma once

#include "QvPages.h"

namespace qv {

class TVSDotNetWebProjectLocationFrame : public TQvPage {
 public:
  TVSDotNetWebProjectLocationFrame();
  std::string PageName() const override { return "Project Detection"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;
  // A website number must be a number.
  bool Validate(std::string& message) override;
};

}  // namespace qv
