#include "QvPaths.h"

#include <gtest/gtest.h>

#include "support/TempDir.h"

using namespace qv;

#ifndef _WIN32  // Windows file systems ignore case themselves
TEST(QvPaths, ResolvesComponentsWithoutRegardToCase) {
  qvtest::TempDir dir;
  std::string file = dir.Write("Properties/AssemblyInfo.cs", "x");
  dir.Write("Twin/a.cs", "lower");
  dir.Write("Twin/A.cs", "upper");
  const std::pair<std::string, std::string> cases[] = {
      // asked, found
      {dir.File("properties/assemblyinfo.cs"), file},
      {dir.File("Twin/a.cs"), dir.File("Twin/a.cs")},  // exact match wins
      {dir.File("twin/A.cs"), dir.File("Twin/A.cs")},
      {dir.File("Twin/A.CS"), dir.File("Twin/A.CS")},  // two candidates: missing
      {dir.File("properties/missing.cs"), dir.File("properties/missing.cs")},
  };
  for (const auto& [asked, found] : cases)
    EXPECT_EQ(ResolvePathCase(asked), found) << asked;
  EXPECT_FALSE(FileExistsAnyCase(dir.File("Twin/A.CS")));
  // A file created after the folder was listed is found: the listing follows the folder.
  std::string later = dir.Write("Properties/Settings.cs", "y");
  EXPECT_EQ(ResolvePathCase(dir.File("properties/settings.cs")), later);
}
#endif
