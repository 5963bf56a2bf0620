#include "solver/move/movekbalance.h"

#include <gtest/gtest.h>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

TEST(MoveKBalance, ChangesADecisionDownAndOneUpPerOperator) {
  SearchGraph model;
  const Ids x = model.booleans(8);
  const NodeId first = model.booleanSum({x[0], x[1], x[2], x[3]});
  const NodeId second = model.booleanSum({x[4], x[5], x[6], x[7]});
  model.minimise(first);
  model.minimise(second);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}, {x[1], 1}, {x[4], 1}, {x[5], 1}});
  MoveKBalance move(2, 4, *model.structure, dag);
  EXPECT_EQ(move.name, "2-Balance");
  for (const RandomState seed : someSeeds(50)) {
    RandomState expected = seed;
    std::vector<std::uint32_t> drawn;
    sampleDistinct(expected, 2, 2, drawn);
    Ids wanted;
    for (const std::uint32_t i : drawn) {
      const NodeId sum = i == 0 ? first : second;
      wanted.push_back(drawOperandAt(dag, expected, sum, 1));
      wanted.push_back(drawOperandAt(dag, expected, sum, 0));
    }
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), wanted);
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    EXPECT_EQ(dag.tentativeValue[first], 2);
    EXPECT_EQ(dag.tentativeValue[second], 2);
    move.conclude(Outcome::Accepted);
    EXPECT_TRUE(isWholeGraphInit(dag));
  }
}

TEST(MoveKBalance, IsNotBuiltWithFewerOperatorsThanK) {
  SearchGraph model;
  model.minimise(model.booleanSum(model.booleans(3)));
  Dag& dag = model.start(5);
  MoveKBalance move(2, 4, *model.structure, dag);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
}

TEST(MoveKBalance, IsNotBuiltWhenAllOperatorsLieAboveTheOptimisedLevel) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  model.minimise(model.booleanSum(x));
  model.minimise(model.booleanSum({x[0], x[1]}));
  Dag& dag = model.start(5);
  commitValues(dag, {{x[0], 1}});
  dag.propagation.optimizedLevel = 0;
  MoveKBalance move(2, 4, *model.structure, dag);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), stepped(5, 1)) << "the operators are drawn, and nothing is picked";
  EXPECT_TRUE(touched(dag).empty());
}

TEST(MoveKBalance, ChangesNothingWhenBothPicksAgree) {
  // Any change of a cosine's operand may lower or raise it: both picks give the one decision.
  SearchGraph model;
  const NodeId x = model.boolean();
  const NodeId cosine = model.add(NodeType::DoubleCos, {x});
  model.minimise(cosine);
  Dag& dag = model.start(5);
  NodeId lowering = kNone;
  NodeId raising = kNone;
  int delta = 0;
  ASSERT_TRUE(dag.nodes[cosine]->pickDecrease(dag, model.state(), lowering, delta, cosine));
  ASSERT_TRUE(dag.nodes[cosine]->pickIncrease(dag, model.state(), raising, delta, cosine));
  ASSERT_EQ(lowering, raising);

  MoveKBalance move(1, 4, *model.structure, dag);
  EXPECT_FALSE(move.apply());
  EXPECT_TRUE(touched(dag).empty());
}

TEST(MoveKBalance, PicksNoDecisionThatAnEarlierOperatorHasChanged) {
  SearchGraph model;
  const Ids x = model.booleans(2);
  const NodeId first = model.booleanSum(x);
  const NodeId second = model.add(NodeType::Sum, x);
  model.minimise(first);
  model.minimise(second);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}});
  MoveKBalance move(2, 4, *model.structure, dag);
  for (const RandomState seed : someSeeds(20)) {
    model.state() = seed;
    EXPECT_TRUE(move.apply()) << "the first operator changes both, the second finds none left";
    EXPECT_EQ(touched(dag), x);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKBalance, GoesOnWhenOneOperatorCannotFall) {
  SearchGraph model;
  const Ids x = model.booleans(4);
  model.minimise(model.booleanSum({x[0], x[1]}));
  model.minimise(model.booleanSum({x[2], x[3]}));
  Dag& dag = model.start(5);
  commitValues(dag, {{x[2], 1}});
  MoveKBalance move(2, 4, *model.structure, dag);
  EXPECT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), (Ids{x[2], x[3]}));
}

}  // namespace
}  // namespace quvex
