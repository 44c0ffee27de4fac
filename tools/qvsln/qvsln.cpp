// qvsln: shows how the package reads a Visual Studio solution.
//   qvsln [--include-missing] [--resort] [--json] FILE.sln
// Exit status: 0 read, 1 the solution could not be read, 2 bad usage.
#include <CLI/CLI.hpp>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#if defined(__linux__) && defined(__GLIBC__)
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

#include "SolutionReport.h"
#include "Vsnetsln.h"

namespace {
// The model of a large solution is a great many small blocks, and touching each new page of
// them costs the kernel a fault: thousands for 5,000 projects. The heap is grown in one large
// step instead (address space only) and handed to the kernel as a candidate for huge pages,
// which come in a fault each.
void GrowHeapInLargePages() {
#if defined(__linux__) && defined(__GLIBC__)
  constexpr size_t kHugePage = size_t{2} << 20;
  mallopt(M_TOP_PAD, 64 << 20);
  mallopt(M_MMAP_THRESHOLD, 512 << 10);
  auto before = reinterpret_cast<uintptr_t>(sbrk(0));
  // More than the first heap has left; volatile, so that the allocation is not left out.
  void* volatile probe = malloc(256 << 10);
  auto after = reinterpret_cast<uintptr_t>(sbrk(0));
  free(probe);
  uintptr_t from = (before + kHugePage - 1) & ~(kHugePage - 1), to = after & ~(kHugePage - 1);
  if (to > from) madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE);
#endif
}
}  // namespace

int main(int argc, char** argv) {
  GrowHeapInLargePages();
  CLI::App app{"Shows how a Visual Studio solution (formats 7 to 10) is read.", "qvsln"};
  bool includeMissing = false, resort = false, json = false;
  std::string file;
  app.add_flag("--include-missing", includeMissing, "Keep projects whose file does not exist");
  app.add_flag("--resort", resort,
               "Order the projects once more after loading, so that global dependency "
               "sections count too");
  app.add_flag("--json", json, "Print one JSON object instead of text");
  app.add_option("FILE", file, "The solution file (.sln)")->required();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    int rc = app.exit(e);
    return rc == 0 ? 0 : 2;
  }

  try {
    auto solution = qv::OpenSolution(file, includeMissing);
    if (resort) solution->GetProjects()->SortByDependency();
    if (json)
      qv::WriteSolutionJson(*solution, std::cout);
    else
      std::cout << qv::SolutionText(*solution);
    std::cout.flush();
    // Ends here without taking the model apart object by object: for a large solution
    // that would be a tenth of the run, and the process is over anyway.
    std::_Exit(std::cout ? 0 : 1);
  } catch (const std::exception& e) {
    std::cerr << "qvsln: " << e.what() << "\n";
    return 1;
  }
}
