#include "solver/node/nodedoublescalarsum.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"
#include "support/failure.h"

namespace quvex {
namespace {

using Positions = std::vector<OperandPos>;

TEST(NodeDoubleScalarSum, WeighsItsOperands) {
  AggregateStage sum(NodeType::DoubleScalarSum, "idb", doubleWords({0.5, -2, 0}));
  EXPECT_EQ(sum.set(0, 3).set(1, 0.25).set(2, 1).real(), 1.0);
  EXPECT_EQ(sum.move(0, 5).move(1, 0.5).evalReal(), 1.5);
  EXPECT_EQ(sum.move(2, 0).evalReal(), 1.5) << "a coefficient of 0 contributes nothing";
}

TEST(NodeDoubleScalarSum, CandidatesGoByTheEffectOnTheSum) {
  AggregateStage sum(NodeType::DoubleScalarSum, "ddd", doubleWords({0.5, -0.5, 0}));
  sum.set(0, 0, 0, 1).set(1, 0, 0, 1).set(2, 0.5, 0, 1).refresh();
  EXPECT_EQ(sum.decreaseCandidates(), (Positions{1}));
  EXPECT_EQ(sum.increaseCandidates(), (Positions{0}));
  sum.commitReal(1, 1);
  EXPECT_TRUE(sum.decreaseCandidates().empty());
  EXPECT_EQ(sum.increaseCandidates(), (Positions{0, 1}));
  EXPECT_TRUE(sum.isInit());
}

TEST(NodeDoubleScalarSum, ANegativeCoefficientTurnsTheRequestRound) {
  AggregateStage sum(NodeType::DoubleScalarSum, "dd", doubleWords({0.5, -0.5}));
  sum.set(0, 0, 0, 1).set(1, 0, 0, 1).refresh();
  EXPECT_EQ(sum.decrease(), "b+ 0");
  EXPECT_EQ(sum.increase(), "a+ 0");
  sum.set(0, 1).set(1, 1).refresh();
  EXPECT_EQ(sum.decrease(), "a- 0");
  EXPECT_EQ(sum.increase(), "b- 0");
}

TEST(NodeDoubleScalarSum, FailuresCarryItsName) {
  AggregateStage sum(NodeType::DoubleScalarSum, "dd", doubleWords({1, 1}));
  sum.set(0, kInfinity).set(1, -kInfinity);
  const Failure fromScratch = failureOf([&] { sum.refresh(); });
  EXPECT_EQ(fromScratch.explanation, "Cannot compute the sum of two opposite infinite numbers");
  EXPECT_EQ(fromScratch.function, "quvex::NodeDoubleScalarSumTemplate<quvex::SubsetMASK<unsigned char>>::computeValue");
  EXPECT_TRUE(fromScratch.file.ends_with("include/solver/node/nodedoublescalarsum.h"));
  sum.set(1, 0).refresh();
  const Failure incremental = failureOf([&] { sum.move(1, -kInfinity).evalReal(); });
  EXPECT_EQ(incremental.explanation, fromScratch.explanation);
  EXPECT_EQ(incremental.function, "quvex::NodeDoubleScalarSumTemplate<quvex::SubsetMASK<unsigned char>>::eval");
}

TEST(NodeDoubleScalarSum, ACancellationRecomputes) {
  AggregateStage sum(NodeType::DoubleScalarSum, "dd", doubleWords({1, 2}));
  sum.set(0, 10).set(1, 1).refresh();
  sum.set(0, 20);  // behind the sum's back
  EXPECT_EQ(sum.move(1, 2).evalReal(), 14) << "a small step is incremental";
  EXPECT_EQ(sum.move(1, -5).evalReal(), 10) << "a fall to zero is not";
}

TEST(NodeDoubleScalarSum, BoundsFollowTheSigns) {
  AggregateStage sum(NodeType::DoubleScalarSum, "dd", doubleWords({0.5, -2}));
  sum.set(0, 0, -1, 4).set(1, 0, 1, 3);
  EXPECT_EQ(sum.minDouble(), -6.5);
  EXPECT_EQ(sum.maxDouble(), 0);
  sum.set(1, 0, -kInfinity, -kInfinity);
  EXPECT_EQ(sum.minDouble(), kInfinity);
  EXPECT_EQ(sum.maxDouble(), kInfinity);
}

TEST(NodeDoubleScalarSum, DumpAddsTheCoefficients) {
  AggregateStage sum(NodeType::DoubleScalarSum, "dd", doubleWords({1.5, -0.1}));
  sum.set(0, 0, 0, 1).set(1, 0, 0, 1).refresh();
  EXPECT_EQ(sum.dump(),
            "isNotMinNodesInit=1\nisNotMaxNodesInit=1\nnotMinNodes= 1\nnotMaxNodes= 0\ncoefficients 1.5 -0.1\n");
}

}  // namespace
}  // namespace quvex
