#include "solver/move/movekpath.h"

#include <gtest/gtest.h>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

TEST(MoveKPath, FollowsItsDrawsFromASlackSum) {
  AssignmentGraph model(3, Places::Limited);
  Dag& dag = *model.dag;
  MoveKPath move(2, 6, 0, *model.structure);
  EXPECT_EQ(move.name, "2-Path");
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const NodeId place = model.placeSums[rand(expected, 3)];
    const bool rises = !coin(expected);
    const NodeId first = drawOperandAt(dag, expected, place, rises ? 0 : 1);
    const NodeId second = drawOperandAt(dag, expected, model.itemSums[first / 3], rises ? 1 : 0);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{first, second})) << "one step of the walk, one final flip";
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    EXPECT_EQ(dag.tentativeValue[model.itemSums[first / 3]], 1) << "the item keeps one place";
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKPath, StartsAtATargetInASlackSum) {
  AssignmentGraph model(3, Places::Limited);
  Dag& dag = *model.dag;
  MoveKPath move(2, 6, 100, *model.structure);
  commitValues(dag, {{model.x[1][1], 0}});  // item 1 has no place: its constraint is the only violated one
  for (const RandomState seed : someSeeds(40)) {
    RandomState expected = stepped(seed, 1);
    // The violated "eq" has a sum below its value: it raises the sum, a random operand at 0.
    NodeId target = kNone;
    ASSERT_TRUE(pickTarget(dag, expected, target));
    ASSERT_EQ(target / 3, 1U);
    model.state() = seed;
    const bool built = move.apply();
    EXPECT_EQ(touched(dag).front(), target);
    // It rose, so its item sum must fall; but that has no operand at 1.
    EXPECT_FALSE(built);
    EXPECT_EQ(touched(dag), Ids{target});
    EXPECT_EQ(model.state(), expected) << "one slack sum, no coin, no draw";
    move.conclude(Outcome::Infeasible);
  }
}

TEST(MoveKPath, FallsBackOnADrawnStartForATargetWithoutSlack) {
  SearchGraph model;
  const Ids x = model.booleans(6);
  const NodeId tied = model.tiedSum({x[0], x[1], x[2]}, 1);
  const NodeId slack = model.limitedSum({x[2], x[3], x[4]}, 2);
  model.maximise(x[1]);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}});
  ASSERT_EQ(model.structures.membershipOf(x[1]).nbSlack, 0U);
  MoveKPath move(2, 6, 100, *model.structure);
  for (const RandomState seed : someSeeds(40)) {
    RandomState expected = stepped(seed, 1);
    const bool rises = !coin(expected);
    const NodeId first = rises ? drawOperandAt(dag, expected, slack, 0) : kNone;
    model.state() = seed;
    const bool built = move.apply();
    if (first == x[2]) {
      EXPECT_TRUE(built);
      EXPECT_EQ(touched(dag), (Ids{x[2], x[0]})) << "the tied sum falls by its only operand at 1";
    } else {
      EXPECT_FALSE(built);
      EXPECT_EQ(touched(dag), rises ? Ids{first} : Ids{});
    }
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Infeasible);
  }
  EXPECT_EQ(dag.nodeValue[tied], 1);
}

TEST(MoveKPath, IsNotBuiltWithoutSlackSums) {
  AssignmentGraph model(3);
  model.state() = 5;
  MoveKPath move(2, 6, 100, *model.structure);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
}

TEST(MoveKPath, WalksOnThroughSumsOfBothKinds) {
  AssignmentGraph model(4, Places::Limited);
  Dag& dag = *model.dag;
  MoveKPath move(4, 6, 0, *model.structure);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const NodeId place = model.placeSums[rand(expected, 4)];
    const bool rises = !coin(expected);
    const NodeId first = drawOperandAt(dag, expected, place, rises ? 0 : 1);
    const NodeId second = drawOperandAt(dag, expected, model.itemSums[first / 4], rises ? 1 : 0);
    const NodeId third = drawOperandAt(dag, expected, model.placeSums[second % 4], rises ? 0 : 1);
    Ids wanted = {first, second};
    bool expectedBuilt = false;
    if (third != first && third != second) {
      wanted.push_back(third);
      const NodeId fourth = drawOperandAt(dag, expected, model.itemSums[third / 4], rises ? 1 : 0);
      if (std::ranges::find(wanted, fourth) == wanted.end()) wanted.push_back(fourth);
      expectedBuilt = true;
    }
    model.state() = seed;
    EXPECT_EQ(move.apply(), expectedBuilt);
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(model.state(), expected);
    if (expectedBuilt) ++nbBuilt;
    move.conclude(Outcome::Infeasible);
  }
  EXPECT_GT(nbBuilt, 0);
}

TEST(MoveKPath, EndsWithOutcomeInfeasibleWhereTheWalkEnds) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  model.limitedSum(x, 2);
  Dag& dag = model.start(5);
  MoveKPath move(2, 6, 0, *model.structure);
  for (const RandomState seed : someSeeds(10)) {
    model.state() = seed;
    EXPECT_FALSE(move.apply()) << "every decision lies in one sum";
    move.conclude(Outcome::Infeasible);
    EXPECT_TRUE(touched(dag).empty());
    EXPECT_TRUE(isWholeGraphInit(dag));
  }
  EXPECT_EQ(move.nbInfeasibles, 10U);
}

TEST(MoveKPath, EndsAtADecisionThatHasChanged) {
  // The walk takes x[0] from the first sum and puts x[1] in its place; the last sum must fall, and holds only x[0]
  // at 1.
  SearchGraph model;
  const Ids x = model.booleans(3);
  const NodeId first = model.limitedSum({x[0], x[2]}, 2);
  model.tiedSum({x[0], x[1]}, 1);
  const NodeId last = model.limitedSum({x[0], x[1]}, 2);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}});
  ASSERT_EQ(model.structures.sums[0], first);
  ASSERT_EQ(model.structures.sums[1], last);
  MoveKPath move(3, 6, 0, *model.structure);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const bool isFirst = rand(expected, 2) == 0;
    if (!coin(expected) || !isFirst) continue;
    model.state() = seed;
    EXPECT_TRUE(move.apply()) << "something changed, which is enough";
    EXPECT_EQ(touched(dag), (Ids{x[0], x[1]}));
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
    ++nbBuilt;
  }
  EXPECT_GT(nbBuilt, 0);
}

}  // namespace
}  // namespace quvex
