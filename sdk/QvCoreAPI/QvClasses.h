// TStringList: the one string-list type of the SDK, and the text-file codec behind it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qv {

// How a file's text is stored on disk. Ansi means "no byte-order mark": the bytes are
// kept as they are (8-bit text or UTF-8 without BOM). The others carry a BOM.
enum class TTextEncoding : uint8_t { Ansi, UTF8, UTF16LE, UTF16BE };

// The end of one line. Default means "whatever the list's format uses".
enum class TLineBreak : uint8_t { None, LF, CRLF, CR, Default };

// What a loaded file looked like, so that saving writes it back the same way.
struct TTextFormat {
  TTextEncoding Encoding = TTextEncoding::Ansi;
  TLineBreak DominantBreak = TLineBreak::CRLF;  // used for new and edited lines
  bool FinalNewline = true;                     // the last line ends with a break
};

// One decoded line with the break that ended it in the file.
struct TTextLine {
  std::string Text;
  TLineBreak Break = TLineBreak::Default;
};

// The text of file bytes as UTF-8 (BOM detected): a view into `bytes`, or into `decoded` for
// UTF-16. `fileName` names the file in errors. Throws Exception for UTF-16 text of odd length.
std::string_view DecodeText(std::string_view bytes, TTextFormat& format, std::string& decoded,
                            const std::string& fileName);
// Decodes file bytes (BOM detected) into UTF-8 lines. `fileName` names the file in errors.
// Throws Exception for UTF-16 text of odd length.
std::vector<TTextLine> DecodeTextFile(std::string_view bytes, TTextFormat& format,
                                      const std::string& fileName);
// A text file's lines, decoded as DecodeTextFile decodes them, as views into one buffer: a large
// file read line by line without a string per line. Throws as TStringList::LoadFromFile does.
class TTextFileLines {
 public:
  explicit TTextFileLines(const std::string& fileName);
  // The lines of `bytes`, the contents of the file `fileName`.
  TTextFileLines(std::string bytes, const std::string& fileName);
  TTextFileLines(const TTextFileLines&) = delete;
  TTextFileLines& operator=(const TTextFileLines&) = delete;

  int Count() const { return static_cast<int>(FLines.size()); }
  // Throws EStringListError on a bad index, as a string list does.
  std::string_view operator[](int index) const;
  // Removes the first `count` lines.
  void DeleteFirst(int count);

 private:
  std::string FBytes, FDecoded;
  std::vector<std::string_view> FLines;
};

// Encodes lines back into file bytes in `format`.
std::string EncodeTextFile(const std::vector<TTextLine>& lines, const TTextFormat& format);

// Ordered list of strings with Delphi TStringList semantics: Text joined with CR LF,
// name=value access, delimited text with a quote character, case-insensitive compares
// by default, and "List index out of bounds (N)" on a bad index.
class TStringList {
 public:
  TStringList() = default;
  TStringList(std::initializer_list<std::string> items);

  int Count() const { return static_cast<int>(FItems.size()); }
  bool Empty() const { return FItems.empty(); }

  // Item access; throws EStringListError on a bad index.
  const std::string& operator[](int index) const;
  const std::string& Get(int index) const { return (*this)[index]; }
  void Put(int index, const std::string& s);
  intptr_t Objects(int index) const;
  void PutObject(int index, intptr_t obj);

  int Add(const std::string& s) { return AddObject(s, 0); }
  int AddObject(const std::string& s, intptr_t obj);
  void Insert(int index, const std::string& s);
  void Delete(int index);
  void Exchange(int i, int j);
  void Clear();
  void Assign(const TStringList& other);
  void AddStrings(const TStringList& other);

  // First index of `s` (case-insensitive unless CaseSensitive), or -1.
  int IndexOf(std::string_view s) const;
  // First index whose name part equals `name` (compared as IndexOf does), or -1.
  int IndexOfName(std::string_view name) const;
  // Text before the first "=", or empty when the line has none.
  std::string Names(int index) const;
  // Text after the first "=", or empty when the line has none.
  std::string ValueFromIndex(int index) const;
  // The value of the first line named `name`, or empty.
  std::string Values(std::string_view name) const;
  // Sets (or, with an empty value, deletes) the line named `name`.
  void SetValue(std::string_view name, const std::string& value);

  // Lines each followed by CR LF.
  std::string Text() const;
  // Replaces the list with the lines of `text` (CR LF, LF or CR end a line).
  void SetText(std::string_view text);

  // Items joined by Delimiter, quoted with QuoteChar where they hold blanks, control
  // characters, the delimiter or the quote character.
  std::string DelimitedText() const;
  // Replaces the list by parsing `text`: a delimiter or a character from 1 to 32 ends an
  // unquoted item; a quoted item may hold anything, two quote characters standing for one.
  void SetDelimitedText(std::string_view text);
  std::string CommaText() const;
  void SetCommaText(std::string_view text);

  // Sorts case-insensitively (or exactly with CaseSensitive), keeping equal items in order.
  void Sort();

  // Loads a file (any BOM encoding; 8-bit text passes through). Throws Exception
  // "Cannot open file "PATH". REASON" when it cannot be read.
  void LoadFromFile(const std::string& fileName);
  // Saves atomically in the format the list was loaded with (CR LF and 8-bit for a new
  // list): untouched lines keep their bytes and line breaks. Throws on failure.
  void SaveToFile(const std::string& fileName) const;
  const TTextFormat& Format() const { return FFormat; }
  void SetFormat(const TTextFormat& format) { FFormat = format; }
  // The break that ends line `index` on disk (Default for a line added since loading,
  // which is saved with the format's dominant break). Throws on a bad index.
  TLineBreak LineBreak(int index) const;
  void SetLineBreak(int index, TLineBreak br);

  char Delimiter = ',';
  char QuoteChar = '"';
  bool CaseSensitive = false;

  using const_iterator = std::vector<std::string>::const_iterator;
  const_iterator begin() const { return FItems.begin(); }
  const_iterator end() const { return FItems.end(); }
  const std::vector<std::string>& Strings() const { return FItems; }

  friend bool operator==(const TStringList& a, const TStringList& b) {
    return a.FItems == b.FItems;
  }

 private:
  void CheckIndex(int index) const;
  bool SameItem(std::string_view a, std::string_view b) const;

  std::vector<std::string> FItems;
  std::vector<intptr_t> FObjects;
  std::vector<TLineBreak> FBreaks;
  TTextFormat FFormat;
};

}  // namespace qv
