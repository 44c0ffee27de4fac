#include "QvProperties.h"

#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qv {

int TEnumTypeInfo::ValueOf(std::string_view text) const {
  std::string t = Trim(text);
  for (size_t i = 0; i < Values.size(); ++i)
    if (SameText(Values[i], t)) return static_cast<int>(i);
  int64_t n = StrToInt64Def(t, -1);
  return (n >= 0 && n < static_cast<int64_t>(Values.size())) ? static_cast<int>(n) : -1;
}

std::string TEnumTypeInfo::NameOf(int64_t ordinal) const {
  if (ordinal >= 0 && ordinal < static_cast<int64_t>(Values.size()))
    return std::string(Values[static_cast<size_t>(ordinal)]);
  return std::to_string(ordinal);
}

const TPropDescriptor* TPropertyTable::Find(std::string_view name) const {
  for (const TPropertyTable* t = this; t; t = t->Parent)
    for (const auto& d : t->Props)
      if (SameText(d.Name, name)) return &d;
  return nullptr;
}

std::vector<const TPropDescriptor*> TPropertyTable::All() const {
  std::vector<const TPropertyTable*> chain;
  for (const TPropertyTable* t = this; t; t = t->Parent)
    chain.insert(chain.begin(), t);
  std::vector<const TPropDescriptor*> all;
  for (const auto* t : chain)
    for (const auto& d : t->Props)
      all.push_back(&d);
  return all;
}

TQvPersistent::~TQvPersistent() = default;

bool TQvPersistent::HasProperty(std::string_view name) const {
  return GetPropertyTable().Find(name) != nullptr;
}

namespace {
const TPropDescriptor& Lookup(const TQvPersistent& obj, std::string_view name) {
  const TPropDescriptor* d = obj.GetPropertyTable().Find(name);
  if (!d)
    throw Exception("Unknown property \"" + std::string(name) + "\" of " +
                    std::string(obj.ClassName()));
  return *d;
}
}  // namespace

std::string TQvPersistent::GetPropText(const TQvPersistent& obj, const TPropDescriptor& d) {
  switch (d.Type) {
    case TPropType::Boolean:
      return BoolToStr(d.GetOrd(obj) != 0);
    case TPropType::Integer:
      return IntToStr(d.GetOrd(obj));
    case TPropType::Enumeration:
      return d.Enum->NameOf(d.GetOrd(obj));
    case TPropType::String:
      return d.GetStr(obj);
    case TPropType::StringList:
      return d.GetList(obj).Text();
  }
  return {};
}

void TQvPersistent::SetPropText(TQvPersistent& obj, const TPropDescriptor& d,
                                std::string_view text) {
  if (d.ReadOnly())
    throw Exception("Property \"" + std::string(d.Name) + "\" of " + std::string(obj.ClassName()) +
                    " is read-only");
  auto invalid = [&] {
    return EConvertError("Invalid value '" + std::string(text) + "' for property \"" +
                         std::string(d.Name) + "\"");
  };
  switch (d.Type) {
    case TPropType::Boolean: {
      std::string t = Trim(text);
      if (t == "0" || t == "1") {
        d.SetOrd(obj, t == "1");
        return;
      }
      if (!SameText(t, "True") && !SameText(t, "False")) throw invalid();
      d.SetOrd(obj, SameText(t, "True"));
      return;
    }
    case TPropType::Integer: {
      int64_t v = StrToInt64Def(Trim(text), INT64_MIN);
      if (v == INT64_MIN) throw invalid();
      d.SetOrd(obj, v);
      return;
    }
    case TPropType::Enumeration: {
      int v = d.Enum->ValueOf(text);
      if (v < 0) throw invalid();
      d.SetOrd(obj, v);
      return;
    }
    case TPropType::String:
      d.SetStr(obj, std::string(text));
      return;
    case TPropType::StringList: {
      TStringList l;
      l.SetText(text);
      d.SetList(obj, l);
      return;
    }
  }
}

std::string TQvPersistent::GetPropValue(std::string_view name) const {
  return GetPropText(*this, Lookup(*this, name));
}

void TQvPersistent::SetPropValue(std::string_view name, std::string_view text) {
  SetPropText(*this, Lookup(*this, name), text);
}

}  // namespace qv
