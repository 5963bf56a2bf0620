#include <gtest/gtest.h>

#include <set>
#include <typeinfo>

#include "solver/move/constraintnodecomparison.h"
#include "solver/move/constraintnodelogic.h"
#include "solver/move/constraintnodesum.h"
#include "support/treegraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// The kernel nodes of the tree, in its order.
Ids treeOf(const TreeGraph& graph) {
  Ids ids;
  for (const auto& node : graph.structures.staticNodes) ids.push_back(node->nodeId);
  return ids;
}

TEST(ConstraintTree, HoldsOperandsBeforeParentsByRank) {
  TreeGraph graph;
  const Ids x = graph.booleans(3);
  const NodeId first = graph.add(NodeType::And, {x[0], x[1]});
  const NodeId root = graph.require(NodeType::Or, {first, x[2]});
  const NodeId other = graph.require(NodeType::Or, {x[1], x[2]});
  graph.grow();
  EXPECT_EQ(treeOf(graph), (Ids{x[0], x[1], x[2], first, other, root}));
  for (StaticIndex s = 0; s < graph.structures.staticNodes.size(); ++s) {
    const StaticConstraintNode& node = *graph.structures.staticNodes[s];
    EXPECT_EQ(node.index, s);
    EXPECT_EQ(graph.structures.staticIndexOfNode[node.nodeId], s);
    EXPECT_EQ(&graph.structure->dynamicNodes[s]->staticNode(), &node);
  }
  EXPECT_TRUE(graph.structures.constraintTreeBuilt);
}

TEST(ConstraintTree, GivesEachTypeItsClass) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  const std::vector<t_value> ints = {2, 3};
  const std::vector<t_value> doubles = {doubleToWord(0.5), doubleToWord(2.0)};
  const NodeId booleanSum = graph.add(NodeType::BooleanSum, x);
  const NodeId sum = graph.add(NodeType::Sum, x);
  const NodeId scalarSum = graph.add(NodeType::ScalarSum, x, ints);
  const NodeId doubleSum = graph.add(NodeType::DoubleSum, x);
  const NodeId doubleScalarSum = graph.add(NodeType::DoubleScalarSum, x, doubles);
  const NodeId leq = graph.require(NodeType::Leq, {booleanSum, sum});
  const NodeId geq = graph.require(NodeType::Geq, {booleanSum, scalarSum});
  const NodeId eq = graph.require(NodeType::Eq, {sum, scalarSum});
  const NodeId doubleLeq = graph.require(NodeType::DoubleLeq, {doubleSum, doubleScalarSum});
  const NodeId doubleGeq = graph.require(NodeType::DoubleGeq, {doubleSum, doubleScalarSum});
  const NodeId doubleEq = graph.require(NodeType::DoubleEq, {doubleSum, doubleScalarSum});
  const NodeId all = graph.require(NodeType::And, {leq, geq});
  const NodeId any = graph.require(NodeType::Or, {eq, doubleEq});
  graph.grow();
  const auto isA = [&]<class Class>(NodeId id, std::type_identity<Class>) {
    return dynamic_cast<const Class*>(graph.structures.staticNodes[graph.staticIndex(id)].get()) != nullptr;
  };
  EXPECT_TRUE(isA(x[0], std::type_identity<StaticConstraintNodeBool>{}));
  EXPECT_TRUE(isA(booleanSum, std::type_identity<StaticConstraintNodeSum>{}));
  EXPECT_TRUE(isA(sum, std::type_identity<StaticConstraintNodeSum>{}));
  EXPECT_TRUE(isA(scalarSum, std::type_identity<StaticConstraintNodeScalarSum>{}));
  EXPECT_TRUE(isA(doubleSum, std::type_identity<StaticConstraintNodeDoubleSum>{}));
  EXPECT_TRUE(isA(doubleScalarSum, std::type_identity<StaticConstraintNodeDoubleScalarSum>{}));
  EXPECT_TRUE(isA(leq, std::type_identity<StaticConstraintNodeLeq>{}));
  EXPECT_TRUE(isA(geq, std::type_identity<StaticConstraintNodeGeq>{}));
  EXPECT_TRUE(isA(eq, std::type_identity<StaticConstraintNodeEq>{}));
  EXPECT_TRUE(isA(doubleLeq, std::type_identity<StaticConstraintNodeDoubleLeq>{}));
  EXPECT_TRUE(isA(doubleGeq, std::type_identity<StaticConstraintNodeDoubleGeq>{}));
  EXPECT_TRUE(isA(doubleEq, std::type_identity<StaticConstraintNodeDoubleEq>{}));
  EXPECT_TRUE(isA(all, std::type_identity<StaticConstraintNodeAnd>{}));
  EXPECT_TRUE(isA(any, std::type_identity<StaticConstraintNodeOr>{}));
}

TEST(ConstraintTree, IsCutAboveTypesThatItDoesNotCover) {
  TreeGraph graph;
  const Ids x = graph.booleans(4);
  const NodeId i = graph.integer();
  const NodeId covered = graph.require(NodeType::Or, {x[0], x[1]});
  const NodeId negation = graph.add(NodeType::Not, {x[2]});
  const NodeId above = graph.require(NodeType::Or, {x[1], negation});
  const NodeId sum = graph.add(NodeType::Sum, {x[3], i});
  const NodeId limit = graph.require(NodeType::Leq, {sum, graph.constant(5)});
  const NodeId strict = graph.require(NodeType::Lt, {x[0], x[3]});
  graph.grow();
  EXPECT_EQ(treeOf(graph), (Ids{x[0], x[1], covered}));
  for (const NodeId id : {x[2], x[3], i, negation, above, sum, limit, strict}) EXPECT_FALSE(graph.isInTree(id)) << id;
  EXPECT_EQ(graph.structures.staticNodeOfDecision[graph.fixed.decisionPos[x[2]]], nullptr);
  EXPECT_EQ(graph.structure->dynamicBooleans[graph.fixed.decisionPos[x[2]]], nullptr);
  const StaticConstraintNodeBool* node = graph.structures.staticNodeOfDecision[graph.fixed.decisionPos[x[1]]];
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->nodeId, x[1]);
  EXPECT_EQ(graph.structure->dynamicBooleans[node->decisionIndex], &graph.at(x[1]));
}

TEST(ConstraintTree, DropsWhatServesNoConstraint) {
  TreeGraph graph;
  const Ids x = graph.booleans(4);
  const NodeId sum = graph.add(NodeType::BooleanSum, {x[0], x[1]});
  const NodeId objective = graph.add(NodeType::BooleanSum, {x[1], x[2]});
  const NodeId root = graph.require(NodeType::Geq, {sum, graph.constant(1)});
  graph.maximise(objective);
  graph.grow();
  EXPECT_EQ(treeOf(graph), (Ids{x[0], x[1], sum, root}));
}

TEST(ConstraintTree, KeepsADecisionThatIsAConstraint) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  graph.constraint(x[1]);
  graph.grow();
  EXPECT_EQ(treeOf(graph), Ids{x[1]});
}

TEST(ConstraintTree, IsCutAboveRankFour) {
  TreeGraph graph;
  const Ids x = graph.booleans(7);
  Ids chain = {x[0]};
  for (std::uint32_t r = 1; r <= 6; ++r) {
    chain.push_back(graph.add(r % 2 == 1 ? NodeType::And : NodeType::Or, {chain.back(), x[r]}));
  }
  graph.constraint(chain[6]);
  const NodeId low = graph.require(NodeType::Or, {x[5], x[6]});
  graph.grow();
  EXPECT_EQ(treeOf(graph), (Ids{x[5], x[6], low})) << "the deep constraint keeps nothing";
  EXPECT_EQ(graph.violated(), Ids{low}) << "it is unknown to the simulation";
  EXPECT_EQ(graph.dag->propagation.committedNbViolated, 2);

  TreeGraph four;
  const Ids y = four.booleans(5);
  NodeId top = y[0];
  for (std::uint32_t r = 1; r <= 4; ++r) top = four.add(NodeType::And, {top, y[r]});
  four.constraint(top);
  const NodeId beyond = four.require(NodeType::Or, {top, y[0]});
  four.grow();
  EXPECT_TRUE(four.isInTree(top)) << "rank 4 belongs";
  EXPECT_FALSE(four.isInTree(beyond));
  EXPECT_EQ(four.structures.staticNodes.size(), 9U);
}

TEST(ConstraintTree, ListsFlatOperandsSortedAndAnOperandThatOccursTwiceTwice) {
  TreeGraph graph;
  const Ids x = graph.booleans(3);
  const NodeId sum = graph.add(NodeType::ScalarSum, {x[2], graph.constant(1), x[0], x[2]}, {1, 1, 1, 2});
  const NodeId root = graph.require(NodeType::Leq, {sum, graph.constant(3)});
  const NodeId conjunction = graph.add(NodeType::And, {x[1], x[2]});
  const NodeId upper = graph.require(NodeType::Or, {conjunction, x[0]});
  graph.grow();
  const auto flat = [&](NodeId id) { return graph.structures.staticNodes[graph.staticIndex(id)]->flatOperands; };
  const auto index = [&](NodeId id) { return graph.staticIndex(id); };
  EXPECT_EQ(flat(sum), (std::vector<StaticIndex>{index(x[0]), index(x[2]), index(x[2])}));
  EXPECT_EQ(flat(conjunction), (std::vector<StaticIndex>{index(x[1]), index(x[2])}));
  for (const NodeId id : {root, upper, x[0]}) EXPECT_TRUE(flat(id).empty());
  const auto isFlat = [&](NodeId id) {
    return graph.structures.staticNodes[graph.staticIndex(id)]->isFlat(graph.structures);
  };
  EXPECT_TRUE(isFlat(sum));
  EXPECT_TRUE(isFlat(conjunction));
  EXPECT_TRUE(isFlat(x[0]));
  EXPECT_FALSE(isFlat(root));
  EXPECT_FALSE(isFlat(upper)) << "its operands are not all decisions or constants";
}

TEST(ConstraintTree, MayBeBuiltAgain) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  graph.require(NodeType::Or, x);
  graph.grow();
  graph.structure.reset();
  graph.structures.build(graph.fixed, true);
  EXPECT_EQ(graph.structures.staticNodes.size(), 3U);
  graph.structures.build(graph.fixed, false);
  EXPECT_TRUE(graph.structures.staticNodes.empty());
  EXPECT_FALSE(graph.structures.constraintTreeBuilt);
}

}  // namespace
}  // namespace quvex
