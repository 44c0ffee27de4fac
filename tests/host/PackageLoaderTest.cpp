#include "PackageLoader.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "HostServices.h"
#include "QvSysUtils.h"
#include "support/ErrorOf.h"
#include "support/TempDir.h"

using qvhost::FindPackageFiles;
using qvhost::TPackageLoader;
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

TEST(TPackageLoader, LoadsAPackageOnceAndRegistersIt) {
  qvhost::THostServices services;
  qv::QvActionServices = &services;
  qv::QvScriptingServices = &services;
  qv::QvOptionsServices = &services;
  {
    TPackageLoader loader;
    std::string package = QV_HOST_TEST_PACKAGE;
    std::string sameFile = qv::ExtractFilePath(package) + "../host/" + qv::ExtractFileName(package);
    loader.Load({package, sameFile}, false);
    EXPECT_EQ(loader.Count(), 1u);
    EXPECT_EQ(services.Actions().size(), 7u);
    std::string error = qvtest::ErrorOf([&] { loader.Load({"/nonexistent/x.qvp"}, false); });
    EXPECT_TRUE(error.starts_with("Cannot load package /nonexistent/x.qvp : ")) << error;
    services.ReleaseOptions();
  }
  qv::QvActionServices = nullptr;
  qv::QvScriptingServices = nullptr;
  qv::QvOptionsServices = nullptr;
}

}  // namespace
