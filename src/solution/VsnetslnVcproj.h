// Visual C++ project files (.vcproj) read through a conforming XML parser, as the platform's
// XML DOM reads them: what it rejects makes the whole solution fail to open.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qv {

// The RelativePath of every File element with an ".rc" extension (any letter case) inside
// the first-level filters (VisualStudioProject/Files/Filter/File), in document order; none
// when the document element is not VisualStudioProject. Throws Exception "Error parsing
// project file : REASON (line N of PATH)" when the text is not well-formed XML with
// well-formed namespaces.
std::vector<std::string> ReadVcprojResourceScripts(std::string_view text, const std::string& path);

}  // namespace qv
