#include "Qvversioninfoupdateraction.h"

#include <array>

#include "QvExceptions.h"
#include "QvSysUtils.h"
#include "QvUtils.h"
#include "Qvrcscripttext.h"

namespace qv {

using U = TQvVersionInfoUpdaterAction;

const TPropDescriptor U::FProps[] = {
    ListProp<U, &U::GetPropertiesToUpdate, &U::SetPropertiesToUpdate>("PropertiesToUpdate"),
    StrProp<U, &U::FResourceFile>("ResourceFile"),
    StrProp<U, &U::FPropertySetName>("PropertySetName"),
    BoolProp<U, &U::FLinkProductVersion>("LinkProductVersion", true),
    BoolProp<U, &U::FAutoUpdateFileVersion>("AutoUpdateFileVersion", true),
    BoolProp<U, &U::FUpdateProductVersion>("UpdateProductVersion", true),
};

const TPropertyTable U::PropertyTable{"TQvVersionInfoUpdaterAction",
                                      &TCustomQvAction::PropertyTable, U::FProps};

namespace {

using namespace rc;

enum TExpected : unsigned { kHeader = 1, kBegin = 2, kBlock = 4, kEnd = 8, kValue = 16 };

void Need(unsigned expected, unsigned what, const char* keyword, int line) {
  if (!(expected & what))
    throw Exception(std::string("Unexpected ") + keyword + " on line : " + IntToStr(line));
}

constexpr std::array<const char*, 4> kVersionNames{"MajorVersion", "MinorVersion", "ReleaseVersion",
                                                   "BuildVersion"};

// The four numbers of a version statement, each trimmed.
std::vector<std::string> VersionNumbers(std::string_view line, size_t keywordLength) {
  std::vector<std::string> parts = Tokenize(Operand(line, keywordLength), ",");
  parts.resize(kVersionNames.size());
  return parts;
}

}  // namespace

bool U::CanUpdateProperty(const std::string& name) const {
  return StrToBoolDef(FPropertiesToUpdate.Values(name), false);
}

std::string U::GetNewValue(const std::string& name, const std::string& current) {
  if (!CanUpdateProperty(name)) return current;
  std::string value = FPropertySet ? FPropertySet->GetValue(name) : std::string();
  SendMessage("Updating property : " + name + " - to : " + value, TStatusTag::Plain);
  return value;
}

std::string U::GetIndentString(int level) const {
  if (level == -1) level = FDepth;
  return level <= 0 ? std::string() : std::string(static_cast<size_t>(level) * 4, ' ');
}

bool U::Execute() {
  FDepth = 0;
  FFileVersion.clear();
  struct RunState {
    U& self;
    ~RunState() {
      self.FPropertyNames.Clear();
      self.FPropertySet.Reset();
    }
  } runState{*this};
  FPropertySet = FindPropertySet(FPropertySetName);
  if (!FPropertySet) {
    SendMessage("Unable to find property set: " + FPropertySetName, TStatusTag::Error);
    return false;
  }
  FPropertyNames.SetCommaText(FPropertySet->GetPropertyNames());
  std::string fileName;
  if (!TryExpandExpression("ResourceFile", FResourceFile, fileName, true)) return false;
  TStringList lines;
  try {
    LoadUnicodeFile(fileName, lines);
  } catch (const std::exception& e) {
    SendMessage(std::string("Error loading resource file : ") + e.what(), TStatusTag::Error);
    return false;
  }
  bool result = false;
  try {
    result = ParseAndUpdate(lines);
  } catch (const std::exception& e) {
    SendMessage(std::string("Error Parsing File : ") + e.what(), TStatusTag::Error);
    return false;
  }
  if (result) {
    try {
      lines.SaveToFile(fileName);
    } catch (const std::exception& e) {
      SendMessage(std::string("Error saving resource file : ") + e.what(), TStatusTag::Error);
      return false;
    }
  }
  return result;
}

bool U::ParseAndUpdate(TStringList& lines) {
  FDepth = 0;
  FFileVersion.clear();
  bool inside = false;
  unsigned expected = kHeader | kBegin;
  for (int i = 0; i < lines.Count(); ++i) {
    if (!inside) {
      inside = IsVersionInfoHeader(lines[i]);
      continue;
    }
    std::string upper = UpperCase(lines[i]);
    if (Has(upper, "FILEVERSION")) {
      Need(expected, kHeader, "FILEVERSION", i);
      RewriteFileVersion(lines, i);
    } else if (Has(upper, "PRODUCTVERSION")) {
      RewriteProductVersion(lines, i);
    } else if (Has(upper, "FILEFLAGSMASK")) {
      Need(expected, kHeader, "FILEFLAGSMASK", i);
    } else if (Has(upper, "FILEFLAGS")) {
      Need(expected, kHeader, "FILEFLAGS", i);
      RewriteFileFlags(lines, i);
    } else if (Has(upper, "FILEOS")) {
      Need(expected, kHeader, "FILEOS", i);
    } else if (Has(upper, "FILETYPE")) {
      Need(expected, kHeader, "FILETYPE", i);
      RewriteFileType(lines, i);
    } else if (Has(upper, "FILESUBTYPE")) {
      Need(expected, kHeader, "FILESUBTYPE", i);
    } else if (Has(upper, "BEGIN")) {
      Need(expected, kBegin, "BEGIN", i);
      ++FDepth;
      expected = kBlock | kEnd;
    } else if (IsEndLine(upper)) {
      Need(expected, kEnd, "END", i);
      --FDepth;
      return true;
    } else if (Has(upper, "BLOCK")) {
      Need(expected, kBlock, "BLOCK", i);
      std::string name = QuotedPiece(lines[i], 1);
      int next = i + 1;
      if (SameText(name, "StringFileInfo"))
        ParseStringFileInfo(lines, next);
      else if (SameText(name, "VarFileInfo"))
        ParseVarFileInfo(lines, next);
      else
        --next;  // a block of another kind is not handled: its BEGIN comes next
      i = next;
    }
  }
  return true;
}

void U::RewriteFileVersion(TStringList& lines, int i) {
  std::vector<std::string> numbers = VersionNumbers(lines[i], 11);
  std::string version;
  for (size_t k = 0; k < numbers.size(); ++k)
    version += (k ? "," : "") + GetNewValue(kVersionNames[k], numbers[k]);
  FFileVersion = version;
  lines.Put(i, GetIndentString(-1) + "FILEVERSION " + version);
}

void U::RewriteProductVersion(TStringList& lines, int i) {
  if (!FUpdateProductVersion) return;
  if (FLinkProductVersion) {
    lines.Put(i, GetIndentString(-1) + "PRODUCTVERSION " + FFileVersion);
    return;
  }
  // The product version's numbers are offered under the file version's names.
  std::vector<std::string> numbers = VersionNumbers(lines[i], 14);
  std::string joined;
  for (size_t k = 0; k < numbers.size(); ++k)
    joined += (k ? "," : "") + GetNewValue(kVersionNames[k], numbers[k]);
  std::string version = StringReplaceAll(GetNewValue("ProductVersion", joined), ".", ",");
  lines.Put(i, GetIndentString(-1) + "PRODUCTVERSION " + version);
}

void U::RewriteFileFlags(TStringList& lines, int i) {
  std::string digits(TwoCharsAfterPrefix(Operand(lines[i], 9)));
  if (!digits.empty() && digits.back() == 'L') digits.pop_back();
  int64_t old = 0;
  if (!TryHexToInt(digits, old)) old = 0;
  static constexpr std::pair<const char*, int> kFlags[] = {{"DebugBuild", 0x01},
                                                           {"PreReleaseBuild", 0x02},
                                                           {"SpecialBuild", 0x20},
                                                           {"PrivateBuild", 0x08}};
  int flags = 0;
  for (const auto& [name, bit] : kFlags)
    if (StrToBoolDef(GetNewValue(name, BoolToStr(old & bit)), false)) flags += bit;
  lines.Put(i, GetIndentString(-1) + "FILEFLAGS 0x" + IntToHex(flags, 2) + "L");
}

void U::RewriteFileType(TStringList& lines, int i) {
  if (!CanUpdateProperty("DLL")) {
    lines.Put(i, GetIndentString(-1) + Trim(lines[i]));
    return;
  }
  bool isDll = TwoHexDigits(Operand(lines[i], 8)) != 0;
  bool dll = StrToBoolDef(GetNewValue("DLL", BoolToStr(isDll)), false);
  lines.Put(i, GetIndentString(-1) + (dll ? "FILETYPE 0x0L" : "FILETYPE 0x1L"));
}

std::string U::NewStringValue(const std::string& name, const std::string& value) {
  std::string dotted = StringReplaceAll(FFileVersion, ",", ".");
  if (SameText(name, "ProductVersion") && FLinkProductVersion && FUpdateProductVersion)
    return dotted;
  if (SameText(name, "FileVersion") && FAutoUpdateFileVersion) return dotted;
  // The boolean "SpecialBuild" belongs to the flags; the string carries the details.
  if (SameText(name, "SpecialBuild")) return GetNewValue("SpecialBuildDetails", value);
  return GetNewValue(name, value);
}

void U::AddMissingStandardNames(TStringList& pairs) {
  std::vector<const char*> names{"CompanyName",    "FileDescription", "InternalName",
                                 "LegalCopyright", "LegalTrademarks", "OriginalFilename",
                                 "ProductName"};
  if (!FLinkProductVersion && FUpdateProductVersion) names.push_back("ProductVersion");
  names.push_back("CompileDate");
  for (const char* name : names)
    if (pairs.IndexOfName(name) < 0 && CanUpdateProperty(name))
      pairs.SetValue(name, GetNewValue(name, ""));
}

void U::ParseStringFileInfo(TStringList& lines, int& index) {
  unsigned expected = kBegin;
  bool inLanguage = false;
  int firstValue = -1, valueDepth = 0;
  TLineBreak valueBreak = TLineBreak::Default;
  TStringList pairs;
  for (; index < lines.Count(); ++index) {
    std::string upper = UpperCase(lines[index]);
    // Values are recognised first, so that a value holding "Block" or "End" stays a value.
    if (inLanguage && Has(upper, "VALUE")) {
      const std::string line = lines[index];
      std::string name = QuotedPiece(line, 1);
      std::string value = StringReplaceAll(QuotedPiece(line, 3), "\\0", "");
      if (firstValue < 0) {
        firstValue = index;
        valueDepth = FDepth;
        valueBreak = lines.LineBreak(index);
      }
      pairs.SetValue(name, NewStringValue(name, value));
      lines.Delete(index--);
    } else if (Has(upper, "BEGIN")) {
      Need(expected, kBegin, "BEGIN", index);
      ++FDepth;
      inLanguage = expected & kValue;
      expected = inLanguage ? (kValue | kEnd) : kBlock;
    } else if (IsEndLine(upper)) {
      Need(expected, kEnd, "END", index);
      --FDepth;
      if (!inLanguage) return;
      AddMissingStandardNames(pairs);
      pairs.Sort();
      for (int k = 0; k < pairs.Count(); ++k) {
        lines.Insert(firstValue + k, GetIndentString(valueDepth) + "VALUE \"" + pairs.Names(k) +
                                         "\", \"" + pairs.ValueFromIndex(k) + "\\0\"");
        lines.SetLineBreak(firstValue + k, valueBreak);
      }
      index += pairs.Count();
      pairs.Clear();
      firstValue = -1;
      inLanguage = false;
      expected = kBlock | kEnd;
    } else if (Has(upper, "BLOCK")) {
      Need(expected, kBlock, "BLOCK", index);
      expected = kBegin | kValue;  // kValue marks the language block's BEGIN
    }
  }
}

void U::ParseVarFileInfo(TStringList& lines, int& index) {
  unsigned expected = kBegin;
  bool done = false;
  for (; index < lines.Count(); ++index) {
    std::string upper = UpperCase(lines[index]);
    if (Has(upper, "BEGIN")) {
      if (!(expected & kBegin)) throw Exception("Unexpected BEGIN");
      ++FDepth;
      expected = kEnd;
    } else if (IsEndLine(upper)) {
      if (!(expected & kEnd)) throw Exception("Unexpected END");
      --FDepth;
      return;
    } else if (!done && Has(upper, "VALUE") && QuotedPiece(lines[index], 1) == "Translation") {
      std::vector<std::string> operands = TranslationOperands(lines[index]);
      std::string_view digits = operands[0];
      digits.remove_prefix(std::min<size_t>(2, digits.size()));
      int64_t locale = StrToIntHexDef(GetNewValue("Locale", "$" + std::string(digits)), 0);
      std::string codePage = GetNewValue("CodePage", operands[1]);
      lines.Put(index, "VALUE \"Translation\", 0x" + IntToHex(locale, 4) + ", " + codePage);
      done = true;
    }
  }
}

}  // namespace qv
