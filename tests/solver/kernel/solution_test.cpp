#include "solver/kernel/solution.h"

#include <gtest/gtest.h>

#include "solver/kernel/dag.h"
#include "support/failure.h"
#include "support/graphbuilder.h"

namespace quvex {
namespace {

/// Three decisions of which two must be set, a double and an integer objective.
struct SolutionOfThree : testing::Test {
  GraphBuilder graph;
  std::vector<NodeId> x = graph.booleans(3);
  NodeId sum = graph.add(NodeType::Sum, x);
  NodeId tiny =
      graph.add(NodeType::DoubleScalarSum, x, {doubleToWord(1.0), doubleToWord(1.0000001), doubleToWord(5.0)});
  NodeId weighted = graph.add(NodeType::ScalarSum, x, {7, 8, 9});
  Dag* dag = nullptr;

  void SetUp() override {
    graph.constraint(graph.add(NodeType::Geq, {sum, graph.constant(1)}));
    graph.minimise(tiny);
    graph.maximise(weighted);
    dag = &graph.build();
  }
};

TEST(Solution, NeedsAnInitialisedDag) {
  GraphBuilder graph;
  graph.minimise(graph.boolean());
  graph.fixed.init();
  Dag dag(graph.fixed);
  EXPECT_EQ(failureOf([&] { const Solution solution(dag); }),
            refusal("Solution::Solution", "The dag must be initialized to create a Solution"));
}

TEST_F(SolutionOfThree, EqualsItsDagAtFirst) {
  commitValues(*dag, {{x[1], 1}});
  const Solution solution(*dag);
  EXPECT_EQ(solution.decisions, (std::vector<t_value>{0, 1, 0}));
  EXPECT_EQ(solution.objectives[1], 8);
  EXPECT_EQ(solution.nbViolated, 0U);
  EXPECT_TRUE(solution.changedDecisions.empty());
}

TEST_F(SolutionOfThree, ForgetsADecisionThatFlipsBack) {
  Solution solution(*dag);
  commitValues(*dag, {{x[2], 1}});
  EXPECT_EQ(solution.changedDecisions.count, 1U);
  commitValues(*dag, {{x[2], 0}});
  EXPECT_TRUE(solution.changedDecisions.empty());
}

TEST_F(SolutionOfThree, CopiesOnlyWhatHasChanged) {
  Solution solution(*dag);
  solution.decisions[0] = 77;  // a copy would repair it
  commitValues(*dag, {{x[2], 1}});
  solution.save();
  EXPECT_EQ(solution.decisions, (std::vector<t_value>{77, 0, 1}));
}

TEST_F(SolutionOfThree, PutsFewerViolationsBeforeAnyObjective) {
  const Solution violated(*dag);
  commitValues(*dag, {{x[2], 1}});
  const Solution feasible(*dag);
  EXPECT_EQ(violated.nbViolated, 1U);
  EXPECT_EQ(feasible.compare(violated), 1);
  EXPECT_EQ(violated.compare(feasible), -1);
}

TEST_F(SolutionOfThree, LetsTheNextObjectiveDecideWithinTheTolerance) {
  commitValues(*dag, {{x[0], 1}});
  const Solution first(*dag);
  commitValues(*dag, {{x[0], 0}, {x[1], 1}});
  const Solution second(*dag);
  EXPECT_NE(first.objectives[0], second.objectives[0]);
  EXPECT_EQ(second.compare(first), 1);  // 8 against 7, maximised
  EXPECT_EQ(first.compare(second), -1);
  EXPECT_EQ(first.compare(first), 0);
}

TEST_F(SolutionOfThree, SavesTheSmallerSideOfActiveAndInactive) {
  commitValues(*dag, {{x[0], 1}});
  dag->propagation.activateAllConstraints();
  Solution solution(*dag);
  EXPECT_EQ(solution.satisfiedConstraints.count, 1U);
  dag->propagation.deactivateAllConstraints();
  solution.save();
  EXPECT_EQ(solution.satisfiedConstraints.count, 0U);
}

TEST_F(SolutionOfThree, RestoresOntoAnotherDagOfTheSameGraph) {
  commitValues(*dag, {{x[0], 1}, {x[2], 1}});
  dag->propagation.activateAllConstraints();
  const Solution solution(*dag);
  Dag other(graph.fixed);
  other.init();
  solution.restore(other);
  EXPECT_EQ(other.nodeValue[weighted], 16);
  EXPECT_TRUE(other.propagation.allConstraintsActive());
  EXPECT_TRUE(isWholeGraphInit(other));
}

TEST_F(SolutionOfThree, FollowsARestoreOntoItsOwnDag) {
  commitValues(*dag, {{x[0], 1}});
  const Solution solution(*dag);
  commitValues(*dag, {{x[1], 1}});
  EXPECT_EQ(solution.changedDecisions.count, 1U);
  solution.restore(*dag);
  EXPECT_TRUE(solution.changedDecisions.empty());
  EXPECT_EQ(dag->nodeValue[x[1]], 0);
}

TEST_F(SolutionOfThree, ActivatesOnlyWhatAnInfeasibleSolutionSatisfied) {
  GraphBuilder two;
  const NodeId a = two.boolean();
  const NodeId b = two.boolean();
  two.constraint(a);
  two.constraint(b);
  two.minimise(two.constant(0));
  Dag& small = two.build();
  commitValues(small, {{b, 1}});
  small.propagation.activateSatisfiedConstraints(small);
  const Solution solution(small);
  Dag other(two.fixed);
  other.init();
  solution.restore(other);
  EXPECT_EQ(other.propagation.committedNbViolated, 1);
  EXPECT_FALSE(other.propagation.activeConstraints.contains(0));
  EXPECT_TRUE(other.propagation.activeConstraints.contains(1));
}

TEST_F(SolutionOfThree, RefusesSolutionsOfAnotherGraph) {
  GraphBuilder stranger;
  stranger.minimise(stranger.boolean());
  Dag& strangeDag = stranger.build();
  const Solution strange(strangeDag);
  const Solution solution(*dag);
  const std::string text = "Solutions do no share the same dag structure.";
  EXPECT_EQ(failureOf([&] { (void)solution.compare(strange); }), refusal("Solution::compare", text));
  EXPECT_EQ(failureOf([&] { solution.restore(strangeDag); }), refusal("Solution::restore", text));
}

TEST_F(SolutionOfThree, LeavesTheListenersWithItsEnd) {
  { const Solution gone(*dag); }
  commitValues(*dag, {{x[0], 1}});  // would reach a dead listener
  const Solution here(*dag);
  EXPECT_EQ(here.decisions[0], 1);
}

}  // namespace
}  // namespace quvex
