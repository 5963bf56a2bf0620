#include "solver/move/movekroll.h"

#include <gtest/gtest.h>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

TEST(MoveKRoll, RotatesThePlacesOfConsecutiveItems) {
  const std::uint32_t n = 6;
  AssignmentGraph model(n, Places::Limited);
  Dag& dag = *model.dag;
  MoveKRoll move(3, 8, 0, *model.structure);
  EXPECT_EQ(move.name, "3-Roll");
  bool clipped = false;
  for (const RandomState seed : someSeeds(80)) {
    RandomState expected = seed;
    const int first = static_cast<int>(rand(expected, n));
    const int direction = coin(expected) ? 1 : -1;
    const int stop = std::clamp(first + 2 * direction, 0, 5);
    if (stop == first) {
      model.state() = seed;
      EXPECT_FALSE(move.apply());
      EXPECT_EQ(model.state(), expected);
      move.conclude(Outcome::Infeasible);
      continue;
    }
    Ids wanted;
    std::vector<std::uint32_t> places = {0, 1, 2, 3, 4, 5};
    for (int item = first;; item += direction) {
      const int next = item == stop ? first : item + direction;
      const auto from = static_cast<std::uint32_t>(item);
      const auto to = static_cast<std::uint32_t>(next);
      wanted.push_back(model.x[from][from]);
      (void)rand(expected, n - 1);  // where the search for the link starts in the place
      wanted.push_back(model.x[to][from]);
      places[to] = from;
      if (item == stop) break;
    }
    if (std::abs(stop - first) < 2) clipped = true;

    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    for (std::uint32_t item = 0; item < n; ++item) EXPECT_EQ(model.placeOf(item), places[item]);
    EXPECT_EQ(dag.propagation.tentativeNbViolated, 0);
    move.conclude(Outcome::Rejected);
  }
  EXPECT_TRUE(clipped) << "near the ends the rotation is shorter";
}

TEST(MoveKRoll, NeedsAsManyEqualitySumsAsItsSize) {
  AssignmentGraph model(3, Places::Limited);
  model.state() = 5;
  MoveKRoll move(4, 8, 0, *model.structure);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
}

TEST(MoveKRoll, StartsOnlyWhereMostOperandsCanRise) {
  SearchGraph model;
  const Ids x = model.booleans(8);
  model.tiedSum({x[0], x[1], x[2], x[3]}, 2);
  model.tiedSum({x[4], x[5], x[6], x[7]}, 2);
  Dag& dag = model.start(5);
  commitValues(dag, {{x[0], 1}, {x[1], 1}, {x[4], 1}, {x[5], 1}});
  MoveKRoll move(2, 8, 0, *model.structure);
  EXPECT_FALSE(move.apply()) << "two of four are not more than half";
  EXPECT_EQ(model.state(), stepped(5, 1)) << "no coin";
  EXPECT_TRUE(touched(dag).empty());
}

TEST(MoveKRoll, ClosesEarlyWhereThePlaceLeadsToNoNextItem) {
  // Items 0 and 1 share no place with item 2.
  SearchGraph model;
  const Ids x = model.booleans(9);
  const NodeId a = model.tiedSum({x[0], x[1], x[2]}, 1);
  const NodeId b = model.tiedSum({x[3], x[4], x[5]}, 1);
  const NodeId c = model.tiedSum({x[6], x[7], x[8]}, 1);
  model.limitedSum({x[0], x[3]}, 1);
  model.limitedSum({x[1], x[4]}, 1);
  model.limitedSum({x[7], x[8]}, 2);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}, {x[4], 1}, {x[6], 1}});
  ASSERT_EQ(model.structures.nbEqualitySums(), 3U);
  MoveKRoll move(3, 8, 0, *model.structure);
  int nbEarly = 0;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const std::uint32_t first = rand(expected, 3);
    const bool forward = coin(expected);
    if (first != 0 || !forward) continue;
    // Item 0 leaves place 0, item 1 takes it and leaves place 1; item 2 has no such place, so item 0 takes it.
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{x[0], x[3], x[4], x[1]}));
    EXPECT_TRUE(move.evaluate());
    EXPECT_EQ(dag.tentativeValue[a], 1);
    EXPECT_EQ(dag.tentativeValue[b], 1);
    EXPECT_EQ(dag.tentativeValue[c], 1);
    move.conclude(Outcome::Rejected);
    ++nbEarly;
  }
  EXPECT_GT(nbEarly, 0);
}

TEST(MoveKRoll, FailsWhereADecisionLiesInOneSumOnly) {
  SearchGraph model;
  model.tiedSum(model.booleans(3), 1);
  model.tiedSum(model.booleans(3), 1);
  Dag& dag = model.start(5);
  commitValues(dag, {{0, 1}, {model.structures.sums[0] + 3, 1}});
  MoveKRoll move(2, 8, 0, *model.structure);
  for (const RandomState seed : someSeeds(10)) {
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    move.conclude(Outcome::Infeasible);
  }
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(MoveKRoll, PassesOverALinkThatHasChanged) {
  // Items on one place each, where both items share both places: the link of the last pass is found by the first
  // operand at 0, whatever changed.
  AssignmentGraph model(3);
  Dag& dag = *model.dag;
  MoveKRoll move(2, 8, 0, *model.structure);
  for (const RandomState seed : someSeeds(200)) {
    model.state() = seed;
    const bool built = move.apply();
    std::vector<NodeId> ids = touchedSorted(dag);
    EXPECT_TRUE(std::ranges::adjacent_find(ids) == ids.end());
    if (built) {
      EXPECT_FALSE(ids.empty());
    }
    move.conclude(Outcome::Rejected);
    EXPECT_TRUE(isWholeGraphInit(dag));
  }
}

}  // namespace
}  // namespace quvex
