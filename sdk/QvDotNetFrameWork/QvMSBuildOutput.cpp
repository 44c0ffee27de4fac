#include "QvMSBuildOutput.h"

#include <array>
#include <charconv>
#include <utility>

#include "QvActions.h"
#include "QvCanonicalMessage.h"
#include "QvCounts.h"
#include "QvText.h"
#include "QvUtils.h"

namespace qv {

namespace {

constexpr std::string_view kTag = "@@qv:";
constexpr size_t kMaxFields = 9;  // kind + the seven fields of an error + its instance

// The tab-separated fields of a tagged line, still escaped; absent fields read as empty.
struct TFields {
  std::array<std::string_view, kMaxFields> items;
  size_t count = 0;
  std::string_view operator[](size_t i) const { return i < count ? items[i] : std::string_view(); }
};

TFields SplitFields(std::string_view text) {
  TFields f;
  size_t start = 0;
  while (f.count < kMaxFields) {
    size_t tab = text.find('\t', start);
    // The last field takes the rest, so a newer logger's extra fields stay harmless.
    if (tab == std::string_view::npos || f.count + 1 == kMaxFields) {
      f.items[f.count++] = text.substr(start);
      break;
    }
    f.items[f.count++] = text.substr(start, tab - start);
    start = tab + 1;
  }
  return f;
}

// Appends `field` to `out` with its escapes resolved; an unknown escape stays as written.
void AppendUnescaped(std::string& out, std::string_view field) {
  for (size_t i = 0; i < field.size(); ++i) {
    char c = field[i];
    if (c == '\\' && i + 1 < field.size()) {
      switch (field[i + 1]) {
        case '\\':
          c = '\\';
          break;
        case 't':
          c = '\t';
          break;
        case 'r':
          c = '\r';
          break;
        case 'n':
          c = '\n';
          break;
        default:
          out += c;
          continue;
      }
      ++i;
    }
    out += c;
  }
}

std::string_view FileNameOf(std::string_view path) {
  size_t slash = path.find_last_of("/\\");
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// A decimal number; 0 for anything else (MSBuild's "unknown").
int ToInt(std::string_view text) {
  int value = 0;
  auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  return ec == std::errc() && end == text.data() + text.size() && value > 0 ? value : 0;
}

void AppendInt(std::string& out, int value) {
  char digits[12];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

enum class TCategory { None, Error, Warning };

// A line in MSBuild's canonical message form, by its category.
TCategory ClassifyCanonical(std::string_view line) {
  std::optional<TCanonicalMessage> m = ParseCanonicalMessage(line);
  return !m ? TCategory::None : m->Error ? TCategory::Error : TCategory::Warning;
}

enum class TSummary { None, Errors, Warnings };

// Reads MSBuild's closing "  12 Error(s)" or "  0 Warning(s)" (blanks or tabs before,
// blanks behind).
// The summary a line closes a run with, and its count.
TSummary ReadSummary(std::string_view line, int64_t& count) {
  TSummaryCounts counts = ReadSummaryCounts(line, true);
  count = counts.Errors.value_or(counts.Warnings.value_or(0));
  return counts.Errors ? TSummary::Errors : counts.Warnings ? TSummary::Warnings : TSummary::None;
}

// Targets that only ask a project something (its output path, its manifest, its items)
// rather than build it.
bool IsInternalTargetList(std::string_view targets) {
  bool any = false;
  size_t start = 0;
  while (start <= targets.size()) {
    size_t end = targets.find(';', start);
    if (end == std::string_view::npos) end = targets.size();
    std::string_view name = TrimRightView(TrimLeftView(targets.substr(start, end - start)));
    if (!name.empty()) {
      if (!StartsWithNoCase(name, "Get") && !EndsWithNoCase(name, "OutputGroup")) return false;
      any = true;
    }
    start = end + 1;
  }
  return any;
}

// A project instance field; false when absent (an older logger, or xbuild, which has none).
bool ParseInstance(std::string_view field, int& id) {
  if (field.empty()) return false;
  auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), id);
  return ec == std::errc() && end == field.data() + field.size() && id >= 0;
}

}  // namespace

TQvMSBuildStructuredOutputHelper::TQvMSBuildStructuredOutputHelper(TCustomQvAction* owner)
    : FOwner(owner) {}

void TQvMSBuildStructuredOutputHelper::Start(std::string_view solutionFileName, bool enabled) {
  FSolutionFile = solutionFileName;
  FEnabled = enabled;
  FLoggerSeen = false;
  FErrorCount = FWarningCount = FRunErrors = FRunWarnings = 0;
  FProjects.clear();
  FInstances.clear();
  FOutermost.clear();
}

void TQvMSBuildStructuredOutputHelper::ProcessLine(std::string_view line) {
  if (!FEnabled) return;
  line = TrimRightView(line);
  if (line.substr(0, kTag.size()) == kTag) {
    FLoggerSeen = true;
    ProcessTagged(line.substr(kTag.size()));
  } else {
    ProcessConsoleLine(line);
  }
}

void TQvMSBuildStructuredOutputHelper::Finish() {
  CloseAll(true);
}

void TQvMSBuildStructuredOutputHelper::ProcessTagged(std::string_view kindAndFields) {
  TFields f = SplitFields(kindAndFields);
  std::string_view kind = f[0];
  int id = -1;
  if (kind == "projectStarted") {
    if (!InstanceStarted(f[1], f[2], f[3], f[4])) ProjectStarted(f[1], f[2]);
  } else if (kind == "projectFinished") {
    if (ParseInstance(f[3], id) && FInstances.count(id) != 0)
      InstanceFinished(id, f[2] == "True");
    else
      ProjectFinished(f[1], f[2] == "True");
  } else if (kind == "error" || kind == "warning") {
    if (!ParseInstance(f[7], id)) id = -1;
    Diagnostic(kind == "error", f[1], f[2], f[3], f[4], f[5], f[6], id);
  } else if (kind == "message") {
    if (f[2].empty()) return;
    if (!ParseInstance(f[3], id)) id = -1;
    FText.clear();
    AppendUnescaped(FText, f[2]);
    Send(id, FText, static_cast<int>(TStatusTag::Plain));
  } else if (kind == "buildFinished") {
    CloseAll(f[1] != "True");
  }
}

bool TQvMSBuildStructuredOutputHelper::InstanceStarted(std::string_view file,
                                                       std::string_view targets,
                                                       std::string_view idField,
                                                       std::string_view parentField) {
  int id = 0, parent = -1;
  if (!ParseInstance(idField, id)) return false;
  // Instances form a tree in the order they start: a repeated instance is ignored, and one
  // cannot be its own parent (a garbled line must not send the reader round in circles).
  if (FInstances.count(id) != 0) return true;
  if (!ParseInstance(parentField, parent) || parent == id) parent = -1;
  TInstance instance;
  AppendUnescaped(instance.file, file);
  instance.grouped = OpensGroup(instance.file, targets);
  instance.parent = parent;
  auto up = FInstances.find(parent);
  // A project started by one that still collects its lines is logged in its place there.
  instance.buffered = up != FInstances.end() && (up->second.grouped || up->second.buffered);
  if (instance.buffered)
    up->second.entries.push_back({std::string(), 0, id});
  else if (instance.grouped)
    FOutermost.push_back(id);
  FInstances[id] = std::move(instance);
  return true;
}

void TQvMSBuildStructuredOutputHelper::InstanceFinished(int id, bool succeeded) {
  TInstance& instance = FInstances[id];
  instance.finished = true;
  instance.succeeded = succeeded;
  if (instance.buffered) return;  // logged with the group it waits in
  if (instance.grouped) {
    std::erase(FOutermost, id);
    LogInstance(id, true);
  } else {
    FInstances.erase(id);  // its lines went out as they came
  }
}

void TQvMSBuildStructuredOutputHelper::Send(int id, const std::string& text, int tag) {
  auto it = FInstances.find(id);
  if (it != FInstances.end() && (it->second.grouped || it->second.buffered))
    it->second.entries.push_back({text, tag, -1});
  else
    FOwner->SendMessage(text, static_cast<TStatusTag>(tag));
}

void TQvMSBuildStructuredOutputHelper::LogInstance(int id, bool failedIfOpen) {
  auto it = FInstances.find(id);
  if (it == FInstances.end()) return;
  TInstance instance = std::move(it->second);
  FInstances.erase(it);
  if (instance.grouped)
    FOwner->StartMessageGroup("Project " + std::string(FileNameOf(instance.file)), 0,
                              TStatusTag::Plain);
  for (const TEntry& e : instance.entries) {
    if (e.child >= 0)
      LogInstance(e.child, false);
    else
      FOwner->SendMessage(e.text, static_cast<TStatusTag>(e.tag));
  }
  if (!instance.grouped) return;
  // As without instances: a project inside another that never finished closes untagged.
  if (instance.finished)
    FOwner->EndMessageGroup(instance.succeeded ? TStatusTag::Success : TStatusTag::Error);
  else if (failedIfOpen)
    FOwner->EndMessageGroup(TStatusTag::Error);
  else
    FOwner->EndMessageGroup();
}

std::string TQvMSBuildStructuredOutputHelper::GroupFileOf(int id) const {
  for (auto it = FInstances.find(id); it != FInstances.end();
       it = FInstances.find(it->second.parent)) {
    if (it->second.grouped) return it->second.file;
    if (!it->second.buffered) break;
  }
  return std::string();
}

bool TQvMSBuildStructuredOutputHelper::OpensGroup(std::string_view file,
                                                  std::string_view targets) const {
  if (file.empty() || file == FSolutionFile) return false;
  if (EndsWithNoCase(file, ".sln") || EndsWithNoCase(file, ".metaproj")) return false;
  return !IsInternalTargetList(targets);
}

void TQvMSBuildStructuredOutputHelper::ProjectStarted(std::string_view file,
                                                      std::string_view targets) {
  FField.clear();
  AppendUnescaped(FField, file);
  bool grouped = OpensGroup(FField, targets);
  if (grouped) {
    FText.assign("Project ");
    FText += FileNameOf(FField);
    FOwner->StartMessageGroup(FText, 0, TStatusTag::Plain);
  }
  FProjects.push_back({FField, grouped});
}

void TQvMSBuildStructuredOutputHelper::ProjectFinished(std::string_view file, bool succeeded) {
  FField.clear();
  AppendUnescaped(FField, file);
  size_t at = FProjects.size();
  while (at > 0 && FProjects[at - 1].file != FField)
    --at;
  if (at == 0) return;  // never started: nothing to close
  // Projects started inside it that never reported their end close with it, untagged.
  while (FProjects.size() > at) {
    if (FProjects.back().grouped) FOwner->EndMessageGroup();
    FProjects.pop_back();
  }
  if (FProjects.back().grouped)
    FOwner->EndMessageGroup(succeeded ? TStatusTag::Success : TStatusTag::Error);
  FProjects.pop_back();
}

void TQvMSBuildStructuredOutputHelper::Diagnostic(bool error, std::string_view project,
                                                  std::string_view file, std::string_view line,
                                                  std::string_view column, std::string_view code,
                                                  std::string_view message, int instance) {
  // A summary may already have put a count at its ceiling; counting on must not overflow it.
  int64_t& counter = error ? FErrorCount : FWarningCount;
  counter = AddCounts(counter, 1);
  FText.clear();
  if (file.empty()) {
    FText += "MSBUILD : ";
  } else {
    AppendUnescaped(FText, file);
    // Tasks may name a file relative to their project; a reader needs a path to open.
    FField.clear();
    AppendUnescaped(FField, project);
    if (size_t slash = FField.find_last_of("/\\"); slash != std::string::npos)
      FText = ExpandRelativePath(FText, FField.substr(0, slash));
    int lineNumber = ToInt(line), columnNumber = ToInt(column);
    if (lineNumber == 0) {
      FText += " : ";
    } else {
      FText += '(';
      AppendInt(FText, lineNumber);
      if (columnNumber != 0) {
        FText += ',';
        AppendInt(FText, columnNumber);
      }
      FText += "): ";
    }
  }
  FText += error ? "error " : "warning ";
  if (!code.empty()) AppendUnescaped(FText, code);
  FText += ": ";
  AppendUnescaped(FText, message);

  // Name the project when neither the open group nor the file already says which it is.
  FField.clear();
  AppendUnescaped(FField, project);
  std::string groupFile;
  if (FInstances.count(instance) != 0) {
    groupFile = GroupFileOf(instance);
  } else {
    for (size_t i = FProjects.size(); i > 0 && groupFile.empty(); --i)
      if (FProjects[i - 1].grouped) groupFile = FProjects[i - 1].file;
  }
  if (!FField.empty() && groupFile != FField && project != file) {
    FText += " [";
    FText += FField;
    FText += ']';
  }
  Send(instance, FText, static_cast<int>(error ? TStatusTag::Error : TStatusTag::Warning));
}

void TQvMSBuildStructuredOutputHelper::ProcessConsoleLine(std::string_view line) {
  if (TrimLeftView(line).empty()) return;
  FText.assign(line);
  int64_t count = 0;
  TStatusTag tag = TStatusTag::Plain;
  // Lines counted since the last summary belong to the run that summary closes: its count
  // replaces them (xbuild prints each diagnostic twice), earlier runs' counts stay.
  switch (ReadSummary(line, count)) {
    case TSummary::Errors:
      if (!FLoggerSeen) FErrorCount = AddCounts(FErrorCount, count - std::exchange(FRunErrors, 0));
      tag = count > 0 ? TStatusTag::Error : TStatusTag::Plain;
      break;
    case TSummary::Warnings:
      if (!FLoggerSeen)
        FWarningCount = AddCounts(FWarningCount, count - std::exchange(FRunWarnings, 0));
      tag = count > 0 ? TStatusTag::Warning : TStatusTag::Plain;
      break;
    case TSummary::None:
      switch (ClassifyCanonical(line)) {
        case TCategory::Error:
          if (!FLoggerSeen) FErrorCount = AddCounts(FErrorCount, 1), ++FRunErrors;
          tag = TStatusTag::Error;
          break;
        case TCategory::Warning:
          if (!FLoggerSeen) FWarningCount = AddCounts(FWarningCount, 1), ++FRunWarnings;
          tag = TStatusTag::Warning;
          break;
        case TCategory::None:
          break;
      }
  }
  FOwner->SendMessage(FText, tag);
}

void TQvMSBuildStructuredOutputHelper::CloseAll(bool failed) {
  for (int id : std::exchange(FOutermost, {}))
    LogInstance(id, failed);
  FInstances.clear();
  while (!FProjects.empty()) {
    if (FProjects.back().grouped) {
      if (failed)
        FOwner->EndMessageGroup(TStatusTag::Error);
      else
        FOwner->EndMessageGroup();
    }
    FProjects.pop_back();
  }
}

}  // namespace qv
