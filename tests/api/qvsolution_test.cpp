#include "api/qvsolution.h"

#include <gtest/gtest.h>

#include "api/modelaccess.h"
#include "api/qvparam.h"
#include "support/failure.h"
#include "support/forcedstate.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

struct SolvedModel : OpenModel {
  QVExpression* a = decision();
  QVExpression* b = decision();

  QVSolution& solution() { return *quvex.getSolution(); }
  void constrain(QVExpression* expr) { model->addConstraint(expr); }
};

TEST(QVSolution, StartsFromZeroAndTheConstants) {
  SolvedModel m;
  QVExpression* seven = m.constant(std::int64_t{7});
  QVExpression* half = m.constant(0.5);
  m.close();
  EXPECT_EQ(m.solution().getQuvex(), &m.quvex);
  EXPECT_EQ(m.solution().getValue(m.a), 0);
  EXPECT_EQ(m.solution().getIntValue(seven), 7);
  EXPECT_EQ(m.solution().getDoubleValue(half), 0.5);
}

TEST(QVSolution, ValuesFollowTheDecisions) {
  SolvedModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.make(QVOperator::Prod, 3, m.a), m.b);
  QVExpression* real = m.make(QVOperator::Prod, sum, 0.5);
  QVExpression* at = m.make(QVOperator::At, m.make(QVOperator::Array, sum, 9), m.b);
  QVExpression* scalar =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, m.a, m.b), m.make(QVOperator::Array, 10, sum));
  m.close();
  m.solution().setValue(m.a, 1);
  EXPECT_EQ(m.solution().getValue(sum), 3);
  EXPECT_EQ(m.solution().getDoubleValue(real), 1.5);
  EXPECT_EQ(m.solution().getValue(at), 3);
  EXPECT_EQ(m.solution().getValue(scalar), 10);
  m.solution().setIntValue(m.b, 1);
  EXPECT_EQ(m.solution().getValue(sum), 4);
  EXPECT_EQ(m.solution().getValue(at), 9);
  EXPECT_EQ(m.solution().getValue(scalar), 14);
}

TEST(QVSolution, OperandsMayComeAfterTheirUsers) {
  SolvedModel m;
  QVExpression* sum = m.model->createExpression(QVOperator::Sum);
  sum->addOperand(m.make(QVOperator::Not, m.make(QVOperator::Not, m.a)));
  m.close();
  m.solution().setValue(m.a, 1);
  EXPECT_EQ(m.solution().getValue(sum), 1);
}

TEST(QVSolution, OnlyDecisionsCanBeSet) {
  SolvedModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b);
  QVExpression* root = m.make(QVOperator::Sqrt, m.a);
  m.close();
  const Failure failure = failureOf([&] { m.solution().setIntValue(sum, 1); });
  EXPECT_EQ(failure.explanation, "Only decisions can be set.");
  EXPECT_EQ(failure.function, "quvex::QVSolution::setIntValue");
  EXPECT_EQ(failure.file, "src/api/qvsolution.cpp");
  EXPECT_FALSE(failure.isKernel);
  EXPECT_EQ(explanationOf([&] { m.solution().setValue(m.constant(std::int64_t{0}), 1); }).substr(0, 14),
            "This method is");
  EXPECT_EQ(explanationOf([&] { m.solution().setDoubleValue(root, 1); }), "Only decisions can be set.");
}

TEST(QVSolution, ABooleanIsSetToZeroOrOne) {
  SolvedModel m;
  m.constrain(m.make(QVOperator::Gt, m.a, m.b));
  m.close();
  for (const int value : {2, -1}) {
    const Failure failure = failureOf([&] { m.solution().setIntValue(m.a, value); });
    EXPECT_EQ(failure.explanation, "The only allowed values are 0 or 1");
  }
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Infeasible);
  m.solution().setIntValue(m.a, 1);
  EXPECT_NE(m.solution().getStatus(), QVSolutionStatus::Infeasible);
}

TEST(QVSolution, TypesAreChecked) {
  SolvedModel m;
  QVExpression* root = m.make(QVOperator::Sqrt, m.a);
  QVExpression* array = m.make(QVOperator::Array, m.a);
  m.close();
  const char* integerText = "Cannot use this method. The given expression must be boolean or integer.";
  const char* doubleText = "Cannot use this method. The given expression must be double.";
  EXPECT_EQ(explanationOf([&] { m.solution().setDoubleValue(m.a, 1.0); }), doubleText);
  EXPECT_EQ(explanationOf([&] { (void)m.solution().getDoubleValue(m.a); }), doubleText);
  EXPECT_EQ(explanationOf([&] { m.solution().setValue(root, 1); }), integerText);
  EXPECT_EQ(explanationOf([&] { (void)m.solution().getValue(root); }), integerText);
  EXPECT_EQ(explanationOf([&] { (void)m.solution().getIntValue(array); }), integerText);
}

TEST(QVSolution, ArgumentsMustExistAndBelongHere) {
  SolvedModel m;
  SolvedModel other;
  m.close();
  EXPECT_EQ(explanationOf([&] { (void)m.solution().getValue(nullptr); }), "Argument expr cannot be null.");
  EXPECT_EQ(explanationOf([&] { m.solution().setValue(other.a, 1); }),
            "Argument expr does not belong to this instance of Quvex.");
}

TEST(QVSolution, FollowsTheStateRules) {
  SolvedModel m;
  QVExpression* root = m.make(QVOperator::Sqrt, m.a);
  m.close();
  QVSolution& solution = m.solution();
  const std::string name = "quvex::QVSolution::";
  const auto readable = StateRule::PausedOrStopped;
  expectRule(m.quvex, readable, name + "setValue", [&] { solution.setValue(m.a, 1); });
  expectRule(m.quvex, readable, name + "setIntValue", [&] { solution.setIntValue(m.a, 1); });
  expectRule(m.quvex, readable, name + "setDoubleValue", [&] { solution.setDoubleValue(root, 1); });
  expectRule(m.quvex, readable, name + "getValue", [&] { (void)solution.getValue(m.a); });
  expectRule(m.quvex, readable, name + "getIntValue", [&] { (void)solution.getIntValue(m.a); });
  expectRule(m.quvex, readable, name + "getDoubleValue", [&] { (void)solution.getDoubleValue(root); });
  expectRule(m.quvex, readable, name + "getStatus", [&] { (void)solution.getStatus(); });
  expectRule(m.quvex, StateRule::StoppedOnly, name + "clear", [&] { solution.clear(); });
  expectRule(m.quvex, StateRule::NotRunning, name + "getQuvex", [&] { (void)solution.getQuvex(); });
}

// ------------------------------------------------------------------------------------------------------------- status

TEST(QVSolution, AConstraintFoldedToFalseIsInconsistentBeforeAnySearch) {
  SolvedModel m;
  m.constrain(m.make(QVOperator::Leq, 3, 2));
  m.close();
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Inconsistent);
}

TEST(QVSolution, AConstraintThatItsBoundsExcludeIsInconsistent) {
  SolvedModel m;
  m.constrain(m.make(QVOperator::Geq, m.make(QVOperator::Sum, m.a, m.b), 3));
  m.close();
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Inconsistent);
}

TEST(QVSolution, AConstraintFoldedToTrueIsNot) {
  SolvedModel m;
  m.constrain(m.make(QVOperator::Leq, 2, 3));
  m.constrain(m.make(QVOperator::Eq, m.a, 0));
  m.minimize(m.make(QVOperator::Sum, m.b, -1));
  m.close();
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Optimal);
}

TEST(QVSolution, IsOptimalWhenEveryObjectiveIsAtItsComputedBound) {
  SolvedModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b);
  m.maximize(sum);
  m.minimize(m.make(QVOperator::Sum, m.a, 0.5));
  m.close();
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Feasible);
  m.solution().setValue(m.a, 1);
  m.solution().setValue(m.b, 1);
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Feasible);
}

TEST(QVSolution, IsOptimalAtTheComputedMaximumWithoutAConstraint) {
  SolvedModel m;
  m.maximize(m.make(QVOperator::Sum, m.a, m.b));
  m.close();
  m.solution().setValue(m.a, 1);
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Feasible);
  m.solution().setValue(m.b, 1);
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Optimal);
}

TEST(QVSolution, AnObjectiveBoundIsAsGoodAsTheComputedOne) {
  SolvedModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b);
  QVExpression* real = m.make(QVOperator::Prod, -1.5, m.b);
  m.maximize(sum);
  m.minimize(real);
  m.close();
  m.quvex.getParam()->setObjectiveBound(0, 1);
  m.solution().setValue(m.a, 1);
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Feasible);
  m.quvex.getParam()->setDoubleObjectiveBound(1, 0.0);
  m.solution().setValue(m.a, 1);
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Optimal);
}

TEST(QVSolution, ADoubleObjectiveReachesItsTargetWithinTheTolerance) {
  SolvedModel m;
  m.maximize(m.make(QVOperator::Sum, m.make(QVOperator::Prod, 1000000.0, m.a), m.make(QVOperator::Prod, 0.1, m.b)));
  m.close();
  m.solution().setValue(m.a, 1);
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Optimal);
}

TEST(QVSolution, AnUnknownDirectionAsksForNothing) {
  SolvedModel m;
  m.model->addObjective(m.make(QVOperator::Sum, m.a, m.b), static_cast<QVObjectiveDirection>(7));
  m.minimize(m.a);
  m.close();
  EXPECT_EQ(m.solution().getStatus(), QVSolutionStatus::Optimal);
}

// -------------------------------------------------------------------------------------------------------------- clear

TEST(QVSolution, ClearMakesEvenConstantsReadZero) {
  SolvedModel m;
  QVExpression* seven = m.constant(std::int64_t{7});
  QVExpression* half = m.constant(0.5);
  QVExpression* sum = m.make(QVOperator::Sum, m.a, seven);
  m.close();
  m.solution().setValue(m.a, 1);
  EXPECT_EQ(m.solution().getValue(sum), 8);
  m.solution().clear();
  EXPECT_EQ(m.solution().getValue(seven), 0);
  EXPECT_EQ(m.solution().getDoubleValue(half), 0.0);
  EXPECT_EQ(m.solution().getValue(sum), 0);
  m.model->open();
  m.model->close();
  EXPECT_EQ(m.solution().getValue(seven), 7);
}

// ----------------------------------------------------------------------------------------------------------- failures

TEST(QVSolution, FailuresOfTheArithmeticComeOutOfTheGetterUntilTheDecisionsChange) {
  SolvedModel m;
  QVExpression* quotient = m.make(QVOperator::Div, 6, m.make(QVOperator::Sum, m.a, m.a, m.b));
  m.quvex.getParam()->setAdvancedParam("preprocessEnabled", 0);
  const Failure closing = failureOf([&] { m.close(); });
  EXPECT_EQ(closing.explanation, "Division by zero.") << "the first state of the graph divides by zero";

  SolvedModel n;
  quotient = n.make(QVOperator::Div, 6, n.make(QVOperator::Sum, n.make(QVOperator::Not, n.a), n.b));
  QVExpression* other = n.make(QVOperator::Sum, n.a, 1);
  n.close();
  n.solution().setValue(n.a, 1);
  for (int i = 0; i < 2; ++i) {
    const Failure failure = failureOf([&] { (void)n.solution().getValue(other); });
    EXPECT_EQ(failure.explanation, "Division by zero.");
    EXPECT_TRUE(failure.isKernel);
  }
  n.solution().setValue(n.b, 1);
  EXPECT_EQ(n.solution().getValue(quotient), 6);
}

TEST(QVSolution, ACycleMadeBehindTheCloseIsRefused) {
  SolvedModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.a, m.b);
  m.close();
  sum->setOperand(0, sum);
  EXPECT_EQ(explanationOf([&] { (void)m.solution().getValue(sum); }), "A cycle was detected in the model.");
}

TEST(QVSolution, LongChainsNeedNoMachineStack) {
  SolvedModel m;
  QVExpression* first = m.model->createExpression(QVOperator::Not);
  QVExpression* last = first;
  for (int i = 1; i < 200000; ++i) {
    QVExpression* next = m.model->createExpression(QVOperator::Not);
    last->addOperand(next);
    last = next;
  }
  last->addOperand(m.a);
  m.close();
  EXPECT_EQ(m.solution().getValue(first), 0);
  m.solution().setValue(m.a, 1);
  EXPECT_EQ(m.solution().getValue(first), 1);
}

}  // namespace
}  // namespace quvex
