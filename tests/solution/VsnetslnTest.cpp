#include "Vsnetsln.h"

#include <gtest/gtest.h>

#include "QvSysUtils.h"
#include "support/ErrorOf.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::TempDir;

namespace {

const char* kCs = "{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}";
const char* kVc = "{8BC9CEB8-8B4A-11D0-8D11-00A0C983F5F7}";
const std::string kA = "{AAAAAAAA-0000-0000-0000-000000000001}";
const std::string kB = "{BBBBBBBB-0000-0000-0000-000000000002}";
const std::string kC = "{CCCCCCCC-0000-0000-0000-000000000003}";

// Solution text as Visual Studio writes it: CR LF breaks, and "{A}", "{B}", "{C}" and "{CS}"
// standing for the identifiers above.
std::string SolutionText(std::string text) {
  text = StringReplaceAll(text, "\n", "\r\n");
  for (const auto& [token, guid] :
       {std::pair<std::string, std::string>{"{A}", kA}, {"{B}", kB}, {"{C}", kC}, {"{CS}", kCs}})
    text = StringReplaceAll(text, token, guid);
  return text;
}

// A project and its dependencies, ended.
std::string Project(const std::string& name, const std::string& path, const std::string& guid,
                    const std::vector<std::string>& deps = {}, const char* type = kCs) {
  std::string s = std::string("Project(\"") + type + "\") = \"" + name + "\", \"" + path +
                  "\", \"" + guid + "\"\n";
  if (!deps.empty()) {
    s += "\tProjectSection(ProjectDependencies) = postProject\n";
    for (const auto& d : deps)
      s += "\t\t" + d + " = " + d + "\n";
    s += "\tEndProjectSection\n";
  }
  return s + "EndProject\n";
}

std::string Header(int version = 10) {
  return "Microsoft Visual Studio Solution File, Format Version " + std::to_string(version) +
         ".00\n";
}

const std::string kEmptyGlobal = "Global\nEndGlobal\n";
const std::string kProjectA = Project("A", "A\\A.csproj", "{A}");

// A solution folder with project files A, B and C present on disk.
struct SolutionDir {
  TempDir dir;
  SolutionDir() {
    for (const char* p : {"A/A.csproj", "B/B.csproj", "C/C.csproj"})
      dir.Write(p, "<Project/>");
  }
  IntfPtr<IVSDotNetSolution> Open(const std::string& body, bool includeMissing = false) {
    return OpenSolution(dir.Write("S.sln", SolutionText(body)), includeMissing);
  }
  // Opens one of the solutions in fixtures/solution.
  IntfPtr<IVSDotNetSolution> OpenFixture(const std::string& name) {
    return OpenSolution(dir.Write("S.sln", TempDir::Read(QV_FIXTURES_DIR "/solution/" + name)),
                        false);
  }
  std::string ErrorOf(const std::string& body) {
    return qvtest::ErrorOf([&] { Open(body); });
  }
};

std::vector<std::string> Names(const IntfPtr<IVSDotNetSolution>& s) {
  std::vector<std::string> names;
  auto projects = s->GetProjects();
  for (int i = 0; i < projects->GetCount(); ++i)
    names.push_back(projects->GetItem(i)->GetName());
  return names;
}

std::vector<std::string> ConfigNames(const IntfPtr<IVSDotNetSolution>& s) {
  std::vector<std::string> names;
  auto configs = s->GetConfigurations();
  for (int i = 0; configs && i < configs->GetCount(); ++i)
    names.push_back(configs->GetItem(i)->GetName());
  return names;
}

TEST(OpenSolution, HeaderDecidesTheVersion) {
  const std::pair<int, TVSDotNetVersion> cases[] = {
      {7, TVSDotNetVersion::vs2002},     {8, TVSDotNetVersion::vs2003},
      {9, TVSDotNetVersion::vs2005},     {10, TVSDotNetVersion::vs2008},
      {11, TVSDotNetVersion::vsUnknown}, {6, TVSDotNetVersion::vsUnknown},
  };
  SolutionDir d;
  for (const auto& [number, version] : cases)
    EXPECT_EQ(d.Open(Header(number) + kEmptyGlobal)->GetVersion(), version) << number;
  // Empty lines before the header are dropped; a line of blanks is not.
  EXPECT_EQ(d.Open("\n\n" + Header(9) + kEmptyGlobal)->GetVersion(), TVSDotNetVersion::vs2005);
  EXPECT_EQ(d.ErrorOf("   \n" + Header(9) + kEmptyGlobal),
            "Invalid Visual Studio Solution Header :    ");
  EXPECT_EQ(d.ErrorOf("Microsoft Visual Studio Solution File\n"),
            "Invalid Visual Studio Solution Header : Microsoft Visual Studio Solution File");
  EXPECT_EQ(d.ErrorOf(""), "List index out of bounds (0)");
  EXPECT_EQ(d.ErrorOf("\n\n\n"), "List index out of bounds (0)");
  // The header is searched anywhere in the first line, in any letter case.
  EXPECT_EQ(d.Open("# microsoft visual studio solution file, format version 8.00\n" + kEmptyGlobal)
                ->GetVersion(),
            TVSDotNetVersion::vs2003);
}

// Each test of these suites runs in a fresh SolutionDir.
struct SolutionTest : testing::Test, SolutionDir {};
using Model = SolutionTest;
using ProjectFiles = SolutionTest;
using SolutionFile = SolutionTest;

TEST_F(SolutionFile, MalformedProjectLinesAndMissingGlobalParts) {
  EXPECT_EQ(ErrorOf(Header() + "Project(\"{CS}\") = \"A\", \"A\\A.csproj\"\n" + kEmptyGlobal),
            "Error parsing project string");
  EXPECT_EQ(ErrorOf(Header() + "Project(\"{CS}\") \"A\", \"x\", \"y\"\n" + kEmptyGlobal),
            "Error parsing project string");
  EXPECT_EQ(ErrorOf(Header() + kProjectA), "List index out of bounds (3)");
  EXPECT_EQ(ErrorOf(Header() + kProjectA + "Global\n"), "List index out of bounds (4)");
  EXPECT_EQ(ErrorOf(Header() + kProjectA +
                    "Global\n\tGlobalSection(SolutionConfigurationPlatforms) = preSolution\n"
                    "\t\tDebug|Any CPU = Debug|Any CPU\n"),
            "List index out of bounds (6)");
}

TEST_F(SolutionFile, ReadsProjectsAsWrittenAndLooksForTheirFiles) {
  std::string body = Header() + kProjectA + Project("Gone", "Gone\\Gone.csproj", "{B}") +
                     Project("Web", "http://localhost/Web/Web.csproj", "{C}") + kEmptyGlobal;
  auto s = Open(body);
  EXPECT_EQ(Names(s), (std::vector<std::string>{"A", "Web"}));
  EXPECT_EQ(Open(body, true)->GetProjects()->GetCount(), 3);

  auto a = s->GetProjects()->GetItem(0);
  EXPECT_EQ(a->GetFileName(), "A\\A.csproj");
  EXPECT_EQ(a->GetProjectGUID(), kA);
  EXPECT_EQ(a->GetProjectTypeGUID(), kCs);
  EXPECT_FALSE(a->IsVCProject());
  EXPECT_EQ(s->GetFileName(), dir.File("S.sln"));
  EXPECT_EQ(s->GetReservedText1(), "");
  EXPECT_EQ(s->GetReservedText2(), "");
  EXPECT_FALSE(s->GetConfigurations()) << "no configuration section";
}

TEST_F(SolutionFile, DependencySectionsAndTheirQuirks) {
  // In B another section comes first: its EndProjectSection ends the project, and B's
  // dependency on C is lost; the dependencies of Gone, a project without a file, go nowhere.
  auto s = OpenFixture("dependencies.sln");
  EXPECT_EQ(Names(s), (std::vector<std::string>{"B", "A"}));
  auto deps = s->GetProjects()->FindByGUID(kA)->GetDependencies();
  EXPECT_EQ(deps->GetCount(), 2) << "duplicates are kept";
  EXPECT_EQ(deps->GetItem(0), kB);
  EXPECT_EQ(deps->GetItem(2), "");
  EXPECT_EQ(deps->GetItem(-1), "");
  EXPECT_TRUE(deps->Contains(LowerCase(kB)));
  EXPECT_EQ(s->GetProjects()->FindByGUID(kB)->GetDependencies()->GetCount(), 0);
  // Projects that depend on each other fail the open.
  EXPECT_EQ(ErrorOf(Header() + Project("A", "A\\A.csproj", "{A}", {"{B}"}) +
                    Project("B", "B\\B.csproj", "{B}", {"{A}"}) + kEmptyGlobal),
            "Solution has invalid circular dependancies between : B and A");
}

TEST_F(SolutionFile, ConfigurationsAndMappings) {
  auto s = OpenFixture("configurations.sln");
  EXPECT_EQ(ConfigNames(s), (std::vector<std::string>{"Debug|Any CPU", "Release|Any CPU"}))
      << "the second section replaces the first";
  EXPECT_FALSE(s->GetConfigurations()->GetItem(2));
  EXPECT_FALSE(s->GetConfigurations()->GetItem(-1));

  auto a = s->GetProjects()->FindByGUID(kA);
  EXPECT_EQ(a->GetProjectConfiguration("debug|any cpu"), "Debug|Any CPU") << "first line wins";
  EXPECT_TRUE(a->IsActiveConfiguration("Debug|Any CPU"));
  EXPECT_EQ(a->GetProjectConfiguration("Release|Any CPU"), "Release|Any CPU");
  EXPECT_FALSE(a->IsActiveConfiguration("Release|Any CPU")) << "Build.0 alone leaves it unset";
  EXPECT_EQ(a->GetProjectConfiguration("Nope"), "");
  EXPECT_FALSE(a->IsActiveConfiguration("Nope"));

  auto b = s->GetProjects()->FindByGUID(kB);
  EXPECT_EQ(b->GetProjectConfiguration("Release|Any CPU"), "Release|Any CPU");
  EXPECT_TRUE(b->IsActiveConfiguration("Release|Any CPU")) << "ActiveCfg read after Build.0";
  // Points in a configuration's name; the last marker with text after it ends the name.
  EXPECT_EQ(b->GetProjectConfiguration("v1.2|x86.ActiveCfg"), "Odd|x86");
  EXPECT_FALSE(b->IsActiveConfiguration("v1.2|x86.ActiveCfg"));
  EXPECT_EQ(b->GetConfigurationList().Count(), 2) << "a marker without a value maps nothing";
  EXPECT_FALSE(s->GetProjects()->FindByGUID(LowerCase(kB))) << "FindByGUID is exact";
}

TEST_F(SolutionFile, FormatSevenConfigurationsAndGlobalDependencies) {
  auto s = OpenFixture("format8.sln");
  EXPECT_EQ(ConfigNames(s), (std::vector<std::string>{"Debug", "Release"}));
  EXPECT_EQ(s->GetProjects()->FindByGUID(kA)->GetProjectConfiguration("Debug"), "Debug|.NET");
  EXPECT_EQ(Names(s), (std::vector<std::string>{"A", "B"})) << "global dependencies come late";
  EXPECT_EQ(s->GetProjects()->FindByGUID(kA)->GetDependencies()->GetItem(0), kB);
  s->GetProjects()->SortByDependency();
  EXPECT_EQ(Names(s), (std::vector<std::string>{"B", "A"}));
}

TEST_F(SolutionFile, ReadsEncodingsVisualStudioWrites) {
  std::string body = SolutionText(Header() + kProjectA + kEmptyGlobal);
  std::string utf16 = "\xFF\xFE";
  for (char c : body)
    utf16 += std::string{c, '\0'};
  for (const std::string& bytes : {"\xEF\xBB\xBF\r\n" + body, utf16}) {
    auto s = OpenSolution(dir.Write("E.sln", bytes), false);
    EXPECT_EQ(Names(s), std::vector<std::string>{"A"});
  }
}

TEST_F(Model, ListLookupsNeverFailAndDependencyListsAnswerTheSharedIdentifier) {
  auto projects = Open(Header() + kProjectA + kEmptyGlobal)->GetProjects();
  EXPECT_FALSE(projects->GetItem(-1));
  EXPECT_FALSE(projects->GetItem(1));
  EXPECT_EQ(projects->FindByFileName("A\\A.csproj")->GetName(), "A");
  EXPECT_FALSE(projects->FindByFileName("a\\a.csproj"));

  auto deps = projects->GetItem(0)->GetDependencies();
  void* p = nullptr;
  ASSERT_EQ(deps->QueryInterface(IVSDotNetProjectConfigurations::IID, &p), HResult::S_OK);
  auto same =
      IntfPtr<IVSDotNetProjectDependancies>::Attach(static_cast<IVSDotNetProjectDependancies*>(p));
  EXPECT_EQ(same.Get(), deps.Get());
  EXPECT_FALSE(Supports<IVSDotNetProjectConfiguration>(deps));
  EXPECT_TRUE(Supports<IVSDotNetObject>(deps));
  EXPECT_EQ(deps->GetImplementation(), Supports<IVSDotNetObject>(deps)->GetImplementation());

  projects->GetItem(0)->AddConfiguration("Debug", "Debug|x86", false);
  projects->GetItem(0)->AddConfiguration("DEBUG", "Other", true);
  EXPECT_EQ(projects->GetItem(0)->GetProjectConfiguration("debug"), "Debug|x86");
  EXPECT_TRUE(projects->GetItem(0)->IsActiveConfiguration("Debug"));
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

const std::string kAppVcproj = Project("App", "App\\App.vcproj", "{A}", {}, kVc);

TEST_F(ProjectFiles, ResourceScriptsOfFirstLevelFiltersAndTheVersionScript) {
  dir.Write("App/App.vcproj", kVcproj);
  dir.Write("App/res/app.RC", "// no version here\r\n");
  dir.Write("App/other.rc", "1 VERSIONINFO\r\n");
  dir.Write("App/nested.rc", "1 VERSIONINFO\r\n");
  auto app = Open(Header() + kAppVcproj + kEmptyGlobal)->GetProjects()->GetItem(0);
  EXPECT_TRUE(app->IsVCProject());
  EXPECT_EQ(app->GetResourceFiles()->Strings(),
            (std::vector<std::string>{dir.File("App/res/app.RC"), dir.File("App/other.rc")}));
  EXPECT_EQ(app->GetVersionInfoFile(), dir.File("App/other.rc"));
}

// Visual Studio names files without regard to case; on disk they may differ from the names.
TEST_F(ProjectFiles, ProjectsAndScriptsAreFoundInAnyLetterCase) {
  dir.Write("app/app.vcproj", kVcproj);
  dir.Write("app/Res/APP.rc", "// no version here\r\n");
  dir.Write("app/Other.RC", "1 VERSIONINFO\r\n");
  auto app = Open(Header() + kAppVcproj + kEmptyGlobal)->GetProjects()->GetItem(0);
  ASSERT_TRUE(app);
  std::vector<std::string> found;
  for (const std::string& script : *app->GetResourceFiles())
    found.push_back(qvtest::FileKey(script));
  EXPECT_EQ(found, (std::vector<std::string>{qvtest::FileKey(dir.File("app/Res/APP.rc")),
                                             qvtest::FileKey(dir.File("app/Other.RC"))}));
  EXPECT_EQ(qvtest::FileKey(app->GetVersionInfoFile()), qvtest::FileKey(dir.File("app/Other.RC")));
}

TEST_F(ProjectFiles, UnreadableScriptsAreSkippedAndOtherRootsContributeNothing) {
  dir.Write("App/App.vcproj", kVcproj);  // none of its scripts exist
  dir.Write("Other/Other.vcproj",
            "<Project><Files><Filter><File RelativePath=\"x.rc\"/>"
            "</Filter></Files></Project>");
  auto s = Open(Header() + kAppVcproj + Project("Other", "Other\\Other.vcproj", "{B}", {}, kVc) +
                kEmptyGlobal);
  EXPECT_EQ(s->GetProjects()->FindByGUID(kA)->GetResourceFiles()->Count(), 2);
  EXPECT_EQ(s->GetProjects()->FindByGUID(kA)->GetVersionInfoFile(), "");
  EXPECT_EQ(s->GetProjects()->FindByGUID(kB)->GetResourceFiles()->Count(), 0);
  // What a conforming parser rejects fails the whole solution; what it accepts loads.
  const std::string v = "<VisualStudioProject>\n<Files><Filter><File RelativePath=\"\xe4.rc\"/>";
  const std::pair<std::string, std::string> cases[] = {
      {"<VisualStudioProject>\n  <Files>\n</VisualStudioProject>\n",
       "Opening and ending tag mismatch: Files line 2 and VisualStudioProject (line 3"},
      {"<VisualStudioProject A=\"1\"\n A=\"2\"/>", "Attribute A redefined (line 2"},
      {"\n<?xml version=\"1.0\"?>\n<VisualStudioProject/>",
       "XML declaration allowed only at the start of the document (line 2"},
      {"<VisualStudioProject>\n<x:Files/></VisualStudioProject>",
       "Namespace prefix x on Files is not defined (line 2"},
      {"\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"Windows-1252\"?>\r\n" + v +
           "</Filter></Files></VisualStudioProject>\r\n",
       ""},
  };
  for (const auto& [text, error] : cases) {
    dir.Write("App/App.vcproj", text);
    std::string got = ErrorOf(Header() + kAppVcproj + kEmptyGlobal);
    if (error.empty()) {
      EXPECT_EQ(got, "(no exception)");
    } else {
      EXPECT_EQ(
          got, "Error parsing project file : " + error + " of " + dir.File("App/App.vcproj") + ")");
    }
  }
  auto app = Open(Header() + kAppVcproj + kEmptyGlobal)->GetProjects()->GetItem(0);
  EXPECT_EQ(app->GetResourceFiles()->Strings(),
            std::vector<std::string>{dir.File("App/\xc3\xa4.rc")});  // decoded as Windows-1252
}

TEST(Examples, BundledSolutionsOpenInDependencyOrder) {
  struct Case {
    const char* file;
    TVSDotNetVersion version;
    std::vector<std::string> order;
  } cases[] = {
      {"vs2002/Reporting.sln",
       TVSDotNetVersion::vs2002,
       {"Reporter", "Tools.Core", "NativeHelper"}},
      {"vs2003/Billing.sln",
       TVSDotNetVersion::vs2003,
       {"Billing.Core", "BillingBridge", "WebApp", "BillingConsole", "NativeCalc"}},
      {"vs2005/OrderDesk.sln",
       TVSDotNetVersion::vs2005,
       {"http://localhost/OrderSite/", "Orders.Core", "OrderNative", "OrderTool", "OrderSetup"}},
      {"vs2008/Greeting.sln",
       TVSDotNetVersion::vs2008,
       {"Greeting.Lib", "Greeting.Console", "Greeting.Tests"}},
      {"vs2008/Mixed.sln",
       TVSDotNetVersion::vs2008,
       {"Greeting.Lib", "Greeting.Console", "GreetingNative", "GreetingSetup"}},
  };
  for (const auto& c : cases) {
    auto s = OpenSolution(std::string(QV_EXAMPLES_DIR) + "/" + c.file, false);
    EXPECT_EQ(s->GetVersion(), c.version) << c.file;
    EXPECT_EQ(Names(s), c.order) << c.file;
  }
  auto native = OpenSolution(std::string(QV_EXAMPLES_DIR) + "/vs2005/OrderDesk.sln", false)
                    ->GetProjects()
                    ->GetItem(2);
  EXPECT_EQ(ExtractFileName(native->GetVersionInfoFile()), "other.rc");
}

}  // namespace
