// Positions inside the raw text of an XML file that pugixml has parsed, so that one value can
// be rewritten in place while every other byte stays as it was.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "QvText.h"

namespace qvhost {

using qv::LineAt;

// An element's start tag: from its "<" to just after its ">" ("/>" when self-closing).
struct TStartTag {
  size_t Begin = 0;
  size_t End = 0;
  bool SelfClosing = false;
};

// The start tag of the element whose name begins at `nameOffset` (pugixml's offset_debug of
// an element). The text must be well-formed there.
TStartTag ScanStartTag(std::string_view text, size_t nameOffset);

// The span of the value of attribute `name` (exact spelling) inside `tag`, quotes excluded;
// false when the tag has no such attribute.
bool FindAttributeValue(std::string_view text, const TStartTag& tag, std::string_view name,
                        size_t& begin, size_t& end);

// The offset of the "</" that closes the element of `tag` (its End when self-closing); nested
// elements, comments, CDATA sections and processing instructions are stepped over.
size_t EndTagBegin(std::string_view text, const TStartTag& tag);

// The offset just after the element of `tag`, end tag included.
size_t ElementEnd(std::string_view text, const TStartTag& tag);

// The blanks and tabs that precede `pos` on its line, or "" when other text precedes it.
std::string IndentBefore(std::string_view text, size_t pos);

// "\r\n" when the text's first line break is CR LF, "\n" otherwise.
std::string_view LineBreakOf(std::string_view text);

// `s` escaped for element content (&, <, >, CR; content of blanks only entirely as
// character references, which the reader keeps) or, with `attribute`, for a double-quoted
// attribute value delimited by either quote (also " and ' as entities, LF and tab as
// character references).
std::string EscapeXml(std::string_view s, bool attribute);

}  // namespace qvhost
