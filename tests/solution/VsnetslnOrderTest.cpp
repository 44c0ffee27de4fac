#include "VsnetslnOrder.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

#include "support/ErrorOf.h"

using namespace qv;

namespace {

using Graph = std::vector<std::vector<int>>;
const std::string kCycle = "Solution has invalid circular dependancies between : ";

std::string Name(int i) {
  return "P" + std::to_string(i);
}

std::string Joined(const std::vector<int>& order) {
  std::string s;
  for (int i : order)
    s += (s.empty() ? "" : " ") + std::to_string(i);
  return s;
}

// The exchange-and-restart procedure exactly as the product describes it, as the oracle:
// the order, the error, or "loops" when it has not ended after `maxSteps` exchanges.
std::string LiteralOrder(const Graph& deps, long maxSteps) {
  std::vector<int> list(deps.size());
  std::iota(list.begin(), list.end(), 0);
  auto dependsOn = [&](int a, int b) {
    return std::find(deps[a].begin(), deps[a].end(), b) != deps[a].end();
  };
  for (size_t i = 1; i < list.size(); ++i) {
    size_t j = 0;
    while (j < i && !dependsOn(list[j], list[i]))
      ++j;
    if (j == i) continue;
    if (dependsOn(list[i], list[j])) return kCycle + Name(list[i]) + " and " + Name(list[j]);
    std::swap(list[i], list[j]);
    if (--maxSteps < 0) return "loops";
    i = 0;  // from the start again
  }
  return Joined(list);
}

// DependencyOrder's answer in the same form.
std::string Order(const Graph& deps) {
  std::string order;
  std::string error = qvtest::ErrorOf([&] { order = Joined(DependencyOrder(deps, Name)); });
  return error == "(no exception)" ? order : error;
}

TEST(DependencyOrder, ExchangesKeepTheFileOrderAndCyclesNameTheirProjects) {
  const std::pair<Graph, std::string> cases[] = {
      {{}, ""},
      {{{2}, {}, {}}, "2 1 0"},            // C is exchanged with A: C, B, A (not C, A, B)
      {{{0, 7, -1}, {1}}, "0 1"},          // self-dependencies and unknown items are ignored
      {{{1}, {0}}, kCycle + "P1 and P0"},  // a mutual pair names the later project first
      // longer cycles are reported instead of looping forever
      {{{1}, {2}, {0}}, kCycle + "P0 and P1 and P2"},
      {{{}, {3}, {1}, {4}, {2}, {}}, kCycle + "P1 and P3 and P4 and P2"},
  };
  for (const auto& [deps, expected] : cases)
    EXPECT_EQ(Order(deps), expected);
}

// Even rounds: a random acyclic graph over a hidden order, presented in a random file order,
// with duplicate, self and dangling references. Odd rounds: any graph, cycles included.
TEST(DependencyOrder, MatchesTheLiteralProcedureOnRandomGraphs) {
  std::mt19937 rng(20261121);
  for (int round = 0; round < 7000; ++round) {
    bool acyclic = round % 2 == 0;
    int n = acyclic ? 1 + static_cast<int>(rng() % 14) : 2 + static_cast<int>(rng() % 10);
    std::vector<int> rank(n);
    std::iota(rank.begin(), rank.end(), 0);
    std::shuffle(rank.begin(), rank.end(), rng);
    unsigned density = acyclic ? rng() % 100 : 20;
    Graph deps(n);
    for (int a = 0; a < n; ++a)
      for (int b = 0; b < n; ++b)
        if ((acyclic ? rank[a] > rank[b] : a != b) && rng() % 100 < density) deps[a].push_back(b);
    for (int a = 0; acyclic && a < n; ++a) {
      if (!deps[a].empty() && rng() % 4 == 0) deps[a].push_back(deps[a].front());
      if (rng() % 8 == 0) deps[a].push_back(rng() % 2 ? a : n + 3);
      std::shuffle(deps[a].begin(), deps[a].end(), rng);
    }
    std::string literal = LiteralOrder(deps, acyclic ? 200000 : 20000), fast = Order(deps);
    SCOPED_TRACE("round " + std::to_string(round));
    if (literal == "loops") {
      // The procedure itself never ends (on a longer cycle): the cycle is reported instead.
      ASSERT_FALSE(acyclic);
      ASSERT_EQ(fast.rfind(kCycle, 0), 0u) << fast;
    } else {
      ASSERT_EQ(fast, literal);
    }
  }
}

TEST(DependencyOrder, LongReversedChainIsFast) {
  const int n = 5000;
  Graph deps(n);
  std::vector<int> reversed(n);
  for (int i = 0; i < n; ++i) {
    deps[i] = {i + 1};  // the last one's is unknown
    reversed[i] = n - 1 - i;
  }
  EXPECT_EQ(DependencyOrder(deps, Name), reversed);
}

}  // namespace
