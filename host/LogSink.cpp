#include "LogSink.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ostream>

#include "HostPlatform.h"
#include "QvPlatform.h"
#include "QvUtils.h"

namespace qvhost {

namespace {

constexpr auto kFlushInterval = std::chrono::milliseconds(100);
constexpr size_t kRecapLimit = 100;

double SteadySeconds() {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

TLogSink::TLogSink(std::ostream& out, TClock clock)
    : FOut(out), FClock(clock ? std::move(clock) : SteadySeconds), FStart(FClock()) {
  FFlusher = std::thread([this] {
    std::unique_lock lock(FMutex);
    while (!FClosing) {
      FWake.wait_for(lock, kFlushInterval);
      if (!FBuffer.empty()) {
        FOut << FBuffer << std::flush;
        FBuffer.clear();
      }
    }
  });
}

TLogSink::~TLogSink() {
  {
    std::lock_guard lock(FMutex);
    FClosing = true;
  }
  FWake.notify_one();
  FFlusher.join();
  Flush();
}

void TLogSink::Line(std::string_view text) {
  std::lock_guard lock(FMutex);
  FBuffer.append(text);
  FBuffer += '\n';
}

void TLogSink::Flush() {
  std::lock_guard lock(FMutex);
  FOut << FBuffer << std::flush;
  FBuffer.clear();
}

void TLogSink::StartRun() {
  FStart = FClock();
}

void TLogSink::SetCiDialect(TCiDialect dialect) {
  FCi = dialect == TCiDialect::None ? nullptr : std::make_unique<TCiAnnotations>(dialect);
}

void TLogSink::Annotate(const std::vector<std::string>& lines) {
  for (const auto& line : lines)
    Line(line);
}

// The innermost project group ("Project NAME") the line lands in.
std::string TLogSink::CurrentProject() const {
  for (auto it = FGroups.rbegin(); it != FGroups.rend(); ++it)
    if (it->Title.starts_with("Project ")) return it->Title.substr(8);
  return {};
}

void TLogSink::Message(std::string_view text, TStatusTag tag, std::string_view baseDir) {
  std::optional<TLogDiagnostic> first;
  if (tag == TStatusTag::Error || tag == TStatusTag::Warning) {
    std::string_view action = FActions.empty() ? std::string_view() : FActions.back();
    std::string project = CurrentProject();
    qv::ForEachLine(text, [&](std::string_view line) {
      std::optional<TLogDiagnostic> d = ReadDiagnostic(line, baseDir, action, project);
      if (!d) return;
      if (FCi) Annotate(FCi->Diagnostic(*d));
      if (FSeen.insert(DiagnosticKey(*d)).second) {
        FErrors += d->Error ? 1 : 0;
        FDiagnostics.push_back(*d);
      }
      if (!first) first = std::move(d);
    });
  }
  WriteMessage(text, tag, Depth(), first ? &*first : nullptr);
}

void TLogSink::GroupStart(std::string_view title, int groupType, TStatusTag tag) {
  TOpenGroup group{std::string(title), tag};
  if (FCi) Annotate(FCi->GroupStart(title));
  WriteGroupStart(group, groupType, Depth());
  FGroups.push_back(std::move(group));
}

void TLogSink::GroupEnd(std::optional<TStatusTag> tag) {
  if (FGroups.empty()) return;
  TOpenGroup group = std::move(FGroups.back());
  FGroups.pop_back();
  WriteGroupEnd(group, tag, Depth());
  if (FCi) Annotate(FCi->GroupEnd(group.Title));
  Flush();
}

void TLogSink::CloseGroupsTo(int depth, std::optional<TStatusTag> tag) {
  while (Depth() > depth && Depth() > 0)
    GroupEnd(tag);
}

void TLogSink::Metric(std::string_view group, std::string_view name, int64_t value) {
  auto same = [&](const TMetricTotal& m) { return m.Group == group && m.Name == name; };
  auto it = std::find_if(FMetrics.begin(), FMetrics.end(), same);
  if (it != FMetrics.end())
    it->Value += value;
  else
    FMetrics.push_back({std::string(group), std::string(name), value});
  WriteMetric(group, name, value);
}

void TLogSink::ActionStart(std::string_view type, std::string_view caption) {
  if (FCi) Annotate(FCi->GroupStart("Action: " + std::string(caption)));
  WriteActionStart(type, caption);
  FActions.emplace_back(caption);
}

void TLogSink::ActionEnd(bool success, double seconds) {
  std::string caption;
  if (!FActions.empty()) {
    caption = std::move(FActions.back());
    FActions.pop_back();
  }
  WriteActionEnd(caption, success, seconds);
  if (FCi) {
    Annotate(FCi->GroupEnd("Action: " + caption));
    if (!success) Annotate(FCi->ActionFailed(caption));
  }
  Flush();
}

void TLogSink::RunEnd(const TRunSummary& run) {
  WriteRunEnd(run);
  if (FCi) {
    std::vector<std::pair<std::string, int64_t>> totals;
    for (const auto& m : FMetrics)
      totals.emplace_back(m.Group + "." + m.Name, m.Value);
    Annotate(FCi->RunEnd(run.Success && run.Saved, totals));
  }
  Flush();
}

void TLogSink::InputError(std::string_view file, int64_t line, std::string_view text) {
  WriteInputError(file, line, text);
  Flush();
}

namespace {

// ---- text ---------------------------------------------------------------------------------

std::string Seconds(double seconds) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.3f s", seconds);
  return buf;
}

std::string Count(int n, const char* noun) {
  return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

class TTextLogSink : public TLogSink {
 public:
  TTextLogSink(std::ostream& out, bool colour, TClock clock)
      : TLogSink(out, std::move(clock)), FColour(colour) {}

 protected:
  void WriteMessage(std::string_view text, TStatusTag tag, int, const TLogDiagnostic*) override {
    // A message holding line breaks keeps every line at its indentation.
    if (text.empty()) Line(tag == TStatusTag::Plain ? "" : Styled(Nesting(), tag, ""));
    qv::ForEachLine(text, [&](std::string_view line) { Line(Styled(Nesting(), tag, line)); });
  }
  void WriteGroupStart(const TOpenGroup& group, int, int) override {
    Line(Styled(Nesting(), group.Tag, group.Title));
  }
  // A group that ends with an explicit status says so; otherwise its lines speak for it.
  void WriteGroupEnd(const TOpenGroup& group, std::optional<TStatusTag> tag, int) override {
    if (tag && *tag != TStatusTag::Plain) Line(Styled(Nesting(), *tag, group.Title));
  }
  void WriteMetric(std::string_view, std::string_view, int64_t) override {}
  void WriteActionStart(std::string_view type, std::string_view caption) override {
    std::string text = "Action: " + std::string(caption) + " (" + std::string(type) + ")";
    Line(Indent(Nesting()) + (FColour ? "\033[1m" + text + "\033[0m" : text));
  }
  void WriteActionEnd(std::string_view caption, bool success, double seconds) override {
    std::string text = std::string(caption) + (success ? " succeeded in " : " failed in ");
    Line(Styled(Nesting(), success ? TStatusTag::Success : TStatusTag::Error,
                text + Seconds(seconds)));
  }
  void WriteRunEnd(const TRunSummary& run) override;
  // The caller reports the error itself; the text log has nothing to add.
  void WriteInputError(std::string_view, int64_t, std::string_view) override {}

 private:
  static std::string Indent(int level) { return std::string(static_cast<size_t>(level) * 2, ' '); }
  std::string Styled(int level, TStatusTag tag, std::string_view text) const;
  void WriteRecap();

  bool FColour;
};

std::string TTextLogSink::Styled(int level, TStatusTag tag, std::string_view text) const {
  static constexpr const char* kMarkers[] = {"", "[ok] ", "[warn] ", "[error] "};
  static constexpr const char* kColours[] = {"", "\033[32m", "\033[33m", "\033[31m"};
  auto t = static_cast<size_t>(tag);
  if (t >= 4 || tag == TStatusTag::Plain) return Indent(level) + std::string(text);
  if (FColour) return Indent(level) + kColours[t] + std::string(text) + "\033[0m";
  return Indent(level) + kMarkers[t] + std::string(text);
}

// Errors first, each in the order first reported, up to the limit.
void TTextLogSink::WriteRecap() {
  Line(std::to_string(ErrorCount()) + " Error(s), " + std::to_string(WarningCount()) +
       " Warning(s)");
  std::vector<const TLogDiagnostic*> order;
  for (bool errors : {true, false})
    for (const auto& d : Diagnostics())
      if (d.Error == errors) order.push_back(&d);
  for (size_t i = 0; i < order.size() && i < kRecapLimit; ++i)
    Line(Styled(1, order[i]->Error ? TStatusTag::Error : TStatusTag::Warning,
                FormatDiagnostic(*order[i])));
  if (order.size() > kRecapLimit)
    Line("  ... and " + std::to_string(order.size() - kRecapLimit) + " more");
}

void TTextLogSink::WriteRunEnd(const TRunSummary& run) {
  Line("");
  WriteRecap();
  if (!Metrics().empty()) {
    Line("Metrics:");
    for (const auto& m : Metrics())
      Line("  " + m.Group + "." + m.Name + " = " + std::to_string(m.Value));
  }
  std::string count = Count(run.Actions, "action");
  std::string text =
      run.Interrupted ? "Build interrupted: " + count + " run, " + std::to_string(run.NotStarted) +
                            " not started"
      : !run.Success ? "Build failed: " + std::to_string(run.Failed) + " of " + count + " failed"
      : run.Saved    ? "Build succeeded: " + count
                     : "Build succeeded but saving its changes failed: " + count;
  bool ok = run.Success && run.Saved && !run.Interrupted;
  Line(Styled(0, ok ? TStatusTag::Success : TStatusTag::Error,
              text + " in " + Seconds(run.Seconds)));
}

// ---- JSON lines ---------------------------------------------------------------------------

// One JSON object, built field by field.
class TJsonEvent {
 public:
  explicit TJsonEvent(std::string_view event) : FText("{\"event\":" + qv::JsonString(event)) {}
  TJsonEvent& Str(std::string_view key, std::string_view value) {
    return Raw(key, qv::JsonString(value));
  }
  TJsonEvent& Int(std::string_view key, int64_t value) { return Raw(key, std::to_string(value)); }
  TJsonEvent& Bool(std::string_view key, bool value) { return Raw(key, value ? "true" : "false"); }
  TJsonEvent& Seconds(std::string_view key, double value) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.3f", value);
    return Raw(key, buf);
  }
  TJsonEvent& Raw(std::string_view key, std::string_view json) {
    FText += ",\"";
    FText += key;
    FText += "\":";
    FText += json;
    return *this;
  }
  std::string Done() { return FText + "}"; }

 private:
  std::string FText;
};

class TJsonLogSink : public TLogSink {
 public:
  TJsonLogSink(std::ostream& out, TClock clock) : TLogSink(out, std::move(clock)) {}

 protected:
  void WriteMessage(std::string_view text, TStatusTag tag, int depth,
                    const TLogDiagnostic* d) override {
    TJsonEvent e("message");
    e.Str("text", text).Int("tag", Num(tag)).Int("depth", depth);
    if (d) {
      if (!d->File.empty()) e.Str("file", d->File);
      if (d->Line > 0) e.Int("line", d->Line);
      if (d->Column > 0) e.Int("column", d->Column);
      e.Str("code", d->Code).Str("severity", d->Error ? "error" : "warning");
      if (!d->Project.empty()) e.Str("project", d->Project);
    }
    Emit(e);
  }
  void WriteGroupStart(const TOpenGroup& group, int groupType, int depth) override {
    Emit(TJsonEvent("groupStart")
             .Str("title", group.Title)
             .Int("groupType", groupType)
             .Int("tag", Num(group.Tag))
             .Int("depth", depth));
  }
  void WriteGroupEnd(const TOpenGroup& group, std::optional<TStatusTag> tag, int depth) override {
    Emit(TJsonEvent("groupEnd").Int("tag", Num(tag.value_or(group.Tag))).Int("depth", depth));
  }
  void WriteMetric(std::string_view group, std::string_view name, int64_t value) override {
    Emit(TJsonEvent("metric").Str("group", group).Str("name", name).Int("value", value));
  }
  void WriteActionStart(std::string_view type, std::string_view caption) override {
    Emit(TJsonEvent("actionStart").Str("type", type).Str("caption", caption));
  }
  void WriteActionEnd(std::string_view, bool success, double seconds) override {
    Emit(TJsonEvent("actionEnd").Bool("success", success).Seconds("seconds", seconds));
  }
  void WriteRunEnd(const TRunSummary& run) override {
    std::string metrics = "{";
    for (const auto& m : Metrics())
      metrics += (metrics.size() > 1 ? "," : "") + qv::JsonString(m.Group + "." + m.Name) + ":" +
                 std::to_string(m.Value);
    Emit(TJsonEvent("runEnd")
             .Bool("success", run.Success && run.Saved && !run.Interrupted)
             .Int("errors", ErrorCount())
             .Int("warnings", WarningCount())
             .Int("actions", run.Actions)
             .Int("failed", run.Failed)
             .Bool("saved", run.Saved)
             .Bool("interrupted", run.Interrupted != 0)
             .Int("notStarted", run.NotStarted)
             .Seconds("seconds", run.Seconds)
             .Raw("metrics", metrics + "}"));
  }
  void WriteInputError(std::string_view file, int64_t line, std::string_view text) override {
    TJsonEvent e("error");
    e.Str("file", file);
    if (line > 0) e.Int("line", line);
    Emit(e.Str("text", text));
  }

 private:
  static int Num(TStatusTag tag) { return static_cast<int>(tag); }
  void Emit(TJsonEvent& e) { Line(e.Seconds("time", Time()).Done()); }
  void Emit(TJsonEvent&& e) { Emit(e); }
};

}  // namespace

std::unique_ptr<TLogSink> NewLogSink(TLogFormat format, std::ostream& out, bool colour,
                                     TLogSink::TClock clock) {
  if (format == TLogFormat::JsonLines) return std::make_unique<TJsonLogSink>(out, std::move(clock));
  return std::make_unique<TTextLogSink>(out, colour, std::move(clock));
}

bool UseColour(bool noColourOption) {
  if (noColourOption || !qv::platform::GetEnv("NO_COLOR").value_or("").empty()) return false;
  return platform::StdoutIsTerminal();
}

}  // namespace qvhost
