#include "QvRegistry.h"

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/TempDir.h"

using namespace qv;

namespace {

// Two Visual Studio folders, values of other types, a removed value and a removed key.
const std::string kExport = qvtest::TempDir::Read(QV_FIXTURES_DIR "/registry/vs.reg");

const std::string kVs8 = "SOFTWARE\\Microsoft\\VisualStudio\\8.0";
const std::string kVs9 = "SOFTWARE\\Microsoft\\VisualStudio\\9.0";

TEST(TRegFileRegistry, ReadsStringValuesOfAnExport) {
  qvtest::TempDir dir;
  std::string utf16 = "\xFF\xFE";  // as regedit writes its exports
  for (char c : kExport)
    utf16 += std::string{c, '\0'};
  for (const auto& reg : {TRegFileRegistry::LoadFromText(kExport, "vs.reg"),
                          TRegFileRegistry::LoadFromFile(dir.Write("vs.reg", utf16))}) {
    auto read = [&](const std::string& key, const std::string& name,
                    TRegistryRoot root = TRegistryRoot::LocalMachine) {
      std::string v;
      return reg->ReadString(root, key, name, v) ? v : "(not found)";
    };
    EXPECT_EQ(read(kVs8, "InstallDir"),
              "C:\\Program Files\\Microsoft Visual Studio 8\\Common7\\IDE\\");
    EXPECT_EQ(read("software\\microsoft\\visualstudio\\8.0", "quoted"), "say \"hi\"");
    EXPECT_EQ(read(kVs8, ""), "default value");
    EXPECT_EQ(read(kVs9, "InstallDir"), "D:\\VS9\\");
    EXPECT_EQ(read(kVs8, "Flags"), "(not found)") << "not a string";
    EXPECT_EQ(read(kVs9, "Gone"), "(not found)");
    EXPECT_EQ(read("SOFTWARE\\Old", "A"), "(not found)");
    EXPECT_EQ(read(kVs9, "InstallDir", TRegistryRoot::CurrentUser), "(not found)");
  }
}

TEST(TRegFileRegistry, ReportsFileAndLine) {
  auto errorOf = [](const std::string& text) {
    return qvtest::ErrorOf([&] { TRegFileRegistry::LoadFromText(text, "bad.reg"); });
  };
  EXPECT_EQ(errorOf("hello\n"),
            "bad.reg:1: not a registry export file (expected \"Windows Registry Editor Version "
            "5.00\" or \"REGEDIT4\")");
  EXPECT_EQ(errorOf("REGEDIT4\n\n[HKLM\\X\n"), "bad.reg:3: unterminated key name");
  EXPECT_EQ(errorOf("REGEDIT4\n\"A\"=\"1\"\n"), "bad.reg:2: value outside any key");
  EXPECT_EQ(errorOf("REGEDIT4\n[HKLM\\X]\n\"A\"=\"unclosed\n"),
            "bad.reg:3: malformed string value");
  EXPECT_EQ(errorOf("REGEDIT4\n[HKLM\\X]\nA=1\n"), "bad.reg:3: malformed value line");
}

TEST(RegistryReadString, WithoutAReaderNothingIsFound) {
  IQvRegistryReader* saved = QvRegistry;
  QvRegistry = nullptr;
  std::string v = "untouched";
  EXPECT_FALSE(RegistryReadString(TRegistryRoot::LocalMachine, "SOFTWARE", "X", v));
  EXPECT_EQ(v, "untouched");
  QvRegistry = saved;
}

}  // namespace

#ifdef _WIN32
// The system's registry, written by reg.exe as an installer would (names outside ASCII too).
TEST(NativeRegistry, ReadsStringValuesRegWrote) {
  const wchar_t* key = L"HKLM\\SOFTWARE\\QuorvexTest\\9.0";
  _wsystem((std::wstring(L"reg delete ") + key + L" /f >NUL 2>NUL").c_str());
  ASSERT_EQ(_wsystem((std::wstring(L"reg add ") + key +
                      L" /v InstallDir /t REG_SZ /d \"D:\\Prüfung\\IDE\" /f >NUL")
                         .c_str()),
            0);
  ASSERT_EQ(
      _wsystem((std::wstring(L"reg add ") + key + L" /v Flags /t REG_DWORD /d 3 /f >NUL").c_str()),
      0);
  auto reg = NewNativeRegistryReader();
  auto read = [&](const std::string& k, const std::string& name) {
    std::string v;
    return reg->ReadString(TRegistryRoot::LocalMachine, k, name, v) ? v : "(not found)";
  };
  EXPECT_EQ(read("SOFTWARE\\QuorvexTest\\9.0", "InstallDir"), "D:\\Prüfung\\IDE");
  EXPECT_EQ(read("software\\quorvextest\\9.0", "installdir"), "D:\\Prüfung\\IDE");
  EXPECT_EQ(read("SOFTWARE\\QuorvexTest\\9.0", "Flags"), "(not found)") << "not a string";
  EXPECT_EQ(read("SOFTWARE\\QuorvexTest\\8.0", "InstallDir"), "(not found)");
  _wsystem((std::wstring(L"reg delete ") + key + L" /f >NUL 2>NUL").c_str());
}
#endif
