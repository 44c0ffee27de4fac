// Property pages without a toolkit: the host's page operations, the controls a page holds
// (name, caption, hint, enabled, visible, value, events), a layout of groups and rows that a
// renderer follows control by control, and the design-time services pages call. Hosts draw
// the controls with their own toolkit; tests drive the same model through scripted services.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace qv {

class TCustomQvAction;
class TQvOptionsObject;

enum class TQvControlKind {
  Label,
  Edit,
  PathEdit,  // an edit with a browse button and, optionally, a second button
  Memo,      // several lines, one value each
  CheckBox,
  RadioButton,   // one of the radio buttons sharing its Group
  ComboBox,      // a list whose text may also be typed
  DropDownList,  // a list whose text is one of its items
  CheckList,
  SpinEdit,
  Button,
};

struct TQvControl {
  TQvControlKind Kind;
  std::string Name, Caption, Hint;
  std::string Group;  // the caption of the box it sits in (radio buttons: their set)
  int Row = 0;        // rows top to bottom within the page; a row's controls left to right
  int Chars = 0;      // the width a field needs, in characters; 0: the toolkit's choice
  bool Enabled = true, Visible = true;
  std::string Text;                       // edits, memos (lines joined by CR LF), combo boxes
  bool Checked = false;                   // check and radio buttons
  std::vector<std::string> Items;         // lists
  std::vector<bool> ItemChecked;          // check lists, one per item
  int ItemIndex = -1;                     // lists: the selected item, -1 for none
  int64_t Value = 0, Min = 0, Max = 0;    // spin edits
  std::string ButtonHint, AltButtonHint;  // path edits: the browse and the second button
  bool HasAltButton = false;
  // Events, fired by the user's actions below.
  std::function<void()> OnChange, OnClick, OnButton, OnAltButton;
};

// What a page asks of the host at design time. Every call may be answered by a person.
class IQvDesignServices {
 public:
  virtual ~IQvDesignServices() = default;
  // A file to open: `filter` as "Text (*.x)|*.x|...", starting from `start`; false when the
  // user cancelled.
  virtual bool BrowseFile(const std::string& title, const std::string& filter,
                          const std::string& defaultExt, const std::string& start,
                          std::string& chosen) = 0;
  virtual bool BrowseFolder(const std::string& title, const std::string& start,
                            std::string& chosen) = 0;
  virtual void ShowMessage(const std::string& text) = 0;
  // The names of the build process's variables.
  virtual std::vector<std::string> VariableNames() = 0;
  // The package's options object of this class, or null.
  virtual TQvOptionsObject* Options(const std::string& className) = 0;
  // The pages of the editor the calling page sits in, in order (so pages can tell each other
  // what changed).
  virtual std::vector<class TQvPage*> EditorPages() = 0;
};

// A host page: a frame of controls that copies an action's (or options object's) settings in
// and out. The host calls InitFrame once, InitPage and ReadActionData before showing it,
// Validate and WriteActionData when the user confirms.
class TQvPage {
 public:
  virtual ~TQvPage();

  virtual void InitFrame() {}
  virtual void InitPage(TCustomQvAction*) {}
  virtual void OnPageActivate() {}
  virtual void OnPageDeActivate() {}
  virtual std::string PageName() const = 0;
  virtual void ReadActionData(TCustomQvAction* action) = 0;
  virtual void WriteActionData(TCustomQvAction* action) = 0;
  // False, with the reason in `message`, when the values cannot be written back.
  virtual bool Validate(std::string& message);
  // Option pages edit an options object instead of an action.
  virtual void ReadOptions(TQvOptionsObject*) {}
  virtual void WriteOptions(TQvOptionsObject*) {}

  void SetServices(IQvDesignServices* services) { FServices = services; }
  const std::vector<std::unique_ptr<TQvControl>>& Controls() const { return FControls; }
  // The control named `name`; throws Exception when there is none.
  TQvControl& operator[](const std::string& name) const;

  // What a user does; each fires the control's events as the toolkit would.
  void Type(const std::string& name, const std::string& text);
  void Toggle(const std::string& name);  // a check box, or choosing a radio button
  void Choose(const std::string& name, int itemIndex);
  void TickItem(const std::string& name, int itemIndex, bool ticked);
  void Press(const std::string& name);  // a button
  void PressBrowse(const std::string& name);
  void PressAltButton(const std::string& name);

 protected:
  // Adds a control at the current row; NextRow starts a new one, Group the next box.
  TQvControl& Add(TQvControlKind kind, const std::string& name, const std::string& caption = {});
  void NextRow() { ++FRow; }
  void StartGroup(const std::string& caption) {
    FGroup = caption;
    ++FRow;
  }
  // Checks a radio button and unchecks the others of its group, without events.
  void CheckRadio(const std::string& name);
  // Offers the host's file (or folder) browser, starting from the text of control `name`, and
  // puts the choice there; false when the user cancelled or there is no host.
  bool BrowseFileInto(const std::string& name, const std::string& title, const std::string& filter,
                      const std::string& defaultExt = {});
  bool BrowseFolderInto(const std::string& name, const std::string& title);
  IQvDesignServices* Services() const { return FServices; }

 private:
  std::vector<std::unique_ptr<TQvControl>> FControls;
  std::string FGroup;
  int FRow = 0;
  IQvDesignServices* FServices = nullptr;
};

// A package's editor of one property in the host's inspector: it names the page of the action
// editor that edits the property, which the host opens at that page.
class TQvPropertyEditor {
 public:
  virtual ~TQvPropertyEditor();
  virtual std::string GetPage() const = 0;
};

using TQvPageFactory = std::unique_ptr<TQvPage> (*)();
using TQvPropertyEditorFactory = std::unique_ptr<TQvPropertyEditor> (*)();

// Page classes by the names packages register them under (RegisterActionPages): the package
// adds each class, the host creates pages by name. Null for an unknown name.
void RegisterPageClass(const std::string& className, TQvPageFactory factory);
std::unique_ptr<TQvPage> CreatePage(const std::string& className);
// The same for property editor classes (RegisterPropertyEditor).
void RegisterPropertyEditorClass(const std::string& className, TQvPropertyEditorFactory factory);
std::unique_ptr<TQvPropertyEditor> CreatePropertyEditor(const std::string& className);

}  // namespace qv
