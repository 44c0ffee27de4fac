// Read access to the Windows registry, through a reader the host installs: the real
// registry on Windows, a ".reg" export file standing in for it elsewhere.
#pragma once

#include <map>
#include <memory>
#include <string>

namespace qv {

enum class TRegistryRoot { LocalMachine, CurrentUser, ClassesRoot, Users };

class IQvRegistryReader {
 public:
  // The string value `name` of `key` (a path below `root`, "\"-separated, any letter case);
  // false when the key or value does not exist or is not a string.
  virtual bool ReadString(TRegistryRoot root, const std::string& key, const std::string& name,
                          std::string& value) = 0;
  virtual ~IQvRegistryReader() = default;
};

// The host's registry reader; null when the host offers none (every read then fails).
extern IQvRegistryReader* QvRegistry;

// Reads `name` of `key` through QvRegistry; false when there is no reader or no value.
bool RegistryReadString(TRegistryRoot root, const std::string& key, const std::string& name,
                        std::string& value);

// The values of a registry export file ("Windows Registry Editor Version 5.00" or
// "REGEDIT4", UTF-16 or 8-bit), held in memory. String values are unescaped ("\\" and
// "\""); other value types are kept but are not strings; "[-KEY]" and "NAME"=- delete.
class TRegFileRegistry : public IQvRegistryReader {
 public:
  // Throws Exception naming the file and line for anything it cannot read.
  static std::unique_ptr<TRegFileRegistry> LoadFromFile(const std::string& fileName);
  // The same from text already decoded into lines; `fileName` names it in errors.
  static std::unique_ptr<TRegFileRegistry> LoadFromText(const std::string& text,
                                                        const std::string& fileName);

  bool ReadString(TRegistryRoot root, const std::string& key, const std::string& name,
                  std::string& value) override;

 private:
  struct Value {
    bool IsString;
    std::string Text;
  };
  // Upper-cased "ROOT\KEY" -> upper-cased value name ("" for the default value) -> value.
  std::map<std::string, std::map<std::string, Value>> FKeys;
};

// The native registry (Windows only); null elsewhere.
std::unique_ptr<IQvRegistryReader> NewNativeRegistryReader();

}  // namespace qv
