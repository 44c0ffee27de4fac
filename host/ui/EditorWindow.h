// The editor window: an action's pages as tabs of a Qt dialog. The pages' own logic stays in
// the page model; this file only draws each control and passes the user's input back.
#pragma once

#include <memory>
#include <string>

class QDialog;

#include "ActionEditor.h"

namespace qvhost::ui {

// The dialog `RunEditorDialog` shows, for tests that click through it; its widgets carry the
// names of the page controls they draw.
std::unique_ptr<QDialog> MakeEditorDialog(TPageEditor& editor,
                                          const std::vector<std::string>& variables);

// Shows `editor` until the user presses OK (the pages are validated, written back and the
// project saved; a problem is shown and the dialog stays open) or Cancel (nothing is written).
// Returns true when it was saved. `variables` are offered to pages that list them.
bool RunEditorDialog(TPageEditor& editor, const std::vector<std::string>& variables);

// Renders every page of `editor` to DIR/PAGENAME.png without showing a window; returns the
// files written, and in `messages` what the pages said meanwhile. Throws qv::Exception when a
// file cannot be written.
std::vector<std::string> ScreenshotPages(TPageEditor& editor,
                                         const std::vector<std::string>& variables,
                                         const std::string& dir,
                                         std::vector<std::string>& messages);

// `qvhost edit`: a Qt application around the dialog (offscreen for screenshots). Returns the
// exit status.
int RunEditCommand(TPageEditor& editor, const std::vector<std::string>& variables,
                   const std::string& screenshotDir);

}  // namespace qvhost::ui
