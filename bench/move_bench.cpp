// One attempt of every move of the pool, judged as rejected so that the state stays, on models of different structure;
// and how the simulation's moves depend on the size of a covering model.
#include <benchmark/benchmark.h>

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

void registerAll(const std::string& label, const std::function<void(QVModel&, std::uint32_t)>& build, std::uint32_t n,
                 bool simulatedAlone) {
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

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  bench::registerAll("assignment", bench::assignment, 300, false);
  bench::registerAll("quadratic", bench::quadraticAssignment, 40, false);
  bench::registerAll("binpacking", bench::binPacking, 120, false);
  bench::registerAll("timetable", bench::timetable, 200, true);
  for (const std::uint32_t n : {1000U, 10000U, 100000U, 1000000U}) {
    bench::registerAll("covering", bench::covering, n, true);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
