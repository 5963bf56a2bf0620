#include "solver/node/nodemax.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

/// Three operands in [0, 9].
AggregateStage& at(AggregateStage& max, double a, double b, double c) {
  max.set(0, a, 0, 9).set(1, b, 0, 9).set(2, c, 0, 9).refresh();
  return max;
}

TEST(NodeMax, FollowsTheHighestOperand) {
  AggregateStage max(NodeType::Max, "iii");
  at(max, 5, 7, 3);
  EXPECT_EQ(max.dag->nodeValue[max.id], 7);
  EXPECT_EQ(max.commitInteger(2, 9), 9);
  EXPECT_EQ(max.commitInteger(2, 8), 8);
  EXPECT_EQ(max.commitInteger(2, 1), 7);
  EXPECT_TRUE(max.isInit());
}

TEST(NodeMax, OfNothingIsTheLowestInteger) {
  DagFixedFields fixed;
  const NodeId id = fixed.addNode(NodeType::Max);
  EXPECT_EQ(NodeMaxTemplate<SubsetMASK<unsigned char>>::computeBounds(fixed, id), (Bounds{kLowestInt, kLowestInt}));
  const Dag dag(fixed);
  EXPECT_EQ(dynamic_cast<const NodeInner&>(*dag.nodes[id]).computeValue(dag, id), kLowestInt);
}

TEST(NodeMax, LoweringOneOfTwoSupportsCostsNoRescan) {
  AggregateStage max(NodeType::Max, "iii");
  at(max, 7, 7, 3);
  max.set(2, 9);  // behind its back
  EXPECT_EQ(max.move(0, 1).evalInteger(), 7);
  max.commit();
  EXPECT_EQ(max.move(1, 5).evalInteger(), 9);
}

TEST(NodeMax, CandidatesCouldGoAboveTheValue) {
  AggregateStage max(NodeType::Max, "iii");
  max.set(0, 5, 0, 9).set(1, 5, 0, 6).set(2, 4, 0, 5).refresh();
  EXPECT_EQ(max.dump(), "isSupportsInit=1\nisIncreaseCandidatesInit=1\nsupports= 0 1\nincreaseCandidates= 0 1\n");
  max.move(0, 1).move(1, 2).evalInteger();
  max.commit();
  EXPECT_NE(max.dump().find("increaseCandidates= 0 1 2\n"), std::string::npos) << "the value fell to 4";
  max.commitInteger(0, 9);
  EXPECT_NE(max.dump().find("increaseCandidates=\n"), std::string::npos);
  EXPECT_TRUE(max.isInit());
}

TEST(NodeMax, PickIncreaseAsksACandidateAndPickDecreaseASupport) {
  AggregateStage max(NodeType::Max, "iii");
  max.set(0, 5, 0, 5).set(1, 4, 0, 6).set(2, 5, 0, 7).refresh();
  EXPECT_EQ(max.increase(stateForChoice(2, 0)), "b+ 1");
  EXPECT_EQ(max.increase(stateForChoice(2, 1)), "c+ 1");
  EXPECT_EQ(max.decrease(stateForChoice(2, 0)), "a- 1");
  EXPECT_EQ(max.decrease(stateForChoice(2, 1)), "c- 1");
}

TEST(NodeMax, PickChangeIsTheRuleOfMinAndNotItsMirror) {
  AggregateStage max(NodeType::Max, "iii");
  at(max, 7, 3, 3);
  EXPECT_EQ(max.change(kCoinSet), "a- 1") << "down with the coin set: the only support";
  EXPECT_EQ(max.change(stateForCoinAndChoice(false, 3, 2)), "c+ 2") << "up with the coin clear: a candidate";
  at(max, 9, 3, 3);
  EXPECT_EQ(max.change(), "a- 0") << "at the maximum: down without a coin";
  at(max, 0, 0, 0);
  EXPECT_EQ(max.change(stateForChoice(3, 1)), "b+ 1") << "at the minimum: up without a coin";
}

TEST(NodeMax, BoundsAreTheHighestOfEach) {
  AggregateStage max(NodeType::Max, "iii");
  max.setIntegerBounds(0, 3, 20).setIntegerBounds(1, 5, 8).setIntegerBounds(2, 4, 9);
  EXPECT_EQ(max.bounds(), (Bounds{5, 20}));
}

}  // namespace
}  // namespace quvex
