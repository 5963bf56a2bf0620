#include "api/qvexpression.h"

#include <gtest/gtest.h>

#include <vector>

#include "api/modelaccess.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "support/failure.h"
#include "support/forcedstate.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

TEST(QVExpression, TakesThirtyTwoBytes) { EXPECT_EQ(sizeof(QVExpression), 32U); }

TEST(QVExpression, KnowsWhatItIs) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* five = m.constant(std::int64_t{5});
  QVExpression* leq = m.make(QVOperator::Leq, x, five);
  m.model->addConstraint(leq);
  m.minimize(x);
  EXPECT_EQ(x->getQuvex(), &m.quvex);
  EXPECT_EQ(x->getModel(), m.model);
  EXPECT_EQ(leq->getOperator(), QVOperator::Leq);
  EXPECT_EQ(leq->getIndex(), 2);
  EXPECT_TRUE(x->isDecision());
  EXPECT_FALSE(x->isConstant());
  EXPECT_FALSE(x->isConstraint());
  EXPECT_TRUE(x->isObjective());
  EXPECT_TRUE(five->isConstant());
  EXPECT_FALSE(five->isDecision());
  EXPECT_TRUE(leq->isConstraint());
  EXPECT_FALSE(leq->isObjective());
}

TEST(QVExpression, KnowsItsTypeOnceTheModelIsClosed) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x, 2);
  QVExpression* root = m.make(QVOperator::Sqrt, sum);
  m.minimize(root);
  m.close();
  const auto types = [](const QVExpression* expr) {
    return std::vector<bool>{expr->isBool(), expr->isInt(), expr->isDouble()};
  };
  EXPECT_EQ(types(x), (std::vector<bool>{true, false, false}));
  EXPECT_EQ(types(sum), (std::vector<bool>{false, true, false}));
  EXPECT_EQ(types(root), (std::vector<bool>{false, false, true}));
}

// ----------------------------------------------------------------------------------------------------------- operands

TEST(QVExpression, KeepsAnyNumberOfOperandsInOrder) {
  OpenModel m;
  QVExpression* sum = m.make(QVOperator::Sum);
  std::vector<QVExpression*> expected;
  for (int i = 0; i < 100; ++i) {
    expected.push_back(m.decision());
    sum->addOperand(expected.back());
    ASSERT_EQ(sum->getNbOperands(), i + 1);
    int pos = 0;
    for (const QVExpression* operand : expected) ASSERT_EQ(sum->getOperand(pos++), operand);
  }
  EXPECT_EQ(m.model->getNbOperands(), 100);
  EXPECT_EQ(ModelAccess::operandIndices(*sum).size(), 100U);
}

TEST(QVExpression, GrowsItsArrayFromFourCellsToTwiceTheCountAndTwo) {
  OpenModel m;
  QVExpression* sum = m.make(QVOperator::Sum);
  const auto cell = [&](std::size_t pos) { return ModelAccess::operandIndices(*sum).data()[pos]; };
  for (int i = 0; i < 3; ++i) sum->addOperand(m.decision());
  EXPECT_EQ(cell(3), kNone);  // four cells, three of them used
  sum->addOperand(m.decision());
  EXPECT_EQ(cell(3), 4U);  // eight cells
  EXPECT_EQ(cell(4), 0U);
  EXPECT_EQ(cell(6), 0U);
  EXPECT_EQ(cell(7), kNone);
  for (int i = 4; i < 8; ++i) sum->addOperand(m.decision());
  EXPECT_EQ(cell(7), 8U);  // sixteen cells
  EXPECT_EQ(cell(14), 0U);
  EXPECT_EQ(cell(15), kNone);
}

TEST(QVExpression, TakesNumbersAsConstantOperands) {
  OpenModel m;
  QVExpression* sum = m.make(QVOperator::Sum);
  sum->addOperand(4);
  sum->addOperand(std::int64_t{4});
  sum->addOperand(0);
  sum->addOperand(2.5);
  EXPECT_EQ(sum->getOperand(0), sum->getOperand(1));
  EXPECT_EQ(sum->getOperand(2)->getValue(), 0);
  EXPECT_EQ(sum->getOperand(3)->getDoubleValue(), 2.5);
}

TEST(QVExpression, ChecksAnOperandThatIsAdded) {
  OpenModel m;
  OpenModel other;
  QVExpression* x = m.decision();
  QVExpression* foreign = other.decision();
  foreign->setName("y");
  QVExpression* no = m.make(QVOperator::Not);
  const Failure failure = failureOf([&] { no->addOperand(nullptr); });
  EXPECT_EQ(failure.explanation, "Argument expr cannot be null.");
  EXPECT_EQ(failure.function, "quvex::QVExpression::addOperand");
  EXPECT_TRUE(failure.file.ends_with("src/api/qvexpression.cpp")) << failure.file;
  EXPECT_EQ(explanationOf([&] { no->addOperand(foreign); }),
            "Argument Expression 0 (type = bool, name = y) does not belong to this instance of Quvex.");
  EXPECT_EQ(explanationOf([&] { no->addOperand(m.make(QVOperator::Sum)); }),
            "Operand 0 of expression with type 'not' must be boolean");
  no->addOperand(x);
  EXPECT_EQ(explanationOf([&] { no->addOperand(m.make(QVOperator::Sum)); }),
            "Number of operands (2) is too large: at most 1 operands are expected for expression with type 'not'.");
  EXPECT_EQ(explanationOf([&] { no->addOperand(foreign); }),
            "Argument Expression 0 (type = bool, name = y) does not belong to this instance of Quvex.");
  EXPECT_EQ(m.model->getNbOperands(), 1);
}

TEST(QVExpression, NamesTheTypesThatAPositionExpects) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* array = m.make(QVOperator::Array);
  QVExpression* at = m.make(QVOperator::At);
  EXPECT_EQ(explanationOf([&] { at->addOperand(x); }), "Operand 0 of expression with type 'at' must be array");
  at->addOperand(array);
  EXPECT_EQ(explanationOf([&] { at->addOperand(array); }),
            "Operand 1 of expression with type 'at' must be boolean or integer");
  QVExpression* sum = m.make(QVOperator::Sum, x);
  EXPECT_EQ(explanationOf([&] { sum->addOperand(array); }),
            "Operand 1 of expression with type 'sum' must be boolean, integer or double");
}

TEST(QVExpression, GivesConstantsNoOperands) {
  OpenModel m;
  EXPECT_EQ(explanationOf([&] { m.constant(std::int64_t{3})->addOperand(m.decision()); }),
            "Number of operands (1) is too large: at most 0 operands are expected for expression with type 'const'.");
  EXPECT_EQ(m.constant(std::int64_t{3})->getNbOperands(), 0);
}

TEST(QVExpression, TellsANullOperandBeforeAClosedModel) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x);
  m.close();
  EXPECT_EQ(explanationOf([&] { sum->addOperand(nullptr); }), "Argument expr cannot be null.");
  EXPECT_EQ(explanationOf([&] { sum->addOperand(x); }), kModelingOnlyText);
  EXPECT_EQ(explanationOf([&] { sum->addOperand(5); }), kModelingOnlyText);
  EXPECT_EQ(explanationOf([&] { sum->addOperand(0.5); }), kModelingOnlyText);
}

TEST(QVExpression, ReplacesOperands) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* y = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x, x);
  sum->setOperand(1, y);
  EXPECT_EQ(sum->getOperand(0), x);
  EXPECT_EQ(sum->getOperand(1), y);
  sum->addOperand(x);
  sum->setOperand(2, 7);
  sum->setOperand(0, 1.5);
  EXPECT_EQ(sum->getOperand(0)->getDoubleValue(), 1.5);
  EXPECT_EQ(sum->getOperand(1), y);
  EXPECT_EQ(sum->getOperand(2)->getValue(), 7);
  EXPECT_EQ(m.model->getNbOperands(), 3);
}

TEST(QVExpression, HoldsAReplacementAgainstTheNextFreePosition) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* no = m.make(QVOperator::Not, x);
  EXPECT_EQ(explanationOf([&] { no->setOperand(0, x); }),
            "Number of operands (2) is too large: at most 1 operands are expected for expression with type 'not'.");
  QVExpression* array = m.make(QVOperator::Array);
  QVExpression* at = m.make(QVOperator::At, array);
  EXPECT_EQ(explanationOf([&] { at->setOperand(0, array); }),
            "Operand 1 of expression with type 'at' must be boolean or integer");
  at->setOperand(0, x);
  EXPECT_EQ(at->getOperand(0), x);
  at->addOperand(x);
  m.minimize(at);
  EXPECT_EQ(explanationOf([&] { m.model->close(); }),
            "Operand 0 of Expression 3 (type = at) must be array. Type provided: boolean");
}

TEST(QVExpression, ChecksAReplacement) {
  OpenModel m;
  OpenModel other;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x);
  const Failure failure = failureOf([&] { sum->setOperand(4, static_cast<QVExpression*>(nullptr)); });
  EXPECT_EQ(failure.explanation, "Argument expr cannot be null.");
  EXPECT_EQ(failure.function, "quvex::QVExpression::setOperand");
  for (const int pos : {-1, 1}) {
    EXPECT_EQ(explanationOf([&] { sum->setOperand(pos, other.decision()); }),
              "The operands with index " + std::to_string(pos) +
                  " does not exist.\nOnly indices from 0 to 0 are currently allowed.");
  }
  EXPECT_EQ(explanationOf([&] { other.make(QVOperator::Sum, other.decision())->setOperand(0, x); }),
            "Argument Expression 0 (type = bool) does not belong to this instance of Quvex.");
}

TEST(QVExpression, ReplacesOperandsOfAClosedModelByExpressionsOnly) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* y = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x);
  m.close();
  sum->setOperand(0, y);
  EXPECT_EQ(sum->getOperand(0), y);
  EXPECT_EQ(explanationOf([&] { sum->setOperand(0, 3); }), kModelingOnlyText);
  EXPECT_EQ(explanationOf([&] { sum->setOperand(0, 3.5); }), kModelingOnlyText);
}

TEST(QVExpression, RefusesOperandIndicesOutOfRange) {
  OpenModel m;
  QVExpression* sum = m.make(QVOperator::Sum, m.decision(), m.decision());
  EXPECT_EQ(explanationOf([&] { (void)sum->getOperand(2); }),
            "The operands with index 2 does not exist.\nOnly indices from 0 to 1 are currently allowed.");
  EXPECT_EQ(explanationOf([&] { (void)sum->getOperand(-1); }),
            "The operands with index -1 does not exist.\nOnly indices from 0 to 1 are currently allowed.");
  EXPECT_EQ(explanationOf([&] { (void)m.decision()->getOperand(0); }),
            "The operands with index 0 does not exist.\nOnly indices from 0 to -1 are currently allowed.");
}

// ------------------------------------------------------------------------------------------------------------- values

TEST(QVExpression, ReadsConstantsInAnyStateButRunning) {
  OpenModel m;
  QVExpression* five = m.constant(std::int64_t{5});
  QVExpression* half = m.constant(0.5);
  EXPECT_EQ(five->getValue(), 5);
  EXPECT_EQ(five->getIntValue(), 5);
  EXPECT_EQ(half->getDoubleValue(), 0.5);
  EXPECT_EQ(explanationOf([&] { (void)half->getValue(); }),
            "Cannot use this method. The given expression must be boolean or integer.");
  EXPECT_EQ(explanationOf([&] { (void)half->getIntValue(); }),
            "Cannot use this method. The given expression must be boolean or integer.");
  EXPECT_EQ(explanationOf([&] { (void)five->getDoubleValue(); }),
            "Cannot use this method. The given expression must be double.");
  const ForcedState forced(m.quvex, QVState::Running);
  EXPECT_EQ(explanationOf([&] { (void)half->getValue(); }), kNotRunningText);
  EXPECT_EQ(explanationOf([&] { (void)five->getIntValue(); }), kNotRunningText);
  EXPECT_EQ(explanationOf([&] { (void)half->getDoubleValue(); }), kNotRunningText);
}

TEST(QVExpression, ReadsAndSetsTheCurrentSolution) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x, 4);
  QVExpression* scaled = m.make(QVOperator::Prod, sum, 0.5);
  m.minimize(scaled);
  m.close();
  EXPECT_EQ(x->getValue(), 0);
  EXPECT_EQ(sum->getValue(), 4);
  x->setValue(1);
  EXPECT_EQ(sum->getIntValue(), 5);
  EXPECT_EQ(scaled->getDoubleValue(), 2.5);
  x->setIntValue(0);
  EXPECT_EQ(x->getIntValue(), 0);
  EXPECT_EQ(scaled->getDoubleValue(), 2.0);
}

TEST(QVExpression, LeavesTheChecksOfValuesToTheSolution) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x, 4);
  m.minimize(sum);
  m.close();
  const Failure failure = failureOf([&] { sum->setIntValue(3); });
  EXPECT_EQ(failure.explanation, "Only decisions can be set.");
  EXPECT_EQ(failure.function, "quvex::QVSolution::setIntValue");
  EXPECT_EQ(failureOf([&] { sum->setValue(3); }).function, "quvex::QVSolution::setValue");
  EXPECT_EQ(failureOf([&] { x->setDoubleValue(3); }).explanation,
            "Cannot use this method. The given expression must be double.");
  EXPECT_EQ(failureOf([&] { (void)sum->getDoubleValue(); }).function, "quvex::QVSolution::getDoubleValue");
}

TEST(QVExpression, TellsAStateRuleBeforeAValueIsAskedFor) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x);
  const Failure failure = failureOf([&] { (void)sum->getValue(); });
  EXPECT_EQ(failure.explanation, kPausedOrStoppedText);
  EXPECT_EQ(failure.function, "quvex::QVExpression::getValue");
  EXPECT_EQ(explanationOf([&] { (void)sum->getIntValue(); }), kPausedOrStoppedText);
  EXPECT_EQ(explanationOf([&] { (void)sum->getDoubleValue(); }), kPausedOrStoppedText);
}

// -------------------------------------------------------------------------------------------------------------- names

TEST(QVExpression, IsNamedOnce) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* y = m.decision();
  EXPECT_FALSE(x->isNamed());
  EXPECT_EQ(x->getName(), "");
  x->setName("x");
  EXPECT_TRUE(x->isNamed());
  EXPECT_EQ(x->getName(), "x");
  const Failure failure = failureOf([&] { y->setName("x"); });
  EXPECT_EQ(failure.explanation, "An operator with name \"x\" already exists.");
  EXPECT_EQ(failure.function, "quvex::QVExpression::setName");
  EXPECT_EQ(explanationOf([&] { x->setName("x"); }), "An operator with name \"x\" already exists.");
  EXPECT_EQ(explanationOf([&] { y->setName(""); }), "Argument name cannot be an empty string.");
  EXPECT_FALSE(y->isNamed());
}

TEST(QVExpression, GivesUpItsNameForANewOne) {
  OpenModel m;
  QVExpression* x = m.decision();
  x->setName("old");
  x->setName("new");
  EXPECT_EQ(x->getName(), "new");
  EXPECT_EQ(m.model->getExpression("new"), x);
  EXPECT_EQ(explanationOf([&] { (void)m.model->getExpression("old"); }), "No operator found with name 'old'.");
  m.decision()->setName("old");
  EXPECT_EQ(m.model->getExpression("old")->getIndex(), 1);
}

// --------------------------------------------------------------------------------------------------------------- text

TEST(QVExpression, DescribesItself) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x);
  EXPECT_EQ(sum->toString(), "Expression 1 (type = sum)");
  sum->setName("total");
  EXPECT_EQ(sum->toString(), "Expression 1 (type = sum, name = total)");
  m.model->addConstraint(x);
  m.minimize(sum);
  EXPECT_EQ(x->getInfo(), "Expression 0 (type = bool)\n  decision = 1, constraint = 1, objective = 0\n");
  EXPECT_EQ(sum->getInfo(), "Expression 1 (type = sum, name = total)\n  decision = 0, constraint = 0, objective = 1\n");
}

TEST(QVExpression, ShowsTheValueOfAConstantAtAnyTime) {
  OpenModel m;
  EXPECT_EQ(m.constant(std::int64_t{-5})->getInfo(),
            "Expression 0 (type = const)\n  decision = 0, constraint = 0, objective = 0\n  value = -5\n");
  EXPECT_EQ(m.constant(2.5)->getInfo(),
            "Expression 1 (type = const)\n  decision = 0, constraint = 0, objective = 0\n  value = 2.5\n");
}

TEST(QVExpression, ShowsOtherValuesOnlyOnceTheSolverHasBeenStarted) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* half = m.make(QVOperator::Prod, x, 0.5);
  QVExpression* array = m.make(QVOperator::Array, x);
  m.maximize(half);
  m.close();
  const std::string roles = "  decision = 1, constraint = 0, objective = 0\n";
  EXPECT_EQ(x->getInfo(), "Expression 0 (type = bool)\n" + roles);
  m.quvex.getParam()->setVerbosity(0);
  m.quvex.getParam()->setNbThreads(1);
  m.quvex.createPhase()->setIterationLimit(100);
  m.quvex.solve();
  EXPECT_EQ(x->getInfo(), "Expression 0 (type = bool)\n" + roles + "  value = 1\n");
  EXPECT_EQ(half->getInfo(),
            "Expression 2 (type = prod)\n  decision = 0, constraint = 0, objective = 1\n  value = 0.5\n");
  EXPECT_EQ(array->getInfo(), "Expression 3 (type = array)\n  decision = 0, constraint = 0, objective = 0\n");
  m.model->open();
  EXPECT_EQ(x->getInfo(), "Expression 0 (type = bool)\n" + roles);
}

// -------------------------------------------------------------------------------------------------------- state rules

TEST(QVExpression, RefusesEveryQueryWhileRunning) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x);
  const auto expectNotRunning = [&](const std::string& method, auto call) {
    expectRule(m.quvex, StateRule::NotRunning, "quvex::QVExpression::" + method, call);
    for (const QVState state : {QVState::Modeling, QVState::Paused, QVState::Stopped}) {
      const ForcedState forced(m.quvex, state);
      EXPECT_FALSE(failureOf(call).raised()) << method;
    }
  };
  expectNotRunning("getQuvex", [&] { (void)sum->getQuvex(); });
  expectNotRunning("getModel", [&] { (void)sum->getModel(); });
  expectNotRunning("getOperator", [&] { (void)sum->getOperator(); });
  expectNotRunning("getIndex", [&] { (void)sum->getIndex(); });
  expectNotRunning("isConstant", [&] { (void)sum->isConstant(); });
  expectNotRunning("isDecision", [&] { (void)sum->isDecision(); });
  expectNotRunning("isConstraint", [&] { (void)sum->isConstraint(); });
  expectNotRunning("isObjective", [&] { (void)sum->isObjective(); });
  expectNotRunning("getOperand", [&] { (void)sum->getOperand(0); });
  expectNotRunning("getNbOperands", [&] { (void)sum->getNbOperands(); });
  expectNotRunning("setOperand", [&] { sum->setOperand(0, x); });
  expectNotRunning("isNamed", [&] { (void)sum->isNamed(); });
  expectNotRunning("getName", [&] { (void)sum->getName(); });
  expectNotRunning("toString", [&] { (void)sum->toString(); });
  expectNotRunning("getInfo", [&] { (void)sum->getInfo(); });
  expectRule(m.quvex, StateRule::NotRunning, "quvex::QVExpression::addOperand", [&] { sum->addOperand(nullptr); });
}

TEST(QVExpression, TellsTypesAndTakesValuesInStatesPausedAndStoppedOnly) {
  OpenModel m;
  QVExpression* x = m.decision();
  const auto expectPausedOrStopped = [&](const std::string& method, auto call) {
    expectRule(m.quvex, StateRule::PausedOrStopped, "quvex::QVExpression::" + method, call);
  };
  expectPausedOrStopped("isDouble", [&] { (void)x->isDouble(); });
  expectPausedOrStopped("isInt", [&] { (void)x->isInt(); });
  expectPausedOrStopped("isBool", [&] { (void)x->isBool(); });
  expectPausedOrStopped("setValue", [&] { x->setValue(1); });
  expectPausedOrStopped("setIntValue", [&] { x->setIntValue(1); });
  expectPausedOrStopped("setDoubleValue", [&] { x->setDoubleValue(1.0); });
}

TEST(QVExpression, IsNamedInStateModelingOnly) {
  OpenModel m;
  QVExpression* x = m.decision();
  expectRule(m.quvex, StateRule::ModelingOnly, "quvex::QVExpression::setName", [&] { x->setName(""); });
}

}  // namespace
}  // namespace quvex
