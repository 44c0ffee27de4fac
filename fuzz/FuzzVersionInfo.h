// A plain version-info object for the fuzz targets.
#pragma once

#include "QvExceptions.h"
#include "Qvvc7versioninfo.h"

namespace qvfuzz {

struct PlainVersionInfo : qv::TInterfacedObject, qv::IQvVC7VersionInfo {
  int32_t Numbers[4] = {1, 2, 3, 4}, CodePage = 1200, Locale = 0x409;
  bool Debug = true, Dll = true, PreRelease = false, Private = false, Special = true;
  bool CompileDate = true, Link = true, AutoUpdate = true;
  std::string Keys = "CompanyName=Example\r\nFileVersion=1.2\r\nProductVersion=%V%\r\n";

  int32_t GetBuildVersion() override { return Numbers[3]; }
  int32_t GetCodePage() override { return CodePage; }
  bool GetIsDebug() override { return Debug; }
  bool GetIsDLL() override { return Dll; }
  bool GetIsPreRelease() override { return PreRelease; }
  bool GetIsPrivate() override { return Private; }
  bool GetIsSpecial() override { return Special; }
  int32_t GetLocale() override { return Locale; }
  int32_t GetMajorVersion() override { return Numbers[0]; }
  int32_t GetMinorVersion() override { return Numbers[1]; }
  int32_t GetReleaseVersion() override { return Numbers[2]; }
  std::string GetVersionInfoKeys() override { return Keys; }
  void SetBuildVersion(int32_t v) override { Numbers[3] = v; }
  void SetCodePage(int32_t v) override { CodePage = v; }
  void SetIsDebug(bool v) override { Debug = v; }
  void SetIsDLL(bool v) override { Dll = v; }
  void SetIsPreRelease(bool v) override { PreRelease = v; }
  void SetIsPrivate(bool v) override { Private = v; }
  void SetIsSpecial(bool v) override { Special = v; }
  void SetLocale(int32_t v) override { Locale = v; }
  void SetMajorVersion(int32_t v) override { Numbers[0] = v; }
  void SetMinorVersion(int32_t v) override { Numbers[1] = v; }
  void SetReleaseVersion(int32_t v) override { Numbers[2] = v; }
  void SetVersionInfoKeys(const std::string& v) override { Keys = v; }
  bool GetIncludeCompileDate() override { return CompileDate; }
  void SetIncludeCompileDate(bool v) override { CompileDate = v; }
  bool GetLinkFileAndProductVersion() override { return Link; }
  void SetLinkFileAndProductVersion(bool v) override { Link = v; }
  bool GetAutoUpdateFileVersion() override { return AutoUpdate; }
  void SetAutoUpdateFileVersion(bool v) override { AutoUpdate = v; }
};

// The bytes as a script's lines, decoded as a file with those bytes would be.
inline bool LinesOf(const uint8_t* data, size_t size, qv::TStringList& lines) {
  qv::TTextFormat format;
  std::vector<qv::TTextLine> decoded;
  try {
    decoded = qv::DecodeTextFile({reinterpret_cast<const char*>(data), size}, format, "fuzz.rc");
  } catch (const qv::Exception&) {
    return false;  // odd-length UTF-16: the loader refuses the file
  }
  for (const auto& l : decoded)
    lines.Add(l.Text);
  return true;
}

}  // namespace qvfuzz
