#include "solver/node/nodebooleanvar.h"

#include <gtest/gtest.h>

#include "support/graphbuilder.h"

namespace quvex {
namespace {

class NodeBooleanVarTest : public ::testing::Test {
 protected:
  GraphBuilder graph;
  NodeId x = graph.boolean();
  Dag& dag = graph.build();
  RandomState state = 5;
  NodeId decision = kNone;
  int delta = 7;

  Node& node() { return *dag.nodes[x]; }
  bool decrease() { return node().pickDecrease(dag, state, decision, delta, x); }
  bool increase() { return node().pickIncrease(dag, state, decision, delta, x); }
  bool change() { return node().pickChange(dag, state, decision, delta, x); }
};

TEST_F(NodeBooleanVarTest, RangesOverZeroAndOne) {
  EXPECT_EQ(graph.fixed.minBounds[x], 0);
  EXPECT_EQ(graph.fixed.maxBounds[x], 1);
}

TEST_F(NodeBooleanVarTest, AnswersTowardTheOtherValue) {
  EXPECT_FALSE(decrease());
  EXPECT_TRUE(increase());
  EXPECT_EQ(decision, x);
  EXPECT_EQ(delta, 1);
  EXPECT_TRUE(change());
  EXPECT_EQ(delta, 1);

  commitValues(dag, {{x, 1}});
  EXPECT_FALSE(increase());
  EXPECT_TRUE(decrease());
  EXPECT_EQ(delta, -1);
  delta = 7;
  EXPECT_TRUE(change());
  EXPECT_EQ(delta, -1);
  EXPECT_EQ(state, 5U) << "a decision draws nothing";
}

TEST_F(NodeBooleanVarTest, RefusesOnceTheCurrentMoveHasSetIt) {
  dag.flip(x);
  EXPECT_FALSE(change());
  EXPECT_FALSE(increase());
  EXPECT_FALSE(decrease());
  EXPECT_EQ(decision, kNone);
  EXPECT_EQ(delta, 7);
  dag.propagation.rollbackAll(dag);
  EXPECT_TRUE(change());
}

TEST_F(NodeBooleanVarTest, PicksReadTheCommittedValue) {
  dag.tentativeValue[x] = 1;
  EXPECT_FALSE(decrease());
  EXPECT_FALSE(increase()) << "it counts as set";
}

TEST_F(NodeBooleanVarTest, StartsFromWhateverItsCellHolds) {
  dag.nodeValue[x] = 1;
  EXPECT_FALSE(node().isInit(dag, x));
  node().init(dag, x);
  EXPECT_EQ(dag.tentativeValue[x], 1);
  EXPECT_TRUE(node().isInit(dag, x));
  dag.nodeValue[x] = dag.tentativeValue[x] = 2;
  EXPECT_FALSE(node().isInit(dag, x)) << "out of bounds";
}

TEST_F(NodeBooleanVarTest, IsViolatedByOneAsAConstraint) {
  EXPECT_EQ(node().violation(dag, x), 1);
  dag.flip(x);
  EXPECT_EQ(node().violationDelta(dag, x), -1);
  dag.propagation.commitAll(dag);
  EXPECT_EQ(node().violation(dag, x), 0);
}

}  // namespace
}  // namespace quvex
