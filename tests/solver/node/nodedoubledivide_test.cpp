#include "solver/node/nodedoubledivide.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/failure.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

TEST(NodeDoubleDivide, DividesOperandsReadAsDoubles) {
  NodeStage quotient(NodeType::DoubleDivide, "id");
  EXPECT_EQ(quotient.set(0, 5, 0, 9).set(1, 2, 1, 2).real(), 2.5);
  EXPECT_EQ(quotient.setTentative(1, 4).evalReal(), 1.25);
}

TEST(NodeDoubleDivide, AZeroDivisorGivesWhatTheProcessorGives) {
  NodeStage quotient(NodeType::DoubleDivide, "dd");
  quotient.set(0, 1, -1, 1).set(1, 0, 0, 1);
  EXPECT_EQ(quotient.real(), kInfinity);
  EXPECT_EQ(quotient.set(0, -1).real(), -kInfinity);
  EXPECT_TRUE(std::isnan(quotient.set(0, 0).evalReal()));
}

TEST(NodeDoubleDivide, RefusesADivisorFixedAtZero) {
  NodeStage quotient(NodeType::DoubleDivide, "dd");
  quotient.set(1, 0, 0, 0);
  EXPECT_EQ(failureOf([&] { (void)quotient.bounds(); }),
            refusal("NodeDoubleDivide::computeBounds", "Division by zero."));
}

TEST(NodeDoubleDivide, BoundsAreTheExtremeQuotientsOrInfinite) {
  NodeStage quotient(NodeType::DoubleDivide, "dd");
  const auto bounds = [&](double a1, double a2, double b1, double b2) {
    return quotient.set(0, a1, a1, a2).set(1, b1, b1, b2).bounds();
  };
  const Bounds anything = Bounds::ofDoubles(-kInfinity, kInfinity);
  EXPECT_EQ(bounds(1, 8, 2, 4), Bounds::ofDoubles(0.25, 4));
  EXPECT_EQ(bounds(-1, 8, -4, -2), Bounds::ofDoubles(-4, 0.5));
  EXPECT_EQ(bounds(1, 8, -1, 4), anything);
  EXPECT_EQ(bounds(1, 8, 0, 4), anything);
  EXPECT_EQ(bounds(1, kInfinity, 2, kInfinity), anything) << "infinity over infinity is no number";
}

TEST(NodeDoubleDivide, PicksAsTheIntegerFormWithTolerance) {
  NodeStage quotient(NodeType::DoubleDivide, "dd");
  quotient.set(0, 4, -9, 9).set(1, 2, -9, 9);
  EXPECT_EQ(quotient.decrease(kCoinSet), "a- 1");
  EXPECT_EQ(quotient.increase(kCoinSet), "b- 1");
  quotient.set(1, 1e-7);
  EXPECT_EQ(quotient.decrease(kCoinSet), "b- 1") << "positive within tolerance only";
  EXPECT_EQ(quotient.increase(kCoinSet), "a- 1");
  quotient.set(0, 1e-7);
  EXPECT_EQ(quotient.decrease(), "a+ 0") << "a dividend of zero within tolerance";
  EXPECT_EQ(quotient.set(1, 2).decrease(), "a- 0");
}

TEST(NodeDoubleDivide, PickChangeMovesADividendOfZero) {
  NodeStage quotient(NodeType::DoubleDivide, "dd");
  quotient.set(0, 1e-7, -9, 9).set(1, 2, -9, 9);
  EXPECT_EQ(quotient.change(), "a~ 0");
  quotient.set(0, 1);
  for (RandomState state : {1U, 2U, 3U, 4U}) EXPECT_EQ(quotient.change(state), quotient.anyChange(state));
}

}  // namespace
}  // namespace quvex
