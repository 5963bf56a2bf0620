#include "api/qvmodel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "api/modelaccess.h"
#include "api/statecheck.h"
#include "support/failure.h"
#include "support/forcedstate.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

constexpr const char* kNotBoolean =
    "Only boolean expressions can be constrained (0, 1, bool, and, or, xor, not, eq, neq, geq, leq, gt, lt, if).";

TEST(QVModel, BelongsToItsSolver) {
  OpenModel m;
  EXPECT_EQ(m.model->getQuvex(), &m.quvex);
}

// ---------------------------------------------------------------------------------------------------------- constants

TEST(QVModel, SharesIntegerConstants) {
  OpenModel m;
  QVExpression* one = m.constant(std::int64_t{1});
  EXPECT_EQ(m.constant(std::int64_t{1}), one);
  EXPECT_NE(m.constant(std::int64_t{-1}), one);
  EXPECT_EQ(m.model->getNbExpressions(), 2);
  EXPECT_EQ(one->getOperator(), QVOperator::Const);
}

TEST(QVModel, MakesANewDoubleConstantOnEveryCall) {
  OpenModel m;
  QVExpression* first = m.constant(1.0);
  QVExpression* second = m.constant(1.0);
  EXPECT_NE(first, second);
  EXPECT_EQ(ModelAccess::valueType(*first), kDouble);
  EXPECT_EQ(ModelAccess::valueType(*second), kDouble);
}

TEST(QVModel, TypesIntegerConstantsByTheirValue) {
  OpenModel m;
  EXPECT_EQ(ModelAccess::valueType(*m.constant(std::int64_t{0})), kBoolean);
  EXPECT_EQ(ModelAccess::valueType(*m.constant(std::int64_t{1})), kBoolean);
  EXPECT_EQ(ModelAccess::valueType(*m.constant(std::int64_t{2})), kInteger);
  EXPECT_EQ(ModelAccess::valueType(*m.constant(std::int64_t{-1})), kInteger);
  EXPECT_EQ(m.constant(kLowestInt)->getValue(), kLowestInt);
}

TEST(QVModel, TakesEveryKindOfIntegerAsAConstant) {
  OpenModel m;
  EXPECT_EQ(m.model->createConstant(7), m.model->createConstant(std::int64_t{7}));
  EXPECT_EQ(m.model->createConstant(7U), m.model->createConstant(7));
  EXPECT_EQ(m.model->createConstant(true), m.model->createConstant(1));
}

TEST(QVModel, RefusesDoublesThatAreNoNumbers) {
  OpenModel m;
  EXPECT_EQ(explanationOf([&] { m.constant(std::nan("")); }), "Cannot use NaN (Not a Number) as a double constant.");
  EXPECT_EQ(explanationOf([&] { m.constant(kInfinity); }), "Cannot use infinity as a double constant.");
  EXPECT_EQ(explanationOf([&] { m.constant(-kInfinity); }), "Cannot use infinity as a double constant.");
  EXPECT_EQ(m.model->getNbExpressions(), 0);
}

// -------------------------------------------------------------------------------------------------------- expressions

TEST(QVModel, NumbersExpressionsInCreationOrder) {
  OpenModel m;
  QVExpression* a = m.decision();
  QVExpression* b = m.decision();
  QVExpression* both = m.make(QVOperator::And, a, b);
  EXPECT_EQ(a->getIndex(), 0);
  EXPECT_EQ(both->getIndex(), 2);
  EXPECT_EQ(m.model->getExpression(1), b);
  EXPECT_EQ(m.model->getNbExpressions(), 3);
  EXPECT_EQ(m.model->getNbOperands(), 2);
  EXPECT_EQ(m.model->getNbDecisions(), 2);
  EXPECT_EQ(m.model->getDecision(1), b);
}

TEST(QVModel, CreatesExpressionsWithUpToThreeOperands) {
  OpenModel m;
  QVExpression* a = m.decision();
  QVExpression* b = m.decision();
  QVExpression* c = m.decision();
  EXPECT_EQ(m.make(QVOperator::Sum)->getNbOperands(), 0);
  EXPECT_EQ(m.make(QVOperator::Not, a)->getOperand(0), a);
  QVExpression* choice = m.make(QVOperator::Iif, a, b, c);
  EXPECT_EQ(choice->getOperand(0), a);
  EXPECT_EQ(choice->getOperand(1), b);
  EXPECT_EQ(choice->getOperand(2), c);
  EXPECT_EQ(m.model->getNbOperands(), 4);
}

TEST(QVModel, MakesConstantsOfLiteralOperandsFromTheLastToTheFirst) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, 5, x, 7);
  EXPECT_EQ(m.model->getExpression(1)->getValue(), 7);
  EXPECT_EQ(m.model->getExpression(2)->getValue(), 5);
  EXPECT_EQ(sum->getIndex(), 3);
  EXPECT_EQ(sum->getOperand(0)->getValue(), 5);
  EXPECT_EQ(sum->getOperand(1), x);
  EXPECT_EQ(sum->getOperand(2)->getValue(), 7);
  EXPECT_EQ(m.make(QVOperator::Prod, 2.5, x)->getOperand(0)->getDoubleValue(), 2.5);
  EXPECT_EQ(m.make(QVOperator::Sqrt, 2)->getOperand(0)->getValue(), 2);
}

TEST(QVModel, RefusesToCreateConstantsAsExpressions) {
  OpenModel m;
  const Failure failure = failureOf([&] { m.make(QVOperator::Const); });
  EXPECT_EQ(failure.explanation, "Cannot create constants with this method. Use 'createConstant' instead.");
  EXPECT_EQ(failure.function, "quvex::QVModel::createExpression");
  EXPECT_TRUE(failure.file.ends_with("src/api/qvmodel.cpp")) << failure.file;
  EXPECT_FALSE(failure.isKernel);
}

TEST(QVModel, RefusesNumbersThatAreNoOperator) {
  OpenModel m;
  QVExpression* x = m.decision();
  for (const int number : {-1, 34, 256, 300}) {
    const auto op = static_cast<QVOperator>(number);
    const std::string text = "Unknown operator : " + std::to_string(number);
    EXPECT_EQ(explanationOf([&] { m.make(op); }), text);
    EXPECT_EQ(explanationOf([&] { m.make(op, x); }), text);
  }
  EXPECT_EQ(m.model->getNbExpressions(), 1);
}

TEST(QVModel, NamesTheNullOperand) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* null = nullptr;
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Not, null); }), "Argument expr0 cannot be null.");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Sum, null, null); }), "Argument expr0 cannot be null.");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Sum, x, null); }), "Argument expr1 cannot be null.");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Sum, x, x, null); }), "Argument expr2 cannot be null.");
}

TEST(QVModel, NamesTheForeignOperand) {
  OpenModel m;
  OpenModel other;
  QVExpression* x = m.decision();
  QVExpression* foreign = other.decision();
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Not, foreign); }),
            "Argument expr0 does not belong to this instance of Quvex.");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Sum, x, foreign); }),
            "Argument expr1 does not belong to this instance of Quvex.");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Sum, x, x, foreign); }),
            "Argument expr2 does not belong to this instance of Quvex.");
  EXPECT_EQ(m.model->getNbExpressions(), 1);
}

TEST(QVModel, ChecksOperandsOneAfterTheOther) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x);
  QVExpression* null = nullptr;
  // The first operand of a "not" must be boolean, which is found before the second one is one too many.
  const Failure failure = failureOf([&] { m.make(QVOperator::Not, sum, null); });
  EXPECT_EQ(failure.explanation, "Operand 0 of expression with type 'not' must be boolean");
  EXPECT_EQ(failure.function, "quvex::QVModel::createExpression");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Not, x, null); }), "Argument expr1 cannot be null.");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Not, x, x); }),
            "Number of operands (2) is too large: at most 1 operands are expected for expression with type 'not'.");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Bool, x); }),
            "Number of operands (1) is too large: at most 0 operands are expected for expression with type 'bool'.");
  EXPECT_EQ(explanationOf([&] { m.make(QVOperator::Mod, x, m.make(QVOperator::Sqrt, x)); }),
            "Operand 1 of expression with type 'mod' must be boolean or integer");
}

TEST(QVModel, KeepsTheExpressionsThatExistWhenACreationFails) {
  OpenModel m;
  QVExpression* x = m.decision();
  EXPECT_TRUE(failureOf([&] { m.make(QVOperator::Ceil, x); }).raised());
  EXPECT_EQ(m.model->getNbExpressions(), 1);
  EXPECT_EQ(m.model->getNbOperands(), 0);
}

TEST(QVModel, KeepsRecordsInPlaceWhileThousandsFollow) {
  OpenModel m;
  QVExpression* first = m.decision();
  for (int i = 1; i < 20000; ++i) m.decision();
  EXPECT_EQ(m.model->getExpression(0), first);
  EXPECT_EQ(first->getIndex(), 0);
  EXPECT_EQ(m.model->getExpression(19999)->getIndex(), 19999);
}

// ----------------------------------------------------------------------------------------------------- names, indices

TEST(QVModel, FindsExpressionsByName) {
  OpenModel m;
  QVExpression* x = m.decision();
  x->setName("x");
  EXPECT_EQ(m.model->getExpression("x"), x);
  EXPECT_EQ(explanationOf([&] { (void)m.model->getExpression(""); }), "Argument name cannot be an empty string.");
  EXPECT_EQ(explanationOf([&] { (void)m.model->getExpression("w"); }), "No operator found with name 'w'.");
  EXPECT_EQ(explanationOf([&] { (void)m.model->getExpression("xy"); }), "No operator found with name 'xy'.");
}

TEST(QVModel, RefusesIndicesOutOfRange) {
  OpenModel m;
  m.model->addConstraint(m.decision());
  m.minimize(m.decision());
  const auto text = [](const std::string& what, const std::string& index, const std::string& last) {
    return "The " + what + " with index " + index + " does not exist.\nOnly indices from 0 to " + last +
           " are currently allowed.";
  };
  EXPECT_EQ(explanationOf([&] { (void)m.model->getExpression(2); }), text("expression", "2", "1"));
  EXPECT_EQ(explanationOf([&] { (void)m.model->getExpression(-1); }), text("expression", "-1", "1"));
  EXPECT_EQ(explanationOf([&] { (void)m.model->getDecision(2); }), text("decision", "2", "1"));
  EXPECT_EQ(explanationOf([&] { (void)m.model->getConstraint(1); }), text("constraint", "1", "0"));
  EXPECT_EQ(explanationOf([&] { (void)m.model->getObjective(1); }), text("objective", "1", "0"));
  EXPECT_EQ(explanationOf([&] { (void)m.model->getObjectiveDirection(-7); }), text("objective", "-7", "0"));
  OpenModel empty;
  EXPECT_EQ(explanationOf([&] { (void)empty.model->getExpression(0); }), text("expression", "0", "-1"));
}

TEST(QVModel, RefusesCountsAtTheirLimit) {
  const Place place = here<QVModel>();
  EXPECT_FALSE(failureOf([&] { checkCount("expressions", kMaxCount - 1, place); }).raised());
  for (const std::string what : {"expressions", "constraints", "objectives"}) {
    EXPECT_EQ(explanationOf([&] { checkCount(what, kMaxCount, place); }),
              "Number of " + what + " cannot exceed 2147483647.");
  }
  EXPECT_FALSE(failureOf([&] { checkTotalOperands(kMaxCount - 1, place); }).raised());
  EXPECT_EQ(explanationOf([&] { checkTotalOperands(kMaxCount, place); }),
            "The total number of operands in the model cannot exceed 2147483647.");
}

// ---------------------------------------------------------------------------------------- constraints and objectives

TEST(QVModel, ListsConstraintsOnce) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* y = m.decision();
  m.model->addConstraint(y);
  m.model->addConstraint(x);
  m.model->addConstraint(y);
  EXPECT_EQ(m.model->getNbConstraints(), 2);
  EXPECT_EQ(m.model->getConstraint(0), y);
  EXPECT_EQ(m.model->getConstraint(1), x);
  EXPECT_TRUE(x->isConstraint());
}

TEST(QVModel, ConstrainsWhatCanBeBoolean) {
  OpenModel m;
  QVExpression* x = m.decision();
  m.model->addConstraint(m.make(QVOperator::Iif, x, x, x));
  m.model->addConstraint(m.make(QVOperator::Leq, x, 5));
  m.model->addConstraint(m.constant(std::int64_t{0}));
  const Failure failure = failureOf([&] { m.model->addConstraint(m.make(QVOperator::Sum, x)); });
  EXPECT_EQ(failure.explanation, kNotBoolean);
  EXPECT_EQ(failure.function, "quvex::QVModel::addConstraint");
  EXPECT_EQ(explanationOf([&] { m.model->addConstraint(m.constant(std::int64_t{5})); }), kNotBoolean);
  EXPECT_EQ(explanationOf([&] { m.model->addConstraint(m.constant(1.0)); }), kNotBoolean);
  EXPECT_EQ(explanationOf([&] { m.model->addConstraint(m.make(QVOperator::Array)); }), kNotBoolean);
  EXPECT_EQ(m.model->getNbConstraints(), 3);
}

TEST(QVModel, ChecksTheArgumentOfConstraintsAndObjectives) {
  OpenModel m;
  OpenModel other;
  QVExpression* foreign = other.decision();
  EXPECT_EQ(explanationOf([&] { m.model->addConstraint(nullptr); }), "Argument expr cannot be null.");
  EXPECT_EQ(explanationOf([&] { m.model->addConstraint(foreign); }),
            "Argument expr does not belong to this instance of Quvex.");
  EXPECT_EQ(explanationOf([&] { m.minimize(nullptr); }), "Argument expr cannot be null.");
  EXPECT_EQ(explanationOf([&] { m.minimize(foreign); }), "Argument expr does not belong to this instance of Quvex.");
  EXPECT_EQ(explanationOf([&] { m.minimize(m.make(QVOperator::Array)); }),
            "Only expressions with a value can be added in the objectives list.");
}

TEST(QVModel, ListsObjectivesInOrderAndRepeatsThem) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* y = m.decision();
  m.maximize(y);
  m.minimize(x);
  m.minimize(y);
  m.model->addObjective(x, static_cast<QVObjectiveDirection>(9));
  EXPECT_EQ(m.model->getNbObjectives(), 4);
  EXPECT_EQ(m.model->getObjective(0), y);
  EXPECT_EQ(m.model->getObjective(2), y);
  EXPECT_EQ(m.model->getObjectiveDirection(0), QVObjectiveDirection::Maximize);
  EXPECT_EQ(m.model->getObjectiveDirection(1), QVObjectiveDirection::Minimize);
  EXPECT_EQ(static_cast<int>(m.model->getObjectiveDirection(3)), 9);
  EXPECT_TRUE(y->isObjective());
}

// -------------------------------------------------------------------------------------------------------------- close

TEST(QVModel, ClosesAndOpens) {
  OpenModel m;
  QVExpression* x = m.decision();
  m.maximize(x);
  EXPECT_FALSE(m.model->isClosed());
  EXPECT_EQ(m.quvex.getState(), QVState::Modeling);
  m.model->close();
  EXPECT_TRUE(m.model->isClosed());
  EXPECT_EQ(m.quvex.getState(), QVState::Stopped);
  EXPECT_NE(ModelAccess::dagBuilder(*m.model), nullptr);
  m.model->open();
  EXPECT_FALSE(m.model->isClosed());
  EXPECT_EQ(m.quvex.getState(), QVState::Modeling);
  EXPECT_EQ(ModelAccess::dagBuilder(*m.model), nullptr);
  m.decision();
  m.model->close();
  EXPECT_EQ(m.quvex.getState(), QVState::Stopped);
}

TEST(QVModel, NeedsAnObjective) {
  OpenModel m;
  m.decision();
  const Failure failure = failureOf([&] { m.model->close(); });
  EXPECT_EQ(failure.explanation, "At least one objective is required in the model.");
  EXPECT_EQ(failure.function, "quvex::QVModel::close");
  EXPECT_EQ(m.quvex.getState(), QVState::Modeling);
}

TEST(QVModel, ClosesWithoutAnyDecision) {
  OpenModel m;
  m.maximize(m.make(QVOperator::Sum, 2, 3));
  m.model->close();
  EXPECT_TRUE(m.model->isClosed());
  EXPECT_EQ(m.model->getNbDecisions(), 0);
}

TEST(QVModel, TakesTheConstantOneAsItsOnlyConstraint) {
  OpenModel m;
  m.model->addConstraint(m.constant(std::int64_t{1}));
  m.close();
  EXPECT_TRUE(m.model->isClosed());
}

TEST(QVModel, RefusesTooFewOperandsAtCloseOnly) {
  OpenModel m;
  QVExpression* sum = m.make(QVOperator::Sum);
  m.minimize(sum);
  EXPECT_EQ(explanationOf([&] { m.model->close(); }),
            "Number of operands (0) is too small: at least 1 operands are expected for Expression 0 (type = sum).");
  EXPECT_FALSE(m.model->isClosed());
  sum->addOperand(m.decision());
  m.model->close();
  EXPECT_TRUE(m.model->isClosed());
}

TEST(QVModel, RefusesEveryOperatorThatLacksOperands) {
  for (const QVOperator op : {QVOperator::Iif, QVOperator::At, QVOperator::Scalar, QVOperator::Pow}) {
    OpenModel m;
    QVExpression* incomplete = m.make(op);
    incomplete->setName("half");
    m.minimize(incomplete);
    const std::string text = explanationOf([&] { m.model->close(); });
    EXPECT_TRUE(text.starts_with("Number of operands (0) is too small: at least ")) << text;
    EXPECT_TRUE(text.ends_with(", name = half).")) << text;
  }
}

TEST(QVModel, RefusesOperandsOfTheWrongConcreteType) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x, x);
  QVExpression* rounded = m.make(QVOperator::Ceil, sum);  // a sum may become a double, until its operands are known
  m.minimize(rounded);
  const Failure failure = failureOf([&] { m.model->close(); });
  EXPECT_EQ(failure.explanation, "Operand 0 of Expression 2 (type = ceil) must be double. Type provided: integer");
  EXPECT_EQ(failure.function, "quvex::QVModel::close");
  EXPECT_EQ(m.quvex.getState(), QVState::Modeling);
}

TEST(QVModel, RefusesAConstraintThatTurnsOutNotToBeBoolean) {
  OpenModel m;
  QVExpression* x = m.decision();
  m.model->addConstraint(m.make(QVOperator::Iif, x, x, 5));
  m.minimize(x);
  const Failure failure = failureOf([&] { m.model->close(); });
  EXPECT_EQ(failure.explanation, kNotBoolean);
  EXPECT_EQ(failure.function, "quvex::QVModel::close");
  EXPECT_FALSE(m.model->isClosed());
}

TEST(QVModel, FixesTypesWhateverTheOrderOfCreation) {
  OpenModel m;
  QVExpression* outer = m.make(QVOperator::Sum);
  QVExpression* inner = m.make(QVOperator::Prod);
  outer->addOperand(inner);
  inner->addOperand(m.decision());
  inner->addOperand(1.5);
  m.minimize(outer);
  m.model->close();
  EXPECT_TRUE(outer->isDouble());
  EXPECT_TRUE(inner->isDouble());
}

TEST(QVModel, KeepsTypesThatAFailedCloseHasFixed) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x);
  m.minimize(m.make(QVOperator::Ceil, sum));
  EXPECT_TRUE(failureOf([&] { m.model->close(); }).raised());
  sum->addOperand(1.5);
  EXPECT_EQ(explanationOf([&] { m.model->close(); }),
            "Operand 1 of Expression 1 (type = sum) must be boolean or integer. Type provided: double");
}

TEST(QVModel, ListsTheExpressionsOfACycle) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* entry = m.make(QVOperator::Sum, x);
  QVExpression* a = m.make(QVOperator::Sum, x);
  QVExpression* b = m.make(QVOperator::Prod, a);
  b->setName("b");
  a->addOperand(b);
  entry->addOperand(a);
  m.minimize(entry);
  const Failure failure = failureOf([&] { m.model->close(); });
  EXPECT_EQ(failure.explanation,
            "A cycle of length 2 was detected in the model : \n"
            "  - Expression 2 (type = sum)\n"
            "  - Expression 3 (type = prod, name = b)");
  EXPECT_EQ(failure.function, "quvex::QVModel::close");
  EXPECT_FALSE(m.model->isClosed());
  a->setOperand(1, x);
  m.model->close();
  EXPECT_TRUE(m.model->isClosed());
}

TEST(QVModel, FindsAnExpressionThatIsItsOwnOperand) {
  OpenModel m;
  QVExpression* sum = m.make(QVOperator::Sum);
  sum->addOperand(sum);
  m.minimize(sum);
  EXPECT_EQ(explanationOf([&] { m.model->close(); }),
            "A cycle of length 1 was detected in the model : \n  - Expression 0 (type = sum)");
}

TEST(QVModel, TakesSharedOperandsForNoCycle) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* left = m.make(QVOperator::Not, x);
  QVExpression* right = m.make(QVOperator::Not, x);
  m.maximize(m.make(QVOperator::Or, left, right, left));
  m.model->close();
  EXPECT_TRUE(m.model->isClosed());
}

TEST(QVModel, ClosesADeepModelWithoutRecursion) {
  OpenModel m;
  constexpr std::size_t kDepth = 200000;
  std::vector<QVExpression*> chain(kDepth);
  // Created from the outside to the inside, so that every walk in index order starts at the far end.
  for (QVExpression*& link : chain) link = m.make(QVOperator::Not);
  for (std::size_t i = 0; i + 1 < kDepth; ++i) chain[i]->addOperand(chain[i + 1]);
  chain.back()->addOperand(m.decision());
  m.minimize(chain.front());
  m.model->close();
  EXPECT_TRUE(chain.front()->isBool());
}

TEST(QVModel, StaysOpenWhenCompilationFails) {
  OpenModel m;
  QVExpression* zero = m.constant(std::int64_t{0});
  m.minimize(m.make(QVOperator::Div, m.constant(std::int64_t{5}), zero));
  const Failure failure = failureOf([&] { m.model->close(); });
  EXPECT_EQ(failure.explanation, "Division by zero.");
  EXPECT_TRUE(failure.isKernel);
  EXPECT_FALSE(m.model->isClosed());
  EXPECT_EQ(m.quvex.getState(), QVState::Modeling);
  EXPECT_EQ(ModelAccess::dagBuilder(*m.model), nullptr);
  m.decision();  // and may be changed
  EXPECT_EQ(m.model->getNbDecisions(), 1);
}

TEST(QVModel, DescribesItsSizes) {
  OpenModel m;
  QVExpression* x = m.decision();
  QVExpression* sum = m.make(QVOperator::Sum, x, 3);
  m.model->addConstraint(m.make(QVOperator::Leq, sum, 3));
  m.maximize(sum);
  EXPECT_EQ(m.model->toString(),
            "Model: \n"
            "  expressions = 4, operands = 4\n"
            "  decisions = 1, constraints = 1, objectives = 1\n");
}

// -------------------------------------------------------------------------------------------------------- state rules

TEST(QVModel, RefusesEveryQueryWhileRunning) {
  OpenModel m;
  QVExpression* x = m.decision();
  x->setName("x");
  m.model->addConstraint(x);
  m.minimize(x);
  QVModel* model = m.model;
  const auto expectNotRunning = [&](const std::string& method, auto call) {
    expectRule(m.quvex, StateRule::NotRunning, "quvex::QVModel::" + method, call);
    for (const QVState state : {QVState::Modeling, QVState::Paused, QVState::Stopped}) {
      const ForcedState forced(m.quvex, state);
      EXPECT_FALSE(failureOf(call).raised()) << method;
    }
  };
  expectNotRunning("getQuvex", [&] { (void)model->getQuvex(); });
  expectNotRunning("getNbExpressions", [&] { (void)model->getNbExpressions(); });
  expectNotRunning("getExpression", [&] { (void)model->getExpression(0); });
  expectNotRunning("getExpression", [&] { (void)model->getExpression("x"); });
  expectNotRunning("getNbDecisions", [&] { (void)model->getNbDecisions(); });
  expectNotRunning("getDecision", [&] { (void)model->getDecision(0); });
  expectNotRunning("getNbConstraints", [&] { (void)model->getNbConstraints(); });
  expectNotRunning("getConstraint", [&] { (void)model->getConstraint(0); });
  expectNotRunning("getNbObjectives", [&] { (void)model->getNbObjectives(); });
  expectNotRunning("getObjective", [&] { (void)model->getObjective(0); });
  expectNotRunning("getObjectiveDirection", [&] { (void)model->getObjectiveDirection(0); });
  expectNotRunning("getNbOperands", [&] { (void)model->getNbOperands(); });
  expectNotRunning("isClosed", [&] { (void)model->isClosed(); });
  expectNotRunning("toString", [&] { (void)model->toString(); });
}

TEST(QVModel, RefusesEveryChangeOfAClosedModel) {
  OpenModel m;
  QVExpression* x = m.decision();
  const auto expectModelingOnly = [&](const std::string& method, auto call) {
    expectRule(m.quvex, StateRule::ModelingOnly, "quvex::QVModel::" + method, call);
  };
  expectModelingOnly("createConstant", [&] { m.constant(std::int64_t{1}); });
  expectModelingOnly("createConstant", [&] { m.constant(std::nan("")); });
  expectModelingOnly("createConstant", [&] { m.make(QVOperator::Sum, x, 5); });
  expectModelingOnly("createExpression", [&] { m.make(QVOperator::Const); });
  expectModelingOnly("createExpression", [&] { m.make(QVOperator::Sum, static_cast<QVExpression*>(nullptr)); });
  expectModelingOnly("createExpression", [&] { m.make(QVOperator::Sum, x, x); });
  expectModelingOnly("createExpression", [&] { m.make(QVOperator::Sum, x, x, x); });
  expectModelingOnly("addConstraint", [&] { m.model->addConstraint(nullptr); });
  expectModelingOnly("addObjective", [&] { m.minimize(nullptr); });
  expectModelingOnly("close", [&] { m.model->close(); });
  EXPECT_EQ(m.model->getNbExpressions(), 1);
}

TEST(QVModel, OpensInStateStoppedOnly) {
  OpenModel m;
  m.close();
  expectRule(m.quvex, StateRule::StoppedOnly, "quvex::QVModel::open", [&] { m.model->open(); });
  EXPECT_TRUE(m.model->isClosed());
}

}  // namespace
}  // namespace quvex
