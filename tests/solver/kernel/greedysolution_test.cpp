#include "solver/kernel/greedysolution.h"

#include <gtest/gtest.h>

#include "solver/kernel/dag.h"
#include "support/failure.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

TEST(GreedySolution, NeedsAnInitialisedDag) {
  GraphBuilder graph;
  graph.minimise(graph.boolean());
  graph.fixed.init();
  Dag dag(graph.fixed);
  RandomState state = 0;
  EXPECT_EQ(failureOf([&] { (void)GreedySolution(state).computeSolution(dag); }),
            refusal("GreedySolution::computeSolution", "Cannot compute a solution on a uninitialized dag"));
}

TEST(GreedySolution, DrawsNothingFromAFeasibleStart) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  graph.constraint(graph.add(NodeType::Not, {x}));
  graph.minimise(graph.boolean());
  Dag& dag = graph.build();
  RandomState state = 77;
  EXPECT_TRUE(GreedySolution(state).computeSolution(dag));
  EXPECT_EQ(state, 77U);
  EXPECT_TRUE(dag.propagation.allConstraintsActive());
}

TEST(GreedySolution, ReachesFeasibilityByRisesAlone) {
  GraphBuilder graph;
  const auto x = graph.booleans(6);
  const NodeId sum = graph.add(NodeType::Sum, x);
  graph.constraint(graph.add(NodeType::Geq, {sum, graph.constant(4)}));
  graph.minimise(sum);
  Dag& dag = graph.build();
  RandomState state = 3;
  EXPECT_TRUE(GreedySolution(state).computeSolution(dag));
  EXPECT_EQ(dag.nodeValue[sum], 6);  // what worsens nothing is kept
  EXPECT_TRUE(isWholeGraphInit(dag));
}

TEST(GreedySolution, KeepsWhatWorsensNothingThoughNothingIsRepaired) {
  GraphBuilder graph;
  const auto x = graph.booleans(3);
  const NodeId sum = graph.add(NodeType::Sum, x);
  graph.constraint(graph.add(NodeType::Geq, {sum, graph.constant(9)}));
  graph.minimise(sum);
  Dag& dag = graph.build();
  RandomState state = 5;
  EXPECT_FALSE(GreedySolution(state).computeSolution(dag));
  EXPECT_EQ(dag.nodeValue[sum], 3);
  RandomState expected = 5;
  (void)rand(expected, 3);
  (void)rand(expected, 2);  // the last decision is certain
  EXPECT_EQ(state, expected);
}

TEST(GreedySolution, SpendsADrawButNoEvaluationOnADecisionAlreadySet) {
  GraphBuilder graph;
  const auto x = graph.booleans(2);
  const NodeId sum = graph.add(NodeType::Sum, x);
  graph.constraint(graph.add(NodeType::Geq, {sum, graph.constant(9)}));
  graph.minimise(sum);
  Dag& dag = graph.build();
  commitValues(dag, {{x[0], 1}, {x[1], 1}});
  RandomState state = 5;
  EXPECT_FALSE(GreedySolution(state).computeSolution(dag));
  RandomState expected = 5;
  (void)rand(expected, 2);
  EXPECT_EQ(state, expected);
  EXPECT_EQ(dag.nodeValue[sum], 2);
}

TEST(GreedySolution, GoesStraightToItsCheckWithoutBooleanDecisions) {
  GraphBuilder graph;
  const NodeId i = graph.integer();
  graph.constraint(graph.add(NodeType::Geq, {i, graph.constant(1)}));
  graph.minimise(i);
  Dag& dag = graph.build();
  RandomState state = 5;
  EXPECT_FALSE(GreedySolution(state).computeSolution(dag));
  EXPECT_EQ(state, 5U);
}

}  // namespace
}  // namespace quvex
