#include "VsnetslnOrder.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "QvExceptions.h"

using namespace qv;

namespace {

std::string Name(int i) {
  return "P" + std::to_string(i);
}

// The exchange-and-restart procedure exactly as the product describes it, as the oracle.
// Returns nullopt when it has not ended after `maxSteps` exchanges.
std::optional<std::vector<int>> LiteralOrder(const std::vector<std::vector<int>>& deps,
                                             std::string& error, long maxSteps = 200000) {
  int n = static_cast<int>(deps.size());
  std::vector<int> list(n);
  for (int i = 0; i < n; ++i)
    list[i] = i;
  auto dependsOn = [&](int a, int b) {
    return std::find(deps[a].begin(), deps[a].end(), b) != deps[a].end();
  };
  long steps = 0;
  int i = 0;
  while (i < n) {
    int p = list[i];
    int j = 0;
    while (j < i && !dependsOn(list[j], p))
      ++j;
    if (j == i) {
      ++i;
      continue;
    }
    int q = list[j];
    if (dependsOn(p, q)) {
      error = "Solution has invalid circular dependancies between : " + Name(p) + " and " + Name(q);
      return list;
    }
    std::swap(list[i], list[j]);
    i = 1;
    if (++steps > maxSteps) return std::nullopt;
  }
  return list;
}

std::string ErrorOf(const std::vector<std::vector<int>>& deps, std::vector<int>* order = nullptr) {
  try {
    auto r = DependencyOrder(deps, Name);
    if (order) *order = r;
  } catch (const Exception& e) {
    return e.what();
  }
  return "";
}

TEST(DependencyOrder, KeepsFileOrderAndMovesByExchange) {
  // A depends on C: C is exchanged with A, giving C, B, A (not C, A, B).
  EXPECT_EQ(DependencyOrder({{2}, {}, {}}, Name), (std::vector<int>{2, 1, 0}));
  // First depends on second: second comes first.
  EXPECT_EQ(DependencyOrder({{1}, {}}, Name), (std::vector<int>{1, 0}));
  // Self-dependencies and unknown items are ignored.
  EXPECT_EQ(DependencyOrder({{0, 7, -1}, {1}}, Name), (std::vector<int>{0, 1}));
  EXPECT_TRUE(DependencyOrder({}, Name).empty());
}

TEST(DependencyOrder, CyclesAreReportedWithTheirProjects) {
  const std::pair<std::vector<std::vector<int>>, std::string> cases[] = {
      {{{1}, {0}}, "P1 and P0"},  // a mutual dependency names the later project first
      {{{}, {2}, {1}}, "P2 and P1"},
      // longer cycles are reported instead of looping forever
      {{{1}, {2}, {0}}, "P0 and P1 and P2"},
      {{{}, {3}, {1}, {4}, {2}, {}}, "P1 and P3 and P4 and P2"},
  };
  for (const auto& [deps, names] : cases)
    EXPECT_EQ(ErrorOf(deps), "Solution has invalid circular dependancies between : " + names);
}

TEST(DependencyOrder, MatchesTheLiteralProcedureOnRandomAcyclicGraphs) {
  std::mt19937 rng(20261121);
  int compared = 0;
  for (int round = 0; round < 4000; ++round) {
    int n = 1 + static_cast<int>(rng() % 14);
    // A random DAG over a hidden order, presented in a random file order, with duplicate,
    // self and dangling references mixed in.
    std::vector<int> rank(n);
    for (int i = 0; i < n; ++i)
      rank[i] = i;
    std::shuffle(rank.begin(), rank.end(), rng);
    double density = (rng() % 100) / 100.0;
    std::vector<std::vector<int>> deps(n);
    for (int a = 0; a < n; ++a)
      for (int b = 0; b < n; ++b)
        if (rank[a] > rank[b] && (rng() % 1000) < density * 1000) deps[a].push_back(b);
    for (auto& d : deps) {
      if (!d.empty() && rng() % 4 == 0) d.push_back(d.front());
      if (rng() % 8 == 0) d.push_back(n + 3);
      std::shuffle(d.begin(), d.end(), rng);
    }
    std::string literalError;
    auto literal = LiteralOrder(deps, literalError);
    ASSERT_TRUE(literal) << "the procedure ends on acyclic graphs";
    std::vector<int> fast;
    ASSERT_EQ(ErrorOf(deps, &fast), "");
    ASSERT_EQ(fast, *literal) << "round " << round;
    ++compared;
  }
  EXPECT_EQ(compared, 4000);
}

TEST(DependencyOrder, MatchesTheLiteralProcedureOnMutualPairs) {
  std::mt19937 rng(7);
  int compared = 0;
  for (int round = 0; round < 3000; ++round) {
    int n = 2 + static_cast<int>(rng() % 10);
    std::vector<std::vector<int>> deps(n);
    for (int a = 0; a < n; ++a)
      for (int b = 0; b < n; ++b)
        if (a != b && rng() % 5 == 0) deps[a].push_back(b);
    std::string literalError, fastError;
    auto literal = LiteralOrder(deps, literalError, 20000);
    std::vector<int> fast;
    fastError = ErrorOf(deps, &fast);  // always ends, whatever the graph
    if (!literal) {
      // The procedure itself loops (on a longer cycle): the cycle is reported instead.
      ASSERT_NE(fastError, "") << "round " << round;
      continue;
    }
    ASSERT_EQ(fastError, literalError) << "round " << round;
    if (literalError.empty()) {
      ASSERT_EQ(fast, *literal);
    }
    ++compared;
  }
  EXPECT_GT(compared, 1000);
}

TEST(DependencyOrder, LongReversedChainIsFast) {
  const int n = 5000;
  std::vector<std::vector<int>> deps(n);
  for (int i = 0; i + 1 < n; ++i)
    deps[i].push_back(i + 1);
  auto order = DependencyOrder(deps, Name);
  for (int i = 0; i < n; ++i)
    ASSERT_EQ(order[i], n - 1 - i);
}

}  // namespace
