// The options page: where each Visual Studio keeps devenv.com, the default version, and the
// standalone MSTest folder.
#pragma once

#include "QvPages.h"

namespace qv {

class TVSDotNetOptionsFrame : public TQvPage {
 public:
  TVSDotNetOptionsFrame();
  std::string PageName() const override { return "Visual Studio.Net"; }
  // Fills the default-version list: every edition, then "Standalone MSTest".
  void InitPage(TCustomQvAction* action) override;
  void ReadActionData(TCustomQvAction*) override {}
  void WriteActionData(TCustomQvAction*) override {}
  void ReadOptions(TQvOptionsObject* options) override;
  void WriteOptions(TQvOptionsObject* options) override;
};

}  // namespace qv
