#include "solver/node/nodedoublemax.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

/// Three operands in [0, 9].
AggregateStage& at(AggregateStage& max, double a, double b, double c) {
  max.set(0, a, 0, 9).set(1, b, 0, 9).set(2, c, 0, 9).refresh();
  return max;
}

TEST(NodeDoubleMax, FollowsTheHighestOperand) {
  AggregateStage max(NodeType::DoubleMax, "ddd");
  at(max, 3, 7, 7);
  EXPECT_EQ(max.dag->committedDouble(max.id), 7);
  EXPECT_EQ(max.commitReal(2, 1), 7) << "the support left, another one is found";
  EXPECT_EQ(max.commitReal(1, 2), 3);
  EXPECT_EQ(max.commitReal(1, 8.5), 8.5);
  EXPECT_TRUE(max.isInit());
}

TEST(NodeDoubleMax, OfNothingIsNegativelyInfinite) {
  DagFixedFields fixed;
  const NodeId id = fixed.addNode(NodeType::DoubleMax);
  EXPECT_EQ(NodeDoubleMaxTemplate<SubsetMASK<unsigned char>>::computeBounds(fixed, id),
            Bounds::ofDoubles(-kInfinity, -kInfinity));
}

TEST(NodeDoubleMax, PicksMirrorThoseOfTheMinimum) {
  AggregateStage max(NodeType::DoubleMax, "ddd");
  at(max, 7, 3, 7);
  EXPECT_EQ(max.increase(stateForChoice(3, 1)), "b+ 1");
  EXPECT_EQ(max.decrease(), "c- 0");
}

TEST(NodeDoubleMax, PickChangeLowersTheSupportOrRaisesACandidate) {
  AggregateStage max(NodeType::DoubleMax, "ddd");
  at(max, 7, 3, 3);
  EXPECT_EQ(max.change(kCoinSet), "a- 1") << "down, where a mirror of the minimum would go up";
  EXPECT_EQ(max.change(stateForCoinAndChoice(false, 3, 1)), "b+ 2");
  at(max, 0, 0, 0);
  EXPECT_EQ(max.change(stateForChoice(3, 1)), "b+ 1") << "at the minimum: a candidate without a coin";
  at(max, 9, 3, 3);
  EXPECT_EQ(max.change(), "a- 0") << "at the maximum: the support goes down";
}

TEST(NodeDoubleMax, DumpShowsCandidatesAndTheSupport) {
  AggregateStage max(NodeType::DoubleMax, "ddd");
  max.set(0, 3, 0, 9).set(1, 7, 0, 7).set(2, 7, 0, 8).refresh();
  EXPECT_EQ(max.dump(), "isIncreaseCandidatesInit=1\nincreaseCandidates= 0 2\nisSupportInit=1\nsupportNodePos=2\n");
}

}  // namespace
}  // namespace quvex
