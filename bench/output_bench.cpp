// Compiler-output reading throughput: a realistic 200 MB compiler transcript, read in pieces
// cut as pipe reads cut them, goes through the host's line assembly into the build action's
// OnStdOutData, with a log sink that only counts; the figure is printed beside the time `grep -c -w
// -i error` takes over the same file, measured in the same run.
//
//   bench_output [MEGABYTES]      (default 200)
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "QvActions.h"
#include "QvProcess.h"
#include "Qvvsdotnetaction.h"
#include "support/CountingActionContext.h"

namespace {

using Clock = std::chrono::steady_clock;

// Lines as Visual Studio 2003 and 2008 and MSBuild print them, most of them plain.
const char* kLines[] = {
    "------ Build started: Project: Billing.Core, Configuration: Release .NET ------",
    "Preparing resources...",
    "Updating references...",
    "Performing main compilation...",
    "c:\\src\\Billing\\Invoice.cs(112,17): warning CS0168: The variable 'ex' is declared but "
    "never used",
    "c:\\src\\NativeCalc\\NativeCalc.cpp(12) : error C2065: 'total' : undeclared identifier",
    "Build complete -- 1 errors, 1 warnings",
    "1>Compiling...",
    "1>GreetingNative.cpp",
    "1>Linking...",
    "1>Build log was saved at \"file://c:\\src\\GreetingNative\\Release\\BuildLog.htm\"",
    "1>GreetingNative - 0 error(s), 0 warning(s)",
    "Target CoreCompile:",
    "    Tool /usr/lib/mono/4.5/mcs.exe execution started with arguments: /noconfig /debug:full "
    "/optimize- /out:obj/Debug/Greeting.Lib.dll Greeter.cs Properties/AssemblyInfo.cs "
    "/target:library /define:\"DEBUG;TRACE\"",
    "Done building project \"/work/src/Greeting.Lib/Greeting.Lib.csproj\".",
    "========== Build: 3 succeeded, 0 failed, 0 up-to-date, 0 skipped ==========",
    "    Build: 1 succeeded, 0 failed, 0 skipped",
    "Copying file from \"obj/Debug/Greeting.Lib.dll\" to \"bin/Debug/Greeting.Lib.dll\"",
};

std::string MakeTranscript(size_t bytes) {
  std::filesystem::path path = std::filesystem::temp_directory_path() /
                               ("qvbench-output-" + std::to_string(bytes >> 20) + "MB.txt");
  if (std::filesystem::exists(path) && std::filesystem::file_size(path) >= bytes)
    return path.string();
  std::mt19937 rng(42);
  std::ofstream out(path, std::ios::binary);
  size_t written = 0;
  const size_t n = sizeof kLines / sizeof kLines[0];
  // Mostly plain progress lines, with warnings and errors sprinkled in.
  while (written < bytes) {
    size_t r = rng() % 100;
    const char* line = r < 3 ? kLines[5] : r < 10 ? kLines[4] : kLines[rng() % n];
    std::string l = std::string(line) + "\r\n";
    out << l;
    written += l.size();
  }
  return path.string();
}

double Seconds(Clock::time_point a, Clock::time_point b) {
  return std::chrono::duration<double>(b - a).count();
}

}  // namespace

int main(int argc, char** argv) {
  size_t megabytes = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 200;
  std::string path = MakeTranscript(megabytes << 20);
  std::ifstream in(path, std::ios::binary);
  std::string data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  double mb = data.size() / 1048576.0;

  auto g0 = Clock::now();
  // Not into /dev/null: GNU grep stops at the first match when its output goes nowhere.
  std::string grep = "grep -c -w -i error '" + path + "' > '" + path + ".grep'";
  if (std::system(grep.c_str()) == -1) return 1;
  auto g1 = Clock::now();

  struct Mode {
    const char* name;
    const char* version;
    const char* useMSBuild;
    const char* structured;
  } modes[] = {{"devenv (Visual Studio 2003 rules)", "vs2003", "False", "False"},
               {"MSBuild console lines", "vs2008", "True", "False"}};
  std::printf("transcript: %.0f MB (%s)\n", mb, path.c_str());
  std::printf("%-36s %8.3f s  %8.1f MB/s\n", "grep -c -w -i error", Seconds(g0, g1),
              mb / Seconds(g0, g1));
  for (const Mode& m : modes) {
    qv::IntfPtr<qvtest::CountingActionContext> ctx(new qvtest::CountingActionContext);
    qv::TQvVSDotNetAction action;
    action.BindContext(qv::IntfPtr<qv::IQvActionContext>(ctx.Get()));
    action.SetPropValue("VStudioVersion", m.version);
    action.SetPropValue("UseMSBuild", m.useMSBuild);
    action.SetPropValue("StructuredOutput", m.structured);
    // Reads cut where a pipe cuts them: mostly at the writer's 4 KiB buffer, sometimes a few
    // bytes of a line written in pieces, sometimes a large backlog; the host's line assembly
    // turns them into whole lines for the action, as qvhost's runner does.
    std::mt19937 rng(7);
    qv::TLineAssembler lines;
    auto deliver = [&](std::string_view c) { action.OnStdOutData(nullptr, c); };
    auto t0 = Clock::now();
    for (size_t at = 0; at < data.size();) {
      unsigned r = rng() % 4;
      size_t size = r < 2 ? 4096 : r == 2 ? 1 + rng() % 512 : 1 + rng() % 65536;
      lines.Feed(std::string_view(data).substr(at, size), deliver);
      at += size;
    }
    lines.Finish(deliver);
    auto t1 = Clock::now();
    double s = Seconds(t0, t1);
    std::printf(
        "%-36s %8.3f s  %8.1f MB/s  (%.2fx grep's time; lines plain %ld, success %ld, "
        "warning %ld, error %ld; metrics %ld)\n",
        m.name, s, mb / s, s / Seconds(g0, g1), ctx->Lines[0], ctx->Lines[1], ctx->Lines[2],
        ctx->Lines[3], ctx->Metrics);
  }
  return 0;
}
