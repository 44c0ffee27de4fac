#include "ProjectFile.h"

#include <algorithm>

#include "QvClasses.h"
#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#include "XmlSpans.h"

namespace qvhost {

namespace {

bool IsText(pugi::xml_node n) {
  return n.type() == pugi::node_pcdata || n.type() == pugi::node_cdata;
}

bool IsBlankText(pugi::xml_node n) {
  return IsText(n) && qv::Trim(n.value()).empty();
}

// The text of an element: its text and CDATA children joined (comments between them dropped).
std::string TextOf(pugi::xml_node node) {
  std::string text;
  for (pugi::xml_node c : node.children())
    if (IsText(c)) text += c.value();
  return text;
}

// A named child element of `owner` whose "name" attribute is `name` (any letter case).
pugi::xml_node FindNamed(pugi::xml_node owner, const char* element, std::string_view name) {
  for (pugi::xml_node c : owner.children(element))
    if (qv::SameText(c.attribute("name").value(), name)) return c;
  return {};
}

bool SameValue(const std::string& a, const std::string& b, bool asList) {
  if (!asList) return a == b;
  qv::TStringList la, lb;
  la.SetText(a);
  lb.SetText(b);
  la.CaseSensitive = true;
  return la.Strings() == lb.Strings();
}

}  // namespace

std::unique_ptr<TProjectFile> TProjectFile::Load(const std::string& fileName) {
  std::unique_ptr<TProjectFile> file(new TProjectFile);
  file->FFileName = fileName;
  std::string error;
  if (!qv::platform::ReadWholeFile(fileName, file->FText, error))
    throw TProjectFileError(fileName, 0,
                            "Cannot read project file \"" + fileName + "\" : " + error);
  const std::string& text = file->FText;
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
    throw TProjectFileError(fileName, 1, "A project file must be UTF-8 text, not UTF-16");
  pugi::xml_parse_result parsed =
      file->FDoc.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!parsed)
    throw TProjectFileError(fileName, static_cast<int64_t>(LineAt(text, parsed.offset)),
                            parsed.description());
  file->ReadRoot();
  return file;
}

TProjectFileError::TProjectFileError(std::string file, int64_t line, const std::string& reason)
    : qv::Exception(line > 0 ? file + ":" + std::to_string(line) + ": " + reason : reason),
      File(std::move(file)),
      Line(line),
      Reason(reason) {}

TProjectFileError::~TProjectFileError() = default;

int64_t TProjectFile::LineOf(pugi::xml_node node) const {
  return static_cast<int64_t>(LineAt(FText, static_cast<size_t>(node.offset_debug())));
}

void TProjectFile::Fail(pugi::xml_node node, const std::string& message) const {
  throw TProjectFileError(FFileName, LineOf(node), message);
}

void TProjectFile::CheckNoText(pugi::xml_node node) const {
  for (pugi::xml_node c : node.children())
    if (IsText(c) && !IsBlankText(c))
      Fail(c, "Unexpected text in <" + std::string(node.name()) + ">");
}

void TProjectFile::ReadRoot() {
  pugi::xml_node root = FDoc.document_element();
  if (!root) throw TProjectFileError(FFileName, 1, "The file holds no <QvProject> element");
  if (std::string_view(root.name()) != "QvProject")
    Fail(root, "The root element is <" + std::string(root.name()) + ">, not <QvProject>");
  CheckNoText(root);
  for (pugi::xml_node c = root.first_child(); c; c = c.next_sibling()) {
    if (c.type() != pugi::node_element) continue;
    std::string_view name = c.name();
    if (name == "Variables")
      ReadVariables(c);
    else if (name == "PropertySets")
      ReadPropertySets(c);
    else if (name == "Actions")
      ReadActions(c, FActions);
    else
      Fail(c, "Unexpected element <" + std::string(name) + "> in <QvProject>");
  }
}

void TProjectFile::ReadVariables(pugi::xml_node list) {
  CheckNoText(list);
  for (pugi::xml_node c = list.first_child(); c; c = c.next_sibling()) {
    if (c.type() != pugi::node_element) continue;
    if (std::string_view(c.name()) != "Variable")
      Fail(c, "Unexpected element <" + std::string(c.name()) + "> in <Variables>");
    std::string name = c.attribute("name").value();
    if (name.empty()) Fail(c, "A <Variable> needs a name");
    pugi::xml_attribute value = c.attribute("value");
    FVariables.push_back({name, value ? value.value() : TextOf(c)});
  }
}

void TProjectFile::ReadPropertySets(pugi::xml_node list) {
  CheckNoText(list);
  for (pugi::xml_node set = list.first_child(); set; set = set.next_sibling()) {
    if (set.type() != pugi::node_element) continue;
    if (std::string_view(set.name()) != "PropertySet")
      Fail(set, "Unexpected element <" + std::string(set.name()) + "> in <PropertySets>");
    TProjectPropertySet ps{set.attribute("name").value(), {}, set};
    if (ps.Name.empty()) Fail(set, "A <PropertySet> needs a name");
    CheckNoText(set);
    for (pugi::xml_node c = set.first_child(); c; c = c.next_sibling()) {
      if (c.type() != pugi::node_element) continue;
      if (std::string_view(c.name()) != "Property")
        Fail(c, "Unexpected element <" + std::string(c.name()) + "> in <PropertySet>");
      ps.Properties.push_back(ReadProperty(c));
    }
    FPropertySets.push_back(std::move(ps));
  }
}

void TProjectFile::ReadActions(pugi::xml_node list, std::vector<TProjectAction>& into) {
  CheckNoText(list);
  for (pugi::xml_node c = list.first_child(); c; c = c.next_sibling()) {
    if (c.type() != pugi::node_element) continue;
    if (std::string_view(c.name()) != "Action")
      Fail(c, "Unexpected element <" + std::string(c.name()) + "> in <Actions>");
    into.push_back(ReadAction(c));
  }
}

TProjectAction TProjectFile::ReadAction(pugi::xml_node node) {
  TProjectAction action;
  action.Node = node;
  action.Type = node.attribute("type").value();
  if (action.Type.empty()) Fail(node, "An <Action> needs a type");
  action.Caption = node.attribute("caption").value();
  if (pugi::xml_attribute enabled = node.attribute("enabled")) {
    if (!qv::SameText(enabled.value(), "true") && !qv::SameText(enabled.value(), "false"))
      Fail(node, "enabled must be true or false, not \"" + std::string(enabled.value()) + "\"");
    action.Enabled = qv::SameText(enabled.value(), "true");
  }
  CheckNoText(node);
  for (pugi::xml_node c = node.first_child(); c; c = c.next_sibling()) {
    if (c.type() != pugi::node_element) continue;
    std::string_view name = c.name();
    if (name == "Property") {
      action.Properties.push_back(ReadProperty(c));
    } else if (name == "Actions" && !action.HasNestedActions) {
      action.HasNestedActions = true;
      ReadActions(c, action.Actions);
    } else {
      Fail(c, "Unexpected element <" + std::string(name) + "> in <Action>");
    }
  }
  return action;
}

TProjectProperty TProjectFile::ReadProperty(pugi::xml_node node) {
  TProjectProperty p{node.attribute("name").value(), {}, false, node};
  if (p.Name.empty()) Fail(node, "A <Property> needs a name");
  bool hasText = false;
  for (pugi::xml_node c = node.first_child(); c; c = c.next_sibling()) {
    if (IsText(c)) {
      hasText = hasText || !IsBlankText(c);
    } else if (c.type() == pugi::node_element) {
      if (std::string_view(c.name()) != "Line")
        Fail(c, "Unexpected element <" + std::string(c.name()) + "> in <Property>");
      p.IsList = true;
      p.Value += TextOf(c) + "\r\n";
    }
  }
  pugi::xml_attribute value = node.attribute("value");
  if (value && (hasText || p.IsList))
    Fail(node, "Property \"" + p.Name + "\" has both a value attribute and content");
  if (hasText && p.IsList) Fail(node, "Property \"" + p.Name + "\" mixes <Line> elements and text");
  if (!p.IsList) p.Value = value ? value.value() : TextOf(node);
  return p;
}

// ---- saving back -------------------------------------------------------------------------

void TProjectFile::SetProperty(pugi::xml_node owner, const std::string& name,
                               const std::string& value, bool asList) {
  auto same = [&](const TChange& c) { return c.Owner == owner && qv::SameText(c.Name, name); };
  FChanges.erase(std::remove_if(FChanges.begin(), FChanges.end(), same), FChanges.end());
  pugi::xml_node existing = FindNamed(owner, "Property", name);
  if (existing) {
    if (SameValue(ReadProperty(existing).Value, value, asList)) return;
  } else if (value.empty()) {
    return;  // the file's missing value already reads as empty
  }
  FChanges.push_back({owner, name, value, asList});
}

std::string TProjectFile::FormatProperty(const TChange& change, const std::string& indent) const {
  std::string open = "<Property name=\"" + EscapeXml(change.Name, true) + "\">";
  if (!change.AsList) return open + EscapeXml(change.Value, false) + "</Property>";
  std::string_view lb = LineBreakOf(FText);
  qv::TStringList lines;
  lines.SetText(change.Value);
  std::string text = open;
  for (const std::string& line : lines)
    text += std::string(lb) + indent + "  <Line>" + EscapeXml(line, false) + "</Line>";
  return text + (lines.Empty() ? "" : std::string(lb) + indent) + "</Property>";
}

TProjectFile::TEdit TProjectFile::EditFor(const TChange& change) const {
  pugi::xml_node prop = FindNamed(change.Owner, "Property", change.Name);
  if (!prop) return InsertionFor(change);
  TStartTag tag = ScanStartTag(FText, static_cast<size_t>(prop.offset_debug()));
  size_t begin = 0, end = 0;
  if (change.AsList) {
    std::string indent = IndentBefore(FText, tag.Begin);
    return {tag.Begin, ElementEnd(FText, tag) - tag.Begin, FormatProperty(change, indent)};
  }
  if (FindAttributeValue(FText, tag, "value", begin, end))
    return {begin, end - begin, EscapeXml(change.Value, true)};
  std::string text = EscapeXml(change.Value, false);
  if (tag.SelfClosing) return {tag.End - 2, 2, ">" + text + "</" + prop.name() + ">"};
  pugi::xml_node only = prop.first_child();
  if (only && !only.next_sibling() && only.type() == pugi::node_pcdata) {
    // Just the text, so that comments and blanks around it stay.
    begin = static_cast<size_t>(only.offset_debug());
    end = std::min(FText.find('<', begin), FText.size());
    return {begin, end - begin, text};
  }
  begin = tag.End;
  return {begin, EndTagBegin(FText, tag) - begin, text};
}

TProjectFile::TEdit TProjectFile::InsertionFor(const TChange& change) const {
  std::string lb(LineBreakOf(FText));
  pugi::xml_node last;
  for (pugi::xml_node p : change.Owner.children("Property"))
    last = p;
  if (last) {
    TStartTag tag = ScanStartTag(FText, static_cast<size_t>(last.offset_debug()));
    std::string indent = IndentBefore(FText, tag.Begin);
    return {ElementEnd(FText, tag), 0, lb + indent + FormatProperty(change, indent)};
  }
  pugi::xml_node first =
      change.Owner.find_child([](pugi::xml_node n) { return n.type() == pugi::node_element; });
  if (first) {
    TStartTag tag = ScanStartTag(FText, static_cast<size_t>(first.offset_debug()));
    std::string indent = IndentBefore(FText, tag.Begin);
    return {tag.Begin, 0, FormatProperty(change, indent) + (indent.empty() ? "" : lb + indent)};
  }
  TStartTag owner = ScanStartTag(FText, static_cast<size_t>(change.Owner.offset_debug()));
  std::string outer = IndentBefore(FText, owner.Begin);
  std::string element = lb + outer + "  " + FormatProperty(change, outer + "  ");
  if (!owner.SelfClosing) return {owner.End, 0, element};
  return {owner.End - 2, 2, ">" + element + lb + outer + "</" + change.Owner.name() + ">"};
}

bool TProjectFile::SaveChanges() {
  if (FChanges.empty()) return false;
  std::vector<TEdit> edits;
  for (const TChange& change : FChanges)
    edits.push_back(EditFor(change));
  // Insertions at one place keep the order in which their values were set.
  std::stable_sort(edits.begin(), edits.end(),
                   [](const TEdit& a, const TEdit& b) { return a.Pos < b.Pos; });
  std::string out;
  size_t pos = 0;
  for (const TEdit& e : edits) {
    out.append(FText, pos, e.Pos - pos);
    out += e.Text;
    pos = e.Pos + e.Len;
  }
  out.append(FText, pos, std::string::npos);

  std::string onDisk, error;
  if (!qv::platform::ReadWholeFile(FFileName, onDisk, error) || onDisk != FText)
    throw qv::Exception("Project file \"" + FFileName +
                        "\" changed on disk during the run; its new values were not saved");
  qv::platform::AtomicWriteFile(FFileName, out);
  FText = std::move(out);
  FChanges.clear();
  return true;
}

}  // namespace qvhost
