#include "Metabase.h"

#include <gtest/gtest.h>

#include "HostTestSupport.h"
#include "support/ErrorOf.h"

namespace {

using qvtest::ErrorOf;

std::string Export(std::string_view body, std::string_view ns = "V64_0") {
  return "<?xml version =\"1.0\"?>\n<configuration xmlns=\"urn:microsoft-catalog:XML_Metabase_" +
         std::string(ns) + "\">\n<MBProperty>\n" + std::string(body) + "</MBProperty>\n" +
         "</configuration>\n";
}

class Metabase : public ::testing::Test {
 protected:
  qvtest::TempDir Dir;
};

TEST_F(Metabase, MalformedExportsNameFileAndLine) {
  const struct {
    std::string text, expected;
  } cases[] = {
      {"<configuration>\n<MBProperty", "mb.xml:2: Error parsing start element tag"},
      {Export("", "V70_0"),
       "mb.xml:2: not an IIS metabase export: expected <configuration "
       "xmlns=\"urn:microsoft-catalog:XML_Metabase_V64_0\"> (or "
       "XML_Metabase_V54_0)"},
      {"<configuration xmlns=\"urn:microsoft-catalog:XML_Metabase_V54_0\"/>",
       "mb.xml:1: no <MBProperty> element in <configuration>"},
      {Export("<IIsWebDirectory Path=\"C:\\\"/>\n"), "mb.xml:4: <IIsWebDirectory> has no Location"},
      {Export("<IIsWebDirectory Location =\"/LM/W3SVC/1/ROOT/A\"/>\n"
              "<IIsWebVirtualDir Location =\"/lm/w3svc/1/root/a/\"/>\n"),
       "mb.xml:5: Location \"/lm/w3svc/1/root/a/\" is already defined on line 4"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ErrorOf([&] { qvhost::TMetabase::LoadFromText(c.text, "mb.xml"); }), c.expected);
}

TEST_F(Metabase, MonikersFindNodesWithoutRegardToCase) {
  auto mb = qvhost::TMetabase::LoadFromText(
      Export("<IIsWebVirtualDir Location =\"/LM/W3SVC/1/ROOT/App\" Path=\"D:\\App\">\n"
             "<Custom Name=\"x\"/></IIsWebVirtualDir>\n<IIsWebFile Location =\"/LM/W3SVC/1/"
             "ROOT/App/a.aspx\"/>\n"),
      "mb.xml");
  auto dir = mb->CoGetObject("iis://anyhost/w3svc/1/root/APP/");
  ASSERT_TRUE(dir);
  EXPECT_EQ(dir->GetProperty("Class") + " " + dir->GetProperty("path"), "IIsWebVirtualDir D:\\App");
  auto file = mb->CoGetObject("IIS://h/W3SVC/1/ROOT/App/a.aspx");
  ASSERT_TRUE(file);
  EXPECT_EQ(ErrorOf([&] { file->GetProperty("Path"); }),
            "The metabase node /LM/W3SVC/1/ROOT/App/a.aspx has no property \"Path\"");
  for (const char* none : {"IIS://h/w3svc/1/ROOT", "IIS://h/w3svc/2/ROOT/App", "LDAP://h/App"})
    EXPECT_FALSE(mb->CoGetObject(none)) << none;
}

TEST_F(Metabase, QvhostRefusesAMalformedExport) {
  std::string file = Dir.Write("MetaBase.xml", Export("<IIsWebDirectory/>\n"));
  auto r = qvhosttest::RunQvhost(Dir, "--metabase " + qvtest::ShellQuote(file) + " actions");
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_EQ(r.err, "qvhost: " + file + ":4: <IIsWebDirectory> has no Location\n");
  r = qvhosttest::RunQvhost(Dir, "actions", "QV_METABASE=" + Dir.File("none.xml"));
  EXPECT_EQ(r.err, "qvhost: Cannot read metabase file \"" + Dir.File("none.xml") +
                       "\" : No such file or directory\n");
}

}  // namespace
