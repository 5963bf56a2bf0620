#pragma once

#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "solver/kernel/random.h"
#include "support/problems.h"

/// Searches written by hand for one problem each. They make exactly the draws and the decisions of `SingleFlips`, on
/// nothing but the data of their problem: what a general engine costs more than these is the price of generality.
namespace bench {

struct Counters {
  std::int64_t value = 0;
  std::uint32_t accepted = 0;
  std::uint32_t improved = 0;
  std::uint32_t infeasible = 0;
  friend bool operator==(const Counters&, const Counters&) = default;
};

/// Decisions are drawn in the order in which compilation meets them: roots by id, operands from the last one on.
class MeetingOrder {
 public:
  explicit MeetingOrder(std::uint32_t n) : met(n, false) {}
  void meet(std::uint32_t i) {
    if (met[i]) return;
    met[i] = true;
    order.push_back(i);
  }
  std::vector<std::uint32_t> finish() {
    for (auto i = static_cast<std::uint32_t>(met.size()); i-- > 0;) meet(i);
    return std::move(order);
  }

 private:
  std::vector<bool> met;
  std::vector<std::uint32_t> order;
};

class HandKnapsack {
 public:
  HandKnapsack(const Knapsack& problem, quvex::RandomState& shared)
      : data(problem), order(MeetingOrder(problem.size()).finish()), x(problem.size(), 0) {
    (void)shared;
  }
  void step(quvex::RandomState& state, Counters& counters) {
    const std::uint32_t i = order[quvex::rand(state, data.size())];
    const std::int64_t sign = x[i] != 0 ? -1 : 1;
    if (load + sign * data.weights[i] > data.capacity) {
      ++counters.infeasible;
      return;
    }
    const std::int64_t delta = sign * data.values[i];
    if (delta < 0) return;
    ++counters.accepted;
    counters.improved += delta > 0 ? 1 : 0;
    x[i] ^= 1U;
    load += sign * data.weights[i];
    counters.value += delta;
  }

 private:
  const Knapsack& data;
  std::vector<std::uint32_t> order;
  std::vector<std::uint8_t> x;
  std::int64_t load = 0;
};

class HandMaxCut {
 public:
  HandMaxCut(const MaxCut& problem, quvex::RandomState& shared) : data(problem), x(problem.size(), 0) {
    (void)shared;
    MeetingOrder meeting(problem.size());
    for (std::uint32_t i = 0; i < problem.size(); ++i) {
      if (problem.neighbours[i].empty()) meeting.meet(i);
    }
    for (auto edge = problem.edges.rbegin(); edge != problem.edges.rend(); ++edge) {
      meeting.meet(edge->second);
      meeting.meet(edge->first);
    }
    order = meeting.finish();
  }
  void step(quvex::RandomState& state, Counters& counters) {
    const std::uint32_t i = order[quvex::rand(state, data.size())];
    std::int64_t delta = 0;
    for (const std::uint32_t j : data.neighbours[i]) delta += x[i] == x[j] ? 1 : -1;
    if (delta < 0) return;
    ++counters.accepted;
    counters.improved += delta > 0 ? 1 : 0;
    x[i] ^= 1U;
    counters.value += delta;
  }

 private:
  const MaxCut& data;
  std::vector<std::uint32_t> order;
  std::vector<std::uint8_t> x;
};

class HandCovering {
 public:
  /// Starts as the greedy pass does: every column is tried towards 1, in a drawn order.
  HandCovering(const Covering& problem, quvex::RandomState& shared)
      : data(problem), x(problem.size(), 1), covered(problem.rows.size(), 5) {
    for (std::uint32_t v = 0; v < problem.size(); ++v) (void)quvex::rand(shared, problem.size() - v);
    MeetingOrder meeting(problem.size());
    for (const auto& row : problem.rows) {
      for (auto column = row.rbegin(); column != row.rend(); ++column) meeting.meet(*column);
    }
    order = meeting.finish();
  }
  [[nodiscard]] std::int64_t startValue() const {
    return std::accumulate(data.costs.begin(), data.costs.end(), std::int64_t{0});
  }
  void step(quvex::RandomState& state, Counters& counters) {
    const std::uint32_t i = order[quvex::rand(state, data.size())];
    if (x[i] == 0) return;  // a column that comes back only costs
    for (const std::uint32_t r : data.rowsOf[i]) {
      if (covered[r] > 1) continue;
      ++counters.infeasible;
      return;
    }
    ++counters.accepted;
    ++counters.improved;
    x[i] = 0;
    for (const std::uint32_t r : data.rowsOf[i]) --covered[r];
    counters.value -= data.costs[i];
  }

 private:
  const Covering& data;
  std::vector<std::uint32_t> order;
  std::vector<std::uint8_t> x;
  std::vector<std::uint32_t> covered;
};

template <class Hand>
std::int64_t startValueOf(const Hand& hand) {
  if constexpr (requires { hand.startValue(); }) return hand.startValue();
  return 0;
}

/// One hand-written search with its own states, run in portions.
template <class Hand, class Problem>
class HandSearch {
 public:
  HandSearch(const Problem& problem, quvex::RandomState seed) : hand(problem, seed) {
    counters.value = startValueOf(hand);
    state = quvex::scaleTo(quvex::randomStep(seed), 2147483647U);
  }
  void run(std::uint64_t iterations) {
    for (std::uint64_t i = 0; i < iterations; ++i) hand.step(state, counters);
  }
  Counters counters;

 private:
  Hand hand;
  quvex::RandomState state = 0;
};

}  // namespace bench
