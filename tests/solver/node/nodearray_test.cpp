#include "solver/node/nodearray.h"

#include <gtest/gtest.h>

#include "support/graphbuilder.h"

namespace quvex {
namespace {

TEST(NodeArrayTemplate, HasChangedAsSoonAsOneElementHas) {
  GraphBuilder graph;
  const std::vector<NodeId> x = graph.booleans(3);
  const NodeId array = graph.add(NodeType::Array, x);
  Dag& dag = graph.build();
  Node& node = *dag.nodes[array];
  dag.records[array].queuedIn = dag.propagation.moveNumber;
  EXPECT_FALSE(node.hasChanged(dag, array));
  node.notifyChildChanged(dag, 1, array);
  EXPECT_TRUE(node.hasChanged(dag, array));
  node.commit(dag, array);
  EXPECT_FALSE(node.hasChanged(dag, array));
  node.notifyChildChanged(dag, 2, array);
  node.rollback(dag, array);
  EXPECT_FALSE(node.hasChanged(dag, array));
  node.notifyChildChanged(dag, 0, array);
  node.init(dag, array);
  EXPECT_FALSE(node.hasChanged(dag, array));
}

TEST(NodeArrayTemplate, HasNeitherValueNorBoundsNorPicks) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId array = graph.add(NodeType::Array, {x, graph.constant(7)});
  const NodeId at = graph.add(NodeType::At, {array, x});
  graph.minimise(at);
  Dag& dag = graph.build();
  EXPECT_EQ(graph.fixed.nodeDomains[array], Domain::Array);
  commitValues(dag, {{x, 1}});
  EXPECT_EQ(dag.nodeValue[array], 0);
  EXPECT_EQ(dag.tentativeValue[array], 0);
  EXPECT_EQ(graph.fixed.minBounds[array], 0);
  EXPECT_EQ(graph.fixed.maxBounds[array], 0);
  EXPECT_TRUE(dag.nodes[array]->isInit(dag, array));

  RandomState state = 1;
  NodeId decision = kNone;
  int delta = 7;
  EXPECT_FALSE(dag.nodes[array]->pickDecrease(dag, state, decision, delta, array));
  EXPECT_FALSE(dag.nodes[array]->pickIncrease(dag, state, decision, delta, array));
  EXPECT_FALSE(dag.nodes[array]->pickChange(dag, state, decision, delta, array));
  EXPECT_EQ(state, 1U);
}

TEST(NodeArrayTemplate, NamesItsContainer) {
  EXPECT_EQ(NodeArrayTemplate<SubsetBits>::kName, "quvex::NodeArrayTemplate<quvex::SubsetBits>");
}

TEST(NodeArrayTemplate, WorksOverEveryContainer) {
  for (const std::uint32_t n : {8U, 9U, 16U, 17U, 32U, 33U, 64U, 65U, 1024U, 1025U, 65534U, 65535U}) {
    GraphBuilder graph;
    std::vector<NodeId> elements = graph.booleans(3);
    elements.resize(n, graph.constant(0));
    const NodeId first = elements[0];
    elements[n - 1] = first;
    const NodeId array = graph.add(NodeType::Array, elements);
    const NodeId at = graph.add(NodeType::At, {array, graph.constant(n - 1)});
    graph.minimise(at);
    Dag& dag = graph.build();
    commitValues(dag, {{first, 1}});
    EXPECT_EQ(dag.nodeValue[at], 1) << n;
    EXPECT_FALSE(dag.nodes[array]->hasChanged(dag, array)) << n;
    dag.flip(first);
    EXPECT_TRUE(dag.propagation.evaluateConstraints(dag));
    EXPECT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
    EXPECT_EQ(dag.tentativeValue[at], 0) << n;
    EXPECT_TRUE(dag.nodes[array]->hasChanged(dag, array)) << n;
    dag.propagation.rollbackAll(dag);
    EXPECT_FALSE(dag.nodes[array]->hasChanged(dag, array)) << n;
    EXPECT_TRUE(isWholeGraphInit(dag)) << n;
  }
}

}  // namespace
}  // namespace quvex
