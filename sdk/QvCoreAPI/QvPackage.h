// The package-module contract: the four entry points a package exports, and the loader a
// host uses to open a package module and call them.
#pragma once

#include <memory>
#include <string>

#if defined(_WIN32)
#define QV_PACKAGE_EXPORT extern "C" __declspec(dllexport)
#else
#define QV_PACKAGE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace qv {

// One unit of a package with its start-up and shut-down code (either may be null).
struct TPackageUnitInfo {
  const char* Name;
  void (*Init)();
  void (*Finit)();
};

// What GetPackageInfoTable returns: the package's units in start-up order and the names
// of the packages it requires.
struct TPackageInfoTable {
  const char* PackageName;
  int UnitCount;
  const TPackageUnitInfo* Units;
  int RequiresCount;
  const char* const* Requires;
};

// Runs the start-up code of every unit in order / the shut-down code in reverse order.
void InitializePackageUnits(const TPackageInfoTable& table);
void FinalizePackageUnits(const TPackageInfoTable& table);

// Entry-point signatures, exported under these names with C linkage:
//   void Initialize();  void Finalize();
//   const qv::TPackageInfoTable* GetPackageInfoTable();
//   void QvRegister(bool RegisterDesignTime);
using TInitializeProc = void (*)();
using TFinalizeProc = void (*)();
using TGetPackageInfoTableProc = const TPackageInfoTable* (*)();
using TQvRegisterProc = void (*)(bool);

// A loaded package module. Unloads on destruction (after Finalize, if Initialize ran).
class TQvPackageModule {
 public:
  // Opens the module and resolves its four entry points. Throws Exception
  // "Cannot load package FILE : REASON" or "Package FILE does not export NAME".
  static std::unique_ptr<TQvPackageModule> Load(const std::string& fileName);
  ~TQvPackageModule();
  TQvPackageModule(const TQvPackageModule&) = delete;
  TQvPackageModule& operator=(const TQvPackageModule&) = delete;

  const std::string& FileName() const { return FFileName; }
  const TPackageInfoTable* InfoTable() const { return FGetInfo(); }
  void Initialize();
  void Register(bool designTime) { FRegister(designTime); }
  void Finalize();

 private:
  TQvPackageModule() = default;
  std::string FFileName;
  void* FHandle = nullptr;
  bool FInitialized = false;
  TInitializeProc FInitialize = nullptr;
  TFinalizeProc FFinalize = nullptr;
  TGetPackageInfoTableProc FGetInfo = nullptr;
  TQvRegisterProc FRegister = nullptr;
};

}  // namespace qv
