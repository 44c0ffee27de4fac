#include "Catalog.h"

namespace qvhost {

namespace {

std::string Quoted(std::string_view s) {
  return "\"" + std::string(s) + "\"";
}

std::string Join(const std::vector<std::string>& items) {
  std::string r;
  for (const auto& s : items)
    r += (r.empty() ? "" : ", ") + s;
  return r;
}

void Section(std::string& out, const char* title, const std::vector<std::string>& lines) {
  out += std::string(title) + ":\n";
  if (lines.empty()) out += "  (none)\n";
  for (const auto& line : lines)
    out += "  " + line + "\n";
}

template <class T, class Fn>
std::vector<std::string> Lines(const std::vector<T>& items, Fn&& fn) {
  std::vector<std::string> lines;
  for (const auto& item : items)
    lines.push_back(fn(item));
  return lines;
}

std::vector<std::string> PageLines(
    const std::vector<std::pair<std::string, std::vector<std::string>>>& pages) {
  return Lines(pages, [](const auto& p) { return p.first + ": " + Join(p.second); });
}

void DesignTimeSections(std::string& out, const THostServices& s) {
  Section(out, "Property editors", Lines(s.PropertyEditors(), [](const auto& e) {
            return std::string(e.Class->ClassName) + "." + e.PropertyName + " (" + e.PropertyType +
                   ")  " + e.Editor;
          }));
  Section(out, "Action pages", PageLines(s.ActionPages()));
  Section(out, "Option pages", PageLines(s.OptionPages()));
}

}  // namespace

std::string DescribeRegistrations(const THostServices& s, bool designTime) {
  std::string out;
  Section(out, "Actions", Lines(s.Actions(), [](const TActionRegistration& a) {
            return std::string(a.Class->ClassName) + "  " + Quoted(a.Caption) + "  category " +
                   Quoted(a.Category) + "  icon " + a.Icon;
          }));
  Section(out, "Script methods", Lines(s.Methods(), [](const TMethodRegistration& m) {
            return std::string(m.Class->ClassName) + "." + m.Name + "  " + m.Signature;
          }));
  Section(out, "Constants", Lines(s.Constants(), [](const TConstantRegistration& c) {
            return c.Name + " = " + std::to_string(c.Value);
          }));
  Section(out, "Global objects", Lines(s.GlobalObjects(), [](const TGlobalObjectRegistration& g) {
            return g.Name + "  " + g.Signature;
          }));
  Section(out, "Enumerations", Lines(s.Enumerations(), [](const qv::TEnumTypeInfo* e) {
            return std::string(e->Name) + ": " +
                   Join(std::vector<std::string>(e->Values.begin(), e->Values.end()));
          }));
  Section(out, "Options", Lines(s.Options(), [](const TOptionsRegistration& o) {
            return std::string(o.Class->ClassName) + "  " + Quoted(o.Options->GetName()) +
                   "  category " + Quoted(o.Options->GetCategory()) + "  key " +
                   o.Options->GetOptionKey() + "  icon " + o.Icon;
          }));
  if (designTime) DesignTimeSections(out, s);
  return out;
}

}  // namespace qvhost
