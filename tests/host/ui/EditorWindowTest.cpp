// The editor window with real widgets on Qt's offscreen platform: clicks and typing reach the
// pages, and OK saves the project file in place.
#include "ui/EditorWindow.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "HostSession.h"
#include "support/TempDir.h"

namespace {

// A design-time session with the package, over a copy of the demo build process.
struct EditorWindow : ::testing::Test {
  qvtest::TempDir dir;
  const std::string demo = qvtest::TempDir::Read(QV_EXAMPLES_DIR "/demo/Greeting.qvproj");
  std::string project = dir.Write("demo.qvproj", demo);
  std::ostringstream out;
  qvhost::THostSession session{Settings(), out};
  std::unique_ptr<qvhost::TActionEditor> editor;

  qvhost::THostSettings Settings() const {
    qvhost::THostSettings s;
    s.DesignTime = true;
    s.DefaultPackages = false;
    s.Packages = {QV_PACKAGE_MODULE};
    s.OptionsFile = dir.File("options.xml");
    s.KeyFile = dir.File("key");
    s.RegistryFile = dir.Write("empty.reg", "REGEDIT4\n");
    return s;
  }
  std::unique_ptr<QDialog> Open(const char* action) {
    editor = session.OpenEditor(project, action);
    auto dialog = qvhost::ui::MakeEditorDialog(*editor, session.ProjectVariableNames());
    dialog->show();
    return dialog;
  }
  template <class W>
  static W* Find(QDialog& d, const char* name) {
    W* w = d.findChild<W*>(name);
    EXPECT_TRUE(w) << name;
    return w;
  }
  static void Press(QDialog& d, QDialogButtonBox::StandardButton button) {
    QTest::mouseClick(d.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
  }
  static void Choose(QComboBox* combo, int index) {
    combo->setCurrentIndex(index);
    emit combo->activated(index);
  }
};

TEST_F(EditorWindow, ClicksReachThePagesAndOkSavesOnlyWhatChanged) {
  auto dialog = Open("2");
  auto* tabs = dialog->findChild<QTabWidget*>();
  ASSERT_EQ(tabs->count(), 6);
  EXPECT_EQ(tabs->tabText(0), "Solution");
  // Visual Studio .NET 2003: the Build page says MSBuild is needed.
  Choose(Find<QComboBox>(*dialog, "cboVSVersion"), 1);
  tabs->setCurrentIndex(2);
  EXPECT_TRUE(tabs->currentWidget()->findChild<QLabel*>("lblUseMSbuildRequired")->isVisible());
  tabs->setCurrentIndex(0);
  Choose(Find<QComboBox>(*dialog, "cboVSVersion"), 3);
  tabs->setCurrentIndex(2);
  QTest::mouseClick(Find<QCheckBox>(*dialog, "chkOverrideWarnings"), Qt::LeftButton);
  QTest::mouseClick(Find<QCheckBox>(*dialog, "chkAllWarningsAsErrors"), Qt::LeftButton);
  EXPECT_FALSE(Find<QCheckBox>(*dialog, "chkSpecifiedWarningsAsErrors")->isEnabled());
  Press(*dialog, QDialogButtonBox::Ok);
  EXPECT_EQ(dialog->result(), QDialog::Accepted);
  std::string expected = demo;
  expected.insert(expected.find("    </Action>", expected.find("Build the Greeting solution")),
                  "      <Property name=\"OverrideWarnings\">True</Property>\n"
                  "      <Property name=\"AllWarningsAsErrors\">True</Property>\n");
  EXPECT_EQ(qvtest::TempDir::Read(project), expected);
}

// Pages must not rewrite what the user left alone: OK on every action of the demo build
// process leaves the file byte for byte as it was, and so does Cancel after a change.
TEST_F(EditorWindow, OkWithoutChangesAndCancelLeaveTheFileAsItWas) {
  for (const char* action : {"1", "2", "3", "4", "5"}) {
    Press(*Open(action), QDialogButtonBox::Ok);
    EXPECT_EQ(qvtest::TempDir::Read(project), demo) << "action " << action;
  }
  auto dialog = Open("5");
  Choose(Find<QComboBox>(*dialog, "cmbVSVer"), 3);  // Standalone MSTest
  Press(*dialog, QDialogButtonBox::Cancel);
  EXPECT_EQ(dialog->result(), QDialog::Rejected);
  EXPECT_EQ(qvtest::TempDir::Read(project), demo);
}

// A property's editor opens the page that edits it; a property the host edits itself opens none.
TEST_F(EditorWindow, APropertysEditorOpensItsPage) {
  EXPECT_EQ(session.OpenEditor(project, "2", "SolutionConfiguration")->StartPage, "Solution");
  EXPECT_EQ(session.OpenEditor(project, "2", "Win32VersionInfo")->StartPage, "");
  EXPECT_THROW(session.OpenEditor(project, "2", "Nothing"), qv::Exception);
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
