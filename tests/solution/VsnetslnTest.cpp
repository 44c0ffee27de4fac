#include "Vsnetsln.h"

#include <gtest/gtest.h>

#include "QvSysUtils.h"
#include "support/ErrorOf.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::FileKey;
using qvtest::TempDir;

namespace {

const std::string kA = "{AAAAAAAA-0000-0000-0000-000000000001}";
const std::string kB = "{BBBBBBBB-0000-0000-0000-000000000002}";
// In the texts below "{A}", "{B}", "{C}", "{CS}" (C#) and "{VC}" (Visual C++) stand for these.
const std::pair<std::string, std::string> kTokens[] = {
    {"{A}", kA},
    {"{B}", kB},
    {"{C}", "{CCCCCCCC-0000-0000-0000-000000000003}"},
    {"{CS}", "{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}"},
    {"{VC}", "{8BC9CEB8-8B4A-11D0-8D11-00A0C983F5F7}"}};

// Solution text as Visual Studio writes it: CR LF breaks, identifiers in full.
std::string SolutionText(std::string text) {
  text = StringReplaceAll(text, "\n", "\r\n");
  for (const auto& [token, guid] : kTokens)
    text = StringReplaceAll(text, token, guid);
  return text;
}

std::string Project(const std::string& name, const std::string& path, const char* guid = "{A}",
                    const char* type = "{CS}") {
  return std::string("Project(\"") + type + "\") = \"" + name + "\", \"" + path + "\", \"" + guid +
         "\"\nEndProject\n";
}

std::string Header(int version = 10) {
  return "Microsoft Visual Studio Solution File, Format Version " + std::to_string(version) +
         ".00\n";
}

// Solutions in a folder that holds the project files A/A.csproj and B/B.csproj.
const std::string kFixtures = QV_FIXTURES_DIR "/solution/";
const std::string kGlobal = "Global\nEndGlobal\n";
const std::string kProjectA = Project("A", "A\\A.csproj");

// The model in short: "VERSION: PROJECT ...; CONFIGURATION, ...", then for each project with
// dependencies or configuration mappings "NAME: DEPENDENCY ...; SOLUTION=PROJECT ...", with
// "*" after an active mapping and identifiers as their tokens.
std::string Describe(const IntfPtr<IVSDotNetSolution>& s) {
  std::string text = TVSDotNetVersionInfo.NameOf(static_cast<int>(s->GetVersion())) + ":", more;
  auto projects = s->GetProjects();
  auto configs = s->GetConfigurations();
  for (int i = 0; i < projects->GetCount(); ++i) {
    auto p = projects->GetItem(i);
    text += " " + p->GetName();
    std::string deps, maps;
    for (const std::string& dep : *p->GetDependencies()->GetList())
      deps += " " + dep;
    const TStringList& list = p->GetConfigurationList();
    for (int m = 0; m < list.Count(); ++m)
      maps += " " + list[m] + (list.Objects(m) ? "*" : "");
    if (!deps.empty() || !maps.empty()) more += "\n" + p->GetName() + ":" + deps + ";" + maps;
  }
  for (int i = 0; configs && i < configs->GetCount(); ++i)
    text += (i ? ", " : "; ") + configs->GetItem(i)->GetName();
  for (const auto& [token, guid] : kTokens)
    more = StringReplaceAll(more, guid, token);
  return text + more;
}

struct SolutionFile : testing::Test {
  TempDir dir;
  IntfPtr<IVSDotNetSolution> Open(const std::string& body, bool includeMissing = false) {
    return OpenSolution(dir.Write("S.sln", SolutionText(body)), includeMissing);
  }
  // Describes the solution, or gives the error opening it.
  std::string Read(const std::string& body) {
    std::string text;
    std::string error = qvtest::ErrorOf([&] { text = Describe(Open(body)); });
    return error == "(no exception)" ? text : error;
  }
};

TEST_F(SolutionFile, ReadsWhatIsWrittenAndFailsWithTheReadersMessages) {
  const std::string deps = "\tProjectSection(ProjectDependencies) = postProject\n";
  for (const char* file : {"A/A.csproj", "B/B.csproj"})
    dir.Write(file, "<Project/>");
  const std::pair<std::string, std::string> cases[] = {
      {Header(7) + kGlobal, "vs2002:"},
      {Header(11) + kGlobal, "vsUnknown:"},
      // Empty lines before the header are dropped (after a BOM too); a line of blanks is not.
      {"\n\n" + Header(9) + kGlobal, "vs2005:"},
      {"\xEF\xBB\xBF\n" + Header() + kProjectA + kGlobal, "vs2008: A"},
      {"   \n" + Header(9) + kGlobal, "Invalid Visual Studio Solution Header :    "},
      {"Microsoft Visual Studio Solution File\n",
       "Invalid Visual Studio Solution Header : Microsoft Visual Studio Solution File"},
      {"", "List index out of bounds (0)"},
      {"\n\n\n", "List index out of bounds (0)"},
      // The header is searched anywhere in the first line, in any letter case.
      {"# microsoft visual studio solution file, format version 8.00\n" + kGlobal, "vs2003:"},
      {Header() + "Project(\"{CS}\") = \"A\", \"A\\A.csproj\"\n" + kGlobal,
       "Error parsing project string"},
      {Header() + "Project(\"{CS}\") \"A\", \"x\", \"y\"\n" + kGlobal,
       "Error parsing project string"},
      {Header() + kProjectA, "List index out of bounds (3)"},
      {Header() + kProjectA + "Global\n", "List index out of bounds (4)"},
      {Header() + kProjectA +
           "Global\n\tGlobalSection(SolutionConfigurationPlatforms) = preSolution\n" +
           "\t\tDebug|Any CPU = Debug|Any CPU\n",
       "List index out of bounds (6)"},
      // A project whose file is missing is left out; a web project has no file to look for.
      {Header() + kProjectA + Project("Gone", "Gone\\Gone.csproj", "{B}") +
           Project("Web", "http://localhost/Web/Web.csproj", "{C}") + kGlobal,
       "vs2008: A Web"},
      {Header() + "Project(\"{CS}\") = \"A\", \"A\\A.csproj\", \"{A}\"\n" + deps +
           "\t\t{B} = {B}\n\tEndProjectSection\nEndProject\n" +
           "Project(\"{CS}\") = \"B\", \"B\\B.csproj\", \"{B}\"\n" + deps +
           "\t\t{A} = {A}\n\tEndProjectSection\nEndProject\n" + kGlobal,
       "Solution has invalid circular dependancies between : B and A"},
  };
  for (const auto& [body, expected] : cases)
    EXPECT_EQ(Read(body), expected) << body;
  auto all =
      Open(Header() + kProjectA + Project("Gone", "Gone\\Gone.csproj", "{B}") + kGlobal, true);
  EXPECT_EQ(Describe(all), "vs2008: A Gone");
  EXPECT_FALSE(all->GetConfigurations()) << "no configuration section";
  std::string utf16 = "\xFF\xFE";
  for (char c : SolutionText(Header() + kProjectA + kGlobal))
    utf16 += std::string{c, '\0'};
  EXPECT_EQ(Describe(OpenSolution(dir.Write("E.sln", utf16), false)), "vs2008: A");
}

TEST_F(SolutionFile, SectionsTheirQuirksAndLookupsThatNeverFail) {
  // In B another section comes first: its EndProjectSection ends the project, and B's
  // dependency on C is lost; the dependencies of Gone, a project without a file, go nowhere.
  EXPECT_EQ(Describe(OpenSolution(kFixtures + "dependencies.sln", false)),
            "vs2005: B A\nA: {B} {B};");
  // Format 8: configurations without platforms (a description is none), and global
  // dependencies, read after the projects were sorted.
  EXPECT_EQ(Describe(OpenSolution(kFixtures + "format8.sln", false)),
            "vs2003: A B; Debug, Release\nA: {B}; Debug=Debug|.NET*");
  // The second configuration section replaces the first; the first mapping line wins, an
  // ActiveCfg line after it only marks it active; the solution configuration runs to the
  // last marker with text after it; a marker without a value and an unknown project map
  // nothing.
  auto s = OpenSolution(kFixtures + "configurations.sln", false);
  EXPECT_EQ(Describe(s),
            "vs2008: A B; Debug|Any CPU, Release|Any CPU\n"
            "A:; Debug|Any CPU=Debug|Any CPU* Release|Any CPU=Release|Any CPU\n"
            "B:; Release|Any CPU=Release|Any CPU* v1.2|x86.ActiveCfg=Odd|x86");
  auto projects = s->GetProjects();
  auto a = projects->GetItem(0);
  EXPECT_FALSE(projects->GetItem(-1) || projects->GetItem(2));
  EXPECT_FALSE(s->GetConfigurations()->GetItem(-1) || s->GetConfigurations()->GetItem(2));
  EXPECT_EQ(projects->FindByFileName("A\\A.csproj"), a);
  EXPECT_FALSE(projects->FindByFileName("a\\a.csproj"));
  EXPECT_EQ(projects->FindByGUID(kB)->GetName(), "B");
  EXPECT_FALSE(projects->FindByGUID(LowerCase(kB))) << "FindByGUID is exact";
  EXPECT_EQ(a->GetProjectConfiguration("debug|any cpu"), "Debug|Any CPU");
  EXPECT_TRUE(a->IsActiveConfiguration("DEBUG|ANY CPU"));
  EXPECT_EQ(a->GetProjectConfiguration("Nope"), "");
  EXPECT_FALSE(a->IsActiveConfiguration("Nope"));
  auto deps = a->GetDependencies();
  deps->Add(kB);
  EXPECT_EQ(deps->GetItem(1) + deps->GetItem(-1), "");
  EXPECT_TRUE(deps->Contains(LowerCase(kB)));
}

const char* kVcproj = R"(<?xml version="1.0" encoding="Windows-1252"?>
<VisualStudioProject ProjectType="Visual C++" Version="8.00" Name="App">
  <Files>
    <Filter Name="Resource Files" Filter="rc;ico">
      <File RelativePath=".\res\app.RC"/>
      <File RelativePath="other.rc"/>
      <File RelativePath="resource.h"/>
      <Filter Name="Nested"><File RelativePath="nested.rc"/></Filter>
    </Filter>
    <File RelativePath="direct.rc"/>
  </Files>
</VisualStudioProject>
)";
const std::string kApp = Project("App", "App\\App.vcproj", "{A}", "{VC}");

// Only the scripts of first-level filters count; the version script is the first readable one
// holding VERSIONINFO. Visual Studio names files without regard to case; on disk they may
// differ from the names.
TEST_F(SolutionFile, ResourceScriptsAndTheVersionScript) {
  dir.Write("app/app.vcproj", kVcproj);
  dir.Write("Other/Other.vcproj",
            "<Project><Files><Filter><File RelativePath=\"x.rc\"/></Filter></Files></Project>");
  const std::string body =
      Header() + kApp + Project("Other", "Other\\Other.vcproj", "{B}", "{VC}") + kGlobal;
  auto key = [&](const char* path) { return FileKey(dir.File(path)); };
  // App's scripts and, after "->", its version script, as file keys.
  auto scripts = [&] {
    auto s = Open(body);
    EXPECT_EQ(s->GetProjects()->FindByGUID(kB)->GetResourceFiles()->Count(), 0) << "other root";
    auto app = s->GetProjects()->FindByGUID(kA);
    std::string text;
    for (const std::string& script : *app->GetResourceFiles())
      text += FileKey(script) + " ";
    return text + "-> " + FileKey(app->GetVersionInfoFile());
  };
  EXPECT_EQ(scripts(), key("app/res/app.RC") + " " + key("app/other.rc") + " -> ");
  dir.Write("app/Res/APP.rc", "// no version here\r\n");
  dir.Write("app/Other.RC", "1 VERSIONINFO\r\n");
  dir.Write("app/nested.rc", "1 VERSIONINFO\r\n");
  dir.Write("app/direct.rc", "1 VERSIONINFO\r\n");
  EXPECT_EQ(scripts(),
            key("app/Res/APP.rc") + " " + key("app/Other.RC") + " -> " + key("app/Other.RC"));

  // What a conforming parser rejects fails the whole solution, with the reason and line.
  const std::pair<std::string, std::string> cases[] = {
      {"<VisualStudioProject>\n  <Files>\n</VisualStudioProject>\n",
       "Opening and ending tag mismatch: Files line 2 and VisualStudioProject (line 3"},
      // Found in real repositories; lenient parsers accept them.
      {"<VisualStudioProject A=\"1\"\n A=\"2\"/>", "Attribute A redefined (line 2"},
      {"\n<?xml version=\"1.0\"?>\n<VisualStudioProject/>",
       "XML declaration allowed only at the start of the document (line 2"},
      {"<?xml version=\"1.0\" encoding=\"Klingon\"?>\n<VisualStudioProject/>",
       "Unsupported encoding Klingon (line 1"},
      {"<VisualStudioProject>\n<x:Files/></VisualStudioProject>",
       "Namespace prefix x on Files is not defined (line 2"},
  };
  for (const auto& [text, error] : cases) {
    dir.Write("app/app.vcproj", text);
    EXPECT_EQ(FileKey(Read(body)), FileKey("Error parsing project file : " + error + " of " +
                                           dir.File("app/app.vcproj") + ")"));
  }
  // A project file's error comes before one further on in the solution file.
  EXPECT_EQ(FileKey(Read(Header() + kApp + "Project(\"{CS}\") \"X\"\n" + kGlobal)),
            FileKey("Error parsing project file : " + cases[4].second + " of " +
                    dir.File("app/app.vcproj") + ")"));
  // So also when a large solution's project files are read on two threads.
  std::string many = Header();
  for (int i = 0; i < 200; ++i) {
    std::string name = "p" + std::to_string(i);
    dir.Write(name + "/p.vcproj", i % 70 == 69 ? cases[4].first : "<VisualStudioProject/>");
    many += Project(name, name + "\\p.vcproj", "{A}", "{VC}");
  }
  EXPECT_EQ(FileKey(Read(many + "Project(\"{CS}\") \"X\"\n" + kGlobal)),
            FileKey("Error parsing project file : " + cases[4].second + " of " +
                    dir.File("p69/p.vcproj") + ")"));
  dir.Write("app/app.vcproj",
            "\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"Windows-1252\"?>\r\n<VisualStudioProject>"
            "\n<Files><Filter><File RelativePath=\"\xe4.rc\"/></Filter></Files>"
            "</VisualStudioProject>\r\n");
  EXPECT_EQ(scripts(), key("app/\xc3\xa4.rc") + " -> ");  // decoded as Windows-1252
}

}  // namespace
