#include "QvCanonicalMessage.h"

#include <gtest/gtest.h>

namespace {

// "E|W origin line column subcategory code text project", or "-" for no match.
std::string Read(std::string_view line) {
  auto m = qv::ParseCanonicalMessage(line);
  if (!m) return "-";
  return std::string(m->Error ? "E|" : "W|") + std::string(m->Origin) + "|" +
         std::to_string(m->Line) + "|" + std::to_string(m->Column) + "|" +
         std::string(m->Subcategory) + "|" + std::string(m->Code) + "|" + std::string(m->Text) +
         "|" + std::string(m->Project);
}

TEST(ParseCanonicalMessage, ReadsEachFormAndRejectsTheRest) {
  const std::pair<const char*, const char*> cases[] = {
      {"a.cs(3,7): error CS0103: The name 'x' does not exist",
       "E|a.cs|3|7||CS0103|The name 'x' does not exist|"},
      {"  2>C:\\src\\b c\\Main.cpp(12): fatal error C1083: Cannot open include file",
       "E|C:\\src\\b c\\Main.cpp|12|0|fatal|C1083|Cannot open include file|"},
      {"/p/x.vb(1,2,1,9): Warning BC42024: Unused local [/p/x.vbproj]",
       "W|/p/x.vb|1|2||BC42024|Unused local|/p/x.vbproj"},
      {"x.cs(4-6): warning CS1: t", "W|x.cs|4|0||CS1|t|"},
      {"Main.cpp : error LNK2019: unresolved external",
       "E|Main.cpp|0|0||LNK2019|unresolved external|"},
      {"MSBUILD : error MSB1009: Project file does not exist.",
       "E|MSBUILD|0|0||MSB1009|Project file does not exist.|"},
      {"error CS2001: Source file 'a.cs' could not be found",
       "E||0|0||CS2001|Source file 'a.cs' could not be found|"},
      {"tool : warning : no code here\r", "W|tool|0|0|||no code here|"},
      {"a: error X: t", "E|a|0|0||X|t|"},  // an origin of one letter is no drive
      {"a.cs(1,1): error X1: index [i] out of range", "E|a.cs|1|1||X1|index [i] out of range|"},
      {"a.cs(99999999999999999999,1): error X1: t", "E|a.cs|9223372036854775807|1||X1|t|"},
      {"Build succeeded.", "-"},
      {"0 Error(s)", "-"},
      {"a.cs(3,7): errors CS1: plural is no category", "-"},
      {"a.cs(3,7): error two words: t", "-"},
      {"a.cs(3,7): myerror CS1: glued word", "-"},
      {"MSBuild.exe returned Error code : 1", "-"},
      {"C:", "-"},
      {"", "-"},
  };
  for (const auto& [line, expected] : cases)
    EXPECT_EQ(Read(line), expected) << line;
}

}  // namespace
