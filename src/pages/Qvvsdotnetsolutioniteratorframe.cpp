#include "Qvvsdotnetsolutioniteratorframe.h"

#include "Qvpagebinding.h"
#include "Qvvsdotnetsolutioniterator.h"

namespace qv {

namespace {
// The value buttons in page order, with the enumeration value each stands for: the page
// orders them by what a user looks for, the enumeration by its history.
struct TValueButton {
  const char* Name;
  TVSIterateSolutionValue Value;
};
constexpr TValueButton kValueButtons[] = {{"rbName", TVSIterateSolutionValue::svName},
                                          {"rbAbsPath", TVSIterateSolutionValue::svFullPath},
                                          {"rbRelPath", TVSIterateSolutionValue::svRelativePath},
                                          {"rbProjId", TVSIterateSolutionValue::svProjectId}};
}  // namespace

TSolutionIteratorFrame::TSolutionIteratorFrame() {
  StartGroup("Solution");
  Add(TQvControlKind::Label, "lblSolution", "Solution File :");
  TQvControl& solution = Add(TQvControlKind::PathEdit, "txtSolution");
  solution.HasAltButton = true;
  solution.AltButtonHint = "Refresh Configuration List";
  solution.OnButton = [this] {
    BrowseFileInto("txtSolution", "Select Solution", "Solution Files (*.sln)|*.sln", ".sln");
  };
  StartGroup("Project Property to Iterate");
  Add(TQvControlKind::RadioButton, "rbName", "Project Name");
  NextRow();
  Add(TQvControlKind::RadioButton, "rbAbsPath", "Project File Absolute Path");
  NextRow();
  Add(TQvControlKind::RadioButton, "rbRelPath", "Project File Relative Path");
  NextRow();
  Add(TQvControlKind::RadioButton, "rbProjId", "Project ID");
  StartGroup("Variable To Set");
  Add(TQvControlKind::Label, "lblVariable", "Variable To Set");
  Add(TQvControlKind::DropDownList, "cmbVariable");
  StartGroup("Order");
  Add(TQvControlKind::RadioButton, "rbDepOrder", "Iterate projects in dependency order");
  NextRow();
  Add(TQvControlKind::RadioButton, "RadioButton2", "Iterate projects in solution file order")
      .Checked = true;
  StartGroup("Options");
  Add(TQvControlKind::CheckBox, "chkOnlyFoundFiles", "Only include projects found on disk");
}

void TSolutionIteratorFrame::InitPage(TCustomQvAction*) {
  TQvControl& list = (*this)["cmbVariable"];
  list.Items = Services() ? Services()->VariableNames() : std::vector<std::string>();
  list.ItemIndex = -1;
  list.Text.clear();
}

void TSolutionIteratorFrame::ReadActionData(TCustomQvAction* action) {
  (*this)["txtSolution"].Text = action->GetPropValue("Solution");
  int value = PropOrdinal(*action, "IterateValue");
  for (const auto& b : kValueButtons)
    if (static_cast<int>(b.Value) == value) CheckRadio(b.Name);
  TQvControl& list = (*this)["cmbVariable"];
  std::string variable = action->GetPropValue("VariableName");
  list.ItemIndex = -1;
  list.Text.clear();
  for (size_t i = 0; i < list.Items.size(); ++i)
    if (list.Items[i] == variable) list.ItemIndex = static_cast<int>(i), list.Text = variable;
  if (PropBool(*action, "SortByDependency")) CheckRadio("rbDepOrder");
  (*this)["chkOnlyFoundFiles"].Checked = !PropBool(*action, "IncludeProjectsNotFound");
}

void TSolutionIteratorFrame::WriteActionData(TCustomQvAction* action) {
  action->SetPropValue("Solution", (*this)["txtSolution"].Text);
  // Tested in this order; with none of the first three chosen, the identifier.
  TVSIterateSolutionValue value = TVSIterateSolutionValue::svProjectId;
  if ((*this)["rbName"].Checked)
    value = TVSIterateSolutionValue::svName;
  else if ((*this)["rbRelPath"].Checked)
    value = TVSIterateSolutionValue::svRelativePath;
  else if ((*this)["rbAbsPath"].Checked)
    value = TVSIterateSolutionValue::svFullPath;
  SetPropOrdinal(*action, "IterateValue", static_cast<int>(value));
  action->SetPropValue("VariableName", (*this)["cmbVariable"].Text);
  SetPropBool(*action, "SortByDependency", (*this)["rbDepOrder"].Checked);
  SetPropBool(*action, "IncludeProjectsNotFound", !(*this)["chkOnlyFoundFiles"].Checked);
}

}  // namespace qv
