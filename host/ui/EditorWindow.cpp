#include "EditorWindow.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>

#include "QvExceptions.h"

namespace qvhost::ui {

namespace {

using qv::TQvControl;
using qv::TQvControlKind;

QString Q(const std::string& s) {
  return QString::fromStdString(s);
}

// Qt's filters read "Text (*.x);;All (*.*)"; the pages give "Text (*.x)|*.x|All|*.*".
QString QtFilter(const std::string& filter) {
  QStringList parts = Q(filter).split('|');
  QStringList out;
  for (int i = 0; i + 1 < parts.size(); i += 2)
    out << parts[i] + " (" + QString(parts[i + 1]).replace(';', ' ') + ")";
  return out.join(";;");
}

// The design-time services answered by the person at the window.
class TDialogServices : public qv::IQvDesignServices {
 public:
  TDialogServices(QWidget* parent, TPageEditor& editor, std::vector<std::string> variables)
      : FParent(parent), FEditor(editor), FVariables(std::move(variables)) {}
  bool BrowseFile(const std::string& title, const std::string& filter, const std::string&,
                  const std::string& start, std::string& chosen) override {
    QString file = QFileDialog::getOpenFileName(FParent, Q(title), Q(start), QtFilter(filter));
    chosen = file.toStdString();
    return !file.isEmpty();
  }
  bool BrowseFolder(const std::string& title, const std::string& start,
                    std::string& chosen) override {
    QString dir = QFileDialog::getExistingDirectory(FParent, Q(title), Q(start));
    chosen = dir.toStdString();
    return !dir.isEmpty();
  }
  void ShowMessage(const std::string& text) override {
    if (FParent && FParent->isVisible())
      QMessageBox::information(FParent, "Quorvex", Q(text));
    else
      Messages.push_back(text);
  }
  std::vector<std::string> VariableNames() override { return FVariables; }
  qv::TQvOptionsObject* Options(const std::string&) override { return nullptr; }
  std::vector<qv::TQvPage*> EditorPages() override {
    std::vector<qv::TQvPage*> pages;
    for (const auto& p : FEditor.Pages())
      pages.push_back(p.get());
    return pages;
  }
  std::vector<std::string> Messages;  // said while no window was shown

 private:
  QWidget* FParent;
  TPageEditor& FEditor;
  std::vector<std::string> FVariables;
};

// One page drawn as widgets; Refresh copies the model into them after every event.
class TPageView : public QWidget {
 public:
  TPageView(qv::TQvPage& page, std::function<void()> refreshAll)
      : FPage(page), FRefreshAll(std::move(refreshAll)) {
    // Each box lays its rows on a grid, so labels and fields line up in columns.
    auto* outer = new QVBoxLayout(this);
    std::map<std::string, QGridLayout*> grids;
    std::map<std::pair<std::string, int>, std::pair<int, int>> cells;  // row -> grid row, column
    for (const auto& c : page.Controls()) {
      QGridLayout*& grid = grids[c->Group];
      if (!grid) {
        grid = new QGridLayout;
        if (c->Group.empty()) {
          outer->addLayout(grid);
        } else {
          auto* box = new QGroupBox(Q(c->Group), this);
          box->setLayout(grid);
          outer->addWidget(box);
        }
      }
      auto [it, added] = cells.try_emplace({c->Group, c->Row}, grid->rowCount(), 0);
      if (added && grid->count() == 0) it->second.first = 0;
      QWidget* w = Make(*c);
      if (c->Chars > 0) w->setFixedWidth(w->fontMetrics().averageCharWidth() * c->Chars + 16);
      // A row of one list, memo, note or path takes the whole width of its box.
      bool alone =
          std::count_if(page.Controls().begin(), page.Controls().end(), [&](const auto& o) {
            return o->Group == c->Group && o->Row == c->Row;
          }) == 1;
      bool wide = c->Kind == TQvControlKind::CheckList || c->Kind == TQvControlKind::Memo ||
                  c->Kind == TQvControlKind::Label || c->Kind == TQvControlKind::PathEdit;
      if (alone && wide)
        grid->addWidget(w, it->second.first, 0, 1, -1);
      else
        grid->addWidget(w, it->second.first, it->second.second++, Qt::AlignLeft);
    }
    for (auto& [group, grid] : grids)
      grid->setColumnStretch(grid->columnCount(), 1);
    outer->addStretch(1);
  }

  void Refresh() {
    FRefreshing = true;
    for (auto& [control, refresh] : FRefreshers)
      refresh();
    FRefreshing = false;
  }

 private:
  // After the model handled an event, every page may have changed (pages tell each other).
  void After() {
    if (!FRefreshing) FRefreshAll();
  }

  QWidget* Make(TQvControl& c);
  QWidget* MakePathEdit(TQvControl& c);

  qv::TQvPage& FPage;
  std::function<void()> FRefreshAll;
  std::vector<std::pair<TQvControl*, std::function<void()>>> FRefreshers;
  std::map<std::string, QButtonGroup*> FRadioGroups;
  bool FRefreshing = false;
};

QWidget* TPageView::MakePathEdit(TQvControl& c) {
  auto* box = new QWidget(this);
  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* edit = new QLineEdit(box);
  edit->setObjectName(Q(c.Name));
  edit->setMinimumWidth(320);
  layout->addWidget(edit, 1);
  auto* browse = new QToolButton(box);
  browse->setText("...");
  browse->setObjectName(Q(c.Name + "Button"));
  browse->setToolTip(Q(c.ButtonHint));
  layout->addWidget(browse);
  QObject::connect(edit, &QLineEdit::textEdited, [this, &c](const QString& t) {
    FPage.Type(c.Name, t.toStdString());
    After();
  });
  QObject::connect(browse, &QToolButton::clicked, [this, &c] {
    FPage.PressBrowse(c.Name);
    After();
  });
  if (c.HasAltButton) {
    auto* alt = new QToolButton(box);
    alt->setText("\u21bb");
    alt->setObjectName(Q(c.Name + "AltButton"));
    alt->setToolTip(Q(c.AltButtonHint));
    layout->addWidget(alt);
    QObject::connect(alt, &QToolButton::clicked, [this, &c] {
      FPage.PressAltButton(c.Name);
      After();
    });
  }
  FRefreshers.push_back({&c, [box, edit, &c] {
                           if (edit->text() != Q(c.Text)) edit->setText(Q(c.Text));
                           box->setEnabled(c.Enabled);
                           box->setVisible(c.Visible);
                         }});
  return box;
}

QWidget* TPageView::Make(TQvControl& c) {
  QWidget* w = nullptr;
  std::function<void()> value;
  switch (c.Kind) {
    case TQvControlKind::PathEdit:
      return MakePathEdit(c);
    case TQvControlKind::Label:
      w = new QLabel(Q(c.Caption), this);
      value = [w, &c] { static_cast<QLabel*>(w)->setText(Q(c.Caption)); };
      break;
    case TQvControlKind::Edit:
    case TQvControlKind::SpinEdit: {
      auto* e = new QLineEdit(this);
      e->setMinimumWidth(c.Kind == TQvControlKind::SpinEdit ? 80 : 220);
      w = e;
      QObject::connect(e, &QLineEdit::textEdited, [this, &c](const QString& t) {
        FPage.Type(c.Name, t.toStdString());
        After();
      });
      value = [e, &c] {
        if (e->text() != Q(c.Text)) e->setText(Q(c.Text));
      };
      break;
    }
    case TQvControlKind::Memo: {
      auto* m = new QPlainTextEdit(this);
      m->setMinimumHeight(90);
      w = m;
      QObject::connect(m, &QPlainTextEdit::textChanged, [this, m, &c] {
        if (FRefreshing) return;
        FPage.Type(c.Name, m->toPlainText().replace("\n", "\r\n").toStdString());
        After();
      });
      value = [m, &c] {
        QString text = Q(c.Text).replace("\r\n", "\n");
        if (m->toPlainText() != text) m->setPlainText(text);
      };
      break;
    }
    case TQvControlKind::CheckBox:
    case TQvControlKind::RadioButton: {
      QAbstractButton* b = c.Kind == TQvControlKind::CheckBox
                               ? static_cast<QAbstractButton*>(new QCheckBox(Q(c.Caption), this))
                               : new QRadioButton(Q(c.Caption), this);
      if (c.Kind == TQvControlKind::RadioButton) {
        QButtonGroup*& group = FRadioGroups[c.Group];
        if (!group) group = new QButtonGroup(this);
        group->addButton(b);
      }
      w = b;
      QObject::connect(b, &QAbstractButton::clicked, [this, &c] {
        if (c.Kind == TQvControlKind::CheckBox || !c.Checked) FPage.Toggle(c.Name);
        After();
      });
      value = [b, &c] { b->setChecked(c.Checked); };
      break;
    }
    case TQvControlKind::ComboBox:
    case TQvControlKind::DropDownList: {
      auto* combo = new QComboBox(this);
      combo->setEditable(c.Kind == TQvControlKind::ComboBox);
      combo->setMinimumWidth(200);
      w = combo;
      QObject::connect(combo, &QComboBox::activated, [this, &c](int index) {
        FPage.Choose(c.Name, index);
        After();
      });
      if (combo->isEditable())
        QObject::connect(combo->lineEdit(), &QLineEdit::textEdited, [this, &c](const QString& t) {
          FPage.Type(c.Name, t.toStdString());
          After();
        });
      value = [combo, &c] {
        QStringList items;
        for (const auto& i : c.Items)
          items << Q(i);
        QStringList current;
        for (int i = 0; i < combo->count(); ++i)
          current << combo->itemText(i);
        if (current != items) {
          combo->clear();
          combo->addItems(items);
        }
        combo->setCurrentIndex(c.ItemIndex);
        if (combo->isEditable()) combo->setEditText(Q(c.Text));
      };
      break;
    }
    case TQvControlKind::CheckList: {
      auto* list = new QListWidget(this);
      list->setMinimumHeight(110);
      w = list;
      QObject::connect(list, &QListWidget::itemChanged, [this, list, &c](QListWidgetItem* item) {
        if (FRefreshing) return;
        FPage.TickItem(c.Name, list->row(item), item->checkState() == Qt::Checked);
        After();
      });
      value = [list, &c] {
        if (list->count() != static_cast<int>(c.Items.size())) {
          list->clear();
          for (const auto& i : c.Items)
            list->addItem(Q(i));
        }
        for (int i = 0; i < list->count(); ++i) {
          QListWidgetItem* item = list->item(i);
          item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
          bool ticked = i < static_cast<int>(c.ItemChecked.size()) && c.ItemChecked[i];
          item->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
        }
      };
      break;
    }
    case TQvControlKind::Button: {
      auto* b = new QPushButton(Q(c.Caption), this);
      w = b;
      QObject::connect(b, &QPushButton::clicked, [this, &c] {
        FPage.Press(c.Name);
        After();
      });
      break;
    }
  }
  w->setObjectName(Q(c.Name));
  w->setToolTip(Q(c.Hint));
  FRefreshers.push_back({&c, [w, value, &c] {
                           if (value) value();
                           w->setEnabled(c.Enabled);
                           w->setVisible(c.Visible);
                         }});
  return w;
}

// The dialog with one tab per page, in the order the pages were registered.
class TEditorDialog : public QDialog {
 public:
  TEditorDialog(TPageEditor& editor, const std::vector<std::string>& variables)
      : FEditor(editor), FServices(this, editor, variables) {
    setWindowTitle(Q(editor.Title()));
    auto* layout = new QVBoxLayout(this);
    FTabs = new QTabWidget(this);
    layout->addWidget(FTabs);
    editor.Open(&FServices);
    for (const auto& page : editor.Pages()) {
      auto* view = new TPageView(*page, [this] { RefreshAll(); });
      FViews.push_back(view);
      FTabs->addTab(view, Q(page->PageName()));
    }
    for (int i = 0; i < FTabs->count(); ++i)
      if (FTabs->tabText(i).toStdString() == editor.StartPage) FTabs->setCurrentIndex(i);
    RefreshAll();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { Apply(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  }

  QTabWidget* Tabs() const { return FTabs; }
  const std::vector<std::string>& Messages() const { return FServices.Messages; }

 private:
  void RefreshAll() {
    for (auto* view : FViews)
      view->Refresh();
  }
  void Apply() {
    std::string message;
    try {
      if (FEditor.Apply(message)) return accept();
    } catch (const std::exception& e) {
      message = e.what();
    }
    QMessageBox::warning(this, "Quorvex", Q(message));
  }

  TPageEditor& FEditor;
  TDialogServices FServices;
  QTabWidget* FTabs;
  std::vector<TPageView*> FViews;
};

}  // namespace

std::unique_ptr<QDialog> MakeEditorDialog(TPageEditor& editor,
                                          const std::vector<std::string>& variables) {
  return std::make_unique<TEditorDialog>(editor, variables);
}

bool RunEditorDialog(TPageEditor& editor, const std::vector<std::string>& variables) {
  TEditorDialog dialog(editor, variables);
  return dialog.exec() == QDialog::Accepted;
}

std::vector<std::string> ScreenshotPages(TPageEditor& editor,
                                         const std::vector<std::string>& variables,
                                         const std::string& dir,
                                         std::vector<std::string>& messages) {
  TEditorDialog dialog(editor, variables);
  dialog.resize(dialog.sizeHint().expandedTo(QSize(640, 480)));
  std::vector<std::string> files;
  for (int i = 0; i < dialog.Tabs()->count(); ++i) {
    dialog.Tabs()->setCurrentIndex(i);
    dialog.show();
    QApplication::processEvents();
    std::string file = dir + "/" + dialog.Tabs()->tabText(i).toStdString() + ".png";
    if (!dialog.grab().save(Q(file)))
      throw qv::Exception("Cannot write the screenshot \"" + file + "\"");
    files.push_back(file);
  }
  messages = dialog.Messages();
  return files;
}

int RunEditCommand(TPageEditor& editor, const std::vector<std::string>& variables,
                   const std::string& screenshotDir) {
  if (!screenshotDir.empty()) qputenv("QT_QPA_PLATFORM", "offscreen");
  int argc = 1;
  char name[] = "qvhost";
  char* argv[] = {name, nullptr};
  QApplication app(argc, argv);
  if (screenshotDir.empty()) return RunEditorDialog(editor, variables) ? 0 : 1;
  std::vector<std::string> messages;
  for (const auto& file : ScreenshotPages(editor, variables, screenshotDir, messages))
    std::printf("%s\n", file.c_str());
  for (const auto& m : messages)
    std::fprintf(stderr, "qvhost: %s\n", m.c_str());
  return messages.empty() ? 0 : 1;
}

}  // namespace qvhost::ui
