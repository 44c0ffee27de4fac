// Host utilities that packages call: text files, paths, regular expressions, quoting,
// tokenising, host folders and names, variable expansion.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "QvClasses.h"

namespace qv {

// Loads a text file of any encoding the host knows (UTF-8 with or without BOM, UTF-16 LE
// or BE with BOM, 8-bit) into `lines`. Throws Exception naming the file when unreadable.
void LoadUnicodeFile(const std::string& fileName, TStringList& lines);

// Resolves `path` against the folder `base`. "\" and "/" are both separators; "." and ".."
// are folded; an absolute path is kept. The result uses the native separator. A relative
// base is taken from the current folder. Drive-letter and UNC paths are returned unchanged
// on systems that have neither.
std::string ExpandRelativePath(std::string_view path, std::string_view base);

// Perl-style regular expression (PCRE2, UTF-8 subject). Compiled patterns are cached per
// thread. Throws Exception on a malformed pattern.
class TRegExpr {
 public:
  explicit TRegExpr(std::string_view pattern, bool caseInsensitive = false);
  ~TRegExpr();
  TRegExpr(TRegExpr&&) noexcept;
  TRegExpr& operator=(TRegExpr&&) noexcept;

  // Searches `subject` (unanchored); true on a match, whose groups are then available.
  bool Exec(std::string_view subject);
  // Text of group n (0 = whole match); empty for a group that did not take part.
  std::string Match(int n) const;
  // Byte offset of group n in the subject, or -1.
  long MatchPos(int n) const;
  int GroupCount() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> FImpl;
};

// True when `pattern` matches anywhere in `text`.
bool ExecRegExpr(std::string_view pattern, std::string_view text);

// Splits `text` at any of `delimiters`; each token trimmed of blanks when `trim`.
// Empty tokens are kept ("a,,b" gives three), an empty text gives none.
std::vector<std::string> Tokenize(std::string_view text, std::string_view delimiters,
                                  bool trim = true);

// Wraps `s` in double quotes; with onlyWhenNeeded, only when it holds a blank or is empty.
std::string DoubleQuoteString(std::string_view s, bool onlyWhenNeeded = false);

// The folder of the host application, with a trailing separator.
std::string GetQvAppPath();
// The temporary folder, without a trailing separator.
std::string GetTempFolder();
// This computer's name as Windows networking spells it: the host name up to its first
// point, at most 15 characters, upper case.
std::string GetComputerNetName();

// The parts of a web address "PROTOCOL://[USER@]HOST[:PORT]/PATH/DOCUMENT[?QUERY]".
struct TQvURI {
  std::string Protocol, Host;
  std::string Port;      // empty when the address gives none
  std::string Path;      // from the first "/" after the host up to and including the last
  std::string Document;  // the name after the path
};
// Splits `address` into its parts; percent escapes in path and document are decoded. An
// address without "://" is all path and document.
TQvURI ParseURI(std::string_view address);

// `s` as a JSON string literal, quotes included. Bytes that are not UTF-8 are taken as
// Latin-1 characters, so any 8-bit text yields valid JSON.
std::string JsonString(std::string_view s);
// Appends JsonString(s) to `out`.
void AppendJsonString(std::string& out, std::string_view s);

// Looks a variable up by name; nullopt when there is none.
using TVariableLookup = std::function<std::optional<std::string>(std::string_view name)>;
// Replaces %NAME% by the variable's value; "%%" is one percent sign; a "%" that does not
// open a well-formed name (letters, digits, "_", "." and "-") stays as it is. Throws
// Exception "Variable "NAME" is not defined" for an unknown name.
std::string ExpandVariables(std::string_view text, const TVariableLookup& lookup);

}  // namespace qv
