#include "QvPackage.h"

#include <gtest/gtest.h>

#include "QvPlatform.h"
#include "support/ErrorOf.h"
#include "support/RecordingServices.h"

using namespace qv;
using qvtest::ErrorOf;

namespace {

TEST(TQvPackageModule, CallsTheEntryPointsInOrder) {
  qvtest::RecordingServices services;
  auto m = TQvPackageModule::Load(QV_TEST_PACKAGE);
  std::string error;
  void* handle = platform::LoadModule(QV_TEST_PACKAGE, error);
  auto trace =
      reinterpret_cast<const char* (*)()>(platform::ModuleSymbol(handle, "TestPackageTrace"));
  ASSERT_TRUE(trace);

  EXPECT_STREQ(m->InfoTable()->PackageName, "TestPackage");
  m->Initialize();
  m->Register(true);
  m->Finalize();
  m->Finalize();  // only once
  EXPECT_STREQ(trace(), "initA;initB;register(true);finitB;finitA;");
  EXPECT_EQ(services.Calls, std::vector<std::string>{"constant TestConst=7"});
  platform::UnloadModule(handle);
}

// A shared library that is not a package lacks the entry points. (A missing file is the host's
// package loader suite's.)
TEST(TQvPackageModule, ReportsAMissingEntryPointClearly) {
  EXPECT_EQ(ErrorOf([] { TQvPackageModule::Load(QV_NOT_A_PACKAGE); }),
            std::string("Package ") + QV_NOT_A_PACKAGE + " does not export Initialize");
}

}  // namespace
