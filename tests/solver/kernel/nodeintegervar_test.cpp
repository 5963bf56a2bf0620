#include "solver/kernel/nodeintegervar.h"

#include <gtest/gtest.h>

#include "api/qvexception.h"
#include "support/capturedoutput.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

TEST(NodeIntegerVar, TakesAnyInteger) {
  GraphBuilder graph;
  const NodeId x = graph.integer();
  Dag& dag = graph.build();
  EXPECT_EQ(graph.fixed.minBounds[x], kLowestInt);
  EXPECT_EQ(graph.fixed.maxBounds[x], kHighestInt);
  commitValues(dag, {{x, kLowestInt}});
  EXPECT_TRUE(dag.nodes[x]->isInit(dag, x));
}

TEST(NodeIntegerVar, RefusesEveryPick) {
  GraphBuilder graph;
  const NodeId x = graph.integer();
  const NodeId sum = graph.add(NodeType::Sum, {x, graph.integer()});
  Dag& dag = graph.build();
  RandomState state = 1;
  NodeId decision = kNone;
  int delta = 7;
  for (const NodeId id : {x, sum}) {
    EXPECT_FALSE(dag.nodes[id]->pickDecrease(dag, state, decision, delta, id));
    EXPECT_FALSE(dag.nodes[id]->pickIncrease(dag, state, decision, delta, id));
    EXPECT_FALSE(dag.nodes[id]->pickChange(dag, state, decision, delta, id));
  }
  EXPECT_EQ(decision, kNone);
  EXPECT_EQ(delta, 7);
}

TEST(NodeIntegerVar, DumpsItselfAndFailsItsCheckUnderItsOwnName) {
  GraphBuilder graph;
  graph.boolean();
  const NodeId x = graph.integer();
  Dag& dag = graph.build();
  dag.nodes[x]->check(dag, x);

  dag.nodeValue[x] = 4;
  CapturedOutput output;
  try {
    dag.nodes[x]->check(dag, x);
    FAIL() << "the cells differ";
  } catch (const KernelException& failure) {
    EXPECT_EQ(failure.getMessage(), "ERROR [function quvex::NodeIntegerVar::check]: Error in check of operator.");
  }
  EXPECT_EQ(output.text(), "PosInNodes= 1\nOperator= integer\nisInit=0\nvalue=4\nt_value=0\n");
}

}  // namespace
}  // namespace quvex
