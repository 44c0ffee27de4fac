#include "QvServices.h"

#include "QvSysUtils.h"

namespace qv {

IQvActionServices* QvActionServices = nullptr;
IQvScriptingServices* QvScriptingServices = nullptr;
IQvOptionsServices* QvOptionsServices = nullptr;

std::string_view TableClassName(const TPropertyTable& table) {
  return table.ClassName;
}

std::string ScriptValueToString(const TScriptValue& v) {
  struct Visitor {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool b) const { return BoolToStr(b); }
    std::string operator()(int64_t i) const { return IntToStr(i); }
    std::string operator()(const std::string& s) const { return s; }
    std::string operator()(const IntfPtr<IInterface>&) const { return {}; }
  };
  return std::visit(Visitor{}, v);
}

}  // namespace qv
