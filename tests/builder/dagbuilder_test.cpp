#include "builder/dagbuilder.h"

#include <gtest/gtest.h>

#include "api/modelaccess.h"
#include "api/qvparam.h"
#include "api/qvsolution.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/solution.h"
#include "solver/move/dagstructures.h"
#include "support/failure.h"
#include "support/graphtext.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

struct BuiltModel : OpenModel {
  QVExpression* a = decision();
  QVExpression* b = decision();

  DagBuilder& builder() { return *ModelAccess::dagBuilder(*model); }
  const DagFixedFields& fixed() { return builder().getFixedFields(); }
  QVSolution& solution() { return *quvex.getSolution(); }
  void constrain(QVExpression* expr) { model->addConstraint(expr); }
};

TEST(DagBuilder, RefusesAnOpenModel) {
  OpenModel m;
  const Failure failure = failureOf([&] { const DagBuilder builder(m.model); });
  EXPECT_EQ(failure.explanation, "The model need to be closed to be transformed");
  EXPECT_EQ(failure.function, "quvex::DagBuilder::DagBuilder");
  EXPECT_TRUE(failure.isKernel);
}

TEST(DagBuilder, WithoutPreprocessingEveryExpressionHasItsNode) {
  BuiltModel m;
  m.minimize(m.make(QVOperator::Sum, m.a, m.make(QVOperator::Prod, m.b, 3), 0));
  m.quvex.getParam()->setAdvancedParam("preprocessEnabled", 0);
  m.close();
  for (const QVExpression* expr : ModelAccess::expressions(*m.model)) EXPECT_NE(m.builder().getNode(expr), kNone);
  EXPECT_EQ(m.fixed().nbNodes, static_cast<std::uint32_t>(m.model->getNbExpressions()));
}

TEST(DagBuilder, AFixedDecisionRegistersNoConstraintAndComesBack) {
  BuiltModel m;
  m.constrain(m.make(QVOperator::Eq, m.a, 1));
  m.minimize(m.make(QVOperator::Sum, m.a, m.b));
  m.close();
  EXPECT_TRUE(m.fixed().constraints.empty());
  const Solution solution(m.builder().getDag());
  m.builder().storeSolution(solution, m.solution());
  EXPECT_EQ(m.solution().getValue(m.a), 1);
  EXPECT_EQ(m.solution().getValue(m.b), 0);
}

TEST(DagBuilder, ADivisionByZeroOfConstantsFailsAtCloseAndLeavesTheModelOpen) {
  BuiltModel m;
  m.make(QVOperator::Div, 1, 0);
  const Failure failure = failureOf([&] { m.close(); });
  EXPECT_EQ(failure.explanation, "Division by zero.");
  EXPECT_FALSE(m.model->isClosed());
  EXPECT_EQ(m.quvex.getState(), QVState::Modeling);
}

TEST(DagBuilder, ADecisionThatNothingUsesHasNoNodeAndReadsZero) {
  BuiltModel m;
  QVExpression* product = m.make(QVOperator::Prod, m.a, 0);
  m.minimize(m.make(QVOperator::Sum, product, m.b));
  m.close();
  EXPECT_EQ(m.builder().getNode(m.a), kNone);
  EXPECT_EQ(GraphText(*m.model).count(NodeType::ScalarProduct), 0U);
  m.solution().setValue(m.a, 1);
  const Solution solution(m.builder().getDag());
  m.builder().storeSolution(solution, m.solution());
  EXPECT_EQ(m.solution().getValue(m.a), 0);
}

TEST(DagBuilder, BoundsAreThoseOfTheNode) {
  BuiltModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.make(QVOperator::Prod, 3, m.a), m.make(QVOperator::Prod, -2, m.b));
  QVExpression* doubleSum = m.make(QVOperator::Sum, m.a, 1.5);
  m.close();
  EXPECT_EQ(m.builder().getMinBound(m.a), 0);
  EXPECT_EQ(m.builder().getMaxBound(m.a), 1);
  EXPECT_EQ(m.builder().getMinBound(sum), -2);
  EXPECT_EQ(m.builder().getMaxBound(sum), 3);
  EXPECT_EQ(wordToDouble(m.builder().getMinBound(doubleSum)), 1.5);
  EXPECT_EQ(wordToDouble(m.builder().getMaxBound(doubleSum)), 2.5);
}

TEST(DagBuilder, AnIntegerNodeOfADoubleExpressionGivesDoubleBounds) {
  BuiltModel m;
  QVExpression* product = m.make(QVOperator::Prod, 1e-200, 1e-200, m.make(QVOperator::Sqrt, m.a));
  m.make(QVOperator::Leq, product, m.b);
  m.close();
  EXPECT_EQ(GraphText(*m.model).of(product), "0");
  EXPECT_EQ(wordToDouble(m.builder().getMaxBound(product)), 0.0);
}

TEST(DagBuilder, WithoutANodeTheRangeIsTheWholeTypeButZeroForABoolean) {
  BuiltModel m;
  m.make(QVOperator::Prod, m.a, 0);  // leaves the decision without a node
  QVExpression* integer = m.make(QVOperator::Sum, m.b, 4);
  m.make(QVOperator::Sum, integer, 3);  // dissolves it
  QVExpression* real = m.make(QVOperator::Sum, m.b, 0.5);
  m.make(QVOperator::Sum, real, 3);  // the same
  m.close();
  ASSERT_EQ(m.builder().getNode(m.a), kNone);
  ASSERT_EQ(m.builder().getNode(integer), kNone);
  ASSERT_EQ(m.builder().getNode(real), kNone);
  EXPECT_EQ(m.builder().getMinBound(m.a), 0);
  EXPECT_EQ(m.builder().getMaxBound(m.a), 0);
  EXPECT_EQ(m.builder().getMinBound(integer), kLowestInt);
  EXPECT_EQ(m.builder().getMaxBound(integer), kHighestInt);
  EXPECT_EQ(wordToDouble(m.builder().getMinBound(real)), -kInfinity);
  EXPECT_EQ(wordToDouble(m.builder().getMaxBound(real)), kInfinity);
}

TEST(DagBuilder, AnArrayHasNoBounds) {
  BuiltModel m;
  QVExpression* array = m.make(QVOperator::Array, m.a, m.b);
  m.close();
  EXPECT_EQ(explanationOf([&] { (void)m.builder().getMinBound(array); }), "ValueType '8' not supported");
  const Failure failure = failureOf([&] { (void)m.builder().getMaxBound(array); });
  EXPECT_EQ(failure.explanation, "ValueType '8' not supported");
  EXPECT_EQ(failure.function, "quvex::DagBuilder::getMaxBound");
}

TEST(DagBuilder, ConstraintsThatComeDownToOneNodeAreEnteredOnce) {
  BuiltModel m;
  QVExpression* leq = m.make(QVOperator::Leq, m.a, m.b);
  QVExpression* alias = m.make(QVOperator::And, leq);
  m.constrain(alias);
  m.constrain(leq);
  m.close();
  ASSERT_EQ(m.fixed().constraints.size(), 1U);
  EXPECT_EQ(m.builder().getNode(alias), m.builder().getNode(leq));
}

TEST(DagBuilder, AConstraintThatNeverHoldsStandsAsAConstant) {
  BuiltModel m;
  QVExpression* never = m.make(QVOperator::Leq, 3, 2);
  QVExpression* always = m.make(QVOperator::Leq, 2, 3);
  m.constrain(never);
  m.constrain(always);
  m.close();
  ASSERT_EQ(m.fixed().constraints.size(), 1U);
  EXPECT_EQ(GraphText(*m.model).ofNode(m.fixed().constraints[0]), "0");
  EXPECT_TRUE(m.builder().canNeverHold(never));
  EXPECT_FALSE(m.builder().canNeverHold(always));
}

TEST(DagBuilder, AFixingEqualityCanHoldThoughItHasNoNode) {
  BuiltModel m;
  QVExpression* eq = m.make(QVOperator::And, m.make(QVOperator::Leq, 2, 3), m.make(QVOperator::Leq, 2, 4));
  QVExpression* fixing = m.make(QVOperator::Eq, m.a, 1);
  m.constrain(eq);
  m.constrain(fixing);
  m.close();
  EXPECT_FALSE(m.builder().canNeverHold(eq));
  EXPECT_FALSE(m.builder().canNeverHold(fixing));
}

TEST(DagBuilder, ObjectivesKeepTheirOrderAndDirection) {
  BuiltModel m;
  QVExpression* alias = m.make(QVOperator::Sum, m.b);
  m.maximize(alias);
  m.minimize(m.a);
  m.close();
  EXPECT_EQ(m.fixed().objectives, (std::vector<NodeId>{m.builder().getNode(m.b), m.builder().getNode(m.a)}));
  EXPECT_EQ(m.fixed().objectiveDirections, (std::vector<std::uint32_t>{1, 0}));
}

TEST(DagBuilder, AnObjectiveOfAnotherDirectionGetsANodeButDoesNotTakePart) {
  BuiltModel m;
  QVExpression* leq = m.make(QVOperator::Leq, m.a, m.b);
  m.model->addObjective(leq, static_cast<QVObjectiveDirection>(2));
  m.minimize(m.a);
  m.close();
  EXPECT_NE(m.builder().getNode(leq), kNone);
  EXPECT_EQ(m.fixed().objectives, std::vector<NodeId>{m.builder().getNode(m.a)});
  Solution kernelSolution(m.builder().getDag());
  m.solution().setValue(m.a, 1);
  m.builder().loadSolution(m.solution(), kernelSolution);
  EXPECT_EQ(kernelSolution.objectives, std::vector<t_value>{1});
}

TEST(DagBuilder, AnObjectiveThatIsAConstraintGetsASumOfItsOwn) {
  for (const int preprocessEnabled : {0, 1}) {
    BuiltModel m;
    QVExpression* leq = m.make(QVOperator::Leq, m.a, m.b);
    m.constrain(leq);
    m.maximize(leq);
    m.quvex.getParam()->setAdvancedParam("preprocessEnabled", preprocessEnabled);
    m.close();
    const NodeId node = m.builder().getNode(leq);
    EXPECT_EQ(m.fixed().constraints, std::vector<NodeId>{node});
    EXPECT_EQ(GraphText(*m.model).ofNode(m.fixed().objectives[0]), "sum(leq(d0,d1))");
    EXPECT_EQ(m.fixed().nodeLevel[node], 0U);
  }
}

TEST(DagBuilder, LoadsASolutionOfTheModel) {
  BuiltModel m;
  QVExpression* leq = m.make(QVOperator::Leq, m.a, m.b);
  QVExpression* gt = m.make(QVOperator::Gt, m.a, m.b);
  QVExpression* fixed = m.decision();
  m.constrain(leq);
  m.constrain(gt);
  m.constrain(m.make(QVOperator::Eq, fixed, 1));
  QVExpression* sum = m.make(QVOperator::Sum, m.make(QVOperator::Prod, 3, m.a), m.make(QVOperator::Prod, 5, fixed));
  m.maximize(sum);
  m.maximize(m.make(QVOperator::Sum, m.a, 0.5));
  m.close();
  m.solution().setValue(m.a, 1);

  Solution kernelSolution(m.builder().getDag());
  m.builder().loadSolution(m.solution(), kernelSolution);
  EXPECT_EQ(kernelSolution.decisions[m.fixed().getDecisionIndex(m.builder().getNode(m.a))], 1);
  EXPECT_EQ(kernelSolution.decisions[m.fixed().getDecisionIndex(m.builder().getNode(m.b))], 0);
  EXPECT_FALSE(kernelSolution.satisfiedConstraints.contains(m.fixed().posInConstraints[m.builder().getNode(leq)]));
  EXPECT_TRUE(kernelSolution.satisfiedConstraints.contains(m.fixed().posInConstraints[m.builder().getNode(gt)]));
  EXPECT_EQ(kernelSolution.nbViolated, 1U);
  EXPECT_EQ(kernelSolution.objectives, (std::vector<t_value>{8, doubleToWord(1.5)}));
  EXPECT_EQ(m.solution().getValue(fixed), 1);
}

TEST(DagBuilder, AStoredSolutionMakesEverythingElseStale) {
  BuiltModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b);
  m.maximize(sum);
  m.close();
  Solution kernelSolution(m.builder().getDag());
  m.solution().setValue(m.a, 1);
  m.builder().loadSolution(m.solution(), kernelSolution);
  m.solution().clear();
  EXPECT_EQ(m.solution().getValue(sum), 0);
  m.builder().storeSolution(kernelSolution, m.solution());
  EXPECT_EQ(m.solution().getValue(sum), 1);
}

TEST(DagBuilder, ASolutionSurvivesTheRoundTripThroughAnotherDag) {
  BuiltModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.make(QVOperator::Prod, 3, m.a), m.b);
  m.maximize(sum);
  m.close();
  m.solution().setValue(m.a, 1);
  Solution kernelSolution(m.builder().getDag());
  m.builder().loadSolution(m.solution(), kernelSolution);
  Dag& extra = m.builder().getExtraDag(0);
  kernelSolution.restore(extra);
  EXPECT_EQ(extra.nodeValue[m.builder().getNode(sum)], 3);
}

TEST(DagBuilder, ExtraDagsAreMadeOnceAndOnDemand) {
  BuiltModel m;
  m.close();
  Dag& second = m.builder().getExtraDag(1);
  Dag& first = m.builder().getExtraDag(0);
  EXPECT_NE(&first, &second);
  EXPECT_NE(&first, &m.builder().getDag());
  EXPECT_EQ(&m.builder().getExtraDag(1), &second);
  EXPECT_TRUE(first.initialized && second.initialized && m.builder().getDag().initialized);
  EXPECT_EQ(&first.fixed, &m.fixed());
}

TEST(DagBuilder, TheConstraintTreeIsBuiltForTheMovesThatReadIt) {
  const struct {
    std::vector<const char*> switchedOff;
    bool wanted;
  } cases[] = {
      {{}, true},
      {{"advancedMovesEnabled"}, false},
      {{"moveSequenceEnabled"}, true},
      {{"moveSequenceEnabled", "moveEjectionChainEnabled"}, true},
      {{"moveSequenceEnabled", "moveEjectionChainEnabled", "moveBinPackingEnabled"}, false},
  };
  for (const auto& testCase : cases) {
    BuiltModel m;
    m.minimize(m.make(QVOperator::Sum, m.a, m.b));
    for (const char* key : testCase.switchedOff) m.quvex.getParam()->setAdvancedParam(key, 0);
    m.close();
    EXPECT_EQ(m.builder().getStructures().constraintTreeBuilt, testCase.wanted);
  }
}

TEST(DagBuilder, LongChainsNeedNoMachineStack) {
  BuiltModel m;
  QVExpression* expr = m.a;
  for (int i = 0; i < 200000; ++i) expr = m.make(QVOperator::Not, expr);
  m.minimize(expr);
  m.close();
  EXPECT_EQ(m.solution().getValue(expr), 0);
  EXPECT_EQ(GraphText(*m.model).count(NodeType::Not), 200000U);
}

}  // namespace
}  // namespace quvex
