// Project files: the build process the host runs, stored as XML, and the saving back of the
// values that change during a run.
//
//   <QvProject>
//     <Variables><Variable name="Config" value="Release"/></Variables>
//     <PropertySets><PropertySet name="Win32"><Property name="Major" value="1"/></PropertySet>
//     </PropertySets>
//     <Actions>
//       <Action type="TQvSomeAction" caption="Build" enabled="true">
//         <Property name="Solution">%ROOT%\App.sln</Property>
//         <Property name="Projects"><Line>{GUID}</Line><Line>{GUID}</Line></Property>
//         <Actions>...nested actions of a loop action...</Actions>
//       </Action>
//     </Actions>
//   </QvProject>
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "QvExceptions.h"

namespace qvhost {

// A stored value: a "value" attribute, the element's text, or <Line> elements for a list.
struct TProjectProperty {
  std::string Name;
  std::string Value;  // a list's lines each end with CR LF, as TStringList::Text gives them
  bool IsList = false;
  pugi::xml_node Node;
};

struct TProjectVariable {
  std::string Name, Value;
};

struct TProjectPropertySet {
  std::string Name;
  std::vector<TProjectProperty> Properties;
  pugi::xml_node Node;
};

struct TProjectAction {
  std::string Type;     // the class name (or caption) of the registered action type
  std::string Caption;  // empty: the registered caption
  bool Enabled = true;
  bool HasNestedActions = false;  // an <Actions> element was present, even an empty one
  std::vector<TProjectProperty> Properties;
  std::vector<TProjectAction> Actions;
  pugi::xml_node Node;
};

// A project file that cannot be read or set up: "FILE:LINE: reason", or (line 0) a reason
// that names the file itself.
class TProjectFileError : public qv::Exception {
 public:
  TProjectFileError(std::string file, int64_t line, const std::string& reason);
  ~TProjectFileError() override;
  std::string File;
  int64_t Line;
  std::string Reason;
};

// A loaded project file. It keeps the file's bytes so that values changed by a run can be
// written back in place: only their text differs afterwards, every other byte (comments,
// layout, line breaks, a byte-order mark) is kept.
class TProjectFile {
 public:
  // Reads and checks `fileName` (UTF-8, with or without a byte-order mark). Throws
  // qv::Exception "FILE:LINE: reason" for a malformed file or "Cannot read ..." for a missing
  // one.
  static std::unique_ptr<TProjectFile> Load(const std::string& fileName);

  const std::string& FileName() const { return FFileName; }
  const std::vector<TProjectVariable>& Variables() const { return FVariables; }
  const std::vector<TProjectPropertySet>& PropertySets() const { return FPropertySets; }
  const std::vector<TProjectAction>& Actions() const { return FActions; }

  // The line of a node in the file.
  int64_t LineOf(pugi::xml_node node) const;
  // Throws TProjectFileError "FILE:LINE: message" about `node`.
  [[noreturn]] void Fail(pugi::xml_node node, const std::string& message) const;

  // Records that property `name` of `owner` (an <Action> or <PropertySet> element) now holds
  // `value` (with `asList`, lines as TStringList::Text gives them). A value equal to the
  // stored one is no change; a property the file lacks is added after the owner's last one.
  void SetProperty(pugi::xml_node owner, const std::string& name, const std::string& value,
                   bool asList);
  // Writes the recorded changes into the file atomically; false when there were none. Call
  // once. Throws qv::Exception when the file changed on disk since it was loaded, or cannot be
  // written (the file then stays as it was).
  bool SaveChanges();

 private:
  struct TChange {
    pugi::xml_node Owner;
    std::string Name, Value;
    bool AsList;
  };
  struct TEdit {
    size_t Pos, Len;
    std::string Text;
  };

  TProjectFile() = default;
  void ReadRoot();
  void ReadVariables(pugi::xml_node list);
  void ReadPropertySets(pugi::xml_node list);
  void ReadActions(pugi::xml_node list, std::vector<TProjectAction>& into);
  TProjectAction ReadAction(pugi::xml_node node);
  TProjectProperty ReadProperty(pugi::xml_node node);
  void CheckNoText(pugi::xml_node node) const;

  TEdit EditFor(const TChange& change) const;
  TEdit InsertionFor(const TChange& change) const;
  std::string FormatProperty(const TChange& change, const std::string& indent) const;

  std::string FFileName;
  std::string FText;
  pugi::xml_document FDoc;
  std::vector<TProjectVariable> FVariables;
  std::vector<TProjectPropertySet> FPropertySets;
  std::vector<TProjectAction> FActions;
  std::vector<TChange> FChanges;
};

}  // namespace qvhost
