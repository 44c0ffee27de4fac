// Published properties: each class declares one static table of descriptors, through which
// the host loads, saves and lists properties and scripts read and write them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "QvClasses.h"

namespace qv {

enum class TPropType : uint8_t { Boolean, Integer, String, StringList, Enumeration };

// An enumeration type as scripts and property texts see it: its value names by ordinal.
struct TEnumTypeInfo {
  std::string_view Name;
  std::span<const std::string_view> Values;

  // Ordinal of a value given by name (any letter case) or by decimal ordinal; -1 if neither.
  int ValueOf(std::string_view text) const;
  // Name of an ordinal, or the ordinal in decimal when out of range.
  std::string NameOf(int64_t ordinal) const;
};

class TQvPersistent;

// One published property. Booleans and enumerations travel as ordinals.
struct TPropDescriptor {
  std::string_view Name;
  TPropType Type;
  const TEnumTypeInfo* Enum = nullptr;
  const char* Default = nullptr;  // default in text form; null: no fixed default
  bool Stored = true;             // the host persists it
  int64_t (*GetOrd)(const TQvPersistent&) = nullptr;
  void (*SetOrd)(TQvPersistent&, int64_t) = nullptr;
  std::string (*GetStr)(const TQvPersistent&) = nullptr;
  void (*SetStr)(TQvPersistent&, const std::string&) = nullptr;
  const TStringList& (*GetList)(const TQvPersistent&) = nullptr;
  void (*SetList)(TQvPersistent&, const TStringList&) = nullptr;

  bool ReadOnly() const { return !SetOrd && !SetStr && !SetList; }
};

// The descriptors a class adds to those of its parent class.
struct TPropertyTable {
  std::string_view ClassName;
  const TPropertyTable* Parent;
  std::span<const TPropDescriptor> Props;

  // The descriptor named `name` (any letter case), own class first; null when none.
  const TPropDescriptor* Find(std::string_view name) const;
  // Every descriptor, the root class's first, each class's in declaration order.
  std::vector<const TPropDescriptor*> All() const;
};

// Base of every object with published properties (actions, options objects).
class TQvPersistent {
 public:
  virtual ~TQvPersistent();
  virtual const TPropertyTable& GetPropertyTable() const = 0;
  std::string_view ClassName() const { return GetPropertyTable().ClassName; }

  bool HasProperty(std::string_view name) const;
  // The property's value as text: booleans "True"/"False", enumerations by value name,
  // integers in decimal, string lists as lines each ended by CR LF.
  // Throws Exception for an unknown property.
  std::string GetPropValue(std::string_view name) const;
  // Sets a property from text (enumerations also by ordinal, booleans in any letter case).
  // Throws Exception for an unknown or read-only property, EConvertError for a bad value.
  void SetPropValue(std::string_view name, std::string_view text);

  static std::string GetPropText(const TQvPersistent& obj, const TPropDescriptor& d);
  static void SetPropText(TQvPersistent& obj, const TPropDescriptor& d, std::string_view text);
};

// ---- building descriptors from members ---------------------------------------------------
// G and S are a data member pointer or a getter/setter member function pointer of class C;
// S may be nullptr for a read-only property.

namespace detail {
template <class>
struct SetterArg;
template <class C, class R, class A>
struct SetterArg<R (C::*)(A)> {
  using type = std::remove_cvref_t<A>;
};

// A getter may be non-const where reading has a side effect (decrypting through the host,
// a getter that also rebuilds another value); reading through the table allows it.
template <class C, auto G>
decltype(auto) Read(const TQvPersistent& o) {
  const C& c = static_cast<const C&>(o);
  if constexpr (std::is_member_object_pointer_v<decltype(G)>)
    return (c.*G);
  else if constexpr (std::is_invocable_v<decltype(G), const C&>)
    return (c.*G)();
  else
    return (const_cast<C&>(c).*G)();
}

template <class C, auto S, class V>
void Write(TQvPersistent& o, const V& v) {
  C& c = static_cast<C&>(o);
  if constexpr (std::is_member_object_pointer_v<decltype(S)>) {
    using T = std::remove_cvref_t<decltype(c.*S)>;
    c.*S = static_cast<T>(v);
  } else {
    using T = typename SetterArg<decltype(S)>::type;
    (c.*S)(static_cast<T>(v));
  }
}

template <class C, auto G>
int64_t GetOrd(const TQvPersistent& o) {
  return static_cast<int64_t>(Read<C, G>(o));
}
template <class C, auto S>
void SetOrd(TQvPersistent& o, int64_t v) {
  Write<C, S>(o, v);
}
template <class C, auto G>
std::string GetStr(const TQvPersistent& o) {
  return std::string(Read<C, G>(o));
}
template <class C, auto S>
void SetStr(TQvPersistent& o, const std::string& v) {
  Write<C, S>(o, v);
}
template <class C, auto G>
const TStringList& GetList(const TQvPersistent& o) {
  return Read<C, G>(o);
}
template <class C, auto S>
void SetList(TQvPersistent& o, const TStringList& v) {
  if constexpr (std::is_member_object_pointer_v<decltype(S)>)
    (static_cast<C&>(o).*S).Assign(v);
  else
    (static_cast<C&>(o).*S)(v);
}

}  // namespace detail

template <class C, auto G, auto S = G>
constexpr TPropDescriptor OrdinalProp(std::string_view name, TPropType type, const TEnumTypeInfo* e,
                                      const char* def, bool stored) {
  TPropDescriptor d{name, type, e, def, stored};
  d.GetOrd = &detail::GetOrd<C, G>;
  if constexpr (!std::is_null_pointer_v<decltype(S)>) d.SetOrd = &detail::SetOrd<C, S>;
  return d;
}

template <class C, auto G, auto S = G>
constexpr TPropDescriptor BoolProp(std::string_view name, bool def = false, bool stored = true) {
  return OrdinalProp<C, G, S>(name, TPropType::Boolean, nullptr, def ? "True" : "False", stored);
}

template <class C, auto G, auto S = G>
constexpr TPropDescriptor IntProp(std::string_view name, const char* def = "0",
                                  bool stored = true) {
  return OrdinalProp<C, G, S>(name, TPropType::Integer, nullptr, def, stored);
}

template <class C, auto G, auto S = G>
constexpr TPropDescriptor EnumProp(std::string_view name, const TEnumTypeInfo& e, const char* def,
                                   bool stored = true) {
  return OrdinalProp<C, G, S>(name, TPropType::Enumeration, &e, def, stored);
}

template <class C, auto G, auto S = G>
constexpr TPropDescriptor StrProp(std::string_view name, const char* def = "", bool stored = true) {
  TPropDescriptor d{name, TPropType::String, nullptr, def, stored};
  d.GetStr = &detail::GetStr<C, G>;
  if constexpr (!std::is_null_pointer_v<decltype(S)>) d.SetStr = &detail::SetStr<C, S>;
  return d;
}

template <class C, auto G, auto S = G>
constexpr TPropDescriptor ListProp(std::string_view name, bool stored = true) {
  TPropDescriptor d{name, TPropType::StringList, nullptr, "", stored};
  d.GetList = &detail::GetList<C, G>;
  if constexpr (!std::is_null_pointer_v<decltype(S)>) d.SetList = &detail::SetList<C, S>;
  return d;
}

}  // namespace qv
