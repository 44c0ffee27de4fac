// What the package's pages share: reading and writing an action's published properties by
// name, and registering the page classes with the host's page factory.
#pragma once

#include <string>

#include "QvActions.h"
#include "QvPages.h"
#include "QvSysUtils.h"

namespace qv {

inline bool PropBool(const TQvPersistent& obj, const char* name) {
  return SameText(obj.GetPropValue(name), "True");
}
inline void SetPropBool(TQvPersistent& obj, const char* name, bool value) {
  obj.SetPropValue(name, value ? "True" : "False");
}
// The ordinal of an enumeration property.
int PropOrdinal(const TQvPersistent& obj, const char* name);
void SetPropOrdinal(TQvPersistent& obj, const char* name, int ordinal);

// A page that applies its settings to all projects of the action's solution or to the ticked
// ones (the stamping pages): rbPREFIXAll, rbPREFIXSelected and the check list lstPREFIXProjects.
class TProjectChoicePage : public TQvPage {
 protected:
  void AddProjectChoice(const std::string& prefix);
  // Fills the list from the action's solution and ticks the projects of `listProp`.
  void ReadProjectChoice(TCustomQvAction& action, const char* applyProp, const char* listProp);
  void WriteProjectChoice(TCustomQvAction& action, const char* applyProp, const char* listProp);
  void EnableProjectChoice(bool enabled);

 private:
  std::string FPrefix;
  std::vector<std::string> FProjectIds;  // parallel to the list's items
};

// Registers every page class of the package with the host's page factory.
void RegisterPackagePages();

}  // namespace qv
