#include "solver/node/nodedoublescalarmax.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"
#include "support/failure.h"

namespace quvex {
namespace {

TEST(NodeDoubleScalarMax, ZeroTimesInfinityFailsUnderItsName) {
  AggregateStage max(NodeType::DoubleScalarMax, "dd", doubleWords({0, 1}));
  max.set(0, kInfinity).set(1, 1);
  EXPECT_EQ(failureOf([&] { max.refresh(); }).function,
            "quvex::NodeDoubleScalarMaxTemplate<quvex::SubsetMASK<unsigned char>>::computeValue");
  max.set(0, 1).refresh();
  const Failure incremental = failureOf([&] { max.move(0, kInfinity).evalReal(); });
  EXPECT_EQ(incremental.explanation, "Cannot compute the product of zero and infinity");
  EXPECT_EQ(incremental.function, "quvex::NodeDoubleScalarMaxTemplate<quvex::SubsetMASK<unsigned char>>::eval");
}

TEST(NodeDoubleScalarMax, ANegativeCoefficientTurnsEveryRequestRound) {
  AggregateStage max(NodeType::DoubleScalarMax, "dd", doubleWords({2, -1}));
  max.set(0, -9, -9, -9).set(1, 3, 0, 9).refresh();
  EXPECT_EQ(max.increase(), "b- 0");
  EXPECT_EQ(max.decrease(), "b+ 0");
  EXPECT_EQ(max.change(kCoinSet), "b+ 1") << "the support goes down by its term";
  EXPECT_EQ(max.change(kCoinClear), "b- 1") << "a candidate goes up by its term";
}

}  // namespace
}  // namespace quvex
