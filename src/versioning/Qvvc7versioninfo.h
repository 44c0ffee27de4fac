// Win32 version information: the object a resource script's VERSIONINFO block is read into
// and generated from.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "QvActions.h"
#include "QvClasses.h"
#include "QvInterfaces.h"

namespace qv {

// The numbers, flags, locale, code page and string table of a version resource. The
// string table is text with one name=value pair a line, in file order.
struct IQvVC7VersionInfo : virtual IInterface {
  QV_INTERFACE_ID("{9E2B5C47-1A6D-4F83-B7C0-2D8E4F6A1B35}");
  virtual int32_t GetBuildVersion() = 0;
  virtual int32_t GetCodePage() = 0;
  virtual bool GetIsDebug() = 0;
  virtual bool GetIsDLL() = 0;
  virtual bool GetIsPreRelease() = 0;
  virtual bool GetIsPrivate() = 0;
  virtual bool GetIsSpecial() = 0;
  virtual int32_t GetLocale() = 0;
  virtual int32_t GetMajorVersion() = 0;
  virtual int32_t GetMinorVersion() = 0;
  virtual int32_t GetReleaseVersion() = 0;
  virtual std::string GetVersionInfoKeys() = 0;
  virtual void SetBuildVersion(int32_t v) = 0;
  virtual void SetCodePage(int32_t v) = 0;
  virtual void SetIsDebug(bool v) = 0;
  virtual void SetIsDLL(bool v) = 0;
  virtual void SetIsPreRelease(bool v) = 0;
  virtual void SetIsPrivate(bool v) = 0;
  virtual void SetIsSpecial(bool v) = 0;
  virtual void SetLocale(int32_t v) = 0;
  virtual void SetMajorVersion(int32_t v) = 0;
  virtual void SetMinorVersion(int32_t v) = 0;
  virtual void SetReleaseVersion(int32_t v) = 0;
  virtual void SetVersionInfoKeys(const std::string& v) = 0;
  virtual bool GetIncludeCompileDate() = 0;
  virtual void SetIncludeCompileDate(bool v) = 0;
  virtual bool GetLinkFileAndProductVersion() = 0;
  virtual void SetLinkFileAndProductVersion(bool v) = 0;
  virtual bool GetAutoUpdateFileVersion() = 0;
  virtual void SetAutoUpdateFileVersion(bool v) = 0;
};

// Reads and rewrites the VERSIONINFO block of one resource script.
struct IQvVC7VersionInfoParser : virtual IInterface {
  QV_INTERFACE_ID("{2C7F4A91-8E3B-4D56-A0F1-7B9C3E5D2A64}");
  // Loads the script and reads its block into `info`. Always returns false; failures
  // (unreadable file, malformed block) are thrown.
  virtual bool ReadVersionInfo(IQvVC7VersionInfo* info) = 0;
  // Replaces the script's block (or appends one) with a block generated from `info`,
  // making a one-time ".orig" backup first. True when written; failures are thrown and
  // leave the script as it was.
  virtual bool UpdateVersionInfo(IQvVC7VersionInfo* info) = 0;
};

class TQvVC7VersionInfoParser : public TInterfacedObject, public IQvVC7VersionInfoParser {
 public:
  TQvVC7VersionInfoParser(std::string fileName, TCustomQvAction* action,
                          IntfPtr<IQvApplicationServices> applicationServices);
  bool ReadVersionInfo(IQvVC7VersionInfo* info) override;
  bool UpdateVersionInfo(IQvVC7VersionInfo* info) override;

 protected:
  void* GetInterface(const TGUID& iid) override;

 private:
  std::string Expand(const std::string& text);

  std::string FFileName;
  TCustomQvAction* FAction;
  IntfPtr<IQvApplicationServices> FApplicationServices;
};

// A parser for `fileName` that expands string values through `action`.
IntfPtr<IQvVC7VersionInfoParser> GetVersionInfoParser(TCustomQvAction* action,
                                                      const std::string& fileName);
// A parser without an action (design-time pages): expansion goes through `services`.
IntfPtr<IQvVC7VersionInfoParser> GetVersionInfoParser(IQvApplicationServices* services,
                                                      const std::string& fileName);

// The rules themselves, on lines in memory.

// Expands a string-table value through the host.
using TVersionValueExpander = std::function<std::string(const std::string&)>;

// Reads the first VERSIONINFO block of `lines` into `info`. Throws Exception with
// "Unexpected KEYWORD", or EConvertError for a Translation number that is not one.
void ReadVersionBlock(const TStringList& lines, IQvVC7VersionInfo& info);
// The block generated from `info`, one line an item; `compileDate` is the "Compile Date"
// value used when `info` asks for one.
std::vector<std::string> GenerateVersionBlock(IQvVC7VersionInfo& info,
                                              const TVersionValueExpander& expand,
                                              const std::string& compileDate);
// Replaces the header line and block of `lines` by an empty line and `block`, or appends
// both when there is no header. New lines take the line break of the header (or of the
// first line). Throws "Unexpected KEYWORD" before changing anything.
void ReplaceVersionBlock(TStringList& lines, const std::vector<std::string>& block);
// "Compile Date" text for a moment: the system's long date, a blank, its short time.
std::string CompileDateText(std::time_t t);

}  // namespace qv
