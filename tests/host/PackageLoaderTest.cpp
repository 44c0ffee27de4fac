#include "PackageLoader.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "QvSysUtils.h"
#include "support/ErrorOf.h"
#include "support/TempDir.h"

using qvhost::FindPackageFiles;
using qvhosttest::TestHost;
using qvtest::TempDir;

namespace {

TEST(TPackageLoader, FindsThePackagesOfAFolderInNameOrder) {
  TempDir dir;
  for (const char* name : {"b.qvp", "A.QVP", "c.qvp.txt", "a.so", "sub/d.qvp"})
    dir.Write(name, "");
  std::filesystem::create_directory(dir.File("e.qvp"));
  EXPECT_EQ(FindPackageFiles(dir.Path()),
            (std::vector<std::string>{dir.File("A.QVP"), dir.File("b.qvp")}));
  EXPECT_TRUE(FindPackageFiles(dir.File("missing")).empty());
}

// The package named twice (a second path to the same file) is loaded once: a second
// registration of its actions would throw.
TEST(TPackageLoader, LoadsAPackageOnceAndRegistersIt) {
  TempDir dir;
  std::string error =
      qvtest::ErrorOf([&] { TestHost(dir, [](auto& s) { s.Packages = {"/nonexistent/x.qvp"}; }); });
  EXPECT_TRUE(error.starts_with("Cannot load package /nonexistent/x.qvp : ")) << error;
  std::string package = QV_HOST_TEST_PACKAGE;
  std::string sameFile = qv::ExtractFilePath(package) + "../host/" + qv::ExtractFileName(package);
  TestHost host(dir, [&](auto& s) { s.Packages.push_back(sameFile); });
  EXPECT_EQ(host.Session->Services().Actions().size(), 7u);
}

}  // namespace
