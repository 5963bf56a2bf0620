#include "solver/node/nodebooleansum.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

using Positions = std::vector<OperandPos>;

TEST(NodeBooleanSum, CountsOperandsAtOne) {
  AggregateStage sum(NodeType::BooleanSum, "bbbb");
  EXPECT_EQ(sum.set(1, 1).set(3, 1).integer(), 2);
  EXPECT_EQ(sum.move(0, 1).move(1, 0).move(2, 1).evalInteger(), 3);
  sum.commit();
  EXPECT_TRUE(sum.isInit());
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{0, 2, 3}));
}

TEST(NodeBooleanSum, ReliesOnChangesBeingReal) {
  AggregateStage sum(NodeType::BooleanSum, "bb");
  sum.set(0, 1).refresh();
  // An operand at 1 that is reported as changed counts once more: it is not compared with its committed value.
  EXPECT_EQ(sum.notifyOnly(0).evalInteger(), 2);
}

TEST(NodeBooleanSum, RollbackForgetsTheChanges) {
  AggregateStage sum(NodeType::BooleanSum, "bb");
  sum.set(0, 1).refresh();
  EXPECT_EQ(sum.move(1, 1).evalInteger(), 2);
  sum.rollback();
  EXPECT_TRUE(sum.isInit());
  EXPECT_EQ(sum.move(0, 0).evalInteger(), 0);
}

TEST(NodeBooleanSum, CandidatesAreTheOnesAndTheZeros) {
  AggregateStage sum(NodeType::BooleanSum, "bbbbb");
  sum.set(1, 1).set(4, 1).refresh();
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{1, 4}));
  EXPECT_EQ(sum.increaseCandidates(), (Positions{0, 2, 3}));
  RandomState state = stateForChoice(3, 2);
  EXPECT_EQ(sum.node().randomIncreaseCandidate(*sum.dag, state, sum.id), 3U);
  state = stateForChoice(2, 1);
  EXPECT_EQ(sum.node().randomDecreaseCandidate(*sum.dag, state, sum.id), 4U);
}

TEST(NodeBooleanSum, WithoutCandidatesNoneIsDrawn) {
  AggregateStage sum(NodeType::BooleanSum, "bb");
  sum.refresh();
  RandomState state = 5;
  EXPECT_EQ(sum.node().randomDecreaseCandidate(*sum.dag, state, sum.id), kNone);
  sum.set(0, 1).set(1, 1).refresh();
  EXPECT_EQ(sum.node().randomIncreaseCandidate(*sum.dag, state, sum.id), kNone);
  EXPECT_EQ(state, 5U);
}

TEST(NodeBooleanSum, PicksAskACandidate) {
  AggregateStage sum(NodeType::BooleanSum, "bbb");
  sum.set(1, 1).refresh();
  EXPECT_EQ(sum.decrease(), "b- 0") << "the only operand at 1 needs no draw";
  EXPECT_EQ(sum.increase(stateForChoice(2, 0)), "a+ 1");
  EXPECT_EQ(sum.increase(stateForChoice(2, 1)), "c+ 1");
  sum.set(1, 0).refresh();
  EXPECT_EQ(sum.decrease(), "none 0");
  sum.set(0, 1).set(1, 1).set(2, 1).refresh();
  EXPECT_EQ(sum.increase(), "none 0");
}

TEST(NodeBooleanSum, PicksDoNotLookAtTheBounds) {
  AggregateStage sum(NodeType::BooleanSum, "bb");
  // Both operands are fixed at 1, so the sum is at its minimum and maximum; the request goes down all the same.
  sum.set(0, 1, 1, 1).set(1, 1, 1, 1).refresh();
  EXPECT_EQ(sum.decrease(stateForChoice(2, 0)), "a- 1");
  sum.set(1, 0, 0, 0).refresh();
  EXPECT_EQ(sum.increase(), "b+ 0");
}

TEST(NodeBooleanSum, AConstantAtOneIsACandidateThatRefuses) {
  GraphBuilder graph;
  const NodeId sum = graph.add(NodeType::BooleanSum, {graph.boolean(), graph.constant(1)});
  graph.build();
  RandomState state = 1;
  NodeId decision = kNone;
  int delta = 0;
  EXPECT_TRUE(graph.dag->nodes[sum]->isDecreaseCandidate(*graph.dag, sum, 1));
  EXPECT_FALSE(graph.dag->nodes[sum]->pickDecrease(*graph.dag, state, decision, delta, sum));
  EXPECT_EQ(decision, kNone);
}

TEST(NodeBooleanSum, PickChangeTakesAnyOperandEitherWay) {
  AggregateStage sum(NodeType::BooleanSum, "bbb");
  sum.refresh();
  for (RandomState state = 0; state < 20; ++state) EXPECT_EQ(sum.change(state * 99991), sum.anyChange(state * 99991));
  EXPECT_EQ(sum.change(stateForChoiceAndCoin(3, 1, true)), "b- 2");
  EXPECT_EQ(sum.change(stateForChoiceAndCoin(3, 1, false)), "b+ 2");
}

TEST(NodeBooleanSum, BoundsCountFixedOperands) {
  AggregateStage sum(NodeType::BooleanSum, "bbbb");
  EXPECT_EQ(sum.bounds(), (Bounds{0, 4}));
  sum.set(0, 1, 1, 1).set(1, 0, 0, 0);
  EXPECT_EQ(sum.bounds(), (Bounds{1, 3}));
}

TEST(NodeBooleanSum, IsInitTestsTheOnes) {
  AggregateStage sum(NodeType::BooleanSum, "bb");
  sum.set(0, 1).refresh();
  EXPECT_TRUE(sum.isInit());
  sum.set(0, 0).set(1, 1);
  EXPECT_FALSE(sum.isInit()) << "the value fits, but the set does not";
  sum.refresh();
  sum.notifyOnly(0);
  EXPECT_FALSE(sum.isInit()) << "a change is pending";
}

TEST(NodeBooleanSum, DumpShowsTheOnes) {
  AggregateStage sum(NodeType::BooleanSum, "bbb");
  sum.set(0, 1).set(2, 1).refresh();
  EXPECT_EQ(sum.dump(), "isOneNodesInit= 1\noneNodes= 0 2\n");
  sum.set(0, 0);
  EXPECT_EQ(sum.dump(), "isOneNodesInit= 0\noneNodes= 0 2\n");
}

}  // namespace
}  // namespace quvex
