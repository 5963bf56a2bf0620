#include "solver/kernel/heuristic.h"

#include <gtest/gtest.h>

#include <sstream>

#include "solver/kernel/dag.h"
#include "solver/kernel/heuristicautoannealing.h"
#include "solver/kernel/heuristicdescent.h"
#include "support/failure.h"
#include "support/flipmove.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

struct CountingCallback final : HeuristicCallback {
  int starts = 0;
  int ends = 0;
  int iterations = 0;
  void onStart() override { ++starts; }
  void onEnd() override { ++ends; }
  void onIteration() override { ++iterations; }
};

/// Items of values 1, 2, 4, 8 to be chosen for the greatest value, at most two of them.
struct FourItems : testing::Test {
  GraphBuilder graph;
  std::vector<NodeId> x = graph.booleans(4);
  NodeId idle = graph.boolean();
  NodeId count = graph.add(NodeType::Sum, x);
  NodeId limit = graph.add(NodeType::Leq, {count, graph.constant(2)});
  NodeId value = graph.add(NodeType::ScalarSum, x, {1, 2, 4, 8});
  Dag* dag = nullptr;
  RandomState state = 1;

  void SetUp() override {
    graph.constraint(limit);
    graph.maximise(value);
    dag = &graph.build();
  }
  FlipMove& addScript(Heuristic& heuristic, std::vector<std::vector<NodeId>> flips) {
    auto move = std::make_unique<FlipMove>(*dag, state, std::move(flips));
    FlipMove& added = *move;
    heuristic.addMove(std::move(move));
    return added;
  }
};

TEST_F(FourItems, NeedsAnInitialisedDagWithAnObjective) {
  Dag raw(graph.fixed);
  EXPECT_EQ(failureOf([&] { HeuristicDescent heuristic(raw); }),
            refusal("Heuristic::Heuristic", "The dag must be initialized before creating a heuristic"));
  DagFixedFields empty;
  empty.init();
  Dag without(empty);
  without.initialized = true;
  EXPECT_EQ(failureOf([&] { HeuristicDescent heuristic(without); }),
            refusal("Heuristic::Heuristic", "At least one objective is needed."));
}

TEST_F(FourItems, RefusesWhatIsNotThere) {
  HeuristicDescent heuristic(*dag);
  EXPECT_EQ(failureOf([&] { (void)heuristic.getMove(0); }),
            refusal("Heuristic::getMove", "The asked move (idx 0) is not in the pool"));
  EXPECT_EQ(failureOf([&] { heuristic.setObjectiveBound(1, 0); }),
            refusal("Heuristic::setObjectiveBound", "Bad argument."));
  EXPECT_EQ(failureOf([&] { heuristic.setOptimizedObjective(1); }),
            refusal("Heuristic::setOptimizedObjective", "The given objective index is invalid"));
  EXPECT_EQ(failureOf([&] { heuristic.run(); }), refusal("Heuristic::run", "At least one move is needed"));
}

TEST_F(FourItems, RunsToItsIterationLimitAndTellsItsCallbacks) {
  HeuristicDescent heuristic(*dag);
  addScript(heuristic, {{x[0]}, {x[3]}, {x[2]}, {x[0], x[2]}, {}});
  CountingCallback callback;
  heuristic.addCallback(&callback);
  heuristic.setIterationLimit(6);
  heuristic.run();
  EXPECT_EQ(heuristic.iterations, 6U);
  EXPECT_EQ(callback.starts, 1);
  EXPECT_EQ(callback.ends, 1);
  EXPECT_EQ(callback.iterations, 6);
  // The first attempt makes the start feasible for the objective; the third breaks the limit.
  EXPECT_EQ(dag->nodeValue[value], 12);
  EXPECT_EQ(heuristic.bestSolution.objectives[0], 12);
  const Move& move = heuristic.getMove(0);
  EXPECT_EQ(move.nbAttempted, 6U);
  EXPECT_EQ(move.nbImprovements, 3U);
  EXPECT_EQ(move.nbInfeasibles, 3U);
  heuristic.removeCallback(&callback);
  heuristic.run();
  EXPECT_EQ(callback.starts, 1);
}

TEST_F(FourItems, KeepsAMoveOfWeightZeroOutOfTheDraw) {
  HeuristicDescent heuristic(*dag);
  FlipMove& idle = addScript(heuristic, {{x[0]}});
  addScript(heuristic, {{x[1]}, {}});
  idle.poolWeight = 0;
  heuristic.setIterationLimit(20);
  heuristic.run();
  EXPECT_EQ(idle.nbAttempted, 0U);
  EXPECT_EQ(heuristic.pool.size(), 1U);
  std::ostringstream table;
  heuristic.printMoveTable(table);
  EXPECT_EQ(table.str(),
            "Heur. stats              moves  accepted  improved    infeas    rate\n"
            "  Script                     0         0         0         0       0\n"
            "  Script                    20         1         1        19       1\n");
  std::ostringstream totals;
  heuristic.printTotals(totals);
  EXPECT_EQ(totals.str(), "attempted =20\naccepted =1\nimproved =1\ninfeasibles =19\n");
}

TEST_F(FourItems, EndsAtOnceWhenAllWeightsAreZero) {
  HeuristicDescent heuristic(*dag);
  addScript(heuristic, {{x[0]}}).poolWeight = 0;
  heuristic.run();
  EXPECT_EQ(heuristic.iterations, 0U);
}

TEST_F(FourItems, EndsAtAnObjectiveBoundOnceAllConstraintsAreActive) {
  HeuristicDescent heuristic(*dag);
  addScript(heuristic, {{x[2]}, {}});
  heuristic.setObjectiveBound(0, 4);
  heuristic.setIterationLimit(10);
  heuristic.run();
  EXPECT_EQ(heuristic.iterations, 1U);
}

/// Lets seconds pass without waiting for them: the run began that much earlier.
struct ClockShift final : HeuristicCallback {
  Heuristic& heuristic;
  std::uint64_t atIteration;
  std::int64_t seconds;
  ClockShift(Heuristic& shifted, std::uint64_t iteration, std::int64_t by)
      : heuristic(shifted), atIteration(iteration), seconds(by) {
    heuristic.addCallback(this);
  }
  void onStart() override {}
  void onEnd() override {}
  void onIteration() override {
    if (heuristic.iterations == atIteration) heuristic.startTime -= seconds;
  }
};

TEST_F(FourItems, EndsWhenTheSecondsOfItsTimeLimitHavePassed) {
  HeuristicDescent heuristic(*dag);
  addScript(heuristic, {{}});
  heuristic.setTimeLimit(1000);
  const ClockShift shift(heuristic, 7, 1000);
  heuristic.run();
  EXPECT_EQ(heuristic.iterations, 7U);
}

TEST_F(FourItems, EstimatesItsIterationsAtMidTimeAndEndsAnnealingInTheLastTenth) {
  HeuristicAutoAnnealing heuristic(*dag);
  heuristic.nbImprovements = 10;  // enough for annealing
  addScript(heuristic, {{}});
  heuristic.setTimeLimit(6000);
  heuristic.setIterationLimit(12000);
  const ClockShift shift(heuristic, 20, 3001);
  heuristic.run();
  EXPECT_EQ(heuristic.expectedIterations, 12000U);
  EXPECT_FALSE(heuristic.annealing);  // the last tenth was reached

  HeuristicAutoAnnealing unlimited(*dag);
  unlimited.nbImprovements = 10;
  addScript(unlimited, {{}});
  unlimited.setTimeLimit(6000);
  // At iteration 9003 half of the time is over: 9003 / 3002 iterations a second, for 6000 seconds.
  const ClockShift half(unlimited, 9003, 3001);
  const ClockShift all(unlimited, 9010, 6000);
  unlimited.run();
  EXPECT_EQ(unlimited.expectedIterations, 2U * 6000U);
  EXPECT_TRUE(unlimited.annealing);  // stopped by the clock before the last tenth
}

TEST_F(FourItems, KeepsItsSumsWhenTheMemoryChangesItsSize) {
  HeuristicAutoAnnealing heuristic(*dag);
  addScript(heuristic, {{x[2]}, {x[3]}, {}});
  heuristic.setIterationLimit(2);
  heuristic.run();
  const double sum = heuristic.recentSums[0];
  heuristic.setMemorySize(5);
  EXPECT_EQ(heuristic.getMemorySize(), 5U);
  EXPECT_EQ(heuristic.recentSums[0], sum);
}

TEST(Heuristic, EndsByItselfAtTheComputedBound) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.constraint(graph.add(NodeType::Or, {x, graph.constant(1)}));
  graph.maximise(x);
  Dag& dag = graph.build();
  RandomState state = 1;
  HeuristicDescent heuristic(dag);
  heuristic.addMove(std::make_unique<FlipMove>(dag, state, std::vector<std::vector<NodeId>>{{x}}));
  heuristic.run();  // no limit at all; the constraint is activated behind the first move
  EXPECT_EQ(heuristic.iterations, 1U);
  EXPECT_EQ(dag.nodeValue[x], 1);
}

TEST(Heuristic, EndsAtItsBoundOnceARejectedMoveHasActivatedTheConstraints) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.constraint(graph.add(NodeType::Or, {x, graph.constant(1)}));
  graph.minimise(x);
  Dag& dag = graph.build();
  ASSERT_FALSE(dag.propagation.allConstraintsActive());
  RandomState state = 1;
  HeuristicDescent heuristic(dag);
  heuristic.addMove(std::make_unique<FlipMove>(dag, state, std::vector<std::vector<NodeId>>{{x}}));
  heuristic.setIterationLimit(25);
  heuristic.run();
  EXPECT_EQ(heuristic.iterations, 1U);
  EXPECT_EQ(dag.nodeValue[x], 0);
}

TEST(Heuristic, SearchesWithoutTheObjectivesBehindTheOptimisedOne) {
  GraphBuilder graph;
  const auto x = graph.booleans(3);
  const NodeId whole = graph.integer();
  const NodeId first = graph.add(NodeType::Sum, {whole, x[0]});
  const NodeId third = graph.add(NodeType::Sum, {whole, x[2]});
  for (const NodeId objective : {first, x[1], third}) graph.maximise(objective);
  Dag& dag = graph.build();
  commitValues(dag, {{x[1], 1}});
  RandomState state = 1;
  HeuristicDescent heuristic(dag);
  heuristic.setOptimizedObjective(0);
  // Better in the first, then better in the second, then worse in the third: only the first counts.
  heuristic.addMove(
      std::make_unique<FlipMove>(dag, state, std::vector<std::vector<NodeId>>{{x[0], x[1], x[2]}, {x[1]}, {x[2]}}));
  heuristic.setIterationLimit(3);
  heuristic.run();
  EXPECT_EQ(heuristic.getMove(0).nbAccepted, 3U);
  EXPECT_EQ(heuristic.getMove(0).nbImprovements, 1U);
  EXPECT_EQ(heuristic.bestSolution.objectives, (std::vector<t_value>{1, 0, 1}));
  EXPECT_EQ(dag.nodeValue[x[2]], 0);
  EXPECT_EQ(dag.nodeValue[third], 1) << "of the last recorded solution, and not evaluated since";

  // A comparison looks at all of them, the second before the third.
  const Solution last(dag);
  EXPECT_EQ(last.objectives, (std::vector<t_value>{1, 1, 0}));
  EXPECT_EQ(last.compare(heuristic.bestSolution), 1);
  EXPECT_EQ(heuristic.bestSolution.compare(last), -1);
  commitValues(dag, {{x[2], 1}});
  const Solution better(dag);
  EXPECT_EQ(better.compare(last), 1) << "the third alone";
}

TEST(Heuristic, GoesOnPastItsBoundsWhileAConstraintIsInactive) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId never = graph.add(NodeType::And, {x, graph.add(NodeType::Not, {x})});
  graph.constraint(never);
  graph.minimise(graph.constant(0));
  Dag& dag = graph.build();
  RandomState state = 1;
  HeuristicDescent heuristic(dag);
  heuristic.addMove(std::make_unique<FlipMove>(dag, state, std::vector<std::vector<NodeId>>{{x}}));
  heuristic.setIterationLimit(25);
  heuristic.run();
  EXPECT_EQ(heuristic.iterations, 25U);
}

/// y must be set; two objectives.
struct InfeasibleStart : testing::Test {
  GraphBuilder graph;
  NodeId x = graph.boolean();
  NodeId y = graph.boolean();
  NodeId z = graph.boolean();
  NodeId both = graph.add(NodeType::Sum, {y, z});
  NodeId first = graph.add(NodeType::Not, {x});
  NodeId second = graph.add(NodeType::Sum, {x, x});
  Dag* dag = nullptr;
  RandomState state = 1;

  void SetUp() override {
    graph.constraint(graph.add(NodeType::Geq, {both, graph.constant(2)}));
    graph.minimise(first);
    graph.minimise(second);
    dag = &graph.build();
  }
};

TEST_F(InfeasibleStart, StaysAtLevelZero) {
  HeuristicDescent heuristic(*dag);
  dag->setOptimizedLevel(0);
  dag->nodeValue[second] = dag->tentativeValue[second] = 77;  // a recomputation would repair it
  heuristic.setOptimizedObjective(0);
  EXPECT_EQ(dag->propagation.optimizedLevel, 0U);
  EXPECT_EQ(dag->nodeValue[second], 77);
}

TEST_F(InfeasibleStart, JudgesByViolationAloneAndIsPromotedWhenFeasible) {
  HeuristicDescent heuristic(*dag);
  heuristic.setOptimizedObjective(1);
  auto script = std::make_unique<FlipMove>(*dag, state, std::vector<std::vector<NodeId>>{{x}, {y}, {z}, {x}, {y}});
  Move& move = *script;
  heuristic.addMove(std::move(script));
  heuristic.setIterationLimit(2);
  heuristic.run();
  EXPECT_EQ(move.nbAccepted, 2U);      // flipping x worsens nothing: accepted
  EXPECT_EQ(move.nbImprovements, 1U);  // setting y lowers the violation
  EXPECT_EQ(dag->propagation.optimizedLevel, 0U);
  heuristic.setIterationLimit(1);
  heuristic.run();
  EXPECT_EQ(dag->propagation.optimizedLevel, 2U);
  EXPECT_TRUE(dag->propagation.allConstraintsActive());
  EXPECT_EQ(dag->nodeValue[second], 2);  // recomputed on the way up
  heuristic.setIterationLimit(2);
  heuristic.run();
  EXPECT_EQ(move.nbRejected, 1U);     // unsetting x: the first objective gets worse
  EXPECT_EQ(move.nbInfeasibles, 1U);  // unsetting y breaks an active constraint
}

TEST_F(InfeasibleStart, EndsAnUnbuiltAttemptWithoutPromotion) {
  HeuristicAutoAnnealing heuristic(*dag);
  heuristic.setOptimizedObjective(1);
  commitValues(*dag, {{y, 1}, {z, 1}});  // feasible, but nothing is active yet
  heuristic.addMove(std::make_unique<FlipMove>(*dag, state, std::vector<std::vector<NodeId>>{{}}));
  heuristic.setIterationLimit(3);
  heuristic.run();
  EXPECT_EQ(heuristic.stagnation, 0U);
  EXPECT_FALSE(dag->propagation.allConstraintsActive());
}

TEST_F(FourItems, StopsWhenAskedAtTheNextTest) {
  struct Stopper final : HeuristicCallback {
    Heuristic* heuristic = nullptr;
    void onStart() override {}
    void onEnd() override {}
    void onIteration() override { heuristic->stopRequested = heuristic->iterations == 3; }
  } stopper;
  HeuristicDescent heuristic(*dag);
  stopper.heuristic = &heuristic;
  heuristic.addCallback(&stopper);
  addScript(heuristic, {{}});
  heuristic.run();
  EXPECT_EQ(heuristic.iterations, 3U);
}

TEST_F(FourItems, ResetsCountersAndLimitsButNotTheBest) {
  HeuristicDescent heuristic(*dag);
  addScript(heuristic, {{x[3]}, {}});
  heuristic.setIterationLimit(2);
  heuristic.run();
  heuristic.resetPhase();
  EXPECT_EQ(heuristic.getMove(0).nbAttempted, 0U);
  EXPECT_EQ(heuristic.bestSolution.objectives[0], 8);
}

TEST_F(FourItems, NeverCommitsAWorseStateInADescent) {
  HeuristicDescent heuristic(*dag);
  FlipMove& move = addScript(heuristic, {{x[0]}, {x[3]}, {x[3]}, {x[0]}, {x[1], x[0]}, {x[3]}});
  t_value last = 0;
  move.beforeApply = [&] {
    EXPECT_GE(dag->nodeValue[value], last);
    last = dag->nodeValue[value];
  };
  heuristic.setIterationLimit(40);
  heuristic.run();
  EXPECT_EQ(last, 10);
}

TEST_F(FourItems, RunsAsADescentUntilTheMemoryIsFull) {
  HeuristicAutoAnnealing heuristic(*dag);
  heuristic.setMemorySize(2);
  // Two improvements, then a worsening: the descent refuses the first worsening only while the memory is not full.
  addScript(heuristic, {{x[2]}, {x[2]}, {x[3]}, {}});
  heuristic.setIterationLimit(2);
  heuristic.run();
  EXPECT_EQ(heuristic.nbImprovements, 1U);
  EXPECT_FALSE(heuristic.annealing);
  EXPECT_EQ(dag->nodeValue[value], 4);
  heuristic.setIterationLimit(2);
  heuristic.run();
  EXPECT_EQ(heuristic.nbImprovements, 2U);
  EXPECT_TRUE(heuristic.annealing);
  EXPECT_EQ(heuristic.recentSums[0], 4.0 + 12.0);
}

/// Maximises `value` from a state of 12 (best), with a ring that holds 4 and 12, so an average of 8.
struct Annealed : FourItems {
  std::unique_ptr<HeuristicAutoAnnealing> heuristic;
  FlipMove* script = nullptr;

  void SetUp() override {
    FourItems::SetUp();
    heuristic = std::make_unique<HeuristicAutoAnnealing>(*dag);
    script = &addScript(*heuristic, {{x[2]}, {x[3]}, {}});
    heuristic->setIterationLimit(2);
    heuristic->run();
    ASSERT_EQ(dag->nodeValue[value], 12);
    ASSERT_TRUE(heuristic->annealing);
  }
  /// One attempt that flips these decisions, with the acceptance draw made from `seed`.
  void attempt(const std::vector<NodeId>& flips, std::uint32_t seed) {
    script->play({flips});
    heuristic->seed = seed;
    heuristic->setIterationLimit(1);
    heuristic->run();
  }
};

TEST_F(Annealed, RefusesWhatIsWorseThanTheRecentAverageWithoutADraw) {
  attempt({x[3]}, 0);  // 4, below the average of 8
  EXPECT_EQ(heuristic->nbAnnealed, 0U);
  EXPECT_EQ(dag->nodeValue[value], 12);
}

TEST_F(Annealed, AcceptsByTheDistanceFromTheBest) {
  // 8 is the average itself: accepted on a draw below 1%, which seed 0 does not give.
  attempt({x[2]}, 0);
  EXPECT_EQ(dag->nodeValue[value], 12);
  RandomState seed = 0;
  for (RandomState next = seed; randomStep(next), realOf(next) > 0.009; next = seed) ++seed;
  attempt({x[2]}, seed);
  EXPECT_EQ(heuristic->nbAnnealed, 1U);
  EXPECT_EQ(dag->nodeValue[value], 8);
  EXPECT_EQ(heuristic->bestSolution.objectives[0], 12);
}

TEST_F(Annealed, LetsAValueWithinTheToleranceOfTheAverageGoOnToTheDraw) {
  heuristic->recentSums[0] = 2 * (8.0 + 1e-6);  // the average lies a hair above 8
  RandomState seed = 0;
  for (RandomState next = seed; randomStep(next), realOf(next) > 0.009; next = seed) ++seed;
  attempt({x[2]}, seed);
  EXPECT_EQ(heuristic->nbAnnealed, 1U);
}

TEST_F(Annealed, AcceptsTheBestValueAgainWithoutCallingItAnImprovement) {
  attempt({idle}, 0);
  EXPECT_EQ(dag->nodeValue[idle], 1);
  EXPECT_EQ(script->nbAccepted, 3U);
  EXPECT_EQ(script->nbImprovements, 2U);
  EXPECT_EQ(heuristic->nbImprovements, 2U);
}

TEST_F(Annealed, GoesBackToADescentAfterALongStagnation) {
  heuristic->maxStagnation = 2;
  heuristic->stagnation = 3;
  attempt({x[2]}, 0);
  EXPECT_FALSE(heuristic->annealing);
  EXPECT_EQ(heuristic->stagnation, 4U);
}

}  // namespace
}  // namespace quvex
