#include "solver/node/nodedoublefunctions.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/failure.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

double valueOf(NodeType type, double x) {
  NodeStage stage(type, "d");
  stage.set(0, x, x, x).refresh();
  return stage.dag->committedDouble(stage.id);
}

Bounds boundsOf(NodeType type, double min, double max) {
  NodeStage stage(type, "d");
  return stage.set(0, min, min, max).bounds();
}

TEST(NodeDoubleCast, ConvertsBooleansAndIntegers) {
  NodeStage boolean(NodeType::DoubleCast, "b");
  EXPECT_EQ(boolean.set(0, 0).real(), 0.0);
  EXPECT_EQ(boolean.set(0, 1).real(), 1.0);
  EXPECT_EQ(boolean.bounds(), Bounds::ofDoubles(0, 1));
  NodeStage integer(NodeType::DoubleCast, "i");
  EXPECT_EQ(integer.set(0, -7, -9, 9).real(), -7.0);
  EXPECT_EQ(integer.setTentative(0, 3).evalReal(), 3.0);
  EXPECT_EQ(integer.bounds(), Bounds::ofDoubles(-9, 9));
}

TEST(NodeDoubleRound, RoundsHalvesUp) {
  EXPECT_EQ(valueOf(NodeType::DoubleRound, 2.5), 3);
  EXPECT_EQ(valueOf(NodeType::DoubleRound, -2.5), -2);
  EXPECT_EQ(valueOf(NodeType::DoubleRound, 2.4999995), 3) << "the tolerance of floor";
  EXPECT_EQ(boundsOf(NodeType::DoubleRound, -2.5, 2.5), (Bounds{-2, 3}));
}

TEST(NodeDoubleCeil, ForgivesARoundingError) {
  EXPECT_EQ(valueOf(NodeType::DoubleCeil, 2.1), 3);
  EXPECT_EQ(valueOf(NodeType::DoubleCeil, 3.0000001), 3);
  EXPECT_EQ(boundsOf(NodeType::DoubleCeil, -1.5, 1.5), (Bounds{-1, 2}));
}

TEST(NodeDoubleFloor, ForgivesARoundingError) {
  EXPECT_EQ(valueOf(NodeType::DoubleFloor, 2.9), 2);
  EXPECT_EQ(valueOf(NodeType::DoubleFloor, 2.9999999), 3);
  EXPECT_EQ(boundsOf(NodeType::DoubleFloor, -1.5, 1.5), (Bounds{-2, 1}));
}

TEST(NodeDoubleFloor, DeliversAnIntegerAndFailsWhereThereIsNone) {
  NodeStage floor(NodeType::DoubleFloor, "d");
  EXPECT_EQ(floor.fixed.nodeDomains[floor.id], Domain::Integer);
  EXPECT_EQ(floor.set(0, 2.9, 0, 9).integer(), 2);
  EXPECT_EQ(floor.setTentative(0, 5.5).evalInteger(), 5);
  floor.set(0, 0, 0, 1e300);
  EXPECT_EQ(failureOf([&] { (void)floor.bounds(); }),
            refusal("MathDouble::floor", "Invalid ceil operation (out of bounds)"));
}

TEST(NodeDoubleSqrt, TakesRootsOfWhatIsNotNegative) {
  EXPECT_EQ(valueOf(NodeType::DoubleSqrt, 9), 3.0);
  EXPECT_EQ(boundsOf(NodeType::DoubleSqrt, -4, 16), Bounds::ofDoubles(0, 4));
  EXPECT_EQ(boundsOf(NodeType::DoubleSqrt, -4, -1), Bounds::ofDoubles(0, 0));
  NodeStage root(NodeType::DoubleSqrt, "d");
  EXPECT_EQ(failureOf([&] { root.set(0, -1, -1, 1).refresh(); }),
            refusal("MathDouble::sqrt", "Invalid square root operation (NaN or negative number provided)"));
}

TEST(NodeDoubleLog, IsMinusInfinityAtZero) {
  EXPECT_EQ(valueOf(NodeType::DoubleLog, 1), 0.0);
  EXPECT_EQ(valueOf(NodeType::DoubleLog, 0), -kInfinity);
  EXPECT_EQ(boundsOf(NodeType::DoubleLog, -4, 1), Bounds::ofDoubles(-kInfinity, 0));
}

TEST(NodeDoubleExp, OverflowsToInfinity) {
  EXPECT_EQ(valueOf(NodeType::DoubleExp, 0), 1.0);
  EXPECT_EQ(valueOf(NodeType::DoubleExp, 1e4), kInfinity);
  EXPECT_EQ(boundsOf(NodeType::DoubleExp, -kInfinity, 0), Bounds::ofDoubles(0, 1));
}

TEST(NodeDoubleCos, LiesBetweenMinusOneAndOne) {
  EXPECT_EQ(valueOf(NodeType::DoubleCos, 0), 1.0);
  EXPECT_EQ(boundsOf(NodeType::DoubleCos, 0, 0.1), Bounds::ofDoubles(-1, 1));
}

TEST(NodeDoubleSin, LiesBetweenMinusOneAndOne) {
  EXPECT_EQ(valueOf(NodeType::DoubleSin, 0), 0.0);
  EXPECT_EQ(boundsOf(NodeType::DoubleSin, 0, 0.1), Bounds::ofDoubles(-1, 1));
}

TEST(NodeDoubleTan, HasFiniteBoundsOnlyWithinItsCentralBranch) {
  EXPECT_EQ(valueOf(NodeType::DoubleTan, 0), 0.0);
  EXPECT_EQ(boundsOf(NodeType::DoubleTan, -1, 1), Bounds::ofDoubles(std::tan(-1.0), std::tan(1.0)));
  const Bounds anything = Bounds::ofDoubles(-kInfinity, kInfinity);
  EXPECT_EQ(boundsOf(NodeType::DoubleTan, -1, 1.5707963267948966), anything);
  EXPECT_EQ(boundsOf(NodeType::DoubleTan, -1.5707963267948966, 1), anything);
  EXPECT_EQ(boundsOf(NodeType::DoubleTan, 2, 3), anything);
}

TEST(NodeDoubleFunctions, RisingOnesPassPicksDown) {
  for (const NodeType type : {NodeType::DoubleCast, NodeType::DoubleFloor, NodeType::DoubleRound, NodeType::DoubleSqrt,
                              NodeType::DoubleLog, NodeType::DoubleExp, NodeType::DoubleCeil}) {
    NodeStage stage(type, "d");
    EXPECT_EQ(stage.decrease(), "a- 0") << NodeTypeUtils::toString(type);
    EXPECT_EQ(stage.increase(), "a+ 0") << NodeTypeUtils::toString(type);
    if (type != NodeType::DoubleCeil) {
      EXPECT_EQ(stage.change(), "a~ 0") << NodeTypeUtils::toString(type);
    }
  }
}

TEST(NodeDoubleFunctions, CeilTossesForAChangeUnlikeFloor) {
  NodeStage ceil(NodeType::DoubleCeil, "d");
  EXPECT_EQ(ceil.change(kCoinSet), "a- 1");
  EXPECT_EQ(ceil.change(kCoinClear), "a+ 1");
}

TEST(NodeDoubleFunctions, TrigonometricOnesAskForAnyChange) {
  for (const NodeType type : {NodeType::DoubleCos, NodeType::DoubleSin, NodeType::DoubleTan}) {
    NodeStage stage(type, "d");
    EXPECT_EQ(stage.decrease(), "a~ 0") << NodeTypeUtils::toString(type);
    EXPECT_EQ(stage.increase(), "a~ 0") << NodeTypeUtils::toString(type);
    EXPECT_EQ(stage.change(), "a~ 0") << NodeTypeUtils::toString(type);
  }
}

}  // namespace
}  // namespace quvex
