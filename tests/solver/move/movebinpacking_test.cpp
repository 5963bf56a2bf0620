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

TEST(MoveBinPacking, HandsItsFlipsOverWhenNothingBreaks) {
  // Unlike an ejection chain it pushes a true node further.
  TreeGraph model;
  const Ids x = model.booleans(3);
  const NodeId any = model.require(NodeType::Or, x);
  Dag& dag = model.grow({{x[0], 1}, {x[1], 1}});
  MoveBinPacking move(0, 2, 2, 1, *model.structure, dag);
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const StaticIndex anchor = rand(expected, 4);
    Ids flips;
    if (anchor < 3) {
      flips = {x[anchor]};
    } else {  // lowers one of the true operands, then the other
      const std::uint32_t first = rand(expected, 2);
      flips = {x[first], x[1 - first]};
    }
    model.state() = seed;
    const bool isBuilt = move.apply();
    if (anchor < 3) {
      ASSERT_TRUE(isBuilt);
      EXPECT_EQ(touched(dag), flips);
      EXPECT_EQ(model.state(), expected);
    } else if (isBuilt) {
      EXPECT_TRUE(model.violated().empty());
    }
    move.conclude(Outcome::Rejected);
    EXPECT_EQ(model.at(any).value(), 1);
  }
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

TEST(MoveBinPacking, ClimbsFromTheTargetToTheTopAndPushesIt) {
  // The target lies below "or" and a limit; both are tops of the tree.
  TreeGraph model;
  const Ids x = model.booleans(2);
  const NodeId any = model.require(NodeType::Or, x);
  const NodeId other = model.require(NodeType::Leq, {x[0], model.constant(1)});
  model.maximise(x[0]);
  Dag& dag = model.grow({{x[1], 1}});
  ASSERT_EQ(dag.fixed.parentCount(x[0]), 2U);
  MoveBinPacking move(100, 2, 2, 1, *model.structure, dag);
  std::set<NodeId> tops;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = stepped(seed, 1);
    const NodeId top = dag.fixed.parentsOf(x[0])[rand(expected, 2)].parent;
    tops.insert(top);
    model.state() = seed;
    if (top == any) {
      // Up to three random operands, of which only the first can rise.
      bool isRaised = false;
      for (int i = 0; i < 3 && !isRaised; ++i) isRaised = rand(expected, 2) == 0;
      if (!isRaised) {
        (void)move.apply();  // a random start follows
        move.conclude(Outcome::Rejected);
        continue;
      }
      ASSERT_TRUE(move.apply());
      EXPECT_EQ(touched(dag), Ids{x[0]});
      EXPECT_EQ(model.state(), expected);
    } else {  // the limit holds and falls further: its left side can't, and no coin changes that
      EXPECT_EQ(top, other);
      randomStep(expected);
      (void)move.apply();
    }
    move.conclude(Outcome::Rejected);
  }
  EXPECT_EQ(tops.size(), 2U);
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
