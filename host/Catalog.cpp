#include "Catalog.h"

#include "QvActions.h"
#include "QvSysUtils.h"
#include "QvUtils.h"

namespace qvhost {

namespace {

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
            return std::string(a.Class->ClassName) + "  " + qv::DoubleQuoteString(a.Caption) +
                   "  category " + qv::DoubleQuoteString(a.Category) + "  icon " + a.Icon;
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
            return std::string(o.Class->ClassName) + "  " +
                   qv::DoubleQuoteString(o.Options->GetName()) + "  category " +
                   qv::DoubleQuoteString(o.Options->GetCategory()) + "  key " +
                   o.Options->GetOptionKey() + "  icon " + o.Icon;
          }));
  if (designTime) DesignTimeSections(out, s);
  return out;
}

namespace {

struct TPropertyFacts {
  std::string Name, Type, Default, Alias, Help;
  std::vector<std::string> Values;
  bool Stored;
};

// "Name=Text" lines by property name; "[Section]" lines of the alias list name the page
// section the aliases after them belong to.
std::string TextFor(const qv::TStringList& lines, std::string_view name, bool sections) {
  std::string section;
  for (const std::string& line : lines) {
    if (sections && line.starts_with("[") && line.ends_with("]")) {
      section = line.substr(1, line.size() - 2);
      continue;
    }
    size_t eq = line.find('=');
    if (eq != std::string::npos && qv::SameText(line.substr(0, eq), name))
      return line.substr(eq + 1) + (section.empty() ? "" : " (" + section + ")");
  }
  return {};
}

std::vector<TPropertyFacts> Facts(const qv::TCustomQvAction& action) {
  static const char* const kTypes[] = {"Boolean", "Integer", "String", "StringList", ""};
  qv::TStringList aliases, help;
  action.GetPropertyAlias(aliases);
  action.GetPropertyHelp(help);
  std::vector<TPropertyFacts> facts;
  for (const qv::TPropDescriptor* d : action.GetPropertyTable().All()) {
    TPropertyFacts f{std::string(d->Name),
                     kTypes[static_cast<int>(d->Type)],
                     qv::TQvPersistent::GetPropText(action, *d),
                     TextFor(aliases, d->Name, true),
                     TextFor(help, d->Name, false),
                     {},
                     d->Stored};
    if (d->Enum) {
      f.Type = std::string(d->Enum->Name);
      for (std::string_view v : d->Enum->Values)
        f.Values.emplace_back(v);
    }
    facts.push_back(std::move(f));
  }
  return facts;
}

std::string JsonList(const std::vector<std::string>& items) {
  std::string s = "[";
  for (const auto& item : items)
    s += (s.size() > 1 ? "," : "") + qv::JsonString(item);
  return s + "]";
}

}  // namespace

std::string DescribeAction(const TActionRegistration& type, const qv::TCustomQvAction& action,
                           bool json) {
  std::vector<TPropertyFacts> facts = Facts(action);
  std::string out;
  if (json) {
    out = "{\"class\":" + qv::JsonString(type.Class->ClassName) +
          ",\"caption\":" + qv::JsonString(type.Caption) + ",\"properties\":[";
    for (size_t i = 0; i < facts.size(); ++i) {
      const auto& f = facts[i];
      out += std::string(i ? "," : "") + "{\"name\":" + qv::JsonString(f.Name) +
             ",\"type\":" + qv::JsonString(f.Type) + ",\"default\":" + qv::JsonString(f.Default) +
             ",\"stored\":" + (f.Stored ? "true" : "false");
      if (!f.Values.empty()) out += ",\"values\":" + JsonList(f.Values);
      if (!f.Alias.empty()) out += ",\"alias\":" + qv::JsonString(f.Alias);
      if (!f.Help.empty()) out += ",\"help\":" + qv::JsonString(f.Help);
      out += "}";
    }
    return out + "]}\n";
  }
  out = qv::DoubleQuoteString(type.Caption) + " (" + std::string(type.Class->ClassName) + "), " +
        std::to_string(facts.size()) + " properties:\n";
  for (const auto& f : facts) {
    std::string def = f.Default.find_first_of("\r\n") == std::string::npos
                          ? qv::DoubleQuoteString(f.Default)
                          : qv::DoubleQuoteString(qv::StringReplaceAll(
                                qv::StringReplaceAll(f.Default, "\r", ""), "\n", "\\n"));
    out += "  " + f.Name + ": " + f.Type + " = " + def + (f.Stored ? "" : " (not stored)") + "\n";
    if (!f.Values.empty()) out += "      one of " + Join(f.Values) + "\n";
    if (!f.Alias.empty()) out += "      shown as " + f.Alias + "\n";
    if (!f.Help.empty()) out += "      " + f.Help + "\n";
  }
  return out;
}

}  // namespace qvhost
