#include "solver/move/movekmirror.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// Follows one attempt on items of equality sums at list positions `slack` and up, and tells what it should change.
struct Expected {
  bool built = false;
  Ids changed;
  std::uint32_t lo = 0;
  std::uint32_t hi = 0;
};

Expected follow(const AssignmentGraph& model, RandomState& state, std::uint32_t k) {
  const auto size = static_cast<std::uint32_t>(model.structures.sums.size());
  const std::uint32_t slack = model.structures.nbSlackSums;
  const std::uint32_t i = slack + rand(state, size - slack);
  const bool forward = coin(state);
  std::uint32_t j = forward ? i + (k - 1) : i - (k - 1);
  j = std::max(std::min(j, size - 1), slack);
  Expected expected;
  if (i == j) return expected;
  expected.built = true;
  expected.lo = std::min(i, j) - slack;
  expected.hi = std::max(i, j) - slack;
  for (std::uint32_t a = expected.lo, b = expected.hi; a < b; ++a, --b) {
    (void)rand(state, size - slack - 1);
    (void)rand(state, size - slack - 1);
    expected.changed.insert(expected.changed.end(), {model.x[a][a], model.x[b][b], model.x[a][b], model.x[b][a]});
  }
  return expected;
}

TEST(MoveKMirror, ReversesThePlacesOfConsecutiveItems) {
  const std::uint32_t n = 7;
  AssignmentGraph model(n, Places::Limited);
  Dag& dag = *model.dag;
  MoveKMirror move(4, 8, 0, *model.structure);
  EXPECT_EQ(move.name, "4-Mirror");
  for (const RandomState seed : someSeeds(100)) {
    RandomState state = seed;
    const Expected expected = follow(model, state, 4);
    model.state() = seed;
    ASSERT_EQ(move.apply(), expected.built);
    EXPECT_EQ(touched(dag), expected.changed);
    EXPECT_EQ(model.state(), state);
    EXPECT_TRUE(move.evaluate());
    if (expected.built) {
      for (std::uint32_t item = 0; item < n; ++item) {
        const bool inside = item >= expected.lo && item <= expected.hi;
        EXPECT_EQ(model.placeOf(item), inside ? expected.lo + expected.hi - item : item);
      }
      EXPECT_EQ(dag.propagation.tentativeNbViolated, 0);
    }
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKMirror, ChangesFourDecisionsOverTwoSums) {
  AssignmentGraph model(4, Places::Limited);
  MoveKMirror move(2, 8, 0, *model.structure);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(20)) {
    model.state() = seed;
    if (move.apply()) {
      EXPECT_EQ(touched(*model.dag).size(), 4U);
      ++nbBuilt;
    }
    move.conclude(Outcome::Rejected);
  }
  EXPECT_GT(nbBuilt, 0);
}

TEST(MoveKMirror, RunsToTheLastSumWhenTheRunWouldBeginBeforePosition0) {
  // Six items over three limited places: the first item stands at position 3. A run of six backward from there begins
  // at -2, which is not clipped at the first item.
  SearchGraph model;
  std::vector<Ids> x;
  for (std::uint32_t item = 0; item < 6; ++item) {
    x.push_back(model.booleans(3));
    model.tiedSum(x[item], 1);
  }
  for (std::uint32_t place = 0; place < 3; ++place) {
    Ids column;
    for (const Ids& row : x) column.push_back(row[place]);
    model.limitedSum(column, 6);
  }
  Dag& dag = model.start();
  for (std::uint32_t item = 0; item < 6; ++item) dag.propagation.setTentativeValue(dag, x[item][item % 3], 1);
  dag.propagation.commitAll(dag);
  ASSERT_EQ(model.structures.nbSlackSums, 3U);

  MoveKMirror move(6, 8, 0, *model.structure);
  int nbWrapped = 0;
  for (const RandomState seed : someSeeds(60)) {
    RandomState state = seed;
    const std::uint32_t item = rand(state, 6);
    const bool forward = coin(state);
    if (forward || item > 1) continue;
    model.state() = seed;
    (void)move.apply();
    ASSERT_GE(touched(dag).size(), 2U);
    EXPECT_EQ(touched(dag)[0], x[item][item % 3]);
    EXPECT_EQ(touched(dag)[1], x[5][2]);
    move.conclude(Outcome::Infeasible);
    ++nbWrapped;
  }
  EXPECT_GT(nbWrapped, 0);
}

TEST(MoveKMirror, WrapsAtPosition0) {
  const std::uint32_t n = 6;
  AssignmentGraph model(n);
  ASSERT_EQ(model.structures.nbSlackSums, 0U);
  Dag& dag = *model.dag;
  const std::vector<NodeId>& sums = model.structures.sums;
  MoveKMirror move(4, 8, 0, *model.structure);
  int nbWrapped = 0;
  for (const RandomState seed : someSeeds(100)) {
    RandomState state = seed;
    const std::uint32_t i = rand(state, 2 * n);
    const bool forward = coin(state);
    if (forward || i >= 3) continue;
    // The run would begin before position 0; it spans to the last sum instead, a place sum.
    model.state() = seed;
    (void)move.apply();
    const Ids changed = touched(dag);
    ASSERT_GE(changed.size(), 2U);
    EXPECT_EQ(changed[0], model.x[i][i]) << "taken from the sum at the drawn position";
    const auto last = dag.fixed.childrenOf(sums.back());
    EXPECT_NE(std::ranges::find(last, changed[1]), last.end()) << "taken from the last sum of the list";
    move.conclude(Outcome::Infeasible);
    ++nbWrapped;
  }
  EXPECT_GT(nbWrapped, 0);
}

/// The one run over two sums begins at either of them, toward the other.
bool drawsRunOfTwo(RandomState& state) {
  const std::uint32_t start = rand(state, 2);
  const bool isForward = coin(state);
  return isForward == (start == 0);
}

TEST(MoveKMirror, PassesOverDecisionsThatHaveChanged) {
  // Both sums give up the same decision, and what each gets is any operand of its own.
  SharedOne model;
  Dag& dag = *model.dag;
  MoveKMirror move(2, 8, 0, *model.structure);
  std::set<std::size_t> nbChanged;
  for (const RandomState seed : someSeeds(100)) {
    RandomState expected = seed;
    // From the first sum backward, the run wraps and ends at the last one.
    RandomState probe = seed;
    const bool isWrapped = rand(probe, 2) == 0 && !coin(probe);
    if (!drawsRunOfTwo(expected) && !isWrapped) continue;
    (void)rand(expected, 2);  // where the search for another sum begins, of either
    (void)rand(expected, 2);
    Ids wanted = {model.shared};
    model.drawInto(wanted, expected, model.a);
    model.drawInto(wanted, expected, model.b);
    nbChanged.insert(wanted.size());
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
  }
  EXPECT_EQ(nbChanged, (std::set<std::size_t>{1, 2, 3}));
}

TEST(MoveKMirror, LooksForLinksInTheDirectionOfThePlaces) {
  NegatedPlaces model;
  Dag& dag = *model.dag;
  MoveKMirror move(2, 8, 0, *model.structure);
  int nbBuilt = 0;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    if (!drawsRunOfTwo(expected)) continue;
    (void)rand(expected, 2);  // where the search starts in the first item, and in the second
    (void)rand(expected, 2);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{model.a[0], model.b[0], model.a[1], model.b[1]}));
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    EXPECT_EQ(dag.propagation.tentativeNbViolated, 0);
    move.conclude(Outcome::Rejected);
    ++nbBuilt;
  }
  EXPECT_GT(nbBuilt, 0);
}

TEST(MoveKMirror, StartsOnlyWhereMostOperandsCanRiseAtBothEnds) {
  SearchGraph model;
  const Ids x = model.booleans(8);
  model.tiedSum({x[0], x[1], x[2], x[3]}, 1);
  model.tiedSum({x[4], x[5], x[6], x[7]}, 2);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}, {x[4], 1}, {x[5], 1}});
  MoveKMirror move(2, 8, 0, *model.structure);
  for (const RandomState seed : someSeeds(20)) {
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    EXPECT_EQ(model.state(), stepped(seed, 2)) << "the place and the coin";
    EXPECT_TRUE(touched(dag).empty());
  }
}

TEST(MoveKMirror, NeedsAsManyEqualitySumsAsItsSize) {
  AssignmentGraph model(3, Places::Limited);
  model.state() = 5;
  MoveKMirror move(4, 8, 0, *model.structure);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
}

}  // namespace
}  // namespace quvex
