#include "solver/move/moveklforkpath.h"

#include <gtest/gtest.h>

#include <set>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

TEST(MoveKLForkPath, IsNamedAfterSizeAndForks) {
  const AssignmentGraph model(3, Places::Limited);
  EXPECT_EQ(MoveKLForkPath(3, 2, 1, 0, *model.structure).name, "3-2-ForkPath");
}

TEST(MoveKLForkPath, HangsTwoFlipsPerForkFromTheLastSum) {
  AssignmentGraph model(4, Places::Limited);
  Dag& dag = *model.dag;
  MoveKLForkPath move(3, 2, 1, 0, *model.structure);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(80)) {
    RandomState expected = seed;
    const NodeId place = model.placeSums[rand(expected, 4)];
    const bool rises = !coin(expected);
    const NodeId first = drawOperandAt(dag, expected, place, rises ? 0 : 1);
    Ids wanted = {first};
    const auto add = [&](NodeId id) {
      const bool isNew = std::ranges::find(wanted, id) == wanted.end();
      if (isNew) wanted.push_back(id);
      return isNew;
    };
    bool expectedBuilt = true;
    for (int fork = 0; fork < 2 && expectedBuilt; ++fork) {
      const NodeId step = drawOperandAt(dag, expected, model.itemSums[first / 4], rises ? 1 : 0);
      expectedBuilt = add(step);
      // A last flip that meets a changed decision is passed over.
      if (expectedBuilt) add(drawOperandAt(dag, expected, model.placeSums[step % 4], rises ? 0 : 1));
    }
    model.state() = seed;
    EXPECT_EQ(move.apply(), expectedBuilt);
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(model.state(), expected);
    if (expectedBuilt) ++nbBuilt;
    EXPECT_TRUE(move.evaluate());
    move.conclude(expectedBuilt ? Outcome::Rejected : Outcome::Infeasible);
  }
  EXPECT_GT(nbBuilt, 0);
}

TEST(MoveKLForkPath, LeavesABranchOpenWhoseLastFlipHasBeenMade) {
  // Both branches end in one sum, whose only operand at 1 the first branch takes.
  SearchGraph model;
  const Ids x = model.booleans(5);
  model.limitedSum({x[0], x[4]}, 2);
  const NodeId middle = model.tiedSum({x[0], x[1], x[2]}, 1);
  model.limitedSum({x[1], x[2], x[3]}, 3);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}, {x[3], 1}});
  MoveKLForkPath move(3, 2, 1, 0, *model.structure);
  std::set<bool> outcomes;
  for (const RandomState seed : someSeeds(100)) {
    RandomState expected = seed;
    const bool isFirst = rand(expected, 2) == 0;
    if (!coin(expected) || !isFirst) continue;
    const NodeId one = drawOperandAt(dag, expected, middle, 0);
    const NodeId two = drawOperandAt(dag, expected, middle, 0);
    Ids wanted = {x[0], one, x[3]};
    if (two != one) wanted.push_back(two);
    model.state() = seed;
    EXPECT_EQ(move.apply(), two != one) << "a branch that begins with a changed decision is a dead end";
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
    outcomes.insert(two != one);
  }
  EXPECT_EQ(outcomes.size(), 2U);
}

TEST(MoveKLForkPath, StartsWithAWalkOfNoStepsAtSize2) {
  AssignmentGraph model(4, Places::Limited);
  MoveKLForkPath move(2, 1, 1, 0, *model.structure);
  for (const RandomState seed : someSeeds(20)) {
    model.state() = seed;
    EXPECT_TRUE(move.apply());
    EXPECT_EQ(touched(*model.dag).size(), 2U);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKLForkPath, IsNotBuiltWithoutSlackSums) {
  AssignmentGraph model(3);
  model.state() = 5;
  MoveKLForkPath move(3, 2, 1, 100, *model.structure);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
}

}  // namespace
}  // namespace quvex
