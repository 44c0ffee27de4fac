// What qvsln prints about a solution: a report for people and a JSON object for programs.
#pragma once

#include <ostream>
#include <string>

#include "Vsnetsln.h"

namespace qv {

// Text for people: format, configurations, and the projects in model order with their
// identifiers, paths, dependencies, configuration mappings and resource scripts.
std::string SolutionText(IVSDotNetSolution& solution);

// One JSON object, written to `out`: fileName, version, configurations (null without a
// configuration section) and the projects in model order.
void WriteSolutionJson(IVSDotNetSolution& solution, std::ostream& out);

}  // namespace qv
