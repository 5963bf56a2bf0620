#include "solver/move/movechain.h"

#include <gtest/gtest.h>

#include "support/failure.h"
#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// A chain without a rule of its own: the test walks.
class ProbeChain : public MoveChain {
 public:
  using MoveChain::drawCycleStart;
  using MoveChain::drawSlackStart;
  using MoveChain::firstOperand;
  using MoveChain::flipDecision;
  using MoveChain::flipOperand;
  using MoveChain::MoveChain;
  using MoveChain::nbFlips;
  using MoveChain::nextSum;
  using MoveChain::rare;
  using MoveChain::walkChain;

  bool apply() override { return false; }
};

TEST(MoveChain, CannotBeBuiltBelowSize2) {
  AssignmentGraph model(3);
  EXPECT_EQ(failureOf([&] { ProbeChain chain(1, 1, 0, *model.structure); }),
            refusal("MoveChain::MoveChain", "Invalid k-chain. k must be >= 2"));
  const ProbeChain chain(2, 6, 500, *model.structure);
  EXPECT_EQ(chain.name, "2-Path");
  EXPECT_EQ(chain.firstOperand, kNone);
  EXPECT_EQ(chain.nbFlips, 0U);
  EXPECT_EQ(chain.poolWeight, 6U);
}

TEST(MoveChain, WalksNowhereWithCount0) {
  AssignmentGraph model(3);
  ProbeChain chain(2, 1, 0, *model.structure);
  chain.firstOperand = 1;
  ChainEnd end;
  EXPECT_TRUE(chain.walkChain({model.itemSums[2], true}, 0, end));
  EXPECT_EQ(end, (ChainEnd{model.itemSums[2], true}));
  EXPECT_EQ(chain.firstOperand, 1U) << "left for the next walk";
  EXPECT_EQ(chain.nbFlips, 0U);

  EXPECT_TRUE(chain.walkChain({model.itemSums[2], false}, 1, end));
  EXPECT_EQ(touched(*model.dag), Ids{model.x[2][1]}) << "the given operand, whatever the direction";
}

TEST(MoveChain, UsesTheGivenOperandForTheFirstFlipAlone) {
  AssignmentGraph model(3);
  ProbeChain chain(3, 1, 0, *model.structure);
  chain.firstOperand = 1;
  model.state() = 77;
  RandomState expected = 77;
  ChainEnd end;
  ASSERT_TRUE(chain.walkChain({model.itemSums[0], true}, 2, end));
  // x[0][1] rose: whichever other sum comes next, it must fall, by its one operand at 1.
  (void)rand(expected, 2);
  EXPECT_EQ(touched(*model.dag), (Ids{model.x[0][1], model.x[1][1]}));
  EXPECT_EQ(chain.nbFlips, 2U);
  (void)rand(expected, 2);
  EXPECT_EQ(end, (ChainEnd{model.itemSums[1], true}));
  EXPECT_EQ(model.state(), expected);
}

TEST(MoveChain, RestoresEachSumInTurn) {
  AssignmentGraph model(4);
  ProbeChain chain(4, 1, 0, *model.structure);
  for (const RandomState seed : someSeeds(50)) {
    chain.nbFlips = 0;
    model.state() = seed;
    RandomState expected = seed;
    ChainEnd end;
    ASSERT_TRUE(chain.walkChain({model.itemSums[2], false}, 3, end));
    (void)rand(expected, 2);  // x[2][2] fell; the walk goes on in place 2
    const NodeId rising = drawOperandAt(*model.dag, expected, model.placeSums[2], 0);
    (void)rand(expected, 2);  // and on in the item of the operand that rose
    const NodeId item = rising / 4;
    (void)rand(expected, 2);
    EXPECT_EQ(touched(*model.dag), (Ids{model.x[2][2], rising, model.x[item][item]}));
    EXPECT_EQ(end, (ChainEnd{model.placeSums[item], true}));
    EXPECT_EQ(model.state(), expected);
    model.dag->propagation.rollbackAll(*model.dag);
  }
}

TEST(MoveChain, EndsAWalkAtADecisionOfOneSum) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  const NodeId lonely = model.limitedSum({x[0], x[1]}, 2);
  Dag& dag = model.start();
  ProbeChain chain(2, 1, 0, *model.structure);
  ChainEnd end;
  EXPECT_FALSE(chain.walkChain({lonely, true}, 1, end));
  EXPECT_EQ(end.sum, kNone);
  EXPECT_EQ(chain.nbFlips, 1U) << "the flip was made, and counts as a failure all the same";
  EXPECT_EQ(touched(dag).size(), 1U);
  ChainEnd next;
  EXPECT_FALSE(chain.nextSum({lonely, true}, 0, next));
}

TEST(MoveChain, EndsAWalkWhereNoCandidateIsLeft) {
  AssignmentGraph model(3);
  ProbeChain chain(2, 1, 0, *model.structure);
  commitValues(*model.dag, {{model.x[1][1], 0}});
  ChainEnd end;
  EXPECT_FALSE(chain.walkChain({model.itemSums[1], false}, 1, end));
  EXPECT_EQ(end.sum, kNone);
  EXPECT_TRUE(touched(*model.dag).empty());
}

TEST(MoveChain, NeverFlipsADecisionAgain) {
  AssignmentGraph model(3);
  ProbeChain chain(2, 1, 0, *model.structure);
  EXPECT_TRUE(chain.flipDecision(model.x[1][1]));
  EXPECT_FALSE(chain.flipDecision(model.x[1][1]));
  EXPECT_FALSE(chain.flipOperand(model.itemSums[1], 1));
  EXPECT_EQ(chain.nbFlips, 1U);
  ChainEnd end;
  EXPECT_FALSE(chain.walkChain({model.itemSums[1], false}, 1, end)) << "its only candidate is dirty";
  EXPECT_EQ(end.sum, kNone);
}

TEST(MoveChain, TreatsOtherOperandsLikeChangedOnes) {
  SearchGraph model;
  const Ids x = model.booleans(2);
  const NodeId n = model.integer();
  const NodeId notX = model.add(NodeType::Not, {x[0]});
  const NodeId sum = model.add(NodeType::Sum, {x[0], x[1], n, notX});
  const NodeId other = model.add(NodeType::Sum, {x[0], x[1], notX});
  model.minimise(sum);
  model.minimise(other);
  Dag& dag = model.start();
  ProbeChain chain(2, 1, 0, *model.structure);
  EXPECT_FALSE(chain.flipOperand(sum, 2));
  EXPECT_FALSE(chain.flipOperand(sum, 3));
  ChainEnd next;
  EXPECT_FALSE(chain.nextSum({sum, true}, 2, next));
  EXPECT_FALSE(chain.nextSum({sum, true}, 3, next));
  EXPECT_TRUE(chain.nextSum({sum, true}, 0, next));
  EXPECT_EQ(next.sum, other);
  EXPECT_TRUE(touched(dag).empty());
}

TEST(MoveChain, PrefersEqualitySumsThenTakesSlackSums) {
  AssignmentGraph model(3, Places::Limited);
  ProbeChain chain(2, 1, 0, *model.structure);
  model.state() = 4;
  ChainEnd next;
  EXPECT_TRUE(chain.nextSum({model.placeSums[1], true}, 0, next));
  EXPECT_EQ(next, (ChainEnd{model.itemSums[0], false})) << "x[0][1] is at 0 and has just risen";
  EXPECT_TRUE(chain.nextSum({model.itemSums[1], true}, 1, next));
  EXPECT_EQ(next, (ChainEnd{model.placeSums[1], true})) << "x[1][1] is at 1 and has just fallen";
  EXPECT_EQ(model.state(), 4U) << "no choice, no draw";
}

TEST(MoveChain, CallsARareSideUpToHalfOfTheOperands) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  const NodeId sum = model.limitedSum(x, 4);
  Dag& dag = model.start();
  ProbeChain chain(2, 1, 0, *model.structure);
  EXPECT_FALSE(chain.rare(sum));
  commitValues(dag, {{x[0], 1}});
  EXPECT_FALSE(chain.rare(sum));
  commitValues(dag, {{x[1], 1}});
  EXPECT_TRUE(chain.rare(sum)) << "two of four can rise";
}

TEST(PickOtherSum, GivesNoneWithoutADrawForASingleExcludedEntry) {
  RandomState state = 4;
  const Ids list = {7, 8, 9};
  EXPECT_EQ(pickOtherSum(state, list, 1, 2, 8), kNone);
  EXPECT_EQ(pickOtherSum(state, list, 2, 2, 7), kNone);
  EXPECT_EQ(pickOtherSum(state, list, 2, 1, 7), kNone);
  EXPECT_EQ(state, 4U);
  EXPECT_EQ(pickOtherSum(state, list, 1, 2, 7), 1U);
  EXPECT_EQ(state, 4U);
}

TEST(PickOtherSum, WalksInACircleFromTheDrawnPlace) {
  const Ids list = {1, 5, 5, 6, 5, 1};
  for (const RandomState seed : someSeeds(40)) {
    RandomState state = seed;
    RandomState expected = seed;
    const std::uint32_t drawn = 1 + rand(expected, 4);
    EXPECT_EQ(pickOtherSum(state, list, 1, 5, 5), 3U) << "from " << drawn;
    EXPECT_EQ(state, expected);
    EXPECT_EQ(pickOtherSum(state, list, 1, 3, 5), kNone) << "all excluded";
  }
}

}  // namespace
}  // namespace quvex
