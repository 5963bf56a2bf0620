#include "solver/node/plainnode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/graphbuilder.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

struct Interval {
  double min;
  double max;
};

/// Ends that are multiples of `step`, so that ties are ties and differences are clear.
Interval randomInterval(RandomState& state, double step) {
  const double a = (static_cast<double>(rand(state, 17)) - 8) * step;
  const double b = (static_cast<double>(rand(state, 17)) - 8) * step;
  return {std::min(a, b), std::max(a, b)};
}
double randomValue(RandomState& state, const Interval& interval, double step) {
  const auto n = static_cast<std::uint32_t>(std::lround((interval.max - interval.min) / step)) + 1;
  return interval.min + rand(state, n) * step;
}

/// Whether an operator has a value on these operands, and bounds at all on these intervals.
bool isDefined(NodeType type, const std::vector<double>& values, const std::vector<Interval>& intervals) {
  switch (type) {
    case NodeType::Divide:
    case NodeType::Modulo:
    case NodeType::DoubleDivide:
      return values[1] != 0 && (intervals[1].min != 0 || intervals[1].max != 0);
    case NodeType::DoubleSqrt:
    case NodeType::DoubleLog:
      return values[0] >= 0;
    case NodeType::DoublePow:
      return values[0] >= 0 || std::trunc(values[1]) == values[1];
    default:
      return true;
  }
}

/// Values at random inside of random intervals lie inside of the operator's bounds.
void expectSoundBounds(NodeType type, const std::string& operandKinds) {
  SCOPED_TRACE(NodeTypeUtils::toString(type) + " over " + operandKinds);
  NodeStage stage(type, operandKinds);
  RandomState state = 17;
  for (int round = 0; round < 2000; ++round) {
    std::vector<Interval> intervals;
    std::vector<double> values;
    for (OperandPos p = 0; p < operandKinds.size(); ++p) {
      const double step = operandKinds[p] == 'd' ? 0.25 : 1;
      intervals.push_back(operandKinds[p] == 'b' ? Interval{static_cast<double>(rand(state, 2)), 1}
                                                 : randomInterval(state, step));
      values.push_back(randomValue(state, intervals[p], step));
    }
    if (!isDefined(type, values, intervals)) continue;
    for (OperandPos p = 0; p < values.size(); ++p) stage.set(p, values[p], intervals[p].min, intervals[p].max);
    stage.refresh();
    ASSERT_TRUE(stage.node().isInit(*stage.dag, stage.id))
        << "round " << round << ", value " << stage.dag->committedDouble(stage.id) << " in ["
        << stage.fixed.minDouble(stage.id) << ", " << stage.fixed.maxDouble(stage.id) << "]";
    stage.node().eval(*stage.dag, stage.dag->propagation, stage.id);
    ASSERT_FALSE(stage.node().hasChanged(*stage.dag, stage.id)) << "eval and computeValue agree";
  }
}

TEST(PlainNode, BoundsHoldEveryValue) {
  for (const NodeType type : {NodeType::Distance, NodeType::Divide, NodeType::Modulo, NodeType::Eq, NodeType::Neq,
                              NodeType::Geq, NodeType::Gt, NodeType::Leq, NodeType::Lt}) {
    expectSoundBounds(type, "ii");
    expectSoundBounds(type, "bi");
  }
  for (const NodeType type :
       {NodeType::DoubleDistance, NodeType::DoubleDivide, NodeType::DoubleEq, NodeType::DoubleNeq, NodeType::DoubleGeq,
        NodeType::DoubleGt, NodeType::DoubleLeq, NodeType::DoubleLt, NodeType::DoublePow}) {
    expectSoundBounds(type, "dd");
    expectSoundBounds(type, "di");
    expectSoundBounds(type, "id");
  }
  for (const NodeType type : {NodeType::DoubleCast, NodeType::DoubleAbs, NodeType::DoubleCeil, NodeType::DoubleFloor,
                              NodeType::DoubleRound, NodeType::DoubleSqrt, NodeType::DoubleLog, NodeType::DoubleExp,
                              NodeType::DoubleCos, NodeType::DoubleSin, NodeType::DoubleTan}) {
    expectSoundBounds(type, "d");
  }
  for (const NodeType type : {NodeType::DoubleCast, NodeType::DoubleSqrt, NodeType::DoubleTan}) {
    expectSoundBounds(type, "i");
  }
  expectSoundBounds(NodeType::Abs, "i");
  expectSoundBounds(NodeType::Not, "b");
  expectSoundBounds(NodeType::If, "bii");
  expectSoundBounds(NodeType::DoubleIf, "bdi");
}

/// A graph over eight booleans in which every operator of fixed arity occurs, on operands that it takes.
struct MixedGraph {
  GraphBuilder graph;
  std::vector<NodeId> x = graph.booleans(8);

  /// One of two integers, or doubles, by a decision.
  NodeId integer(std::size_t i, std::int64_t off, std::int64_t on) {
    return graph.add(NodeType::If, {x[i], graph.constant(on), graph.constant(off)});
  }
  NodeId real(std::size_t i, double off, double on) {
    return graph.add(NodeType::DoubleIf, {x[i], graph.constantDouble(on), graph.constantDouble(off)});
  }

  MixedGraph() {
    using enum NodeType;
    const NodeId a = integer(0, -3, 4);
    const NodeId b = integer(1, 2, 5);
    const NodeId c = real(2, 0.5, 2.25);
    const NodeId d = real(3, 1.5, 2.25);
    std::vector<NodeId> reals;
    for (const NodeType type : {DoubleDistance, DoubleDivide, DoublePow}) reals.push_back(graph.add(type, {c, d}));
    for (const NodeType type : {DoubleAbs, DoubleSqrt, DoubleLog, DoubleExp, DoubleCos, DoubleSin, DoubleTan}) {
      reals.push_back(graph.add(type, {d}));
    }
    reals.push_back(graph.add(DoubleCast, {a}));
    std::vector<NodeId> integers = {graph.add(Abs, {a}), graph.add(Not, {x[4]})};
    for (const NodeType type : {Distance, Divide, Modulo}) integers.push_back(graph.add(type, {a, b}));
    for (const NodeType type : {DoubleCeil, DoubleFloor, DoubleRound}) integers.push_back(graph.add(type, {c}));
    const NodeId realArray = graph.add(Array, reals);
    const NodeId integerArray = graph.add(Array, integers);
    const NodeId index = integer(5, 1, 7);
    reals.push_back(graph.add(DoubleAt, {realArray, index}));
    reals.push_back(graph.add(DoubleAt, {integerArray, index}));
    integers.push_back(graph.add(At, {integerArray, index}));
    integers.push_back(graph.add(At, {graph.add(ConstArray, {}, {3, 1, 4, 1, 5, 9, 2, 6}), index}));

    for (std::size_t i = 0; i < integers.size(); ++i) {
      const NodeType types[] = {Eq, Neq, Geq, Gt, Leq, Lt};
      graph.constraint(graph.add(types[i % 6], {integers[i], integer(6, 0, 3)}));
    }
    for (std::size_t i = 0; i < reals.size(); ++i) {
      const NodeType types[] = {DoubleEq, DoubleNeq, DoubleGeq, DoubleGt, DoubleLeq, DoubleLt};
      graph.constraint(graph.add(types[i % 6], {reals[i], real(7, 0, 2.25)}));
    }
    graph.minimise(reals.back());
    graph.maximise(integers.back());
    graph.build();
  }
};

TEST(PlainNode, RandomMovesKeepEveryNodeConsistent) {
  MixedGraph mixed;
  Dag& dag = *mixed.graph.dag;
  RandomState state = 4;
  for (int move = 0; move < 2000; ++move) {
    const auto before = dag.nodeValue;
    for (const NodeId x : mixed.x) {
      if (rand(state, 3) == 0) dag.flip(x);
    }
    ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
    const std::uint32_t stage = rand(state, 3);
    ASSERT_TRUE(stage == 0 || dag.propagation.evaluateUpTo(dag, stage));
    if (coin(state)) {
      dag.propagation.commitAll(dag);
    } else {
      dag.propagation.rollbackAll(dag);
      ASSERT_EQ(dag.nodeValue, before);
    }
    ASSERT_EQ(dag.nodeValue, dag.tentativeValue);
    ASSERT_TRUE(isWholeGraphInit(dag)) << "move " << move;
    std::int64_t nbViolated = 0;
    for (const NodeId id : mixed.graph.fixed.constraints) nbViolated += 1 - dag.nodeValue[id];
    ASSERT_EQ(dag.propagation.committedNbViolated, nbViolated);
  }
}

TEST(PlainNode, EveryPickAnswersWithAStepThatADecisionCanTake) {
  MixedGraph mixed;
  Dag& dag = *mixed.graph.dag;
  RandomState state = 9;
  int nbAnswers = 0;
  for (int move = 0; move < 200; ++move) {
    for (NodeId id = 0; id < mixed.graph.fixed.nbNodes; ++id) {
      for (const auto rule : {&Node::pickDecrease, &Node::pickIncrease, &Node::pickChange}) {
        NodeId decision = kNone;
        int delta = 7;
        if (!(dag.nodes[id]->*rule)(dag, state, decision, delta, id)) {
          ASSERT_EQ(decision, kNone);
          ASSERT_EQ(delta, 7);
          continue;
        }
        ++nbAnswers;
        ASSERT_EQ(mixed.graph.fixed.nodeTypes[decision], NodeType::Boolean);
        ASSERT_EQ(delta, dag.nodeValue[decision] == 0 ? 1 : -1);
      }
    }
    dag.flip(mixed.x[rand(state, 8)]);
    dag.propagation.commitAll(dag);
  }
  EXPECT_GT(nbAnswers, 1000);
}

}  // namespace
}  // namespace quvex
