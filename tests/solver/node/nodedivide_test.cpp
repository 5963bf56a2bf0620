#include "solver/node/nodedivide.h"

#include <gtest/gtest.h>

#include "support/failure.h"
#include "support/graphbuilder.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

TEST(NodeDivide, TruncatesTowardZero) {
  NodeStage quotient(NodeType::Divide, "ii");
  EXPECT_EQ(quotient.set(0, -7).set(1, 2).setIntegerBounds(1, 1, 9).integer(), -3);
  EXPECT_EQ(quotient.set(0, 7).set(1, -2).integer(), -3);
  EXPECT_EQ(quotient.setTentative(0, 9).evalInteger(), -4);
}

TEST(NodeDivide, FailsOnAZeroDivisorAtEveryEvaluation) {
  NodeStage quotient(NodeType::Divide, "ii");
  quotient.set(0, 7).set(1, 2).refresh();
  quotient.setTentative(1, 0);
  EXPECT_EQ(failureOf([&] { quotient.evalInteger(); }), refusal("NodeDivide::eval", "Division by zero."));
  quotient.set(1, 0);
  EXPECT_EQ(failureOf([&] { quotient.refresh(); }), refusal("NodeDivide::computeValue", "Division by zero."));
  quotient.setIntegerBounds(1, 0, 0);
  EXPECT_EQ(failureOf([&] { (void)quotient.bounds(); }), refusal("NodeDivide::computeBounds", "Division by zero."));
}

TEST(NodeDivide, FailsWhereTheProcessorWouldTrap) {
  NodeStage quotient(NodeType::Divide, "ii");
  quotient.setInteger(0, kLowestInt).set(1, -1);
  EXPECT_EQ(failureOf([&] { quotient.refresh(); }),
            refusal("NodeDivide::computeValue", "Integer overflow in the division of -9223372036854775808 by -1."));
}

TEST(NodeDivide, WidensTheDivisorToTheUnits) {
  NodeStage quotient(NodeType::Divide, "ii");
  const auto bounds = [&](std::int64_t a1, std::int64_t a2, std::int64_t b1, std::int64_t b2) {
    return quotient.setIntegerBounds(0, a1, a2).setIntegerBounds(1, b1, b2).bounds();
  };
  EXPECT_EQ(bounds(10, 20, 2, 5), (Bounds{2, 20})) << "[2, 5] counts as [1, 5]";
  EXPECT_EQ(bounds(10, 20, -5, -2), (Bounds{-20, -2})) << "[-5, -2] counts as [-5, -1]";
  EXPECT_EQ(bounds(10, 20, 0, 5), (Bounds{2, 20}));
  EXPECT_EQ(bounds(-10, 20, -5, 0), (Bounds{-20, 10}));
  EXPECT_EQ(bounds(-10, 20, -5, 3), (Bounds{-20, 20}));
  EXPECT_EQ(bounds(kLowestInt, 0, -5, 3), (Bounds{-kHighestInt, kHighestInt}));
  EXPECT_EQ(bounds(kLowestInt, 0, -5, -2), (Bounds{0, kHighestInt})) << "saturates";
}

TEST(NodeDivide, PicksGoByTheSignOfTheDivisor) {
  NodeStage quotient(NodeType::Divide, "ii");
  quotient.set(0, 4, -9, 9).set(1, 2, -9, 9).refresh();
  EXPECT_EQ(quotient.decrease(kCoinSet), "a- 1") << "lowers the difference";
  EXPECT_EQ(quotient.decrease(kCoinClear), "b+ 1");
  EXPECT_EQ(quotient.increase(kCoinSet), "b- 1") << "raises it";
  EXPECT_EQ(quotient.increase(kCoinClear), "a+ 1");
  quotient.set(1, -2).refresh();
  EXPECT_EQ(quotient.decrease(kCoinSet), "b- 1");
  EXPECT_EQ(quotient.decrease(kCoinClear), "a+ 1");
  EXPECT_EQ(quotient.increase(kCoinSet), "a- 1");
  EXPECT_EQ(quotient.increase(kCoinClear), "b+ 1");
  quotient.set(1, 0);
  EXPECT_EQ(quotient.decrease(kCoinSet), "b- 1") << "zero counts as negative";
}

TEST(NodeDivide, PicksMoveADividendOfZeroItself) {
  NodeStage quotient(NodeType::Divide, "ii");
  quotient.set(0, 0, -9, 9).set(1, 2, -9, 9).refresh();
  EXPECT_EQ(quotient.decrease(), "a- 0");
  EXPECT_EQ(quotient.increase(), "a+ 0");
  quotient.set(1, -2).refresh();
  EXPECT_EQ(quotient.decrease(), "a+ 0");
  EXPECT_EQ(quotient.increase(), "a- 0");
}

TEST(NodeDivide, PickChangeTakesAnyChange) {
  NodeStage quotient(NodeType::Divide, "ii");
  for (RandomState state : {1U, 2U, 3U, 4U, 5U, 6U}) EXPECT_EQ(quotient.change(state), quotient.anyChange(state));
}

TEST(NodeDivide, AMoveThatZeroesTheDivisorRaisesAndCanBeRolledBack) {
  GraphBuilder graph;
  const NodeId a = graph.integer();
  const NodeId x = graph.boolean();
  const NodeId divisor = graph.add(NodeType::Not, {x});
  const NodeId quotient = graph.add(NodeType::Divide, {a, divisor});
  graph.minimise(quotient);
  Dag& dag = graph.build();
  dag.flip(x);
  EXPECT_EQ(failureOf([&] { dag.propagation.commitAll(dag); }), refusal("NodeDivide::eval", "Division by zero."));
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

}  // namespace
}  // namespace quvex
