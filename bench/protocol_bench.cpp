// Cost of the steps of a move on the kernel graph: set, evaluate, and then commit or roll back.
#include <benchmark/benchmark.h>

#include "solver/kernel/dag.h"
#include "support/problems.h"
#include "support/singleflips.h"

namespace bench {
namespace {

enum class End { Commit, Rollback };

/// Moves of `range(1)` flips on a knapsack of `range(0)` items, all of which fit because nothing is active.
template <class Problem, End end>
void move(benchmark::State& state) {
  const Problem problem(static_cast<std::uint32_t>(state.range(0)), 1);
  SingleFlips search(problem, 3);
  quvex::Dag& dag = search.getDag();
  dag.propagation.deactivateAllConstraints();
  quvex::RandomState random = 5;
  for (auto _ : state) {
    for (std::int64_t i = 0; i < state.range(1); ++i) {
      dag.flip(dag.fixed.decisionList[quvex::rand(random, dag.fixed.nbBooleans)]);
    }
    benchmark::DoNotOptimize(dag.propagation.evaluateConstraints(dag));
    benchmark::DoNotOptimize(dag.propagation.evaluateUpTo(dag, 1));
    if constexpr (end == End::Commit) {
      dag.propagation.commitAll(dag);
    } else {
      dag.propagation.rollbackAll(dag);
    }
  }
}

/// Flips of the same thousand decisions, whatever the size of the model: what of it a move does not touch should cost
/// nothing.
template <class Problem>
void sameMoves(benchmark::State& state) {
  const Problem problem(static_cast<std::uint32_t>(state.range(0)), 1);
  SingleFlips search(problem, 3);
  quvex::Dag& dag = search.getDag();
  dag.propagation.deactivateAllConstraints();
  quvex::RandomState random = 5;
  for (auto _ : state) {
    dag.flip(dag.fixed.decisionList[quvex::rand(random, 1000)]);
    benchmark::DoNotOptimize(dag.propagation.evaluateConstraints(dag));
    benchmark::DoNotOptimize(dag.propagation.evaluateUpTo(dag, 1));
    dag.propagation.rollbackAll(dag);
  }
}

#define QUVEX_STEPS(Problem)                                                         \
  BENCHMARK(move<Problem, End::Commit>)->ArgsProduct({{1000, 100000}, {1, 2, 8}});   \
  BENCHMARK(move<Problem, End::Rollback>)->ArgsProduct({{1000, 100000}, {1, 2, 8}}); \
  BENCHMARK(sameMoves<Problem>)->RangeMultiplier(10)->Range(10000, 1000000);

QUVEX_STEPS(Knapsack)
QUVEX_STEPS(Covering)
QUVEX_STEPS(MaxCut)

}  // namespace
}  // namespace bench
