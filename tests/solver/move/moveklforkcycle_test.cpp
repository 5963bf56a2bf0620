#include "solver/move/moveklforkcycle.h"

#include <gtest/gtest.h>

#include <set>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// One sum `hub` and two sums that meet it in two decisions each; all of them tied. The hub's decision at 1 is its own.
class Hub : public SearchGraph {
 public:
  Ids x = booleans(12);
  NodeId hub = tiedSum({x[0], x[1], x[2], x[3], x[4]}, 1);
  NodeId left = tiedSum({x[0], x[1], x[5], x[6], x[7]}, 1);
  NodeId right = tiedSum({x[2], x[3], x[8], x[9], x[10]}, 1);

  Hub() {
    Dag& built = start();
    commitValues(built, {{x[4], 1}, {x[5], 1}, {x[8], 1}});
  }
};

TEST(MoveKLForkCycle, IsNamedAfterSizeAndForks) {
  const Hub model;
  EXPECT_EQ(MoveKLForkCycle(3, 2, 2, 0, *model.structure).name, "3-2-ForkCycle");
}

TEST(MoveKLForkCycle, IsNotBuiltWithoutSums) {
  SearchGraph model;
  model.booleans(3);
  model.start(5);
  MoveKLForkCycle move(3, 2, 2, 100, *model.structure);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
}

TEST(MoveKLForkCycle, IsTheWalkAloneWithoutForks) {
  AssignmentGraph model(4);
  MoveKLForkCycle move(4, 0, 2, 0, *model.structure);
  for (const RandomState seed : someSeeds(20)) {
    model.state() = seed;
    EXPECT_TRUE(move.apply());
    EXPECT_EQ(touched(*model.dag).size(), 2U);
    move.conclude(Outcome::Rejected);
  }
  MoveKLForkCycle standing(2, 0, 2, 0, *model.structure);
  EXPECT_FALSE(standing.apply()) << "a walk of no steps flips nothing";
}

TEST(MoveKLForkCycle, ClosesEachBranchOnTheFirstSum) {
  // Items over places: the walk takes the item's place away, and each branch puts another item's place under it.
  AssignmentGraph model(5);
  Dag& dag = *model.dag;
  MoveKLForkCycle move(4, 1, 2, 0, *model.structure);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(80)) {
    RandomState expected = seed;
    const NodeId s = model.structures.sums[rand(expected, 10)];
    const NodeId first = drawOperandAt(dag, expected, s, 1);
    const std::uint32_t i = first / 5;
    const bool isItem = s == model.itemSums[i];
    (void)rand(expected, 2);
    const NodeId second = drawOperandAt(dag, expected, isItem ? model.placeSums[i] : model.itemSums[i], 0);
    (void)rand(expected, 2);
    const std::uint32_t j = isItem ? second / 5 : second % 5;
    (void)rand(expected, 2);  // behind the certain third flip
    (void)rand(expected, 4);  // the search for the link
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{first, second, model.x[j][j], isItem ? model.x[i][j] : model.x[j][i]}));
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    EXPECT_EQ(dag.propagation.tentativeNbViolated, 0);
    move.conclude(Outcome::Rejected);
    ++nbBuilt;
  }
  EXPECT_EQ(nbBuilt, 80);
}

TEST(MoveKLForkCycle, StopsAtAClosingDecisionThatHasChanged) {
  // The second branch takes its only candidate from the first: the walk ends, and so does the attempt.
  AssignmentGraph model(5);
  MoveKLForkCycle move(4, 2, 2, 0, *model.structure);
  for (const RandomState seed : someSeeds(40)) {
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    EXPECT_EQ(touched(*model.dag).size(), 4U) << "the first branch is complete";
    move.conclude(Outcome::Infeasible);
  }
}

TEST(MoveKLForkCycle, FailsWhereABranchFindsNoSum) {
  Hub model;
  MoveKLForkCycle move(3, 2, 2, 0, *model.structure);
  for (const RandomState seed : someSeeds(40)) {
    model.state() = seed;
    EXPECT_FALSE(move.apply()) << "the decisions at 1 lie in one sum each";
    EXPECT_EQ(touched(*model.dag).size(), 1U);
    move.conclude(Outcome::Infeasible);
  }
}

TEST(MoveKLForkCycle, FailsWhereTheLinkOfABranchHasChanged) {
  // Both branches lead to one sum, and only one decision links it to the start: the second branch can't close.
  SearchGraph model;
  const NodeId first = model.boolean();
  const NodeId link = model.boolean();
  const NodeId idle = model.boolean();
  const Ids branches = model.booleans(2);
  const NodeId extra = model.boolean();
  const NodeId middle = model.limitedSum({first, branches[0], branches[1]}, 3);
  const NodeId end = model.add(NodeType::ScalarSum, {link, branches[0], branches[1], extra}, {-1, 1, 1, -1});
  model.constraint(model.add(NodeType::Leq, {end, model.constant(2)}));
  const NodeId start = model.tiedSum({first, link, idle}, 1);
  Dag& dag = model.start();
  commitValues(dag, {{first, 1}});
  ASSERT_EQ(model.structures.sums, (Ids{middle, end, start}));
  MoveKLForkCycle move(3, 2, 1, 0, *model.structure);
  std::set<std::size_t> nbChanged;
  for (const RandomState seed : someSeeds(100)) {
    RandomState expected = seed;
    if (rand(expected, 3) != 2) continue;
    const NodeId one = drawOperandAt(dag, expected, middle, 0);
    (void)rand(expected, 2);  // where the search for its other sum begins
    (void)rand(expected, 2);  // where the search for the link begins in the first sum
    const NodeId two = drawOperandAt(dag, expected, middle, 0);
    Ids wanted = {first, one, link};
    if (two != one) {
      (void)rand(expected, 2);
      (void)rand(expected, 2);
      wanted.push_back(two);
    }
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Infeasible);
    nbChanged.insert(wanted.size());
  }
  EXPECT_EQ(nbChanged, (std::set<std::size_t>{3, 4}));
}

}  // namespace
}  // namespace quvex
