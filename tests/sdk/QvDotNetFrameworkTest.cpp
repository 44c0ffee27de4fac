#include "QvDotNetFramework.h"

#include <gtest/gtest.h>

#include "QvProcess.h"

using namespace qv;

namespace {

TEST(QuoteMSBuildArg, KeepsAValueWholeAsOnePropertyValue) {
  EXPECT_EQ(QuoteMSBuildArg("Release"), "Release");
  EXPECT_EQ(QuoteMSBuildArg("Any CPU"), "\"Any CPU\"");
  EXPECT_EQ(QuoteMSBuildArg("DEBUG;TRACE;EXTRA"), "DEBUG%3BTRACE%3BEXTRA");
  EXPECT_EQ(QuoteMSBuildArg("100%"), "100%25");
  EXPECT_EQ(QuoteMSBuildArg("C:\\My Refs;D:\\Other"), "\"C:\\My Refs%3BD:\\Other\"");
  EXPECT_EQ(QuoteMSBuildArg("say \"x\""), "\"say %22x%22\"");
}

TEST(QuoteMSBuildArg, ValuesSurviveTheCommandLineSplit) {
  std::string params = "/t:Build /p:Configuration=Debug;Platform=" + QuoteMSBuildArg("Any CPU") +
                       ";DefineConstants=" + QuoteMSBuildArg("DEBUG;TRACE;EXTRA") +
                       ";ReferencePath=" + QuoteMSBuildArg("C:\\a b;C:\\c") + " /v:normal";
  auto args = SplitCommandLine(params);
  ASSERT_EQ(args.size(), 3u);
  EXPECT_EQ(args[1],
            "/p:Configuration=Debug;Platform=Any CPU;DefineConstants=DEBUG%3BTRACE%3BEXTRA;"
            "ReferencePath=C:\\a b%3BC:\\c");
}

}  // namespace
