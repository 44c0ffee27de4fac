// qvhost: the reference host. Loads the package modules, then lists what they registered,
// runs a project's build process, or runs one action.
//   qvhost [OPTIONS] actions | run PROJECT | exec TYPE [NAME=VALUE | NAME+=LINE]...
// Exit status: 0 success, 1 a build step failed, 2 bad usage or unreadable input, 130/143
// interrupted.
#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iostream>
#include <memory>

#include "DotNetInfo.h"
#include "HostPlatform.h"
#include "HostSession.h"
#include "QvExceptions.h"
#include "QvPlatform.h"
#include "QvSysUtils.h"
#ifdef QV_HAVE_QT
#include "ui/EditorWindow.h"
#endif

namespace {

using TPairs = std::vector<std::pair<std::string, std::string>>;

// Splits "NAME=VALUE" items; false (with the culprit in `bad`) when one has no name.
bool SplitPairs(const std::vector<std::string>& items, TPairs& pairs, std::string& bad) {
  for (const auto& item : items) {
    size_t eq = item.find('=');
    if (eq == std::string::npos || eq == 0) {
      bad = item;
      return false;
    }
    pairs.emplace_back(item.substr(0, eq), item.substr(eq + 1));
  }
  return true;
}

struct TCommandLine {
  qvhost::THostSettings Settings;
  std::vector<std::string> Vars, Frameworks;
  std::string LogFormat = "text";
  std::string MSBuildEngine = "auto";
  std::string Ci = "auto";
  std::string Format = "text";
  bool Sequence = false;
  std::string Action, ScreenshotDir, Property;
  bool NoColour = false, NoDefaultPackages = false;
  std::string Project, Type;
  std::vector<std::string> Assignments;
  std::vector<std::string> PropertySetValues;
};

void AddGlobalOptions(CLI::App& app, TCommandLine& cl) {
  auto& s = cl.Settings;
  app.add_option("--options", s.OptionsFile, "Options store to use instead of the per-user one")
      ->type_name("FILE");
  app.add_option("--registry", s.RegistryFile,
                 "Registry export (.reg) that stands in for the Windows registry "
                 "(default: $QV_REGISTRY)")
      ->type_name("FILE");
  app.add_option("--metabase", s.MetabaseFile,
                 "IIS 6 metabase export (MetaBase.xml) that answers IIS:// lookups "
                 "(default: $QV_METABASE)")
      ->type_name("FILE");
  app.add_option("--var", cl.Vars, "Sets a variable, over the project's and the environment's")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  app.add_option("--log-format", cl.LogFormat, "Log as indented text or as JSON lines")
      ->check(CLI::IsMember({"text", "jsonl"}));
  app.add_option("--package", s.Packages, "Loads this package module as well")
      ->type_name("FILE")
      ->allow_extra_args(false);
  app.add_flag("--no-default-packages", cl.NoDefaultPackages,
               "Loads only the --package modules, not the *.qvp files beside qvhost");
  app.add_flag("--design-time", s.DesignTime,
               "Registers packages as a host with a user interface would");
  app.add_flag("--no-color", cl.NoColour, "Marks statuses in text instead of colour");
  app.add_option("--framework", cl.Frameworks, "Where a .NET framework version is installed")
      ->type_name("VERSION=FOLDER")
      ->allow_extra_args(false);
  app.add_option("--msbuild-engine", cl.MSBuildEngine,
                 "MSBuild.exe for v2.0 and v3.5: the .NET SDK's (dotnet), Mono's xbuild, or "
                 "dotnet where installed (auto)")
      ->check(CLI::IsMember({"auto", "dotnet", "xbuild"}, CLI::ignore_case));
  app.add_option("--ci", cl.Ci,
                 "CI annotations beside the text log: Azure Pipelines, GitHub Actions, TeamCity, "
                 "none, or the server the environment names (auto)")
      ->check(CLI::IsMember({"auto", "none", "azure", "github", "teamcity"}, CLI::ignore_case));
}

int Edit(qvhost::THostSession& session, const TCommandLine& cl, bool options) {
#ifdef QV_HAVE_QT
  std::unique_ptr<qvhost::TPageEditor> editor;
  if (options)
    editor = session.OpenOptionsEditor();
  else
    editor = session.OpenEditor(cl.Project, cl.Action, cl.Property);
  return qvhost::ui::RunEditCommand(*editor, session.ProjectVariableNames(), cl.ScreenshotDir);
#else
  (void)session;
  (void)cl;
  (void)options;
  throw qv::Exception(
      "This qvhost was built without Qt 6 Widgets: install qt6-base-dev and "
      "build again to edit actions in a window");
#endif
}

int Run(CLI::App& app, TCommandLine& cl) {
  auto& s = cl.Settings;
  std::string bad;
  if (!SplitPairs(cl.Vars, s.Variables, bad) || !SplitPairs(cl.Frameworks, s.Frameworks, bad) ||
      !SplitPairs(cl.PropertySetValues, s.PropertySetValues, bad)) {
    std::cerr << "qvhost: expected NAME=VALUE, not \"" << bad << "\"\n";
    return qvhost::kExitBadInput;
  }
  s.DefaultPackages = !cl.NoDefaultPackages;
  if (app.got_subcommand("edit") || app.got_subcommand("options")) s.DesignTime = true;
  qvhost::TMSBuildEngine engine = qvhost::TMSBuildEngine::Auto;
  qvhost::ParseMSBuildEngine(cl.MSBuildEngine, engine);
  s.FallbackFramework =
      qvhost::MSBuildLauncherFolder(qv::ExtractFileDir(qv::platform::ExecutablePath()), engine);
  s.LogFormat = cl.LogFormat == "jsonl" ? qvhost::TLogFormat::JsonLines : qvhost::TLogFormat::Text;
  s.Colour = s.LogFormat == qvhost::TLogFormat::Text && qvhost::UseColour(cl.NoColour);
  if (!qvhost::ParseCiDialect(cl.Ci, s.Ci))
    s.Ci = qvhost::DetectCiDialect([](const char* name) { return std::getenv(name); });
  std::unique_ptr<qvhost::THostSession> session;
  try {
    session = std::make_unique<qvhost::THostSession>(s, std::cout);
    qvhost::platform::TInterruptWatcher watcher(
        [&session](int status) { session->RequestStop(status); });
    if (app.got_subcommand("run")) return session->RunProject(cl.Project);
    if (app.got_subcommand("edit")) return Edit(*session, cl, false);
    if (app.got_subcommand("options")) return Edit(*session, cl, true);
    if (app.got_subcommand("describe"))
      return session->DescribeAction(cl.Type, cl.Format == "json");
    if (app.got_subcommand("check")) return session->CheckProject(cl.Project);
    if (app.got_subcommand("exec"))
      return session->ExecAction(cl.Type, cl.Assignments, s.PropertySetValues);
    return session->ListActions(cl.Sequence);
  } catch (const qvhost::TProjectFileError& e) {
    if (session) session->ReportInputError(e.File, e.Line, e.Reason);
    session.reset();
    std::cerr << "qvhost: " << e.what() << "\n";
    return qvhost::kExitBadInput;
  } catch (const std::exception& e) {
    session.reset();
    std::cout.flush();
    std::cerr << "qvhost: " << e.what() << "\n";
    return qvhost::kExitBadInput;
  }
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"The Quorvex reference host: runs build processes with plug-in packages.", "qvhost"};
  app.set_version_flag("--version", "qvhost " QV_HOST_VERSION);
  app.footer(
      "Global options may follow the command word too.\n"
      "Exit status: 0 success, 1 a build step failed, 2 bad usage or unreadable input,\n"
      "130 interrupted (Ctrl-C), 143 terminated (SIGTERM).");
  TCommandLine cl;
  AddGlobalOptions(app, cl);
  app.fallthrough();
  app.require_subcommand(1);
  CLI::App* actions = app.add_subcommand("actions", "Lists what the loaded packages registered");
  actions->add_flag("--sequence", cl.Sequence, "Every registration call in the order made");
  CLI::App* run = app.add_subcommand("run", "Runs the build process of a project file");
  run->add_option("PROJECT", cl.Project, "The project file")->required();
  CLI::App* describe =
      app.add_subcommand("describe", "Lists an action's published properties and their defaults");
  describe->add_option("TYPE", cl.Type, "The action's class name or caption")->required();
  describe->add_option("--format", cl.Format, "Text for people or JSON for programs")
      ->check(CLI::IsMember({"text", "json"}));
  CLI::App* check = app.add_subcommand(
      "check", "Validates a project without running it: settings, variables, the solution");
  check->add_option("PROJECT", cl.Project, "The project file")->required();
  CLI::App* edit = app.add_subcommand("edit", "Edits an action of a project in its pages");
  edit->add_option("PROJECT", cl.Project, "The project file")->required();
  edit->add_option("--action", cl.Action, "The action: its position (1, 2, ...) or caption")
      ->type_name("N|CAPTION");
  edit->add_option("--property", cl.Property,
                   "Opens the page where this property is edited (its property editor's)")
      ->type_name("NAME");
  edit->add_option("--screenshot", cl.ScreenshotDir,
                   "Writes each page as DIR/PAGE.png instead of showing the window")
      ->type_name("DIR");
  CLI::App* options = app.add_subcommand("options", "Edits the options store in its pages");
  options
      ->add_option("--screenshot", cl.ScreenshotDir,
                   "Writes each page as DIR/PAGE.png instead of showing the window")
      ->type_name("DIR");
  CLI::App* exec = app.add_subcommand("exec", "Runs one action with the given property values");
  exec->add_option("TYPE", cl.Type, "The action's class name or caption")->required();
  exec->add_option("ASSIGNMENT", cl.Assignments,
                   "NAME=VALUE sets a property (\\n separates list lines); NAME+=LINE adds a "
                   "line to a list");
  exec->add_option("--property-value", cl.PropertySetValues,
                   "Sets a value of a property set the action may read (repeatable)")
      ->type_name("SET.NAME=VALUE")
      ->allow_extra_args(false);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? qvhost::kExitSuccess : qvhost::kExitBadInput;
  }
  return Run(app, cl);
}
