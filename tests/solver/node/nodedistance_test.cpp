#include "solver/node/nodedistance.h"

#include <gtest/gtest.h>

#include "support/failure.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

TEST(NodeDistance, IsTheAbsoluteDifference) {
  NodeStage distance(NodeType::Distance, "ii");
  EXPECT_EQ(distance.set(0, 3).set(1, 10).integer(), 7);
  EXPECT_EQ(distance.set(0, 10).set(1, 3).integer(), 7);
  EXPECT_EQ(distance.setTentative(1, 30).evalInteger(), 20);
}

TEST(NodeDistance, Wraps) {
  NodeStage distance(NodeType::Distance, "ii");
  EXPECT_EQ(distance.setInteger(0, kLowestInt).setInteger(1, kHighestInt).integer(), 1);
}

TEST(NodeDistance, BoundsGoFromTheGapToTheFarEnds) {
  NodeStage distance(NodeType::Distance, "ii");
  const auto bounds = [&](std::int64_t a1, std::int64_t a2, std::int64_t b1, std::int64_t b2) {
    return distance.setIntegerBounds(0, a1, a2).setIntegerBounds(1, b1, b2).bounds();
  };
  EXPECT_EQ(bounds(0, 3, 5, 9), (Bounds{2, 9}));
  EXPECT_EQ(bounds(5, 9, 0, 3), (Bounds{2, 9}));
  EXPECT_EQ(bounds(0, 10, 3, 4), (Bounds{0, 7}));
  EXPECT_EQ(bounds(0, 5, 5, 6), (Bounds{0, 6}));
  EXPECT_EQ(bounds(kLowestInt, kHighestInt, 0, 0), (Bounds{0, kHighestInt}));
  EXPECT_EQ(bounds(kLowestInt, kLowestInt, -5, -5), (Bounds{kHighestInt - 4, kHighestInt - 4}));
  EXPECT_EQ(bounds(kLowestInt, kLowestInt, 5, 5), (Bounds{kHighestInt, kHighestInt}));
}

TEST(NodeDistance, PickDecreaseBringsTheOperandsTogether) {
  NodeStage distance(NodeType::Distance, "ii");
  distance.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
  EXPECT_EQ(distance.decrease(kCoinSet), "b- 1");
  EXPECT_EQ(distance.decrease(kCoinClear), "a+ 1");
  distance.set(0, 6).set(1, 3).refresh();
  EXPECT_EQ(distance.decrease(kCoinSet), "a- 1");
  EXPECT_EQ(distance.decrease(kCoinClear), "b+ 1");
  EXPECT_EQ(distance.set(1, 6).refresh().decrease(), "none 0");
}

TEST(NodeDistance, PickIncreasePushesTheOperandsApart) {
  NodeStage distance(NodeType::Distance, "ii");
  distance.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
  EXPECT_EQ(distance.increase(kCoinSet), "a- 1");
  EXPECT_EQ(distance.increase(kCoinClear), "b+ 1");
  distance.set(0, 6).set(1, 3).refresh();
  EXPECT_EQ(distance.increase(kCoinSet), "b- 1");
  EXPECT_EQ(distance.increase(kCoinClear), "a+ 1");
  distance.set(1, 6).refresh();
  for (RandomState state : {1U, 2U, 3U, 4U, 5U, 6U}) EXPECT_EQ(distance.increase(state), distance.anyChange(state));
}

TEST(NodeDistance, PickChangeTakesAnyChange) {
  NodeStage distance(NodeType::Distance, "ii");
  for (RandomState state : {1U, 2U, 3U, 4U, 5U, 6U}) EXPECT_EQ(distance.change(state), distance.anyChange(state));
}

TEST(NodeDoubleDistance, ReadsBothOperandsAsDoubles) {
  NodeStage distance(NodeType::DoubleDistance, "id");
  EXPECT_EQ(distance.set(0, 3, -4, 4).set(1, 0.5, 0, 1).real(), 2.5);
  EXPECT_EQ(distance.bounds(), Bounds::ofDoubles(0, 5));
  EXPECT_EQ(distance.set(1, 6, 5.5, 6).bounds(), Bounds::ofDoubles(1.5, 10));
  EXPECT_EQ(distance.setTentative(0, 5).evalReal(), 1.0);
}

TEST(NodeDoubleDistance, RefusesTwoInfinities) {
  NodeStage distance(NodeType::DoubleDistance, "dd");
  distance.set(0, -kInfinity, -kInfinity, kInfinity).set(1, kInfinity, -kInfinity, kInfinity);
  EXPECT_EQ(distance.bounds(), Bounds::ofDoubles(0, kInfinity));
  EXPECT_EQ(failureOf([&] { distance.refresh(); }),
            refusal("MathDouble::dist", "Cannot compute distance between two infinities"));
  distance.set(0, kInfinity, kInfinity, kInfinity).set(1, kInfinity, kInfinity, kInfinity);
  EXPECT_EQ(distance.bounds(), Bounds::ofDoubles(0, 0)) << "no number comes of two equal infinities";
}

TEST(NodeDoubleDistance, PicksAsTheIntegerFormWithTolerance) {
  NodeStage distance(NodeType::DoubleDistance, "dd");
  distance.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
  EXPECT_EQ(distance.decrease(kCoinSet), "b- 1");
  EXPECT_EQ(distance.increase(kCoinSet), "a- 1");
  distance.set(0, 3, 0, 3.0000001).refresh();
  EXPECT_EQ(distance.decrease(kCoinClear), "b- 0") << "the first is at its maximum";
  distance.set(0, 1e-8, 0, 9).set(1, 0, 0, 9).refresh();
  EXPECT_EQ(distance.decrease(), "none 0");
  EXPECT_EQ(distance.increase(kCoinSet), "a+ 0") << "not equal, if only just; the second is at its minimum";
  distance.set(1, 1e-8).refresh();
  for (RandomState state : {1U, 2U, 3U, 4U}) {
    EXPECT_EQ(distance.increase(state), distance.anyChange(state));
    EXPECT_EQ(distance.change(state), distance.anyChange(state));
  }
}

}  // namespace
}  // namespace quvex
