#include "ProjectFile.h"

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/TempDir.h"

using qvhost::TProjectFile;
using qvtest::TempDir;

namespace {

std::string LoadError(const TempDir& dir, const std::string& text) {
  std::string file = dir.Write("p.qvproj", text);
  std::string message = qvtest::ErrorOf([&] { TProjectFile::Load(file); });
  return message.starts_with(file) ? "FILE" + message.substr(file.size()) : message;
}

TEST(TProjectFile, ReadsVariablesPropertySetsAndNestedActions) {
  auto project = TProjectFile::Load(QV_FIXTURES_DIR "/host/nested.qvproj");
  ASSERT_EQ(project->Variables().size(), 2u);
  EXPECT_EQ(project->Variables()[1].Value, "two & more");
  ASSERT_EQ(project->PropertySets().size(), 1u);
  EXPECT_EQ(project->PropertySets()[0].Properties[0].Value, "3");
  const auto& loop = project->Actions().at(0);
  EXPECT_FALSE(loop.Enabled);
  EXPECT_TRUE(loop.HasNestedActions);
  EXPECT_TRUE(loop.Properties.at(0).IsList);
  EXPECT_EQ(loop.Properties.at(0).Value, "a\r\n\r\n");
  EXPECT_EQ(loop.Actions.at(0).Properties.at(0).Value, " x ");
  EXPECT_EQ(project->LineOf(loop.Actions.at(0).Node), 10);
}

TEST(TProjectFile, ReportsAMalformedFileWithItsLine) {
  struct Case {
    const char* text;
    const char* error;
  } cases[] = {
      {"<QvProject>\n<Actions>\n</QvProject>", "FILE:3: Start-end tags mismatch"},
      {"<QvProject>\n  <Action type='x'/>\n</QvProject>",
       "FILE:2: Unexpected element <Action> in <QvProject>"},
      {"<Project/>", "FILE:1: The root element is <Project>, not <QvProject>"},
      {"<!-- nothing -->", "FILE:1: No document element found"},
      {"<QvProject><Actions>\n\n<Action/></Actions></QvProject>",
       "FILE:3: An <Action> needs a type"},
      {"<QvProject><Actions><Action type='x' enabled='yes'/></Actions></QvProject>",
       "FILE:1: enabled must be true or false, not \"yes\""},
      {"<QvProject><Actions><Action type='x'>\n<Property name='P' value='1'>2</Property>"
       "</Action></Actions></QvProject>",
       "FILE:2: Property \"P\" has both a value attribute and content"},
      {"<QvProject><Actions><Action type='x'><Property name='P'>a<Line>b</Line></Property>"
       "</Action></Actions></QvProject>",
       "FILE:1: Property \"P\" mixes <Line> elements and text"},
      {"<QvProject><Variables>\n<Variable value='1'/></Variables></QvProject>",
       "FILE:2: A <Variable> needs a name"},
      {"<QvProject>stray</QvProject>", "FILE:1: Unexpected text in <QvProject>"},
  };
  TempDir dir;
  for (const auto& c : cases)
    EXPECT_EQ(LoadError(dir, c.text), c.error) << c.text;
  EXPECT_EQ(LoadError(dir, std::string("\xFF\xFE<\0", 4)),
            "FILE:1: A project file must be UTF-8 text, not UTF-16");
}

// Each value form the file may use is rewritten in its own form; nothing else changes, and a
// file without changes, or changed by someone else meanwhile, is not written.
TEST(TProjectFile, RewritesOnlyTheChangedValues) {
  const std::string original =
      "<QvProject>\n"
      "  <Actions>\n"
      "    <Action type='T'> <!-- first -->\n"
      "      <Property name='Attr' value='1'/>\n"
      "      <Property name=\"Text\">old <!-- kept --></Property>\n"
      "      <Property name=\"Empty\"/>\n"
      "      <Property name=\"List\"><Line>a</Line></Property>\n"
      "      <Property name=\"Same\">same</Property>\n"
      "    </Action>\n"
      "    <Action type='U'/>\n"
      "  </Actions>\n"
      "</QvProject>\n";
  TempDir dir;
  std::string file = dir.Write("p.qvproj", original);
  auto project = TProjectFile::Load(file);
  auto first = project->Actions()[0].Node, second = project->Actions()[1].Node;
  project->SetProperty(first, "Same", "same", false);
  project->SetProperty(first, "Missing", "", false);
  EXPECT_FALSE(project->SaveChanges());
  project->SetProperty(first, "attr", "2 & \"3\" 'x'", false);
  project->SetProperty(first, "Text", "new <value>", false);
  project->SetProperty(first, "Empty", "filled", false);
  project->SetProperty(first, "List", "b\r\nc\r\n", true);
  project->SetProperty(first, "Added", "x", false);
  project->SetProperty(first, "Added2", "y", false);
  project->SetProperty(second, "Counter", "7", false);
  EXPECT_TRUE(project->SaveChanges());
  EXPECT_EQ(TempDir::Read(file),
            "<QvProject>\n"
            "  <Actions>\n"
            "    <Action type='T'> <!-- first -->\n"
            "      <Property name='Attr' value='2 &amp; &quot;3&quot; &apos;x&apos;'/>\n"
            "      <Property name=\"Text\">new &lt;value&gt;<!-- kept --></Property>\n"
            "      <Property name=\"Empty\">filled</Property>\n"
            "      <Property name=\"List\">\n"
            "        <Line>b</Line>\n"
            "        <Line>c</Line>\n"
            "      </Property>\n"
            "      <Property name=\"Same\">same</Property>\n"
            "      <Property name=\"Added\">x</Property>\n"
            "      <Property name=\"Added2\">y</Property>\n"
            "    </Action>\n"
            "    <Action type='U'>\n"
            "      <Property name=\"Counter\">7</Property>\n"
            "    </Action>\n"
            "  </Actions>\n"
            "</QvProject>\n");
  auto reloaded = TProjectFile::Load(file);
  EXPECT_EQ(reloaded->Actions()[0].Properties[0].Value, "2 & \"3\" 'x'");
  EXPECT_EQ(reloaded->Actions()[0].Properties[1].Value, "new <value>");
  reloaded->SetProperty(reloaded->Actions()[1].Node, "Counter", "8", false);
  dir.Write("p.qvproj", "<QvProject/>");
  EXPECT_EQ(qvtest::ErrorOf([&] { reloaded->SaveChanges(); }),
            "Project file \"" + file +
                "\" changed on disk during the run; its new values were not saved");
  EXPECT_EQ(TempDir::Read(file), "<QvProject/>");
}

}  // namespace
