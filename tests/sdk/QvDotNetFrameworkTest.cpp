#include "QvDotNetFramework.h"

#include <gtest/gtest.h>

#include "QvProcess.h"

using namespace qv;

namespace {

// Each value comes back whole from the command-line split the runner does, ";" included.
TEST(QuoteMSBuildArg, KeepsAValueWholeAsOnePropertyValue) {
  const std::pair<std::string, std::string> cases[] = {
      {"Release", "Release"},
      {"Any CPU", "\"Any CPU\""},
      {"DEBUG;TRACE;EXTRA", "DEBUG%3BTRACE%3BEXTRA"},
      {"100%", "100%25"},
      {"C:\\My Refs;D:\\Other", "\"C:\\My Refs%3BD:\\Other\""},
      {"say \"x\"", "\"say %22x%22\""},
  };
  for (const auto& [value, quoted] : cases) {
    EXPECT_EQ(QuoteMSBuildArg(value), quoted) << value;
    std::string unquoted = quoted;
    std::erase(unquoted, '"');
    EXPECT_EQ(SplitCommandLine("/p:A=" + quoted), std::vector<std::string>{"/p:A=" + unquoted})
        << value;
  }
}

}  // namespace
