#include "solver/move/movekswap.h"

#include <gtest/gtest.h>

#include "support/failure.h"
#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// A decision in no sum with id 0, then three groups of four, of which one each is set.
class Groups : public SearchGraph {
 public:
  NodeId outside = boolean();
  std::vector<Ids> x = {booleans(4), booleans(4), booleans(4)};
  Ids sums;

  /// `wanted`: the decision that targeting proposes, kNone for none.
  explicit Groups(NodeId wanted = kNone) {
    for (const Ids& group : x) sums.push_back(tiedSum(group, 1));
    if (wanted != kNone) maximise(wanted);
    Dag& built = start();
    commitValues(built, {{x[0][0], 1}, {x[1][0], 1}, {x[2][0], 1}});
  }

  [[nodiscard]] NodeId sumOf(NodeId decision) const { return sums[(decision - 1) / 4]; }
  /// The partner that a swap of the decision draws.
  NodeId drawPartner(RandomState& state, NodeId decision) const {
    return drawOperandAt(*dag, state, sumOf(decision), 1 - dag->nodeValue[decision]);
  }
};

TEST(MoveKSwap, IsNamedAfterItsSizeAndChecksItsRate) {
  Groups model;
  EXPECT_EQ(MoveKSwap(2, 2, 100, *model.structure, *model.dag).name, "2-Swap");
  EXPECT_EQ(failureOf([&] { MoveKSwap move(2, 2, 101, *model.structure, *model.dag); }),
            refusal("MoveKFlip::MoveKFlip", "Targeting rate must be smaller than 100."));
}

TEST(MoveKSwap, DrawsOnePairFewerWithoutATarget) {
  Groups model;
  Dag& dag = *model.dag;
  MoveKSwap move(2, 2, 0, *model.structure, dag);
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const NodeId drawn = model.structures.swappableDecisions[rand(expected, 12)];
    const NodeId partner = model.drawPartner(expected, drawn);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{drawn, partner})) << "one pair, not two";
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    for (const NodeId sum : model.sums) EXPECT_EQ(dag.tentativeValue[sum], 1);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKSwap, ChangesNothingAtSize1WithoutATarget) {
  Groups model;
  MoveKSwap move(1, 4, 0, *model.structure, *model.dag);
  model.state() = 5;
  EXPECT_TRUE(move.apply());
  EXPECT_TRUE(touched(*model.dag).empty());
  EXPECT_EQ(model.state(), 5U);
}

TEST(MoveKSwap, SwapsTheTargetFirst) {
  Groups model(9);  // x[2][0] is 9 and set: take one at rest instead
  ASSERT_EQ(model.x[2][0], 9U);
  Groups wanting(11);
  Dag& dag = *wanting.dag;
  MoveKSwap move(2, 2, 100, *wanting.structure, dag);
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = stepped(seed, 1);
    const NodeId drawn = wanting.structures.swappableDecisions[rand(expected, 12)];
    Ids wanted = {11, wanting.drawPartner(expected, 11)};
    for (const NodeId id : {drawn, wanting.drawPartner(expected, drawn)}) {
      if (std::ranges::find(wanted, id) == wanted.end()) wanted.push_back(id);
    }
    wanting.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(wanting.state(), expected);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKSwap, DropsATargetInNoSum) {
  Groups model(0);
  Dag& dag = *model.dag;
  ASSERT_EQ(model.outside, 0U);
  MoveKSwap move(1, 4, 100, *model.structure, dag);
  model.state() = 5;
  EXPECT_TRUE(move.apply());
  EXPECT_TRUE(touched(dag).empty());
  EXPECT_EQ(model.state(), stepped(5, 1));
}

TEST(MoveKSwap, DrawsAllPairsWhenTheTargetIsNode0) {
  SearchGraph model;
  const Ids x = model.booleans(6);
  model.tiedSum({x[0], x[1], x[2]}, 1);
  const NodeId other = model.tiedSum({x[3], x[4], x[5]}, 1);
  model.maximise(x[0]);
  Dag& dag = model.start();
  commitValues(dag, {{x[1], 1}, {x[3], 1}});
  ASSERT_EQ(x[0], 0U);
  MoveKSwap move(1, 4, 100, *model.structure, dag);
  int nbTwoPairs = 0;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = stepped(seed, 1);
    const NodeId drawn = x[rand(expected, 6)];
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    const Ids changed = touched(dag);
    ASSERT_GE(changed.size(), 2U);
    EXPECT_EQ(changed[0], x[0]);
    EXPECT_EQ(changed[1], x[1]);
    if (drawn >= x[3]) {
      const NodeId partner = drawOperandAt(dag, expected, other, 1 - dag.nodeValue[drawn]);
      EXPECT_EQ(changed, (Ids{x[0], x[1], drawn, partner})) << "the pair of the target, and a drawn one";
      EXPECT_EQ(model.state(), expected);
      ++nbTwoPairs;
    }
    move.conclude(Outcome::Rejected);
  }
  EXPECT_GT(nbTwoPairs, 0);
}

TEST(MoveKSwap, NeedsTwiceKSwappableDecisions) {
  Groups model;
  MoveKSwap fits(6, 1, 0, *model.structure, *model.dag);
  MoveKSwap tooLarge(7, 1, 0, *model.structure, *model.dag);
  EXPECT_TRUE(fits.apply());
  fits.conclude(Outcome::Rejected);
  model.state() = 5;
  EXPECT_FALSE(tooLarge.apply());
  EXPECT_EQ(model.state(), 5U);
}

TEST(MoveKSwap, DrawsASumForADecisionWithoutEqualitySum) {
  SearchGraph model;
  const Ids x = model.booleans(5);
  const NodeId first = model.limitedSum({x[0], x[1], x[2]}, 3);
  const NodeId second = model.limitedSum({x[0], x[3], x[4]}, 3);
  model.maximise(x[0]);
  Dag& dag = model.start();
  commitValues(dag, {{x[1], 1}, {x[3], 1}});
  MoveKSwap move(1, 4, 100, *model.structure, dag);
  for (const RandomState seed : someSeeds(30)) {
    RandomState expected = stepped(seed, 1);
    (void)rand(expected, 5);  // node 0 is the target, so a pair is drawn
    model.state() = seed;
    expected = stepped(seed, 2);
    const NodeId sum = rand(expected, 2) == 0 ? first : second;
    ASSERT_TRUE(move.apply());
    ASSERT_GE(touched(dag).size(), 2U);
    EXPECT_EQ(touched(dag)[0], x[0]);
    EXPECT_EQ(touched(dag)[1], sum == first ? x[1] : x[3]);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKSwap, TakesTheEqualitySumOfADecisionInSumsOfBothKinds) {
  SearchGraph model;
  model.boolean();
  const Ids x = model.booleans(5);
  model.limitedSum({x[0], x[3], x[4]}, 3);
  model.tiedSum({x[0], x[1], x[2]}, 1);
  model.maximise(x[0]);
  Dag& dag = model.start();
  commitValues(dag, {{x[1], 1}, {x[3], 1}});
  MoveKSwap move(1, 4, 100, *model.structure, dag);
  for (const RandomState seed : someSeeds(10)) {
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{x[0], x[1]}));
    EXPECT_EQ(model.state(), stepped(seed, 1));
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKSwap, FindsNoPartnerInAFullSum) {
  SearchGraph model;
  model.boolean();
  const Ids x = model.booleans(2);
  model.limitedSum(x, 2);
  model.maximise(x[0]);
  Dag& dag = model.start(5);
  MoveKSwap move(1, 4, 100, *model.structure, dag);
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{x[0]}) << "nothing to lower";
}

TEST(MoveKSwap, FlipsNoPartnerThatIsNoBooleanDecision) {
  SearchGraph model;
  model.boolean();
  const Ids x = model.booleans(2);
  const NodeId notX = model.add(NodeType::Not, {x[0]});
  model.minimise(model.add(NodeType::Sum, {x[0], x[1], notX}));
  model.maximise(x[0]);
  Dag& dag = model.start(5);
  commitValues(dag, {{x[1], 0}});
  // Only the negation is above its minimum; and the first objective, at its bound of 1 or not, is raised by targets.
  MoveKSwap move(1, 4, 100, *model.structure, dag);
  for (const RandomState seed : someSeeds(10)) {
    model.state() = seed;
    EXPECT_TRUE(move.apply());
    for (const NodeId id : touched(dag)) EXPECT_EQ(dag.fixed.nodeTypes[id], NodeType::Boolean);
    EXPECT_TRUE(move.evaluate());
    move.conclude(Outcome::Accepted);
    EXPECT_TRUE(isWholeGraphInit(dag));
  }
}

}  // namespace
}  // namespace quvex
