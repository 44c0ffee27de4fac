#include "VsnetslnOrder.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <deque>
#include <optional>
#include <queue>

#include "QvExceptions.h"

namespace qv {

namespace {

constexpr const char* kCircular = "Solution has invalid circular dependancies between : ";

struct Graph {
  std::vector<std::vector<int>> out;  // what an item depends on (sorted, unique)
  std::vector<std::vector<int>> in;   // the items that depend on it
};

Graph BuildGraph(const std::vector<std::vector<int>>& dependsOn) {
  int n = static_cast<int>(dependsOn.size());
  Graph g{std::vector<std::vector<int>>(n), std::vector<std::vector<int>>(n)};
  for (int a = 0; a < n; ++a) {
    auto& o = g.out[a];
    for (int b : dependsOn[a])
      if (b >= 0 && b < n && b != a) o.push_back(b);
    std::sort(o.begin(), o.end());
    o.erase(std::unique(o.begin(), o.end()), o.end());
    for (int b : o)
      g.in[b].push_back(a);
  }
  return g;
}

// Strongly connected components (iterative Tarjan); returns the component of each item.
std::vector<int> Components(const Graph& g, int& count) {
  int n = static_cast<int>(g.out.size());
  std::vector<int> index(n, -1), low(n, 0), comp(n, -1), stack;
  std::vector<bool> onStack(n, false);
  std::vector<std::pair<int, size_t>> work;
  int next = 0;
  count = 0;
  for (int s = 0; s < n; ++s) {
    if (index[s] >= 0) continue;
    work.push_back({s, 0});
    while (!work.empty()) {
      auto& [v, edge] = work.back();
      if (edge == 0 && index[v] < 0) {
        index[v] = low[v] = next++;
        stack.push_back(v);
        onStack[v] = true;
      }
      if (edge < g.out[v].size()) {
        int w = g.out[v][edge++];
        if (index[w] < 0)
          work.push_back({w, 0});
        else if (onStack[w])
          low[v] = std::min(low[v], index[w]);
        continue;
      }
      if (low[v] == index[v]) {
        int w;
        do {
          w = stack.back();
          stack.pop_back();
          onStack[w] = false;
          comp[w] = count;
        } while (w != v);
        ++count;
      }
      int done = v;
      work.pop_back();
      if (!work.empty()) low[work.back().first] = std::min(low[work.back().first], low[done]);
    }
  }
  return comp;
}

// The shortest cycle through `start` inside its component, in dependency order.
std::vector<int> CycleThrough(const Graph& g, const std::vector<int>& comp, int start) {
  int n = static_cast<int>(g.out.size());
  std::vector<int> from(n, -2);
  std::deque<int> queue{start};
  from[start] = -1;
  while (!queue.empty()) {
    int v = queue.front();
    queue.pop_front();
    for (int w : g.out[v]) {
      if (comp[w] != comp[start]) continue;
      if (w == start) {
        std::vector<int> cycle;
        for (int x = v; x != -1; x = from[x])
          cycle.insert(cycle.begin(), x);
        return cycle;
      }
      if (from[w] == -2) {
        from[w] = v;
        queue.push_back(w);
      }
    }
  }
  return {start};
}

[[noreturn]] void ThrowCycle(const std::vector<int>& cycle,
                             const std::function<std::string(int)>& name) {
  std::string msg = kCircular;
  for (size_t i = 0; i < cycle.size(); ++i)
    msg += (i ? " and " : "") + name(cycle[i]);
  throw Exception(msg);
}

bool HasMutualPair(const Graph& g) {
  for (size_t a = 0; a < g.out.size(); ++a)
    for (int b : g.out[a])
      if (std::binary_search(g.out[b].begin(), g.out[b].end(), static_cast<int>(a))) return true;
  return false;
}

// A 64-bit mark of an item standing at a position; the XOR of the marks of all positions
// identifies an order (up to collisions, which are checked for).
uint64_t Mark(int item, int position) {
  uint64_t x =
      (static_cast<uint64_t>(item) << 32 | static_cast<uint32_t>(position)) + 0x9E3779B97F4A7C15ULL;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
  return x ^ (x >> 31);
}

// Detects that the exchanges have come back to an order seen before (Brent's method): the
// procedure's next step depends on the order alone, so from there it would run forever.
class TLoopDetector {
 public:
  explicit TLoopDetector(const std::vector<int>& order) : FSaved(order) {
    for (int p = 0; p < static_cast<int>(order.size()); ++p)
      FHash ^= Mark(order[p], p);
    FSavedHash = FHash;
  }
  // Records the exchange of items a and b at positions i and j; true when the order after
  // it was seen before.
  bool Exchanged(const std::vector<int>& order, int a, int i, int b, int j) {
    FHash ^= Mark(a, i) ^ Mark(b, j) ^ Mark(a, j) ^ Mark(b, i);
    if (FHash == FSavedHash && order == FSaved) return true;
    if (++FSteps == FPower) {
      FSaved = order;
      FSavedHash = FHash;
      FPower *= 2;
      FSteps = 0;
    }
    return false;
  }

 private:
  std::vector<int> FSaved;
  uint64_t FHash = 0, FSavedHash = 0;
  long FSteps = 0, FPower = 1;
};

// A cycle through the first item (in current order) that lies on one.
std::vector<int> FirstCycle(const Graph& g, const std::vector<int>& comp,
                            const std::vector<int>& componentSize) {
  for (size_t v = 0; v < comp.size(); ++v)
    if (componentSize[comp[v]] >= 2) return CycleThrough(g, comp, static_cast<int>(v));
  return {};
}

}  // namespace

// The procedure always exchanges at the first position whose item has a dependant before
// it. Positions before the last exchange's lower position stay settled, and an exchange
// can only unsettle the positions of what the moved-forward item depends on and the
// position the moved-back item lands on, so those are the only positions to look at
// again. A min-heap of candidate positions (checked again when taken) yields the same
// sequence of exchanges without rescanning the list.
std::vector<int> DependencyOrder(const std::vector<std::vector<int>>& dependsOn,
                                 const std::function<std::string(int)>& name) {
  const int n = static_cast<int>(dependsOn.size());
  Graph g = BuildGraph(dependsOn);

  // On a cycle the procedure either meets two items that depend on each other, and fails
  // with them, or never ends. Without such a pair it cannot fail, so the cycle is reported
  // at once; with one, the exchanges run until they fail or come back to an order they
  // have produced before, from which the procedure would repeat itself for ever.
  int count = 0;
  std::vector<int> comp = Components(g, count);
  std::vector<int> componentSize(count, 0);
  for (int c : comp)
    ++componentSize[c];
  bool cyclic = count < n;
  if (cyclic && !HasMutualPair(g)) ThrowCycle(FirstCycle(g, comp, componentSize), name);

  std::vector<int> order(n), pos(n);
  for (int i = 0; i < n; ++i)
    order[i] = pos[i] = i;
  auto firstDependant = [&](int item) {
    int m = INT_MAX;
    for (int d : g.in[item])
      m = std::min(m, pos[d]);
    return m;
  };
  auto dependsOnItem = [&](int a, int b) {
    return std::binary_search(g.out[a].begin(), g.out[a].end(), b);
  };

  std::optional<TLoopDetector> loops;
  if (cyclic) loops.emplace(order);
  std::priority_queue<int, std::vector<int>, std::greater<int>> candidates;
  for (int i = 0; i < n; ++i) {
    if (firstDependant(order[i]) >= i) continue;
    candidates.push(i);
    while (!candidates.empty()) {
      int k = candidates.top();
      while (!candidates.empty() && candidates.top() == k)
        candidates.pop();
      int p = order[k];
      int j = firstDependant(p);
      if (j >= k) continue;  // settled since it was queued
      int q = order[j];
      if (dependsOnItem(p, q)) ThrowCycle({p, q}, name);
      std::swap(order[j], order[k]);
      pos[p] = j;
      pos[q] = k;
      if (loops && loops->Exchanged(order, p, k, q, j))
        ThrowCycle(FirstCycle(g, comp, componentSize), name);
      for (int d : g.out[p])
        if (pos[d] > j && pos[d] <= i) candidates.push(pos[d]);
      if (firstDependant(q) < k) candidates.push(k);
    }
  }
  return order;
}

}  // namespace qv
