#include "LogSink.h"

#include <sstream>

#include <gtest/gtest.h>

using qvhost::NewLogSink;
using qvhost::TLogFormat;
using qvhost::TStatusTag;

namespace {

// One action with nested groups, each status, a metric, and a group left to the host to close.
void Play(qvhost::TLogSink& log) {
  log.ActionStart("TQvBuild", "Build \"all\"");
  log.Message("Compiling", TStatusTag::Plain);
  log.GroupStart("Project A", 2, TStatusTag::Plain);
  log.Message("a.cpp\nb.cpp", TStatusTag::Plain);
  log.GroupStart("Linker", 0, TStatusTag::Warning);
  log.Message("unused symbol", TStatusTag::Warning);
  log.GroupEnd(std::nullopt);
  log.GroupEnd(TStatusTag::Success);
  log.Metric("Compiler", "Warnings", 1);
  log.GroupStart("Project B", 2, TStatusTag::Plain);
  log.Message("b failed", TStatusTag::Error);
  log.Metric("Compiler", "Warnings", 2);
  log.CloseGroupsTo(0, TStatusTag::Error);
  log.GroupEnd(TStatusTag::Error);  // nothing left to close
  log.ActionEnd(false, 1.5);
  log.RunEnd(false, 1, 1, 1.5);
}

std::string Played(TLogFormat format, bool colour) {
  std::ostringstream out;
  auto log = NewLogSink(format, out, colour);
  Play(*log);
  return out.str();
}

TEST(TLogSink, TextIndentsGroupsAndMarksStatuses) {
  EXPECT_EQ(Played(TLogFormat::Text, false),
            "Action: Build \"all\" (TQvBuild)\n"
            "  Compiling\n"
            "  Project A\n"
            "    a.cpp\n"
            "    b.cpp\n"
            "    [warn] Linker\n"
            "      [warn] unused symbol\n"
            "  [ok] Project A\n"
            "  Project B\n"
            "    [error] b failed\n"
            "  [error] Project B\n"
            "[error] Build \"all\" failed in 1.500 s\n"
            "\n"
            "Metrics:\n"
            "  Compiler.Warnings = 3\n"
            "[error] Build failed: 1 of 1 action failed in 1.500 s\n");
}

TEST(TLogSink, TextColoursStatusesOnATerminal) {
  std::ostringstream out;
  auto log = NewLogSink(TLogFormat::Text, out, true);
  log->ActionStart("T", "Step");
  log->Message("fine", TStatusTag::Success);
  log->Message("hmm", TStatusTag::Warning);
  log->ActionEnd(true, 0.25);
  EXPECT_EQ(out.str(),
            "\033[1mAction: Step (T)\033[0m\n"
            "  \033[32mfine\033[0m\n"
            "  \033[33mhmm\033[0m\n"
            "\033[32mStep succeeded in 0.250 s\033[0m\n");
}

TEST(TLogSink, JsonLinesCarryOneEventPerLine) {
  EXPECT_EQ(Played(TLogFormat::JsonLines, true),
            "{\"event\":\"actionStart\",\"type\":\"TQvBuild\",\"caption\":\"Build \\\"all\\\"\"}\n"
            "{\"event\":\"message\",\"text\":\"Compiling\",\"tag\":0,\"depth\":0}\n"
            "{\"event\":\"groupStart\",\"title\":\"Project A\",\"groupType\":2,\"tag\":0,"
            "\"depth\":0}\n"
            "{\"event\":\"message\",\"text\":\"a.cpp\\nb.cpp\",\"tag\":0,\"depth\":1}\n"
            "{\"event\":\"groupStart\",\"title\":\"Linker\",\"groupType\":0,\"tag\":2,"
            "\"depth\":1}\n"
            "{\"event\":\"message\",\"text\":\"unused symbol\",\"tag\":2,\"depth\":2}\n"
            "{\"event\":\"groupEnd\",\"tag\":2,\"depth\":1}\n"
            "{\"event\":\"groupEnd\",\"tag\":1,\"depth\":0}\n"
            "{\"event\":\"metric\",\"group\":\"Compiler\",\"name\":\"Warnings\",\"value\":1}\n"
            "{\"event\":\"groupStart\",\"title\":\"Project B\",\"groupType\":2,\"tag\":0,"
            "\"depth\":0}\n"
            "{\"event\":\"message\",\"text\":\"b failed\",\"tag\":3,\"depth\":1}\n"
            "{\"event\":\"metric\",\"group\":\"Compiler\",\"name\":\"Warnings\",\"value\":2}\n"
            "{\"event\":\"groupEnd\",\"tag\":3,\"depth\":0}\n"
            "{\"event\":\"actionEnd\",\"success\":false}\n");
}

}  // namespace
