// The "Solution Iterator" page of the solution loop action.
#pragma once

#include "QvPages.h"

namespace qv {

class TSolutionIteratorFrame : public TQvPage {
 public:
  TSolutionIteratorFrame();
  std::string PageName() const override { return "Solution Iterator"; }
  // Fills the variable list with the build process's variable names.
  void InitPage(TCustomQvAction* action) override;
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;
};

}  // namespace qv
