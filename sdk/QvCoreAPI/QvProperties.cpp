#include "QvProperties.h"

#include <algorithm>
#include <cctype>
#include <vector>

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

// Levenshtein distance without regard to ASCII letter case.
size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j)
    row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      bool same = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                  std::tolower(static_cast<unsigned char>(b[j - 1]));
      size_t next = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
      diagonal = row[j];
      row[j] = next;
    }
  }
  return row[b.size()];
}

const TPropDescriptor& Lookup(const TQvPersistent& obj, std::string_view name) {
  const TPropertyTable& table = obj.GetPropertyTable();
  if (const TPropDescriptor* d = table.Find(name)) return *d;
  // A name a few typing slips away, or cut short, is what was meant; further off, none is
  // suggested.
  std::string_view best;
  size_t bestDistance = std::max<size_t>(1, name.size() / 3) + 1;
  for (const TPropDescriptor* d : table.All()) {
    bool shortened = name.size() >= 4 && FindText(d->Name, name) == 0;
    if (size_t distance = shortened ? 1 : EditDistance(name, d->Name); distance < bestDistance)
      best = d->Name, bestDistance = distance;
  }
  throw Exception("Unknown property \"" + std::string(name) + "\" of " +
                  std::string(obj.ClassName()) +
                  (best.empty() ? std::string() : "; did you mean " + std::string(best) + "?"));
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
      if (v < 0) {
        std::string choices;
        for (std::string_view value : d.Enum->Values)
          choices += (choices.empty() ? "" : ", ") + std::string(value);
        throw EConvertError(invalid().Message() + ": " + std::string(d.Name) + " must be one of " +
                            choices);
      }
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
