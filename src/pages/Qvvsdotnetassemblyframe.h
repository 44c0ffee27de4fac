// The "Assembly Info" page of the build action: which .NET projects get their AssemblyInfo
// stamped before the build, with which attributes and version numbers.
#pragma once

#include "Qvpagebinding.h"

namespace qv {

class TVSDotNetAssemblyFrame : public TProjectChoicePage {
 public:
  TVSDotNetAssemblyFrame();
  std::string PageName() const override { return "Assembly Info"; }
  void ReadActionData(TCustomQvAction* action) override;
  void WriteActionData(TCustomQvAction* action) override;

 private:
  void UpdateControls();
};

}  // namespace qv
