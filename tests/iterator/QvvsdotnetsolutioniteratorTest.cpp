#include "Qvvsdotnetsolutioniterator.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "QvSysUtils.h"
#include "support/ErrorOf.h"
#include "support/RecordingActionContext.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::TempDir;

namespace {

const std::string kSln = QV_EXAMPLES_DIR "/vs2005/OrderDesk.sln";

class Iterator : public testing::Test {
 protected:
  TempDir dir;
  IntfPtr<qvtest::RecordingActionContext> ctx = qvtest::RecordingActionContext::Create();
  TQvVSSolutionIterator it;
  Iterator() { it.BindContext(ctx); }
  // The values of every iteration, as the host would ask for them.
  std::vector<std::string> Values() {
    std::vector<std::string> values;
    for (int i = 1; i <= it.GetIterationCount(); ++i) {
      it.SetCurrentIteration(i);
      values.push_back(it.GetCurrentValue());
    }
    return values;
  }
};

TEST_F(Iterator, LogsAndYieldsEveryProjectInDependencyOrder) {
  ctx->Variables["EX"] = QV_EXAMPLES_DIR;
  it.SetPropValue("Solution", "%EX%/vs2005/OrderDesk.sln");
  EXPECT_EQ(it.GetFormattedDescription(), "VS.NET Solution Iterator [ %EX%/vs2005/OrderDesk.sln ]");
  ASSERT_TRUE(it.BeforeFirstIteration());
  // Then one line a project, in the order of the values.
  std::vector<std::string> messages = ctx->Messages();
  messages.resize(4);
  EXPECT_EQ(messages, (std::vector<std::string>{
                          "[0] Loading solution file : " + kSln,
                          "[0] Found 5 projects:", "[0] Sorting in dependency order...",
                          "[0] http://localhost/OrderSite/ - http://localhost/OrderSite - "
                          "{85C30794-4053-4F2F-9207-D59943FE052D}"}));
  EXPECT_EQ(ctx->Messages().size(), 8u);
  // Full paths against the solution's folder by default; a web project's address as the
  // expansion leaves it.
  EXPECT_EQ(Values()[1],
            qvtest::NativePath(QV_EXAMPLES_DIR "/vs2005/Orders.Core/Orders.Core.csproj"));
  it.SetPropValue("IterateValue", "svName");
  ASSERT_TRUE(it.BeforeFirstIteration());
  EXPECT_EQ(Values(), (std::vector<std::string>{"http://localhost/OrderSite/", "Orders.Core",
                                                "OrderNative", "OrderTool", "OrderSetup"}));
  const std::pair<const char*, std::string> values[] = {
      {"svRelativePath", "Orders.Core\\Orders.Core.csproj"},
      {"svProjectId", "{AD75099E-1146-4585-A34E-3BC67AB24FE6}"}};
  for (const auto& [kind, second] : values) {
    it.SetPropValue("IterateValue", kind);
    ASSERT_TRUE(it.BeforeFirstIteration());
    EXPECT_EQ(Values()[1], second) << kind;
  }
  EXPECT_EQ(Values()[0], "{85C30794-4053-4F2F-9207-D59943FE052D}");
}

TEST_F(Iterator, FailuresStopTheLoopBeforeItStarts) {
  struct Case {
    std::string solution, last;
  } cases[] = {
      {dir.File("missing.sln"), "[3] Solution not found : " + dir.File("missing.sln")},
      {dir.Write("bad.sln", "nonsense\r\n"),
       "[3] Failed to load solution file : Invalid Visual Studio Solution Header : nonsense"},
      {dir.Write("empty.sln",
                 "\r\nMicrosoft Visual Studio Solution File, Format Version 9.00\r\n"
                 "Global\r\nEndGlobal\r\n"),
       "[0] Sorting in dependency order..."},
  };
  for (const auto& c : cases) {
    it.SetPropValue("Solution", c.solution);
    bool ok = it.BeforeFirstIteration();
    EXPECT_EQ(ctx->Messages().back(), c.last);
    EXPECT_EQ(ok, c.last[1] == '0');
  }
  EXPECT_EQ(it.GetIterationCount(), 0);
  // The global dependency section of a 2003 solution counts, and a cycle is thrown out of
  // the action: the 2003 sample's BillingBridge needs NativeCalc, which here needs it back.
  std::filesystem::copy(QV_EXAMPLES_DIR "/vs2003", dir.Path(),
                        std::filesystem::copy_options::recursive);
  const std::string bridge = "{01578B61-B130-42DE-990A-AB204BBBE75F}";
  const std::string calc = "{A9861198-0140-42EB-8BD2-DA2CC313DFCA}";
  const std::string needs = "\t\t" + bridge + ".0 = " + calc + "\r\n";
  std::string sln = dir.File("Billing.sln");
  dir.Write("Billing.sln", StringReplaceAll(TempDir::Read(sln), needs,
                                            needs + "\t\t" + calc + ".0 = " + bridge + "\r\n"));
  it.SetPropValue("Solution", sln);
  EXPECT_EQ(qvtest::ErrorOf([&] { it.BeforeFirstIteration(); }),
            "Solution has invalid circular dependancies between : NativeCalc and BillingBridge");
}

}  // namespace
