#include "solver/node/nodexor.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

TEST(NodeXor, IsTheParityOfItsOperands) {
  AggregateStage parity(NodeType::Xor, "bbb");
  EXPECT_EQ(parity.set(0, 1).integer(), 1);
  EXPECT_EQ(parity.set(1, 1).integer(), 0);
  EXPECT_EQ(parity.move(2, 1).evalInteger(), 1);
  EXPECT_EQ(parity.move(0, 0).evalInteger(), 0);
  parity.commit();
  EXPECT_TRUE(parity.isInit());
}

TEST(NodeXor, TwoFlipsKeepTheValueButAreFolded) {
  GraphBuilder graph;
  const NodeId a = graph.boolean();
  const NodeId b = graph.boolean();
  const NodeId parity = graph.add(NodeType::Xor, {a, b});
  const NodeId above = graph.add(NodeType::Not, {parity});
  graph.minimise(above);
  Dag& dag = graph.build();
  commitValues(dag, {{a, 1}});

  dag.flip(a);
  dag.flip(b);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
  ASSERT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_FALSE(dag.nodes[parity]->hasChanged(dag, parity));
  EXPECT_FALSE(dag.isDirty(above));
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
  EXPECT_EQ(dag.nodeValue[parity], 1);

  commitValues(dag, {{b, 0}});
  EXPECT_EQ(dag.nodeValue[parity], 0);
}

TEST(NodeXor, PicksFlipAnyOperandUnlessTheValueIsThere) {
  AggregateStage parity(NodeType::Xor, "bbb");
  parity.refresh();
  EXPECT_EQ(parity.decrease(), "none 0");
  for (RandomState state = 0; state < 20; ++state) {
    EXPECT_EQ(parity.increase(state * 99991), parity.anyChange(state * 99991));
    EXPECT_EQ(parity.change(state * 99991), parity.anyChange(state * 99991));
  }
  parity.set(2, 1).refresh();
  EXPECT_EQ(parity.increase(), "none 0");
  for (RandomState state = 0; state < 20; ++state) {
    EXPECT_EQ(parity.decrease(state * 99991), parity.anyChange(state * 99991));
  }
}

TEST(NodeXor, BoundsAreFixedOnlyWhenAllOperandsAreOrNoneCanBeOne) {
  AggregateStage parity(NodeType::Xor, "bbb");
  EXPECT_EQ(parity.bounds(), (Bounds{0, 1}));
  parity.set(0, 0, 0, 0).set(1, 0, 0, 0).set(2, 0, 0, 0);
  EXPECT_EQ(parity.bounds(), (Bounds{0, 0}));
  parity.set(0, 1, 1, 1).set(1, 1, 1, 1).set(2, 1, 1, 1);
  EXPECT_EQ(parity.bounds(), (Bounds{1, 1}));
  parity.set(2, 0, 0, 0);
  EXPECT_EQ(parity.bounds(), (Bounds{0, 1})) << "all fixed, but not alike";
}

TEST(NodeXor, DumpShowsTheOnes) {
  AggregateStage parity(NodeType::Xor, "bb");
  parity.set(1, 1).refresh();
  EXPECT_EQ(parity.dump(), "isOneNodesInit= 1\noneNodes= 1\n");
}

}  // namespace
}  // namespace quvex
