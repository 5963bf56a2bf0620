#include "solver/kernel/dagfixedfields.h"

#include <gtest/gtest.h>

#include <set>

#include "api/qvexception.h"
#include "support/capturedoutput.h"
#include "support/failure.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

std::vector<NodeId> parentIds(const DagFixedFields& fixed, NodeId id) {
  std::vector<NodeId> ids;
  for (const ParentLink link : fixed.parentsOf(id)) ids.push_back(link.parent);
  return ids;
}

TEST(DagFixedFields, RefusesAConstraintTwice) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.constraint(x);
  graph.constraint(x);
  EXPECT_EQ(failureOf([&] { graph.fixed.init(); }),
            refusal("DagFixedFields::initPosInConstraints", "This node is already a constraint."));
}

TEST(DagFixedFields, ReportsANodeThatNoSourceReaches) {
  GraphBuilder graph;
  graph.boolean();
  graph.add(NodeType::Sum, std::vector<NodeId>{});
  EXPECT_EQ(
      failureOf([&] { graph.fixed.init(); }),
      refusal("DagFixedFields::computeRanks", "The operator sum is not accessible from the variables and constants."));
}

TEST(DagFixedFields, RanksByTheLongestPathFromASource) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId low = graph.add(NodeType::And, {x, y});
  const NodeId high = graph.add(NodeType::Or, {x, low});
  graph.build();
  EXPECT_EQ(graph.fixed.nodeRanks[x], 0U);
  EXPECT_EQ(graph.fixed.nodeRanks[low], 1U);
  EXPECT_EQ(graph.fixed.nodeRanks[high], 2U);
  EXPECT_EQ(graph.fixed.nbRanks(), 3U);
  EXPECT_EQ(graph.fixed.nodesByRank[1], std::vector<NodeId>{low});
}

TEST(DagFixedFields, ListsANodeUsedTwiceOncePerPosition) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId sum = graph.add(NodeType::Sum, {x, x});
  graph.minimise(sum);
  graph.build();
  ASSERT_EQ(graph.fixed.parentCount(x), 2U);
  EXPECT_EQ(graph.fixed.parentsOf(x)[0].childPos, 0U);
  EXPECT_EQ(graph.fixed.parentsOf(x)[1].childPos, 1U);
}

TEST(DagFixedFields, OrdersDecisionsByKindWhateverTheirIds) {
  GraphBuilder graph;
  const NodeId i = graph.integer();
  const NodeId constant = graph.constant(5);
  const NodeId b = graph.boolean();
  const NodeId sum = graph.add(NodeType::Sum, {i, constant, b});
  graph.minimise(sum);
  graph.build();
  EXPECT_EQ(graph.fixed.decisionList, (std::vector<NodeId>{b, i, sum}));
  EXPECT_EQ(graph.fixed.nbBooleans, 1U);
  EXPECT_EQ(graph.fixed.nbIntegers, 1U);
  EXPECT_EQ(graph.fixed.nbOperators, 1U);
  EXPECT_EQ(graph.fixed.firstInteger, 1U);
  EXPECT_EQ(graph.fixed.firstOperator, 2U);
  EXPECT_EQ(graph.fixed.decisionPos[sum], 2U);
  EXPECT_EQ(graph.fixed.decisionPos[constant], kNone);
}

TEST(DagFixedFields, WarnsWhenAskedForThePlaceOfAnOperator) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId no = graph.add(NodeType::Not, {x});
  graph.minimise(no);
  graph.build();
  CapturedOutput output;
  EXPECT_EQ(graph.fixed.getDecisionIndex(x), 0U);
  EXPECT_EQ(output.text(), "");
  EXPECT_EQ(graph.fixed.getDecisionIndex(no), 1U);
  EXPECT_EQ(output.text(), "not, 1\n");
}

TEST(DagFixedFields, LetsAnObjectiveOverrideItsOwnConstraintLevel) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId both = graph.add(NodeType::And, {x, y});
  const NodeId other = graph.add(NodeType::Not, {y});
  graph.constraint(both);
  graph.minimise(both);
  graph.constraint(other);
  graph.build();
  EXPECT_EQ(graph.fixed.nodeLevel[both], 1U);
  EXPECT_EQ(graph.fixed.nodeLevel[x], 1U);
  EXPECT_EQ(graph.fixed.nodeLevel[y], 0U);  // through the other constraint
}

TEST(DagFixedFields, GivesWhatReachesNothingTheLastLevel) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId idle = graph.add(NodeType::Not, {x});
  graph.minimise(x);
  graph.build();
  EXPECT_EQ(graph.fixed.nodeLevel[idle], 2U);
}

TEST(DagFixedFields, SortsEachParentRunByLevel) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId second = graph.add(NodeType::Not, {x});
  const NodeId idle = graph.add(NodeType::Not, {x});
  const NodeId first = graph.add(NodeType::Not, {x});
  const NodeId constraint = graph.add(NodeType::Not, {x});
  graph.constraint(constraint);
  graph.minimise(first);
  graph.minimise(second);
  graph.build();
  const auto ids = parentIds(graph.fixed, x);
  EXPECT_EQ(ids[0], constraint);
  EXPECT_EQ(ids[1], first);
  EXPECT_EQ(graph.fixed.parentCountByLevel(0, x), 1U);
  EXPECT_EQ(graph.fixed.parentCountByLevel(1, x), 2U);
  EXPECT_EQ(graph.fixed.parentCountByLevel(2, x), 4U);  // the last row holds the last objective's and the idle ones
  EXPECT_EQ((std::set<NodeId>{ids[2], ids[3]}), (std::set<NodeId>{second, idle}));
}

TEST(DagFixedFields, CountsTypesUpToTheHighestCode) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.minimise(graph.add(NodeType::Abs, {x}));
  graph.build();
  EXPECT_EQ(graph.fixed.typeCounts, (std::vector<std::uint32_t>{1, 0, 1}));
}

}  // namespace
}  // namespace quvex
