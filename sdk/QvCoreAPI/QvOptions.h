// Options objects: plug-in settings kept in the host's options store.
#pragma once

#include <cstdint>
#include <string>

#include "QvInterfaces.h"
#include "QvProperties.h"

namespace qv {

// Reads values under an options object's key; keys are relative to that key.
class IQvOptionsReader {
 public:
  virtual std::string ReadString(const std::string& key, const std::string& def) = 0;
  virtual int64_t ReadInteger(const std::string& key, int64_t def) = 0;

 protected:
  ~IQvOptionsReader() = default;
};

class IQvOptionsWriter {
 public:
  virtual void WriteString(const std::string& key, const std::string& value) = 0;
  virtual void WriteInteger(const std::string& key, int64_t value) = 0;

 protected:
  ~IQvOptionsWriter() = default;
};

// Base of options objects. The host's options service creates, loads, saves and owns the
// single instance of each registered class; scripts reach its published properties.
class TQvOptionsObject : public TInterfacedObject, public TQvPersistent {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  virtual void LoadOptions(IQvOptionsReader& reader);
  virtual void SaveOptions(IQvOptionsWriter& writer);
  virtual std::string GetName() const = 0;
  virtual std::string GetCategory() const = 0;
  // The key the object's values are stored under.
  virtual std::string GetOptionKey() const = 0;
  // A key of an earlier version to read from when the current one is absent.
  virtual std::string GetOldVersionOptionKey() const { return {}; }
  virtual int GetOptionType() const { return 0; }
  virtual std::string RegGetSearchKeyWords() const { return {}; }
  std::string GetOptionsName() const { return GetName(); }
  std::string GetOptionsCategory() const { return GetCategory(); }

  bool IsModified() const { return FModified; }
  void SetModified(bool modified) { FModified = modified; }

 protected:
  ~TQvOptionsObject() override;

  bool FModified = false;
};

}  // namespace qv
