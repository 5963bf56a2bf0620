#include "solver/node/nodeif.h"

#include <gtest/gtest.h>

#include "support/nodestage.h"

namespace quvex {
namespace {

TEST(NodeIf, TakesTheSecondOperandWhereTheConditionIsNonZero) {
  NodeStage choice(NodeType::If, "bii");
  choice.set(1, 5).set(2, -3);
  EXPECT_EQ(choice.set(0, 1).integer(), 5);
  EXPECT_EQ(choice.set(0, 0).integer(), -3);
  EXPECT_EQ(choice.setTentative(0, 1).setTentative(1, 8).evalInteger(), 8);
}

TEST(NodeIf, IsBooleanOnlyOverBooleanBranches) {
  NodeStage integers(NodeType::If, "bbi");
  EXPECT_EQ(integers.fixed.nodeDomains[integers.id], Domain::Integer);
  NodeStage booleans(NodeType::If, "bbb");
  EXPECT_EQ(booleans.fixed.nodeDomains[booleans.id], Domain::Boolean);
}

TEST(NodeIf, BoundsAreThoseOfTheReachableBranches) {
  NodeStage choice(NodeType::If, "bii");
  choice.setIntegerBounds(1, -2, 5).setIntegerBounds(2, 0, 9);
  EXPECT_EQ(choice.setIntegerBounds(0, 1, 1).bounds(), (Bounds{-2, 5}));
  EXPECT_EQ(choice.setIntegerBounds(0, 0, 0).bounds(), (Bounds{0, 9}));
  EXPECT_EQ(choice.setIntegerBounds(0, 0, 1).bounds(), (Bounds{-2, 9}));
}

/// Condition 1: the first branch, at 5 in [0, 9], is taken; the other is at `other`.
NodeStage& onFirstBranch(NodeStage& choice, double other) {
  return choice.set(0, 1, 0, 1).set(1, 5, 0, 9).set(2, other, 0, 9).refresh();
}

TEST(NodeIf, PickDecreaseTossesBetweenTheBranchAndTheOtherOne) {
  NodeStage choice(NodeType::If, "bii");
  onFirstBranch(choice, 3);
  EXPECT_EQ(choice.decrease(kCoinSet), "b- 1");
  EXPECT_EQ(choice.decrease(kCoinClear), "a- 1") << "the condition is 1, so flipping lowers it";
  onFirstBranch(choice, 7);
  EXPECT_EQ(choice.decrease(kCoinClear), "b- 0") << "the other branch is higher: nothing to toss for";
  onFirstBranch(choice, 3).set(1, 5, 5, 9);
  EXPECT_EQ(choice.decrease(kCoinSet), "a- 0") << "the branch is at its minimum: only flipping is left";
  onFirstBranch(choice, 7).set(1, 5, 5, 9);
  EXPECT_EQ(choice.decrease(), "none 0");
}

TEST(NodeIf, PickIncreaseMirrorsPickDecrease) {
  NodeStage choice(NodeType::If, "bii");
  onFirstBranch(choice, 7);
  EXPECT_EQ(choice.increase(kCoinSet), "b+ 1");
  EXPECT_EQ(choice.increase(kCoinClear), "a- 1");
  onFirstBranch(choice, 3);
  EXPECT_EQ(choice.increase(kCoinClear), "b+ 0");
  onFirstBranch(choice, 7).set(1, 5, 0, 5);
  EXPECT_EQ(choice.increase(kCoinSet), "a- 0");
}

TEST(NodeIf, FlipsUpFromTheSecondBranch) {
  NodeStage choice(NodeType::If, "bii");
  choice.set(0, 0, 0, 1).set(1, 3, 0, 9).set(2, 5, 5, 9).refresh();
  EXPECT_EQ(choice.decrease(), "a+ 0");
}

TEST(NodeIf, AFixedConditionIsNeverFlipped) {
  NodeStage choice(NodeType::If, "bii");
  onFirstBranch(choice, 3).set(0, 1, 1, 1);
  EXPECT_EQ(choice.decrease(kCoinClear), "b- 0");
  EXPECT_EQ(choice.change(kCoinClear), "b~ 0");
}

TEST(NodeIf, RefusesAtItsBound) {
  NodeStage choice(NodeType::If, "bii");
  choice.set(0, 1, 0, 1).set(1, 0, 0, 9).set(2, 9, 0, 9).refresh();
  EXPECT_EQ(choice.decrease(), "none 0");
  choice.set(1, 9).refresh();
  EXPECT_EQ(choice.increase(), "none 0");
}

TEST(NodeIf, PickChangeTossesBetweenTheBranchAndTheCondition) {
  NodeStage choice(NodeType::If, "bii");
  onFirstBranch(choice, 3);
  EXPECT_EQ(choice.change(kCoinSet), "b~ 1");
  EXPECT_EQ(choice.change(kCoinClear), "a~ 1");
  onFirstBranch(choice, 5);
  EXPECT_EQ(choice.change(kCoinClear), "b~ 0") << "equal branches: flipping changes nothing";
  onFirstBranch(choice, 3).set(1, 5, 5, 5);
  EXPECT_EQ(choice.change(kCoinSet), "a~ 0") << "the branch is fixed";
  onFirstBranch(choice, 5).set(1, 5, 5, 5);
  EXPECT_EQ(choice.change(), "none 0");
}

TEST(NodeIf, PicksTakeTheSecondBranchUnlessTheConditionIsExactlyOne) {
  NodeStage choice(NodeType::If, "iii");
  choice.set(0, 2, 0, 2).set(1, 5, 0, 9).set(2, 4, 0, 9).refresh();
  EXPECT_EQ(choice.decrease(), "c- 0") << "though the value is that of the first branch";
}

TEST(NodeDoubleIf, ReadsItsBranchesAsDoubles) {
  NodeStage choice(NodeType::DoubleIf, "bdi");
  choice.set(1, 2.5, 0, 9).set(2, 4, -1, 6);
  EXPECT_EQ(choice.set(0, 1).real(), 2.5);
  EXPECT_EQ(choice.set(0, 0).real(), 4.0);
  EXPECT_EQ(choice.bounds(), Bounds::ofDoubles(-1, 9));
  EXPECT_EQ(choice.setTentative(2, 5).evalReal(), 5.0);
}

TEST(NodeDoubleIf, FlipsByAnyChangeOfTheCondition) {
  NodeStage choice(NodeType::DoubleIf, "bdd");
  onFirstBranch(choice, 3);
  EXPECT_EQ(choice.decrease(kCoinClear), "a~ 1");
  EXPECT_EQ(choice.decrease(kCoinSet), "b- 1");
  onFirstBranch(choice, 7);
  EXPECT_EQ(choice.increase(kCoinClear), "a~ 1");
  EXPECT_EQ(choice.increase(kCoinSet), "b+ 1");
}

TEST(NodeDoubleIf, ComparesWithinTolerance) {
  NodeStage choice(NodeType::DoubleIf, "bdd");
  onFirstBranch(choice, 5 - 1e-7);
  EXPECT_EQ(choice.decrease(kCoinClear), "b- 0") << "the other branch is not lower";
  EXPECT_EQ(choice.change(kCoinClear), "b~ 0") << "nor different";
  onFirstBranch(choice, 3).set(1, 5, 5 - 1e-7, 9);
  EXPECT_EQ(choice.decrease(kCoinSet), "a~ 0") << "the branch is at its minimum";
  choice.set(0, 1, 0, 1).set(1, 1e-7, 0, 9).set(2, 9, 0, 9).refresh();
  EXPECT_EQ(choice.decrease(), "none 0") << "at the minimum of the whole";
}

}  // namespace
}  // namespace quvex
