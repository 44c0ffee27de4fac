// Arbitrary text as a value saved into a project file in place. Oracle: the saved file loads
// again and reads back every value as it was set, the changed ones included.
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "ProjectFile.h"
#include "QvExceptions.h"

namespace {

const char kProject[] =
    "<?xml version=\"1.0\"?>\r\n<QvProject>\r\n  <!-- nightly -->\r\n"
    "  <PropertySets><PropertySet name='W'><Property name='A' value='1'/></PropertySet>"
    "</PropertySets>\r\n  <Actions>\r\n    <Action type='T'>\r\n"
    "      <Property name=\"Attr\" value=\"x\"/>\r\n      <Property name='Single' value='y'/>\r\n"
    "      <Property name=\"Text\">old</Property>\r\n"
    "      <Property name=\"List\"><Line>a</Line></Property>\r\n    </Action>\r\n"
    "  </Actions>\r\n</QvProject>\r\n";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string value(reinterpret_cast<const char*>(data), size);
  // Project files hold UTF-8 XML text: values that XML cannot carry are out of scope.
  for (unsigned char c : value)
    if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') return 0;
  static const std::string path = "/tmp/qv-fuzz-" + std::to_string(getpid()) + ".qvproj";
  std::ofstream(path, std::ios::binary | std::ios::trunc) << kProject;
  auto project = qvhost::TProjectFile::Load(path);
  const auto& action = project->Actions()[0];
  for (const char* name : {"Attr", "Single", "Text", "Added"})
    project->SetProperty(action.Node, name, value, false);
  project->SetProperty(project->PropertySets()[0].Node, "A", value, false);
  project->SaveChanges();
  auto again = qvhost::TProjectFile::Load(path);  // throws (and so crashes) when unloadable
  for (const auto& p : again->Actions()[0].Properties)
    if (p.Name != "List" && p.Value != value) std::abort();
  if (again->PropertySets()[0].Properties[0].Value != value) std::abort();
  return 0;
}
