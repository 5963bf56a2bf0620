#include "solver/node/nodescalarsum.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

using Positions = std::vector<OperandPos>;

TEST(NodeScalarSum, WeighsItsOperands) {
  AggregateStage sum(NodeType::ScalarSum, "iib", {3, -2, 0});
  EXPECT_EQ(sum.set(0, 4).set(1, 5).set(2, 1).integer(), 2);
  EXPECT_EQ(sum.move(0, 5).move(1, 7).evalInteger(), 1);
  sum.commit();
  EXPECT_TRUE(sum.isInit());
}

TEST(NodeScalarSum, ACoefficientOfZeroContributesNothingAndIsNoCandidate) {
  AggregateStage sum(NodeType::ScalarSum, "ii", {0, 1});
  sum.set(0, 3, 0, 5).set(1, 3, 0, 5).refresh();
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{1}));
  EXPECT_EQ(sum.increaseCandidates(), (Positions{1}));
  EXPECT_EQ(sum.commitInteger(0, 4), 3);
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{1}));
  EXPECT_EQ(sum.increaseCandidates(), (Positions{1}));
  EXPECT_TRUE(sum.isInit());
}

TEST(NodeScalarSum, CandidatesGoByTheEffectOnTheSum) {
  AggregateStage sum(NodeType::ScalarSum, "iiii", {2, 2, -2, -2});
  sum.set(0, 0, 0, 5).set(1, 5, 0, 5).set(2, 0, 0, 5).set(3, 5, 0, 5).refresh();
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{1, 2}));
  EXPECT_EQ(sum.increaseCandidates(), (Positions{0, 3}));
  sum.commitInteger(2, 5);
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{1}));
  EXPECT_EQ(sum.increaseCandidates(), (Positions{0, 2, 3}));
  EXPECT_TRUE(sum.isInit());
}

TEST(NodeScalarSum, ANegativeCoefficientTurnsTheRequestRound) {
  AggregateStage sum(NodeType::ScalarSum, "ii", {2, -2});
  sum.set(0, 0, 0, 5).set(1, 0, 0, 5).refresh();
  EXPECT_EQ(sum.decrease(), "b+ 0");
  EXPECT_EQ(sum.increase(), "a+ 0");
  sum.set(0, 5).set(1, 5).refresh();
  EXPECT_EQ(sum.decrease(), "a- 0");
  EXPECT_EQ(sum.increase(), "b- 0");
}

TEST(NodeScalarSum, PickChangeDoesNotCareForTheSign) {
  AggregateStage sum(NodeType::ScalarSum, "ii", {2, -2});
  sum.refresh();
  EXPECT_EQ(sum.change(stateForChoiceAndCoin(2, 1, true)), "b- 2");
  EXPECT_EQ(sum.change(stateForChoiceAndCoin(2, 1, false)), "b+ 2");
}

TEST(NodeScalarSum, BoundsFollowTheSigns) {
  AggregateStage sum(NodeType::ScalarSum, "iii", {2, -3, 0});
  sum.setIntegerBounds(0, 1, 4).setIntegerBounds(1, -1, 5).setIntegerBounds(2, -7, 9);
  EXPECT_EQ(sum.bounds(), (Bounds{2 - 15, 8 + 3}));
}

TEST(NodeScalarSum, BoundsOfHugeProductsSaturate) {
  AggregateStage sum(NodeType::ScalarSum, "i", {4});
  sum.setIntegerBounds(0, -(std::int64_t{1} << 62), std::int64_t{1} << 62);
  EXPECT_EQ(sum.bounds(), (Bounds{kLowestInt, kHighestInt}));
}

TEST(NodeScalarSum, Wraps) {
  AggregateStage sum(NodeType::ScalarSum, "i", {2});
  EXPECT_EQ(sum.setInteger(0, kHighestInt).integer(), -2);
  EXPECT_EQ(sum.move(0, 3).evalInteger(), 6);
}

TEST(NodeScalarSum, DumpAddsTheCoefficients) {
  AggregateStage sum(NodeType::ScalarSum, "ii", {7, -1});
  sum.set(0, 0, 0, 5).set(1, 0, 0, 5).refresh();
  EXPECT_EQ(sum.dump(),
            "isNotMinNodesInit=1\nisNotMaxNodesInit=1\nnotMinNodes= 1\nnotMaxNodes= 0\ncoefficients 7 -1\n");
}

}  // namespace
}  // namespace quvex
