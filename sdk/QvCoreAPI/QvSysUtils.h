// Small text and path helpers with the semantics the package's behaviour is written in
// (Delphi's SysUtils): trimming drops every character up to the blank, case rules are ASCII.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace qv {

// Removes leading and trailing blanks and control characters (bytes 0 to 32).
std::string Trim(std::string_view s);
// Trim's result as a view into `s`.
std::string_view TrimmedView(std::string_view s);
std::string TrimLeft(std::string_view s);
std::string TrimRight(std::string_view s);
std::string LowerCase(std::string_view s);
std::string UpperCase(std::string_view s);
// Case-insensitive (ASCII) equality and three-way comparison.
bool SameText(std::string_view a, std::string_view b);
int CompareText(std::string_view a, std::string_view b);
// Case-insensitive search: position of `needle` in `haystack`, or npos.
size_t FindText(std::string_view haystack, std::string_view needle);
bool StartsStr(std::string_view prefix, std::string_view s);
bool EndsStr(std::string_view suffix, std::string_view s);
bool ContainsStr(std::string_view s, std::string_view part);

// Decimal integer (optional sign, leading blanks allowed); `def` for anything else.
int64_t StrToInt64Def(std::string_view s, int64_t def);
int StrToIntDef(std::string_view s, int def);
// Decimal integer; throws EConvertError "'TEXT' is not a valid integer value".
int64_t StrToInt64(std::string_view s);
std::string IntToStr(int64_t v);
// Upper-case hexadecimal with at least `digits` digits; a negative value is written as its
// 32-bit two's complement, as the Win32 tools print it.
std::string IntToHex(int64_t v, int digits);
// The value of one hexadecimal digit, or -1.
int HexDigitValue(char c);
// Reads hexadecimal digits only (no prefix, no sign, not empty); false for anything else.
bool TryHexToInt(std::string_view s, int64_t& out);
// Decimal, or hexadecimal after "$" or "0x"; `def` for anything else.
int64_t StrToIntHexDef(std::string_view s, int64_t def);

// The system's long date ("Tuesday, November 24, 2026") and short time ("1:55 PM") of a
// moment, in local time, with the names of the current LC_TIME locale.
std::string LongDateText(std::time_t t);
std::string ShortTimeText(std::time_t t);

// "True" or "False".
std::string BoolToStr(bool b);
// True for "True" in any letter case, false for anything else.
bool StrToBoolDef(std::string_view s, bool def = false);
// Strict form: "True"/"False" in any case; throws EConvertError otherwise.
bool StrToBool(std::string_view s);

// True for "\" and "/": paths written in Windows files use the first, this platform the second.
inline bool IsPathDelimiter(char c) {
  return c == '\\' || c == '/';
}
// The folder part of a path, up to and including the last separator (empty if none).
std::string ExtractFilePath(std::string_view path);
// The folder part without its trailing separator.
std::string ExtractFileDir(std::string_view path);
// The part after the last separator.
std::string ExtractFileName(std::string_view path);
// The extension of the file name, with its point ("" when none).
std::string ExtractFileExt(std::string_view path);
// The path with its extension replaced (ext includes the point).
std::string ChangeFileExt(std::string_view path, std::string_view ext);
// Appends the native separator unless the path already ends in either separator.
std::string IncludeTrailingPathDelimiter(std::string_view path);
// Removes one trailing separator of either kind.
std::string ExcludeTrailingPathDelimiter(std::string_view path);
// Replaces every occurrence of `from` (not empty) by `to`.
std::string StringReplaceAll(std::string_view s, std::string_view from, std::string_view to);

}  // namespace qv
