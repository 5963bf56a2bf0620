#include "solver/node/nodeand.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

TEST(NodeAnd, IsOneUnlessAnOperandIsZero) {
  AggregateStage conjunction(NodeType::And, "bbb");
  EXPECT_EQ(conjunction.integer(), 0);
  EXPECT_EQ(conjunction.set(0, 1).set(1, 1).set(2, 1).integer(), 1);
  EXPECT_EQ(conjunction.move(1, 0).evalInteger(), 0);
  conjunction.commit();
  EXPECT_TRUE(conjunction.isInit());
}

TEST(NodeAnd, TheLastZeroTurnsItTrueWithoutALookAtOthers) {
  AggregateStage conjunction(NodeType::And, "bbb");
  conjunction.set(0, 1).set(1, 1).refresh();
  conjunction.set(0, 0);  // behind its back
  EXPECT_EQ(conjunction.move(2, 1).evalInteger(), 1);
}

TEST(NodeAnd, AsManyChangesAsZerosNeedALook) {
  AggregateStage conjunction(NodeType::And, "bbb");
  conjunction.set(0, 1).refresh();  // zeros at 1 and 2
  EXPECT_EQ(conjunction.move(1, 1).move(0, 0).evalInteger(), 0);
  conjunction.commit();
  EXPECT_TRUE(conjunction.isInit());
  EXPECT_EQ(conjunction.dump(), "isZeroNodesInit= 1\nzeroNodes= 0 2\n");
}

TEST(NodeAnd, AnUntouchedZeroKeepsItFalse) {
  AggregateStage conjunction(NodeType::And, "bbb");
  conjunction.refresh();
  EXPECT_EQ(conjunction.move(0, 1).move(1, 1).evalInteger(), 0);
  conjunction.rollback();
  EXPECT_EQ(conjunction.move(0, 1).move(1, 1).move(2, 1).evalInteger(), 1);
  conjunction.commit();
  EXPECT_TRUE(conjunction.isInit());
}

TEST(NodeAnd, FromTrueEveryChangeIsAZero) {
  AggregateStage conjunction(NodeType::And, "bbb");
  conjunction.set(0, 1).set(1, 1).set(2, 1).refresh();
  EXPECT_EQ(conjunction.notifyOnly(1).evalInteger(), 0) << "the changed operand is not even read";
  conjunction.commit();
  EXPECT_EQ(conjunction.dump(), "isZeroNodesInit= 0\nzeroNodes= 1\n") << "nor is it at the commit";
}

TEST(NodeAnd, PickDecreaseAsksAnOperandToRise) {
  AggregateStage conjunction(NodeType::And, "bbb");
  conjunction.set(0, 1).set(1, 1).set(2, 1).refresh();
  EXPECT_EQ(conjunction.decrease(stateForChoice(3, 2)), "c+ 1");
  conjunction.set(2, 0).refresh();
  EXPECT_EQ(conjunction.decrease(), "none 0");
}

TEST(NodeAnd, PickDecreaseOfATrueOneOverDecisionsFails) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(3);
  const NodeId conjunction = graph.add(NodeType::And, x);
  graph.minimise(conjunction);
  graph.build();
  commitValues(*graph.dag, {{x[0], 1}, {x[1], 1}, {x[2], 1}});
  ASSERT_EQ(graph.dag->nodeValue[conjunction], 1);
  for (RandomState state = 0; state < 50; ++state) {
    RandomState probe = state * 99991;
    NodeId decision = kNone;
    int delta = 0;
    EXPECT_FALSE(graph.dag->nodes[conjunction]->pickDecrease(*graph.dag, probe, decision, delta, conjunction));
  }
}

TEST(NodeAnd, OfTwoOperandsTheOneBelowItsMaximumIsAsked) {
  AggregateStage conjunction(NodeType::And, "bb");
  conjunction.set(0, 1).set(1, 1).refresh();
  EXPECT_EQ(conjunction.decrease(), "b+ 0") << "the first is at its maximum, no draw";
  // A true "and" has both operands at 1; a wider bound makes room for the other branches.
  conjunction.set(0, 1, 0, 2).refresh();
  EXPECT_EQ(conjunction.decrease(), "a+ 0");
  conjunction.set(1, 1, 0, 2).refresh();
  EXPECT_EQ(conjunction.decrease(stateForChoice(2, 0)), "a+ 1");
  EXPECT_EQ(conjunction.decrease(stateForChoice(2, 1)), "b+ 1");
}

TEST(NodeAnd, ASingleOperandNeedsNoDraw) {
  AggregateStage conjunction(NodeType::And, "b");
  conjunction.set(0, 1).refresh();
  EXPECT_EQ(conjunction.decrease(), "a+ 0");
}

TEST(NodeAnd, PickIncreaseRaisesAZero) {
  AggregateStage conjunction(NodeType::And, "bbb");
  conjunction.set(1, 1).refresh();
  EXPECT_EQ(conjunction.increase(stateForChoice(2, 0)), "a+ 1");
  EXPECT_EQ(conjunction.increase(stateForChoice(2, 1)), "c+ 1");
  conjunction.set(0, 1).set(2, 1).refresh();
  EXPECT_EQ(conjunction.increase(), "none 0");
}

TEST(NodeAnd, PickChangeRaisesAFalseOneAndChangesATrueOne) {
  AggregateStage conjunction(NodeType::And, "bbb");
  conjunction.set(0, 1).set(1, 1).refresh();
  EXPECT_EQ(conjunction.change(), "c+ 0");
  conjunction.set(2, 1).refresh();
  for (RandomState state = 0; state < 20; ++state) {
    EXPECT_EQ(conjunction.change(state * 99991), conjunction.anyChange(state * 99991));
  }
}

TEST(NodeAnd, BoundsAreFixedByFixedOperands) {
  AggregateStage conjunction(NodeType::And, "bb");
  EXPECT_EQ(conjunction.bounds(), (Bounds{0, 1}));
  EXPECT_EQ(conjunction.set(0, 1, 1, 1).set(1, 1, 1, 1).bounds(), (Bounds{1, 1}));
  EXPECT_EQ(conjunction.set(1, 0, 0, 0).bounds(), (Bounds{0, 0}));
}

}  // namespace
}  // namespace quvex
