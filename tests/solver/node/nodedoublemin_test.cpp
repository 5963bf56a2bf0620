#include "solver/node/nodedoublemin.h"

#include <gtest/gtest.h>

#include "support/aggregatestage.h"

namespace quvex {
namespace {

/// Three operands in [0, 9].
AggregateStage& at(AggregateStage& min, double a, double b, double c) {
  min.set(0, a, 0, 9).set(1, b, 0, 9).set(2, c, 0, 9).refresh();
  return min;
}
std::string supportOf(AggregateStage& min) {
  const std::string dump = min.dump();
  const std::size_t start = dump.find("supportNodePos=") + 15;
  return dump.substr(start, dump.find('\n', start) - start);
}

TEST(NodeDoubleMin, FollowsTheLowestOperandOfAnyDomain) {
  AggregateStage min(NodeType::DoubleMin, "dib");
  min.set(0, 0.5, 0, 9).set(1, 3, 0, 9).set(2, 1).refresh();
  EXPECT_EQ(min.dag->committedDouble(min.id), 0.5);
  EXPECT_EQ(min.commitReal(0, 2.5), 1);
  EXPECT_EQ(min.commitReal(2, 0), 0);
  EXPECT_EQ(min.commitReal(2, 1), 1);
  EXPECT_TRUE(min.isInit());
}

TEST(NodeDoubleMin, OfNothingIsInfinite) {
  DagFixedFields fixed;
  const NodeId id = fixed.addNode(NodeType::DoubleMin);
  const Bounds bounds = NodeDoubleMinTemplate<SubsetMASK<unsigned char>>::computeBounds(fixed, id);
  EXPECT_EQ(bounds, Bounds::ofDoubles(kInfinity, kInfinity));
  const Dag dag(fixed);
  EXPECT_EQ(dynamic_cast<const NodeDoubleInner&>(*dag.nodes[id]).computeValue(dag, id), kInfinity);
}

TEST(NodeDoubleMin, TiesSupportAtTheHighestPosition) {
  AggregateStage min(NodeType::DoubleMin, "ddd");
  at(min, 3, 3, 7);
  EXPECT_EQ(supportOf(min), "1");
  min.commitReal(2, 3);
  EXPECT_EQ(supportOf(min), "2") << "an unchanged value looks at all again";
  min.commitReal(0, 1);
  EXPECT_EQ(supportOf(min), "0") << "a lower one at changed operands alone";
  min.commitReal(0, 3);
  EXPECT_EQ(supportOf(min), "2") << "a higher one at all";
}

TEST(NodeDoubleMin, OnlyTheRecordedSupportForcesARescan) {
  AggregateStage min(NodeType::DoubleMin, "ddd");
  at(min, 3, 3, 7);
  min.set(2, 1);  // behind its back: a rescan would find it
  EXPECT_EQ(min.move(0, 8).evalReal(), 3);
  EXPECT_FALSE(min.hasChanged());
  min.rollback();
  EXPECT_EQ(min.move(1, 8).evalReal(), 1);
  min.rollback();
  min.set(2, 7);
  EXPECT_EQ(min.move(1, 8).evalReal(), 3) << "the rescan finds the other one";
  EXPECT_EQ(min.move(1, 3.5).evalReal(), 3);
}

TEST(NodeDoubleMin, ComparesWithoutTolerance) {
  AggregateStage min(NodeType::DoubleMin, "dd");
  min.set(0, 3, 0, 9).set(1, 5, 0, 9).refresh();
  EXPECT_EQ(min.move(1, 3 - 1e-9).evalReal(), 3 - 1e-9);
  EXPECT_TRUE(min.hasChanged());
}

TEST(NodeDoubleMin, ANotANumberNeverDisplacesTheBest) {
  AggregateStage min(NodeType::DoubleMin, "dd");
  min.set(0, 3, 0, 9).set(1, std::nan(""), 0, 9).refresh();
  EXPECT_EQ(min.dag->committedDouble(min.id), 3);
  EXPECT_EQ(min.move(0, 4).evalReal(), 4);
}

TEST(NodeDoubleMin, AtItsLowestBoundCandidatesAreEmptiedAtOnce) {
  AggregateStage min(NodeType::DoubleMin, "ddd");
  at(min, 5, 5, 5);
  min.fixed.minBounds[1] = doubleToWord(-5);  // behind its back
  min.commitReal(0, 0);
  EXPECT_NE(min.dump().find("decreaseCandidates=\n"), std::string::npos);
}

TEST(NodeDoubleMin, TheBoundIsComparedExactlyAtACommit) {
  AggregateStage min(NodeType::DoubleMin, "ddd");
  at(min, 5, 5, 5);
  min.commitReal(0, 1e-9);
  EXPECT_NE(min.dump().find("decreaseCandidates= 0 1 2\n"), std::string::npos);
}

TEST(NodeDoubleMin, PickDecreaseAsksACandidateAndPickIncreaseTheSupport) {
  AggregateStage min(NodeType::DoubleMin, "ddd");
  at(min, 3, 7, 3);
  EXPECT_EQ(min.decrease(stateForChoice(3, 0)), "a- 1");
  EXPECT_EQ(min.decrease(stateForChoice(3, 1)), "b- 1");
  EXPECT_EQ(min.increase(), "c+ 0") << "the single support, although two operands are lowest";
}

TEST(NodeDoubleMin, PicksStopAtTheBoundsWithinTolerance) {
  AggregateStage min(NodeType::DoubleMin, "ddd");
  at(min, 1e-9, 7, 7);
  EXPECT_EQ(min.decrease(), "none 0");
  at(min, 9 - 1e-9, 9, 9);
  EXPECT_EQ(min.increase(), "none 0");
}

TEST(NodeDoubleMin, PickChangeOnlyEverLowers) {
  AggregateStage min(NodeType::DoubleMin, "ddd");
  at(min, 3, 7, 7);
  EXPECT_EQ(min.change(kCoinSet), "a- 1") << "the support";
  EXPECT_EQ(min.change(stateForCoinAndChoice(false, 3, 1)), "b- 2") << "a candidate";
  at(min, 9, 9, 9);
  EXPECT_EQ(min.change(stateForChoice(3, 1)), "b- 1") << "at the maximum: a candidate without a coin";
  at(min, 0, 7, 7);
  EXPECT_EQ(min.change(), "a- 0") << "at the minimum: the support is asked to go down all the same";
}

TEST(NodeDoubleMin, WithoutOperandsNothingIsPicked) {
  DagFixedFields fixed;
  const NodeId id = fixed.addNode(NodeType::DoubleMin);
  fixed.nodeDomains.assign(1, Domain::Double);
  fixed.minBounds.assign(1, doubleToWord(kInfinity));
  fixed.maxBounds.assign(1, doubleToWord(kInfinity));
  Dag dag(fixed);
  dag.nodes[id]->init(dag, id);
  RandomState state = 4;
  NodeId decision = kNone;
  int delta = 0;
  EXPECT_FALSE(dag.nodes[id]->pickChange(dag, state, decision, delta, id));
  EXPECT_TRUE(dag.nodes[id]->isInit(dag, id));
}

TEST(NodeDoubleMin, DumpShowsCandidatesAndTheSupport) {
  AggregateStage min(NodeType::DoubleMin, "ddd");
  at(min, 3, 7, 3);
  EXPECT_EQ(min.dump(), "isDecreaseCandidatesInit=1\ndecreaseCandidates= 0 1 2\nisSupportInit=1\nsupportNodePos=2\n");
  min.set(2, 4);
  EXPECT_NE(min.dump().find("isSupportInit=0\n"), std::string::npos);
}

}  // namespace
}  // namespace quvex
