// Win32 version information: the object a resource script's VERSIONINFO block is read into
// and generated from.
#pragma once

#include <cstdint>
#include <string>

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

}  // namespace qv
