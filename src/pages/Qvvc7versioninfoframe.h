// The "Win32 Version Info" page of the build action: the version resource stamped into the
// Visual C++ projects before the build.
#pragma once

#include "Qvpagebinding.h"

namespace qv {

class TVC7VersionInfoFrame : public TProjectChoicePage {
 public:
  TVC7VersionInfoFrame();
  std::string PageName() const override { return "Win32 Version Info"; }
  void InitPage(TCustomQvAction* action) override { FAction = action; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;
  // Numbers must be whole numbers.
  bool Validate(std::string& message) override;

 private:
  void UpdateControls();
  // Reads a chosen resource script's version block into the page.
  void ReadScript();

  TCustomQvAction* FAction = nullptr;
};

}  // namespace qv
