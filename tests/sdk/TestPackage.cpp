// A minimal package module for the loader tests: it records the calls the host makes.
#include <string>

#include "QvPackage.h"
#include "QvServices.h"

namespace {
std::string gTrace;
const qv::TPackageUnitInfo kUnits[] = {
    {"UnitA", [] { gTrace += "initA;"; }, [] { gTrace += "finitA;"; }},
    {"UnitB", [] { gTrace += "initB;"; }, [] { gTrace += "finitB;"; }},
};
const char* const kRequires[] = {"QvCoreAPI"};
const qv::TPackageInfoTable kTable{"TestPackage", 2, kUnits, 1, kRequires};
}  // namespace

QV_PACKAGE_EXPORT void Initialize() {
  qv::InitializePackageUnits(kTable);
}
QV_PACKAGE_EXPORT void Finalize() {
  qv::FinalizePackageUnits(kTable);
}
QV_PACKAGE_EXPORT const qv::TPackageInfoTable* GetPackageInfoTable() {
  return &kTable;
}
QV_PACKAGE_EXPORT void QvRegister(bool designTime) {
  gTrace += designTime ? "register(true);" : "register(false);";
  if (qv::QvScriptingServices) qv::QvScriptingServices->RegisterConstant("TestConst", 7);
}
QV_PACKAGE_EXPORT const char* TestPackageTrace() {
  return gTrace.c_str();
}
