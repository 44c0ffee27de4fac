// Arbitrary bytes as a resource script for the updater action's parser, every property
// allowed: it rewrites or throws one of its own exceptions, never anything else.
#include "FuzzVersionInfo.h"
#include "QvExceptions.h"
#include "Qvversioninfoupdateraction.h"

namespace {

struct FixedSet : qv::TInterfacedObject, qv::IQvPropertySet {
  std::string GetName() const override { return "Win32"; }
  std::string GetPropertyNames() const override { return "MajorVersion,DLL,Locale"; }
  std::string GetValue(const std::string& name) const override {
    if (name == "DLL" || name == "DebugBuild") return "True";
    if (name == "Locale") return "$0409";
    if (name == "CompanyName") return "";
    return "7";
  }
  void SetValue(const std::string&, const std::string&) override {}
  void* GetInterface(const qv::TGUID& iid) override {
    if (void* p = qv::QueryInterfaceList<qv::IQvPropertySet>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qv::TStringList lines;
  if (!qvfuzz::LinesOf(data, size, lines)) return 0;
  static qv::TQvVersionInfoUpdaterAction* action = [] {
    auto* a = new qv::TQvVersionInfoUpdaterAction;
    a->SetPropValue("PropertiesToUpdate",
                    "MajorVersion=True\r\nMinorVersion=True\r\nReleaseVersion=True\r\n"
                    "BuildVersion=True\r\nProductVersion=True\r\nDebugBuild=True\r\n"
                    "SpecialBuild=True\r\nDLL=True\r\nCompanyName=True\r\nProductName=True\r\n"
                    "CompileDate=True\r\nLocale=True\r\nCodePage=True\r\n");
    a->SetPropValue("LinkProductVersion", "False");
    return a;
  }();
  action->UsePropertySet(qv::IntfPtr<qv::IQvPropertySet>(new FixedSet));
  try {
    action->ParseAndUpdate(lines);
  } catch (const qv::Exception&) {
  }
  action->UsePropertySet(nullptr);
  return 0;
}
