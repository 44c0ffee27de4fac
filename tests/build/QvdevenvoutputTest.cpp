#include "Qvdevenvoutput.h"

#include <gtest/gtest.h>

using namespace qv;

namespace {

TEST(DevEnvOutput, LinesAreClassifiedByWholeWords) {
  const std::pair<const char*, TStatusTag> cases[] = {
      {"Build complete -- 0 errors, 0 warnings", TStatusTag::Plain},
      {"------ Build started: Project: A, Configuration: Release .NET ------", TStatusTag::Plain},
      {"error at the very start", TStatusTag::Plain},
      {"a.cs(3,7): error CS0103: The name 'x' does not exist", TStatusTag::Error},
      {"Build: 1 succeeded, 10 failed, 0 skipped", TStatusTag::Error},
      {"========== Build: 3 succeeded, 0 failed, 0 skipped ==========", TStatusTag::Success},
      {"c.cpp(1) : warning C4996: 'strcpy' was declared deprecated", TStatusTag::Warning},
      {"Rebuild All: 0 succeeded, 0 failed, 0 skipped", TStatusTag::Plain},
      {"x|ERROR|y", TStatusTag::Error},
      {"the errors were many", TStatusTag::Plain},
  };
  for (const auto& [line, tag] : cases)
    EXPECT_EQ(ClassifyByWords(line), tag) << line;
}

TEST(DevEnvOutput, FailedProjectsNeedAFailureCountAboveZero) {
  const std::pair<const char*, bool> cases[] = {
      {"    Build: 1 succeeded, 10 failed, 0 skipped\r\n", true},
      {"Build: 0 succeeded, 01 failed, 3 skipped", true},
      {"Build: 2 succeeded, 0 failed, 0 skipped", false},
      {"Build: 2 succeeded, 00 failed, 0 skipped", false},
      {"Build 1 succeeded, 1 failed, 0 skipped", false},
      {"Build: 1 succeeded, 1 failed", false},
  };
  for (const auto& [text, failed] : cases)
    EXPECT_EQ(ReportsFailedProjects(text), failed) << text;
  EXPECT_EQ(ReadDevEnvCounts("Compile complete -- 2 errors, 7 warnings"),
            std::pair(int64_t{2}, int64_t{7}));
  EXPECT_EQ(ReadDevEnvCounts("Build started"), std::nullopt);
}

}  // namespace
