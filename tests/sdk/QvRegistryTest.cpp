#include "QvRegistry.h"

#include <gtest/gtest.h>

#include "QvExceptions.h"
#include "support/TempDir.h"

using namespace qv;

namespace {

const char* kExport =
    "Windows Registry Editor Version 5.00\r\n"
    "\r\n"
    "; Visual Studio 2005 only\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\VisualStudio\\8.0]\r\n"
    "\"InstallDir\"=\"C:\\\\Program Files\\\\Microsoft Visual Studio 8\\\\Common7\\\\IDE\\\\\"\r\n"
    "\"Quoted\"=\"say \\\"hi\\\"\"\r\n"
    "\"Flags\"=dword:00000001\r\n"
    "\"Blob\"=hex:01,02,\\\r\n"
    "  03,04\r\n"
    "@=\"default value\"\r\n"
    "\r\n"
    "[HKLM\\SOFTWARE\\Microsoft\\VisualStudio\\9.0]\r\n"
    "\"InstallDir\"=\"D:\\\\VS9\\\\\"\r\n"
    "\"Gone\"=\"x\"\r\n"
    "\"Gone\"=-\r\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Old]\r\n"
    "\"A\"=\"1\"\r\n"
    "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Old]\r\n";

TEST(TRegFileRegistry, ReadsStringValuesOfAnExport) {
  auto reg = TRegFileRegistry::LoadFromText(kExport, "vs.reg");
  std::string v;
  ASSERT_TRUE(reg->ReadString(TRegistryRoot::LocalMachine, "SOFTWARE\\Microsoft\\VisualStudio\\8.0",
                              "InstallDir", v));
  EXPECT_EQ(v, "C:\\Program Files\\Microsoft Visual Studio 8\\Common7\\IDE\\");
  ASSERT_TRUE(reg->ReadString(TRegistryRoot::LocalMachine, "software\\microsoft\\visualstudio\\8.0",
                              "quoted", v));
  EXPECT_EQ(v, "say \"hi\"");
  ASSERT_TRUE(reg->ReadString(TRegistryRoot::LocalMachine, "SOFTWARE\\Microsoft\\VisualStudio\\8.0",
                              "", v));
  EXPECT_EQ(v, "default value");
  ASSERT_TRUE(reg->ReadString(TRegistryRoot::LocalMachine, "SOFTWARE\\Microsoft\\VisualStudio\\9.0",
                              "InstallDir", v));
  EXPECT_EQ(v, "D:\\VS9\\");
  EXPECT_FALSE(reg->ReadString(TRegistryRoot::LocalMachine,
                               "SOFTWARE\\Microsoft\\VisualStudio\\8.0", "Flags", v))
      << "not a string";
  EXPECT_FALSE(reg->ReadString(TRegistryRoot::LocalMachine,
                               "SOFTWARE\\Microsoft\\VisualStudio\\9.0", "Gone", v));
  EXPECT_FALSE(reg->ReadString(TRegistryRoot::LocalMachine, "SOFTWARE\\Old", "A", v));
  EXPECT_FALSE(reg->ReadString(TRegistryRoot::CurrentUser, "SOFTWARE\\Microsoft\\VisualStudio\\9.0",
                               "InstallDir", v));
}

TEST(TRegFileRegistry, ReadsUtf16ExportsFromDisk) {
  qvtest::TempDir dir;
  std::string bytes = "\xFF\xFE";
  for (const char* p = kExport; *p; ++p)
    bytes += std::string{*p, '\0'};
  auto reg = TRegFileRegistry::LoadFromFile(dir.Write("vs.reg", bytes));
  std::string v;
  EXPECT_TRUE(reg->ReadString(TRegistryRoot::LocalMachine, "SOFTWARE\\Microsoft\\VisualStudio\\9.0",
                              "InstallDir", v));
}

TEST(TRegFileRegistry, ReportsFileAndLine) {
  auto errorOf = [](const std::string& text) {
    try {
      TRegFileRegistry::LoadFromText(text, "bad.reg");
    } catch (const Exception& e) {
      return std::string(e.what());
    }
    return std::string("(loaded)");
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
  auto reg = TRegFileRegistry::LoadFromText(kExport, "vs.reg");
  QvRegistry = reg.get();
  EXPECT_TRUE(RegistryReadString(TRegistryRoot::LocalMachine,
                                 "SOFTWARE\\Microsoft\\VisualStudio\\8.0", "InstallDir", v));
  QvRegistry = saved;
}

}  // namespace
