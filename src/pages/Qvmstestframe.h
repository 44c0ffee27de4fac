// The "Settings" page of the Run MSTest action.
#pragma once

#include "QvPages.h"

namespace qv {

class TMSTestFrame : public TQvPage {
 public:
  TMSTestFrame();
  std::string PageName() const override { return "Settings"; }
  // Offers Visual Studio 2005, 2008 and any installed one, then "Standalone MSTest".
  void InitPage(TCustomQvAction* action) override;
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;

 private:
  void UpdateControls();
  TQvControl& AddPathEdit(const char* name, const char* label, const char* filter);
};

}  // namespace qv
