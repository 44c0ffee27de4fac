// The "Win32 Version Info Updater" action: rewrites the VERSIONINFO resource of one
// resource script in place from a Win32 version property set of the host.
#pragma once

#include <string>

#include "QvActions.h"

namespace qv {

class TQvVersionInfoUpdaterAction : public TCustomQvAction {
 public:
  static const TPropertyTable PropertyTable;
  const TPropertyTable& GetPropertyTable() const override { return PropertyTable; }

  std::string GetActionName() const override { return "Win32 Version Info Updater"; }
  std::string GetActionKeywords() const override { return "RC resource File"; }

  // Finds the property set, loads ResourceFile, rewrites its block and saves it; logs the
  // failing step's message and returns false on any failure.
  bool Execute() override;

  // True when PropertiesToUpdate allows `name` ("True" as its value).
  bool CanUpdateProperty(const std::string& name) const;
  // The property set's value of `name` (logged) when it may be updated, else `current`.
  std::string GetNewValue(const std::string& name, const std::string& current);
  // Four blanks per level; -1 is the current nesting depth; 0 or less gives "".
  std::string GetIndentString(int level) const;
  // Rewrites the VERSIONINFO resource of `lines`; throws "Unexpected KEYWORD on line : N"
  // (N counted from 0) on a resource out of order. True unless it throws.
  bool ParseAndUpdate(TStringList& lines);
  // The two kinds of BLOCK, from the line after the BLOCK line; they leave `index` on the
  // END that closes the block.
  void ParseStringFileInfo(TStringList& lines, int& index);
  void ParseVarFileInfo(TStringList& lines, int& index);

  // The set GetNewValue reads; Execute sets it for its run.
  void UsePropertySet(IntfPtr<IQvPropertySet> set) { FPropertySet = std::move(set); }

  const TStringList& GetPropertiesToUpdate() const { return FPropertiesToUpdate; }
  void SetPropertiesToUpdate(const TStringList& v) { FPropertiesToUpdate.Assign(v); }

 private:
  static const TPropDescriptor FProps[];

  std::string NewStringValue(const std::string& name, const std::string& value);
  void AddMissingStandardNames(TStringList& pairs);
  void RewriteFileVersion(TStringList& lines, int i);
  void RewriteProductVersion(TStringList& lines, int i);
  void RewriteFileFlags(TStringList& lines, int i);
  void RewriteFileType(TStringList& lines, int i);

  TStringList FPropertiesToUpdate;
  std::string FResourceFile;
  std::string FPropertySetName;
  bool FLinkProductVersion = true;
  bool FAutoUpdateFileVersion = true;
  bool FUpdateProductVersion = true;

  // Run-time state.
  IntfPtr<IQvPropertySet> FPropertySet;
  TStringList FPropertyNames;
  int FDepth = 0;
  std::string FFileVersion;
};

}  // namespace qv
