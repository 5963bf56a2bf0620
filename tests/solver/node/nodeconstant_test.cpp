#include "solver/node/nodeconstant.h"

#include <gtest/gtest.h>

#include "support/graphbuilder.h"

namespace quvex {
namespace {

/// Refuses all picks, and neither eval, commit nor rollback touches a cell.
void expectUnchanging(Dag& dag, NodeId id) {
  Node& node = *dag.nodes[id];
  RandomState state = 3;
  NodeId decision = kNone;
  int delta = 7;
  EXPECT_FALSE(node.pickDecrease(dag, state, decision, delta, id));
  EXPECT_FALSE(node.pickIncrease(dag, state, decision, delta, id));
  EXPECT_FALSE(node.pickChange(dag, state, decision, delta, id));
  EXPECT_EQ(state, 3U);

  const t_value value = dag.nodeValue[id];
  dag.tentativeValue[id] = 77;
  EXPECT_FALSE(node.hasChanged(dag, id));
  node.eval(dag, dag.propagation, id);
  node.commit(dag, id);
  EXPECT_EQ(dag.nodeValue[id], value);
  node.rollback(dag, id);
  EXPECT_EQ(dag.tentativeValue[id], 77);
  node.init(dag, id);
}

TEST(NodeConstant, HoldsItsValueInCellsAndBounds) {
  GraphBuilder graph;
  const NodeId c = graph.constant(-5);
  Dag& dag = graph.build();
  EXPECT_EQ(dag.nodeValue[c], -5);
  EXPECT_EQ(dag.tentativeValue[c], -5);
  EXPECT_EQ(graph.fixed.minBounds[c], -5);
  EXPECT_EQ(graph.fixed.maxBounds[c], -5);
  EXPECT_TRUE(dag.nodes[c]->isInit(dag, c));
  expectUnchanging(dag, c);
  dag.tentativeValue[c] = -4;
  EXPECT_FALSE(dag.nodes[c]->isInit(dag, c));
}

TEST(NodeConstant, IsBooleanExactlyForZeroAndOne) {
  GraphBuilder graph;
  const NodeId zero = graph.constant(0);
  const NodeId one = graph.constant(1);
  const NodeId two = graph.constant(2);
  graph.build();
  EXPECT_EQ(graph.fixed.nodeDomains[zero], Domain::Boolean);
  EXPECT_EQ(graph.fixed.nodeDomains[one], Domain::Boolean);
  EXPECT_EQ(graph.fixed.nodeDomains[two], Domain::Integer);
}

TEST(NodeConstant, CanBeAConstraintThatIsNeverTrue) {
  GraphBuilder graph;
  const NodeId zero = graph.constant(0);
  const NodeId one = graph.constant(1);
  graph.constraint(zero);
  graph.constraint(one);
  Dag& dag = graph.build();
  EXPECT_EQ(dag.nodes[zero]->violation(dag, zero), 1);
  EXPECT_EQ(dag.nodes[one]->violation(dag, one), 0);
  EXPECT_EQ(dag.propagation.committedNbViolated, 1);
}

TEST(NodeDoubleConstant, HoldsItsValueWithinTolerance) {
  GraphBuilder graph;
  const NodeId c = graph.constantDouble(2.5);
  Dag& dag = graph.build();
  EXPECT_EQ(dag.committedDouble(c), 2.5);
  EXPECT_EQ(graph.fixed.minDouble(c), 2.5);
  EXPECT_EQ(graph.fixed.maxDouble(c), 2.5);
  expectUnchanging(dag, c);

  dag.tentativeValue[c] = doubleToWord(2.5 + 1e-9);
  EXPECT_TRUE(dag.nodes[c]->isInit(dag, c));
  dag.tentativeValue[c] = doubleToWord(2.6);
  EXPECT_FALSE(dag.nodes[c]->isInit(dag, c));
}

TEST(NodeConstArray, KeepsItsElementsInThePoolAndItsCellsAtZero) {
  GraphBuilder graph;
  const NodeId array = graph.add(NodeType::ConstArray, {}, {4, 5, 6});
  Dag& dag = graph.build();
  EXPECT_EQ(graph.fixed.constantCounts[array], 3U);
  EXPECT_EQ(graph.fixed.constant(array, 2), 6);
  EXPECT_EQ(dag.nodeValue[array], 0);
  EXPECT_EQ(graph.fixed.minBounds[array], 0);
  EXPECT_EQ(graph.fixed.maxBounds[array], 0);
  expectUnchanging(dag, array);
  EXPECT_TRUE(dag.nodes[array]->isInit(dag, array));
}

}  // namespace
}  // namespace quvex
