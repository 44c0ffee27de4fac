#include "Qvvc7versioninfo.h"

#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "QvUtils.h"
#include "Qvrcscripttext.h"

namespace qv {

namespace {

using namespace rc;

// What may come next inside a block.
enum TAllowed : unsigned { kBegin = 1, kStatement = 2, kBlock = 4, kEnd = 8, kValue = 16 };

void Need(unsigned allowed, unsigned what, const char* keyword) {
  if (!(allowed & what)) throw Exception(std::string("Unexpected ") + keyword);
}

void ReadFileVersion(std::string_view line, IQvVC7VersionInfo& info) {
  std::vector<std::string> parts = Tokenize(Operand(line, 11), ",");
  auto part = [&](size_t n) { return n < parts.size() ? StrToIntDef(parts[n], 0) : 0; };
  info.SetMajorVersion(part(0));
  info.SetMinorVersion(part(1));
  info.SetReleaseVersion(part(2));
  info.SetBuildVersion(part(3));
}

void ReadFileFlags(std::string_view line, IQvVC7VersionInfo& info) {
  int64_t flags = TwoHexDigits(Operand(line, 9));
  info.SetIsDebug(flags & 0x01);
  info.SetIsPreRelease(flags & 0x02);
  info.SetIsSpecial(flags & 0x20);
  info.SetIsPrivate(flags & 0x08);
}

// Reads the string table from the line after BLOCK "StringFileInfo"; leaves `i` on the END
// that closes it.
void ReadStringTable(const TStringList& lines, int& i, IQvVC7VersionInfo& info) {
  unsigned allowed = kBegin;
  int depth = 0;
  TStringList keys;
  for (; i < lines.Count(); ++i) {
    std::string upper = UpperCase(lines[i]);
    if (Has(upper, "BEGIN")) {
      Need(allowed, kBegin, "BEGIN");
      ++depth;
      allowed = kBlock | kEnd | kValue;
    } else if (Has(upper, "BLOCK")) {
      Need(allowed, kBlock, "BLOCK");
      allowed = kBegin;
    } else if (Has(upper, "END")) {
      Need(allowed, kEnd, "END");
      allowed = kBlock | kEnd;
      if (--depth == 0) break;
    } else if (Has(upper, "VALUE")) {
      keys.Add(QuotedPiece(lines[i], 1) + "=" +
               StringReplaceAll(QuotedPiece(lines[i], 3), "\\0", ""));
      allowed = kEnd | kValue;
    }
  }
  info.SetVersionInfoKeys(keys.Text());
}

int32_t ToInt32(int64_t v, const std::string& text) {
  if (v < INT32_MIN || v > INT32_MAX)
    throw EConvertError("'" + text + "' is not a valid integer value");
  return static_cast<int32_t>(v);
}

void ReadTranslation(std::string_view line, IQvVC7VersionInfo& info) {
  std::vector<std::string> numbers = TranslationOperands(line);
  int64_t locale = 0;
  std::string_view digits =
      std::string_view(numbers[0]).substr(std::min<size_t>(2, numbers[0].size()));
  if (!TryHexToInt(digits, locale))
    throw EConvertError("'" + numbers[0] + "' is not a valid integer value");
  info.SetLocale(ToInt32(locale, numbers[0]));
  info.SetCodePage(ToInt32(StrToInt64(numbers[1]), numbers[1]));
}

// Reads the translation from the line after BLOCK "VarFileInfo"; leaves `i` on the END that
// closes it. Only the first Translation counts.
void ReadVarFileInfo(const TStringList& lines, int& i, IQvVC7VersionInfo& info) {
  unsigned allowed = kBegin;
  int depth = 0;
  bool done = false;
  for (; i < lines.Count(); ++i) {
    std::string upper = UpperCase(lines[i]);
    if (Has(upper, "BEGIN")) {
      Need(allowed, kBegin, "BEGIN");
      ++depth;
      allowed = kEnd;
    } else if (Has(upper, "END")) {
      Need(allowed, kEnd, "END");
      if (--depth == 0) break;
    } else if (Has(upper, "VALUE") && !done && QuotedPiece(lines[i], 1) == "Translation") {
      ReadTranslation(lines[i], info);
      done = true;
    }
  }
}

// The index of the first line after the block whose header is at `header`; throws on a
// block out of order. A block that never closes runs to the end of the script.
int SkipBlock(const TStringList& lines, int header) {
  unsigned allowed = kBegin | kStatement;
  int depth = 0;
  for (int i = header + 1; i < lines.Count(); ++i) {
    std::string upper = UpperCase(lines[i]);
    if (Has(upper, "BEGIN")) {
      Need(allowed, kBegin, "BEGIN");
      ++depth;
      allowed = kBlock | kEnd;
    } else if (IsEndLine(upper)) {
      Need(allowed, kEnd, "END");
      if (--depth == 0) return i + 1;
    } else if (Has(upper, "BLOCK")) {
      Need(allowed, kBlock, "BLOCK");
      allowed = kBegin | kEnd;
    }
  }
  return lines.Count();
}

std::string Quoted(std::string_view name, std::string_view value) {
  return "\"" + std::string(name) + "\", \"" + std::string(value) + "\"";
}

}  // namespace

void ReadVersionBlock(const TStringList& lines, IQvVC7VersionInfo& info) {
  int header = FindVersionInfoHeader(lines);
  if (header < 0) return;
  unsigned allowed = kBegin | kStatement;
  for (int i = header + 1; i < lines.Count(); ++i) {
    const std::string& line = lines[i];
    std::string upper = UpperCase(line);
    if (Has(upper, "FILEVERSION")) {
      Need(allowed, kStatement, "FILEVERSION");
      ReadFileVersion(line, info);
    } else if (Has(upper, "PRODUCTVERSION")) {
      continue;
    } else if (Has(upper, "FILEFLAGSMASK")) {
      Need(allowed, kStatement, "FILEFLAGSMASK");
    } else if (Has(upper, "FILEFLAGS")) {
      Need(allowed, kStatement, "FILEFLAGS");
      ReadFileFlags(line, info);
    } else if (Has(upper, "FILEOS")) {
      Need(allowed, kStatement, "FILEOS");
    } else if (Has(upper, "FILETYPE")) {
      Need(allowed, kStatement, "FILETYPE");
      info.SetIsDLL(TwoHexDigits(Operand(line, 8)) != 0);
    } else if (Has(upper, "FILESUBTYPE")) {
      Need(allowed, kStatement, "FILESUBTYPE");
    } else if (Has(upper, "BEGIN")) {
      Need(allowed, kBegin, "BEGIN");
      allowed = kBlock | kEnd;
    } else if (IsEndLine(upper)) {
      Need(allowed, kEnd, "END");
      return;
    } else if (Has(upper, "BLOCK")) {
      std::string name = QuotedPiece(line, 1);
      int next = i + 1;
      // A block of another kind is not read: its own lines come next.
      if (SameText(name, "StringFileInfo"))
        ReadStringTable(lines, next, info);
      else if (SameText(name, "VarFileInfo"))
        ReadVarFileInfo(lines, next, info);
      else
        --next;
      i = next;
      allowed = kEnd;
    }
  }
}

std::vector<std::string> GenerateVersionBlock(IQvVC7VersionInfo& info,
                                              const TVersionValueExpander& expand,
                                              const std::string& compileDate) {
  TStringList table;
  table.SetText(info.GetVersionInfoKeys());
  if (info.GetIncludeCompileDate()) table.SetValue("Compile Date", compileDate);
  std::string fileVersion =
      info.GetAutoUpdateFileVersion()
          ? IntToStr(info.GetMajorVersion()) + "," + IntToStr(info.GetMinorVersion()) + "," +
                IntToStr(info.GetReleaseVersion()) + "," + IntToStr(info.GetBuildVersion())
          : table.Values("FILEVERSION");
  std::string productVersion =
      info.GetLinkFileAndProductVersion() ? fileVersion : expand(table.Values("PRODUCTVERSION"));
  fileVersion = StringReplaceAll(fileVersion, ".", ",");
  productVersion = StringReplaceAll(productVersion, ".", ",");

  std::vector<std::string> b{"VS_VERSION_INFO VERSIONINFO"};
  if (!fileVersion.empty()) b.push_back("FILEVERSION " + fileVersion);
  if (!productVersion.empty()) b.push_back("PRODUCTVERSION " + productVersion);
  int flags = (info.GetIsDebug() ? 0x01 : 0) + (info.GetIsPreRelease() ? 0x02 : 0) +
              (info.GetIsSpecial() ? 0x20 : 0) + (info.GetIsPrivate() ? 0x08 : 0);
  b.insert(b.end(), {"FILEFLAGSMASK 0x3FL", "FILEFLAGS 0x" + IntToHex(flags, 2) + "L",
                     "FILEOS 0x40004L", info.GetIsDLL() ? "FILETYPE 0x2L" : "FILETYPE 0x1L",
                     "FILESUBTYPE 0x0L", "BEGIN", "    BLOCK \"StringFileInfo\"", "    BEGIN",
                     "         BLOCK \"" + IntToHex(info.GetLocale(), 4) +
                         IntToHex(info.GetCodePage(), 4) + "\"",
                     "         BEGIN"});
  fileVersion = StringReplaceAll(fileVersion, ",", ".");
  productVersion = StringReplaceAll(productVersion, ",", ".");
  for (int i = 0; i < table.Count(); ++i) {
    std::string name = table.Names(i), raw = table.ValueFromIndex(i), value;
    if (SameText(name, "FileVersion"))
      value = fileVersion;
    else if (SameText(name, "ProductVersion"))
      value = productVersion;
    else if (!raw.empty())
      value = expand(raw);
    else
      continue;
    // The two version strings are dropped when empty; an expanded value may be empty.
    if (value.empty() && (SameText(name, "FileVersion") || SameText(name, "ProductVersion")))
      continue;
    b.push_back("              VALUE " + Quoted(name, value));
  }
  b.insert(b.end(), {"         END", "    END", "    BLOCK \"VarFileInfo\"", "    BEGIN",
                     "         VALUE \"Translation\", 0x" + IntToHex(info.GetLocale(), 4) + ", " +
                         IntToStr(info.GetCodePage()),
                     "    END", "END"});
  return b;
}

void ReplaceVersionBlock(TStringList& lines, const std::vector<std::string>& block) {
  int header = FindVersionInfoHeader(lines);
  int at = header < 0 ? lines.Count() : header;
  int end = header < 0 ? at : SkipBlock(lines, header);
  TLineBreak br = lines.Empty() ? TLineBreak::Default : lines.LineBreak(header < 0 ? 0 : header);
  if (br == TLineBreak::None) br = TLineBreak::Default;
  // A last line without a break gets one when the block follows it.
  if (header < 0 && !lines.Empty() && lines.LineBreak(at - 1) == TLineBreak::None)
    lines.SetLineBreak(at - 1, br);
  for (int i = end - 1; i >= at; --i)
    lines.Delete(i);
  lines.Insert(at, "");
  lines.SetLineBreak(at, br);
  for (size_t k = 0; k < block.size(); ++k) {
    int index = at + 1 + static_cast<int>(k);
    lines.Insert(index, block[k]);
    lines.SetLineBreak(index, br);
  }
}

std::string CompileDateText(std::time_t t) {
  return LongDateText(t) + " " + ShortTimeText(t);
}

// ---- TQvVC7VersionInfoParser ------------------------------------------------------------

TQvVC7VersionInfoParser::TQvVC7VersionInfoParser(
    std::string fileName, TCustomQvAction* action,
    IntfPtr<IQvApplicationServices> applicationServices)
    : FFileName(std::move(fileName)),
      FAction(action),
      FApplicationServices(std::move(applicationServices)) {}

void* TQvVC7VersionInfoParser::GetInterface(const TGUID& iid) {
  if (void* p = QueryInterfaceList<IQvVC7VersionInfoParser>(this, iid)) return p;
  return TInterfacedObject::GetInterface(iid);
}

std::string TQvVC7VersionInfoParser::Expand(const std::string& text) {
  if (FAction) return FAction->ExpandExpression(text, true);
  if (FApplicationServices) return FApplicationServices->ExpandExpression(text, true);
  return text;
}

bool TQvVC7VersionInfoParser::ReadVersionInfo(IQvVC7VersionInfo* info) {
  TStringList lines;
  lines.LoadFromFile(FFileName);
  ReadVersionBlock(lines, *info);
  return false;  // callers rely on exceptions, never on the result
}

bool TQvVC7VersionInfoParser::UpdateVersionInfo(IQvVC7VersionInfo* info) {
  TStringList lines;
  lines.LoadFromFile(FFileName);
  std::string backup = FFileName + ".orig";
  if (!platform::FileExists(backup)) lines.SaveToFile(backup);
  std::vector<std::string> block = GenerateVersionBlock(
      *info, [this](const std::string& s) { return Expand(s); },
      info->GetIncludeCompileDate() ? CompileDateText(std::time(nullptr)) : std::string());
  ReplaceVersionBlock(lines, block);
  lines.SaveToFile(FFileName);
  return true;
}

IntfPtr<IQvVC7VersionInfoParser> GetVersionInfoParser(TCustomQvAction* action,
                                                      const std::string& fileName) {
  IntfPtr<IQvApplicationServices> services =
      Supports<IQvApplicationServices>(action ? action->GetActionContext() : nullptr);
  return MakeIntf<IQvVC7VersionInfoParser, TQvVC7VersionInfoParser>(fileName, action, services);
}

IntfPtr<IQvVC7VersionInfoParser> GetVersionInfoParser(IQvApplicationServices* services,
                                                      const std::string& fileName) {
  return MakeIntf<IQvVC7VersionInfoParser, TQvVC7VersionInfoParser>(
      fileName, nullptr, IntfPtr<IQvApplicationServices>(services));
}

}  // namespace qv
