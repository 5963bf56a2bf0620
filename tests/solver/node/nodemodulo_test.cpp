#include "solver/node/nodemodulo.h"

#include <gtest/gtest.h>

#include "support/failure.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

TEST(NodeModulo, HasTheSignOfTheDividend) {
  NodeStage remainder(NodeType::Modulo, "ii");
  EXPECT_EQ(remainder.set(0, -7).set(1, 2).integer(), -1);
  EXPECT_EQ(remainder.set(0, 7).set(1, -2).integer(), 1);
  EXPECT_EQ(remainder.setTentative(0, -8).evalInteger(), 0);
}

TEST(NodeModulo, FailsOnAZeroDivisorAtEveryEvaluation) {
  NodeStage remainder(NodeType::Modulo, "ii");
  remainder.set(0, 7).set(1, 2).refresh();
  remainder.setTentative(1, 0);
  EXPECT_EQ(failureOf([&] { remainder.evalInteger(); }), refusal("NodeModulo::eval", "Division by zero."));
  remainder.set(1, 0);
  EXPECT_EQ(failureOf([&] { remainder.refresh(); }), refusal("NodeModulo::computeValue", "Division by zero."));
  remainder.setIntegerBounds(1, 0, 0);
  EXPECT_EQ(failureOf([&] { (void)remainder.bounds(); }), refusal("NodeModulo::computeBounds", "Division by zero."));
}

TEST(NodeModulo, FailsWhereTheProcessorWouldTrap) {
  NodeStage remainder(NodeType::Modulo, "ii");
  remainder.setInteger(0, kLowestInt).set(1, -1);
  EXPECT_EQ(failureOf([&] { remainder.refresh(); }),
            refusal("NodeModulo::computeValue", "Integer overflow in the division of -9223372036854775808 by -1."));
}

TEST(NodeModulo, BoundsGoByBothOperands) {
  NodeStage remainder(NodeType::Modulo, "ii");
  const auto bounds = [&](std::int64_t a1, std::int64_t a2, std::int64_t b1, std::int64_t b2) {
    return remainder.setIntegerBounds(0, a1, a2).setIntegerBounds(1, b1, b2).bounds();
  };
  EXPECT_EQ(bounds(0, 100, 0, 7), (Bounds{0, 6}));
  EXPECT_EQ(bounds(3, 5, 2, 70), (Bounds{0, 5})) << "the minimum of the dividend does not count";
  EXPECT_EQ(bounds(-3, 100, 2, 7), (Bounds{-6, 6})) << "both sides go by the larger end";
  EXPECT_EQ(bounds(-3, 2, 2, 7), (Bounds{-3, 3}));
  EXPECT_EQ(bounds(0, 100, -9, 7), (Bounds{-8, 8}));
  EXPECT_EQ(bounds(kLowestInt, 0, kLowestInt, 5), (Bounds{1 - kHighestInt, kHighestInt - 1}));
}

TEST(NodeModulo, PicksTakeAnyChangeUnlessTheDividendIsZero) {
  NodeStage remainder(NodeType::Modulo, "ii");
  remainder.set(0, 3, -9, 9).set(1, 2, -9, 9).refresh();
  for (RandomState state : {1U, 2U, 3U, 4U, 5U, 6U}) {
    EXPECT_EQ(remainder.decrease(state), remainder.anyChange(state));
    EXPECT_EQ(remainder.increase(state), remainder.anyChange(state));
    EXPECT_EQ(remainder.change(state), remainder.anyChange(state));
  }
  remainder.set(0, 0);
  EXPECT_EQ(remainder.decrease(), "a- 0");
  EXPECT_EQ(remainder.increase(), "a+ 0");
  remainder.set(1, -2);
  EXPECT_EQ(remainder.decrease(), "a+ 0");
  EXPECT_EQ(remainder.increase(), "a- 0");
  EXPECT_EQ(remainder.change(1), remainder.anyChange(1));
}

}  // namespace
}  // namespace quvex
