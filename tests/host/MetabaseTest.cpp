#include "Metabase.h"

#include <gtest/gtest.h>

#include "support/ErrorOf.h"

namespace {

std::string Export(std::string_view body, std::string_view ns = "V64_0") {
  return "<?xml version =\"1.0\"?>\n<configuration xmlns=\"urn:microsoft-catalog:XML_Metabase_" +
         std::string(ns) + "\">\n<MBProperty>\n" + std::string(body) +
         "</MBProperty>\n</configuration>\n";
}

TEST(Metabase, MalformedExportsNameFileAndLine) {
  const struct {
    std::string text, expected;
  } cases[] = {
      {"<configuration>\n<MBProperty", "mb.xml:2: Error parsing start element tag"},
      {Export("", "V70_0"),
       "mb.xml:2: not an IIS metabase export: expected <configuration "
       "xmlns=\"urn:microsoft-catalog:XML_Metabase_V64_0\"> (or XML_Metabase_V54_0)"},
      {"<configuration xmlns=\"urn:microsoft-catalog:XML_Metabase_V54_0\"/>",
       "mb.xml:1: no <MBProperty> element in <configuration>"},
      {Export("<IIsWebDirectory Path=\"C:\\\"/>\n"), "mb.xml:4: <IIsWebDirectory> has no Location"},
      {Export("<IIsWebDirectory Location =\"/LM/W3SVC/1/ROOT/A\"/>\n<IIsWebFile Location "
              "=\"/lm/w3svc/1/root/a/\"/>\n"),
       "mb.xml:5: Location \"/lm/w3svc/1/root/a/\" is already defined on line 4"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(qvtest::ErrorOf([&] { qvhost::TMetabase::LoadFromText(c.text, "mb.xml"); }),
              c.expected);
  auto mb = qvhost::TMetabase::LoadFromText(
      Export("<IIsWebFile Location =\"/LM/W3SVC/1/ROOT/a\"/>\n"), "");
  EXPECT_EQ(
      qvtest::ErrorOf([&] { mb->CoGetObject("IIS://h/W3SVC/1/ROOT/A")->GetProperty("Path"); }),
      "The metabase node /LM/W3SVC/1/ROOT/a has no property \"Path\"");
}

}  // namespace
