// Running a build process: the host's action objects for a project (or one action), their
// validation and execution, loops, and what a run leaves to save.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ActionContext.h"
#include "HostServices.h"
#include "ProjectFile.h"

namespace qvhost {

struct TActionDeleter {
  void operator()(qv::TCustomQvAction* action) const;
};

// One action object of the run with its context and, for a loop action, the actions it runs
// once per iteration.
struct TActionInstance {
  const TProjectAction* Source = nullptr;  // null for an action not read from a project
  std::string TypeName, Caption;
  std::unique_ptr<qv::TCustomQvAction, TActionDeleter> Action;
  qv::IntfPtr<TActionContext> Context;
  std::vector<TActionInstance> Children;
};

// What a dry run found about one action.
struct TCheckFinding {
  const TActionInstance* Action;
  bool Error;  // or else a warning
  std::string Text;
};

class TRunner {
 public:
  using TClock = std::function<double()>;  // seconds since any fixed moment

  TRunner(const THostServices& services, TRunEnvironment& env, TClock clock = SteadyClock);
  ~TRunner();

  // Takes over the project's variables and property sets and creates its enabled actions with
  // their stored properties. Throws qv::Exception "FILE:LINE: reason" for an unknown action
  // type or property, a value the property does not take, or nested actions under an action
  // that is no loop.
  void LoadProject(const TProjectFile& file);
  // One action as the project configures it (enabled or not), without its nested actions.
  // Throws TProjectFileError for an unknown type or property or a value it does not take.
  TActionInstance Instantiate(const TProjectFile& file, const TProjectAction& source);
  // Adds one action of a registered type, to be configured by the caller.
  TActionInstance& AddAction(const TActionRegistration& type);
  // Sets a value of the property set `set`, creating the set (not saved anywhere) if needed.
  void SetPropertySetValue(const std::string& set, const std::string& name,
                           const std::string& value);

  // Runs the actions in order until one fails; true when none did. A failing action has
  // logged why: its validation errors, its exception, or what it reported itself.
  bool Run();
  // What the last run did, for the log's summary.
  int ActionsRun() const { return FRun; }
  int ActionsFailed() const { return FFailed; }
  // Actions of the lists the run left that it did not start.
  int ActionsNotStarted() const { return FNotStarted; }
  double Seconds() const { return FSeconds; }
  // A dry run: validates every action (nested ones too), lets each check its settings, and
  // expands every property that holds a variable; starts nothing and writes nothing.
  std::vector<TCheckFinding> Check();
  // Safe from any thread: asks the running action to terminate and starts no further one.
  void RequestStop();

  // Records in `file` the run's dynamic property values and changed property-set values.
  void CollectChanges(TProjectFile& file) const;

  const std::vector<TActionInstance>& Actions() const { return FActions; }

  static double SteadyClock();

 private:
  TActionInstance Create(const TActionRegistration& type);
  void CreateFromProject(const TProjectFile& file, const TProjectAction& source,
                         std::vector<TActionInstance>& into);
  bool RunList(std::vector<TActionInstance>& list);
  bool RunOne(TActionInstance& a);
  bool Validate(TActionInstance& a);
  void Check(TActionInstance& a, std::vector<TCheckFinding>& findings);
  bool RunLoop(TActionInstance& a, qv::TQvBaseIterator& loop);
  bool RunAs(qv::TCustomQvAction& action, const std::function<bool()>& step);
  bool Guarded(const std::function<bool()>& step);
  void Collect(const std::vector<TActionInstance>& list, TProjectFile& file) const;

  const THostServices& FServices;
  TRunEnvironment& FEnv;
  TClock FClock;
  std::vector<TActionInstance> FActions;
  const TProjectFile* FFile = nullptr;  // the project the actions came from, if any
  std::atomic<qv::TCustomQvAction*> FCurrent{nullptr};
  std::atomic<bool> FStop{false};
  int FRun = 0, FFailed = 0, FNotStarted = 0;
  std::vector<std::string> FCheckLoopVariables;  // of the loops around the action checked
  double FSeconds = 0;
};

}  // namespace qvhost
