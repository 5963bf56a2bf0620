#include "solver/node/nodeor.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

TEST(NodeOr, IsZeroUnlessAnOperandIsOne) {
  AggregateStage disjunction(NodeType::Or, "bbb");
  EXPECT_EQ(disjunction.integer(), 0);
  EXPECT_EQ(disjunction.set(1, 1).integer(), 1);
  EXPECT_EQ(disjunction.move(1, 0).evalInteger(), 0);
  disjunction.commit();
  EXPECT_TRUE(disjunction.isInit());
}

TEST(NodeOr, FromFalseEveryChangeIsAOne) {
  AggregateStage disjunction(NodeType::Or, "bbb");
  disjunction.refresh();
  EXPECT_EQ(disjunction.notifyOnly(1).evalInteger(), 1) << "the changed operand is not even read";
  disjunction.commit();
  EXPECT_EQ(disjunction.dump(), "isOneNodesInit= 0\noneNodes= 1\n") << "nor is it at the commit";
}

TEST(NodeOr, TheLastOneTurnsItFalseWithoutALookAtOthers) {
  AggregateStage disjunction(NodeType::Or, "bbb");
  disjunction.set(2, 1).refresh();
  disjunction.set(0, 1);  // behind its back
  EXPECT_EQ(disjunction.move(2, 0).evalInteger(), 0);
}

TEST(NodeOr, AsManyChangesAsOnesNeedALook) {
  AggregateStage disjunction(NodeType::Or, "bbb");
  disjunction.set(0, 1).set(1, 1).refresh();
  EXPECT_EQ(disjunction.move(1, 0).move(2, 1).evalInteger(), 1);
  disjunction.commit();
  EXPECT_EQ(disjunction.dump(), "isOneNodesInit= 1\noneNodes= 0 2\n");
  EXPECT_EQ(disjunction.move(0, 0).evalInteger(), 1) << "an untouched operand at 1 holds it";
  EXPECT_EQ(disjunction.move(2, 0).evalInteger(), 0);
  disjunction.commit();
  EXPECT_TRUE(disjunction.isInit());
}

TEST(NodeOr, PickDecreaseLowersAOne) {
  AggregateStage disjunction(NodeType::Or, "bbb");
  disjunction.set(0, 1).set(2, 1).refresh();
  EXPECT_EQ(disjunction.decrease(stateForChoice(2, 1)), "c- 1");
  disjunction.set(0, 0).set(2, 0).refresh();
  EXPECT_EQ(disjunction.decrease(), "none 0");
}

TEST(NodeOr, PickIncreaseRaisesAnyOperand) {
  AggregateStage disjunction(NodeType::Or, "bbb");
  disjunction.refresh();
  EXPECT_EQ(disjunction.increase(stateForChoice(3, 1)), "b+ 1");
  disjunction.set(0, 1).refresh();
  EXPECT_EQ(disjunction.increase(), "none 0");
}

TEST(NodeOr, OfTwoOperandsTheOneBelowItsMaximumIsAsked) {
  AggregateStage disjunction(NodeType::Or, "bb");
  disjunction.refresh();
  EXPECT_EQ(disjunction.increase(stateForChoice(2, 0)), "a+ 1");
  EXPECT_EQ(disjunction.increase(stateForChoice(2, 1)), "b+ 1");
  EXPECT_EQ(disjunction.set(0, 0, 0, 0).refresh().increase(), "b+ 0");
  EXPECT_EQ(disjunction.set(0, 0, 0, 1).set(1, 0, 0, 0).refresh().increase(), "a+ 0");
  EXPECT_EQ(disjunction.set(0, 0, 0, 0).refresh().increase(), "b+ 0")
      << "with both at their maximum the first test wins";
}

TEST(NodeOr, PickChangeRaisesAFalseOneAndLowersATrueOne) {
  AggregateStage disjunction(NodeType::Or, "bbb");
  disjunction.refresh();
  EXPECT_EQ(disjunction.change(stateForChoice(3, 2)), "c+ 1");
  disjunction.set(1, 1).refresh();
  EXPECT_EQ(disjunction.change(), "b- 0");
}

TEST(NodeOr, BoundsAreFixedByFixedOperands) {
  AggregateStage disjunction(NodeType::Or, "bb");
  EXPECT_EQ(disjunction.bounds(), (Bounds{0, 1}));
  EXPECT_EQ(disjunction.set(0, 0, 0, 0).set(1, 0, 0, 0).bounds(), (Bounds{0, 0}));
  EXPECT_EQ(disjunction.set(1, 1, 1, 1).bounds(), (Bounds{1, 1}));
}

}  // namespace
}  // namespace quvex
