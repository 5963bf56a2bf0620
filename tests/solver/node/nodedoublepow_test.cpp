#include "solver/node/nodedoublepow.h"

#include <gtest/gtest.h>

#include "support/failure.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

TEST(NodeDoublePow, RaisesToThePower) {
  NodeStage power(NodeType::DoublePow, "id");
  EXPECT_EQ(power.set(0, 3).set(1, 2).real(), 9.0);
  EXPECT_EQ(power.setTentative(1, 3).evalReal(), 27.0);
  EXPECT_EQ(power.set(0, 2).set(1, -1).real(), kInfinity) << "any negative exponent gives an infinity";
}

TEST(NodeDoublePow, FailsForABrokenPowerOfANegativeBase) {
  NodeStage power(NodeType::DoublePow, "dd");
  power.set(0, -2).set(1, 0.5);
  EXPECT_EQ(failureOf([&] { power.refresh(); }),
            refusal("MathDouble::pow", "Invalid pow operation (non integer exponent with negative base)"));
}

TEST(NodeDoublePow, BoundsGoByTheSigns) {
  NodeStage power(NodeType::DoublePow, "dd");
  const auto bounds = [&](double a1, double a2, double b1, double b2) {
    return power.set(0, a1, a1, a2).set(1, b1, b1, b2).bounds();
  };
  const Bounds anything = Bounds::ofDoubles(-kInfinity, kInfinity);
  EXPECT_EQ(bounds(-3, 3, 0, 0), Bounds::ofDoubles(1, 1));
  EXPECT_EQ(bounds(-3, 3, 1, 1), Bounds::ofDoubles(-3, 3));
  EXPECT_EQ(bounds(2, 3, 0, 2), Bounds::ofDoubles(1, 9));
  EXPECT_EQ(bounds(0.5, 2, 1, 2), Bounds::ofDoubles(0.25, 4));
  EXPECT_EQ(bounds(0, 2, 0, 3), Bounds::ofDoubles(0, 8));
  EXPECT_EQ(bounds(-1, 2, 2, 3), anything);
  EXPECT_EQ(bounds(1, 2, -1, 3), anything);
}

TEST(NodeDoublePow, PicksAlwaysTossFirst) {
  NodeStage power(NodeType::DoublePow, "dd");
  power.set(0, 2, 0, 9).set(1, 2, 0, 9);
  EXPECT_EQ(power.decrease(kCoinSet), "b- 1");
  EXPECT_EQ(power.decrease(kCoinClear), "a- 1");
  EXPECT_EQ(power.increase(kCoinSet), "b+ 1");
  EXPECT_EQ(power.increase(kCoinClear), "a+ 1");
}

TEST(NodeDoublePow, BelowOneTheExponentWorksTheOtherWay) {
  NodeStage power(NodeType::DoublePow, "dd");
  power.set(0, 0.5, 0, 9).set(1, 2, 0, 9);
  EXPECT_EQ(power.decrease(kCoinSet), "b+ 1");
  EXPECT_EQ(power.increase(kCoinSet), "b- 1");
  EXPECT_EQ(power.set(0, 1).decrease(kCoinSet), "b- 1");
  EXPECT_EQ(power.set(0, 1 - 1e-9).decrease(kCoinSet), "b+ 1") << "the base is compared without tolerance";
}

TEST(NodeDoublePow, AnExponentWithoutRoomLeavesTheBase) {
  NodeStage power(NodeType::DoublePow, "dd");
  power.set(0, 2, 0, 9).set(1, 2, 2, 9);
  EXPECT_EQ(power.decrease(kCoinSet), "a- 1");
  power.set(1, 2, 2 - 1e-7, 9);
  EXPECT_EQ(power.decrease(kCoinSet), "a- 1") << "at its minimum within tolerance";
  power.set(0, 0.5).set(1, 2, 0, 2);
  EXPECT_EQ(power.decrease(kCoinSet), "a- 1");
  power.set(0, 2).set(1, 2, 0, 2);
  EXPECT_EQ(power.increase(kCoinSet), "a+ 1");
}

TEST(NodeDoublePow, FailsAfterTheTossWhenTheBaseHasNoRoom) {
  NodeStage power(NodeType::DoublePow, "dd");
  power.set(0, 2, 2, 2).set(1, 2, 0, 9);
  EXPECT_EQ(power.decrease(kCoinClear), "none 1");
  EXPECT_EQ(power.increase(kCoinClear), "none 1");
  EXPECT_EQ(power.decrease(kCoinSet), "b- 1");
}

TEST(NodeDoublePow, PickChangeTossesForTheExponent) {
  NodeStage power(NodeType::DoublePow, "dd");
  power.set(0, 2, 0, 9).set(1, 2, 0, 9);
  EXPECT_EQ(power.change(kCoinSet), "b~ 1");
  EXPECT_EQ(power.change(kCoinClear), "a~ 1");
  power.set(1, 2, 2, 2);
  EXPECT_EQ(power.change(kCoinSet), "a~ 1");
  power.set(0, 2, 2, 2);
  EXPECT_EQ(power.change(kCoinSet), "none 1");
  power.set(1, 2, 0, 9);
  EXPECT_EQ(power.change(kCoinClear), "none 1");
}

}  // namespace
}  // namespace quvex
