#include "LogSink.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ostream>

#include "HostPlatform.h"
#include "QvUtils.h"

namespace qvhost {

TLogSink::~TLogSink() = default;

void TLogSink::Line(std::string_view text) {
  FOut << text << '\n' << std::flush;
}

void TLogSink::Message(std::string_view text, TStatusTag tag) {
  WriteMessage(text, tag, Depth());
}

void TLogSink::GroupStart(std::string_view title, int groupType, TStatusTag tag) {
  TOpenGroup group{std::string(title), tag};
  WriteGroupStart(group, groupType, Depth());
  FGroups.push_back(std::move(group));
}

void TLogSink::GroupEnd(std::optional<TStatusTag> tag) {
  if (FGroups.empty()) return;
  TOpenGroup group = std::move(FGroups.back());
  FGroups.pop_back();
  WriteGroupEnd(group, tag, Depth());
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
}

void TLogSink::RunEnd(bool success, int actions, int failed, double seconds, bool saved) {
  WriteRunEnd(success, actions, failed, seconds, saved);
}

namespace {

// ---- text ---------------------------------------------------------------------------------

std::string Seconds(double seconds) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.3f s", seconds);
  return buf;
}

class TTextLogSink : public TLogSink {
 public:
  TTextLogSink(std::ostream& out, bool colour) : TLogSink(out), FColour(colour) {}

 protected:
  void WriteMessage(std::string_view text, TStatusTag tag, int) override {
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
  void WriteRunEnd(bool success, int actions, int failed, double seconds, bool saved) override;

 private:
  static std::string Indent(int level) { return std::string(static_cast<size_t>(level) * 2, ' '); }
  std::string Styled(int level, TStatusTag tag, std::string_view text) const;

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

void TTextLogSink::WriteRunEnd(bool success, int actions, int failed, double seconds, bool saved) {
  Line("");
  if (!Metrics().empty()) {
    Line("Metrics:");
    for (const auto& m : Metrics())
      Line("  " + m.Group + "." + m.Name + " = " + std::to_string(m.Value));
  }
  std::string count = std::to_string(actions) + (actions == 1 ? " action" : " actions");
  std::string text = !success
                         ? "Build failed: " + std::to_string(failed) + " of " + count + " failed"
                     : saved ? "Build succeeded: " + count
                             : "Build succeeded but saving its changes failed: " + count;
  Line(Styled(0, success && saved ? TStatusTag::Success : TStatusTag::Error,
              text + " in " + Seconds(seconds)));
}

// ---- JSON lines ---------------------------------------------------------------------------

class TJsonLogSink : public TLogSink {
 public:
  explicit TJsonLogSink(std::ostream& out) : TLogSink(out) {}

 protected:
  void WriteMessage(std::string_view text, TStatusTag tag, int depth) override {
    Line("{\"event\":\"message\",\"text\":" + qv::JsonString(text) + ",\"tag\":" + Num(tag) +
         ",\"depth\":" + std::to_string(depth) + "}");
  }
  void WriteGroupStart(const TOpenGroup& group, int groupType, int depth) override {
    Line("{\"event\":\"groupStart\",\"title\":" + qv::JsonString(group.Title) +
         ",\"groupType\":" + std::to_string(groupType) + ",\"tag\":" + Num(group.Tag) +
         ",\"depth\":" + std::to_string(depth) + "}");
  }
  void WriteGroupEnd(const TOpenGroup& group, std::optional<TStatusTag> tag, int depth) override {
    Line("{\"event\":\"groupEnd\",\"tag\":" + Num(tag.value_or(group.Tag)) +
         ",\"depth\":" + std::to_string(depth) + "}");
  }
  void WriteMetric(std::string_view group, std::string_view name, int64_t value) override {
    Line("{\"event\":\"metric\",\"group\":" + qv::JsonString(group) +
         ",\"name\":" + qv::JsonString(name) + ",\"value\":" + std::to_string(value) + "}");
  }
  void WriteActionStart(std::string_view type, std::string_view caption) override {
    Line("{\"event\":\"actionStart\",\"type\":" + qv::JsonString(type) +
         ",\"caption\":" + qv::JsonString(caption) + "}");
  }
  void WriteActionEnd(std::string_view, bool success, double) override {
    Line(std::string("{\"event\":\"actionEnd\",\"success\":") + (success ? "true" : "false") + "}");
  }
  void WriteRunEnd(bool, int, int, double, bool) override {}

 private:
  static std::string Num(TStatusTag tag) { return std::to_string(static_cast<int>(tag)); }
};

}  // namespace

std::unique_ptr<TLogSink> NewLogSink(TLogFormat format, std::ostream& out, bool colour) {
  if (format == TLogFormat::JsonLines) return std::make_unique<TJsonLogSink>(out);
  return std::make_unique<TTextLogSink>(out, colour);
}

bool UseColour(bool noColourOption) {
  const char* noColor = std::getenv("NO_COLOR");
  if (noColourOption || (noColor && *noColor)) return false;
  return platform::StdoutIsTerminal();
}

}  // namespace qvhost
