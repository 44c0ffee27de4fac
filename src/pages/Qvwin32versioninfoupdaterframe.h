// The page of the Win32 Version Info Updater: the resource script, the property set, the values
// to take from it, and the version switches.
#pragma once

#include "QvPages.h"

namespace qv {

class TWin32VersionInfoUpdaterFrame : public TQvPage {
 public:
  TWin32VersionInfoUpdaterFrame();
  std::string PageName() const override { return "Version Info"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;
};

}  // namespace qv
