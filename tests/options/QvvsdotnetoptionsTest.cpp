#include "Qvvsdotnetoptions.h"

#include <gtest/gtest.h>

#include <map>

#include "QvRegistry.h"
#include "support/RecordingServices.h"

using namespace qv;

namespace {

// An options section in memory; records the writes in order.
struct MemorySection : IQvOptionsReader, IQvOptionsWriter {
  std::map<std::string, std::string> Strings;
  std::map<std::string, int64_t> Integers;
  std::vector<std::string> Writes;
  std::string ReadString(const std::string& key, const std::string& def) override {
    auto it = Strings.find(key);
    return it == Strings.end() ? def : it->second;
  }
  int64_t ReadInteger(const std::string& key, int64_t def) override {
    auto it = Integers.find(key);
    return it == Integers.end() ? def : it->second;
  }
  void WriteString(const std::string& key, const std::string& value) override {
    Writes.push_back(key + "=" + value);
  }
  void WriteInteger(const std::string& key, int64_t value) override {
    Writes.push_back(key + "=" + std::to_string(value));
  }
};

// Installs a registry export as the host's registry for one test.
struct ScopedRegistry {
  std::unique_ptr<TRegFileRegistry> Reg;
  IQvRegistryReader* Saved = QvRegistry;
  explicit ScopedRegistry(const std::string& body)
      : Reg(TRegFileRegistry::LoadFromText("REGEDIT4\n" + body, "test.reg")) {
    QvRegistry = Reg.get();
  }
  ~ScopedRegistry() { QvRegistry = Saved; }
};

IntfPtr<TVSDotNetOptions> NewOptions() {
  return IntfPtr<TVSDotNetOptions>(new TVSDotNetOptions);
}

TEST(TVSDotNetOptions, RegistryFillsEmptyLocationsAndPicksTheDefault) {
  ScopedRegistry reg(
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\VisualStudio\\8.0]\n"
      "\"InstallDir\"=\"C:\\\\Program Files\\\\Microsoft Visual Studio "
      "8\\\\Common7\\\\IDE\\\\\"\n");
  MemorySection store;
  auto o = NewOptions();
  o->LoadOptions(store);
  EXPECT_EQ(o->GetDefaultVSVersion(), static_cast<uint8_t>(TVSDotNetVersion::vs2005));
  EXPECT_EQ(o->GetDevEnv2005Location(),
            "C:\\Program Files\\Microsoft Visual Studio 8\\Common7\\IDE\\");
  EXPECT_EQ(o->GetDevEnv2008Location(), "");
  EXPECT_TRUE(o->IsModified()) << "the discovered location is saved at the next save";

  o->SaveOptions(store);
  EXPECT_FALSE(o->IsModified());
  EXPECT_EQ(store.Writes,
            (std::vector<std::string>{
                "MSDevPath=", "MSDevPath2003=",
                "MSDevPath2005=C:\\Program Files\\Microsoft Visual Studio 8\\Common7\\IDE\\",
                "MSDevPath2008=", "DefVSVersion=2", "StandaloneMSTestDir="}));
}

TEST(TVSDotNetOptions, StoredValuesWinAndAreNotModifications) {
  ScopedRegistry reg(
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\VisualStudio\\9.0]\n\"InstallDir\"=\"D:"
      "\\\\VS9\\\\\"\n");
  MemorySection store;
  store.Strings = {{"MSDevPath2008", "  E:\\VS2008\\IDE\\ "},
                   {"StandaloneMSTestDir", "F:\\MSTest"}};
  store.Integers = {{"DefVSVersion", 0}};
  auto o = NewOptions();
  o->LoadOptions(store);
  EXPECT_EQ(o->GetDefaultVSVersion(), 0) << "kept although no 2002 location exists";
  EXPECT_EQ(o->GetDevEnv2008Location(), "  E:\\VS2008\\IDE\\ ");
  EXPECT_EQ(o->GetDevEnvLocation(3), "E:\\VS2008\\IDE\\");
  EXPECT_EQ(o->GetStandaloneMSTestDir(), "F:\\MSTest");
  EXPECT_FALSE(o->IsModified());
  EXPECT_EQ(o->GetHighestInstalledVSVersion(), TVSDotNetVersion::vs2008);
}

TEST(TVSDotNetOptions, NothingConfiguredFallsBackToVs2005) {
  ScopedRegistry reg("");
  MemorySection store;
  store.Integers = {{"DefVSVersion", -7}};
  auto o = NewOptions();
  o->LoadOptions(store);
  EXPECT_EQ(o->GetHighestInstalledVSVersion(), TVSDotNetVersion::vs2005);
  EXPECT_EQ(o->GetDefaultVSVersion(), 2);
  EXPECT_FALSE(o->IsModified());
  store.Integers = {{"DefVSVersion", 0x105}};
  o->LoadOptions(store);
  EXPECT_EQ(o->GetDefaultVSVersion(), 5) << "the low byte is stored";
}

TEST(TVSDotNetOptions, ModifiedFlagRules) {
  auto o = NewOptions();
  o->SetDevEnv2003Location("");
  o->SetDefaultVSVersion(2);
  o->SetStandaloneMSTestDir("");
  EXPECT_FALSE(o->IsModified()) << "same values";
  o->SetDevEnv2003Location("C:\\VS7.1\\");
  EXPECT_TRUE(o->IsModified());
  o->SetModified(false);
  o->SetDevEnv2003Location("c:\\vs7.1\\");
  EXPECT_TRUE(o->IsModified()) << "comparison is case-sensitive";
  o->SetModified(false);
  o->SetStandaloneMSTestDir("X");
  EXPECT_TRUE(o->IsModified());
  o->SetStandaloneMSTestDir("X");
  EXPECT_TRUE(o->IsModified()) << "an unchanged value keeps the flag as it was";
  o->SetModified(false);
  o->SetStandaloneMSTestDir("X");
  EXPECT_FALSE(o->IsModified());
}

TEST(TVSDotNetOptions, LocationsByVersion) {
  // The uneven ".NET" in the names is deliberate.
  const char* names[] = {"Visual Studio 2002",     "Visual Studio.NET 2003",
                         "Visual Studio.NET 2005", "Visual Studio.NET 2008",
                         "Visual Studio",          "Visual Studio"};
  for (int v = 0; v < 6; ++v)
    EXPECT_EQ(GetVSName(v), names[v]);
  auto o = NewOptions();
  o->SetDevEnv2002Location("A");
  EXPECT_EQ(o->GetDevEnvLocation(0), "A");
  EXPECT_EQ(o->GetDevEnvLocation(4), "");
  EXPECT_EQ(o->GetDevEnvLocation(5), "");
  EXPECT_EQ(o->GetDevEnvLocation(-1), "");
}

TEST(TVSDotNetOptions, ScriptsAndTheAccessorReachTheRegisteredObject) {
  EXPECT_FALSE(VSDotNetOptions()) << "no host, no options";
  qvtest::RecordingServices services;
  RegisterOptions();
  EXPECT_EQ(services.Calls, (std::vector<std::string>{
                                "options TVSDotNetOptions DEVENV",
                                "global VSDotNetOptions function VSDotNetOptions: Variant;",
                                "enum TVSDotNetVersion vs2002,vs2003,vs2005,vs2008,vsUnknown"}));
  IntfPtr<IQvVSDotNetOptions> o = VSDotNetOptions();
  ASSERT_TRUE(o);
  auto value = services.CallGlobal("VSDotNetOptions", {});
  auto* obj = dynamic_cast<TVSDotNetOptions*>(std::get<IntfPtr<IInterface>>(value).Get());
  ASSERT_TRUE(obj);
  obj->SetPropValue("DevEnvLocation", "C:\\VS7\\");
  obj->SetPropValue("DefaultVSVersion", "vs2008");
  EXPECT_EQ(o->GetDevEnv2002Location(), "C:\\VS7\\");
  EXPECT_EQ(o->GetDefaultVSVersion(), 3);
  EXPECT_EQ(obj->GetPropValue("DefaultVSVersion"), "vs2008");
}

TEST(NormalizeDevEnvEdits, CutsExecutableNamesWithThe2008Asymmetry) {
  struct Case {
    TDevEnvEdits in, out;
  } cases[] = {
      {{"C:\\VS7\\devenv.exe", "C:\\VS71\\DEVENV.COM", "C:\\VS8\\", "C:\\VS9\\devenv.exe"},
       {"C:\\VS7\\", "C:\\VS71\\", "C:\\VS8\\", "C:\\VS9\\devenv.exe"}},
      {{"", "", "C:\\VS8\\", "D:\\VS9\\Common7\\IDE\\devenv.com"},
       {"", "", "D:\\VS9\\Common7\\IDE\\", "D:\\VS9\\Common7\\IDE\\devenv.com"}},
      {{"/opt/vs/devenv.com", "", "", ""}, {"/opt/vs/", "", "", ""}},
  };
  for (auto c : cases) {
    NormalizeDevEnvEdits(c.in);
    EXPECT_EQ(c.in, c.out);
  }
}

}  // namespace
