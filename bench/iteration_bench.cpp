// Cost of one iteration of the search with flips, from 10^3 to 10^6 decisions, beside searches written by hand for one
// problem each. Times are per iteration; the ratio of an "Engine" line to its "Hand" line is the price of generality.
#include <benchmark/benchmark.h>

#include "solver/kernel/dag.h"
#include "support/handwritten.h"
#include "support/problems.h"
#include "support/singleflips.h"

namespace bench {
namespace {

constexpr quvex::RandomState kDataSeed = 1;
constexpr quvex::RandomState kSolveSeed = 3;
constexpr std::uint64_t kPortion = 100000;

template <class Problem>
void engineIteration(benchmark::State& state) {
  const Problem problem(static_cast<std::uint32_t>(state.range(0)), kDataSeed);
  SingleFlips search(problem, kSolveSeed);
  for (auto _ : state) search.run(kPortion);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPortion));
}

template <class Problem, class Hand>
void handIteration(benchmark::State& state) {
  const Problem problem(static_cast<std::uint32_t>(state.range(0)), kDataSeed);
  HandSearch<Hand, Problem> search(problem, kSolveSeed);
  for (auto _ : state) search.run(kPortion);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPortion));
  benchmark::DoNotOptimize(search.counters);
}

/// A fixed number of iterations from the start, so that both sides do the very same moves: the counters must agree.
template <class Problem, class Hand>
void samePathCheck(benchmark::State& state) {
  constexpr std::uint64_t kIterations = 400000;
  const Problem problem(static_cast<std::uint32_t>(state.range(0)), kDataSeed);
  for (auto _ : state) {
    SingleFlips engine(problem, kSolveSeed);
    HandSearch<Hand, Problem> hand(problem, kSolveSeed);
    engine.run(kIterations);
    hand.run(kIterations);
    const quvex::Move& move = engine.heuristic().getMove(0);
    const quvex::Dag& dag = engine.getDag();
    const Counters reached{dag.nodeValue[dag.fixed.objectives[0]], move.nbAccepted, move.nbImprovements,
                           move.nbInfeasibles};
    if (!(reached == hand.counters)) state.SkipWithError("the hand-written search took another way");
  }
}

#define QUVEX_PROBLEM(Problem)                                                                               \
  BENCHMARK(samePathCheck<Problem, Hand##Problem>)->Arg(1000)->Iterations(1)->Unit(benchmark::kMillisecond); \
  BENCHMARK(handIteration<Problem, Hand##Problem>)->RangeMultiplier(10)->Range(1000, 1000000);               \
  BENCHMARK(engineIteration<Problem>)->RangeMultiplier(10)->Range(1000, 1000000);

QUVEX_PROBLEM(Knapsack)
QUVEX_PROBLEM(Covering)
QUVEX_PROBLEM(MaxCut)

}  // namespace
}  // namespace bench
