#include "solver/node/nodesum.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

using Positions = std::vector<OperandPos>;

TEST(NodeSum, MovesByTheChangesOfItsOperands) {
  AggregateStage sum(NodeType::Sum, "ibi");
  EXPECT_EQ(sum.set(0, 10).set(1, 1).set(2, -4).integer(), 7);
  EXPECT_EQ(sum.move(0, 12).move(2, 0).evalInteger(), 13);
  sum.commit();
  EXPECT_TRUE(sum.isInit());
}

TEST(NodeSum, OfNothingIsZero) {
  AggregateStage sum(NodeType::Sum, "i");
  EXPECT_EQ(sum.integer(), 0);
  EXPECT_EQ(sum.bounds(), (Bounds{kLowestInt, kHighestInt}));
}

TEST(NodeSum, Wraps) {
  AggregateStage sum(NodeType::Sum, "ii");
  EXPECT_EQ(sum.setInteger(0, kHighestInt).set(1, 1).integer(), kLowestInt);
  EXPECT_EQ(sum.move(1, 2).evalInteger(), kLowestInt + 1);
}

TEST(NodeSum, KnowsWhoIsAwayFromItsBounds) {
  AggregateStage sum(NodeType::Sum, "iii");
  sum.set(0, 0, 0, 5).set(1, 5, 0, 5).set(2, 3, 0, 5).refresh();
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{1, 2}));
  EXPECT_EQ(sum.increaseCandidates(), (Positions{0, 2}));
  sum.commitInteger(2, 5);
  EXPECT_EQ(sum.increaseCandidates(), (Positions{0}));
  sum.commitInteger(1, 0);
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{2}));
  EXPECT_TRUE(sum.isInit());
  RandomState state = 1;
  EXPECT_EQ(sum.node().randomDecreaseCandidate(*sum.dag, state, sum.id), 2U);
  EXPECT_EQ(state, 1U);
  state = stateForChoice(2, 1);
  EXPECT_EQ(sum.node().randomIncreaseCandidate(*sum.dag, state, sum.id), 1U);
}

TEST(NodeSum, AtItsMinimumHasNobodyToLowerAndSaysSoFirst) {
  AggregateStage sum(NodeType::Sum, "ii");
  sum.set(0, 2, 2, 4).set(1, 1, 1, 9).refresh();
  EXPECT_TRUE(sum.decreaseCandidates().empty());
  EXPECT_EQ(sum.decrease(), "none 0");
  // The first test alone decides, whatever the sets say: with the bound out of the way the empty set refuses.
  sum.fixed.minBounds[sum.id] = -100;
  EXPECT_EQ(sum.decrease(), "none 0");
}

TEST(NodeSum, PicksPassTheRequestToACandidate) {
  AggregateStage sum(NodeType::Sum, "iii");
  sum.set(0, 0, 0, 5).set(1, 5, 0, 5).set(2, 3, 0, 5).refresh();
  EXPECT_EQ(sum.decrease(stateForChoice(2, 0)), "b- 1");
  EXPECT_EQ(sum.decrease(stateForChoice(2, 1)), "c- 1");
  EXPECT_EQ(sum.increase(stateForChoice(2, 0)), "a+ 1");
  sum.fixed.maxBounds[sum.id] = 8;
  EXPECT_EQ(sum.increase(), "none 0") << "the sum itself is at its maximum";
}

TEST(NodeSum, OfIntegerDecisionsNeverAnswers) {
  GraphBuilder graph;
  const NodeId sum = graph.add(NodeType::Sum, {graph.integer(), graph.integer()});
  graph.build();
  RandomState state = 1;
  NodeId decision = kNone;
  int delta = 0;
  EXPECT_FALSE(graph.dag->nodes[sum]->pickIncrease(*graph.dag, state, decision, delta, sum));
}

TEST(NodeSum, PickChangeTakesAnyOperandEitherWay) {
  AggregateStage sum(NodeType::Sum, "iii");
  sum.refresh();
  for (RandomState state = 0; state < 20; ++state) EXPECT_EQ(sum.change(state * 99991), sum.anyChange(state * 99991));
  AggregateStage single(NodeType::Sum, "i");
  single.refresh();
  EXPECT_EQ(single.change(kCoinSet), "a- 1") << "one operand needs no draw, the coin does";
  EXPECT_EQ(single.change(kCoinClear), "a+ 1");
}

TEST(NodeSum, BoundsSaturate) {
  AggregateStage sum(NodeType::Sum, "ii");
  sum.setIntegerBounds(0, -3, 4).setIntegerBounds(1, 10, 20);
  EXPECT_EQ(sum.bounds(), (Bounds{7, 24}));
  sum.setIntegerBounds(1, kLowestInt + 1, kHighestInt - 1);
  EXPECT_EQ(sum.bounds(), (Bounds{kLowestInt, kHighestInt}));
}

TEST(NodeSum, AnOperandUsedTwiceCountsTwice) {
  GraphBuilder graph;
  const NodeId x = graph.integer();
  const NodeId sum = graph.add(NodeType::Sum, {x, x});
  graph.minimise(sum);
  graph.build();
  commitValues(*graph.dag, {{x, 4}});
  EXPECT_EQ(graph.dag->nodeValue[sum], 8);
  EXPECT_TRUE(isWholeGraphInit(*graph.dag));
}

TEST(NodeSum, DumpShowsBothSets) {
  AggregateStage sum(NodeType::Sum, "ii");
  sum.set(0, 0, 0, 5).set(1, 3, 0, 5).refresh();
  EXPECT_EQ(sum.dump(), "isNotMinNodesInit=1\nisNotMaxNodesInit=1\nnotMinNodes= 1\nnotMaxNodes= 0 1\n");
}

TEST(NodeSum, NamesItsContainer) {
  EXPECT_EQ(NodeSumTemplate<SubsetBits>::kName, "quvex::NodeSumTemplate<quvex::SubsetBits>");
  EXPECT_EQ(NodeSumTemplate<Subset<unsigned short>>::kName, "quvex::NodeSumTemplate<quvex::Subset<unsigned short>>");
}

}  // namespace
}  // namespace quvex
