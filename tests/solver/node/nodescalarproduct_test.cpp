#include "solver/node/nodescalarproduct.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

TEST(NodeScalarProduct, StartsFromItsFactor) {
  AggregateStage product(NodeType::ScalarProduct, "ii", {-3});
  EXPECT_EQ(product.set(0, 2, 0, 9).set(1, 5, 0, 9).integer(), -30);
  EXPECT_EQ(product.commitInteger(0, 0), 0);
  EXPECT_EQ(product.commitInteger(1, 4), 0);
  EXPECT_EQ(product.commitInteger(0, 1), -12);
  EXPECT_TRUE(product.isInit());
}

TEST(NodeScalarProduct, BoundsAreMultipliedAndExchangedUnderANegativeFactor) {
  AggregateStage negative(NodeType::ScalarProduct, "ii", {-3});
  EXPECT_EQ(negative.setIntegerBounds(0, 1, 2).setIntegerBounds(1, 2, 5).bounds(), (Bounds{-30, -6}));
  AggregateStage positive(NodeType::ScalarProduct, "i", {2});
  EXPECT_EQ(positive.setIntegerBounds(0, -1, 2).bounds(), (Bounds{-2, 4}));
}

TEST(NodeScalarProduct, BoundsWrapAtTheFactor) {
  AggregateStage product(NodeType::ScalarProduct, "i", {4});
  EXPECT_EQ(product.setIntegerBounds(0, 1, std::int64_t{1} << 61).bounds(), (Bounds{4, kLowestInt}));
}

TEST(NodeScalarProduct, PicksTakeAnyChangeOfAnyOperand) {
  AggregateStage product(NodeType::ScalarProduct, "ii", {-1});
  product.refresh();
  EXPECT_EQ(product.decrease(stateForChoiceAndCoin(2, 1, false)), "b+ 2");
  EXPECT_EQ(product.increase(stateForChoiceAndCoin(2, 1, true)), "b- 2");
}

TEST(NodeScalarProduct, DumpAddsTheFactor) {
  AggregateStage product(NodeType::ScalarProduct, "ii", {-3});
  product.set(0, 0).set(1, 5).refresh();
  EXPECT_EQ(product.dump(), "isZeroNodesInit= 1\nzeroNodes= 0\nscalar =-3\n");
}

}  // namespace
}  // namespace quvex
