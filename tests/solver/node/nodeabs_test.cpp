#include "solver/node/nodeabs.h"

#include <gtest/gtest.h>

#include "support/nodestage.h"

namespace quvex {
namespace {

TEST(NodeAbs, DropsTheSign) {
  NodeStage abs(NodeType::Abs, "i");
  EXPECT_EQ(abs.set(0, -7).integer(), 7);
  EXPECT_EQ(abs.set(0, 7).integer(), 7);
  EXPECT_EQ(abs.setTentative(0, -3).evalInteger(), 3);
  EXPECT_EQ(abs.dag->nodeValue[abs.id], 7);
}

TEST(NodeAbs, WrapsTheLowestIntegerToItself) {
  NodeStage abs(NodeType::Abs, "i");
  EXPECT_EQ(abs.setInteger(0, kLowestInt).integer(), kLowestInt);
}

TEST(NodeAbs, BoundsGoByTheSideOfZero) {
  NodeStage abs(NodeType::Abs, "i");
  const auto bounds = [&](std::int64_t min, std::int64_t max) { return abs.setIntegerBounds(0, min, max).bounds(); };
  EXPECT_EQ(bounds(2, 5), (Bounds{2, 5}));
  EXPECT_EQ(bounds(-3, 5), (Bounds{0, 5}));
  EXPECT_EQ(bounds(-7, 5), (Bounds{0, 7}));
  EXPECT_EQ(bounds(-7, 0), (Bounds{0, 7}));
  EXPECT_EQ(bounds(-7, -2), (Bounds{2, 7}));
  EXPECT_EQ(bounds(kLowestInt, 5), (Bounds{0, kHighestInt}));
  EXPECT_EQ(bounds(kLowestInt, kLowestInt), (Bounds{kHighestInt, kHighestInt}));
}

TEST(NodeAbs, PicksGoBySign) {
  NodeStage abs(NodeType::Abs, "i");
  abs.set(0, 0, -9, 9);
  EXPECT_EQ(abs.decrease(), "none 0");
  EXPECT_EQ(abs.increase(), "a- 0") << "from zero an increase goes down";
  EXPECT_EQ(abs.change(), "a~ 0");
  abs.set(0, -1);
  EXPECT_EQ(abs.decrease(), "a+ 0");
  EXPECT_EQ(abs.increase(), "a- 0");
  abs.set(0, 1);
  EXPECT_EQ(abs.decrease(), "a- 0");
  EXPECT_EQ(abs.increase(), "a+ 0");
}

TEST(NodeDoubleAbs, DropsTheSign) {
  NodeStage abs(NodeType::DoubleAbs, "d");
  EXPECT_EQ(abs.set(0, -2.5, -9, 9).real(), 2.5);
  EXPECT_EQ(abs.setTentative(0, -3.5).evalReal(), 3.5);
}

TEST(NodeDoubleAbs, BoundsGoByTheSideOfZero) {
  NodeStage abs(NodeType::DoubleAbs, "d");
  const auto bounds = [&](double min, double max) { return abs.set(0, min, min, max).bounds(); };
  EXPECT_EQ(bounds(0.5, 2), Bounds::ofDoubles(0.5, 2));
  EXPECT_EQ(bounds(-2.5, -0.5), Bounds::ofDoubles(0.5, 2.5));
  EXPECT_EQ(bounds(-2.5, 2), Bounds::ofDoubles(0, 2.5));
  EXPECT_EQ(bounds(-kInfinity, kInfinity), Bounds::ofDoubles(0, kInfinity));
}

TEST(NodeDoubleAbs, PicksCountASmallValueAsZero) {
  NodeStage abs(NodeType::DoubleAbs, "d");
  abs.set(0, 1e-7, -9, 9);
  EXPECT_EQ(abs.decrease(), "none 0");
  EXPECT_EQ(abs.increase(), "a- 0") << "positive within tolerance only";
  EXPECT_EQ(abs.set(0, 1e-5).increase(), "a+ 0");
  EXPECT_EQ(abs.decrease(), "a- 0");
  EXPECT_EQ(abs.set(0, -1e-5).increase(), "a- 0");
  EXPECT_EQ(abs.decrease(), "a+ 0");
  EXPECT_EQ(abs.change(), "a~ 0");
}

}  // namespace
}  // namespace quvex
