#include "Runner.h"

#include <algorithm>

#include <chrono>

#include "Expander.h"
#include "LogSink.h"
#include "QvExceptions.h"
#include "QvSysUtils.h"

namespace qvhost {

using qv::TStatusTag;

void TActionDeleter::operator()(qv::TCustomQvAction* action) const {
  delete action;
}

namespace {

class TValidationErrors : public qv::TInterfacedObject, public qv::IQvActionValidationError {
 public:
  void AddError(const std::string& section, const std::string& message, qv::IInterface*) override {
    Lines.push_back(section + ": " + message);
  }
  std::vector<std::string> Lines;

 protected:
  void* GetInterface(const qv::TGUID& iid) override {
    if (void* p = qv::QueryInterfaceList<qv::IQvActionValidationError>(this, iid)) return p;
    return TInterfacedObject::GetInterface(iid);
  }
};

// Pops the loop variable however the iteration ends.
struct TLoopVariableScope {
  TExpander& Expander;
  bool Active;
  ~TLoopVariableScope() {
    if (Active) Expander.PopLoopVariable();
  }
};

}  // namespace

TRunner::TRunner(const THostServices& services, TRunEnvironment& env, TClock clock)
    : FServices(services), FEnv(env), FClock(std::move(clock)) {}

TRunner::~TRunner() = default;

double TRunner::SteadyClock() {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}

// ---- creating the actions -----------------------------------------------------------------

TActionInstance TRunner::Create(const TActionRegistration& type) {
  TActionInstance a;
  a.TypeName = std::string(type.Class->ClassName);
  a.Caption = type.Caption;
  a.Action.reset(type.Class->Create());
  a.Context = qv::IntfPtr<TActionContext>(new TActionContext(FEnv));
  a.Action->BindContext(qv::IntfPtr<qv::IQvActionContext>(a.Context.Get()));
  return a;
}

TActionInstance& TRunner::AddAction(const TActionRegistration& type) {
  FActions.push_back(Create(type));
  return FActions.back();
}

void TRunner::SetPropertySetValue(const std::string& set, const std::string& name,
                                  const std::string& value) {
  auto it = std::find_if(FEnv.PropertySets.begin(), FEnv.PropertySets.end(),
                         [&](const auto& ps) { return qv::SameText(ps->GetName(), set); });
  if (it == FEnv.PropertySets.end())
    it = FEnv.PropertySets.insert(
        it, qv::IntfPtr<THostPropertySet>(new THostPropertySet(set, pugi::xml_node())));
  (*it)->LoadValue(name, value);
}

void TRunner::LoadProject(const TProjectFile& file) {
  FFile = &file;
  for (const auto& v : file.Variables())
    FEnv.Expander.SetProjectVariable(v.Name, v.Value);
  for (const auto& set : file.PropertySets()) {
    qv::IntfPtr<THostPropertySet> ps(new THostPropertySet(set.Name, set.Node));
    for (const auto& p : set.Properties)
      ps->LoadValue(p.Name, p.Value);
    FEnv.PropertySets.push_back(ps);
  }
  for (const auto& source : file.Actions())
    CreateFromProject(file, source, FActions);
}

// Disabled actions are not created: their package may well be missing on this machine.
void TRunner::CreateFromProject(const TProjectFile& file, const TProjectAction& source,
                                std::vector<TActionInstance>& into) {
  if (!source.Enabled) return;
  TActionInstance a = Instantiate(file, source);
  for (const auto& child : source.Actions)
    CreateFromProject(file, child, a.Children);
  into.push_back(std::move(a));
}

TActionInstance TRunner::Instantiate(const TProjectFile& file, const TProjectAction& source) {
  const TActionRegistration* type = FServices.FindAction(source.Type);
  if (!type) file.Fail(source.Node, "Unknown action type \"" + source.Type + "\"");
  TActionInstance a = Create(*type);
  a.Source = &source;
  if (!source.Caption.empty()) a.Caption = source.Caption;
  for (const auto& p : source.Properties) {
    try {
      a.Action->SetPropValue(p.Name, p.Value);
    } catch (const qv::Exception& e) {
      file.Fail(p.Node, e.what());
    }
  }
  if (source.HasNestedActions && !dynamic_cast<qv::TQvBaseIterator*>(a.Action.get()))
    file.Fail(source.Node, a.TypeName + " is not a loop action and cannot hold nested actions");
  return a;
}

// ---- running -------------------------------------------------------------------------------

bool TRunner::Run() {
  double start = FClock();
  bool ok = RunList(FActions);
  FSeconds = FClock() - start;
  return ok;
}

void TRunner::RequestStop() {
  FStop = true;
  qv::TCustomQvAction* current = FCurrent.load();
  if (current && current->CanTerminate()) current->TerminateAction();
}

bool TRunner::RunList(std::vector<TActionInstance>& list) {
  for (size_t i = 0; i < list.size(); ++i) {
    if (FStop) {
      FEnv.Log.Message("The build was stopped by the user.", TStatusTag::Error);
      FNotStarted += static_cast<int>(list.size() - i);
      return false;
    }
    if (!RunOne(list[i])) {
      FNotStarted += static_cast<int>(list.size() - i - 1);
      return false;
    }
  }
  return true;
}

bool TRunner::RunOne(TActionInstance& a) {
  ++FRun;
  FEnv.Log.ActionStart(a.TypeName, a.Caption);
  double start = FClock();
  a.Context->BeginRun();
  bool ok = Validate(a) && Guarded([&] {
              if (auto* loop = dynamic_cast<qv::TQvBaseIterator*>(a.Action.get()))
                return RunLoop(a, *loop);
              return RunAs(*a.Action, [&] { return a.Action->Execute(); });
            });
  // A failed step inside a message group closes the group as failed.
  FEnv.Log.CloseGroupsTo(a.Context->BaseDepth(),
                         ok ? std::nullopt : std::optional<TStatusTag>(TStatusTag::Error));
  if (!ok) ++FFailed;
  FEnv.Log.ActionEnd(ok, FClock() - start);
  return ok;
}

bool TRunner::Validate(TActionInstance& a) {
  qv::IntfPtr<TValidationErrors> errors(new TValidationErrors);
  bool valid = Guarded([&] { return a.Action->Validate(errors.Get()); });
  for (const auto& line : errors->Lines)
    FEnv.Log.Message(line, TStatusTag::Error);
  if (!valid && errors->Lines.empty())
    FEnv.Log.Message(a.Caption + ": the action's settings are not valid", TStatusTag::Error);
  return valid && errors->Lines.empty();
}

std::vector<TCheckFinding> TRunner::Check() {
  std::vector<TCheckFinding> findings;
  for (auto& a : FActions)
    Check(a, findings);
  return findings;
}

void TRunner::Check(TActionInstance& a, std::vector<TCheckFinding>& findings) {
  qv::IntfPtr<TValidationErrors> errors(new TValidationErrors), warnings(new TValidationErrors);
  auto guarded = [&](const std::function<void()>& step) {
    try {
      step();
    } catch (const std::exception& e) {
      errors->Lines.push_back(e.what());
    }
  };
  guarded([&] {
    if (!a.Action->Validate(errors.Get()) && errors->Lines.empty())
      errors->Lines.push_back("the action's settings are not valid");
  });
  bool valid = errors->Lines.empty();
  // Settings that name a loop variable take their values only while the loop runs.
  bool usesLoopVariable = false;
  for (const qv::TPropDescriptor* d : a.Action->GetPropertyTable().All()) {
    if (d->Type != qv::TPropType::String && d->Type != qv::TPropType::StringList) continue;
    std::string text = qv::TQvPersistent::GetPropText(*a.Action, *d);
    if (text.find('%') == std::string::npos) continue;
    for (const auto& var : FCheckLoopVariables)
      usesLoopVariable =
          usesLoopVariable || qv::FindText(text, "%" + var + "%") != std::string::npos;
    try {
      FEnv.Expander.Expand(text);
    } catch (const std::exception& e) {
      errors->Lines.push_back(std::string(d->Name) + ": " + e.what());
    }
  }
  if (valid && !usesLoopVariable)
    guarded([&] { a.Action->CheckSettings(errors.Get(), warnings.Get()); });
  // A property that fails to expand may fail the action's own check the same way.
  for (bool error : {true, false})
    for (const auto& line : (error ? errors : warnings)->Lines)
      if (std::none_of(findings.begin(), findings.end(),
                       [&](const TCheckFinding& f) { return f.Action == &a && f.Text == line; }))
        findings.push_back({&a, error, line});
  auto* loop = dynamic_cast<qv::TQvBaseIterator*>(a.Action.get());
  std::string var = loop ? loop->GetVariableName() : std::string();
  if (!var.empty()) {
    FEnv.Expander.PushLoopVariable(var, "");
    FCheckLoopVariables.push_back(var);
  }
  TLoopVariableScope scope{FEnv.Expander, !var.empty()};
  for (auto& child : a.Children)
    Check(child, findings);
  if (!var.empty()) FCheckLoopVariables.pop_back();
}

bool TRunner::Guarded(const std::function<bool()>& step) {
  try {
    return step();
  } catch (const std::exception& e) {
    FEnv.Log.Message(e.what(), TStatusTag::Error);
  } catch (...) {
    FEnv.Log.Message("The action raised an exception the host does not know", TStatusTag::Error);
  }
  return false;
}

// Marks `action` as the one a stop request terminates while `step` runs.
bool TRunner::RunAs(qv::TCustomQvAction& action, const std::function<bool()>& step) {
  qv::TCustomQvAction* outer = FCurrent.exchange(&action);
  struct TRestore {
    std::atomic<qv::TCustomQvAction*>& Current;
    qv::TCustomQvAction* Outer;
    ~TRestore() { Current = Outer; }
  } restore{FCurrent, outer};
  if (FStop && action.CanTerminate()) action.TerminateAction();
  return step();
}

bool TRunner::RunLoop(TActionInstance& a, qv::TQvBaseIterator& loop) {
  if (!RunAs(loop, [&] { return loop.BeforeFirstIteration(); })) return false;
  int count = loop.GetIterationCount();
  for (int i = 1; i <= count; ++i) {
    // A nested action may rewrite its own properties while it runs (the build action turns
    // project names into identifiers), so every iteration gets fresh instances as the
    // project file configures them; the last ones' dynamic properties are saved back.
    if (i > 1 && FFile && a.Source) {
      std::vector<TActionInstance> fresh;
      for (const auto& child : a.Source->Actions)
        CreateFromProject(*FFile, child, fresh);
      a.Children = std::move(fresh);
    }
    loop.SetCurrentIteration(i);
    std::string value = loop.GetCurrentValue();
    std::string var = loop.GetVariableName();
    std::string title = "Iteration " + std::to_string(i) + " of " + std::to_string(count);
    if (!var.empty()) title += ": " + var + " = " + value;
    FEnv.Log.GroupStart(title, 0, TStatusTag::Plain);
    if (!var.empty()) FEnv.Expander.PushLoopVariable(var, value);
    TLoopVariableScope scope{FEnv.Expander, !var.empty()};
    bool ok = RunList(a.Children);
    FEnv.Log.GroupEnd(ok ? std::nullopt : std::optional<TStatusTag>(TStatusTag::Error));
    if (!ok) return false;
  }
  return true;
}

// ---- saving back ---------------------------------------------------------------------------

void TRunner::CollectChanges(TProjectFile& file) const {
  Collect(FActions, file);
  for (const auto& set : FEnv.PropertySets)
    for (const auto& name : set->ChangedNames())
      file.SetProperty(set->Node(), name, set->GetValue(name), false);
}

void TRunner::Collect(const std::vector<TActionInstance>& list, TProjectFile& file) const {
  for (const auto& a : list) {
    if (!a.Source) continue;
    for (const auto& name : a.Context->DynamicProperties()) {
      const qv::TPropDescriptor* d = a.Action->GetPropertyTable().Find(name);
      if (!d) continue;
      file.SetProperty(a.Source->Node, std::string(d->Name),
                       qv::TQvPersistent::GetPropText(*a.Action, *d),
                       d->Type == qv::TPropType::StringList);
    }
    Collect(a.Children, file);
  }
}

}  // namespace qvhost
