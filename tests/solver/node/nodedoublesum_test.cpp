#include "solver/node/nodedoublesum.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"
#include "support/failure.h"

namespace quvex {
namespace {

using Positions = std::vector<OperandPos>;

constexpr double kHuge = 1e17;  // adding 1 to it is lost

TEST(NodeDoubleSum, AddsOperandsOfAnyDomain) {
  AggregateStage sum(NodeType::DoubleSum, "bid");
  EXPECT_EQ(sum.set(0, 1).set(1, -3).set(2, 0.25).real(), -1.75);
  EXPECT_EQ(sum.move(1, 5).move(2, 0.5).evalReal(), 6.5);
  sum.commit();
  EXPECT_EQ(sum.dag->committedDouble(sum.id), 6.5);
}

TEST(NodeDoubleSum, ReadsAnIntegerCellByConversion) {
  AggregateStage sum(NodeType::DoubleSum, "i");
  EXPECT_EQ(sum.set(0, 3).real(), 3.0);
  EXPECT_EQ(sum.move(0, 4).evalReal(), 4.0);
}

TEST(NodeDoubleSum, AddsInOperandOrder) {
  AggregateStage sum(NodeType::DoubleSum, "ddd");
  EXPECT_EQ(sum.set(0, kHuge).set(1, 1).set(2, -kHuge).real(), 0.0);
  EXPECT_EQ(sum.set(0, kHuge).set(1, -kHuge).set(2, 1).real(), 1.0);
}

TEST(NodeDoubleSum, OppositeInfinitiesHaveNoSum) {
  GraphBuilder graph;
  graph.add(NodeType::DoubleSum, {graph.constantDouble(kInfinity), graph.constantDouble(-kInfinity)});
  const Failure failure = failureOf([&] { graph.build(); });
  EXPECT_EQ(failure.explanation, "Cannot compute the sum of two opposite infinite numbers");
  EXPECT_EQ(failure.function, "quvex::NodeDoubleSumTemplate<quvex::SubsetMASK<unsigned char>>::computeValue");
  EXPECT_TRUE(failure.file.ends_with("include/solver/node/nodedoublesum.h")) << failure.file;
  EXPECT_TRUE(failure.isKernel);
}

TEST(NodeDoubleSum, FailsInEvalUnderItsOwnName) {
  AggregateStage sum(NodeType::DoubleSum, "dd");
  sum.set(0, kInfinity).set(1, 1).refresh();
  const Failure failure = failureOf([&] { sum.move(1, -kInfinity).evalReal(); });
  EXPECT_EQ(failure.explanation, "Cannot compute the sum of two opposite infinite numbers");
  EXPECT_EQ(failure.function, "quvex::NodeDoubleSumTemplate<quvex::SubsetMASK<unsigned char>>::eval");
  EXPECT_EQ(sum.dag->tentativeDouble(sum.id), kInfinity) << "nothing is stored";
}

TEST(NodeDoubleSum, SpellsTheOtherContainersToo) {
  AggregateStage sum(NodeType::DoubleSum, std::string(70, 'd'));
  sum.set(0, kInfinity).refresh();
  const Failure failure = failureOf([&] { sum.move(69, -kInfinity).evalReal(); });
  EXPECT_EQ(failure.function, "quvex::NodeDoubleSumTemplate<quvex::SubsetBits>::eval");
}

/// The first operand was replaced behind the sum's back, so that the result tells who added up.
double evalAfterHiddenChange(double hiddenBefore, double hiddenAfter, double before, double after) {
  AggregateStage sum(NodeType::DoubleSum, "dd");
  sum.set(0, hiddenBefore).set(1, before).refresh();
  sum.set(0, hiddenAfter);
  return sum.move(1, after).evalReal();
}

TEST(NodeDoubleSum, ASmallStepIsIncremental) { EXPECT_EQ(evalAfterHiddenChange(10, 20, 1, 2), 12); }

TEST(NodeDoubleSum, FallingToZeroRecomputes) { EXPECT_EQ(evalAfterHiddenChange(10, 20, 1, -10), 10); }

TEST(NodeDoubleSum, CrossingZeroRecomputes) { EXPECT_EQ(evalAfterHiddenChange(10, 20, 0, -20), 0); }

TEST(NodeDoubleSum, ALargeJumpRecomputes) {
  EXPECT_EQ(evalAfterHiddenChange(1, 2, 0, 1e7), 1e7 + 2);
  EXPECT_EQ(evalAfterHiddenChange(1, 2, 0, 1e5), 1e5 + 1) << "below the threshold of 0.999999";
}

TEST(NodeDoubleSum, AtZeroTheStepItselfIsCompared) {
  EXPECT_EQ(evalAfterHiddenChange(0, 5, 0, 0.5), 0.5);
  EXPECT_EQ(evalAfterHiddenChange(0, 5, 0, 0.999999), 0.999999) << "not above the threshold";
  EXPECT_EQ(evalAfterHiddenChange(0, 5, 0, 1), 6);
}

TEST(NodeDoubleSum, CandidatesCompareBoundsWithoutTolerance) {
  AggregateStage sum(NodeType::DoubleSum, "ddd");
  sum.set(0, 1e-9, 0, 1).set(1, 0, 0, 1).set(2, 1, 0, 1).refresh();
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{0, 2}));
  EXPECT_EQ(sum.increaseCandidates(), (Positions{0, 1}));
}

TEST(NodeDoubleSum, PicksStopAtTheBoundWithinTolerance) {
  AggregateStage sum(NodeType::DoubleSum, "dd");
  sum.set(0, 1e-9, 0, 1).set(1, 0, 0, 1).refresh();
  EXPECT_EQ(sum.decrease(), "none 0") << "there is a candidate, but the sum counts as at its minimum";
  EXPECT_EQ(sum.increase(stateForChoice(2, 1)), "b+ 1");
  sum.set(0, 0.5).refresh();
  EXPECT_EQ(sum.decrease(), "a- 0");
  sum.set(0, 1).set(1, 1 - 1e-9).refresh();
  EXPECT_EQ(sum.increase(), "none 0");
}

TEST(NodeDoubleSum, PickChangeTakesAnyOperandEitherWay) {
  AggregateStage sum(NodeType::DoubleSum, "ddd");
  sum.refresh();
  for (RandomState state = 0; state < 20; ++state) EXPECT_EQ(sum.change(state * 99991), sum.anyChange(state * 99991));
}

TEST(NodeDoubleSum, BoundsAddUp) {
  AggregateStage sum(NodeType::DoubleSum, "db");
  sum.set(0, 0, -1.5, 2);
  EXPECT_EQ(sum.minDouble(), -1.5);
  EXPECT_EQ(sum.maxDouble(), 3);
}

TEST(NodeDoubleSum, AnAlwaysInfiniteOperandDecidesTheBounds) {
  AggregateStage sum(NodeType::DoubleSum, "ddd");
  sum.set(0, 0, 1, 2).set(1, 0, kInfinity, kInfinity).set(2, 0, -kInfinity, -kInfinity);
  EXPECT_EQ(sum.minDouble(), kInfinity);
  EXPECT_EQ(sum.maxDouble(), kInfinity);
  sum.set(1, 0, -kInfinity, -kInfinity).set(2, 0, kInfinity, kInfinity);
  EXPECT_EQ(sum.minDouble(), -kInfinity);
  EXPECT_EQ(sum.maxDouble(), -kInfinity);
  sum.set(1, 0, -kInfinity, kInfinity).set(2, 0, 0, 1);
  EXPECT_EQ(sum.minDouble(), -kInfinity);
  EXPECT_EQ(sum.maxDouble(), kInfinity);
}

}  // namespace
}  // namespace quvex
