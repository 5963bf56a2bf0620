#include "solver/node/nodecomparisons.h"

#include <gtest/gtest.h>

#include <array>

#include "support/graphbuilder.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

std::int64_t valueOf(NodeType type, double a, double b, const char* kinds = "ii") {
  return NodeStage(type, kinds).set(0, a, a, a).set(1, b, b, b).integer();
}
Bounds boundsOf(NodeType type, double a1, double a2, double b1, double b2, const char* kinds = "ii") {
  return NodeStage(type, kinds).set(0, a1, a1, a2).set(1, b1, b1, b2).bounds();
}
/// Operand values before and after, and what the two say about the violation.
std::int64_t deltaOf(NodeType type, double a, double b, double newA, double newB, const char* kinds = "ii") {
  NodeStage stage(type, kinds);
  stage.set(0, a, -99, 99).set(1, b, -99, 99).refresh();
  stage.setTentative(0, newA).setTentative(1, newB);
  stage.evalInteger();
  return stage.violationDelta();
}
std::int64_t violationOf(NodeType type, double a, double b, const char* kinds = "ii") {
  return NodeStage(type, kinds).set(0, a, -99, 99).set(1, b, -99, 99).violation();
}

TEST(NodeComparison, IntegersCompareExactly) {
  const std::array<std::array<std::int64_t, 3>, 6> expected = {
      {{0, 1, 0}, {1, 0, 1}, {0, 1, 1}, {0, 0, 1}, {1, 1, 0}, {1, 0, 0}}};
  const std::array<NodeType, 6> types = {NodeType::Eq, NodeType::Neq, NodeType::Geq,
                                         NodeType::Gt, NodeType::Leq, NodeType::Lt};
  for (std::size_t t = 0; t < types.size(); ++t) {
    for (int difference = -1; difference <= 1; ++difference) {
      EXPECT_EQ(valueOf(types[t], 5 + difference, 5), expected[t][static_cast<std::size_t>(difference + 1)])
          << NodeTypeUtils::toString(types[t]) << ' ' << difference;
    }
  }
}

TEST(NodeComparison, EvalReadsTentativeOperandsOnly) {
  NodeStage leq(NodeType::Leq, "ii");
  leq.set(0, 3).set(1, 5).refresh();
  leq.setTentative(0, 6);
  EXPECT_EQ(leq.evalInteger(), 0);
  EXPECT_EQ(leq.dag->nodeValue[leq.id], 1);
}

TEST(NodeComparison, TheTestIsVisibleToOthers) {
  NodeGt gt;
  const NodeComparison& comparison = gt;
  EXPECT_TRUE(comparison.test(2, 1));
  EXPECT_FALSE(comparison.test(1, 1));
  NodeDoubleGt doubleGt;
  const NodeDoubleComparison& doubleComparison = doubleGt;
  EXPECT_FALSE(doubleComparison.test(1.0000001, 1.0));
  EXPECT_STREQ(NodeDoubleEq().className(), "DoubleEq");
}

TEST(NodeDoubleComparison, ATieWithinToleranceIsATie) {
  for (const double b : {1.0, 1.0000001, 0.9999999}) {
    EXPECT_EQ(valueOf(NodeType::DoubleEq, 1, b, "dd"), 1);
    EXPECT_EQ(valueOf(NodeType::DoubleNeq, 1, b, "dd"), 0);
    EXPECT_EQ(valueOf(NodeType::DoubleGeq, 1, b, "dd"), 1);
    EXPECT_EQ(valueOf(NodeType::DoubleLeq, 1, b, "dd"), 1);
    EXPECT_EQ(valueOf(NodeType::DoubleGt, 1, b, "dd"), 0);
    EXPECT_EQ(valueOf(NodeType::DoubleLt, 1, b, "dd"), 0);
  }
}

TEST(NodeDoubleComparison, ClearDifferencesCompareAsUsual) {
  EXPECT_EQ(valueOf(NodeType::DoubleEq, 1, 1.5, "dd"), 0);
  EXPECT_EQ(valueOf(NodeType::DoubleNeq, 1, 1.5, "dd"), 1);
  EXPECT_EQ(valueOf(NodeType::DoubleGeq, 1, 1.5, "dd"), 0);
  EXPECT_EQ(valueOf(NodeType::DoubleLeq, 1, 1.5, "dd"), 1);
  EXPECT_EQ(valueOf(NodeType::DoubleGt, 1, 1.5, "dd"), 0);
  EXPECT_EQ(valueOf(NodeType::DoubleLt, 1, 1.5, "dd"), 1);
  EXPECT_EQ(valueOf(NodeType::DoubleGt, 2, 1.5, "id"), 1) << "an integer operand is converted";
}

TEST(NodeComparison, EqualityBoundsLookForDisjointAndForEqualFixedOperands) {
  const Bounds never{0, 0};
  const Bounds always{1, 1};
  const Bounds open{0, 1};
  EXPECT_EQ(boundsOf(NodeType::Eq, 0, 3, 4, 9), never);
  EXPECT_EQ(boundsOf(NodeType::Eq, 4, 9, 0, 3), never);
  EXPECT_EQ(boundsOf(NodeType::Eq, 0, 4, 4, 9), open);
  EXPECT_EQ(boundsOf(NodeType::Eq, 4, 4, 4, 4), always);
  EXPECT_EQ(boundsOf(NodeType::Neq, 0, 3, 4, 9), always);
  EXPECT_EQ(boundsOf(NodeType::Neq, 0, 4, 4, 9), open);
  EXPECT_EQ(boundsOf(NodeType::Neq, 4, 4, 4, 4), never);
}

TEST(NodeComparison, OrderBoundsAskTheTestAtTheFarEnds) {
  const Bounds never{0, 0};
  const Bounds always{1, 1};
  const Bounds open{0, 1};
  EXPECT_EQ(boundsOf(NodeType::Geq, 5, 9, 0, 5), always);
  EXPECT_EQ(boundsOf(NodeType::Geq, 0, 4, 5, 9), never);
  EXPECT_EQ(boundsOf(NodeType::Geq, 0, 5, 5, 9), open);
  EXPECT_EQ(boundsOf(NodeType::Gt, 6, 9, 0, 5), always);
  EXPECT_EQ(boundsOf(NodeType::Gt, 5, 9, 0, 5), open);
  EXPECT_EQ(boundsOf(NodeType::Gt, 0, 5, 5, 9), never);
  EXPECT_EQ(boundsOf(NodeType::Leq, 0, 5, 5, 9), always);
  EXPECT_EQ(boundsOf(NodeType::Leq, 6, 9, 0, 5), never);
  EXPECT_EQ(boundsOf(NodeType::Leq, 5, 9, 0, 5), open);
  EXPECT_EQ(boundsOf(NodeType::Lt, 0, 4, 5, 9), always);
  EXPECT_EQ(boundsOf(NodeType::Lt, 0, 5, 5, 9), open);
  EXPECT_EQ(boundsOf(NodeType::Lt, 5, 9, 0, 5), never);
}

TEST(NodeDoubleComparison, BoundsKeepTheTolerance) {
  EXPECT_EQ(boundsOf(NodeType::DoubleGeq, 0, 1, 1.0000001, 9, "dd"), (Bounds{0, 1})) << "the near ends tie";
  EXPECT_EQ(boundsOf(NodeType::DoubleGeq, 1, 9, 0, 1.0000001, "dd"), (Bounds{1, 1}));
  EXPECT_EQ(boundsOf(NodeType::DoubleLt, 0, 1, 1.0000001, 9, "dd"), (Bounds{0, 1}));
  EXPECT_EQ(boundsOf(NodeType::DoubleLt, 0, 1, 1.1, 9, "dd"), (Bounds{1, 1}));
  EXPECT_EQ(boundsOf(NodeType::DoubleEq, 0, 1, 1.0000001, 9, "dd"), (Bounds{0, 1}));
  EXPECT_EQ(boundsOf(NodeType::DoubleEq, 1, 1, 1.0000001, 1.0000001, "dd"), (Bounds{1, 1}));
  EXPECT_EQ(boundsOf(NodeType::DoubleNeq, 1, 1, 1.0000001, 1.0000001, "dd"), (Bounds{0, 0}));
  EXPECT_EQ(boundsOf(NodeType::DoubleNeq, 0, 1, 2, 9, "dd"), (Bounds{1, 1}));
}

TEST(NodeComparison, ViolationIsTheIntegerGap) {
  EXPECT_EQ(violationOf(NodeType::Eq, 3, 8), 5);
  EXPECT_EQ(violationOf(NodeType::Eq, 8, 3), 5);
  EXPECT_EQ(violationOf(NodeType::Eq, 8, 8), 0);
  EXPECT_EQ(violationOf(NodeType::Leq, 8, 3), 5);
  EXPECT_EQ(violationOf(NodeType::Leq, 3, 8), 0);
  EXPECT_EQ(violationOf(NodeType::Lt, 8, 3), 6);
  EXPECT_EQ(violationOf(NodeType::Lt, 8, 8), 1);
  EXPECT_EQ(violationOf(NodeType::Lt, 7, 8), 0);
  EXPECT_EQ(violationOf(NodeType::Geq, 3, 8), 5);
  EXPECT_EQ(violationOf(NodeType::Geq, 8, 3), 0);
  EXPECT_EQ(violationOf(NodeType::Gt, 3, 8), 6);
  EXPECT_EQ(violationOf(NodeType::Gt, 8, 8), 1);
  EXPECT_EQ(violationOf(NodeType::Neq, 8, 8), 1);
  EXPECT_EQ(violationOf(NodeType::Neq, 3, 8), 0);
}

TEST(NodeComparison, EqualityViolationWrapsWithoutAClamp) {
  NodeStage eq(NodeType::Eq, "ii");
  EXPECT_EQ(eq.setInteger(0, kHighestInt).setInteger(1, kLowestInt).violation(), -1);
}

TEST(NodeComparison, ViolationDeltaIsTheDifferenceOfViolations) {
  for (const NodeType type : {NodeType::Eq, NodeType::Neq, NodeType::Geq, NodeType::Gt, NodeType::Leq, NodeType::Lt}) {
    for (int a = 0; a < 4; ++a) {
      for (int newB = 0; newB < 4; ++newB) {
        EXPECT_EQ(deltaOf(type, a, 2, 1, newB), violationOf(type, 1, newB) - violationOf(type, a, 2))
            << NodeTypeUtils::toString(type);
      }
    }
  }
}

TEST(NodeDoubleComparison, ViolationIsTheTruncatedGap) {
  EXPECT_EQ(violationOf(NodeType::DoubleLeq, 3, 2.5, "dd"), 0) << "broken by 0.5, which counts as nothing";
  EXPECT_EQ(violationOf(NodeType::DoubleLeq, 8.7, 2, "dd"), 6);
  EXPECT_EQ(violationOf(NodeType::DoubleLeq, 2, 8.7, "dd"), 0);
  EXPECT_EQ(violationOf(NodeType::DoubleGeq, 2, 8.7, "dd"), 6);
  EXPECT_EQ(violationOf(NodeType::DoubleLt, 2, 2, "dd"), 1);
  EXPECT_EQ(violationOf(NodeType::DoubleLt, 8.7, 2, "dd"), 7);
  EXPECT_EQ(violationOf(NodeType::DoubleLt, 1.9, 2, "dd"), 0);
  EXPECT_EQ(violationOf(NodeType::DoubleGt, 2, 8.7, "dd"), 7);
  EXPECT_EQ(violationOf(NodeType::DoubleGt, 2 + 1e-7, 2, "dd"), 0) << "a tie is false, but 1 - 1e-7 truncates to 0";
  EXPECT_EQ(violationOf(NodeType::DoubleEq, 2, 8.7, "dd"), 6);
  EXPECT_EQ(violationOf(NodeType::DoubleEq, 8.7, 2, "dd"), 6);
  EXPECT_EQ(violationOf(NodeType::DoubleNeq, 2, 2 + 1e-7, "dd"), 1);
  EXPECT_EQ(violationOf(NodeType::DoubleNeq, 2, 3, "dd"), 0);
}

TEST(NodeDoubleComparison, ViolationDeltaSubtractsBeforeItTruncates) {
  EXPECT_EQ(violationOf(NodeType::DoubleLeq, 4.2, 2, "dd") - violationOf(NodeType::DoubleLeq, 3.9, 2, "dd"), 1);
  EXPECT_EQ(deltaOf(NodeType::DoubleLeq, 3.9, 2, 4.2, 2, "dd"), 0) << "0.3 more";
  EXPECT_EQ(deltaOf(NodeType::DoubleLeq, 3.9, 2, 5.1, 2, "dd"), 1);
  EXPECT_EQ(deltaOf(NodeType::DoubleLeq, 5.1, 2, 1, 2, "dd"), -3) << "a gap below zero counts as zero";
  EXPECT_EQ(deltaOf(NodeType::DoubleGeq, 2, 5.1, 2, 1, "dd"), -3);
  EXPECT_EQ(deltaOf(NodeType::DoubleGeq, 2, 1, 2, 5.1, "dd"), 3);
  EXPECT_EQ(deltaOf(NodeType::DoubleEq, 2, 5.5, 2, 1, "dd"), -2);
  EXPECT_EQ(deltaOf(NodeType::DoubleNeq, 2, 2, 2, 1, "dd"), -1);
  EXPECT_EQ(deltaOf(NodeType::DoubleNeq, 2, 1, 2, 2, "dd"), 1);
}

TEST(NodeDoubleComparison, ViolationDeltaDoesNotAskTheTest) {
  EXPECT_EQ(violationOf(NodeType::DoubleLt, 1.5, 2, "dd"), 0);
  EXPECT_EQ(deltaOf(NodeType::DoubleLt, 0, 2, 1.9999999, 2, "dd"), 0);
  EXPECT_EQ(deltaOf(NodeType::DoubleLt, 0, 2, 2, 2, "dd"), 1);
  EXPECT_EQ(deltaOf(NodeType::DoubleLt, 1.5, 2, 2.5, 2, "dd"), 1) << "from 0.5, although the test held there, to 1.5";
  EXPECT_EQ(deltaOf(NodeType::DoubleLt, 1.5, 2, 2.4, 2, "dd"), 0);
  EXPECT_EQ(deltaOf(NodeType::DoubleGt, 2, 1.5, 2, 2.4, "dd"), 0);
}

TEST(NodeDoubleComparison, AViolationWithoutANumberIsTheLowestInteger) {
  NodeStage eq(NodeType::DoubleEq, "dd");
  EXPECT_EQ(eq.set(0, -kInfinity, -kInfinity, 0).set(1, 0, 0, kInfinity).violation(), kLowestInt);
}

TEST(NodeComparison, OrderPicksMoveTheDifference) {
  for (const bool isDouble : {false, true}) {
    const auto upward =
        isDouble ? std::array{NodeType::DoubleGeq, NodeType::DoubleGt} : std::array{NodeType::Geq, NodeType::Gt};
    for (const NodeType type : upward) {
      NodeStage stage(type, isDouble ? "dd" : "ii");
      stage.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
      EXPECT_EQ(stage.decrease(), "none 0") << "already false";
      EXPECT_EQ(stage.increase(kCoinSet), "b- 1");
      EXPECT_EQ(stage.increase(kCoinClear), "a+ 1");
      EXPECT_EQ(stage.change(kCoinSet), "b- 1");
      stage.set(0, 7).refresh();
      EXPECT_EQ(stage.increase(), "none 0") << "already true";
      EXPECT_EQ(stage.decrease(kCoinSet), "a- 1");
      EXPECT_EQ(stage.decrease(kCoinClear), "b+ 1");
      EXPECT_EQ(stage.change(kCoinClear), "b+ 1");
    }
    const auto downward =
        isDouble ? std::array{NodeType::DoubleLeq, NodeType::DoubleLt} : std::array{NodeType::Leq, NodeType::Lt};
    for (const NodeType type : downward) {
      NodeStage stage(type, isDouble ? "dd" : "ii");
      stage.set(0, 6, 0, 9).set(1, 3, 0, 9).refresh();
      EXPECT_EQ(stage.decrease(), "none 0");
      EXPECT_EQ(stage.increase(kCoinSet), "a- 1");
      EXPECT_EQ(stage.increase(kCoinClear), "b+ 1");
      EXPECT_EQ(stage.change(kCoinSet), "a- 1");
      stage.set(1, 7).refresh();
      EXPECT_EQ(stage.increase(), "none 0");
      EXPECT_EQ(stage.decrease(kCoinSet), "b- 1");
      EXPECT_EQ(stage.decrease(kCoinClear), "a+ 1");
      EXPECT_EQ(stage.change(kCoinClear), "a+ 1");
    }
  }
}

TEST(NodeComparison, TheDifferenceIsMovedWithoutATossWhereOneSideHasNoRoom) {
  NodeStage geq(NodeType::Geq, "ii");
  geq.set(0, 3, 0, 9).set(1, 6, 6, 9).refresh();
  EXPECT_EQ(geq.increase(kCoinSet), "a+ 0") << "the second is at its minimum";
  geq.set(0, 3, 0, 3).set(1, 6, 0, 9);
  EXPECT_EQ(geq.increase(kCoinClear), "b- 0") << "the first is at its maximum";
  geq.set(1, 6, 6, 6);
  EXPECT_EQ(geq.increase(), "b- 0") << "even if the second has no room either";
  geq.set(0, 7, 7, 9).set(1, 6, 0, 9).refresh();
  EXPECT_EQ(geq.decrease(kCoinSet), "b+ 0") << "the first is at its minimum";
  geq.set(0, 7, 0, 9).set(1, 6, 0, 6).refresh();
  EXPECT_EQ(geq.decrease(kCoinClear), "a- 0") << "the second is at its maximum";
}

TEST(NodeDoubleComparison, RoomWithinToleranceIsNone) {
  NodeStage geq(NodeType::DoubleGeq, "dd");
  geq.set(0, 3, 0, 9).set(1, 6, 5.9999999, 9).refresh();
  EXPECT_EQ(geq.increase(kCoinSet), "a+ 0");
  geq.set(0, 3, 0, 3.0000001).set(1, 6, 0, 9);
  EXPECT_EQ(geq.increase(kCoinClear), "b- 0");
}

TEST(NodeComparison, OrderPicksReadTheTentativeValueAndEqualitiesTheCommittedOne) {
  for (const NodeType type : {NodeType::Geq, NodeType::Gt, NodeType::Leq, NodeType::Lt}) {
    NodeStage stage(type, "ii");
    stage.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
    const auto value = stage.dag->nodeValue[stage.id];
    stage.dag->tentativeValue[stage.id] = 1 - value;
    EXPECT_EQ(value == 1 ? stage.decrease() : stage.increase(), "none 0") << NodeTypeUtils::toString(type);
    EXPECT_NE(value == 1 ? stage.increase() : stage.decrease(), "none 0") << NodeTypeUtils::toString(type);
  }
  for (const NodeType type : {NodeType::DoubleGeq, NodeType::DoubleGt, NodeType::DoubleLeq, NodeType::DoubleLt}) {
    NodeStage stage(type, "dd");
    stage.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
    const auto value = stage.dag->nodeValue[stage.id];
    stage.dag->tentativeValue[stage.id] = 1 - value;
    EXPECT_EQ(value == 1 ? stage.decrease() : stage.increase(), "none 0") << NodeTypeUtils::toString(type);
  }
  for (const NodeType type : {NodeType::Eq, NodeType::Neq, NodeType::DoubleEq, NodeType::DoubleNeq}) {
    NodeStage stage(type, type == NodeType::Eq || type == NodeType::Neq ? "ii" : "dd");
    stage.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
    const auto value = stage.dag->nodeValue[stage.id];
    stage.dag->tentativeValue[stage.id] = 1 - value;
    EXPECT_EQ(value == 1 ? stage.increase() : stage.decrease(), "none 0") << NodeTypeUtils::toString(type);
    EXPECT_NE(value == 1 ? stage.decrease() : stage.increase(), "none 0") << NodeTypeUtils::toString(type);
  }
}

TEST(NodeComparison, EqPicksCloseTheGapOrTakeAnyChange) {
  for (const NodeType type : {NodeType::Eq, NodeType::DoubleEq}) {
    NodeStage eq(type, type == NodeType::Eq ? "ii" : "dd");
    eq.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
    EXPECT_EQ(eq.decrease(), "none 0");
    EXPECT_EQ(eq.increase(kCoinSet), "b- 1") << "the first is lower: the difference rises";
    EXPECT_EQ(eq.increase(kCoinClear), "a+ 1");
    EXPECT_EQ(eq.change(kCoinSet), "b- 1");
    eq.set(0, 7).refresh();
    EXPECT_EQ(eq.increase(kCoinSet), "a- 1");
    eq.set(0, 6).refresh();
    EXPECT_EQ(eq.increase(), "none 0");
    for (RandomState state : {1U, 2U, 3U, 4U, 5U, 6U}) {
      EXPECT_EQ(eq.decrease(state), eq.anyChange(state));
      EXPECT_EQ(eq.change(state), eq.anyChange(state));
    }
  }
}

TEST(NodeComparison, NeqPicksCloseTheGapOrTakeAnyChange) {
  for (const NodeType type : {NodeType::Neq, NodeType::DoubleNeq}) {
    NodeStage neq(type, type == NodeType::Neq ? "ii" : "dd");
    neq.set(0, 3, 0, 9).set(1, 6, 0, 9).refresh();
    EXPECT_EQ(neq.increase(), "none 0");
    EXPECT_EQ(neq.decrease(kCoinSet), "b- 1");
    EXPECT_EQ(neq.change(kCoinClear), "a+ 1");
    neq.set(0, 7).refresh();
    EXPECT_EQ(neq.decrease(kCoinSet), "a- 1");
    neq.set(0, 6).refresh();
    EXPECT_EQ(neq.decrease(), "none 0");
    for (RandomState state : {1U, 2U, 3U, 4U, 5U, 6U}) {
      EXPECT_EQ(neq.increase(state), neq.anyChange(state));
      EXPECT_EQ(neq.change(state), neq.anyChange(state));
    }
  }
}

TEST(NodeComparison, CountsItsGapAsAnInactiveConstraint) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId value = graph.add(NodeType::If, {x, graph.constant(3), graph.constant(9)});
  const NodeId leq = graph.add(NodeType::Leq, {value, graph.constant(5)});
  graph.constraint(leq);
  Dag& dag = graph.build();
  EXPECT_EQ(dag.propagation.committedNbViolated, 1);
  EXPECT_EQ(dag.propagation.committedViolation, 4);
  commitValues(dag, {{x, 1}});
  EXPECT_EQ(dag.propagation.committedNbViolated, 0);
  EXPECT_EQ(dag.propagation.committedViolation, 0);
}

}  // namespace
}  // namespace quvex
