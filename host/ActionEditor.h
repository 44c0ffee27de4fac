// One action of a project opened in its property pages: the pages its package registered,
// filled from the action; applying them writes the pages back and saves the properties that
// changed into the project file in place. Toolkit-free: a window draws the pages.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "QvPages.h"
#include "Runner.h"

namespace qvhost {

// Pages shown together in one window, filled from what they edit and applied back.
class TPageEditor {
 public:
  virtual ~TPageEditor();
  // What the window shows in its title.
  virtual std::string Title() const = 0;
  const std::vector<std::unique_ptr<qv::TQvPage>>& Pages() const { return FPages; }
  // The page the window opens at (empty: the first).
  std::string StartPage;
  // Gives the pages their design-time services and fills them.
  virtual void Open(qv::IQvDesignServices* services) = 0;
  // Validates every page (false with the page's reason in `message`, nothing written), then
  // writes them back and saves. Throws qv::Exception when saving fails.
  virtual bool Apply(std::string& message) = 0;

 protected:
  // Creates the pages; throws qv::Exception when no loaded package provides one.
  explicit TPageEditor(const std::vector<std::string>& pageClasses);
  bool ValidatePages(std::string& message);

  std::vector<std::unique_ptr<qv::TQvPage>> FPages;
};

// The options object of a package in its option pages, saved into the options store.
class TOptionsEditor : public TPageEditor {
 public:
  TOptionsEditor(qv::TQvOptionsObject& options, const std::vector<std::string>& pageClasses,
                 std::function<void()> save);
  std::string Title() const override;
  void Open(qv::IQvDesignServices* services) override;
  bool Apply(std::string& message) override;

 private:
  qv::TQvOptionsObject& FOptions;
  std::function<void()> FSave;
};

class TActionEditor : public TPageEditor {
 public:
  // `pageClasses` in the order they were registered. Throws qv::Exception when a page class
  // is unknown to every loaded package.
  TActionEditor(TProjectFile& project, TActionInstance action,
                const std::vector<std::string>& pageClasses);
  ~TActionEditor();

  // The caption and the type.
  std::string Title() const override;
  void Open(qv::IQvDesignServices* services) override;
  // Saves only the properties that changed; the file stays as it was when saving fails.
  bool Apply(std::string& message) override;

 private:
  TProjectFile& FProject;
  TActionInstance FAction;
};

// The action of `project` that `selector` names: its 1-based position among the top-level
// actions, or its caption (any case); the first when empty. Throws qv::Exception naming the
// choices when none matches.
const TProjectAction& SelectAction(const TProjectFile& project, const std::string& selector);

}  // namespace qvhost
