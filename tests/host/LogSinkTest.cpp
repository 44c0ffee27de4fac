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

std::string Played(TLogFormat format, bool colour, void (*play)(TLogSink&) = Play) {
  std::ostringstream out;
  {
    auto log = NewLogSink(format, out, colour, [] { return 7.0; });
    play(*log);
  }
  return out.str();
}

TEST(TLogSink, TextIndentsGroupsMarksStatusesAndRecapsDiagnostics) {
  EXPECT_EQ(Played(TLogFormat::Text, false), R"(Action: Build "all" (TQvBuild)
  Compiling
  Project A
    a.cpp
    b.cpp
    [warn] Linker
      [warn] LINK : warning LNK4075: ignoring /INCREMENTAL
  [ok] Project A
  Project B
    [error] b.cpp(3,7): error C2065: 'x': undeclared
  [error] Project B
  [error] b.cpp(3,7): error C2065: 'x': undeclared [/s/B.vcxproj]
[error] Build "all" failed in 1.500 s

1 Error(s), 1 Warning(s)
  [error] b.cpp(3,7): error C2065: 'x': undeclared [Build "all", B]
  [warn] LINK : warning LNK4075: ignoring /INCREMENTAL [Build "all", A]
Metrics:
  Compiler.Warnings = 3
[error] Build failed: 1 of 1 action failed in 1.500 s
)");
}

TEST(TLogSink, TextColoursStatusesOnATerminalAndEndsInterruptedRuns) {
  EXPECT_EQ(Played(TLogFormat::Text, true,
                   [](TLogSink& log) {
                     log.ActionStart("T", "Step");
                     log.Message("fine", TStatusTag::Success);
                     log.Message("hmm", TStatusTag::Warning);
                     log.ActionEnd(true, 0.25);
                     log.RunEnd({false, 1, 0, 0.5, true, 130, 2});
                   }),
            "\033[1mAction: Step (T)\033[0m\n"
            "  \033[32mfine\033[0m\n"
            "  \033[33mhmm\033[0m\n"
            "\033[32mStep succeeded in 0.250 s\033[0m\n"
            "\n0 Error(s), 0 Warning(s)\n"
            "\033[31mBuild interrupted: 1 action run, 2 not started in 0.500 s\033[0m\n");
}

TEST(TLogSink, JsonLinesCarryOneTimedEventPerLineWithDiagnosticFields) {
  EXPECT_EQ(Played(TLogFormat::JsonLines, true),
            R"({"event":"actionStart","type":"TQvBuild","caption":"Build \"all\"","time":0.000}
{"event":"message","text":"Compiling","tag":0,"depth":0,"time":0.000}
{"event":"groupStart","title":"Project A","groupType":2,"tag":0,"depth":0,"time":0.000}
{"event":"message","text":"a.cpp\nb.cpp","tag":0,"depth":1,"time":0.000}
{"event":"groupStart","title":"Linker","groupType":0,"tag":2,"depth":1,"time":0.000}
{"event":"message","text":"LINK : warning LNK4075: ignoring /INCREMENTAL","tag":2,"depth":2,"code":"LNK4075","severity":"warning","project":"A","time":0.000}
{"event":"groupEnd","tag":2,"depth":1,"time":0.000}
{"event":"groupEnd","tag":1,"depth":0,"time":0.000}
{"event":"metric","group":"Compiler","name":"Warnings","value":1,"time":0.000}
{"event":"groupStart","title":"Project B","groupType":2,"tag":0,"depth":0,"time":0.000}
{"event":"message","text":"b.cpp(3,7): error C2065: 'x': undeclared","tag":3,"depth":1,"file":"b.cpp","line":3,"column":7,"code":"C2065","severity":"error","project":"B","time":0.000}
{"event":"metric","group":"Compiler","name":"Warnings","value":2,"time":0.000}
{"event":"groupEnd","tag":3,"depth":0,"time":0.000}
{"event":"message","text":"b.cpp(3,7): error C2065: 'x': undeclared [/s/B.vcxproj]","tag":3,"depth":0,"file":"b.cpp","line":3,"column":7,"code":"C2065","severity":"error","project":"/s/B.vcxproj","time":0.000}
{"event":"actionEnd","success":false,"seconds":1.500,"time":0.000}
{"event":"runEnd","success":false,"errors":1,"warnings":1,"actions":1,"failed":1,"saved":true,"interrupted":false,"notStarted":0,"seconds":1.500,"metrics":{"Compiler.Warnings":3},"time":0.000}
)");
}

}  // namespace
