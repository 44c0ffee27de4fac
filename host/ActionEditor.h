// One action of a project opened in its property pages: the pages its package registered,
// filled from the action; applying them writes the pages back and saves the properties that
// changed into the project file in place. Toolkit-free: a window draws the pages.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "QvPages.h"
#include "Runner.h"

namespace qvhost {

class TActionEditor {
 public:
  // `pageClasses` in the order they were registered. Throws qv::Exception when a page class
  // is unknown to every loaded package.
  TActionEditor(TProjectFile& project, TActionInstance action,
                const std::vector<std::string>& pageClasses);
  ~TActionEditor();

  // What the window shows in its title: the caption and the type.
  std::string Title() const;
  const std::vector<std::unique_ptr<qv::TQvPage>>& Pages() const { return FPages; }
  // Gives the pages their design-time services and fills them from the action.
  void Open(qv::IQvDesignServices* services);
  // Validates every page (false with the page's reason in `message`, nothing written), then
  // writes them back and saves the changed properties. Throws qv::Exception when saving fails
  // (the file then stays as it was).
  bool Apply(std::string& message);

 private:
  TProjectFile& FProject;
  TActionInstance FAction;
  std::vector<std::unique_ptr<qv::TQvPage>> FPages;
};

// The action of `project` that `selector` names: its 1-based position among the top-level
// actions, or its caption (any case); the first when empty. Throws qv::Exception naming the
// choices when none matches.
const TProjectAction& SelectAction(const TProjectFile& project, const std::string& selector);

}  // namespace qvhost
