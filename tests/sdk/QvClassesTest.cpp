#include "QvClasses.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <signal.h>
#include <sys/resource.h>
#endif

#include <filesystem>

#include "QvExceptions.h"
#include "QvPaths.h"
#include "support/ErrorOf.h"
#include "support/TempDir.h"

using namespace qv;
using qvtest::ErrorOf;
using qvtest::TempDir;
using Strings = std::vector<std::string>;

namespace {

TEST(TStringList, BadIndexRaisesListIndexOutOfBounds) {
  TStringList l{"a", "b"};
  EXPECT_EQ(ErrorOf<EStringListError>([&] { l.Get(2); }), "List index out of bounds (2)");
  EXPECT_EQ(ErrorOf([&] { l.Get(-1); }), "List index out of bounds (-1)");
  EXPECT_EQ(ErrorOf([&] { l.Delete(5); }), "List index out of bounds (5)");
  EXPECT_EQ(ErrorOf([&] { l.Insert(3, "x"); }), "List index out of bounds (3)");
  l.Insert(2, "c");  // inserting at Count appends
  EXPECT_EQ(l.Text(), "a\r\nb\r\nc\r\n");
}

TEST(TStringList, TextJoinsWithCrLfAndSplitsOnAnyBreak) {
  TStringList l;
  l.SetText("one\r\ntwo\nthree\r\r\nfour");
  EXPECT_EQ(l.Strings(), (Strings{"one", "two", "three", "", "four"}));
  EXPECT_EQ(l.Text(), "one\r\ntwo\r\nthree\r\n\r\nfour\r\n");
  l.SetText("x\r\n");  // a final break ends the last line and adds none
  EXPECT_EQ(l.Strings(), Strings{"x"});
  l.SetText("");
  EXPECT_EQ(l.Count(), 0);
}

TEST(TStringList, NameValueAccessAndIndexOfIgnoreCaseUnlessCaseSensitive) {
  TStringList l{"Debug|Win32=Release|Win32", "plain line", "Key=a=b"};
  EXPECT_EQ(l.Names(0), "Debug|Win32");
  EXPECT_EQ(l.Names(1), "");
  EXPECT_EQ(l.Values("key"), "a=b");
  EXPECT_EQ(l.Values("missing"), "");
  l.SetValue("Key", "c");
  EXPECT_EQ(l[2], "Key=c");
  l.SetValue("New", "1");
  EXPECT_EQ(l[3], "New=1");
  l.SetValue("Key", "");  // an empty value deletes the line
  EXPECT_EQ(l.Strings(), (Strings{"Debug|Win32=Release|Win32", "plain line", "New=1"}));
  EXPECT_EQ(l.IndexOf("PLAIN Line"), 1);
  l.CaseSensitive = true;
  EXPECT_EQ(l.IndexOf("PLAIN Line"), -1);
  EXPECT_EQ(l.IndexOfName("new"), -1);
  EXPECT_EQ(l.IndexOf("plain line"), 1);
}

// (A blank ends an unquoted item and quotes keep one: the MSTest action's test lists pin that.)
TEST(TStringList, SetDelimitedTextParsesLikeTheHost) {
  const std::pair<const char*, Strings> cases[] = {
      {"a,,b", {"a", "", "b"}},
      {"a,", {"a", ""}},
      {"  a  ,\tb  ", {"a", "b"}},
      {"\"say \"\"hi\"\"\"", {"say \"hi\""}},
      {"\"unterminated, x", {"unterminated, x"}},
      {"\"a\"b", {"a", "b"}},
      {"", {}},
      {"one\r\ntwo", {"one", "two"}},
  };
  for (const auto& [text, items] : cases) {
    TStringList l;
    l.SetCommaText(text);
    EXPECT_EQ(l.Strings(), items) << text;
  }
}

TEST(TStringList, DelimitedTextQuotesWhereNeeded) {
  TStringList l{"plain", "with blank", "semi;colon", "c,d", "q\"uote", ""};
  EXPECT_EQ(l.CommaText(), "plain,\"with blank\",semi;colon,\"c,d\",\"q\"\"uote\",");
  l.Delimiter = ';';
  l.QuoteChar = '\'';
  EXPECT_EQ(l.DelimitedText(), "plain;'with blank';'semi;colon';c,d;q\"uote;");
  EXPECT_EQ(TStringList{""}.CommaText(), "\"\"");
}

TEST(TStringList, SortIgnoresCaseAndKeepsEqualItemsInOrder) {
  TStringList l{"beta", "Alpha", "alpha", "Gamma", "ALPHA"};
  l.Sort();
  EXPECT_EQ(l.Strings(), (Strings{"Alpha", "alpha", "ALPHA", "beta", "Gamma"}));
}

// ---- files ----

class TStringListFile : public testing::Test {
 protected:
  TempDir dir;
  TStringList l;
};

const std::string kUtf16LE(
    "\xFF\xFE"
    "a\0b\0\r\0\n\0\xE9\0\x3D\xD8\x00\xDE\r\0\n\0",
    20);

// Loaded and saved unchanged, every file comes back byte for byte (under a name outside ASCII).
TEST_F(TStringListFile, SavesBackByteForByte) {
  const std::pair<const char*, std::string> cases[] = {
      {"CrLfLfCr", "a\r\nb\nc\rd\r\n\n"},
      {"NoFinalNewline", "a\r\nb"},
      {"Empty", ""},
      {"OnlyBreak", "\r\n"},
      {"Utf8Bom", "\xEF\xBB\xBFMicrosoft\r\n# Visual\r\n"},
      {"EightBit", "caf\xE9\r\n\x80\xFF\r\n"},
      {"Utf16LE", kUtf16LE},
      {"Utf16BE", std::string("\xFE\xFF\0a\0\n\0b", 8)},
      {"Utf16LoneSurrogate", std::string("\xFF\xFEx\0\x00\xD8y\0", 8)},
  };
  for (const auto& [name, bytes] : cases) {
    std::string path = dir.Write("Prüfung/Ünïcode.txt", bytes);
    l.LoadFromFile(path);
    l.SaveToFile(path);
    EXPECT_EQ(TempDir::Read(path), bytes) << name;
    EXPECT_EQ(ResolveExistingFile(path), path);
  }
}

TEST_F(TStringListFile, DecodesUtf16IntoUtf8Lines) {
  l.LoadFromFile(dir.Write("u.txt", kUtf16LE));
  EXPECT_EQ(l.Strings(), (Strings{"ab", "\xC3\xA9\xF0\x9F\x98\x80"}));  // é and U+1F600
  EXPECT_EQ(l.Format().Encoding, TTextEncoding::UTF16LE);
}

TEST_F(TStringListFile, EditedLinesKeepTheirBreaksAndNewLinesTakeTheFilesStyle) {
  std::string path = dir.Write("m.rc", "a\r\nb\nc\r\nd\r\ne");
  l.LoadFromFile(path);
  l.Put(1, "B");       // keeps its LF
  l.Insert(3, "new");  // dominant break: CR LF
  l.Add("last");       // the file had no final newline and still has none
  l.SaveToFile(path);
  EXPECT_EQ(TempDir::Read(path), "a\r\nB\nc\r\nnew\r\nd\r\ne\r\nlast");
  // A list that was never loaded saves CR LF with a final newline.
  TStringList{"x", "y"}.SaveToFile(path);
  EXPECT_EQ(TempDir::Read(path), "x\r\ny\r\n");
}

TEST_F(TStringListFile, MissingFileNamesTheFile) {
  EXPECT_EQ(ErrorOf([&] { l.LoadFromFile(dir.File("nope.sln")); }),
            "Cannot open file \"" + dir.File("nope.sln") + "\". No such file or directory");
}

#ifndef _WIN32  // the file-size limit is POSIX's
TEST_F(TStringListFile, FailedSaveLeavesTheOriginalUntouched) {
  std::string path = dir.Write("keep.txt", "original\r\n");
  for (int i = 0; i < 1000; ++i)
    l.Add("a line long enough to exceed the small file size limit");

  // A file-size limit makes the write fail part way, for root as well as for other users.
  signal(SIGXFSZ, SIG_IGN);
  rlimit old;
  getrlimit(RLIMIT_FSIZE, &old);
  rlimit small = old;
  small.rlim_cur = 4096;
  setrlimit(RLIMIT_FSIZE, &small);
  std::string error = ErrorOf([&] { l.SaveToFile(path); });
  setrlimit(RLIMIT_FSIZE, &old);

  EXPECT_EQ(error, "Unable to write file \"" + path + "\" : File too large");
  EXPECT_EQ(TempDir::Read(path), "original\r\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1)
      << "no temporary file is left behind";
}

TEST_F(TStringListFile, SaveKeepsTheFilesPermissions) {
  std::string path = dir.Write("script.sh", "#!/bin/sh\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  l.LoadFromFile(path);
  l.Add("echo hi");
  l.SaveToFile(path);
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::owner_all);
}
#endif

TEST_F(TStringListFile, ASaveRemovesWhatAKilledSaveOfTheSameFileLeft) {
  dir.Write(".keep.txt.qvtmp.Ab12Cd", "half");
  dir.Write(".other.txt.qvtmp.Ab12Cd", "another file's");
  TStringList{"saved"}.SaveToFile(dir.File("keep.txt"));
  EXPECT_FALSE(std::filesystem::exists(dir.File(".keep.txt.qvtmp.Ab12Cd")));
  EXPECT_TRUE(std::filesystem::exists(dir.File(".other.txt.qvtmp.Ab12Cd")));
}

}  // namespace
