// How the build action's pages tell each other which solution is open and how it is built.
#pragma once

#include "QvPages.h"
#include "Vsnetsln.h"

namespace qv {

struct IVSDotNetPropertyPage {
  // `flag` is passed through from the Solution page; `solution` may be null; `usingMSBuild` is
  // true exactly when the action would build with MSBuild; `vs2008` when Visual Studio 2008 is
  // chosen.
  virtual void UpdateSolution(bool flag, IVSDotNetSolution* solution, bool usingMSBuild,
                              bool vs2008) = 0;

 protected:
  ~IVSDotNetPropertyPage() = default;
};

// A page of MSBuild settings: it follows what the Solution page says about MSBuild and the
// Visual Studio version, and until then what the action itself would do.
class TVSDotNetMSBuildPage : public TQvPage, public IVSDotNetPropertyPage {
 public:
  void UpdateSolution(bool flag, IVSDotNetSolution* solution, bool usingMSBuild,
                      bool vs2008) override;

 protected:
  // Takes the flags from the action's Use MSBuild and Visual Studio version.
  void ReadMSBuildFlags(const TCustomQvAction& action);
  // Enables and shows the page's controls for the flags.
  virtual void UpdateControls() = 0;

  bool FUsingMSBuild = false, FVS2008 = false;
  std::string FSolutionFile;  // the file of the solution last opened, if any
};

}  // namespace qv
