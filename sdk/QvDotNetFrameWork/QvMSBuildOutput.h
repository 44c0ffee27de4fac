// Reads the standard output of an MSBuild (or Mono xbuild) run into an action's log: one
// log group per project, error and warning lines in MSBuild's canonical form, and the
// error and warning counts.
//
// With the logger assembly Quorvex.MSBuild.Tasks.dll (/logger:... /noconlog) every event
// arrives as one tagged line, fields separated by a tab and escaped (\\ \t \r \n):
//
//   @@qv:buildStarted
//   @@qv:projectStarted\t<projectFile>\t<targetNames>
//   @@qv:projectFinished\t<projectFile>\t<True|False>
//   @@qv:error\t<projectFile>\t<file>\t<line>\t<column>\t<code>\t<message>
//   @@qv:warning\t<projectFile>\t<file>\t<line>\t<column>\t<code>\t<message>
//   @@qv:message\t<High|Normal|Low>\t<text>
//   @@qv:buildFinished\t<True|False>
//
// A logger that knows the project instance of each event (MSBuild's project context id)
// appends it: projectStarted gets <instance>\t<parent instance>, projectFinished, error,
// warning and message get <instance>. Unknown kinds are ignored and missing fields read as empty,
// so the logger may grow.
//
// How tagged lines are logged:
// - projectStarted opens the group "Project " + the project file's name (group type 0,
//   tag 0), except for the solution itself (the file given to Start, any .sln and any
//   .metaproj) and for internal target calls (every target named Get... or ...OutputGroup,
//   such as GetTargetPath or GetCopyToOutputDirectoryItems), which open none;
//   projectFinished closes that project's group with tag 1 (success) or 3 (failure).
// - error and warning are logged with tag 3 and 2 as "file(line,col): error CODE: message",
//   a relative file made absolute against the folder of the project that reported it
//   ("file(line): ", "file : " or "MSBUILD : " when the position or file is unknown), with
//   " [projectFile]" behind when the project that raised it is not the open group's; each
//   counts once.
// - message logs its text plain; buildFinished closes groups left open.
// - With instances (multi-processor builds report several projects interleaved), every line
//   goes into the group of the project instance that reported it: a project's lines and the
//   projects it starts wait until the outermost project with a group finishes, then go out
//   as that group, so a /m build gives the same groups, lines and counts as a /m:1 build.
//
// Untagged lines (no logger, or xbuild's own banner) are logged as received, blank lines
// skipped: a canonical "origin: error CODE: text" line with tag 3, a warning with tag 2, the
// rest plain. Until the first tagged line arrives these also count, and a run's closing
// summary lines "N Warning(s)" and "N Error(s)" (blanks or tabs before them allowed) replace
// what that run's lines counted, so errors that xbuild repeats in its closing sections are
// not counted twice while the counts of several runs (one per project) still add up; a
// summary line with a count above 0 is logged with tag 2 or 3.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qv {

class TCustomQvAction;

class TQvMSBuildStructuredOutputHelper {
 public:
  // `owner` receives the log messages and groups; it must outlive the helper.
  explicit TQvMSBuildStructuredOutputHelper(TCustomQvAction* owner);

  // Prepares a run over `solutionFileName`: resets the counts and forgets open projects.
  // While `enabled` is false ProcessLine does nothing.
  void Start(std::string_view solutionFileName, bool enabled);
  // Reads one output line (without its line break).
  void ProcessLine(std::string_view line);
  // Closes, with tag 3, the groups of projects that never finished (a run that was
  // stopped or crashed), so that the owner's own groups stay balanced. Call after a run.
  void Finish();

  int64_t GetErrorCount() const { return FErrorCount; }
  int64_t GetWarningCount() const { return FWarningCount; }

 private:
  struct TProject {
    std::string file;
    bool grouped;  // opened a log group
  };

  // A buffered line, or (child >= 0) the place of a project started there.
  struct TEntry {
    std::string text;
    int tag;
    int child;
  };
  // A project instance of a build that names instances.
  struct TInstance {
    std::string file;
    bool grouped;
    int parent;
    bool finished = false;
    bool succeeded = false;
    bool buffered = false;  // inside a grouped instance that has not been logged yet
    std::vector<TEntry> entries;
  };

  void ProcessTagged(std::string_view kindAndFields);
  bool InstanceStarted(std::string_view file, std::string_view targets, std::string_view id,
                       std::string_view parent);
  void InstanceFinished(int id, bool succeeded);
  // Logs `text` now, or into the buffer of instance `id` when it waits inside a group.
  void Send(int id, const std::string& text, int tag);
  void LogInstance(int id, bool closeFailed);
  // The file of the group a line of `id` lands in ("" for none).
  std::string GroupFileOf(int id) const;
  void ProcessConsoleLine(std::string_view line);
  void ProjectStarted(std::string_view file, std::string_view targets);
  void ProjectFinished(std::string_view file, bool succeeded);
  void Diagnostic(bool error, std::string_view project, std::string_view file,
                  std::string_view line, std::string_view column, std::string_view code,
                  std::string_view message, int instance);
  void CloseAll(bool failed);
  bool OpensGroup(std::string_view file, std::string_view targets) const;

  TCustomQvAction* FOwner;
  std::string FSolutionFile;
  bool FEnabled = false;
  bool FLoggerSeen = false;
  int64_t FErrorCount = 0;
  int64_t FWarningCount = 0;
  int64_t FRunErrors = 0;  // console diagnostics since the last summary line
  int64_t FRunWarnings = 0;
  std::vector<TProject> FProjects;
  std::map<int, TInstance> FInstances;
  std::vector<int> FOutermost;  // grouped instances outside any other group, in start order
  // Scratch buffers reused from line to line.
  std::string FText, FField;
};

}  // namespace qv
