// Opening and ordering synthetic solutions of 100, 1,000 and 5,000 projects.
//
// Each solution has its project files on disk (every third one a Visual C++ project with a
// resource filter and a version script, the rest C#), two solution configurations on two
// platforms with ActiveCfg and Build.0 lines, and a dependency chain written in reverse:
// the first project depends on the second, the second on the third, and so on, plus a few
// extra dependencies further down the chain. That is the worst order for the build-order
// exchanges.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>

#include "Vsnetsln.h"
#include "VsnetslnOrder.h"

namespace {

namespace fs = std::filesystem;

std::string Guid(int i) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "{%08X-0000-4000-8000-%012X}", i, i * 7919);
  return buf;
}

void WriteFile(const fs::path& p, const std::string& text) {
  fs::create_directories(p.parent_path());
  std::ofstream(p, std::ios::binary) << text;
}

enum class TShape { Chain, ChainGlobal, Random };

// The dependencies: a chain written in reverse (plus a few further down it), or up to three
// random dependencies per project over a hidden order, listed in random file order.
std::vector<std::vector<int>> Dependencies(int n, TShape shape) {
  std::mt19937 rng(n);
  std::vector<std::vector<int>> deps(n);
  if (shape == TShape::Random) {
    std::vector<int> rank(n);
    std::iota(rank.begin(), rank.end(), 0);
    std::shuffle(rank.begin(), rank.end(), rng);
    std::vector<int> byRank(n);
    for (int i = 0; i < n; ++i)
      byRank[rank[i]] = i;
    for (int i = 0; i < n; ++i)
      for (unsigned k = rng() % 4; k > 0 && rank[i] > 0; --k)
        deps[i].push_back(byRank[rng() % rank[i]]);
    return deps;
  }
  for (int i = 0; i + 1 < n; ++i) {
    deps[i].push_back(i + 1);
    if (i + 10 < n && rng() % 4 == 0) deps[i].push_back(i + 2 + static_cast<int>(rng() % 8));
  }
  return deps;
}

// Writes the solution; with the chain in a global section (format 8) the load-time ordering
// does not see the dependencies.
std::string MakeSolution(int n, TShape shape) {
  bool globalDependencies = shape == TShape::ChainGlobal;
  const char* suffix = shape == TShape::Chain ? "-p" : globalDependencies ? "-g" : "-r";
  fs::path dir = fs::temp_directory_path() / ("qvbench-" + std::to_string(n) + suffix);
  fs::path sln = dir / "Big.sln";
  if (fs::exists(sln)) return sln.string();
  std::vector<std::vector<int>> deps = Dependencies(n, shape);
  const char* cs = "{FAE04EC0-301F-11D3-BF4B-00C04F79EFBC}";
  const char* vc = "{8BC9CEB8-8B4A-11D0-8D11-00A0C983F5F7}";
  const char* configs[] = {"Debug|Any CPU", "Release|Any CPU", "Debug|Mixed Platforms",
                           "Release|Mixed Platforms"};
  std::string s = globalDependencies
                      ? "Microsoft Visual Studio Solution File, Format Version 8.00\r\n"
                      : "\xEF\xBB\xBF\r\nMicrosoft Visual Studio Solution File, "
                        "Format Version 10.00\r\n# Visual Studio 2008\r\n";
  for (int i = 0; i < n; ++i) {
    bool native = i % 3 == 0;
    std::string name = "Project" + std::to_string(i);
    std::string rel = name + "\\" + name + (native ? ".vcproj" : ".csproj");
    s += std::string("Project(\"") + (native ? vc : cs) + "\") = \"" + name + "\", \"" + rel +
         "\", \"" + Guid(i) + "\"\r\n";
    if (!globalDependencies && !deps[i].empty()) {
      s += "\tProjectSection(ProjectDependencies) = postProject\r\n";
      for (int d : deps[i])
        s += "\t\t" + Guid(d) + " = " + Guid(d) + "\r\n";
      s += "\tEndProjectSection\r\n";
    }
    s += "EndProject\r\n";
    if (native) {
      WriteFile(dir / name / (name + ".vcproj"),
                "<?xml version=\"1.0\" encoding=\"Windows-1252\"?>\r\n<VisualStudioProject "
                "ProjectType=\"Visual C++\" Version=\"9.00\" Name=\"" +
                    name +
                    "\">\r\n<Files>\r\n<Filter Name=\"Source Files\"><File "
                    "RelativePath=\".\\main.cpp\"/></Filter>\r\n<Filter Name=\"Resource "
                    "Files\"><File RelativePath=\".\\app.rc\"/></Filter>\r\n</Files>\r\n"
                    "</VisualStudioProject>\r\n");
      WriteFile(dir / name / "app.rc",
                "#include \"resource.h\"\r\nVS_VERSION_INFO VERSIONINFO\r\n");
    } else {
      WriteFile(dir / name / (name + ".csproj"), "<Project/>\r\n");
    }
  }
  s += "Global\r\n";
  s += globalDependencies ? "\tGlobalSection(SolutionConfiguration) = preSolution\r\n"
                          : "\tGlobalSection(SolutionConfigurationPlatforms) = preSolution\r\n";
  for (const char* c : configs)
    s += std::string("\t\t") + c + " = " + c + "\r\n";
  s += "\tEndGlobalSection\r\n";
  if (globalDependencies) {
    s += "\tGlobalSection(ProjectDependencies) = postSolution\r\n";
    for (int i = 0; i < n; ++i)
      for (size_t k = 0; k < deps[i].size(); ++k)
        s += "\t\t" + Guid(i) + "." + std::to_string(k) + " = " + Guid(deps[i][k]) + "\r\n";
    s += "\tEndGlobalSection\r\n";
  }
  s += "\tGlobalSection(ProjectConfigurationPlatforms) = postSolution\r\n";
  for (int i = 0; i < n; ++i)
    for (const char* c : configs) {
      s += "\t\t" + Guid(i) + "." + c + ".ActiveCfg = " + c + "\r\n";
      s += "\t\t" + Guid(i) + "." + c + ".Build.0 = " + c + "\r\n";
    }
  s += "\tEndGlobalSection\r\nEndGlobal\r\n";
  WriteFile(sln, s);
  return sln.string();
}

// OpenSolution as a whole: reading the file, every project file and version script, the
// configuration lines, and the load-time ordering of the reversed chain.
void BM_OpenSolution(benchmark::State& state) {
  int n = static_cast<int>(state.range(0));
  std::string sln = MakeSolution(n, TShape::Chain);
  for (auto _ : state) {
    auto s = qv::OpenSolution(sln, false);
    if (s->GetProjects()->GetCount() != n) state.SkipWithError("projects missing");
    benchmark::DoNotOptimize(s);
  }
  state.counters["projects"] = n;
}

// OpenSolution of random dependencies over a hidden order (the solution qvsln's end-to-end
// bench reads).
void BM_OpenRandomSolution(benchmark::State& state) {
  int n = static_cast<int>(state.range(0));
  std::string sln = MakeSolution(n, TShape::Random);
  for (auto _ : state)
    benchmark::DoNotOptimize(qv::OpenSolution(sln, false));
  state.counters["projects"] = n;
}

// SortByDependency alone, on a model still in file order (dependencies from a global
// section, which the load-time ordering does not see).
void BM_SortByDependency(benchmark::State& state) {
  int n = static_cast<int>(state.range(0));
  std::string sln = MakeSolution(n, TShape::ChainGlobal);
  for (auto _ : state) {
    state.PauseTiming();
    auto s = qv::OpenSolution(sln, false);
    auto projects = s->GetProjects();
    state.ResumeTiming();
    projects->SortByDependency();
    if (projects->GetItem(0)->GetName() != "Project" + std::to_string(n - 1))
      state.SkipWithError("wrong order");
  }
  state.counters["projects"] = n;
}

// The ordering of a large solution with a dependency cycle of three projects and a mutual
// pair elsewhere: random dependencies over a hidden order, listed in random file order. The
// procedure either fails at the pair or runs for ever; the outcome is decided either way.
void BM_CycleWithMutualPair(benchmark::State& state) {
  int n = static_cast<int>(state.range(0));
  std::mt19937 rng(42);
  std::vector<int> rank(n);
  std::iota(rank.begin(), rank.end(), 0);
  std::shuffle(rank.begin(), rank.end(), rng);
  std::vector<std::vector<int>> deps(n);
  for (int a = 0; a < n; ++a)
    for (int k = 0; k < 3; ++k) {
      int b = static_cast<int>(rng() % n);
      if (rank[b] < rank[a]) deps[a].push_back(b);
    }
  int a = n / 3, b = n / 2, c = 2 * n / 3;  // a -> b -> c -> a
  deps[a].push_back(b);
  deps[b].push_back(c);
  deps[c].push_back(a);
  deps[n - 2].push_back(n - 1);  // and a mutual pair near the end
  deps[n - 1].push_back(n - 2);
  std::string outcome;
  for (auto _ : state) {
    try {
      qv::DependencyOrder(deps, [](int i) { return "P" + std::to_string(i); });
      outcome = "ordered";
    } catch (const std::exception& e) {
      outcome = e.what();
    }
  }
  state.SetLabel(outcome.substr(0, 80));
  state.counters["projects"] = n;
}

BENCHMARK(BM_CycleWithMutualPair)->Arg(20000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenSolution)->Arg(100)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenRandomSolution)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortByDependency)->Arg(100)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
