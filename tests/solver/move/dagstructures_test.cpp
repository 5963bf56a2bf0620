#include "solver/move/dagstructures.h"

#include <gtest/gtest.h>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

Ids sumsOf(const SearchGraph& model, NodeId decision) {
  const Membership membership = model.structures.membershipOf(decision);
  return {membership.sums.begin(), membership.sums.end()};
}

std::vector<OperandPos> positionsOf(const SearchGraph& model, NodeId decision) {
  const Membership membership = model.structures.membershipOf(decision);
  return {membership.positions.begin(), membership.positions.end()};
}

TEST(DagStructures, KnowsEveryDecisionAsFreeWithoutSums) {
  SearchGraph model;
  const Ids x = model.booleans(3);
  model.constraint(model.add(NodeType::Or, x));
  model.start();
  EXPECT_TRUE(model.structures.sums.empty());
  EXPECT_EQ(model.structures.nbSlackSums, 0U);
  EXPECT_EQ(model.structures.freeDecisions, x);
  EXPECT_TRUE(model.structures.swappableDecisions.empty());
  EXPECT_TRUE(sumsOf(model, x[0]).empty());
}

TEST(DagStructures, ListsSlackSumsBeforeEqualitySums) {
  SearchGraph model;
  const Ids x = model.booleans(6);
  const NodeId tied = model.tiedSum({x[0], x[1]}, 1);
  const NodeId limited = model.limitedSum({x[1], x[2]}, 1);
  const NodeId alsoTied = model.tiedSum({x[1], x[3]}, 1);
  const NodeId loose = model.booleanSum({x[2], x[4]});
  model.minimise(loose);
  model.start();
  EXPECT_EQ(model.structures.sums, (Ids{limited, loose, tied, alsoTied}));
  EXPECT_EQ(model.structures.nbSlackSums, 2U);
  EXPECT_EQ(model.structures.nbEqualitySums(), 2U);
  EXPECT_EQ(sumsOf(model, x[1]), (Ids{limited, tied, alsoTied}));
  EXPECT_EQ(positionsOf(model, x[1]), (std::vector<OperandPos>{0, 1, 0}));
  EXPECT_EQ(model.structures.membershipOf(x[1]).nbSlack, 1U);
  EXPECT_EQ(model.structures.membershipOf(x[1]).nbEquality(), 2U);
  EXPECT_EQ(model.structures.freeDecisions, (Ids{x[2], x[4], x[5]}));
  EXPECT_EQ(model.structures.swappableDecisions, (Ids{x[0], x[2], x[3], x[4]}));
}

TEST(DagStructures, LeavesADecisionOfTwoEqualitySumsToTheChains) {
  SearchGraph model;
  const Ids x = model.booleans(3);
  const NodeId first = model.tiedSum({x[0], x[1]}, 1);
  const NodeId second = model.tiedSum({x[0], x[2]}, 1);
  model.start();
  EXPECT_TRUE(model.structures.freeDecisions.empty());
  EXPECT_EQ(model.structures.swappableDecisions, (Ids{x[1], x[2]}));
  EXPECT_EQ(sumsOf(model, x[0]), (Ids{first, second}));
}

TEST(DagStructures, WantsTwoBooleanDecisionsInASum) {
  SearchGraph model;
  const NodeId x = model.boolean();
  const NodeId y = model.boolean();
  const NodeId n = model.integer();
  const NodeId notX = model.add(NodeType::Not, {x});
  model.minimise(model.add(NodeType::Sum, {x, n, n}));
  model.minimise(model.add(NodeType::Sum, {x, notX}));
  const NodeId candidate = model.add(NodeType::Sum, {x, n, y});
  model.minimise(candidate);
  model.start();
  EXPECT_EQ(model.structures.sums, Ids{candidate});
  EXPECT_EQ(positionsOf(model, y), std::vector<OperandPos>{2}) << "the integer is passed over, its place counts";
  EXPECT_EQ(model.structures.memberships.size(), 2U);
}

TEST(DagStructures, CountsADecisionThatStandsTwiceTwice) {
  SearchGraph model;
  const NodeId x = model.boolean();
  const NodeId sum = model.add(NodeType::Sum, {x, x});
  model.minimise(sum);
  model.start();
  EXPECT_EQ(model.structures.sums, Ids{sum});
  EXPECT_EQ(sumsOf(model, x), (Ids{sum, sum}));
  EXPECT_EQ(positionsOf(model, x), (std::vector<OperandPos>{0, 1}));
}

TEST(DagStructures, KnowsTheFiveKindsOfSums) {
  SearchGraph model;
  const Ids x = model.booleans(2);
  Ids sums;
  sums.push_back(model.add(NodeType::BooleanSum, x));
  sums.push_back(model.add(NodeType::Sum, x));
  sums.push_back(model.add(NodeType::ScalarSum, x, {2, 3}));
  sums.push_back(model.add(NodeType::DoubleSum, x));
  sums.push_back(model.add(NodeType::DoubleScalarSum, x, {doubleToWord(0.5), doubleToWord(1.5)}));
  for (const NodeId sum : sums) model.minimise(sum);
  model.minimise(model.add(NodeType::And, x));
  model.start();
  EXPECT_EQ(model.structures.sums, sums);
}

TEST(DagStructures, TiesSumsByIntegerEqualityConstraintsAlone) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  const NodeId doubles = model.add(NodeType::DoubleSum, {x[0], x[1]});
  model.constraint(model.add(NodeType::DoubleEq, {doubles, model.constantDouble(1.0)}));
  const NodeId watched = model.booleanSum({x[1], x[2]});
  model.minimise(model.add(NodeType::Eq, {watched, model.constant(1)}));
  const NodeId tied = model.booleanSum({x[2], x[3]});
  model.constraint(model.add(NodeType::Leq, {tied, model.constant(2)}));
  model.constraint(model.add(NodeType::Eq, {model.constant(1), tied}));
  model.start();
  EXPECT_EQ(model.structures.sums, (Ids{doubles, watched, tied}));
  EXPECT_EQ(model.structures.nbSlackSums, 2U);
}

TEST(DagStructures, HasNoTreeUnlessWanted) {
  SearchGraph model;
  model.tiedSum(model.booleans(3), 1);
  model.start(1, false);
  EXPECT_FALSE(model.structures.constraintTreeBuilt);
  EXPECT_TRUE(model.structures.staticNodes.empty());
  EXPECT_TRUE(model.structures.staticIndexOfNode.empty());
  EXPECT_TRUE(model.structures.staticNodeOfDecision.empty());
  EXPECT_TRUE(model.structure->dynamicNodes.empty());
  EXPECT_TRUE(model.structure->dynamicBooleans.empty());
}

TEST(DagStructures, MayBeBuiltAgain) {
  SearchGraph model;
  const Ids x = model.booleans(3);
  const NodeId sum = model.tiedSum({x[0], x[1]}, 1);
  model.start();
  model.structures.build(model.fixed, false);
  EXPECT_EQ(model.structures.sums, Ids{sum});
  EXPECT_EQ(model.structures.nbSlackSums, 0U);
  EXPECT_EQ(model.structures.freeDecisions, Ids{x[2]});
  EXPECT_EQ(model.structures.swappableDecisions, (Ids{x[0], x[1]}));
  EXPECT_EQ(sumsOf(model, x[0]), Ids{sum});
}

}  // namespace
}  // namespace quvex
