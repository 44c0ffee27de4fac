#include "QvPackage.h"

#include "QvExceptions.h"
#include "QvPlatform.h"

namespace qv {

void InitializePackageUnits(const TPackageInfoTable& table) {
  for (int i = 0; i < table.UnitCount; ++i)
    if (table.Units[i].Init) table.Units[i].Init();
}

void FinalizePackageUnits(const TPackageInfoTable& table) {
  for (int i = table.UnitCount - 1; i >= 0; --i)
    if (table.Units[i].Finit) table.Units[i].Finit();
}

std::unique_ptr<TQvPackageModule> TQvPackageModule::Load(const std::string& fileName) {
  std::unique_ptr<TQvPackageModule> m(new TQvPackageModule);
  m->FFileName = fileName;
  std::string error;
  m->FHandle = platform::LoadModule(fileName, error);
  if (!m->FHandle) throw Exception("Cannot load package " + fileName + " : " + error);
  auto resolve = [&](const char* name) {
    void* p = platform::ModuleSymbol(m->FHandle, name);
    if (!p) throw Exception("Package " + fileName + " does not export " + name);
    return p;
  };
  m->FInitialize = reinterpret_cast<TInitializeProc>(resolve("Initialize"));
  m->FFinalize = reinterpret_cast<TFinalizeProc>(resolve("Finalize"));
  m->FGetInfo = reinterpret_cast<TGetPackageInfoTableProc>(resolve("GetPackageInfoTable"));
  m->FRegister = reinterpret_cast<TQvRegisterProc>(resolve("QvRegister"));
  return m;
}

void TQvPackageModule::Initialize() {
  FInitialize();
  FInitialized = true;
}

void TQvPackageModule::Finalize() {
  if (!FInitialized) return;
  FInitialized = false;
  FFinalize();
}

TQvPackageModule::~TQvPackageModule() {
  Finalize();
  platform::UnloadModule(FHandle);
}

}  // namespace qv
