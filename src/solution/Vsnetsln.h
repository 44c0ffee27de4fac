// The in-memory model of a Visual Studio solution, handed out through reference-counted
// interfaces and built by OpenSolution.
#pragma once

#include <cstdint>
#include <string>

#include "QvClasses.h"
#include "QvInterfaces.h"
#include "QvProperties.h"

namespace qv {

// Solution format versions, decided from the header's format version number.
enum class TVSDotNetVersion : uint8_t { vs2002, vs2003, vs2005, vs2008, vsUnknown };
extern const TEnumTypeInfo TVSDotNetVersionInfo;

class TVSDotNetObject;
struct IVSDotNetSolutionConfigurations;
struct IVSDotNetSolutionConfiguration;
struct IVSDotNetProjects;
struct IVSDotNetProject;
struct IVSDotNetProjectDependancies;

struct IVSDotNetObject : virtual IInterface {
  QV_INTERFACE_ID("{2F39A06C-B1BB-4982-8B17-16BD323C3104}");
  // The implementing object itself.
  virtual TVSDotNetObject* GetImplementation() = 0;
};

struct IVSDotNetSolution : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{669C6844-EE16-4561-9AA0-0AABD6697C9E}");
  // The solution configurations; null when the file has no configuration section.
  virtual IntfPtr<IVSDotNetSolutionConfigurations> GetConfigurations() = 0;
  virtual IntfPtr<IVSDotNetProjects> GetProjects() = 0;
  // Two reserved texts, always empty.
  virtual std::string GetReservedText1() = 0;
  virtual std::string GetReservedText2() = 0;
  // The file name exactly as passed to OpenSolution.
  virtual std::string GetFileName() = 0;
  virtual TVSDotNetVersion GetVersion() = 0;
};

struct IVSDotNetSolutionConfigurations : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{C89A7462-AB5B-4990-AE22-657F5885BF16}");
  // The configuration at a zero-based index, or null when out of range.
  virtual IntfPtr<IVSDotNetSolutionConfiguration> GetItem(int index) = 0;
  virtual int GetCount() = 0;
};

struct IVSDotNetSolutionConfiguration : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{23623B1A-9FFC-42D1-B182-ABDBF8FE5C3E}");
  virtual std::string GetName() = 0;
};

struct IVSDotNetProjects : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{CD778EC7-463D-4E33-9665-2A81BAB601F8}");
  // The project at a zero-based index, or null when out of range.
  virtual IntfPtr<IVSDotNetProject> GetItem(int index) = 0;
  virtual int GetCount() = 0;
  // The first project (in current order) whose identifier equals `guid` exactly, or null.
  virtual IntfPtr<IVSDotNetProject> FindByGUID(const std::string& guid) = 0;
  // The first project whose path as written in the solution equals `fileName`, or null.
  virtual IntfPtr<IVSDotNetProject> FindByFileName(const std::string& fileName) = 0;
  // Puts every project after the projects it depends on. Throws Exception "Solution has
  // invalid circular dependancies between : ..." on a dependency cycle.
  virtual void SortByDependency() = 0;
};

struct IVSDotNetProject : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{5F6E88B3-1648-4592-97D6-47F311D29717}");
  virtual std::string GetName() = 0;
  // The path as written in the solution file (not expanded).
  virtual std::string GetFileName() = 0;
  virtual std::string GetProjectGUID() = 0;
  virtual std::string GetProjectTypeGUID() = 0;
  virtual IntfPtr<IVSDotNetProjectDependancies> GetDependencies() = 0;
  // True when the lower-cased extension of the path is ".vcproj".
  virtual bool IsVCProject() = 0;
  // Full paths of the resource scripts the project file lists (owned by the project).
  virtual TStringList* GetResourceFiles() = 0;
  // The first resource script that mentions VERSIONINFO, or empty.
  virtual std::string GetVersionInfoFile() = 0;
  // Records that `solutionConfiguration` builds `projectConfiguration`; the first mapping
  // read for a solution configuration wins, an "ActiveCfg" line sets its flag.
  virtual void AddConfiguration(const std::string& solutionConfiguration,
                                const std::string& projectConfiguration, bool isActiveCfg) = 0;
  // The project configuration mapped to a solution configuration (any letter case), or "".
  virtual std::string GetProjectConfiguration(const std::string& solutionConfiguration) = 0;
  // True when a mapping exists for the solution configuration and an "ActiveCfg" line set it.
  virtual bool IsActiveConfiguration(const std::string& solutionConfiguration) = 0;
  // The mappings as name=value lines; Objects(i) is 1 when the entry's flag is set.
  virtual const TStringList& GetConfigurationList() = 0;
};

struct IVSDotNetProjectDependancies : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{64AB0A38-E598-4B75-8BFF-046136023A1C}");
  // The identifier at a zero-based index, or "" when out of range.
  virtual std::string GetItem(int index) = 0;
  virtual int GetCount() = 0;
  // The list itself (owned by the object).
  virtual TStringList* GetList() = 0;
  // Appends an identifier; duplicates are kept.
  virtual void Add(const std::string& guid) = 0;
  // True when the list holds `guid`, compared without regard to case.
  virtual bool Contains(const std::string& guid) = 0;
};

// Declared for completeness; no class implements these. IVSDotNetProjectConfigurations
// shares its identifier with IVSDotNetProjectDependancies, so a query of a dependency list
// for it answers with the dependency list.
struct IVSDotNetProjectConfigurations : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{64AB0A38-E598-4B75-8BFF-046136023A1C}");
};
struct IVSDotNetProjectConfiguration : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{31E59676-0C3B-485A-B795-318031B78BA1}");
};
struct IVSDotNetSolutionContexts : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{97BD9D68-3394-4B1A-BAC1-14D8CB0CB167}");
};
struct IVSDotNetSolutionContext : virtual IVSDotNetObject {
  QV_INTERFACE_ID("{85911E20-8447-41EA-ABC3-51D7FDD7D313}");
};

// Common base of the model's classes.
class TVSDotNetObject : public TInterfacedObject, public virtual IVSDotNetObject {
 public:
  TVSDotNetObject* GetImplementation() override { return this; }

 protected:
  void* GetInterface(const TGUID& iid) override;
};

// Reads a solution file (formats 7 to 10) and builds its model. Projects whose file does
// not exist are left out unless `includeMissingProjects`; web projects are always kept.
// Throws Exception with the reader's message on a malformed file.
IntfPtr<IVSDotNetSolution> OpenSolution(const std::string& fileName, bool includeMissingProjects);

}  // namespace qv
