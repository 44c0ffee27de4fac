// The build order of a solution's projects: every project after the projects it depends
// on, reached by exchanges that keep the file order wherever no earlier project depends
// on a later one.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace qv {

// Orders items 0..n-1 (given in their current order). dependsOn[a] lists the items a
// depends on. The result is the new order as item numbers. The order is exactly that of
// the exchange procedure: find the first position i whose item P has an item depending on
// it at an earlier position; take the first such position j (item Q); fail if P also
// depends on Q; otherwise exchange positions i and j and look again from the start.
// Throws Exception "Solution has invalid circular dependancies between : P and Q" for two
// items that depend on each other, and the same text naming every item of the cycle in
// dependency order for a longer cycle (which the procedure itself would never leave).
std::vector<int> DependencyOrder(const std::vector<std::vector<int>>& dependsOn,
                                 const std::function<std::string(int)>& name);

}  // namespace qv
