#include "QvassemblyinfoRewriter.h"

#include <gtest/gtest.h>

using namespace qv;
using A = TQvAssemblyAttribute;

namespace {
// Title, Version and Comment switched on; the rest off.
std::optional<std::string> Values(A a) {
  if (a == A::aaTitle) return std::string("New Title");
  if (a == A::aaVersion) return std::string("2|1|40|0");
  if (a == A::aaComment) return std::string("comment");
  return std::nullopt;
}

std::string Rewrite(TStringList lines, bool cpp, std::string* log = nullptr) {
  RewriteAssemblyInfo(lines, cpp, Values, [&](const std::string& s) {
    if (log) *log += s + "\n";
  });
  std::string r;
  for (const std::string& l : lines)
    r += l + "\n";
  return r;
}
}  // namespace

TEST(QvassemblyinfoRewriter, RewritesOrLeavesEachLine) {
  struct Case {
    const char* in;
    const char* out;  // null: unchanged
  } cases[] = {
      {"[assembly: AssemblyVersion(\"1.0.*\")]", "[assembly: AssemblyVersion(\"2.1.40.0\")]"},
      {"<Assembly: AssemblyTitle(\"Old\")> ", "<Assembly: AssemblyTitle(\"New Title\")> "},
      {"  [assembly :AssemblyTitle(\"Old\")]", nullptr},
      {"\t[ assembly:System.Reflection.AssemblyTitleAttribute ( \"Old\" ) ]",
       "[assembly: System.Reflection.AssemblyTitleAttribute(\"New Title\") ]"},
      {"[assembly:AssemblyVersionAttribute(\"1.0.*\")];",
       "[assembly: AssemblyVersionAttribute(\"2.1.40.0\")];"},
      {"[assembly: AssemblyTitle(@\"C:\\x\")] // bare",
       "[assembly: AssemblyTitle(New Title)] // bare"},
      {"[assembly: AssemblyTitle(\"A\"), AssemblyCompany(\"B\")]",
       "[assembly: AssemblyTitle(\"New Title\"), AssemblyCompany(\"B\")]"},
      {"[assembly: assemblytitle(\"Old\")]", nullptr},
      {"[assembly: AssemblyComment(\"Old\")]", nullptr},
      {"[assembly: AssemblyCompany(\"Old\")]", nullptr},
      {"//[assembly: AssemblyTitle(\"Old\")]", nullptr},
      {"x = 1; [assembly: AssemblyTitle(\"Old\")]", nullptr},
      {"/** @assembly AssemblyTitle(\"Old\") */", nullptr},
      {"[assembly: AssemblyTitle(\"Old)]", nullptr},
  };
  for (const Case& c : cases) {
    TStringList lines{c.in, "[assembly: AssemblyTitle(\"T\")]",
                      "[assembly: AssemblyVersion(\"V\")]"};
    std::string expected = std::string(c.out ? c.out : c.in) + "\n" +
                           "[assembly: AssemblyTitle(\"New Title\")]\n" +
                           "[assembly: AssemblyVersion(\"2.1.40.0\")]\n";
    EXPECT_EQ(Rewrite(lines, false), expected) << c.in;
  }
}

TEST(QvassemblyinfoRewriter, AppendsMissingAttributesInTheShapeOfTheLastLine) {
  std::string log;
  EXPECT_EQ(Rewrite({"<Assembly: Guid(\"x\")> ' id", "// AssemblyInfo"}, false, &log),
            "<Assembly: Guid(\"x\")> ' id\n// AssemblyInfo\n"
            "<Assembly: AssemblyTitle(\"New Title\")> ' id\n"
            "<Assembly: AssemblyVersion(\"2.1.40.0\")> ' id\n");
  EXPECT_EQ(log,
            "Adding Entry : AssemblyTitle Value : New Title\n"
            "Adding Entry : AssemblyVersion Value : 2.1.40.0\n");
  EXPECT_EQ(Rewrite({"[assembly:AssemblyTitleAttribute(\"Old\")];"}, true, &log),
            "[assembly: AssemblyTitleAttribute(\"New Title\")];\n"
            "[assembly: AssemblyVersionAttribute(\"2.1.40.0\")];\n");
  EXPECT_EQ(Rewrite({"using System;"}, false), std::string("using System;\n") + '\0' +
                                                   ": AssemblyTitle(\"New Title\")\n" + '\0' +
                                                   ": AssemblyVersion(\"2.1.40.0\")\n");
}
