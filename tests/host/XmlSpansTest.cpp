#include "XmlSpans.h"

#include <gtest/gtest.h>

using namespace qvhost;

namespace {

// The raw scanner must agree with the parser on text that tries to mislead it.
TEST(XmlSpans, FindsTagsAttributesAndEndsInTrickyText) {
  struct Case {
    std::string text;
    std::string attribute;  // the value of "value", or "-" when absent
    std::string element;    // the whole element
  } cases[] = {
      {"<P name='a>b' value=\"1/2\">x</P>", "1/2", "<P name='a>b' value=\"1/2\">x</P>"},
      {"<P value = 'q\"' />tail", "q\"", "<P value = 'q\"' />"},
      {"<P>a<!-- </P> --><P>in</P><![CDATA[</P>]]><?pi </P>?></P>rest", "-",
       "<P>a<!-- </P> --><P>in</P><![CDATA[</P>]]><?pi </P>?></P>"},
      {"<P\n\tvalues='no'\n>\n</P>", "-", "<P\n\tvalues='no'\n>\n</P>"},
  };
  for (const auto& c : cases) {
    TStartTag tag = ScanStartTag(c.text, 1);
    size_t begin = 0, end = 0;
    bool found = FindAttributeValue(c.text, tag, "value", begin, end);
    EXPECT_EQ(found ? c.text.substr(begin, end - begin) : "-", c.attribute) << c.text;
    EXPECT_EQ(c.text.substr(0, ElementEnd(c.text, tag)), c.element) << c.text;
  }
}

TEST(XmlSpans, LinesIndentsAndEscapes) {
  std::string text = "<a>\r\n\t  <b/> <c/>\r\n</a>";
  EXPECT_EQ(LineAt(text, text.find("<b")), 2);
  EXPECT_EQ(IndentBefore(text, text.find("<b")), "\t  ");
  EXPECT_EQ(IndentBefore(text, text.find("<c")), "");
  EXPECT_EQ(LineBreakOf(text), "\r\n");
  EXPECT_EQ(LineBreakOf("<a/>"), "\n");
  EXPECT_EQ(EscapeXml("a<b>&\"c\"\r\n\t", false), "a&lt;b&gt;&amp;\"c\"&#13;\n\t");
  EXPECT_EQ(EscapeXml("a<b>&\"c\"\r\n\t", true), "a&lt;b&gt;&amp;&quot;c&quot;&#13;&#10;&#9;");
}

}  // namespace
