#include "QvPages.h"

#include <map>

#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qv {

TQvPage::~TQvPage() = default;

bool TQvPage::Validate(std::string&) {
  return true;
}

TQvControl& TQvPage::operator[](const std::string& name) const {
  for (const auto& c : FControls)
    if (SameText(c->Name, name)) return *c;
  throw Exception("The page " + PageName() + " has no control " + name);
}

TQvControl& TQvPage::Add(TQvControlKind kind, const std::string& name, const std::string& caption) {
  auto c = std::make_unique<TQvControl>();
  c->Kind = kind;
  c->Name = name;
  c->Caption = caption;
  c->Group = FGroup;
  c->Row = FRow;
  FControls.push_back(std::move(c));
  return *FControls.back();
}

void TQvPage::CheckRadio(const std::string& name) {
  TQvControl& chosen = (*this)[name];
  for (const auto& c : FControls)
    if (c->Kind == TQvControlKind::RadioButton && c->Group == chosen.Group) c->Checked = false;
  chosen.Checked = true;
}

bool TQvPage::BrowseFileInto(const std::string& name, const std::string& title,
                             const std::string& filter, const std::string& defaultExt) {
  TQvControl& c = (*this)[name];
  std::string chosen;
  if (!FServices || !FServices->BrowseFile(title, filter, defaultExt, c.Text, chosen)) return false;
  c.Text = chosen;
  return true;
}

bool TQvPage::BrowseFolderInto(const std::string& name, const std::string& title) {
  TQvControl& c = (*this)[name];
  std::string chosen;
  if (!FServices || !FServices->BrowseFolder(title, c.Text, chosen)) return false;
  c.Text = chosen;
  return true;
}

namespace {
void Fire(const std::function<void()>& event) {
  if (event) event();
}
}  // namespace

void TQvPage::Type(const std::string& name, const std::string& text) {
  TQvControl& c = (*this)[name];
  c.Text = text;
  if (c.Kind == TQvControlKind::SpinEdit) c.Value = StrToInt64Def(text, c.Value);
  Fire(c.OnChange);
}

void TQvPage::Toggle(const std::string& name) {
  TQvControl& c = (*this)[name];
  if (c.Kind == TQvControlKind::RadioButton)
    CheckRadio(name);
  else
    c.Checked = !c.Checked;
  Fire(c.OnClick);
}

void TQvPage::Choose(const std::string& name, int itemIndex) {
  TQvControl& c = (*this)[name];
  c.ItemIndex = itemIndex;
  c.Text = itemIndex >= 0 && itemIndex < static_cast<int>(c.Items.size()) ? c.Items[itemIndex] : "";
  Fire(c.OnChange);
}

void TQvPage::TickItem(const std::string& name, int itemIndex, bool ticked) {
  TQvControl& c = (*this)[name];
  c.ItemChecked.resize(c.Items.size());
  c.ItemChecked.at(itemIndex) = ticked;
  Fire(c.OnClick);
}

void TQvPage::Press(const std::string& name) {
  Fire((*this)[name].OnClick);
}

void TQvPage::PressBrowse(const std::string& name) {
  Fire((*this)[name].OnButton);
}

void TQvPage::PressAltButton(const std::string& name) {
  Fire((*this)[name].OnAltButton);
}

TQvPropertyEditor::~TQvPropertyEditor() = default;

namespace {
template <class Factory>
std::map<std::string, Factory>& Classes() {
  static std::map<std::string, Factory> classes;
  return classes;
}

template <class Factory>
auto Create(const std::string& className) -> decltype(Factory()()) {
  auto it = Classes<Factory>().find(className);
  return it == Classes<Factory>().end() ? nullptr : it->second();
}
}  // namespace

void RegisterPageClass(const std::string& className, TQvPageFactory factory) {
  Classes<TQvPageFactory>()[className] = factory;
}

std::unique_ptr<TQvPage> CreatePage(const std::string& className) {
  return Create<TQvPageFactory>(className);
}

void RegisterPropertyEditorClass(const std::string& className, TQvPropertyEditorFactory factory) {
  Classes<TQvPropertyEditorFactory>()[className] = factory;
}

std::unique_ptr<TQvPropertyEditor> CreatePropertyEditor(const std::string& className) {
  return Create<TQvPropertyEditorFactory>(className);
}

}  // namespace qv
