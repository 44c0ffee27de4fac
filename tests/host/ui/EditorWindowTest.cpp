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

const char* kProject =
    "<?xml version=\"1.0\"?>\n"
    "<!-- a build engineer's comment stays -->\n"
    "<QvProject>\n"
    "  <Actions>\n"
    "    <Action type=\"TQvVSDotNetAction\" caption=\"Build\">\n"
    "      <Property name=\"Solution\">" QV_EXAMPLES_DIR
    "/vs2008/Greeting.sln</Property>\n"
    "      <Property name=\"VStudioVersion\">vs2008</Property>\n"
    "    </Action>\n"
    "    <Action type=\"TQvMSTestAction\" caption=\"Tests\"/>\n"
    "  </Actions>\n"
    "</QvProject>\n";

struct EditorWindow : ::testing::Test {
  qvtest::TempDir dir;
  std::string project = dir.Write("p.qvproj", kProject);
  std::unique_ptr<qvhost::THostSession> session;
  std::ostringstream out;

  void SetUp() override {
    qvhost::THostSettings s;
    s.DesignTime = true;
    s.DefaultPackages = false;
    s.Packages = {QV_PACKAGE_MODULE};
    s.OptionsFile = dir.File("options.xml");
    s.KeyFile = dir.File("key");
    s.RegistryFile = dir.Write("empty.reg", "REGEDIT4\n");
    session = std::make_unique<qvhost::THostSession>(s, out);
  }
  template <class W>
  static W* Find(QDialog& d, const char* name) {
    W* w = d.findChild<W*>(name);
    EXPECT_TRUE(w) << name;
    return w;
  }
  static void Ok(QDialog& d) {
    QTest::mouseClick(d.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                      Qt::LeftButton);
  }
  static void Choose(QComboBox* combo, int index) {
    combo->setCurrentIndex(index);
    emit combo->activated(index);
  }
};

TEST_F(EditorWindow, ClicksReachThePagesAndOkSavesOnlyWhatChanged) {
  auto editor = session->OpenEditor(project, "Build");
  auto dialog = qvhost::ui::MakeEditorDialog(*editor, {});
  dialog->show();
  auto* tabs = dialog->findChild<QTabWidget*>();
  ASSERT_EQ(tabs->count(), 6);
  EXPECT_EQ(tabs->tabText(0), "Solution");
  Choose(Find<QComboBox>(*dialog, "cboVSVersion"), 1);  // Visual Studio .NET 2003
  EXPECT_FALSE(Find<QCheckBox>(*dialog, "chkUseMSBuild")->isEnabled());
  for (int tab : {1, 2}) {  // the Paths and Build pages both say MSBuild is needed
    tabs->setCurrentIndex(tab);
    EXPECT_TRUE(tabs->currentWidget()->findChild<QLabel*>("lblUseMSbuildRequired")->isVisible());
  }
  tabs->setCurrentIndex(0);
  Choose(Find<QComboBox>(*dialog, "cboVSVersion"), 3);
  tabs->setCurrentIndex(2);
  QTest::mouseClick(Find<QCheckBox>(*dialog, "chkOverrideWarnings"), Qt::LeftButton);
  QTest::mouseClick(Find<QCheckBox>(*dialog, "chkAllWarningsAsErrors"), Qt::LeftButton);
  EXPECT_FALSE(Find<QCheckBox>(*dialog, "chkSpecifiedWarningsAsErrors")->isEnabled());
  Ok(*dialog);
  EXPECT_EQ(dialog->result(), QDialog::Accepted);
  std::string expected = kProject;
  expected.insert(expected.find("    </Action>\n    <Action type=\"TQvMSTest"),
                  "      <Property name=\"OverrideWarnings\">True</Property>\n"
                  "      <Property name=\"AllWarningsAsErrors\">True</Property>\n");
  EXPECT_EQ(qvtest::TempDir::Read(project), expected);
}

TEST_F(EditorWindow, CancelWritesNothingAndStandaloneMSTestIsSaved) {
  auto editor = session->OpenEditor(project, "2");
  auto dialog = qvhost::ui::MakeEditorDialog(*editor, {});
  dialog->show();
  Choose(Find<QComboBox>(*dialog, "cmbVSVer"), 3);  // Standalone MSTest
  QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel),
                    Qt::LeftButton);
  EXPECT_EQ(qvtest::TempDir::Read(project), kProject);
  Choose(Find<QComboBox>(*dialog, "cmbVSVer"), 3);
  Ok(*dialog);
  std::string expected = kProject;
  expected.replace(expected.find("<Action type=\"TQvMSTestAction\" caption=\"Tests\"/>"),
                   std::string("<Action type=\"TQvMSTestAction\" caption=\"Tests\"/>").size(),
                   "<Action type=\"TQvMSTestAction\" caption=\"Tests\">\n"
                   "      <Property name=\"UseStandaloneMSTest\">True</Property>\n"
                   "    </Action>");
  EXPECT_EQ(qvtest::TempDir::Read(project), expected);
}

TEST_F(EditorWindow, APropertysEditorOpensItsPage) {
  auto editor = session->OpenEditor(project, "Build", "SolutionConfiguration");
  auto dialog = qvhost::ui::MakeEditorDialog(*editor, {});
  auto* tabs = dialog->findChild<QTabWidget*>();
  EXPECT_EQ(editor->StartPage, "Solution");
  EXPECT_EQ(tabs->tabText(tabs->currentIndex()), "Solution");
  editor = session->OpenEditor(project, "Build", "Win32VersionInfo");  // the host's own editor
  EXPECT_EQ(editor->StartPage, "");
  EXPECT_THROW(session->OpenEditor(project, "Build", "Nothing"), qv::Exception);
}

// Pages must not rewrite what the user left alone: OK on every action of the demo build
// process leaves the file byte for byte as it was.
TEST_F(EditorWindow, OkWithoutChangesLeavesEveryActionAsItWas) {
  std::string demo = qvtest::TempDir::Read(QV_EXAMPLES_DIR "/demo/Greeting.qvproj");
  std::string file = dir.Write("demo.qvproj", demo);
  for (const char* action : {"1", "2", "3", "4", "5"}) {
    auto editor = session->OpenEditor(file, action);
    auto dialog = qvhost::ui::MakeEditorDialog(*editor, session->ProjectVariableNames());
    Ok(*dialog);
    EXPECT_EQ(qvtest::TempDir::Read(file), demo) << "action " << action;
  }
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
