#include "solver/move/simulatedrepair.h"

#include <gtest/gtest.h>

#include "support/treegraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

bool neverTransfer() { return false; }

TEST(SimulatedRepair, RaisesTheMostConstrainedFirst) {
  // Three violated "or"s with 4, 2 and 2 ways out: one of the two short ones, the first on the round.
  TreeGraph graph;
  const Ids x = graph.booleans(8);
  const NodeId wide = graph.require(NodeType::Or, {x[0], x[1], x[2], x[3]});
  const NodeId first = graph.require(NodeType::Or, {x[4], x[5]});
  const NodeId second = graph.require(NodeType::Or, {x[6], x[7]});
  graph.grow();
  ASSERT_EQ(graph.violated(), (Ids{wide, first, second}));
  for (const RandomState seed : someSeeds(30)) {
    SimulatedRepair repair(2, 2, 1, *graph.structure);
    RandomState expected = seed;
    const std::uint32_t start = rand(expected, 3);
    const NodeId chosen = start == 2 ? x[6 + rand(expected, 2)] : x[4 + rand(expected, 2)];
    graph.state() = seed;
    EXPECT_TRUE(repair.repairStep());
    EXPECT_EQ(graph.flipped(), Ids{chosen});
    EXPECT_EQ(graph.state(), expected);
    graph.restart();
  }
}

TEST(SimulatedRepair, GivesUpWhenOneViolatedConstraintHasNoWayOut) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  graph.require(NodeType::Or, x);
  const NodeId hopeless = graph.require(NodeType::Geq, {graph.constant(0), graph.constant(1)});
  graph.grow();
  EXPECT_EQ(graph.at(hopeless).nbRaisable(), 0U);
  SimulatedRepair repair(2, 2, 1, *graph.structure);
  graph.state() = 5;
  EXPECT_FALSE(repair.repairStep());
  EXPECT_TRUE(graph.flipped().empty());
  EXPECT_EQ(graph.state(), stepped(5, 1)) << "the place of the round alone";
}

TEST(SimulatedRepair, LooksAtASingleViolatedConstraintWithoutADraw) {
  TreeGraph graph;
  const NodeId x = graph.boolean();
  graph.constraint(x);
  graph.grow();
  SimulatedRepair repair(2, 2, 1, *graph.structure);
  graph.state() = 5;
  EXPECT_TRUE(repair.repairStep());
  EXPECT_EQ(graph.flipped(), Ids{x});
  EXPECT_EQ(graph.state(), 5U);
}

/// Two sums with upper limits that share decisions 2 and 3.
class SharingSums : public TreeGraph {
 public:
  Ids x = booleans(6);
  NodeId a = add(NodeType::BooleanSum, {x[0], x[1], x[2], x[3]});
  NodeId b = add(NodeType::BooleanSum, {x[2], x[3], x[4], x[5]});
  NodeId limitA = require(NodeType::Geq, {a, constant(3)});
  NodeId limitB = require(NodeType::Geq, {b, constant(3)});
};

TEST(SimulatedRepair, FlipsADecisionThatBothNodesShare) {
  SharingSums graph;
  graph.grow();
  SimulatedRepair repair(2, 2, 1, *graph.structure);
  for (const RandomState seed : someSeeds(10)) {
    RandomState expected = seed;
    randomStep(expected);  // the side of each comparison, though one of them is constant
    randomStep(expected);
    randomStep(expected);  // the place in the list of the first sum
    graph.state() = seed;
    EXPECT_TRUE(repair.flipShared({&graph.at(graph.limitA)}, {&graph.at(graph.limitB)}));
    EXPECT_EQ(graph.flipped(), Ids{graph.x[2]}) << "the first in common";
    EXPECT_EQ(graph.state(), expected);

    // It is flipped now, and can't be once more.
    EXPECT_FALSE(repair.flipShared({&graph.at(graph.limitA)}, {&graph.at(graph.limitB)}));
    EXPECT_EQ(graph.flipped(), Ids{graph.x[2]});
    graph.structure->undoFlips();
  }
}

TEST(SimulatedRepair, FindsNothingWhereNothingIsShared) {
  TreeGraph graph;
  const Ids x = graph.booleans(4);
  const NodeId a = graph.require(NodeType::Or, {x[0], x[1]});
  const NodeId b = graph.require(NodeType::Or, {x[2], x[3]});
  graph.grow();
  SimulatedRepair repair(2, 2, 1, *graph.structure);
  graph.state() = 5;
  EXPECT_FALSE(repair.flipShared({&graph.at(a)}, {&graph.at(b)}));
  EXPECT_EQ(graph.state(), stepped(5, 1));
  EXPECT_TRUE(graph.flipped().empty());
}

TEST(SimulatedRepair, StopsWhereADescentIsRefused) {
  SharingSums graph;
  graph.grow();
  graph.commitAll(graph.x, 1);
  SimulatedRepair repair(2, 2, 1, *graph.structure);
  graph.state() = 5;
  EXPECT_FALSE(repair.flipShared({&graph.at(graph.limitA)}, {&graph.at(graph.limitB)})) << "both hold and can't rise";
  EXPECT_EQ(graph.state(), 5U);
}

TEST(SimulatedRepair, NeedsAWayInTheDirectionOfBothFlatNodes) {
  SharingSums graph;
  graph.grow();
  SimulatedRepair repair(2, 2, 1, *graph.structure);
  graph.state() = 5;
  EXPECT_FALSE(repair.flipShared({&graph.at(graph.a), Direction::Up}, {&graph.at(graph.b), Direction::Down}));
  EXPECT_FALSE(repair.flipShared({&graph.at(graph.a), Direction::Down}, {&graph.at(graph.b), Direction::Up}));
  EXPECT_EQ(graph.state(), 5U) << "no operand of either sum can fall";
  EXPECT_TRUE(repair.flipShared({&graph.at(graph.a), Direction::Up}, {&graph.at(graph.b), Direction::Up}));
  EXPECT_EQ(graph.state(), stepped(5, 1));
}

TEST(SimulatedRepair, MatchesADecisionWithASum) {
  SharingSums graph;
  graph.grow();
  SimulatedRepair repair(2, 2, 1, *graph.structure);
  const auto flips = [&](NodeId one, Direction oneSide, NodeId other, Direction otherSide) {
    graph.state() = 5;
    const bool flipped = repair.flipShared({&graph.at(one), oneSide}, {&graph.at(other), otherSide});
    EXPECT_EQ(graph.state(), 5U) << "no draw";
    EXPECT_EQ(graph.flipped().size(), flipped ? 1U : 0U);
    graph.structure->undoFlips();
    return flipped;
  };
  constexpr Direction kUp = Direction::Up;
  constexpr Direction kDown = Direction::Down;
  EXPECT_TRUE(flips(graph.x[2], kUp, graph.b, kUp));
  EXPECT_TRUE(flips(graph.b, kUp, graph.x[2], kUp));
  EXPECT_TRUE(flips(graph.b, kDown, graph.x[2], kUp)) << "the sum's side is not asked";
  EXPECT_FALSE(flips(graph.x[2], kDown, graph.b, kUp)) << "the decision can't fall";
  EXPECT_FALSE(flips(graph.x[0], kUp, graph.b, kUp)) << "not in the sum";
  EXPECT_TRUE(flips(graph.x[0], kUp, graph.x[0], kUp));
  EXPECT_TRUE(flips(graph.x[0], kDown, graph.x[0], kDown)) << "one decision with itself, whatever the side";
  EXPECT_FALSE(flips(graph.x[0], kUp, graph.x[1], kUp));
}

TEST(SimulatedRepair, TakesANodeOverConstantsForADecision) {
  // Both lists of operands are empty, and the node is the same: it is asked to flip, and can't.
  TreeGraph graph;
  const NodeId x = graph.boolean();
  graph.constraint(x);
  const NodeId fixedNode = graph.require(NodeType::Or, {graph.constant(0), graph.constant(0)});
  graph.grow();
  SimulatedRepair repair(2, 2, 1, *graph.structure);
  EXPECT_FALSE(repair.flipShared({&graph.at(fixedNode)}, {&graph.at(fixedNode)}));
  EXPECT_EQ(repair.common, std::vector<StaticIndex>{graph.staticIndex(fixedNode)});
  EXPECT_FALSE(repair.flipShared({&graph.at(fixedNode)}, {&graph.at(x)}));
  EXPECT_TRUE(repair.common.empty());
}

/// Decisions that must all be 0, each for itself.
class Zeros : public TreeGraph {
 public:
  Ids x;

  explicit Zeros(std::uint32_t n) : x(booleans(n)) {
    for (const NodeId id : x) require(NodeType::Eq, {id, constant(0)});
    grow();
  }
};

TEST(SimulatedRepair, UndoesFlipsWhileThereAreTooManyAndTooManyViolations) {
  // Two flips, two violations, none at the start: one flip is undone, and the loop may go on.
  for (const RandomState seed : someSeeds(10)) {
    Zeros graph(3);
    graph.simulate(graph.x[0]);
    graph.simulate(graph.x[1]);
    SimulatedRepair repair(0, 2, 1, *graph.structure);
    RandomState expected = seed;
    const NodeId kept = rand(expected, 2) == 0 ? graph.x[1] : graph.x[0];
    randomStep(expected);  // the coin of a repair of the one that is violated still; it can't be flipped back
    graph.state() = seed;
    EXPECT_FALSE(repair.run(0, neverTransfer));
    EXPECT_EQ(graph.flipped(), Ids{kept});
    EXPECT_EQ(graph.state(), expected);
  }
}

TEST(SimulatedRepair, UndoesUntilFlipsOrViolationsAreFewEnough) {
  // One violated constraint at the start, which nothing repairs, and two that the flips broke; the third flip is
  // harmless. With the slack of 2 one violation too many is there: undoing a flip that broke something is enough.
  bool endsByViolations = false;
  bool endsByFlips = false;
  for (const RandomState seed : someSeeds(20)) {
    TreeGraph graph;
    const Ids x = graph.booleans(3);
    graph.require(NodeType::Geq, {graph.constant(0), graph.constant(1)});
    for (const NodeId id : {x[0], x[1]}) graph.require(NodeType::Eq, {id, graph.constant(0)});
    graph.require(NodeType::Leq, {x[2], graph.constant(1)});
    graph.grow();
    ASSERT_EQ(graph.violated().size(), 1U);
    for (const NodeId id : x) graph.simulate(id);
    ASSERT_EQ(graph.violated().size(), 3U);

    RandomState expected = seed;
    Ids kept = x;
    std::size_t nbViolated = 3;
    while (kept.size() >= 2 && nbViolated >= 3) {
      const std::size_t undone = rand(expected, static_cast<std::uint32_t>(kept.size()));
      if (kept[undone] != x[2]) --nbViolated;
      kept[undone] = kept.back();
      kept.pop_back();
    }
    (kept.size() == 2 ? endsByViolations : endsByFlips) = true;
    (void)rand(expected, static_cast<std::uint32_t>(nbViolated));  // the round of the one repair, which is hopeless

    SimulatedRepair repair(0, 2, 2, *graph.structure);
    graph.state() = seed;
    EXPECT_FALSE(repair.run(1, neverTransfer));
    EXPECT_EQ(graph.flipped(), kept);
    EXPECT_EQ(graph.violated().size(), nbViolated);
    EXPECT_EQ(graph.state(), expected);
  }
  EXPECT_TRUE(endsByViolations);
  EXPECT_TRUE(endsByFlips);
}

TEST(SimulatedRepair, KeepsFlipsBelowTheSlack) {
  Zeros graph(3);
  graph.simulate(graph.x[0]);
  graph.simulate(graph.x[1]);
  SimulatedRepair repair(0, 2, 3, *graph.structure);
  EXPECT_FALSE(repair.run(0, neverTransfer));
  EXPECT_EQ(graph.flipped().size(), 2U);
  SimulatedRepair few(0, 3, 1, *graph.structure);
  EXPECT_FALSE(few.run(0, neverTransfer));
  EXPECT_EQ(graph.flipped().size(), 2U) << "fewer flips than the limit";
}

TEST(SimulatedRepair, EndsWithoutFlips) {
  Zeros graph(2);
  graph.commit({{graph.x[0], 1}});
  SimulatedRepair repair(3, 2, 1, *graph.structure);
  graph.state() = 5;
  EXPECT_FALSE(repair.run(1, neverTransfer));
  EXPECT_EQ(graph.state(), 5U);

  graph.simulate(graph.x[1]);
  SimulatedRepair single(3, 1, 1, *graph.structure);
  EXPECT_FALSE(single.run(0, neverTransfer));
  EXPECT_TRUE(graph.flipped().empty()) << "the only flip was undone";
}

TEST(SimulatedRepair, EndsAtOnceWhenNothingIsViolated) {
  Zeros graph(2);
  graph.commit({{graph.x[0], 1}});
  graph.simulate(graph.x[0]);
  SimulatedRepair repair(3, 2, 1, *graph.structure);
  graph.state() = 5;
  ASSERT_TRUE(repair.run(1, neverTransfer));
  EXPECT_EQ(touched(*graph.dag), Ids{graph.x[0]});
  EXPECT_EQ(graph.dag->tentativeValue[graph.x[0]], 0);
  EXPECT_EQ(graph.state(), 5U);
}

TEST(SimulatedRepair, StopsAfterTooManyFailures) {
  // One violation that was caused by the only flip: each repair draws a coin and fails.
  Zeros graph(1);
  graph.simulate(graph.x[0]);
  SimulatedRepair repair(50, 9, 1, *graph.structure);
  EXPECT_EQ(repair.maxFailures, 10U);
  std::uint32_t nbTransfers = 0;
  graph.state() = 5;
  EXPECT_FALSE(repair.run(0, [&] {
    ++nbTransfers;
    return false;
  }));
  EXPECT_EQ(graph.state(), stepped(5, 11));
  EXPECT_EQ(nbTransfers, 10U) << "none in step 0";
}

TEST(SimulatedRepair, StopsAfterTheLastStep) {
  for (const std::uint32_t maxSteps : {0U, 1U, 4U}) {
    Zeros graph(1);
    graph.simulate(graph.x[0]);
    SimulatedRepair repair(maxSteps, 9, 1, *graph.structure);
    graph.state() = 5;
    EXPECT_FALSE(repair.run(0, neverTransfer));
    EXPECT_EQ(graph.state(), stepped(5, maxSteps + 1));
    std::uint32_t nbTransfers = 0;
    graph.state() = 5;
    EXPECT_FALSE(repair.run(0, [&] {
      ++nbTransfers;
      return true;
    }));
    EXPECT_EQ(nbTransfers, maxSteps);
    EXPECT_EQ(graph.state(), stepped(5, 1)) << "a transfer takes the place of a repair, except in step 0";
  }
}

TEST(SimulatedRepair, HandsOverOnlyWhatIsNoWorse) {
  Zeros graph(3);
  graph.commit({{graph.x[0], 1}, {graph.x[1], 1}});
  graph.simulate(graph.x[0]);
  graph.simulate(graph.x[2]);
  SimulatedRepair repair(0, 9, 9, *graph.structure);
  repair.maxFailures = 0;
  EXPECT_EQ(graph.structure->violatedNodes.count, 2U);
  ASSERT_TRUE(repair.run(2, neverTransfer)) << "one repaired, one broken, and the step repaired a third";
  EXPECT_EQ(touched(*graph.dag), graph.flipped());
  EXPECT_TRUE(touched(*graph.dag).size() >= 2);
  graph.dag->propagation.rollbackAll(*graph.dag);
  EXPECT_FALSE(repair.run(0, neverTransfer));
  EXPECT_TRUE(touched(*graph.dag).empty());
}

TEST(SimulatedRepair, UndoesTheSimulationOfWhatIsNotCommitted) {
  for (const Outcome outcome : {Outcome::Rejected, Outcome::Infeasible, Outcome::Accepted, Outcome::Improved}) {
    Zeros graph(2);
    graph.simulate(graph.x[0]);
    SimulatedRepair repair(2, 2, 1, *graph.structure);
    repair.conclude(outcome);
    const bool isUndone = outcome == Outcome::Rejected || outcome == Outcome::Infeasible;
    EXPECT_EQ(graph.flipped().empty(), isUndone);
    EXPECT_EQ(graph.violated().empty(), isUndone);
  }
}

}  // namespace
}  // namespace quvex
