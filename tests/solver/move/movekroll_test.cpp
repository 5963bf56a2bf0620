#include "solver/move/movekroll.h"

#include <gtest/gtest.h>

#include <set>

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
  // Both items and their one place hold `shared`, the only operand at 0 that links them: the first pass raises it, and
  // the last pass finds it once more.
  SearchGraph model;
  const Ids x = model.booleans(7);
  const NodeId shared = x[2];
  const Ids held = {x[0], x[1]};
  const NodeId a = model.tiedSum({held[0], shared, x[3], x[4]}, 1);
  const NodeId b = model.tiedSum({held[1], shared, x[5], x[6]}, 1);
  const NodeId place = model.limitedSum({held[0], held[1], shared}, 2);
  Dag& dag = model.start();
  commitValues(dag, {{held[0], 1}, {held[1], 1}});
  ASSERT_EQ(model.structures.sums, (Ids{place, a, b}));
  MoveKRoll move(2, 8, 0, *model.structure);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(40)) {
    RandomState expected = seed;
    const std::uint32_t first = rand(expected, 2);
    const bool isForward = coin(expected);
    const bool isRun = isForward == (first == 0);  // two items, so there is only one way to go
    model.state() = seed;
    EXPECT_EQ(move.apply(), isRun) << "a changed link is no dead end";
    EXPECT_EQ(model.state(), expected) << "nothing else to choose from";
    if (isRun) {
      EXPECT_EQ(touched(dag), (Ids{held[first], shared, held[1 - first]}));
      EXPECT_EQ(dag.tentativeValue[shared], 1) << "not set back";
      ++nbBuilt;
    } else {
      EXPECT_TRUE(touched(dag).empty());
    }
    move.conclude(Outcome::Rejected);
  }
  EXPECT_GT(nbBuilt, 0);
  EXPECT_LT(nbBuilt, 40);
}

TEST(MoveKRoll, TakesAnOperandThatHasChangedForTakenAway) {
  // Both sums hold the same decision, which each pass takes away; the next sum is then the other one itself, of which
  // any operand is a link.
  SharedOne model;
  Dag& dag = *model.dag;
  MoveKRoll move(2, 8, 0, *model.structure);
  std::set<std::size_t> nbChanged;
  for (const RandomState seed : someSeeds(100)) {
    RandomState expected = seed;
    const std::uint32_t start = rand(expected, 2);
    const bool isForward = coin(expected);
    Ids wanted;
    const bool isRun = isForward == (start == 0);
    if (isRun) {
      wanted = {model.shared};
      for (const NodeId sum : start == 0 ? Ids{model.b, model.a} : Ids{model.a, model.b}) {
        (void)rand(expected, 2);  // where the search for another sum of the decision begins
        model.drawInto(wanted, expected, sum);
      }
      nbChanged.insert(wanted.size());
    }
    model.state() = seed;
    EXPECT_EQ(move.apply(), isRun);
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
  }
  EXPECT_EQ(nbChanged, (std::set<std::size_t>{1, 2, 3}));
}

TEST(MoveKRoll, LooksForALinkInTheDirectionOfThePlace) {
  NegatedPlaces model;
  Dag& dag = *model.dag;
  MoveKRoll move(2, 8, 0, *model.structure);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const std::uint32_t start = rand(expected, 2);
    const bool isForward = coin(expected);
    if (isForward != (start == 0)) continue;
    // Each place has two operands that can lower it, from one of which the search starts.
    (void)rand(expected, 2);
    (void)rand(expected, 2);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), start == 0 ? (Ids{model.a[0], model.b[1], model.b[0], model.a[1]})
                                       : (Ids{model.b[0], model.a[1], model.a[0], model.b[1]}));
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    EXPECT_EQ(dag.propagation.tentativeNbViolated, 0);
    move.conclude(Outcome::Rejected);
    ++nbBuilt;
  }
  EXPECT_GT(nbBuilt, 0);
}

}  // namespace
}  // namespace quvex
