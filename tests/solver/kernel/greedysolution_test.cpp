#include "solver/kernel/greedysolution.h"

#include <gtest/gtest.h>

#include "solver/kernel/dag.h"
#include "support/failure.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

/// The decisions of each commit.
class CommitRecorder final : public DagListener {
 public:
  explicit CommitRecorder(Dag& ownDag) : dag(ownDag) { dag.propagation.addListener(this); }
  ~CommitRecorder() override { dag.propagation.removeListener(this); }
  void onCommit() override {
    const NodeList& touched = dag.propagation.touchedDecisions;
    commits.emplace_back(touched.begin(), touched.end());
  }
  std::vector<std::vector<NodeId>> commits;

 private:
  Dag& dag;
};

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

TEST(GreedySolution, CommitsOncePerDecisionThatItSets) {
  // Two of four decisions are set already: all four are drawn, and the two others alone are tried.
  GraphBuilder graph;
  const auto x = graph.booleans(4);
  const NodeId sum = graph.add(NodeType::Sum, x);
  graph.constraint(graph.add(NodeType::Geq, {sum, graph.constant(9)}));
  graph.minimise(sum);
  Dag& dag = graph.build();
  commitValues(dag, {{x[0], 1}, {x[2], 1}});
  for (const RandomState seed : {5U, 1000003U, 4000000007U}) {
    commitValues(dag, {{x[1], 0}, {x[3], 0}});
    RandomState expected = seed;
    std::vector<NodeId> order = x;
    for (std::uint32_t i = 0; i < 4; ++i) std::swap(order[i], order[i + rand(expected, 4 - i)]);
    std::erase_if(order, [&](NodeId id) { return dag.nodeValue[id] == 1; });
    RandomState state = seed;
    const CommitRecorder recorder(dag);
    EXPECT_FALSE(GreedySolution(state).computeSolution(dag));
    EXPECT_EQ(state, expected);
    EXPECT_EQ(recorder.commits, (std::vector<std::vector<NodeId>>{{order[0]}, {order[1]}}));
    EXPECT_EQ(dag.nodeValue[sum], 4);
  }
}

TEST(GreedySolution, RollsBackWhatViolatesMore) {
  // The first decision repairs a constraint; any other breaks one, and is not committed.
  GraphBuilder graph;
  const auto x = graph.booleans(3);
  graph.constraint(x[0]);
  for (const NodeId id : {x[1], x[2]}) graph.constraint(graph.add(NodeType::Not, {id}));
  graph.minimise(x[0]);
  Dag& dag = graph.build();
  RandomState state = 5;
  const CommitRecorder recorder(dag);
  EXPECT_TRUE(GreedySolution(state).computeSolution(dag));
  EXPECT_EQ(recorder.commits, (std::vector<std::vector<NodeId>>{{x[0]}}));
  EXPECT_TRUE(isWholeGraphInit(dag));
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
