#include "ActionEditor.h"

#include "QvExceptions.h"
#include "QvOptions.h"
#include "QvSysUtils.h"

namespace qvhost {

TPageEditor::TPageEditor(const std::vector<std::string>& pageClasses) {
  for (const auto& name : pageClasses) {
    std::unique_ptr<qv::TQvPage> page = qv::CreatePage(name);
    if (!page) throw qv::Exception("No loaded package provides the page " + name);
    FPages.push_back(std::move(page));
  }
}

TPageEditor::~TPageEditor() = default;

bool TPageEditor::ValidatePages(std::string& message) {
  for (auto& page : FPages)
    if (!page->Validate(message)) {
      message = page->PageName() + ": " + message;
      return false;
    }
  return true;
}

TOptionsEditor::TOptionsEditor(qv::TQvOptionsObject& options,
                               const std::vector<std::string>& pageClasses,
                               std::function<void()> save)
    : TPageEditor(pageClasses), FOptions(options), FSave(std::move(save)) {}

std::string TOptionsEditor::Title() const {
  return FOptions.GetName() + " options";
}

void TOptionsEditor::Open(qv::IQvDesignServices* services) {
  for (auto& page : FPages) {
    page->SetServices(services);
    page->InitFrame();
    page->InitPage(nullptr);
    page->ReadOptions(&FOptions);
  }
}

bool TOptionsEditor::Apply(std::string& message) {
  if (!ValidatePages(message)) return false;
  for (auto& page : FPages)
    page->WriteOptions(&FOptions);
  FSave();
  return true;
}

TActionEditor::TActionEditor(TProjectFile& project, TActionInstance action,
                             const std::vector<std::string>& pageClasses)
    : TPageEditor(pageClasses), FProject(project), FAction(std::move(action)) {}

TActionEditor::~TActionEditor() = default;

std::string TActionEditor::Title() const {
  return FAction.Caption + " (" + FAction.TypeName + ")";
}

void TActionEditor::Open(qv::IQvDesignServices* services) {
  for (auto& page : FPages) {
    page->SetServices(services);
    page->InitFrame();
  }
  for (auto& page : FPages) {
    page->InitPage(FAction.Action.get());
    page->ReadActionData(FAction.Action.get());
  }
}

bool TActionEditor::Apply(std::string& message) {
  if (!ValidatePages(message)) return false;
  qv::TCustomQvAction& action = *FAction.Action;
  std::vector<std::string> before;
  auto props = action.GetPropertyTable().All();
  for (const auto* d : props)
    before.push_back(qv::TQvPersistent::GetPropText(action, *d));
  try {
    for (auto& page : FPages)
      page->WriteActionData(&action);
  } catch (const qv::Exception& e) {
    message = e.what();
    return false;
  }
  // Only what the user changed is written, so the rest of the file stays as it was.
  for (size_t i = 0; i < props.size(); ++i) {
    std::string after = qv::TQvPersistent::GetPropText(action, *props[i]);
    if (props[i]->Stored && after != before[i])
      FProject.SetProperty(FAction.Source->Node, std::string(props[i]->Name), after,
                           props[i]->Type == qv::TPropType::StringList);
  }
  FProject.SaveChanges();
  return true;
}

const TProjectAction& SelectAction(const TProjectFile& project, const std::string& selector) {
  const auto& actions = project.Actions();
  if (actions.empty()) throw qv::Exception(project.FileName() + " holds no action");
  if (selector.empty()) return actions.front();
  int64_t n = qv::StrToInt64Def(selector, 0);
  if (n >= 1 && n <= static_cast<int64_t>(actions.size())) return actions[n - 1];
  std::string choices;
  for (size_t i = 0; i < actions.size(); ++i) {
    if (qv::SameText(actions[i].Caption, selector)) return actions[i];
    choices += "\n  " + std::to_string(i + 1) + ": " +
               (actions[i].Caption.empty() ? actions[i].Type : actions[i].Caption);
  }
  throw qv::Exception("No action \"" + selector + "\" in " + project.FileName() +
                      "; its actions are:" + choices);
}

}  // namespace qvhost
