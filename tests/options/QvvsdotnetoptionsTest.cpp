#include "Qvvsdotnetoptions.h"

#include <gtest/gtest.h>

#include <map>

#include "QvRegistry.h"
#include "support/RecordingServices.h"

using namespace qv;

namespace {

// An options section in memory, integers held as text; records the writes in order.
struct MemorySection : IQvOptionsReader, IQvOptionsWriter {
  std::map<std::string, std::string> Values;
  std::vector<std::string> Writes;
  std::string ReadString(const std::string& key, const std::string& def) override {
    return Values.contains(key) ? Values[key] : def;
  }
  int64_t ReadInteger(const std::string& key, int64_t def) override {
    return Values.contains(key) ? std::stoll(Values[key]) : def;
  }
  void WriteString(const std::string& key, const std::string& value) override {
    Writes.push_back(key + "=" + value);
  }
  void WriteInteger(const std::string& key, int64_t value) override {
    WriteString(key, std::to_string(value));
  }
};

// New options, loaded from `store` with a registry export as the host's registry.
class Options : public testing::Test {
 protected:
  MemorySection store;
  IntfPtr<TVSDotNetOptions> o{new TVSDotNetOptions};
  std::unique_ptr<TRegFileRegistry> registry;
  IQvRegistryReader* savedRegistry = QvRegistry;
  ~Options() override { QvRegistry = savedRegistry; }
  void Load(const std::string& registryBody) {
    registry = TRegFileRegistry::LoadFromText("REGEDIT4\n" + registryBody, "test.reg");
    QvRegistry = registry.get();
    o->LoadOptions(store);
  }
};

TEST_F(Options, RegistryFillsEmptyLocationsAndPicksTheDefault) {
  Load(
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\VisualStudio\\8.0]\n"
      "\"InstallDir\"=\"C:\\\\Program Files\\\\Microsoft Visual Studio "
      "8\\\\Common7\\\\IDE\\\\\"\n");
  EXPECT_EQ(o->GetDefaultVSVersion(), static_cast<uint8_t>(TVSDotNetVersion::vs2005));
  EXPECT_EQ(o->GetDevEnv2005Location(),
            "C:\\Program Files\\Microsoft Visual Studio 8\\Common7\\IDE\\");
  EXPECT_TRUE(o->IsModified()) << "the discovered location is saved at the next save";
  o->SaveOptions(store);
  EXPECT_FALSE(o->IsModified());
  EXPECT_EQ(store.Writes,
            (std::vector<std::string>{
                "MSDevPath=", "MSDevPath2003=",
                "MSDevPath2005=C:\\Program Files\\Microsoft Visual Studio 8\\Common7\\IDE\\",
                "MSDevPath2008=", "DefVSVersion=2", "StandaloneMSTestDir="}));
}

TEST_F(Options, StoredValuesWinAndAreNotModifications) {
  store.Values = {{"MSDevPath2008", "  E:\\VS2008\\IDE\\ "},
                  {"StandaloneMSTestDir", "F:\\MSTest"},
                  {"DefVSVersion", "0"}};
  Load("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\VisualStudio\\9.0]\n\"InstallDir\"=\"D:\\\\\"\n");
  EXPECT_EQ(o->GetDefaultVSVersion(), 0) << "kept although no 2002 location exists";
  EXPECT_EQ(o->GetDevEnv2008Location(), "  E:\\VS2008\\IDE\\ ");
  EXPECT_EQ(o->GetDevEnvLocation(3), "E:\\VS2008\\IDE\\");
  EXPECT_EQ(o->GetDevEnvLocation(4) + o->GetDevEnvLocation(-1), "") << "no such edition";
  EXPECT_EQ(o->GetStandaloneMSTestDir(), "F:\\MSTest");
  EXPECT_FALSE(o->IsModified());
  EXPECT_EQ(o->GetHighestInstalledVSVersion(), TVSDotNetVersion::vs2008);
}

TEST_F(Options, NothingConfiguredFallsBackToVs2005) {
  store.Values = {{"DefVSVersion", "-7"}};
  Load("");
  EXPECT_EQ(o->GetHighestInstalledVSVersion(), TVSDotNetVersion::vs2005);
  EXPECT_EQ(o->GetDefaultVSVersion(), 2);
  EXPECT_FALSE(o->IsModified());
  store.Values = {{"DefVSVersion", "261"}};  // 0x105
  o->LoadOptions(store);
  EXPECT_EQ(o->GetDefaultVSVersion(), 5) << "the low byte is stored";
}

TEST_F(Options, ModifiedFlagRules) {
  o->SetDevEnv2003Location("");
  o->SetDefaultVSVersion(2);
  o->SetStandaloneMSTestDir("");
  EXPECT_FALSE(o->IsModified()) << "same values";
  o->SetDevEnv2003Location("C:\\VS7.1\\");
  o->SetModified(false);
  o->SetDevEnv2003Location("c:\\vs7.1\\");
  EXPECT_TRUE(o->IsModified()) << "comparison is case-sensitive";
  o->SetModified(false);
  o->SetStandaloneMSTestDir("X");
  o->SetStandaloneMSTestDir("X");
  EXPECT_TRUE(o->IsModified()) << "an unchanged value keeps the flag as it was";
  o->SetModified(false);
  o->SetStandaloneMSTestDir("X");
  EXPECT_FALSE(o->IsModified());
}

TEST_F(Options, ScriptsAndTheAccessorReachTheRegisteredObject) {
  EXPECT_FALSE(VSDotNetOptions()) << "no host, no options";
  qvtest::RecordingServices services;
  RegisterOptions();
  IntfPtr<IQvVSDotNetOptions> registered = VSDotNetOptions();
  ASSERT_TRUE(registered);
  auto value = services.CallGlobal("VSDotNetOptions", {});
  auto* obj = dynamic_cast<TVSDotNetOptions*>(std::get<IntfPtr<IInterface>>(value).Get());
  ASSERT_TRUE(obj);
  obj->SetPropValue("DevEnvLocation", "C:\\VS7\\");
  obj->SetPropValue("DefaultVSVersion", "vs2008");
  EXPECT_EQ(registered->GetDevEnv2002Location(), "C:\\VS7\\");
  EXPECT_EQ(registered->GetDefaultVSVersion(), 3);
  EXPECT_EQ(obj->GetPropValue("DefaultVSVersion"), "vs2008");
}

}  // namespace
