// The IIS metabase answered from an IIS 6 export (MetaBase.xml), so that "IIS://HOST/w3svc/
// N/ROOT/..." monikers bind off Windows. Every node with a Location becomes an object with
// the automation properties "class" (its element name) and "Path".
//
//   <configuration xmlns="urn:microsoft-catalog:XML_Metabase_V64_0"><MBProperty>
//     <IIsWebVirtualDir Location ="/LM/W3SVC/1/ROOT/App" Path="C:\Web\App"/>
//     <IIsWebDirectory Location ="/LM/W3SVC/1/ROOT/App/Sub"/>
//   </MBProperty></configuration>
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "QvAutomation.h"

namespace qvhost {

class TMetabase final : public qv::IQvAutomationServices {
 public:
  // Reads an export. Throws qv::Exception "FILE:LINE: reason" for a malformed file and
  // "Cannot read metabase file ..." for a missing one.
  static std::unique_ptr<TMetabase> LoadFromFile(const std::string& fileName);
  // The same from the file's bytes; `fileName` names it in errors.
  static std::unique_ptr<TMetabase> LoadFromText(std::string_view text,
                                                 const std::string& fileName);

  // The node "IIS://ANYHOST/PATH" names ("/LM/PATH" in the export, any letter case, one
  // trailing "/" ignored), or null when the export has none.
  qv::IntfPtr<qv::IQvDispatch> CoGetObject(const std::string& moniker) override;

 private:
  struct TNode {
    std::string Location, Class, Path;
    bool HasPath = false;
    int Line = 0;
  };
  void Read(std::string_view text, const std::string& fileName);

  // Upper-cased Location without a trailing "/" -> node.
  std::map<std::string, TNode> FNodes;
};

}  // namespace qvhost
