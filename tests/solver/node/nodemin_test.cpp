#include "solver/node/nodemin.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

/// Three operands in [0, 9].
AggregateStage& at(AggregateStage& min, double a, double b, double c) {
  min.set(0, a, 0, 9).set(1, b, 0, 9).set(2, c, 0, 9).refresh();
  return min;
}

TEST(NodeMin, FollowsTheLowestOperand) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 5, 3, 7);
  EXPECT_EQ(min.dag->nodeValue[min.id], 3);
  EXPECT_EQ(min.commitInteger(2, 1), 1);
  EXPECT_EQ(min.commitInteger(2, 2), 2);
  EXPECT_EQ(min.commitInteger(2, 9), 3) << "the last support left: a look at all";
  EXPECT_TRUE(min.isInit());
}

TEST(NodeMin, OfNothingIsTheHighestInteger) {
  // A node without operands is not reachable in a graph, so it is asked directly.
  DagFixedFields fixed;
  const NodeId id = fixed.addNode(NodeType::Min);
  const Bounds bounds = NodeMinTemplate<SubsetMASK<unsigned char>>::computeBounds(fixed, id);
  EXPECT_EQ(bounds, (Bounds{kHighestInt, kHighestInt}));
  const Dag dag(fixed);
  EXPECT_EQ(dynamic_cast<const NodeInner&>(*dag.nodes[id]).computeValue(dag, id), kHighestInt);
}

TEST(NodeMin, RaisingOneOfTwoSupportsCostsNoRescan) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 3, 3, 7);
  min.set(2, 1);  // behind its back: a rescan would find it
  EXPECT_EQ(min.move(0, 8).evalInteger(), 3);
  EXPECT_FALSE(min.hasChanged());
  min.commit();
  EXPECT_EQ(min.move(1, 5).evalInteger(), 1) << "the last support forces the rescan";
}

TEST(NodeMin, AChangedOperandThatGoesLowerNeedsNoRescan) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 3, 6, 7);
  min.set(2, 1);  // behind its back
  EXPECT_EQ(min.move(0, 9).move(1, 2).evalInteger(), 2);
}

TEST(NodeMin, AChangedOperandThatReachesTheValueKeepsIt) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 3, 6, 7);
  EXPECT_EQ(min.move(0, 9).move(1, 3).evalInteger(), 3);
  min.commit();
  EXPECT_TRUE(min.isInit());
}

TEST(NodeMin, SupportsFollowTheValue) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 3, 3, 7);
  EXPECT_NE(min.dump().find("supports= 0 1\n"), std::string::npos);
  min.commitInteger(2, 1);
  EXPECT_NE(min.dump().find("supports= 2\n"), std::string::npos) << "lower: only changed operands can support";
  min.commitInteger(2, 3);
  EXPECT_NE(min.dump().find("supports= 0 1 2\n"), std::string::npos) << "higher: all are looked at";
  min.commitInteger(1, 4);
  EXPECT_NE(min.dump().find("supports= 0 2\n"), std::string::npos) << "unchanged: only changed operands are";
}

TEST(NodeMin, CandidatesCouldGoBelowTheValue) {
  AggregateStage min(NodeType::Min, "iii");
  min.set(0, 5, 0, 9).set(1, 5, 4, 9).set(2, 6, 5, 9).refresh();
  EXPECT_NE(min.dump().find("decreaseCandidates= 0 1\n"), std::string::npos);
  min.move(0, 8).move(1, 8).evalInteger();
  min.commit();
  EXPECT_NE(min.dump().find("decreaseCandidates= 0 1 2\n"), std::string::npos) << "the value rose to 6";
  min.commitInteger(2, 5);
  EXPECT_NE(min.dump().find("decreaseCandidates= 0 1\n"), std::string::npos);
  min.commitInteger(1, 4);
  EXPECT_NE(min.dump().find("decreaseCandidates= 0\n"), std::string::npos);
  EXPECT_TRUE(min.isInit());
}

TEST(NodeMin, AtItsLowestBoundCandidatesAreEmptiedAtOnce) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 5, 5, 5);
  // A bound of one operand is pulled down behind its back: only a look at the operands would keep it as a candidate.
  min.fixed.minBounds[1] = -5;
  min.commitInteger(0, 0);
  EXPECT_NE(min.dump().find("decreaseCandidates=\n"), std::string::npos);
}

TEST(NodeMin, PickDecreaseAsksACandidate) {
  AggregateStage min(NodeType::Min, "iii");
  min.set(0, 5, 5, 9).set(1, 6, 4, 9).set(2, 7, 3, 9).refresh();
  EXPECT_EQ(min.decrease(stateForChoice(2, 0)), "b- 1");
  EXPECT_EQ(min.decrease(stateForChoice(2, 1)), "c- 1");
  min.set(2, 3).refresh();
  EXPECT_EQ(min.decrease(), "none 0") << "at its minimum";
}

TEST(NodeMin, PickIncreaseAsksASupport) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 3, 7, 3);
  EXPECT_EQ(min.increase(stateForChoice(2, 0)), "a+ 1");
  EXPECT_EQ(min.increase(stateForChoice(2, 1)), "c+ 1");
  at(min, 9, 9, 9);
  EXPECT_EQ(min.increase(), "none 0") << "at its maximum";
}

TEST(NodeMin, PickChangeTossesWhereThereIsRoomOnBothSides) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 3, 7, 7);
  EXPECT_EQ(min.change(stateForCoinAndChoice(true, 3, 1)), "b- 2") << "down: a candidate";
  EXPECT_EQ(min.change(kCoinClear), "a+ 1") << "up: the only support";
  at(min, 0, 7, 7);
  EXPECT_EQ(min.change(), "a+ 0") << "at the minimum: up without a coin";
  at(min, 9, 9, 9);
  EXPECT_EQ(min.change(stateForChoice(3, 2)), "c- 1") << "at the maximum: down without a coin";
}

TEST(NodeMin, CandidatesThatAreIntegerDecisionsRefuse) {
  GraphBuilder graph;
  const NodeId min = graph.add(NodeType::Min, {graph.integer(), graph.integer()});
  graph.build();
  RandomState state = 1;
  NodeId decision = kNone;
  int delta = 0;
  EXPECT_FALSE(graph.dag->nodes[min]->pickDecrease(*graph.dag, state, decision, delta, min));
  EXPECT_NE(state, 1U) << "a candidate was drawn before it refused";
}

TEST(NodeMin, BoundsAreTheLowestOfEach) {
  AggregateStage min(NodeType::Min, "iii");
  min.setIntegerBounds(0, 3, 20).setIntegerBounds(1, 5, 8).setIntegerBounds(2, 4, 9);
  EXPECT_EQ(min.bounds(), (Bounds{3, 8}));
}

TEST(NodeMin, HasNoCandidatesForMovesThatLookIntoSums) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 3, 7, 7);
  EXPECT_EQ(min.node().nbDecreaseCandidates(*min.dag, min.id), 0U);
  EXPECT_EQ(min.node().nbIncreaseCandidates(*min.dag, min.id), 0U);
}

TEST(NodeMin, DumpShowsSupportsAndCandidates) {
  AggregateStage min(NodeType::Min, "iii");
  at(min, 3, 7, 3);
  EXPECT_EQ(min.dump(), "isSupportsInit=1\nisDecreaseCandidatesInit=1\nsupports= 0 2\ndecreaseCandidates= 0 1 2\n");
  min.set(0, 4);
  EXPECT_EQ(min.dump().substr(0, 17), "isSupportsInit=0\n");
}

}  // namespace
}  // namespace quvex
