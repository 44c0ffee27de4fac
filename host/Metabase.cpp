#include "Metabase.h"

#include <pugixml.hpp>

#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "XmlSpans.h"

namespace qvhost {

namespace {

constexpr std::string_view kNamespaces[] = {"urn:microsoft-catalog:XML_Metabase_V54_0",
                                            "urn:microsoft-catalog:XML_Metabase_V64_0"};

std::string NodeKey(std::string_view location) {
  if (location.size() > 1 && location.ends_with('/')) location.remove_suffix(1);
  return qv::UpperCase(location);
}

class TMetabaseObject : public qv::TInterfacedObject, public qv::IQvDispatch {
 public:
  TMetabaseObject(std::string location, std::string cls, std::string path, bool hasPath)
      : FLocation(std::move(location)),
        FClass(std::move(cls)),
        FPath(std::move(path)),
        FHasPath(hasPath) {}

  // Automation names are matched without regard to case.
  std::string GetProperty(const std::string& name) override {
    if (qv::SameText(name, "class")) return FClass;
    if (qv::SameText(name, "Path") && FHasPath) return FPath;
    throw qv::Exception("The metabase node " + FLocation + " has no property \"" + name + "\"");
  }

 protected:
  void* GetInterface(const qv::TGUID& iid) override {
    if (void* p = qv::QueryInterfaceList<qv::IQvDispatch>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  std::string FLocation, FClass, FPath;
  bool FHasPath;
};

bool IsMetabaseNamespace(std::string_view ns) {
  for (std::string_view known : kNamespaces)
    if (ns == known) return true;
  return false;
}

}  // namespace

std::unique_ptr<TMetabase> TMetabase::LoadFromFile(const std::string& fileName) {
  std::string text, error;
  if (!qv::platform::ReadWholeFile(fileName, text, error))
    throw qv::Exception("Cannot read metabase file \"" + fileName + "\" : " + error);
  return LoadFromText(text, fileName);
}

std::unique_ptr<TMetabase> TMetabase::LoadFromText(std::string_view text,
                                                   const std::string& fileName) {
  std::unique_ptr<TMetabase> metabase(new TMetabase);
  metabase->Read(text, fileName);
  return metabase;
}

void TMetabase::Read(std::string_view text, const std::string& fileName) {
  auto fail = [&](size_t offset, const std::string& reason) {
    throw qv::Exception(fileName + ":" + std::to_string(LineAt(text, offset)) + ": " + reason);
  };
  auto offsetOf = [](pugi::xml_node n) { return static_cast<size_t>(n.offset_debug()); };
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
    fail(0, "a metabase export must be UTF-8 text, not UTF-16");
  pugi::xml_document doc;
  pugi::xml_parse_result parsed =
      doc.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!parsed) fail(static_cast<size_t>(parsed.offset), parsed.description());
  pugi::xml_node root = doc.document_element();
  if (std::string_view(root.name()) != "configuration" ||
      !IsMetabaseNamespace(root.attribute("xmlns").value()))
    fail(offsetOf(root), "not an IIS metabase export: expected <configuration xmlns=\"" +
                             std::string(kNamespaces[1]) + "\"> (or XML_Metabase_V54_0)");
  pugi::xml_node properties = root.child("MBProperty");
  if (!properties) fail(offsetOf(root), "no <MBProperty> element in <configuration>");
  for (pugi::xml_node e : properties.children()) {
    if (e.type() != pugi::node_element) continue;
    pugi::xml_attribute location = e.attribute("Location");
    int line = LineAt(text, offsetOf(e));
    if (!location) fail(offsetOf(e), "<" + std::string(e.name()) + "> has no Location");
    pugi::xml_attribute path = e.attribute("Path");
    TNode node{location.value(), e.name(), path.value(), static_cast<bool>(path), line};
    auto [it, added] = FNodes.emplace(NodeKey(node.Location), node);
    if (!added)
      fail(offsetOf(e), "Location \"" + node.Location + "\" is already defined on line " +
                            std::to_string(it->second.Line));
  }
}

qv::IntfPtr<qv::IQvDispatch> TMetabase::CoGetObject(const std::string& moniker) {
  constexpr std::string_view kScheme = "IIS://";
  if (moniker.size() < kScheme.size() || !qv::SameText(moniker.substr(0, kScheme.size()), kScheme))
    return nullptr;
  size_t slash = moniker.find('/', kScheme.size());
  std::string location = "/LM" + (slash == std::string::npos ? "" : moniker.substr(slash));
  auto it = FNodes.find(NodeKey(location));
  if (it == FNodes.end()) return nullptr;
  const TNode& n = it->second;
  return qv::MakeIntf<qv::IQvDispatch, TMetabaseObject>(n.Location, n.Class, n.Path, n.HasPath);
}

}  // namespace qvhost
