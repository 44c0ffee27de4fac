// One life of the host: its services installed, the registry stand-in, options and packages
// loaded, and the commands that run against them.
#pragma once

#include <atomic>
#include <iosfwd>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ActionEditor.h"
#include "DotNetInfo.h"
#include "Expander.h"
#include "HostServices.h"
#include "LogSink.h"
#include "Metabase.h"
#include "OptionsStore.h"
#include "PackageLoader.h"
#include "PasswordVault.h"
#include "QvRegistry.h"
#include "Runner.h"
#include "WebDavClient.h"

namespace qvhost {

// Exit statuses of the host.
enum : int { kExitSuccess = 0, kExitBuildFailed = 1, kExitBadInput = 2 };

// How the host was asked to run (the global command-line options).
struct THostSettings {
  std::string OptionsFile;   // empty: the per-user default
  std::string RegistryFile;  // empty: $QV_REGISTRY, else the system's registry where there is one
  std::string KeyFile;       // empty: the default password key file
  std::string MetabaseFile;  // empty: $QV_METABASE, else no IIS metabase
  std::vector<std::pair<std::string, std::string>> Variables;          // --var
  std::vector<std::pair<std::string, std::string>> Frameworks;         // --framework
  std::vector<std::pair<std::string, std::string>> PropertySetValues;  // exec --property-value
  std::string FallbackFramework;      // the folder offered for other versions; empty: none
  std::vector<std::string> Packages;  // loaded after those beside the executable
  bool DefaultPackages = true;        // load the *.qvp files beside the executable
  bool DesignTime = false;
  TLogFormat LogFormat = TLogFormat::Text;
  bool Colour = false;
  TCiDialect Ci = TCiDialect::None;  // annotations beside the text log
};

class THostSession {
 public:
  // Fills the SDK's service slots, reads the registry stand-in and the options store, and
  // loads, starts and registers the packages. Throws qv::Exception for input it cannot read.
  THostSession(const THostSettings& settings, std::ostream& out,
               TRunner::TClock clock = TRunner::SteadyClock);
  // Destroys what the packages made, empties the slots, then finalises and unloads the
  // packages (the members' order does it).
  ~THostSession();
  THostSession(const THostSession&) = delete;
  THostSession& operator=(const THostSession&) = delete;

  // Prints what the packages registered, by kind; with `sequence`, every registration call in
  // the order it was made, one line each.
  int ListActions(bool sequence = false);
  // Runs a project and saves back what the run changed. Returns kExitSuccess or
  // kExitBuildFailed; throws qv::Exception when the project cannot be read or set up.
  int RunProject(const std::string& fileName);
  // Runs one action of `type` (class name or caption) with "NAME=VALUE" / "NAME+=LINE"
  // assignments. Throws qv::Exception for an unknown type, property or value.
  // `setValues` ("SET.NAME", VALUE) fill property sets the action may read.
  int ExecAction(const std::string& type, const std::vector<std::string>& assignments,
                 const std::vector<std::pair<std::string, std::string>>& setValues = {});
  // Prints the published properties of the action type named by class name or caption.
  // Throws qv::Exception for an unknown type.
  int DescribeAction(const std::string& type, bool json);
  // A dry run of a project (see TRunner::Check), printed one finding a line. Returns
  // kExitSuccess when nothing but warnings was found, else kExitBuildFailed; throws
  // TProjectFileError when the project cannot be read.
  int CheckProject(const std::string& fileName);
  // Opens the action of a project that `selector` names (see SelectAction) in its registered
  // pages (the session must be a design-time one). Throws TProjectFileError when the project
  // cannot be read and qv::Exception when the action has no pages.
  // With `property`, the editor opens at the page the property's registered editor names.
  std::unique_ptr<TActionEditor> OpenEditor(const std::string& fileName,
                                            const std::string& selector,
                                            const std::string& property = {});
  // The first options object that has option pages, in its pages; OK saves the options store.
  std::unique_ptr<TOptionsEditor> OpenOptionsEditor();
  // The build process's variables, for the pages that offer them: the project's, and those
  // its loops set.
  std::vector<std::string> ProjectVariableNames() const;
  // Safe from any thread, at any time: stops the build (see TRunner::RequestStop), which then
  // ends with `exitStatus` (130 after an interrupt, 143 after a termination request).
  void RequestStop(int exitStatus);
  // Reports input the session could not read: the JSON-lines log gets an "error" event.
  void ReportInputError(std::string_view file, int64_t line, std::string_view text);

  const THostServices& Services() const { return FServices; }

 private:
  // Empties the SDK's service slots when the session ends.
  struct TSlotsGuard {
    ~TSlotsGuard();
  };

  void InstallRegistry(const THostSettings& settings);
  void InstallMetabase(const THostSettings& settings);
  std::vector<std::string> PackageFiles(const THostSettings& settings) const;
  TRunner& NewRunner();
  // The registration of `type` (class name or caption); throws qv::Exception when none.
  const TActionRegistration& RequireAction(const std::string& type) const;
  int RunAndSave(TRunner& runner, TProjectFile* project);

  std::ostream& FOut;
  TRunner::TClock FClock;
  bool FDesignTime;
  std::unique_ptr<qv::IQvRegistryReader> FRegistry;
  THostDotNetInfo FDotNet;
  std::unique_ptr<TMetabase> FMetabase;
  std::shared_ptr<qv::IQvAutomationServices> FComAutomation;  // Windows, without an export
  TCurlWebDav FWebDav;
  std::unique_ptr<TOptionsStore> FStore;
  // Destroyed in reverse: the runner's actions and the options objects go while their
  // packages are loaded, the slots are emptied before the packages are finalised.
  TPackageLoader FPackages;
  THostServices FServices;
  TSlotsGuard FSlots;
  std::unique_ptr<TPasswordVault> FVault;
  TExpander FExpander;
  std::unique_ptr<TLogSink> FLog;
  std::unique_ptr<TRunEnvironment> FEnv;
  std::unique_ptr<TProjectFile> FProject;
  std::unique_ptr<TRunner> FRunner;
  std::atomic<TRunner*> FActiveRunner{nullptr};
  std::atomic<bool> FStopRequested{false};
  std::atomic<int> FStopStatus{0};
};

// Applies one `qvhost exec` assignment to `action`: "NAME=VALUE" sets a property through its
// published table ("\n" in the value separates the lines of a string list); "NAME+=LINE" adds
// a line to a string list. Throws qv::Exception for a bad assignment, name or value.
void ApplyAssignment(qv::TQvPersistent& action, std::string_view assignment);

}  // namespace qvhost
