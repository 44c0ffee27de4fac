#include "LogSink.h"

#include <sstream>

#include <gtest/gtest.h>

using namespace qvhost;

namespace {

// One action with nested groups, each status, metrics, diagnostics (one reported twice, as
// MSBuild's summary repeats them), and a group left to the host to close.
void Play(TLogSink& log) {
  log.ActionStart("TQvBuild", "Build \"all\"");
  log.Message("Compiling", TStatusTag::Plain);
  log.GroupStart("Project A", 2, TStatusTag::Plain);
  log.Message("a.cpp\nb.cpp", TStatusTag::Plain);
  log.GroupStart("Linker", 0, TStatusTag::Warning);
  log.Message("LINK : warning LNK4075: ignoring /INCREMENTAL", TStatusTag::Warning);
  log.GroupEnd(std::nullopt);
  log.GroupEnd(TStatusTag::Success);
  log.Metric("Compiler", "Warnings", 1);
  log.GroupStart("Project B", 2, TStatusTag::Plain);
  log.Message("b.cpp(3,7): error C2065: 'x': undeclared", TStatusTag::Error);
  log.Metric("Compiler", "Warnings", 2);
  log.CloseGroupsTo(0, TStatusTag::Error);
  log.GroupEnd(TStatusTag::Error);  // nothing left to close
  log.Message("b.cpp(3,7): error C2065: 'x': undeclared [/s/B.vcxproj]", TStatusTag::Error);
  log.ActionEnd(false, 1.5);
  log.RunEnd({false, 1, 1, 1.5});
}

std::string Played(TLogFormat format, bool colour) {
  std::ostringstream out;
  {
    auto log = NewLogSink(format, out, colour, [] { return 7.0; });
    Play(*log);
  }
  return out.str();
}

TEST(TLogSink, TextIndentsGroupsMarksStatusesAndRecapsDiagnostics) {
  EXPECT_EQ(Played(TLogFormat::Text, false),
            "Action: Build \"all\" (TQvBuild)\n"
            "  Compiling\n"
            "  Project A\n"
            "    a.cpp\n"
            "    b.cpp\n"
            "    [warn] Linker\n"
            "      [warn] LINK : warning LNK4075: ignoring /INCREMENTAL\n"
            "  [ok] Project A\n"
            "  Project B\n"
            "    [error] b.cpp(3,7): error C2065: 'x': undeclared\n"
            "  [error] Project B\n"
            "  [error] b.cpp(3,7): error C2065: 'x': undeclared [/s/B.vcxproj]\n"
            "[error] Build \"all\" failed in 1.500 s\n"
            "\n"
            "1 Error(s), 1 Warning(s)\n"
            "  [error] b.cpp(3,7): error C2065: 'x': undeclared [Build \"all\", B]\n"
            "  [warn] LINK : warning LNK4075: ignoring /INCREMENTAL [Build \"all\", A]\n"
            "Metrics:\n"
            "  Compiler.Warnings = 3\n"
            "[error] Build failed: 1 of 1 action failed in 1.500 s\n");
}

TEST(TLogSink, TextColoursStatusesOnATerminalAndEndsInterruptedRuns) {
  std::ostringstream out;
  {
    auto log = NewLogSink(TLogFormat::Text, out, true);
    log->ActionStart("T", "Step");
    log->Message("fine", TStatusTag::Success);
    log->Message("hmm", TStatusTag::Warning);
    log->ActionEnd(true, 0.25);
    log->RunEnd({false, 1, 0, 0.5, true, 130, 2});
  }
  EXPECT_EQ(out.str(),
            "\033[1mAction: Step (T)\033[0m\n"
            "  \033[32mfine\033[0m\n"
            "  \033[33mhmm\033[0m\n"
            "\033[32mStep succeeded in 0.250 s\033[0m\n"
            "\n0 Error(s), 0 Warning(s)\n"
            "\033[31mBuild interrupted: 1 action run, 2 not started in 0.500 s\033[0m\n");
}

TEST(TLogSink, JsonLinesCarryOneTimedEventPerLineWithDiagnosticFields) {
  std::string t = ",\"time\":0.000}\n";
  EXPECT_EQ(
      Played(TLogFormat::JsonLines, true),
      "{\"event\":\"actionStart\",\"type\":\"TQvBuild\",\"caption\":\"Build \\\"all\\\"\"" + t +
          "{\"event\":\"message\",\"text\":\"Compiling\",\"tag\":0,\"depth\":0" + t +
          "{\"event\":\"groupStart\",\"title\":\"Project A\",\"groupType\":2,\"tag\":0,"
          "\"depth\":0" +
          t + "{\"event\":\"message\",\"text\":\"a.cpp\\nb.cpp\",\"tag\":0,\"depth\":1" + t +
          "{\"event\":\"groupStart\",\"title\":\"Linker\",\"groupType\":0,\"tag\":2,"
          "\"depth\":1" +
          t +
          "{\"event\":\"message\",\"text\":\"LINK : warning LNK4075: ignoring /INCREMENTAL\","
          "\"tag\":2,\"depth\":2,\"code\":\"LNK4075\",\"severity\":\"warning\","
          "\"project\":\"A\"" +
          t + "{\"event\":\"groupEnd\",\"tag\":2,\"depth\":1" + t +
          "{\"event\":\"groupEnd\",\"tag\":1,\"depth\":0" + t +
          "{\"event\":\"metric\",\"group\":\"Compiler\",\"name\":\"Warnings\",\"value\":1" + t +
          "{\"event\":\"groupStart\",\"title\":\"Project B\",\"groupType\":2,\"tag\":0,"
          "\"depth\":0" +
          t +
          "{\"event\":\"message\",\"text\":\"b.cpp(3,7): error C2065: 'x': undeclared\","
          "\"tag\":3,\"depth\":1,\"file\":\"b.cpp\",\"line\":3,\"column\":7,"
          "\"code\":\"C2065\",\"severity\":\"error\",\"project\":\"B\"" +
          t + "{\"event\":\"metric\",\"group\":\"Compiler\",\"name\":\"Warnings\",\"value\":2" + t +
          "{\"event\":\"groupEnd\",\"tag\":3,\"depth\":0" + t +
          "{\"event\":\"message\",\"text\":\"b.cpp(3,7): error C2065: 'x': undeclared "
          "[/s/B.vcxproj]\",\"tag\":3,\"depth\":0,\"file\":\"b.cpp\",\"line\":3,"
          "\"column\":7,\"code\":\"C2065\",\"severity\":\"error\",\"project\":\"/s/B.vcxproj\"" +
          t + "{\"event\":\"actionEnd\",\"success\":false,\"seconds\":1.500" + t +
          "{\"event\":\"runEnd\",\"success\":false,\"errors\":1,\"warnings\":1,\"actions\":1,"
          "\"failed\":1,\"saved\":true,\"interrupted\":false,\"notStarted\":0,"
          "\"seconds\":1.500,\"metrics\":{\"Compiler.Warnings\":3}" +
          t);
}

}  // namespace
