#include "QvDotNetFramework.h"

namespace qv {

namespace {
constexpr std::string_view kLogLevelNames[] = {"Quiet", "Minimal", "Normal", "Detailed",
                                               "Diagnostic"};

class TDotNetFramework : public TInterfacedObject, public IQvDotNetFramework {
 public:
  TDotNetFramework(std::string version, std::string folder)
      : FVersion(std::move(version)), FFolder(std::move(folder)) {}
  std::string GetVersion() const override { return FVersion; }
  std::string GetFolder() const override { return FFolder; }

 protected:
  void* GetInterface(const TGUID& iid) override {
    if (void* p = QueryInterfaceList<IQvDotNetFramework>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }

 private:
  std::string FVersion, FFolder;
};
}  // namespace

const TEnumTypeInfo TMSLogLevelInfo{"TMSLogLevel", kLogLevelNames};

IQvDotNetInfo* QvDotNetInfo = nullptr;

IntfPtr<IQvDotNetFramework> NewDotNetFramework(const std::string& version,
                                               const std::string& folder) {
  return MakeIntf<IQvDotNetFramework, TDotNetFramework>(version, folder);
}

std::string QuoteMSBuildArg(std::string_view value) {
  std::string escaped;
  escaped.reserve(value.size() + 8);
  bool blank = false;
  for (char c : value) {
    switch (c) {
      case '%':
        escaped += "%25";
        break;
      case ';':
        escaped += "%3B";
        break;
      case '"':
        escaped += "%22";
        break;
      default:
        blank = blank || c == ' ' || c == '\t';
        escaped += c;
    }
  }
  return blank ? "\"" + escaped + "\"" : escaped;
}

}  // namespace qv
