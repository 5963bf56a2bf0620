#include "solver/kernel/propagation.h"

#include <gtest/gtest.h>

#include "solver/kernel/dag.h"
#include "support/failure.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

std::size_t nbQueued(const Dag& dag) {
  std::size_t n = 0;
  for (Rank r = 0; r < dag.fixed.nbRanks(); ++r) {
    n += dag.propagation.queuedNodes(r).size() + dag.propagation.queuedConstraints(r).size();
  }
  return n;
}

bool isClean(const Dag& dag) {
  for (NodeId id = 0; id < dag.fixed.nbNodes; ++id) {
    if (dag.isDirty(id) || dag.nodeValue[id] != dag.tentativeValue[id]) return false;
    if (dag.records[id].changeKind == ChangeKind::Called && dag.records[id].changes != 0) return false;
  }
  const Propagation& propagation = dag.propagation;
  return nbQueued(dag) == 0 && propagation.touchedDecisions.empty() && propagation.currentDeferredNodes().empty() &&
         propagation.doneLevel == 0 && propagation.tentativeNbViolated == propagation.committedNbViolated &&
         propagation.tentativeViolation == propagation.committedViolation;
}

/// The highest of the first two operands' 5 and 3 and the others' 1.
NodeId addHighest(GraphBuilder& graph, const std::vector<NodeId>& x) {
  std::vector<t_value> coefficients(x.size(), 1);
  coefficients[0] = 5;
  coefficients[1] = 3;
  return graph.add(NodeType::ScalarMax, x, coefficients);
}

TEST(Propagation, QueuesNothingForTheCommittedValue) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.minimise(graph.add(NodeType::Not, {x}));
  Dag& dag = graph.build();
  dag.propagation.setTentativeValue(dag, x, 0);
  EXPECT_EQ(nbQueued(dag), 0U);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(nbQueued(dag), 0U);
}

TEST(Propagation, KeepsTheFirstOfTwoSetsInOneMove) {
  GraphBuilder graph;
  const NodeId i = graph.integer();
  graph.minimise(i);
  Dag& dag = graph.build();
  dag.propagation.setTentativeValue(dag, i, 5);
  dag.propagation.setTentativeValue(dag, i, 7);
  EXPECT_EQ(dag.tentativeValue[i], 5);
  EXPECT_EQ(dag.propagation.touchedDecisions, std::vector<NodeId>{i});
  dag.propagation.rollbackAll(dag);
}

TEST(Propagation, RollsBackWholeAfterABrokenConstraint) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId limit = graph.add(NodeType::Not, {x});
  const NodeId deep = graph.add(NodeType::Or, {graph.add(NodeType::And, {x, y}), y});
  graph.constraint(limit);
  graph.constraint(graph.add(NodeType::Not, {deep}));
  graph.minimise(deep);
  Dag& dag = graph.build();
  dag.propagation.activateAllConstraints();
  dag.flip(x);
  dag.flip(y);
  EXPECT_FALSE(dag.propagation.evaluateConstraints(dag));
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, NotesChangesInLogsOfEveryKind) {
  struct Case {
    std::uint32_t nbOperands;
    NodeType type;
    ChangeKind kind;
  };
  for (const auto& [nbOperands, type, kind] : {Case{3, NodeType::Xor, ChangeKind::Bit},
                                               {64, NodeType::Max, ChangeKind::Bit},
                                               {100, NodeType::Sum, ChangeKind::List},
                                               {100, NodeType::Max, ChangeKind::Called},
                                               {2000, NodeType::Sum, ChangeKind::List},
                                               {70000, NodeType::Sum, ChangeKind::List},
                                               {70000, NodeType::Max, ChangeKind::Called}}) {
    GraphBuilder graph;
    const std::vector<NodeId> x = graph.booleans(nbOperands);
    const NodeId top = graph.add(type, x);
    const NodeId above = graph.add(NodeType::Abs, {top});
    graph.minimise(above);
    Dag& dag = graph.build();
    EXPECT_EQ(dag.records[top].changeKind, kind) << nbOperands;
    EXPECT_EQ(dag.records[above].changeKind, ChangeKind::None);
    for (const bool kept : {false, true, false, true}) {
      const t_value before = dag.nodeValue[above];
      for (const std::uint32_t p : {nbOperands - 1, 1U, 0U}) dag.flip(x[p]);
      ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
      EXPECT_NE(dag.changes(top).word, 0U) << nbOperands;
      EXPECT_NE(dag.tentativeValue[above], before) << nbOperands;
      if (kept) {
        dag.propagation.commitAll(dag);
      } else {
        dag.propagation.rollbackAll(dag);
        EXPECT_EQ(dag.nodeValue[above], before);
      }
      EXPECT_TRUE(isClean(dag)) << nbOperands;
      EXPECT_TRUE(isWholeGraphInit(dag)) << nbOperands;
    }
  }
}

TEST(Propagation, RollsBackChangesThatAnExtremumLooksUp) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(100);
  const NodeId highest = addHighest(graph, x);
  graph.maximise(highest);
  Dag& dag = graph.build();
  commitValues(dag, {{x[0], 1}, {x[1], 1}});
  dag.flip(x[1]);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
  dag.propagation.rollbackAll(dag);
  dag.flip(x[0]);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(dag.tentativeValue[highest], 3) << "the second operand is not among the changed ones any more";
  dag.propagation.rollbackAll(dag);
}

TEST(Propagation, RollsBackAConstraintThatIsAnExtremum) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(100);
  const NodeId highest = addHighest(graph, x);
  graph.constraint(highest);
  graph.minimise(x[2]);
  Dag& dag = graph.build();
  commitValues(dag, {{x[0], 1}, {x[1], 1}});
  dag.propagation.activateAllConstraints();
  for (const std::vector<NodeId>& flips : {std::vector{x[1]}, std::vector{x[0], x[1]}}) {
    for (const NodeId id : flips) dag.flip(id);
    EXPECT_EQ(dag.propagation.evaluateConstraints(dag), flips.size() == 1) << "0 is false";
    dag.propagation.rollbackAll(dag);
    EXPECT_TRUE(isClean(dag));
    dag.flip(x[0]);
    ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
    EXPECT_EQ(dag.tentativeValue[highest], 3) << "the second operand has not changed in this move";
    dag.propagation.rollbackAll(dag);
    EXPECT_TRUE(isClean(dag));
  }
}

TEST(Propagation, RollsBackAnExtremumThatWasToldAndNotEvaluated) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(100);
  const NodeId barrier = graph.boolean();
  const NodeId highest = addHighest(graph, x);
  graph.constraint(graph.add(NodeType::Not, {barrier}));
  graph.constraint(graph.add(NodeType::Geq, {highest, graph.constant(0)}));
  graph.minimise(x[2]);
  Dag& dag = graph.build();
  commitValues(dag, {{x[0], 1}, {x[1], 1}});
  dag.propagation.activateAllConstraints();
  dag.flip(x[1]);
  dag.flip(barrier);
  ASSERT_FALSE(dag.propagation.evaluateConstraints(dag));
  EXPECT_TRUE(dag.isDirty(highest));
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  dag.flip(x[0]);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(dag.tentativeValue[highest], 3);
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isClean(dag));
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, HoldsAggregatesAsBarriersWhateverEndsTheMove) {
  for (const NodeType type : {NodeType::Or, NodeType::And, NodeType::Xor}) {
    for (const std::uint32_t n : {5U, 64U, 100U, 2000U}) {
      GraphBuilder graph;
      const std::vector<NodeId> x = graph.booleans(n);
      const NodeId free = graph.boolean();
      graph.constraint(graph.add(type, std::vector<NodeId>(x.begin(), x.begin() + n - 1)));
      graph.constraint(graph.add(type, std::vector<NodeId>(x.begin() + 1, x.end())));
      graph.minimise(graph.add(NodeType::Or, {x[0], free}));
      Dag& dag = graph.build();
      for (std::uint32_t p = 0; p < n; ++p) {
        if (type == NodeType::And || p == 1) commitValues(dag, {{x[p], 1}});
      }
      dag.propagation.activateAllConstraints();
      const std::vector<NodeId> watched{x[1], x[n / 2], x[n - 2]};
      RandomState state = n;
      int nbBroken = 0;
      int nbKept = 0;
      for (int move = 0; move < 200; ++move) {
        dag.flip(free);
        if (coin(state)) {
          for (std::uint32_t k = 1 + rand(state, 2); k > 0; --k) dag.flip(watched[rand(state, 3)]);
        }
        const bool holds = dag.propagation.evaluateConstraints(dag);
        if (!holds) ++nbBroken;
        if (holds && coin(state)) {
          dag.propagation.commitAll(dag);
          ++nbKept;
        } else {
          dag.propagation.rollbackAll(dag);
        }
        ASSERT_TRUE(isClean(dag)) << n;
        ASSERT_TRUE(isWholeGraphInit(dag)) << n;
        ASSERT_EQ(dag.propagation.committedNbViolated, 0);
      }
      EXPECT_GT(nbBroken, 5) << n;
      EXPECT_GT(nbKept, 5) << n;
    }
  }
}

TEST(Propagation, RollsBackWhatWasEvaluatedBeforeConstraintsBecameOrCeasedToBeBarriers) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(2);
  const NodeId either = graph.add(NodeType::Or, x);
  const NodeId first = graph.add(NodeType::Or, {x[0], graph.constant(0)});
  graph.constraint(either);
  graph.constraint(first);
  graph.minimise(x[1]);
  Dag& dag = graph.build();
  commitValues(dag, {{x[0], 1}});
  dag.flip(x[0]);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag)) << "they are only counted";
  dag.propagation.activateAllConstraints();
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  dag.flip(x[0]);
  EXPECT_FALSE(dag.propagation.evaluateConstraints(dag));
  dag.propagation.deactivateAllConstraints();
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
}

TEST(Propagation, RollsBackWithoutAnEvaluationBehindAMoveOfBarriers) {
  GraphBuilder graph;
  const NodeId held = graph.boolean();
  const NodeId free = graph.boolean();
  graph.constraint(held);
  graph.constraint(graph.add(NodeType::Or, {held, free}));
  graph.minimise(free);
  Dag& dag = graph.build();
  commitValues(dag, {{held, 1}});
  dag.propagation.activateAllConstraints();
  dag.flip(free);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  dag.propagation.rollbackAll(dag);
  dag.flip(held);
  dag.flip(free);
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, TellsOperandsOnceInTheMoveBehindABrokenConstraint) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(100);
  const NodeId sum = graph.add(NodeType::Sum, x);
  graph.constraint(graph.add(NodeType::Not, {x[0]}));
  graph.constraint(graph.add(NodeType::Geq, {sum, graph.constant(0)}));
  graph.minimise(sum);
  Dag& dag = graph.build();
  dag.propagation.activateAllConstraints();
  dag.flip(x[0]);
  dag.flip(x[1]);
  ASSERT_FALSE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(dag.changes(sum).word, 2U);
  dag.propagation.rollbackAll(dag);
  dag.flip(x[1]);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(dag.changes(sum).word, 1U) << "nothing is left of the move before";
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, QueuesParentsOfManyRanksInTheOrderOfTelling) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId deep = graph.add(NodeType::Or, {graph.add(NodeType::And, {y, y}), x});
  const NodeId first = graph.add(NodeType::Or, {x, y});
  const NodeId constraint = graph.add(NodeType::Or, {x, graph.constant(1)});
  const NodeId second = graph.add(NodeType::And, {x, y});
  const NodeId deepToo = graph.add(NodeType::And, {first, x});
  graph.constraint(constraint);
  graph.minimise(graph.add(NodeType::Sum, {deep, first, second, deepToo}));
  Dag& dag = graph.build();
  dag.flip(x);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
  const auto queued = [&](Rank r) {
    const auto list = dag.propagation.queuedNodes(r);
    return std::vector<NodeId>(list.begin(), list.end());
  };
  EXPECT_EQ(queued(1), (std::vector<NodeId>{first, second}));
  EXPECT_EQ(queued(2), (std::vector<NodeId>{deep, deepToo}));
  EXPECT_EQ(dag.propagation.queuedConstraints(1).size(), 1U);
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isClean(dag));
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, MovesWhoseNumbersStartAnewSeeNothingOfTheOldOnes) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(100);
  const NodeId sum = graph.add(NodeType::Sum, x);
  const NodeId wide = graph.add(NodeType::Or, {x[0], x[1]});
  const NodeId highest = addHighest(graph, x);
  const NodeId element = graph.add(NodeType::At, {graph.add(NodeType::Array, {x[0], x[1]}), x[2]});
  graph.minimise(graph.add(NodeType::Sum, {sum, wide, highest, element}));
  Dag& dag = graph.build();
  const MoveNumber first = kNoMove - 20;
  dag.propagation.moveNumber = first;
  RandomState state = 3;
  for (MoveNumber last = kNoMove; last <= dag.propagation.moveNumber;) {
    last = dag.propagation.moveNumber;
    dag.flip(x[rand(state, 100)]);
    dag.flip(x[rand(state, 2)]);
    ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
    if (coin(state)) {
      dag.propagation.commitAll(dag);
    } else {
      dag.propagation.rollbackAll(dag);
    }
    ASSERT_TRUE(isWholeGraphInit(dag));
  }
  EXPECT_EQ(dag.propagation.moveNumber, kNoMove + 1) << "no move has the number of none";
  for (MoveNumber old = first; old != kNoMove; ++old) {
    dag.propagation.moveNumber = old;
    for (NodeId id = 0; id < dag.fixed.nbNodes; ++id) EXPECT_FALSE(dag.isDirty(id)) << old;
  }
}

TEST(Propagation, EvaluatesABrokenConstraintStageOnce) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(100);
  const NodeId sum = graph.add(NodeType::Sum, x);
  graph.constraint(graph.add(NodeType::Not, {x[0]}));
  graph.constraint(graph.add(NodeType::Geq, {sum, graph.constant(0)}));
  Dag& dag = graph.build();
  dag.propagation.activateAllConstraints();
  for (const NodeId id : x) dag.flip(id);
  EXPECT_FALSE(dag.propagation.evaluateConstraints(dag));
  EXPECT_FALSE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(dag.changes(sum).word, 100U) << "no operand is told twice";
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  dag.flip(x[1]);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag)) << "the next move starts anew";
  EXPECT_EQ(dag.changes(sum).word, 1U);
  EXPECT_EQ(dag.tentativeValue[sum], 1);
  dag.propagation.rollbackAll(dag);
}

class FailingCatchUp : public testing::TestWithParam<NodeType> {};

TEST_P(FailingCatchUp, LeavesThingsAsTheyWere) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(100);
  const NodeId near = graph.add(NodeType::Sum, x);
  const NodeId array = graph.add(NodeType::Array, {graph.constant(5), graph.constant(7)});
  std::vector<t_value> coefficients(100, 1);
  if (GetParam() == NodeType::ScalarMax) coefficients[1] = 2;
  const NodeId far = graph.add(GetParam(), x, coefficients);
  const NodeId element = graph.add(NodeType::At, {array, far});
  graph.minimise(near);
  graph.minimise(element);
  Dag& dag = graph.build();
  dag.setOptimizedLevel(1);
  commitValues(dag, {{x[0], 1}, {x[1], 1}});
  for (int attempt = 0; attempt < 3; ++attempt) {
    EXPECT_NE(explanationOf([&] { dag.propagation.catchUp(dag); }), "") << "there is no element 2";
    EXPECT_TRUE(isClean(dag));
    EXPECT_EQ(dag.nodeValue[x[0]], 1);
    EXPECT_EQ(dag.nodeValue[far], 0) << "still behind";
    EXPECT_EQ(dag.propagation.laggingNodes.size(), 2U);
  }
  commitValues(dag, {{x[1], 0}});
  dag.propagation.catchUp(dag);
  EXPECT_EQ(dag.nodeValue[far], 1);
  EXPECT_EQ(dag.nodeValue[element], 7);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

INSTANTIATE_TEST_SUITE_P(Propagation, FailingCatchUp, testing::Values(NodeType::ScalarSum, NodeType::ScalarMax));

TEST(Propagation, TellsNobodyOfAZeroThatChangesItsSign) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId zero = graph.add(NodeType::DoubleIf, {x, graph.constantDouble(-0.0), graph.constantDouble(0.0)});
  const NodeId above = graph.add(NodeType::DoubleAbs, {zero});
  graph.minimise(above);
  Dag& dag = graph.build();
  dag.flip(x);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_NE(dag.nodeValue[zero], dag.tentativeValue[zero]) << "other bits";
  EXPECT_FALSE(dag.isDirty(above)) << "but the same number";
  dag.propagation.rollbackAll(dag);
}

TEST(Propagation, TellsTheParentsOfAConstraintThatARecomputationMadeFalse) {
  GraphBuilder graph;
  const NodeId huge = graph.boolean();
  const NodeId small = graph.boolean();
  const NodeId free = graph.boolean();
  const NodeId lower = graph.boolean();
  const NodeId sum = graph.add(NodeType::DoubleScalarSum, {huge, small, lower, graph.constantDouble(1.0)},
                               {doubleToWord(1e16), doubleToWord(0.9), doubleToWord(-5000.0), doubleToWord(2e10)});
  // At the edge of the tolerance: the sum without an error of rounding is just above.
  const double edge = (2e10 - 0.45) * (1 - 1e-6) / (1 + 1e-6);
  const NodeId limit = graph.add(NodeType::DoubleLeq, {sum, graph.constantDouble(edge)});
  const NodeId count = graph.add(NodeType::Sum, {limit, free});
  graph.constraint(limit);
  graph.constraint(free);
  graph.maximise(count);
  Dag& dag = graph.build();
  dag.setOptimizedLevel(0);
  commitValues(dag, {{huge, 1}, {small, 1}});
  commitValues(dag, {{huge, 0}});
  commitValues(dag, {{small, 0}});
  commitValues(dag, {{free, 1}});
  ASSERT_EQ(dag.propagation.committedNbViolated, 0) << "the sum has lost a part of the small term";
  dag.setOptimizedLevel(1);
  dag.propagation.activateAllConstraints();
  ASSERT_EQ(dag.nodeValue[limit], 0);
  dag.flip(lower);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(dag.tentativeValue[limit], 1);
  EXPECT_EQ(dag.tentativeValue[count], 2);
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  commitValues(dag, {{lower, 1}});
  EXPECT_EQ(dag.nodeValue[limit], 1);
  EXPECT_EQ(dag.nodeValue[count], 2);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, TellsTheParentsOfAnActiveConstraintThatStaysTrueWithAnotherValue) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId count = graph.add(NodeType::Sum, {x, graph.constant(1)});
  const NodeId doubled = graph.add(NodeType::Sum, {count, count});
  graph.constraint(count);
  graph.maximise(doubled);
  Dag& dag = graph.build();
  dag.propagation.activateAllConstraints();
  dag.flip(x);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(dag.tentativeValue[count], 2);
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  dag.flip(x);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(dag.tentativeValue[doubled], 4);
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isClean(dag));
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, TellsLaterParentsOnlyInTheirStage) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId constraint = graph.add(NodeType::Or, {x, graph.constant(1)});
  const NodeId second = graph.add(NodeType::Not, {x});
  graph.constraint(constraint);
  graph.minimise(graph.constant(3));
  graph.minimise(second);
  Dag& dag = graph.build();
  dag.flip(x);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_FALSE(dag.isDirty(second));
  ASSERT_EQ(dag.propagation.currentDeferredNodes().size(), 1U);
  EXPECT_EQ(dag.propagation.currentDeferredNodes()[0], x);
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_FALSE(dag.isDirty(second));
  ASSERT_EQ(dag.propagation.currentDeferredNodes().size(), 1U);
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 2));
  EXPECT_EQ(dag.tentativeValue[second], 0);
  EXPECT_TRUE(dag.propagation.currentDeferredNodes().empty());
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isClean(dag));
}

TEST(Propagation, StopsAtANodeWhoseChangesCancel) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId sum = graph.add(NodeType::Sum, {x, y});
  const NodeId above = graph.add(NodeType::Abs, {sum});
  graph.minimise(above);
  Dag& dag = graph.build();
  commitValues(dag, {{x, 1}});
  dag.flip(x);
  dag.flip(y);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_TRUE(dag.isDirty(sum));
  EXPECT_FALSE(dag.isDirty(above));
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, EvaluatesNothingForAStageAlreadyDone) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId objective = graph.add(NodeType::Not, {x});
  graph.minimise(objective);
  Dag& dag = graph.build();
  dag.flip(x);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  dag.tentativeValue[objective] = 42;  // would be overwritten by an evaluation
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 0));
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(dag.tentativeValue[objective], 42);
  dag.propagation.rollbackAll(dag);
}

TEST(Propagation, QueuesAParentOnceForBothItsPositions) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId sum = graph.add(NodeType::Sum, {x, x});
  graph.minimise(sum);
  Dag& dag = graph.build();
  dag.flip(x);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(dag.propagation.queuedNodes(1).size(), 1U);
  EXPECT_EQ(dag.tentativeValue[sum], 2);  // both positions counted
  dag.propagation.rollbackAll(dag);
}

/// x feeds objective 0 through `first` and objective 1 through `second`; only objective 0 is optimised.
struct TwoLevels : testing::Test {
  GraphBuilder graph;
  NodeId x = graph.boolean();
  NodeId first = graph.add(NodeType::Not, {x});
  NodeId second = graph.add(NodeType::Sum, {x, x, x});
  Dag* dag = nullptr;

  void SetUp() override {
    graph.minimise(first);
    graph.minimise(second);
    dag = &graph.build();
    dag->setOptimizedLevel(1);
  }
};

TEST_F(TwoLevels, LeavesHigherLevelsStaleUntilCatchUp) {
  commitValues(*dag, {{x, 1}});
  EXPECT_EQ(dag->nodeValue[first], 0);
  EXPECT_EQ(dag->nodeValue[second], 0);
  dag->propagation.catchUp(*dag);
  EXPECT_EQ(dag->nodeValue[second], 3);
  EXPECT_EQ(dag->nodeValue[x], 1);
  EXPECT_TRUE(isClean(*dag));
  EXPECT_TRUE(isWholeGraphInit(*dag));
  dag->nodeValue[second] = dag->tentativeValue[second] = 9;
  dag->propagation.catchUp(*dag);  // nothing lags: nothing is done
  EXPECT_EQ(dag->nodeValue[second], 9);
}

TEST_F(TwoLevels, ForgetsANodeThatReturnsToTheValueLastSeen) {
  commitValues(*dag, {{x, 1}});
  EXPECT_TRUE(dag->propagation.laggingNodes.contains(x));
  EXPECT_EQ(dag->propagation.laggingValues[x], 0);
  commitValues(*dag, {{x, 0}});
  EXPECT_TRUE(dag->propagation.laggingNodes.empty());
}

TEST(Propagation, EntersNoNodeThatDidNotChangeAmongTheLagging) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId sum = graph.add(NodeType::Sum, {x, y});
  graph.minimise(graph.add(NodeType::Abs, {sum}));
  graph.minimise(graph.add(NodeType::Sum, {sum, sum}));
  Dag& dag = graph.build();
  dag.setOptimizedLevel(1);
  commitValues(dag, {{x, 1}});
  dag.propagation.catchUp(dag);
  commitValues(dag, {{x, 0}, {y, 1}});
  EXPECT_FALSE(dag.propagation.laggingNodes.contains(sum));
}

TEST(Propagation, BringsElementsOfAnArrayToTheLevelsThatLag) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId index = graph.boolean();
  const NodeId array = graph.add(NodeType::Array, {x, index});
  const NodeId first = graph.add(NodeType::At, {array, index});
  const NodeId second = graph.add(NodeType::At, {array, graph.constant(0)});
  graph.minimise(first);
  graph.minimise(second);
  Dag& dag = graph.build();
  dag.setOptimizedLevel(1);
  commitValues(dag, {{x, 1}});
  commitValues(dag, {{index, 1}});
  EXPECT_EQ(dag.nodeValue[second], 0);
  dag.propagation.catchUp(dag);
  EXPECT_EQ(dag.nodeValue[second], 1);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, CountsInactiveConstraintsThatAreFalse) {
  GraphBuilder graph;
  const auto x = graph.booleans(3);
  const NodeId sum = graph.add(NodeType::Sum, x);
  const NodeId atLeast = graph.add(NodeType::Geq, {sum, graph.constant(2)});
  graph.constraint(atLeast);
  graph.constraint(x[2]);
  graph.minimise(sum);
  Dag& dag = graph.build();
  const Propagation& propagation = dag.propagation;
  EXPECT_EQ(propagation.committedNbViolated, 2);
  EXPECT_EQ(propagation.committedViolation, 3);
  dag.flip(x[2]);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(propagation.tentativeNbViolated, 1);
  EXPECT_EQ(propagation.tentativeViolation, 1);
  dag.propagation.commitAll(dag);
  EXPECT_EQ(propagation.committedNbViolated, 1);
  EXPECT_FALSE(propagation.violatedConstraints.contains(1));
  EXPECT_TRUE(propagation.violatedConstraints.contains(0));
}

TEST(Propagation, RefusesToActivateWhileSomethingIsViolated) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.constraint(x);
  graph.minimise(graph.add(NodeType::Not, {x}));
  Dag& dag = graph.build();
  EXPECT_EQ(failureOf([&] { dag.propagation.activateAllConstraints(); }),
            refusal("Propagation::activateAllConstraints", "One or more constraints are violated"));
  EXPECT_TRUE(dag.propagation.activeConstraints.empty());
  EXPECT_EQ(failureOf([&] { dag.propagation.activateConstraint(dag, x); }),
            refusal("Propagation::activateConstraint", "Cannot activate a violated constraint with nodeId #0"));
}

TEST(Propagation, RefusesToActivateWhatIsNoConstraintBeforeReadingItsValue) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.minimise(x);
  Dag& dag = graph.build();
  EXPECT_EQ(failureOf([&] { dag.propagation.activateConstraint(dag, x); }),
            refusal("Propagation::activateConstraint", "The given node is not a constraint"));
}

TEST(Propagation, StartsWithEverythingActiveWhenThereIsNoConstraint) {
  GraphBuilder graph;
  graph.minimise(graph.boolean());
  const Dag& dag = graph.build();
  EXPECT_TRUE(dag.propagation.allConstraintsActive());
  EXPECT_EQ(dag.propagation.activeConstraints.capacity, 0U);
}

TEST(Propagation, ActivatesTheSatisfiedConstraintsAlone) {
  GraphBuilder graph;
  const auto x = graph.booleans(4);
  for (const NodeId id : x) graph.constraint(id);
  graph.minimise(graph.constant(0));
  Dag& dag = graph.build();
  commitValues(dag, {{x[1], 1}, {x[3], 1}});
  dag.propagation.activateSatisfiedConstraints(dag);
  EXPECT_EQ(dag.propagation.activeConstraints.count, 2U);
  EXPECT_TRUE(dag.propagation.activeConstraints.contains(1));
  EXPECT_TRUE(dag.propagation.activeConstraints.contains(3));
  dag.propagation.check(dag);
}

/// Two copies of one graph follow the same rises, each of which may repair some "or"s over random decisions; one walks
/// all inactive constraints behind each commit, the other what the commit repaired.
TEST(Propagation, ActivatesWhatACommitRepairedInTheOrderOfAWalk) {
  GraphBuilder graph;
  RandomState random = 9;
  const auto x = graph.booleans(30);
  for (int c = 0; c < 60; ++c) {
    graph.constraint(graph.add(NodeType::Or, {x[rand(random, 15)], x[15 + rand(random, 15)]}));
  }
  for (const NodeId id : {x[3], x[20]}) graph.constraint(id);
  graph.minimise(graph.constant(0));
  Dag& walked = graph.build();
  Dag listed(graph.fixed);
  listed.init();
  walked.propagation.activateSatisfiedConstraints(walked);
  listed.propagation.activateSatisfiedConstraints(listed);
  std::uint32_t nbRepairs = 0;
  for (int step = 0; step < 40; ++step) {
    const std::uint32_t before = listed.propagation.activeConstraints.count;
    for (const NodeId id : {x[rand(random, 30)], x[rand(random, 30)]}) {
      walked.propagation.setTentativeValue(walked, id, 1);
      listed.propagation.setTentativeValue(listed, id, 1);
    }
    walked.propagation.commitAll(walked);
    listed.propagation.commitAll(listed);
    walked.propagation.activateSatisfiedConstraints(walked);
    listed.propagation.activateRepairedConstraints(listed);
    ASSERT_EQ(listed.propagation.activeConstraints.count, walked.propagation.activeConstraints.count);
    ASSERT_EQ(listed.propagation.activeConstraints.items, walked.propagation.activeConstraints.items);
    nbRepairs += listed.propagation.activeConstraints.count > before + 1 ? 1 : 0;
  }
  EXPECT_GT(nbRepairs, 5U) << "steps that repaired several at once";
  EXPECT_TRUE(listed.propagation.allConstraintsActive());
}

TEST(Propagation, CommitsAndRollsBackADecisionThatIsAConstraint) {
  GraphBuilder graph;
  const auto x = graph.booleans(2);
  graph.constraint(x[1]);
  const NodeId sum = graph.add(NodeType::BooleanSum, x);
  graph.minimise(sum);
  Dag& dag = graph.build();
  dag.flip(x[0]);
  dag.flip(x[1]);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(dag.propagation.tentativeNbViolated, 0);
  EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(dag.tentativeValue[sum], 2);
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  EXPECT_EQ(dag.propagation.committedNbViolated, 1);
  commitValues(dag, {{x[1], 1}});
  EXPECT_TRUE(isClean(dag));
  EXPECT_EQ(dag.propagation.committedNbViolated, 0);
  dag.propagation.activateAllConstraints();
  dag.flip(x[1]);
  EXPECT_FALSE(dag.propagation.evaluateConstraints(dag));
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, FindsWrongCountersInItsSelfTest) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.constraint(x);
  graph.minimise(graph.add(NodeType::Not, {x}));
  Dag& dag = graph.build();
  dag.propagation.committedNbViolated = 0;
  EXPECT_EQ(failureOf([&] { dag.propagation.check(dag); }),
            refusal("Propagation::check", "Check failed : number of violated constraints incorrect"));
  dag.propagation.activateAllConstraints();
  EXPECT_EQ(failureOf([&] { dag.propagation.check(dag); }),
            refusal("Propagation::check", "Check failed: one or more active constraints are violated"));
}

TEST(Propagation, StartsAnewBehindAnExceptionOfStage0) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(100);
  const NodeId array = graph.add(NodeType::Array, {graph.constant(5), graph.constant(7)});
  const NodeId sum = graph.add(NodeType::Sum, x);
  const NodeId element = graph.add(NodeType::At, {array, graph.add(NodeType::Sum, {x[0], x[1], x[2]})});
  graph.constraint(graph.add(NodeType::Geq, {element, graph.constant(5)}));
  graph.constraint(graph.add(NodeType::Geq, {sum, graph.constant(0)}));
  Dag& dag = graph.build();
  dag.propagation.activateAllConstraints();
  for (const OperandPos p : {0U, 1U}) dag.flip(x[p]);
  EXPECT_TRUE(failureOf([&] { (void)dag.propagation.evaluateConstraints(dag); }).raised());
  EXPECT_FALSE(dag.propagation.evaluateConstraints(dag)) << "and does not tell operands twice";
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(isClean(dag));
  EXPECT_TRUE(isWholeGraphInit(dag));
  dag.flip(x[0]);
  EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(dag.tentativeValue[element], 7);
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, TellsDeferredNodesOfEveryDomainInALaterStage) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId array = graph.add(NodeType::Array, {x, y});
  const NodeId real = graph.add(NodeType::DoubleSum, {x, graph.constantDouble(0.5)});
  const NodeId near = graph.add(NodeType::At, {array, graph.constant(0)});
  const NodeId nearReal = graph.add(NodeType::DoubleGt, {real, graph.constantDouble(-1)});
  const NodeId far = graph.add(NodeType::At, {array, graph.constant(0)});
  const NodeId farReal = graph.add(NodeType::DoubleSum, {real, graph.constantDouble(1)});
  graph.constraint(graph.add(NodeType::Geq, {near, graph.constant(0)}));
  graph.constraint(nearReal);
  graph.minimise(graph.constant(0));
  graph.minimise(far);
  graph.minimise(farReal);
  Dag& dag = graph.build();
  dag.flip(x);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(dag.tentativeValue[near], 1);
  EXPECT_FALSE(dag.isDirty(far));
  ASSERT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_FALSE(dag.isDirty(far));
  EXPECT_FALSE(dag.isDirty(farReal));
  ASSERT_TRUE(dag.propagation.evaluateUpTo(dag, 2));
  EXPECT_EQ(dag.tentativeValue[far], 1);
  EXPECT_FALSE(dag.isDirty(farReal));
  ASSERT_TRUE(dag.propagation.evaluateUpTo(dag, 3));
  EXPECT_EQ(dag.tentativeDouble(farReal), 2.5);
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, KeepsFullListsOfChangesApart) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(70);
  const NodeId sum = graph.add(NodeType::Sum, x);
  const NodeId odd = graph.add(NodeType::Xor, x);
  const NodeId product = graph.add(NodeType::Product, x);
  graph.minimise(sum);
  graph.minimise(odd);
  graph.maximise(product);
  Dag& dag = graph.build();
  for (int round = 0; round < 3; ++round) {
    for (const NodeId id : x) dag.flip(id);
    ASSERT_TRUE(dag.propagation.evaluateConstraints(dag) && dag.propagation.evaluateUpTo(dag, 3));
    EXPECT_EQ(dag.tentativeValue[sum], 70);
    EXPECT_EQ(dag.tentativeValue[product], 1);
    dag.propagation.rollbackAll(dag);
    EXPECT_TRUE(isClean(dag));
  }
  for (const NodeId id : x) dag.flip(id);
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(Propagation, QueuesADecisionThatIsAConstraintOnce) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.constraint(x);
  Dag& dag = graph.build();
  dag.propagation.setTentativeValue(dag, x, 1);
  dag.propagation.setTentativeValue(dag, x, 1);
  EXPECT_EQ(dag.propagation.queuedConstraints(0).size(), 1U);
  EXPECT_EQ(dag.propagation.touchedDecisions.size(), 1U);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
  EXPECT_EQ(dag.propagation.tentativeNbViolated, 0);
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isClean(dag));
  EXPECT_EQ(dag.propagation.committedNbViolated, 0);
}

}  // namespace
}  // namespace quvex
