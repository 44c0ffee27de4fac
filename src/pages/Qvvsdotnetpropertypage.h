// How the build action's pages tell each other which solution is open and how it is built.
#pragma once

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

}  // namespace qv
