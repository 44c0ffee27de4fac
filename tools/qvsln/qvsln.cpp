// qvsln: shows how the package reads a Visual Studio solution.
//   qvsln [--include-missing] [--resort] [--json] FILE.sln
// Exit status: 0 read, 1 the solution could not be read, 2 bad usage.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "SolutionReport.h"
#include "Vsnetsln.h"

int main(int argc, char** argv) {
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
