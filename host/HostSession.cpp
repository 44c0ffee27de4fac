#include "HostSession.h"

#include <cstdlib>
#include <ostream>

#include "Catalog.h"
#include "ComAutomation.h"
#include "ProcessRunner.h"
#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"

namespace qvhost {

THostSession::TSlotsGuard::~TSlotsGuard() {
  qv::QvActionServices = nullptr;
  qv::QvScriptingServices = nullptr;
  qv::QvOptionsServices = nullptr;
  qv::QvDotNetInfo = nullptr;
  qv::QvRegistry = nullptr;
  qv::QvAutomationServices = nullptr;
  qv::QvWebDavServices = nullptr;
}

THostSession::THostSession(const THostSettings& settings, std::ostream& out, TRunner::TClock clock)
    : FOut(out), FClock(std::move(clock)), FDesignTime(settings.DesignTime) {
  qv::QvActionServices = &FServices;
  qv::QvScriptingServices = &FServices;
  qv::QvOptionsServices = &FServices;
  qv::QvDotNetInfo = &FDotNet;
  for (const auto& [version, folder] : settings.Frameworks)
    FDotNet.AddFramework(version, folder);
  FDotNet.SetFallbackFolder(settings.FallbackFramework);
  qv::QvWebDavServices = &FWebDav;
  InstallRegistry(settings);
  InstallMetabase(settings);
  FStore = std::make_unique<TOptionsStore>(
      settings.OptionsFile.empty() ? TOptionsStore::DefaultFileName() : settings.OptionsFile);
  FVault = std::make_unique<TPasswordVault>(
      settings.KeyFile.empty() ? TPasswordVault::DefaultKeyFile() : settings.KeyFile);
  for (const auto& [name, value] : settings.Variables)
    FExpander.SetOverride(name, value);
  FLog = NewLogSink(settings.LogFormat, out, settings.Colour, FClock);
  if (settings.LogFormat == TLogFormat::Text) FLog->SetCiDialect(settings.Ci);
  FPackages.Load(PackageFiles(settings), settings.DesignTime);
  FServices.LoadOptions(*FStore);
}

THostSession::~THostSession() = default;

void THostSession::InstallRegistry(const THostSettings& settings) {
  std::string file = settings.RegistryFile;
  if (file.empty())
    if (auto env = qv::platform::GetEnv("QV_REGISTRY")) file = *env;
  if (!file.empty())
    FRegistry = qv::TRegFileRegistry::LoadFromFile(file);
  else
    FRegistry = qv::NewNativeRegistryReader();
  qv::QvRegistry = FRegistry.get();
}

// IIS monikers bind in an export when one is given; otherwise through the system's COM where
// it has one (Windows), and to nothing elsewhere.
void THostSession::InstallMetabase(const THostSettings& settings) {
  std::string file = settings.MetabaseFile;
  if (file.empty())
    if (auto env = qv::platform::GetEnv("QV_METABASE")) file = *env;
  if (!file.empty()) {
    FMetabase = TMetabase::LoadFromFile(file);
    qv::QvAutomationServices = FMetabase.get();
  } else {
    FComAutomation = NewComAutomation();
    qv::QvAutomationServices = FComAutomation.get();
  }
}

std::vector<std::string> THostSession::PackageFiles(const THostSettings& settings) const {
  std::vector<std::string> files;
  if (settings.DefaultPackages)
    files = FindPackageFiles(qv::ExtractFileDir(qv::platform::ExecutablePath()));
  files.insert(files.end(), settings.Packages.begin(), settings.Packages.end());
  return files;
}

int THostSession::ListActions(bool sequence) {
  if (sequence)
    for (const auto& line : FServices.Sequence())
      FOut << line << "\n";
  else
    FOut << DescribeRegistrations(FServices, FDesignTime);
  FOut << std::flush;
  return kExitSuccess;
}

TRunner& THostSession::NewRunner() {
  FEnv.reset(new TRunEnvironment{*FLog, FExpander, *FVault, {}, NewHostProcess});
  FRunner = std::make_unique<TRunner>(FServices, *FEnv, FClock);
  FActiveRunner = FRunner.get();
  if (FStopRequested) FRunner->RequestStop();
  return *FRunner;
}

void THostSession::RequestStop(int exitStatus) {
  FStopStatus = exitStatus;
  FStopRequested = true;
  if (TRunner* runner = FActiveRunner.load()) runner->RequestStop();
}

int THostSession::RunProject(const std::string& fileName) {
  FProject = TProjectFile::Load(fileName);
  TRunner& runner = NewRunner();
  runner.LoadProject(*FProject);
  return RunAndSave(runner, FProject.get());
}

int THostSession::ExecAction(const std::string& type, const std::vector<std::string>& assignments,
                             const std::vector<std::pair<std::string, std::string>>& setValues) {
  const TActionRegistration& registration = RequireAction(type);
  TRunner& runner = NewRunner();
  // SET.NAME=VALUE: property names hold no point, set names may.
  for (const auto& [key, value] : setValues) {
    size_t dot = key.rfind('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == key.size())
      throw qv::Exception("--property-value expects SET.NAME=VALUE, not \"" + key + "=" + value +
                          "\"");
    runner.SetPropertySetValue(key.substr(0, dot), key.substr(dot + 1), value);
  }
  TActionInstance& action = runner.AddAction(registration);
  for (const auto& assignment : assignments)
    ApplyAssignment(*action.Action, assignment);
  return RunAndSave(runner, nullptr);
}

// Saving happens whether or not the build succeeded: numbers a failed build already stamped
// into files must not be handed out again.
int THostSession::RunAndSave(TRunner& runner, TProjectFile* project) {
  FLog->StartRun();
  bool ok = runner.Run();
  bool saved = true;
  try {
    if (project) {
      runner.CollectChanges(*project);
      project->SaveChanges();
    }
    FServices.SaveModifiedOptions(*FStore);
  } catch (const std::exception& e) {
    FLog->Message(e.what(), qv::TStatusTag::Error);
    saved = false;
  }
  TRunSummary summary{ok, runner.ActionsRun(), runner.ActionsFailed(), runner.Seconds(), saved};
  if (FStopRequested && !ok) {
    summary.Interrupted = FStopStatus;
    summary.NotStarted = runner.ActionsNotStarted();
  }
  FLog->RunEnd(summary);
  if (summary.Interrupted) return summary.Interrupted;
  return ok && saved ? kExitSuccess : kExitBuildFailed;
}

const TActionRegistration& THostSession::RequireAction(const std::string& type) const {
  const TActionRegistration* registration = FServices.FindAction(type);
  if (!registration)
    throw qv::Exception("Unknown action type \"" + type + "\" (qvhost actions lists the types)");
  return *registration;
}

int THostSession::DescribeAction(const std::string& type, bool json) {
  const TActionRegistration& registration = RequireAction(type);
  TActionInstance& action = NewRunner().AddAction(registration);
  FOut << qvhost::DescribeAction(registration, *action.Action, json) << std::flush;
  return kExitSuccess;
}

int THostSession::CheckProject(const std::string& fileName) {
  FProject = TProjectFile::Load(fileName);
  TRunner& runner = NewRunner();
  std::vector<TCheckFinding> findings;
  int actions = 0;
  try {
    runner.LoadProject(*FProject);
    findings = runner.Check();
    std::function<void(const std::vector<TActionInstance>&)> count = [&](const auto& list) {
      for (const auto& a : list)
        ++actions, count(a.Children);
    };
    count(runner.Actions());
  } catch (const TProjectFileError& e) {
    FOut << e.what() << "\n";
    return kExitBuildFailed;
  }
  int errors = 0;
  for (const auto& f : findings) {
    errors += f.Error ? 1 : 0;
    std::string where =
        f.Action->Source
            ? fileName + ":" + std::to_string(FProject->LineOf(f.Action->Source->Node)) + ": "
            : "";
    FOut << where << (f.Error ? "" : "warning: ") << f.Action->Caption << ": " << f.Text << "\n";
  }
  FOut << "Checked " << actions << (actions == 1 ? " action: " : " actions: ") << errors
       << (errors == 1 ? " problem, " : " problems, ") << findings.size() - errors
       << (findings.size() - errors == 1 ? " warning\n" : " warnings\n") << std::flush;
  return errors ? kExitBuildFailed : kExitSuccess;
}

std::unique_ptr<TActionEditor> THostSession::OpenEditor(const std::string& fileName,
                                                        const std::string& selector,
                                                        const std::string& property) {
  FProject = TProjectFile::Load(fileName);
  TRunner& runner = NewRunner();
  runner.LoadProject(*FProject);
  TActionInstance action = runner.Instantiate(*FProject, SelectAction(*FProject, selector));
  std::string type = action.TypeName;
  std::unique_ptr<TActionEditor> editor;
  for (const auto& [cls, pages] : FServices.ActionPages())
    if (qv::SameText(cls, type))
      editor = std::make_unique<TActionEditor>(*FProject, std::move(action), pages);
  if (!editor) throw qv::Exception("The action type " + type + " has no pages to edit it with");
  if (property.empty()) return editor;
  for (const auto& e : FServices.PropertyEditors())
    if (qv::SameText(e.Class->ClassName, type) && qv::SameText(e.PropertyName, property)) {
      // The host's own editor of a property opens the action's pages at the first one.
      if (auto pe = qv::CreatePropertyEditor(e.Editor)) editor->StartPage = pe->GetPage();
      return editor;
    }
  throw qv::Exception("The property " + property + " of " + type + " has no editor");
}

std::unique_ptr<TOptionsEditor> THostSession::OpenOptionsEditor() {
  for (const auto& [cls, pages] : FServices.OptionPages())
    for (const auto& o : FServices.Options())
      if (qv::SameText(o.Class->ClassName, cls))
        return std::make_unique<TOptionsEditor>(*o.Options, pages,
                                                [this] { FServices.SaveModifiedOptions(*FStore); });
  throw qv::Exception("No loaded package has options pages");
}

// The project's variables and the variables its loops set.
std::vector<std::string> THostSession::ProjectVariableNames() const {
  std::vector<std::string> names;
  auto add = [&](const std::string& name) {
    for (const auto& n : names)
      if (qv::SameText(n, name)) return;
    if (!name.empty()) names.push_back(name);
  };
  if (!FProject) return names;
  for (const auto& v : FProject->Variables())
    add(v.Name);
  std::function<void(const std::vector<TProjectAction>&)> loops = [&](const auto& actions) {
    for (const auto& a : actions) {
      for (const auto& p : a.Properties)
        if (a.HasNestedActions && qv::SameText(p.Name, "VariableName")) add(p.Value);
      loops(a.Actions);
    }
  };
  loops(FProject->Actions());
  return names;
}

void THostSession::ReportInputError(std::string_view file, int64_t line, std::string_view text) {
  FLog->InputError(file, line, text);
}

void ApplyAssignment(qv::TQvPersistent& action, std::string_view assignment) {
  size_t eq = assignment.find('=');
  if (eq == std::string_view::npos || eq == 0)
    throw qv::Exception("Expected NAME=VALUE or NAME+=LINE, not \"" + std::string(assignment) +
                        "\"");
  bool append = assignment[eq - 1] == '+';
  std::string name = qv::Trim(assignment.substr(0, append ? eq - 1 : eq));
  std::string value(assignment.substr(eq + 1));
  const qv::TPropDescriptor* d = action.GetPropertyTable().Find(name);
  if (d && d->Type == qv::TPropType::StringList) {
    if (append) {
      qv::TStringList lines;
      lines.SetText(action.GetPropValue(name));
      lines.Add(value);
      value = lines.Text();
    } else {
      value = qv::StringReplaceAll(value, "\\n", "\r\n");
    }
  } else if (append && d) {
    throw qv::Exception(name + "+= adds a line to a string list, and " + name + " is not one");
  }
  action.SetPropValue(name, value);
}

}  // namespace qvhost
