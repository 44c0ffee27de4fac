#include "QvassemblyinfoRewriter.h"

#include <gtest/gtest.h>

using namespace qv;
using A = TQvAssemblyAttribute;

namespace {
// The lines after rewriting, each ended by "\n", with Title, Version and Comment switched on
// and the rest off. (What the rewriter logs is pinned by QvassemblyinfoTest's transcript.)
std::string Rewrite(TStringList lines) {
  auto values = [](A a) -> std::optional<std::string> {
    if (a == A::aaTitle) return "New Title";
    if (a == A::aaVersion) return "2|1|40|0";
    if (a == A::aaComment) return "comment";
    return std::nullopt;
  };
  RewriteAssemblyInfo(lines, false, values, [](const std::string&) {});
  std::string r;
  for (const std::string& l : lines)
    r += l + "\n";
  return r;
}
}  // namespace

// Each case is followed by a title and a version line, which are rewritten whatever it is.
// (The shapes of the sample files under fixtures/assemblyinfo are stamped by QvassemblyinfoTest:
// a blank before the colon, a switched-off attribute and J#'s comment form are left there.)
TEST(QvassemblyinfoRewriter, RewritesOrLeavesEachLine) {
  const std::pair<const char*, const char*> cases[] = {
      // second null: unchanged
      {"<Assembly: AssemblyTitle(\"Old\")> ", "<Assembly: AssemblyTitle(\"New Title\")> "},
      {"\t[ assembly:System.Reflection.AssemblyTitleAttribute ( \"Old\" ) ]",
       "[assembly: System.Reflection.AssemblyTitleAttribute(\"New Title\") ]"},
      {"[assembly: AssemblyTitle(@\"C:\\x\")] // bare",
       "[assembly: AssemblyTitle(New Title)] // bare"},
      {"[assembly: AssemblyTitle(\"A\"), AssemblyCompany(\"B\")]",
       "[assembly: AssemblyTitle(\"New Title\"), AssemblyCompany(\"B\")]"},
      {"[assembly: assemblytitle(\"Old\")]", nullptr},
      {"[assembly: AssemblyComment(\"Old\")]", nullptr},
      {"//[assembly: AssemblyTitle(\"Old\")]", nullptr},
      {"x = 1; [assembly: AssemblyTitle(\"Old\")]", nullptr},
      {"[assembly: AssemblyTitle(\"Old)]", nullptr},
  };
  for (const auto& [in, out] : cases) {
    EXPECT_EQ(
        Rewrite({in, "[assembly: AssemblyTitle(\"T\")]", "[assembly: AssemblyVersion(\"V\")]"}),
        std::string(out ? out : in) + "\n[assembly: AssemblyTitle(\"New Title\")]\n" +
            "[assembly: AssemblyVersion(\"2.1.40.0\")]\n")
        << in;
  }
}

// The last attribute line, matched or not, gives appended lines their shape and closing text.
// (In a managed C++ file, with "Attribute" after the name, and without any attribute line,
// starting with the character of code 0, as the sample files show.)
TEST(QvassemblyinfoRewriter, AppendsMissingAttributesInTheShapeOfTheLastLine) {
  EXPECT_EQ(Rewrite({"<Assembly: Guid(\"x\")> ' id", "// AssemblyInfo"}),
            "<Assembly: Guid(\"x\")> ' id\n// AssemblyInfo\n"
            "<Assembly: AssemblyTitle(\"New Title\")> ' id\n"
            "<Assembly: AssemblyVersion(\"2.1.40.0\")> ' id\n");
}
