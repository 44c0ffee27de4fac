// The package module: the entry points the host calls after loading it.
#include "QvPackage.h"
#include "Qvvsdotnetreg.h"

namespace {

const qv::TPackageUnitInfo kUnits[] = {
    {"Vsnetsln", nullptr, nullptr},
    {"Qvvsdotnetoptions", nullptr, nullptr},
    {"Qvvsdotnetaction", nullptr, nullptr},
    {"Qvvsdotnetreg", nullptr, nullptr},
    {"Qvvisualstudiodotnet", nullptr, nullptr},
};
const char* const kRequires[] = {"QvCoreAPI", "QvDotNetFrameWork"};
const qv::TPackageInfoTable kPackageInfo{"QvVisualStudioDotNet",
                                         static_cast<int>(std::size(kUnits)), kUnits,
                                         static_cast<int>(std::size(kRequires)), kRequires};

}  // namespace

QV_PACKAGE_EXPORT void Initialize() {
  qv::InitializePackageUnits(kPackageInfo);
}
QV_PACKAGE_EXPORT void Finalize() {
  qv::FinalizePackageUnits(kPackageInfo);
}
QV_PACKAGE_EXPORT const qv::TPackageInfoTable* GetPackageInfoTable() {
  return &kPackageInfo;
}
QV_PACKAGE_EXPORT void QvRegister(bool RegisterDesignTime) {
  qv::QvRegisterPackage(RegisterDesignTime);
}
