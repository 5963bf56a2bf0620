#include "solver/node/nodescalarmin.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

TEST(NodeScalarMin, ComparesTerms) {
  AggregateStage min(NodeType::ScalarMin, "iii", {2, -1, 0});
  min.set(0, 3, 0, 9).set(1, 4, 0, 9).set(2, 5, 0, 9).refresh();
  EXPECT_EQ(min.dag->nodeValue[min.id], -4);
  EXPECT_EQ(min.commitInteger(1, 0), 0);
  EXPECT_EQ(
      min.dump(),
      "isSupportsInit=1\nisDecreaseCandidatesInit=1\nsupports= 1 2\ndecreaseCandidates= 1\ncoefficients 2 -1 0\n");
  EXPECT_TRUE(min.isInit());
}

TEST(NodeScalarMin, ANegativeCoefficientTurnsTheRequestRound) {
  AggregateStage min(NodeType::ScalarMin, "ii", {2, -1});
  min.set(0, 4, 4, 9).set(1, 3, 0, 9).refresh();
  EXPECT_EQ(min.decrease(), "b+ 0") << "the candidate";
  EXPECT_EQ(min.increase(), "b- 0") << "the support";
}

TEST(NodeScalarMin, BoundsTakeTheLowerProductAsMinimum) {
  AggregateStage min(NodeType::ScalarMin, "ii", {2, -3});
  min.setIntegerBounds(0, 1, 5).setIntegerBounds(1, -2, 1);
  EXPECT_EQ(min.bounds(), (Bounds{-3, 6}));
}

TEST(NodeScalarMin, BoundsSaturate) {
  AggregateStage min(NodeType::ScalarMin, "i", {4});
  min.setIntegerBounds(0, -(std::int64_t{1} << 62), std::int64_t{1} << 62);
  EXPECT_EQ(min.bounds(), (Bounds{kLowestInt, kHighestInt}));
}

}  // namespace
}  // namespace quvex
