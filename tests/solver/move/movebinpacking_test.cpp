#include "solver/move/movebinpacking.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/treegraph.h"
#include "support/treeoracle.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

TEST(MoveBinPacking, IsNamedAfterItsSteps) {
  TreeGraph model;
  model.constraint(model.boolean());
  Dag& dag = model.grow();
  const MoveBinPacking move(50, 4, 4, 2, *model.structure, dag);
  EXPECT_EQ(move.name, "4-BinPacking");
  EXPECT_EQ(move.poolWeight, 1U);
  EXPECT_EQ(move.costFactor(), 1.0 / 8.0);
}

TEST(MoveBinPacking, IsNotBuiltWithoutATree) {
  TreeGraph model;
  model.minimise(model.boolean());
  Dag& dag = model.grow();
  ASSERT_TRUE(model.structures.staticNodes.empty());
  MoveBinPacking move(50, 2, 2, 1, *model.structure, dag);
  model.state() = 5;
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
  move.conclude(Outcome::Infeasible);
  EXPECT_EQ(move.nbInfeasibles, 1U);
}

TEST(MoveBinPacking, WorksOnATreeOfOneNode) {
  // The start takes the one decision, and the anchor and the violated constraint are the same node.
  TreeGraph model;
  const NodeId x = model.boolean();
  model.constraint(x);
  Dag& dag = model.grow();
  MoveBinPacking move(0, 2, 2, 1, *model.structure, dag);
  model.state() = 5;
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{x});
  EXPECT_EQ(model.state(), 5U) << "nothing to choose from";
  EXPECT_TRUE(model.violated().empty());
  ASSERT_TRUE(move.evaluate());
  move.conclude(Outcome::Accepted);

  EXPECT_FALSE(move.apply()) << "it would be violated then, and can't be flipped back";
  move.conclude(Outcome::Infeasible);
  EXPECT_TRUE(model.violated().empty());
}

/// Up to three draws of one of n operands, until it is `operand`: how a node over decisions moves one of them when no
/// other can.
bool drawsOperand(RandomState& state, std::uint32_t n, std::uint32_t operand) {
  for (int i = 0; i < 3; ++i) {
    if (rand(state, n) == operand) return true;
  }
  return false;
}

/// Three decisions below a disjunction, two of them true. Its static index is 3.
class Disjunction : public TreeGraph {
 public:
  Ids x = booleans(3);
  NodeId any = require(NodeType::Or, x);

  Disjunction() { grow({{x[0], 1}, {x[1], 1}}); }

  /// What an attempt of two flips from a random start hands over. A decision flips once; the disjunction loses both its
  /// true operands, and one of these flips is undone.
  [[nodiscard]] Ids randomAttempt(RandomState& state) const {
    const StaticIndex anchor = rand(state, 4);
    if (anchor < 3) return {x[anchor]};
    const std::uint32_t first = rand(state, 2);
    const bool isFirstUndone = rand(state, 2) == 0;
    return {x[isFirstUndone ? 1 - first : first]};
  }
};

TEST(MoveBinPacking, HandsItsFlipsOverWhenNothingBreaks) {
  // Unlike an ejection chain it pushes a true node further.
  Disjunction model;
  MoveBinPacking move(0, 2, 2, 1, *model.structure, *model.dag);
  std::set<StaticIndex> anchors;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const Ids flips = model.randomAttempt(expected);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(*model.dag), flips);
    EXPECT_EQ(model.state(), expected) << "no percentage for a rate of 0";
    EXPECT_TRUE(model.violated().empty());
    move.conclude(Outcome::Rejected);
    EXPECT_EQ(model.at(model.any).value(), 1);
    RandomState probe = seed;
    anchors.insert(rand(probe, 4));
  }
  EXPECT_EQ(anchors.size(), 4U);
}

TEST(MoveBinPacking, DrawsThePercentageOfARateOf100ThoughNothingIsTargeted) {
  // The constraint holds and the objective is on its bound: every attempt starts at random behind its percentage.
  Disjunction model;
  Dag& dag = *model.dag;
  MoveBinPacking move(100, 2, 2, 1, *model.structure, dag);
  NodeId target = kNone;
  ASSERT_FALSE(pickTarget(dag, model.state(), target));
  constexpr Outcome kOutcomes[] = {Outcome::Rejected, Outcome::Infeasible, Outcome::Accepted, Outcome::Improved};
  const std::vector<t_value> start = dag.nodeValue;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = stepped(seed, 1);
    const Ids flips = model.randomAttempt(expected);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), flips);
    EXPECT_EQ(model.state(), expected);
    const Outcome outcome = kOutcomes[move.nbAttempted % 4];
    const bool isCommitted = outcome == Outcome::Accepted || outcome == Outcome::Improved;
    ASSERT_TRUE(move.evaluate());
    move.conclude(outcome);
    EXPECT_EQ(dag.nodeValue == start, !isCommitted);
    EXPECT_TRUE(model.flipped().empty());
    if (isCommitted) model.commit({{flips[0], start[flips[0]]}});
  }
  EXPECT_EQ(move.nbAttempted, 60U);
  EXPECT_EQ(move.nbRejected, 15U);
  EXPECT_EQ(move.nbInfeasibles, 15U);
  EXPECT_EQ(move.nbAccepted, 30U);
  EXPECT_EQ(move.nbImprovements, 15U);
}

TEST(MoveBinPacking, CountsAttemptsThatFailBehindAVainTarget) {
  // A violated constraint without any decision is targeted in vain, and no repair ever ends.
  TreeGraph model;
  const NodeId x = model.boolean();
  model.require(NodeType::Eq, {x, model.constant(0)});
  model.require(NodeType::Geq, {model.constant(0), model.constant(1)});
  Dag& dag = model.grow();
  ASSERT_EQ(model.violated().size(), 1U);
  MoveBinPacking targeted(100, 2, 2, 1, *model.structure, dag);
  MoveBinPacking untargeted(0, 2, 2, 1, *model.structure, dag);
  for (const RandomState seed : someSeeds(30)) {
    RandomState afterTarget = stepped(seed, 1);
    NodeId target = kNone;
    ASSERT_FALSE(pickTarget(dag, afterTarget, target));
    model.state() = afterTarget;
    EXPECT_FALSE(untargeted.apply());
    untargeted.conclude(Outcome::Infeasible);
    const RandomState expected = model.state();
    model.state() = seed;
    EXPECT_FALSE(targeted.apply());
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(touched(dag).empty());
    targeted.conclude(Outcome::Infeasible);
    EXPECT_TRUE(model.flipped().empty());
  }
  EXPECT_EQ(targeted.nbAttempted, 30U);
  EXPECT_EQ(targeted.nbInfeasibles, 30U);
  EXPECT_EQ(targeted.nbRejected + targeted.nbAccepted + targeted.nbImprovements, 0U);
}

TEST(MoveBinPacking, RepairsTheAnchorThatItsThreeFlipsBroke) {
  // Two flips take the true operands of the disjunction, the third raises any operand: only the last can rise.
  Disjunction model;
  MoveBinPacking move(0, 2, 3, 1, *model.structure, *model.dag);
  int nbAtOnce = 0;
  int nbRepaired = 0;
  int nbFailed = 0;
  for (const RandomState seed : someSeeds(400)) {
    RandomState expected = seed;
    if (rand(expected, 4) != 3) continue;
    const std::uint32_t first = rand(expected, 2);
    bool isWhole = rand(expected, 3) == 2;
    if (isWhole) ++nbAtOnce;
    for (int step = 0; step <= 2 && !isWhole; ++step) {
      // The anchor is the violated node, too, and what it has in common with itself begins with a changed decision.
      if (step > 0) randomStep(expected);
      isWhole = drawsOperand(expected, 3, 2);
      if (isWhole) ++nbRepaired;
    }
    model.state() = seed;
    EXPECT_EQ(move.apply(), isWhole);
    EXPECT_EQ(touched(*model.dag), isWhole ? (Ids{model.x[first], model.x[1 - first], model.x[2]}) : Ids{});
    EXPECT_EQ(model.state(), expected);
    if (!isWhole) ++nbFailed;
    move.conclude(Outcome::Rejected);
    EXPECT_EQ(model.at(model.any).value(), 1);
  }
  EXPECT_GT(nbAtOnce, 0);
  EXPECT_GT(nbRepaired, 0);
  EXPECT_GT(nbFailed, 0);
}

TEST(MoveBinPacking, PushesASideThatIsAtItsEndBeforeItTakesTheOther) {
  // The disjunction is raised through its comparison: its right side is full, which costs a draw of what to push there
  // in vain, and then its left side falls.
  TreeGraph model;
  const Ids x = model.booleans(3);
  const Ids y = model.booleans(2);
  const NodeId left = model.add(NodeType::BooleanSum, x);
  const NodeId right = model.add(NodeType::BooleanSum, y);
  const NodeId any = model.require(NodeType::Or, {model.add(NodeType::Leq, {left, right})});
  Dag& dag = model.grow({{x[0], 1}, {x[1], 1}, {x[2], 1}, {y[0], 1}, {y[1], 1}});
  ASSERT_EQ(model.violated(), Ids{any});
  MoveBinPacking move(0, 2, 1, 1, *model.structure, dag);
  int nbPushed = 0;
  for (const RandomState seed : someSeeds(200)) {
    RandomState expected = seed;
    if (rand(expected, 9) != model.staticIndex(any)) continue;
    if (coin(expected)) {
      (void)rand(expected, 2);
      ++nbPushed;
    }
    const NodeId fallen = x[rand(expected, 3)];
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), Ids{fallen});
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(model.violated().empty());
    move.conclude(Outcome::Rejected);
  }
  EXPECT_GT(nbPushed, 0);
}

/// Items over bins: each item in exactly one bin, bins limited. Item i starts in bin 0.
class PackingModel : public TreeGraph {
 public:
  std::vector<Ids> x;
  Ids itemTies;
  Ids binLimits;

  PackingModel(std::uint32_t nbItems, std::uint32_t nbBins, std::int64_t capacity) {
    for (std::uint32_t i = 0; i < nbItems; ++i) x.push_back(booleans(nbBins));
    for (const Ids& row : x) itemTies.push_back(require(NodeType::Eq, {booleanSum(row), constant(1)}));
    for (std::uint32_t j = 0; j < nbBins; ++j) {
      Ids column;
      for (const Ids& row : x) column.push_back(row[j]);
      binLimits.push_back(require(NodeType::Leq, {booleanSum(column), constant(capacity)}));
    }
    Values values;
    for (const Ids& row : x) values.emplace_back(row[0], 1);
    grow(values);
  }
};

TEST(MoveBinPacking, TakesFromAFullBin) {
  PackingModel model(4, 2, 2);
  Dag& dag = *model.dag;
  ASSERT_EQ(model.violated(), Ids{model.binLimits[0]});
  TreeOracle oracle(*model.structure);
  MoveBinPacking move(50, 4, 4, 2, *model.structure, dag);
  for (int i = 0; i < 2000 && dag.propagation.committedNbViolated > 0; ++i) {
    if (!move.apply() || !move.evaluateLevel(0) || move.constraintsWorse()) {
      move.conclude(Outcome::Infeasible);
    } else {
      EXPECT_EQ(dag.propagation.tentativeNbViolated, static_cast<std::int64_t>(model.violated().size()));
      move.conclude(Outcome::Accepted);
    }
    oracle.expectAgreement();
  }
  EXPECT_EQ(dag.propagation.committedNbViolated, 0);
  EXPECT_GT(move.nbAccepted, 0U);
}

/// A disjunction and a limit above one decision, both tops of the tree. The other decision of the disjunction is true.
class TwoTops : public TreeGraph {
 public:
  Ids x = booleans(2);
  NodeId any = require(NodeType::Or, x);
  NodeId limit = require(NodeType::Leq, {x[0], constant(1)});

  TwoTops() {
    maximise(x[0]);
    grow({{x[1], 1}});
  }

  /// What a random start and its repair hand over, empty for an attempt that is not built.
  [[nodiscard]] Ids randomAttempt(RandomState& state) const {
    switch (rand(state, 4)) {
      case 0:
        return {x[0]};
      case 1:
        return repaired(state, false);
      case 2:  // the disjunction: its true operand falls, then a random one is to rise
        return rand(state, 2) == 0 ? Ids{x[1], x[0]} : repaired(state, true);
      default:  // the limit: two coins for the side, of which only one holds a decision
        state = stepped(state, 2);
        return {x[0]};
    }
  }

 private:
  /// x[1] has fallen, and only x[0] can make up for it. A transfer finds it if the anchor holds it.
  [[nodiscard]] Ids repaired(RandomState& state, bool anchorHoldsIt) const {
    for (int step = 0; step <= 2; ++step) {
      if (step > 0 && anchorHoldsIt) {
        randomStep(state);  // where the list of the disjunction would be entered
        return {x[1], x[0]};
      }
      if (drawsOperand(state, 2, 0)) return {x[1], x[0]};
    }
    return {};
  }
};

TEST(MoveBinPacking, ClimbsFromTheTargetToTheTopAndPushesIt) {
  TwoTops model;
  Dag& dag = *model.dag;
  ASSERT_EQ(dag.fixed.parentCount(model.x[0]), 2U);
  MoveBinPacking move(100, 2, 2, 1, *model.structure, dag);
  std::set<NodeId> tops;
  std::set<Ids> afterAll;
  for (const RandomState seed : someSeeds(400)) {
    RandomState expected = stepped(seed, 1);
    const NodeId top = dag.fixed.parentsOf(model.x[0])[rand(expected, 2)].parent;
    tops.insert(top);
    bool isRaised = false;
    if (top == model.any) {
      isRaised = drawsOperand(expected, 2, 0);
    } else {
      ASSERT_EQ(top, model.limit);
      randomStep(expected);  // the side: neither can move, the left one being at 0
    }
    Ids flips = {model.x[0]};
    if (!isRaised) {
      flips = model.randomAttempt(expected);
      afterAll.insert(flips);
    }
    model.state() = seed;
    EXPECT_EQ(move.apply(), !flips.empty());
    EXPECT_EQ(touched(dag), flips);
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
    EXPECT_TRUE(model.violated().empty());
  }
  EXPECT_EQ(tops.size(), 2U);
  EXPECT_TRUE(afterAll.contains(Ids{model.x[0]}));
  EXPECT_TRUE(afterAll.contains(Ids{model.x[1], model.x[0]}));
}

TEST(MoveBinPacking, StopsClimbingBelowAParentOutsideOfTheTree) {
  TreeGraph model;
  const NodeId x = model.boolean();
  model.constraint(x);
  model.maximise(model.add(NodeType::Not, {model.add(NodeType::Not, {x})}));
  Dag& dag = model.grow();
  MoveBinPacking move(100, 2, 3, 1, *model.structure, dag);
  model.state() = 5;
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{x}) << "the decision itself is raised";
  EXPECT_EQ(model.state(), stepped(5, 1)) << "one violated constraint, one parent: the percentage alone";
}

TEST(MoveBinPacking, StartsAtRandomWhenTheTargetLedToNoFlip) {
  // With one flip allowed the targeted start flips nothing and only finds an anchor, which is replaced.
  TreeGraph model;
  const Ids x = model.booleans(3);
  for (const NodeId id : x) model.require(NodeType::Leq, {id, model.constant(1)});
  model.maximise(x[1]);
  Dag& dag = model.grow();
  MoveBinPacking move(100, 1, 1, 1, *model.structure, dag);
  for (const RandomState seed : someSeeds(40)) {
    RandomState expected = stepped(seed, 1);
    const NodeId top = model.structures.staticNodes[rand(expected, 6)]->nodeId;
    const bool isDecision = dag.fixed.nodeTypes[top] == NodeType::Boolean;
    const NodeId drawn = isDecision ? top : dag.child(top, 0);
    if (!isDecision) randomStep(expected);  // which side, and then the only one that can flip
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), Ids{drawn});
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveBinPacking, KeepsTheSimulationInStepWithEveryOutcome) {
  PackingModel model(4, 2, 2);
  Dag& dag = *model.dag;
  TreeOracle oracle(*model.structure);
  RandomState draws = 3;
  MoveBinPacking move(50, 4, 4, 2, *model.structure, dag);
  for (int i = 0; i < 3000 && !HasFailure(); ++i) {
    constexpr Outcome kOutcomes[] = {Outcome::Rejected, Outcome::Accepted, Outcome::Improved};
    move.conclude(move.apply() && move.evaluate() ? kOutcomes[rand(draws, 3)] : Outcome::Infeasible);
    EXPECT_TRUE(model.flipped().empty());
    if (i % 10 == 0) oracle.expectAgreement();
  }
  EXPECT_GT(move.nbImprovements, 0U);
  EXPECT_GT(move.nbRejected, 0U);
}

}  // namespace
}  // namespace quvex
