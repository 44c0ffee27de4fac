#include "OptionsStore.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/TempDir.h"

using qvhost::TOptionsStore;
using qvtest::TempDir;

namespace {

// Options kept under "Demo", read from "DemoOld" when only that section exists.
struct TDemoOptions : qv::TQvOptionsObject {
  std::string GetName() const override { return "Demo"; }
  std::string GetCategory() const override { return "Tests"; }
  std::string GetOptionKey() const override { return "Demo"; }
  std::string GetOldVersionOptionKey() const override { return "DemoOld"; }
  void LoadOptions(qv::IQvOptionsReader& reader) override {
    Path = reader.ReadString("Path", "none");
    Count = reader.ReadInteger("Count", -1);
  }
  void SaveOptions(qv::IQvOptionsWriter& writer) override {
    writer.WriteString("Path", Path);
    writer.WriteInteger("Count", Count);
  }
  std::string Path;
  int64_t Count = 0;
};

qv::IntfPtr<TDemoOptions> Loaded(TOptionsStore& store) {
  qv::IntfPtr<TDemoOptions> options(new TDemoOptions);
  store.LoadObject(*options);
  return options;
}

TEST(TOptionsStore, StartsEmptyAndWritesItsFileOnlyWhenSavedInto) {
  TempDir dir;
  TOptionsStore store(dir.File("config/quorvex/options.xml"));
  auto options = Loaded(store);
  EXPECT_EQ(options->Path, "none");
  EXPECT_EQ(options->Count, -1);
  store.Flush();
  EXPECT_FALSE(std::filesystem::exists(dir.File("config")));

  options->Path = "C:\\Tools\\ & more";
  options->Count = 3;
  store.SaveObject(*options);
  store.Flush();
  EXPECT_EQ(TempDir::Read(dir.File("config/quorvex/options.xml")),
            "<?xml version=\"1.0\"?>\n"
            "<QvOptions>\n"
            "  <Section key=\"Demo\">\n"
            "    <Value name=\"Path\" type=\"string\">C:\\Tools\\ &amp; more</Value>\n"
            "    <Value name=\"Count\" type=\"integer\">3</Value>\n"
            "  </Section>\n"
            "</QvOptions>\n");
  // Carriage returns come back as they were saved.
  for (std::string path : {"a\rb\r\nc\n", "\r"}) {
    options->Path = path;
    store.SaveObject(*options);
    store.Flush();
    TOptionsStore again(dir.File("config/quorvex/options.xml"));
    EXPECT_EQ(Loaded(again)->Path, path);
  }
}

TEST(TOptionsStore, ReadsAnyLetterCaseTheOldKeyAndKeepsWhatItDoesNotOwn) {
  TempDir dir;
  std::string file = dir.Write("options.xml",
                               "<QvOptions>\n"
                               "  <!-- written by hand -->\n"
                               "  <Section key=\"OTHER\"><Value name=\"X\">1</Value></Section>\n"
                               "  <Section key=\"demoold\">\n"
                               "    <Value name=\"PATH\">  /opt/tools  </Value>\n"
                               "    <Value name=\"count\">many</Value>\n"
                               "  </Section>\n"
                               "</QvOptions>\n");
  TOptionsStore store(file);
  auto options = Loaded(store);
  EXPECT_EQ(options->Path, "  /opt/tools  ");
  EXPECT_EQ(options->Count, -1);  // not a number: the default
  store.SaveObject(*options);
  store.Flush();
  TOptionsStore reread(file);
  EXPECT_EQ(reread.Read("Other", "x", ""), "1");
  EXPECT_EQ(reread.Read("DEMO", "Path", ""), "  /opt/tools  ");
  EXPECT_NE(TempDir::Read(file).find("<!-- written by hand -->"), std::string::npos);
}

TEST(TOptionsStore, ReportsAMalformedFileWithItsLine) {
  TempDir dir;
  for (auto [text, error] :
       {std::pair<const char*, const char*>{"<QvOptions>\n<Section>\n</QvOptions>",
                                            ":3: Start-end tags mismatch"},
        {"<Options/>", ": The root element is not <QvOptions>"}}) {
    std::string file = dir.Write("options.xml", text);
    EXPECT_EQ(qvtest::ErrorOf([&] { TOptionsStore store(file); }), file + error);
  }
}

}  // namespace
