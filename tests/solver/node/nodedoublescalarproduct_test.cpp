#include "solver/node/nodedoublescalarproduct.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"
#include "support/failure.h"

namespace quvex {
namespace {

TEST(NodeDoubleScalarProduct, StartsFromItsFactor) {
  AggregateStage product(NodeType::DoubleScalarProduct, "di", doubleWords({-0.5}));
  EXPECT_EQ(product.set(0, 3, 0, 9).set(1, 4, 0, 9).real(), -6);
  EXPECT_EQ(product.commitReal(0, 5), -10);
  EXPECT_EQ(product.commitReal(0, 0), 0);
  EXPECT_EQ(product.commitReal(0, 1), -2) << "recomputed from the factor";
  EXPECT_TRUE(product.isInit());
}

TEST(NodeDoubleScalarProduct, ChangesWhoseProductGoesToZeroRecomputeFromItsFactor) {
  AggregateStage product(NodeType::DoubleScalarProduct, "ddd", doubleWords({-4}));
  product.set(0, 1, 0, 9).set(1, 1e300, 0, kInfinity).set(2, 2, 0, 9).refresh();
  EXPECT_DOUBLE_EQ(product.move(0, 1e-200).move(2, 1e-200).evalReal(), -4e-100);
  product.commit();
  EXPECT_TRUE(product.isInit());

  AggregateStage overflown(NodeType::DoubleScalarProduct, "dd", doubleWords({-4}));
  overflown.set(0, 1e200, 0, kInfinity).set(1, 1e200, 0, kInfinity).refresh();
  ASSERT_EQ(overflown.real(), -kInfinity);
  EXPECT_EQ(overflown.commitReal(1, 0), 0);
  EXPECT_TRUE(overflown.isInit());
}

TEST(NodeDoubleScalarProduct, BoundsAreExchangedUnlessTheFactorIsPositive) {
  AggregateStage negative(NodeType::DoubleScalarProduct, "d", doubleWords({-2}));
  negative.set(0, 1, 1, 3);
  EXPECT_EQ(negative.minDouble(), -6);
  EXPECT_EQ(negative.maxDouble(), -2);
  AggregateStage positive(NodeType::DoubleScalarProduct, "d", doubleWords({0.5}));
  positive.set(0, 1, -1, 3);
  EXPECT_EQ(positive.minDouble(), -0.5);
  EXPECT_EQ(positive.maxDouble(), 1.5);
}

TEST(NodeDoubleScalarProduct, FailuresCarryItsName) {
  AggregateStage product(NodeType::DoubleScalarProduct, "dd", doubleWords({2}));
  product.set(0, 0).set(1, kInfinity);
  const Failure fromScratch = failureOf([&] { product.refresh(); });
  EXPECT_EQ(fromScratch.explanation, "Cannot compute the product of zero and infinity");
  EXPECT_EQ(fromScratch.function,
            "quvex::NodeDoubleScalarProductTemplate<quvex::SubsetMASK<unsigned char>>::computeValue");
  product.set(0, 1).set(1, 1).refresh();
  const Failure incremental = failureOf([&] { product.move(0, 0).move(1, kInfinity).evalReal(); });
  EXPECT_EQ(incremental.explanation, fromScratch.explanation);
  EXPECT_EQ(incremental.function, "quvex::NodeDoubleScalarProductTemplate<quvex::SubsetMASK<unsigned char>>::eval");
}

TEST(NodeDoubleScalarProduct, PicksTakeAnyChangeOfAnyOperand) {
  AggregateStage product(NodeType::DoubleScalarProduct, "dd", doubleWords({-1}));
  product.refresh();
  EXPECT_EQ(product.decrease(stateForChoiceAndCoin(2, 1, false)), "b+ 2");
}

}  // namespace
}  // namespace quvex
