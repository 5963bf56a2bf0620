// One attempt of every move of the pool, judged as rejected so that the state stays, on models of different structure,
// and a whole solve on each; how the simulation's moves depend on the size of a covering model, and what its tree takes
// of memory; how the search for a link depends on the distance.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "api/heuristicpool.h"
#include "api/modelaccess.h"
#include "builder/dagbuilder.h"
#include "quvex.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/greedysolution.h"
#include "solver/kernel/heuristic.h"
#include "solver/move/autonomousstructure.h"
#include "support/problems.h"

namespace bench {
namespace {

using quvex::QVObjectiveDirection;

QVExpression* sumOf(QVModel& model, const std::vector<QVExpression*>& terms) {
  QVExpression* sum = model.createExpression(QVOperator::Sum);
  for (QVExpression* term : terms) sum->addOperand(term);
  return sum;
}

/// n items to n places, one each, linear costs.
void assignment(QVModel& model, std::uint32_t n) {
  const auto x = createDecisions(model, n * n);
  std::vector<std::int64_t> costs;
  quvex::RandomState random = 1;
  for (std::uint32_t i = 0; i < n * n; ++i) costs.push_back(1 + quvex::rand(random, 99));
  for (std::uint32_t i = 0; i < n; ++i) {
    std::vector<QVExpression*> row;
    std::vector<QVExpression*> column;
    for (std::uint32_t j = 0; j < n; ++j) {
      row.push_back(x[i * n + j]);
      column.push_back(x[j * n + i]);
    }
    model.addConstraint(model.createExpression(QVOperator::Eq, sumOf(model, row), 1));
    model.addConstraint(model.createExpression(QVOperator::Eq, sumOf(model, column), 1));
  }
  model.addObjective(weightedSum(model, x, costs), QVObjectiveDirection::Minimize);
}

/// An assignment whose costs hang on pairs.
void quadraticAssignment(QVModel& model, std::uint32_t n) {
  assignment(model, n);
  QVExpression* cost = model.createExpression(QVOperator::Sum);
  quvex::RandomState random = 2;
  for (std::uint32_t k = 0; k < 20 * n; ++k) {
    QVExpression* a = model.getDecision(static_cast<int>(quvex::rand(random, n * n)));
    QVExpression* b = model.getDecision(static_cast<int>(quvex::rand(random, n * n)));
    cost->addOperand(model.createExpression(QVOperator::Prod, 1 + quvex::rand(random, 9),
                                            model.createExpression(QVOperator::And, a, b)));
  }
  model.addObjective(cost, QVObjectiveDirection::Minimize);
}

/// n cars of ten classes on one line: one class per place, so many places per class, and of every window of cars only
/// some may have an option; each above that costs one.
void carSequencing(QVModel& model, std::uint32_t n) {
  constexpr std::uint32_t kClasses = 10;
  constexpr std::uint32_t kMost[] = {1, 2, 1, 2, 1};
  constexpr std::uint32_t kWindow[] = {2, 3, 3, 5, 5};
  quvex::RandomState random = 6;
  const auto x = createDecisions(model, n * kClasses);
  for (std::uint32_t p = 0; p < n; ++p) {
    const std::vector<QVExpression*> place(x.begin() + p * kClasses, x.begin() + (p + 1) * kClasses);
    model.addConstraint(model.createExpression(QVOperator::Eq, sumOf(model, place), 1));
  }
  for (std::uint32_t c = 0; c < kClasses; ++c) {
    std::vector<QVExpression*> places;
    for (std::uint32_t p = 0; p < n; ++p) places.push_back(x[p * kClasses + c]);
    model.addConstraint(model.createExpression(QVOperator::Eq, sumOf(model, places), std::int64_t{n / kClasses}));
  }
  QVExpression* excess = model.createExpression(QVOperator::Sum);
  for (std::uint32_t o = 0; o < std::size(kMost); ++o) {
    bool hasOption[kClasses];
    for (bool& has : hasOption) has = quvex::rand(random, kWindow[o] + 2) < kMost[o];
    for (std::uint32_t first = 0; first + kWindow[o] <= n; ++first) {
      QVExpression* served = model.createExpression(QVOperator::Sum, -std::int64_t{kMost[o]});
      for (std::uint32_t p = first; p < first + kWindow[o]; ++p) {
        for (std::uint32_t c = 0; c < kClasses; ++c) {
          if (hasOption[c]) served->addOperand(x[p * kClasses + c]);
        }
      }
      excess->addOperand(model.createExpression(QVOperator::Max, served, 0));
    }
  }
  model.addObjective(excess, QVObjectiveDirection::Minimize);
}

/// n items in n / 4 bins; the fullest bin counts.
void binPacking(QVModel& model, std::uint32_t n) {
  const std::uint32_t nbBins = n / 4;
  quvex::RandomState random = 3;
  std::vector<QVExpression*> loads;
  for (std::uint32_t b = 0; b < nbBins; ++b) loads.push_back(model.createExpression(QVOperator::Sum));
  for (std::uint32_t i = 0; i < n; ++i) {
    const auto bins = createDecisions(model, nbBins);
    const std::int64_t size = 20 + quvex::rand(random, 60);
    for (std::uint32_t b = 0; b < nbBins; ++b) {
      loads[b]->addOperand(model.createExpression(QVOperator::Prod, size, bins[b]));
    }
    model.addConstraint(model.createExpression(QVOperator::Eq, sumOf(model, bins), 1));
  }
  QVExpression* fullest = model.createExpression(QVOperator::Max);
  for (QVExpression* load : loads) {
    model.addConstraint(model.createExpression(QVOperator::Leq, load, 220));
    fullest->addOperand(load);
  }
  model.addObjective(fullest, QVObjectiveDirection::Minimize);
}

/// n lectures in 20 periods, some of which need two neighbouring ones: nested or and and.
void timetable(QVModel& model, std::uint32_t n) {
  constexpr std::uint32_t kPeriods = 20;
  quvex::RandomState random = 4;
  const auto x = createDecisions(model, n * kPeriods);
  std::vector<std::vector<QVExpression*>> ofTeacher(n / 8 * kPeriods);
  for (std::uint32_t l = 0; l < n; ++l) {
    const std::uint32_t teacher = quvex::rand(random, n / 8);
    QVExpression* somewhere = model.createExpression(QVOperator::Or);
    for (std::uint32_t p = 0; p < kPeriods; ++p) {
      ofTeacher[teacher * kPeriods + p].push_back(x[l * kPeriods + p]);
      if (p > 0) {
        somewhere->addOperand(model.createExpression(QVOperator::And, x[l * kPeriods + p - 1], x[l * kPeriods + p]));
      }
    }
    model.addConstraint(somewhere);
  }
  for (const auto& lectures : ofTeacher) {
    if (lectures.size() > 1) {
      model.addConstraint(model.createExpression(QVOperator::Leq, sumOf(model, lectures), 1));
    }
  }
  model.addObjective(sumOf(model, x), QVObjectiveDirection::Minimize);
}

void covering(QVModel& model, std::uint32_t n) { Covering(n, 1).build(model); }

/// A model with one thread's moves, some way into its search.
class StartedSearch {
 public:
  StartedSearch(const std::function<void(QVModel&, std::uint32_t)>& build, std::uint32_t n) {
    build(*quvex.getModel(), n);
    quvex.getModel()->close();
    quvex::Dag& dag = quvex::ModelAccess::dagBuilder(*quvex.getModel())->getDag();
    quvex::RandomState seed = 1;
    if (!quvex::GreedySolution(seed).computeSolution(dag)) dag.propagation.deactivateAllConstraints();
    pool = std::make_unique<quvex::HeuristicPool>(&quvex, dag, seed);
    heuristic().setOptimizedObjective(0);
    heuristic().setIterationLimit(3000);
    heuristic().run();
  }
  quvex::Heuristic& heuristic() { return *pool->getHeuristic(); }

 private:
  quvex::Quvex quvex;
  std::unique_ptr<quvex::HeuristicPool> pool;
};

void attempt(benchmark::State& state, StartedSearch& search, std::uint32_t i) {
  quvex::Move& move = search.heuristic().getMove(i);
  move.resetStatistics();
  std::int64_t built = 0;
  for (auto _ : state) {
    if (move.apply()) ++built;
    move.conclude(quvex::Outcome::Rejected);
  }
  state.counters["built%"] = 100.0 * static_cast<double>(built) / static_cast<double>(state.iterations());
}

/// Of --benchmark_filter, what every name that it lets through begins with; empty if that can't be told at a glance.
std::string filterStart;

void findFilterStart(int argc, char** argv) {
  const std::string option = "--benchmark_filter=";
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument.starts_with(option)) filterStart = argument.substr(option.size());
  }
  if (filterStart.starts_with('-') || filterStart.find_first_of("|([\\?*.^") != std::string::npos) filterStart = {};
}

/// Whether a model has to be built: the large ones take longer than most benchmarks.
bool isWanted(const std::string& prefix) {
  const std::size_t common = std::min(prefix.size(), filterStart.size());
  return prefix.compare(0, common, filterStart, 0, common) == 0;
}

void registerAll(const std::string& label, const std::function<void(QVModel&, std::uint32_t)>& build, std::uint32_t n,
                 bool simulatedAlone) {
  if (!isWanted(label + "/" + std::to_string(n) + "/")) return;
  // Searches live to the end of the program: benchmarks run after all of them are registered.
  static std::vector<std::unique_ptr<StartedSearch>> searches;
  searches.push_back(std::make_unique<StartedSearch>(build, n));
  StartedSearch& search = *searches.back();
  for (std::uint32_t i = 0; i < search.heuristic().moves.size(); ++i) {
    const std::string& move = search.heuristic().getMove(i).name;
    const bool simulated = move.ends_with("EjectionChain") || move.ends_with("BinPacking");
    if (simulatedAlone && !simulated) continue;
    benchmark::RegisterBenchmark((label + "/" + std::to_string(n) + "/" + move).c_str(),
                                 [&search, i](benchmark::State& state) { attempt(state, search, i); });
  }
}

/// A whole solve of one thread under an iteration limit, from closing to the result.
void solveWhole(benchmark::State& state, const std::function<void(QVModel&, std::uint32_t)>& build, std::uint32_t n) {
  constexpr std::int64_t kIterations = 20000;
  for (auto _ : state) {
    state.PauseTiming();
    quvex::Quvex quvex;
    build(*quvex.getModel(), n);
    state.ResumeTiming();
    quvex.getModel()->close();
    quvex.getParam()->setVerbosity(0);
    quvex.getParam()->setNbThreads(1);
    quvex.createPhase()->setIterationLimit(kIterations);
    quvex.solve();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kIterations);
}

void registerSolve(const std::string& label, const std::function<void(QVModel&, std::uint32_t)>& build,
                   std::uint32_t n) {
  benchmark::RegisterBenchmark(("solve/" + label + "/" + std::to_string(n)).c_str(), [build,
                                                                                      n](benchmark::State& state) {
    solveWhole(state, build, n);
  })->Unit(benchmark::kMillisecond);
}

std::size_t bytesInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// What the allocator hands out for one more thread's moves and structures, and for what the threads share.
std::size_t bytesOfSearch(std::uint32_t n, int simulated, std::size_t& shared) {
  quvex::Quvex quvex;
  covering(*quvex.getModel(), n);
  for (const char* move : {"moveEjectionChainEnabled", "moveBinPackingEnabled", "moveSequenceEnabled"}) {
    quvex.getParam()->setAdvancedParam(move, simulated);
  }
  const std::size_t atStart = bytesInUse();
  quvex.getModel()->close();
  shared = bytesInUse() - atStart;
  quvex::Dag& dag = quvex::ModelAccess::dagBuilder(*quvex.getModel())->getDag();
  const std::size_t before = bytesInUse();
  const quvex::HeuristicPool pool(&quvex, dag, 1);
  return bytesInUse() - before;
}

/// Memory of the constraint tree per decision: the difference that its moves make.
void treeMemory(benchmark::State& state) {
  const auto n = static_cast<std::uint32_t>(state.range(0));
  for (auto _ : state) {
    std::size_t sharedWith = 0;
    std::size_t sharedWithout = 0;
    const std::size_t with = bytesOfSearch(n, 1, sharedWith);
    const std::size_t without = bytesOfSearch(n, 0, sharedWithout);
    state.counters["sharedBytes"] = (static_cast<double>(sharedWith) - static_cast<double>(sharedWithout)) / n;
    state.counters["threadBytes"] = (static_cast<double>(with) - static_cast<double>(without)) / n;
  }
}

/// A long sum, and short ones that share one operand with it each, at growing distances from its start.
class LinkedSums {
 public:
  explicit LinkedSums(std::uint32_t n) {
    QVModel& model = *quvex.getModel();
    const auto x = createDecisions(model, n);
    model.addConstraint(model.createExpression(QVOperator::Eq, sumOf(model, x), 1));
    for (std::uint32_t d = 1; d < n; d *= 10) {
      for (const std::uint32_t shared : {d, n - d}) {
        QVExpression* own = model.createExpression(QVOperator::Bool);
        model.addConstraint(model.createExpression(QVOperator::Eq, sumOf(model, {x[shared], own}), 1));
      }
    }
    model.addObjective(sumOf(model, x), QVObjectiveDirection::Minimize);
    model.close();
    quvex::Dag& dag = getDag();
    pool = std::make_unique<quvex::HeuristicPool>(&quvex, dag, 1);
    for (const quvex::NodeId constraint : dag.fixed.constraints) {
      const quvex::NodeId a = dag.child(constraint, 0);
      const quvex::NodeId b = dag.child(constraint, 1);
      sums.push_back(dag.fixed.nbChildren[a] != 0 ? a : b);
    }
    longest = *std::ranges::max_element(sums, {}, [&](quvex::NodeId id) { return dag.fixed.nbChildren[id]; });
  }
  quvex::Dag& getDag() { return quvex::ModelAccess::dagBuilder(*quvex.getModel())->getDag(); }
  /// The short sum whose shared operand lies `distance` behind the first of the long one, kNone if there is none.
  quvex::NodeId sumAt(std::uint32_t distance) {
    const quvex::NodeId wanted = getDag().child(longest, distance);
    for (const quvex::NodeId sum : sums) {
      if (sum != longest && std::ranges::count(getDag().fixed.childrenOf(sum), wanted) != 0) return sum;
    }
    return quvex::kNone;
  }
  const quvex::AutonomousStructure& structure() const { return *pool->getStructure(); }
  quvex::NodeId longest = quvex::kNone;

 private:
  quvex::Quvex quvex;
  std::unique_ptr<quvex::HeuristicPool> pool;
  std::vector<quvex::NodeId> sums;
};

/// The link between a sum of two operands and one of a million, by its distance in the long one.
void findLink(benchmark::State& state) {
  static LinkedSums model(1000001);
  quvex::NodeId sum = quvex::kNone;
  for (std::uint32_t off = 0; off < 3 && sum == quvex::kNone; ++off) {
    sum = model.sumAt(static_cast<std::uint32_t>(state.range(0)) - 1 + off);
  }
  if (sum == quvex::kNone) return state.SkipWithError("no sum is linked at this distance");
  quvex::RandomState random = 1;
  std::int64_t found = 0;
  for (auto _ : state) {
    if (model.structure().findLink(random, sum, model.longest, true, true) != quvex::kNone) ++found;
  }
  state.counters["found%"] = 100.0 * static_cast<double>(found) / static_cast<double>(state.iterations());
}

BENCHMARK(findLink)->RangeMultiplier(10)->Range(1, 1000000);
BENCHMARK(treeMemory)->RangeMultiplier(10)->Range(1000, 100000)->Iterations(1);

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  bench::findFilterStart(argc, argv);
  bench::registerAll("assignment", bench::assignment, 300, false);
  bench::registerAll("quadratic", bench::quadraticAssignment, 40, false);
  bench::registerAll("binpacking", bench::binPacking, 120, false);
  bench::registerAll("carsequencing", bench::carSequencing, 100, false);
  bench::registerAll("timetable", bench::timetable, 200, true);
  for (const std::uint32_t n : {1000U, 10000U, 100000U, 1000000U}) {
    bench::registerAll("covering", bench::covering, n, true);
  }
  bench::registerSolve("assignment", bench::assignment, 300);
  bench::registerSolve("quadratic", bench::quadraticAssignment, 40);
  bench::registerSolve("binpacking", bench::binPacking, 120);
  bench::registerSolve("carsequencing", bench::carSequencing, 100);
  bench::registerSolve("timetable", bench::timetable, 200);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
