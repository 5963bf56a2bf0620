#include "solver/move/movesimplekflip.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

TEST(MoveSimpleKFlip, ChangesKOfAllBooleanDecisions) {
  SearchGraph model;
  const Ids x = model.booleans(5);
  model.integer();
  model.tiedSum(x, 2);
  Dag& dag = model.start();
  MoveSimpleKFlip move(3, 1, 0, *model.structure, dag);
  EXPECT_EQ(move.name, "3-SimpleFlip");
  for (const RandomState seed : someSeeds(50)) {
    RandomState expected = seed;
    std::vector<std::uint32_t> positions;
    sampleDistinct(expected, 5, 3, positions);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{x[positions[0]], x[positions[1]], x[positions[2]]}));
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    move.conclude(Outcome::Accepted);
    EXPECT_TRUE(isWholeGraphInit(dag));
  }
}

TEST(MoveSimpleKFlip, ChangesTheDrawnDecisionAtSize1) {
  SearchGraph model;
  const Ids x = model.booleans(5);
  Dag& dag = model.start();
  MoveSimpleKFlip move(1, 1, 0, *model.structure, dag);
  for (const RandomState seed : someSeeds(20)) {
    RandomState expected = seed;
    const NodeId drawn = x[rand(expected, 5)];
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), Ids{drawn});
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveSimpleKFlip, DrawsNothingForTheOnlyDecision) {
  SearchGraph model;
  const NodeId x = model.boolean();
  Dag& dag = model.start(5);
  MoveSimpleKFlip move(1, 1, 0, *model.structure, dag);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{x});
  EXPECT_EQ(model.state(), 5U);
}

TEST(MoveSimpleKFlip, IsNotBuiltWithoutBooleanDecisions) {
  SearchGraph model;
  model.minimise(model.integer());
  Dag& dag = model.start(5);
  MoveSimpleKFlip move(1, 1, 100, *model.structure, dag);
  EXPECT_FALSE(move.apply());
  move.conclude(Outcome::Infeasible);
  EXPECT_EQ(model.state(), 5U);
  EXPECT_EQ(move.nbInfeasibles, 1U);
}

TEST(MoveSimpleKFlip, TakesAnyTarget) {
  SearchGraph model;
  const Ids x = model.booleans(3);
  model.tiedSum(x, 1);
  model.maximise(x[2]);
  Dag& dag = model.start(5);
  commitValues(dag, {{x[0], 1}});
  MoveSimpleKFlip move(1, 1, 100, *model.structure, dag);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{x[2]}) << "also one that an equality sum holds";
  EXPECT_EQ(model.state(), stepped(5, 1)) << "the sample is empty";
}

TEST(MoveSimpleKFlip, ChangesOneDecisionFewerWhenTheTargetIsDrawnAgain) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  model.maximise(x[1]);
  Dag& dag = model.start();
  MoveSimpleKFlip move(2, 1, 100, *model.structure, dag);
  int nbShort = 0;
  for (const RandomState seed : someSeeds(50)) {
    RandomState expected = stepped(seed, 1);
    const NodeId drawn = x[rand(expected, 4)];
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), drawn == x[1] ? Ids{x[1]} : (Ids{x[1], drawn}));
    EXPECT_EQ(model.state(), expected);
    if (drawn == x[1]) ++nbShort;
    move.conclude(Outcome::Rejected);
  }
  EXPECT_GT(nbShort, 0);
}

TEST(MoveSimpleKFlip, DrawsThePercentageEvenWhenNothingHasRoom) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  model.minimise(model.booleanSum(x));
  Dag& dag = model.start();
  MoveSimpleKFlip move(1, 1, 100, *model.structure, dag);
  for (const RandomState seed : someSeeds(20)) {
    RandomState expected = stepped(seed, 1);
    const NodeId drawn = x[rand(expected, 4)];
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), Ids{drawn});
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveSimpleKFlip, DrawsNoPercentageAtRate0) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  model.maximise(model.booleanSum(x));
  Dag& dag = model.start();
  MoveSimpleKFlip untargeted(1, 1, 0, *model.structure, dag);
  MoveSimpleKFlip targeted(1, 1, 10, *model.structure, dag);
  int nbDifferent = 0;
  for (const RandomState seed : someSeeds(50)) {
    model.state() = seed;
    ASSERT_TRUE(untargeted.apply());
    EXPECT_EQ(model.state(), stepped(seed, 1));
    untargeted.conclude(Outcome::Rejected);

    RandomState test = seed;
    if (rand(test, 100) < 10) continue;
    model.state() = seed;
    ASSERT_TRUE(targeted.apply());
    EXPECT_EQ(model.state(), stepped(seed, 2)) << "a failed percentage test costs a draw";
    targeted.conclude(Outcome::Rejected);
    ++nbDifferent;
  }
  EXPECT_GT(nbDifferent, 0);
}

TEST(MoveSimpleKFlip, LeavesNothingSetBetweenAttempts) {
  SearchGraph model;
  const Ids x = model.booleans(3);
  model.minimise(model.booleanSum(x));
  Dag& dag = model.start(9);
  MoveSimpleKFlip move(2, 1, 0, *model.structure, dag);
  for (const Outcome outcome : {Outcome::Rejected, Outcome::Infeasible, Outcome::Accepted, Outcome::Improved}) {
    ASSERT_TRUE(move.apply());
    EXPECT_TRUE(move.evaluate());
    move.conclude(outcome);
    EXPECT_TRUE(std::ranges::none_of(x, [&](NodeId id) { return dag.isSet(id); }));
    EXPECT_TRUE(touched(dag).empty());
  }
}

TEST(MoveSimpleKFlip, MayHaveAnySize) {
  SearchGraph model;
  const Ids x = model.booleans(40);
  Dag& dag = model.start(9);
  MoveSimpleKFlip move(40, 1, 0, *model.structure, dag);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touchedSorted(dag), x);
}

}  // namespace
}  // namespace quvex
