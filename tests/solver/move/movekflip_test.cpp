#include "solver/move/movekflip.h"

#include <gtest/gtest.h>

#include "support/failure.h"
#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// Four free decisions, and two in an equality sum.
class FlipModel : public SearchGraph {
 public:
  Ids tied = booleans(2);
  Ids open = booleans(4);

  FlipModel() { tiedSum(tied, 1); }
};

TEST(MoveKFlip, IsNamedAfterItsSize) {
  FlipModel model;
  Dag& dag = model.start();
  const MoveKFlip move(3, 8, 50, *model.structure, dag);
  EXPECT_EQ(move.name, "3-Flip");
  EXPECT_EQ(move.poolWeight, 8U);
}

TEST(MoveKFlip, RefusesARateAbove100) {
  FlipModel model;
  Dag& dag = model.start();
  EXPECT_EQ(failureOf([&] { MoveKFlip move(1, 8, 101, *model.structure, dag); }),
            refusal("MoveKFlip::MoveKFlip", "Targeting rate must be smaller than 100."));
  EXPECT_NO_THROW(MoveKFlip(1, 8, 100, *model.structure, dag));
}

TEST(MoveKFlip, ChangesKFreeDecisionsDrawnInOrder) {
  FlipModel model;
  Dag& dag = model.start();
  MoveKFlip move(2, 8, 0, *model.structure, dag);
  for (const RandomState seed : someSeeds(50)) {
    RandomState expected = seed;
    std::vector<std::uint32_t> positions;
    sampleDistinct(expected, 4, 2, positions);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{model.open[positions[0]], model.open[positions[1]]}));
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    move.conclude(Outcome::Accepted);
  }
}

TEST(MoveKFlip, IsNotBuiltWithFewerFreeDecisionsThanK) {
  FlipModel model;
  Dag& dag = model.start(5);
  MoveKFlip move(5, 8, 100, *model.structure, dag);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U) << "no draw";
}

TEST(MoveKFlip, ChangesAllFreeDecisionsWhenThereAreK) {
  FlipModel model;
  Dag& dag = model.start(5);
  MoveKFlip move(4, 8, 0, *model.structure, dag);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touchedSorted(dag), model.open);
  EXPECT_EQ(model.state(), stepped(5, 3));
}

TEST(MoveKFlip, DrawsNothingForTheOnlyFreeDecision) {
  SearchGraph model;
  const Ids tied = model.booleans(2);
  const NodeId open = model.boolean();
  model.tiedSum(tied, 1);
  model.maximise(open);
  Dag& dag = model.start(5);
  MoveKFlip move(1, 8, 0, *model.structure, dag);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{open});
  EXPECT_EQ(model.state(), 5U);
}

TEST(MoveKFlip, ChangesAFreeTargetAloneAtSize1) {
  FlipModel model;
  model.maximise(model.open[2]);
  Dag& dag = model.start(5);
  MoveKFlip move(1, 8, 100, *model.structure, dag);
  commitValues(dag, {{model.tied[0], 1}});
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{model.open[2]});
  EXPECT_EQ(model.state(), stepped(5, 1)) << "the percentage, and nothing else";
}

TEST(MoveKFlip, DropsATargetThatAnEqualitySumHolds) {
  FlipModel model;
  model.maximise(model.tied[1]);
  Dag& dag = model.start();
  commitValues(dag, {{model.tied[0], 1}});
  MoveKFlip move(1, 8, 100, *model.structure, dag);
  for (const RandomState seed : someSeeds(20)) {
    RandomState expected = stepped(seed, 1);
    const NodeId drawn = model.open[rand(expected, 4)];
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), Ids{drawn});
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKFlip, FlipsADrawnDecisionWhenTargetingFails) {
  FlipModel model;
  Dag& dag = model.start();
  commitValues(dag, {{model.tied[0], 1}});
  MoveKFlip move(1, 8, 100, *model.structure, dag);
  for (const RandomState seed : someSeeds(20)) {
    RandomState expected = stepped(seed, 1);
    const NodeId drawn = model.open[rand(expected, 4)];
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), Ids{drawn});
    EXPECT_EQ(model.state(), expected) << "the percentage is drawn at each attempt";
    move.conclude(Outcome::Rejected);
  }
}

}  // namespace
}  // namespace quvex
