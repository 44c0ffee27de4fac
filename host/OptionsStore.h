// The host's options store: the settings of the plug-ins' options objects, kept per user in
// an XML file.
//
//   <QvOptions>
//     <Section key="VisualStudioDotNet">
//       <Value name="MSDevPath" type="string">C:\VS7\Common7\IDE\</Value>
//       <Value name="DefVSVersion" type="integer">3</Value>
//     </Section>
//   </QvOptions>
#pragma once

#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "QvOptions.h"

namespace qvhost {

// One options file: a section per option key, named values in each (names compare without
// regard to letter case, as registry keys do).
class TOptionsStore {
 public:
  // Loads `fileName`; a missing file is an empty store. Throws qv::Exception
  // "FILE:LINE: reason" for a malformed one.
  explicit TOptionsStore(std::string fileName);

  // "options.xml" in the host's per-user configuration folder.
  static std::string DefaultFileName();
  const std::string& FileName() const { return FFileName; }

  // Loads `options` from the section of its option key, or of its old-version key when only
  // that section exists.
  void LoadObject(qv::TQvOptionsObject& options);
  // Saves `options` into the section of its option key (values it does not write stay).
  void SaveObject(qv::TQvOptionsObject& options);
  // Writes the file atomically, creating its folder, when anything was saved into it.
  void Flush();

  // The text of a value, or `def` when the section or value is missing.
  std::string Read(std::string_view key, std::string_view name, const std::string& def) const;
  void Write(std::string_view key, std::string_view name, const std::string& value,
             const char* type);

 private:
  pugi::xml_node Section(std::string_view key) const;

  std::string FFileName;
  pugi::xml_document FDoc;
  bool FChanged = false;
};

}  // namespace qvhost
