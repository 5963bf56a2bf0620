#include "solver/node/nodedoublescalarmin.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"
#include "support/failure.h"

namespace quvex {
namespace {

TEST(NodeDoubleScalarMin, ComparesTerms) {
  AggregateStage min(NodeType::DoubleScalarMin, "did", doubleWords({0.5, -1, 0}));
  min.set(0, 3, 0, 9).set(1, 4, 0, 9).set(2, 5, 0, 9).refresh();
  EXPECT_EQ(min.dag->committedDouble(min.id), -4);
  EXPECT_EQ(min.commitReal(1, 0), 0);
  EXPECT_TRUE(min.isInit());
  EXPECT_EQ(min.dump(),
            "isDecreaseCandidatesInit=1\ndecreaseCandidates= 1\nisSupportInit=1\nsupportNodePos=2\n"
            "coefficients 0.5 -1 0\n");
}

TEST(NodeDoubleScalarMin, ANegativeCoefficientTurnsEveryRequestRound) {
  AggregateStage min(NodeType::DoubleScalarMin, "dd", doubleWords({2, -1}));
  min.set(0, 4, 4, 9).set(1, 3, 0, 9).refresh();
  EXPECT_EQ(min.decrease(), "b+ 0");
  EXPECT_EQ(min.increase(), "b- 0");
  EXPECT_EQ(min.change(kCoinSet), "b+ 1");
  EXPECT_EQ(min.change(kCoinClear), "b+ 1");
}

TEST(NodeDoubleScalarMin, ZeroTimesInfinityFailsUnderItsName) {
  AggregateStage min(NodeType::DoubleScalarMin, "dd", doubleWords({0, 1}));
  min.set(0, kInfinity).set(1, 1);
  const Failure fromScratch = failureOf([&] { min.refresh(); });
  EXPECT_EQ(fromScratch.explanation, "Cannot compute the product of zero and infinity");
  EXPECT_EQ(fromScratch.function, "quvex::NodeDoubleScalarMinTemplate<quvex::SubsetMASK<unsigned char>>::computeValue");
  min.set(0, 1).refresh();
  const Failure incremental = failureOf([&] { min.move(0, -kInfinity).evalReal(); });
  EXPECT_EQ(incremental.explanation, fromScratch.explanation);
  EXPECT_EQ(incremental.function, "quvex::NodeDoubleScalarMinTemplate<quvex::SubsetMASK<unsigned char>>::eval");
  EXPECT_TRUE(incremental.isKernel);
}

TEST(NodeDoubleScalarMin, TheRescanFailsOnAProductAsWell) {
  AggregateStage min(NodeType::DoubleScalarMin, "dd", doubleWords({0, 1}));
  min.set(0, 1).set(1, -1).refresh();
  min.set(0, kInfinity);  // behind its back
  EXPECT_EQ(explanationOf([&] { min.move(1, 5).evalReal(); }), "Cannot compute the product of zero and infinity");
}

TEST(NodeDoubleScalarMin, BoundsTakeTheLowerProductAsMinimum) {
  AggregateStage min(NodeType::DoubleScalarMin, "dd", doubleWords({0.5, -3}));
  min.set(0, 2, 1, 5).set(1, 0, -2, 1);
  EXPECT_EQ(min.minDouble(), -3);
  EXPECT_EQ(min.maxDouble(), 2.5);
}

}  // namespace
}  // namespace quvex
