#include "solver/node/nodedoubleproduct.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"
#include "support/failure.h"

namespace quvex {
namespace {

TEST(NodeDoubleProduct, MultipliesOperandsOfAnyDomain) {
  AggregateStage product(NodeType::DoubleProduct, "did");
  EXPECT_EQ(product.set(0, 0.5, 0, 9).set(1, 3, 0, 9).set(2, 4, 0, 9).real(), 6);
  EXPECT_EQ(product.commitReal(1, 5), 10);
  EXPECT_TRUE(product.isInit());
}

/// The first operand was replaced behind the product's back, so that the result tells how it was computed.
double evalAfterHiddenChange(double before, double after) {
  AggregateStage product(NodeType::DoubleProduct, "dd");
  product.set(0, 10, 0, 99).set(1, before, 0, 99).refresh();
  product.set(0, 20);
  return product.move(1, after).evalReal();
}

TEST(NodeDoubleProduct, MovesByTheRatioOfTheChanges) { EXPECT_EQ(evalAfterHiddenChange(2, 3), 30); }

TEST(NodeDoubleProduct, AnOperandThatGoesToZeroRecomputes) {
  EXPECT_EQ(evalAfterHiddenChange(2, 0), 0);
  // A product beyond all doubles has no ratio that leads back: infinity times zero.
  AggregateStage product(NodeType::DoubleProduct, "dd");
  product.set(0, 1e200, 0, kInfinity).set(1, 1e200, 0, kInfinity).refresh();
  ASSERT_EQ(product.real(), kInfinity);
  EXPECT_EQ(product.move(0, 0).evalReal(), 0);
  product.commit();
  EXPECT_TRUE(product.isInit());
}

TEST(NodeDoubleProduct, ChangesWhoseProductGoesToZeroRecompute) {
  // The changed operands alone are too small for a double, but not together with the one between them.
  AggregateStage product(NodeType::DoubleProduct, "ddd");
  product.set(0, 1, 0, 9).set(1, 1e300, 0, kInfinity).set(2, 2, 0, 9).refresh();
  EXPECT_DOUBLE_EQ(product.move(0, 1e-200).move(2, 1e-200).evalReal(), 1e-100);
  product.commit();
  EXPECT_TRUE(product.isInit());
  EXPECT_DOUBLE_EQ(product.commitReal(0, 1), 1e100) << "and from there on as well";
}

TEST(NodeDoubleProduct, AnOperandThatLeavesZeroRecomputes) {
  EXPECT_EQ(evalAfterHiddenChange(0, 2), 40);
  EXPECT_EQ(evalAfterHiddenChange(0, 0.5), 10) << "too small a step for a cancellation, but no ratio exists";
}

TEST(NodeDoubleProduct, ALargeSwingRecomputes) {
  EXPECT_EQ(evalAfterHiddenChange(1, 1e7), 2e8);
  EXPECT_EQ(evalAfterHiddenChange(1, 1e5), 1e6);
  EXPECT_EQ(evalAfterHiddenChange(1, -1), -20) << "so does a change of sign";
}

TEST(NodeDoubleProduct, ASmallFallToZeroGoesByTheRatio) { EXPECT_EQ(evalAfterHiddenChange(0.5, 0), 0); }

TEST(NodeDoubleProduct, EqualChangesLeaveTheValueAlone) {
  AggregateStage product(NodeType::DoubleProduct, "ddd");
  product.set(0, 2, 0, 9).set(1, 3, 0, 9).set(2, 0.1, 0, 9).refresh();
  product.move(0, 3).move(1, 2);
  product.dag->tentativeValue[product.id] = doubleToWord(77);
  EXPECT_EQ(product.evalReal(), 77) << "the cell is not even written";
}

TEST(NodeDoubleProduct, TwoOperandsThatTradeAZeroStayAtZero) {
  AggregateStage product(NodeType::DoubleProduct, "ddd");
  product.set(0, 0, 0, 9).set(1, 3, 0, 9).set(2, 5, 0, 9).refresh();
  EXPECT_EQ(product.move(0, 3).move(1, 0).evalReal(), 0);
  product.commit();
  EXPECT_TRUE(product.isInit());
}

TEST(NodeDoubleProduct, ZeroTimesInfinityFailsAtInit) {
  GraphBuilder graph;
  graph.add(NodeType::DoubleProduct, {graph.constantDouble(0.0), graph.constantDouble(kInfinity)});
  const Failure failure = failureOf([&] { graph.build(); });
  EXPECT_EQ(failure.explanation, "Cannot compute the product of zero and infinity");
  EXPECT_EQ(failure.function, "quvex::NodeDoubleProductTemplate<quvex::SubsetMASK<unsigned char>>::computeValue");
  EXPECT_TRUE(failure.isKernel);
}

TEST(NodeDoubleProduct, ZeroTimesInfinityAmongTheChangesFailsInEval) {
  AggregateStage product(NodeType::DoubleProduct, "dd");
  product.set(0, 1).set(1, 1).refresh();
  const Failure failure = failureOf([&] { product.move(0, 0).move(1, kInfinity).evalReal(); });
  EXPECT_EQ(failure.explanation, "Cannot compute the product of zero and infinity");
  EXPECT_EQ(failure.function, "quvex::NodeDoubleProductTemplate<quvex::SubsetMASK<unsigned char>>::eval");
}

TEST(NodeDoubleProduct, PicksTakeAnyChangeOfAnyOperand) {
  AggregateStage product(NodeType::DoubleProduct, "ddd");
  product.refresh();
  for (RandomState state = 0; state < 20; ++state) {
    EXPECT_EQ(product.decrease(state * 99991), product.anyChange(state * 99991));
    EXPECT_EQ(product.increase(state * 99991), product.anyChange(state * 99991));
    EXPECT_EQ(product.change(state * 99991), product.anyChange(state * 99991));
  }
}

TEST(NodeDoubleProduct, BoundsTurnRoundWhereItCostsLeast) {
  AggregateStage product(NodeType::DoubleProduct, "dd");
  product.set(0, 0, -2, 3).set(1, 0, 0.5, 2);
  EXPECT_EQ(product.minDouble(), -4);
  EXPECT_EQ(product.maxDouble(), 6);
  product.set(0, 0, -0.25, 0.5).set(1, 0, 1, 1);
  EXPECT_EQ(product.minDouble(), -0.25) << "magnitudes below 1 count as well";
  EXPECT_EQ(product.maxDouble(), 0.5);
}

TEST(NodeDoubleProduct, AnInfiniteBoundGivesAllReals) {
  AggregateStage product(NodeType::DoubleProduct, "dd");
  product.set(0, 0, 1, 2).set(1, 1, 0, kInfinity);
  EXPECT_EQ(product.minDouble(), -kInfinity);
  EXPECT_EQ(product.maxDouble(), kInfinity);
}

TEST(NodeDoubleProduct, DumpIsTheCommonOne) {
  AggregateStage product(NodeType::DoubleProduct, "dd");
  product.refresh();
  EXPECT_EQ(product.dump(), "");
}

}  // namespace
}  // namespace quvex
