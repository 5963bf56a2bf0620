#include "builder/evaluatortools.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <vector>

#include "api/modelaccess.h"
#include "builder/operatortools.h"
#include "support/failure.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// A value with its type: a bool is boolean, an int integer, a double double.
struct Value {
  ValueType type = 0;
  t_value word = 0;

  Value() = default;
  Value(bool value) : type(kBoolean), word(value ? 1 : 0) {}
  Value(int value) : type(kInteger), word(value) {}
  Value(t_value value) : type(kInteger), word(value) {}
  Value(double value) : type(kDouble), word(doubleToWord(value)) {}

  friend bool operator==(const Value&, const Value&) = default;
  friend std::ostream& operator<<(std::ostream& stream, const Value& value) {
    stream << "type " << int{value.type} << ", value ";
    return value.type == kDouble ? stream << wordToDouble(value.word) : stream << value.word;
  }
};

Value eval(QVOperator op, const std::vector<Value>& operands) {
  std::vector<ValueType> types;
  std::vector<t_value> words;
  for (const Value& operand : operands) {
    types.push_back(operand.type);
    words.push_back(operand.word);
  }
  Value result;
  EvaluatorTools::evaluate(op, types, words, result.type, result.word);
  return result;
}

TEST(EvaluatorTools, ConjunctionFailsOnAnyZero) {
  EXPECT_EQ(eval(QVOperator::And, {true, true}), true);
  EXPECT_EQ(eval(QVOperator::And, {true, false, true}), false);
  EXPECT_EQ(eval(QVOperator::And, {}), true);
}

TEST(EvaluatorTools, DisjunctionNeedsAnExactOne) {
  EXPECT_EQ(eval(QVOperator::Or, {false, true}), true);
  EXPECT_EQ(eval(QVOperator::Or, {false, false}), false);
  EXPECT_EQ(eval(QVOperator::Or, {2}), false);
  EXPECT_EQ(eval(QVOperator::Or, {}), false);
}

TEST(EvaluatorTools, ExclusiveDisjunctionIsTheParity) {
  EXPECT_EQ(eval(QVOperator::Xor, {true, true, true}), true);
  EXPECT_EQ(eval(QVOperator::Xor, {true, true}), false);
  EXPECT_EQ(eval(QVOperator::Not, {true}), false);
  EXPECT_EQ(eval(QVOperator::Not, {false}), true);
}

TEST(EvaluatorTools, ComparesIntegersExactly) {
  EXPECT_EQ(eval(QVOperator::Eq, {1000000, 1000001}), false);
  EXPECT_EQ(eval(QVOperator::Eq, {7, 7, 7}), true);
  EXPECT_EQ(eval(QVOperator::Eq, {7, 7, 8}), false);
  EXPECT_EQ(eval(QVOperator::Neq, {7, 8}), true);
  EXPECT_EQ(eval(QVOperator::Neq, {7, 7}), false);
  EXPECT_EQ(eval(QVOperator::Geq, {3, 3, 2}), true);
  EXPECT_EQ(eval(QVOperator::Geq, {3, 4}), false);
  EXPECT_EQ(eval(QVOperator::Leq, {3, 3, 4}), true);
  EXPECT_EQ(eval(QVOperator::Leq, {4, 3}), false);
  EXPECT_EQ(eval(QVOperator::Gt, {3, 2, 1}), true);
  EXPECT_EQ(eval(QVOperator::Gt, {3, 3}), false);
  EXPECT_EQ(eval(QVOperator::Lt, {1, 2, 3}), true);
  EXPECT_EQ(eval(QVOperator::Lt, {3, 3}), false);
}

TEST(EvaluatorTools, StrictComparisonsOfDoublesFailOnATie) {
  EXPECT_EQ(eval(QVOperator::Gt, {1.0000001, 1.0}), false);
  EXPECT_EQ(eval(QVOperator::Gt, {1.1, 1.0}), true);
  EXPECT_EQ(eval(QVOperator::Lt, {1.0, 1.0000001}), false);
  EXPECT_EQ(eval(QVOperator::Lt, {1, 1.1}), true);
  EXPECT_EQ(eval(QVOperator::Neq, {1.0, 1.0000001}), false);
  EXPECT_EQ(eval(QVOperator::Neq, {1.0, 2}), true);
}

TEST(EvaluatorTools, WeakComparisonsOfDoublesHoldOnATie) {
  EXPECT_EQ(eval(QVOperator::Geq, {1.0, 1.0000001}), true);
  EXPECT_EQ(eval(QVOperator::Geq, {1.0, 1.1}), false);
  EXPECT_EQ(eval(QVOperator::Leq, {1.0000001, 1.0}), true);
  EXPECT_EQ(eval(QVOperator::Leq, {2.0, 1}), false);
  EXPECT_EQ(eval(QVOperator::Eq, {1, 1.0000001}), true);
}

TEST(EvaluatorTools, EqualityOfDoublesGoesByTheExtremes) {
  EXPECT_EQ(eval(QVOperator::Eq, {1.0, 1.000001, 1.000002}), true);
  EXPECT_EQ(eval(QVOperator::Eq, {1.0, 1.0000015, 1.000003}), false);
  EXPECT_EQ(eval(QVOperator::Eq, {kNan, 1.0}), false);
  EXPECT_EQ(eval(QVOperator::Eq, {1.0, kNan}), false);
}

TEST(EvaluatorTools, AbsoluteValueKeepsTheKindOfNumber) {
  EXPECT_EQ(eval(QVOperator::Abs, {-5}), 5);
  EXPECT_EQ(eval(QVOperator::Abs, {true}), 1);
  EXPECT_EQ(eval(QVOperator::Abs, {-2.5}), 2.5);
  EXPECT_EQ(eval(QVOperator::Abs, {kLowestInt}), kLowestInt);
}

TEST(EvaluatorTools, DistanceIsSymmetric) {
  EXPECT_EQ(eval(QVOperator::Dist, {3, 8}), 5);
  EXPECT_EQ(eval(QVOperator::Dist, {8, 3}), 5);
  EXPECT_EQ(eval(QVOperator::Dist, {8, 3.5}), 4.5);
  EXPECT_EQ(explanationOf([] {
              eval(QVOperator::Dist, {kInfinity, kInfinity});
            }),
            "Cannot compute distance between two infinities");
}

TEST(EvaluatorTools, IntegerDivisionTruncatesTowardZero) {
  EXPECT_EQ(eval(QVOperator::Div, {-7, 2}), -3);
  EXPECT_EQ(eval(QVOperator::Div, {7, -2}), -3);
  EXPECT_EQ(eval(QVOperator::Mod, {-7, 2}), -1);
  EXPECT_EQ(eval(QVOperator::Mod, {7, -2}), 1);
}

TEST(EvaluatorTools, DivisionByZeroFailsForIntegersOnly) {
  EXPECT_EQ(eval(QVOperator::Div, {1.0, 0.0}), kInfinity);
  EXPECT_EQ(eval(QVOperator::Div, {1, 0.0}), kInfinity);
  const Failure failure = failureOf([] { eval(QVOperator::Div, {1, 0}); });
  EXPECT_EQ(failure.explanation, "Division by zero.");
  EXPECT_TRUE(failure.isKernel);
  const Failure modulo = failureOf([] { eval(QVOperator::Mod, {1, 0}); });
  EXPECT_EQ(modulo.explanation, "Division by zero.");
  EXPECT_EQ(modulo.function, "quvex::EvaluatorTools::modEval");
}

TEST(EvaluatorTools, TheQuotientThatNoIntegerHoldsFails) {
  EXPECT_TRUE(failureOf([] { eval(QVOperator::Div, {kLowestInt, -1}); }).isKernel);
  EXPECT_TRUE(failureOf([] { eval(QVOperator::Mod, {kLowestInt, -1}); }).isKernel);
}

TEST(EvaluatorTools, ExtremesOverAllOperands) {
  EXPECT_EQ(eval(QVOperator::Max, {3, 9, -2}), 9);
  EXPECT_EQ(eval(QVOperator::Min, {3, 9, -2}), -2);
  EXPECT_EQ(eval(QVOperator::Max, {3, 9.5, -2}), 9.5);
  EXPECT_EQ(eval(QVOperator::Min, {3, 9.5, false}), 0.0);
  EXPECT_EQ(eval(QVOperator::Max, {}), kLowestInt);
  EXPECT_EQ(eval(QVOperator::Min, {}), kHighestInt);
}

TEST(EvaluatorTools, SumsInOrder) {
  EXPECT_EQ(eval(QVOperator::Sum, {3, true, -2}), 2);
  EXPECT_EQ(eval(QVOperator::Sum, {1e100, 1.0, -1e100}), 0.0);
  EXPECT_EQ(eval(QVOperator::Sum, {true, 2.5}), 3.5);
  EXPECT_EQ(eval(QVOperator::Sum, {}), 0);
  EXPECT_EQ(eval(QVOperator::Sum, {kHighestInt, 1}), kLowestInt);
}

TEST(EvaluatorTools, MultipliesInOrder) {
  EXPECT_EQ(eval(QVOperator::Prod, {3, true, -2}), -6);
  EXPECT_EQ(eval(QVOperator::Prod, {3, 0.5}), 1.5);
  EXPECT_EQ(eval(QVOperator::Prod, {}), 1);
}

TEST(EvaluatorTools, AProductThatIsNotANumberFails) {
  for (const std::vector<Value>& operands : {std::vector<Value>{0.0, kInfinity}, std::vector<Value>{kNan, 1.0}}) {
    const Failure failure = failureOf([&] { eval(QVOperator::Prod, operands); });
    EXPECT_EQ(failure.explanation, "Cannot compute product of zero and infinity");
    EXPECT_TRUE(failure.isKernel);
  }
}

TEST(EvaluatorTools, ChoiceTakesTheTypeOfAllItsOperands) {
  EXPECT_EQ(eval(QVOperator::Iif, {true, 3, 4}), 3);
  EXPECT_EQ(eval(QVOperator::Iif, {false, 3, 4}), 4);
  EXPECT_EQ(eval(QVOperator::Iif, {2, 3, 4}), 3);
  EXPECT_EQ(eval(QVOperator::Iif, {true, false, true}), false);
  EXPECT_EQ(eval(QVOperator::Iif, {true, 3, 4.5}), 3.0);
  EXPECT_EQ(eval(QVOperator::Iif, {false, 3, 4.5}), 4.5);
  EXPECT_EQ(eval(QVOperator::Iif, {true, true, 4}), 1);
}

TEST(EvaluatorTools, RoundingsGiveIntegers) {
  EXPECT_EQ(eval(QVOperator::Ceil, {2.1}), 3);
  EXPECT_EQ(eval(QVOperator::Floor, {2.9999999}), 3);
  EXPECT_EQ(eval(QVOperator::Round, {2.4999995}), 3);
}

TEST(EvaluatorTools, RoundingsReadTheWordAsItIs) { EXPECT_EQ(eval(QVOperator::Floor, {doubleToWord(2.5)}), 2); }

TEST(EvaluatorTools, FunctionsConvertTheirOperands) {
  EXPECT_EQ(eval(QVOperator::Sqrt, {9}), 3.0);
  EXPECT_EQ(eval(QVOperator::Log, {1}), 0.0);
  EXPECT_EQ(eval(QVOperator::Exp, {false}), 1.0);
  EXPECT_EQ(eval(QVOperator::Cos, {0}), 1.0);
  EXPECT_EQ(eval(QVOperator::Sin, {0}), 0.0);
  EXPECT_EQ(eval(QVOperator::Tan, {0.0}), 0.0);
  EXPECT_EQ(eval(QVOperator::Pow, {2, 3}), 8.0);
  EXPECT_EQ(eval(QVOperator::Pow, {2, -1}), kInfinity);
}

TEST(EvaluatorTools, RefusesOperatorsWithoutAValueOfTheirOwn) {
  for (const QVOperator op :
       {QVOperator::Bool, QVOperator::Const, QVOperator::Array, QVOperator::At, QVOperator::Scalar}) {
    const Failure failure = failureOf([op] { eval(op, {true, true}); });
    EXPECT_EQ(failure.explanation,
              "Cannot evaluate " + std::string(OperatorTools::getName(op)) + " operator with this method");
    EXPECT_EQ(failure.function, "quvex::EvaluatorTools::evaluate");
  }
  EXPECT_EQ(explanationOf([] { eval(static_cast<QVOperator>(34), {}); }), "Unknown operator : 34");
}

/// A model whose expressions can be evaluated by hand.
struct ArrayModel : OpenModel {
  [[nodiscard]] std::vector<t_value> constantValues() const {
    std::vector<t_value> values;
    for (const QVExpression* expr : ModelAccess::expressions(*model)) {
      values.push_back(ModelAccess::isConstant(*expr) ? ModelAccess::constantValue(*expr) : 0);
    }
    return values;
  }
  Value at(const QVExpression* expression) const {
    Value result;
    EvaluatorTools::atEval(expression, constantValues(), result.type, result.word);
    return result;
  }
  Value scalar(const QVExpression* expression) const {
    Value result;
    EvaluatorTools::scalarEval(expression, constantValues(), result.type, result.word);
    return result;
  }
};

TEST(EvaluatorTools, ReadsAnElementOfAnArray) {
  ArrayModel m;
  QVExpression* first = m.make(QVOperator::At, m.make(QVOperator::Array, 4, 5), 0);
  QVExpression* second = m.make(QVOperator::At, m.make(QVOperator::Array, 4, 5), 1);
  m.close();
  EXPECT_EQ(m.at(first), 4);
  EXPECT_EQ(m.at(second), 5);
}

TEST(EvaluatorTools, ConvertsAnElementOfAnArrayWithDoubles) {
  ArrayModel m;
  QVExpression* at = m.make(QVOperator::At, m.make(QVOperator::Array, 4, 5.5), 0);
  m.close();
  EXPECT_EQ(m.at(at), 4.0);
}

TEST(EvaluatorTools, RefusesAnIndexOutsideTheArray) {
  ArrayModel m;
  QVExpression* array = m.make(QVOperator::Array, m.decision(), 5);
  QVExpression* at = m.make(QVOperator::At, array, m.make(QVOperator::Sum, m.decision(), 0));
  m.close();
  std::vector<t_value> values = m.constantValues();
  const auto index = static_cast<std::size_t>(at->getOperand(1)->getIndex());
  for (const t_value outside : {t_value{-1}, t_value{2}, kLowestInt}) {
    values[index] = outside;
    Value result;
    const Failure failure = failureOf([&] { EvaluatorTools::atEval(at, values, result.type, result.word); });
    EXPECT_EQ(failure.explanation, "Index out of bounds for " + at->toString() + " (index: " + std::to_string(outside) +
                                       ", array size: 2).");
    EXPECT_EQ(failure.function, "quvex::EvaluatorTools::atEval");
  }
}

TEST(EvaluatorTools, MultipliesArraysElementByElement) {
  ArrayModel m;
  QVExpression* integers =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, 2, 3), m.make(QVOperator::Array, 10, 100));
  QVExpression* doubles =
      m.make(QVOperator::Scalar, m.make(QVOperator::Array, 2, 3), m.make(QVOperator::Array, 10, 0.5));
  QVExpression* empty = m.make(QVOperator::Scalar, m.make(QVOperator::Array), m.make(QVOperator::Array));
  m.close();
  EXPECT_EQ(m.scalar(integers), 320);
  EXPECT_EQ(m.scalar(doubles), 21.5);
  EXPECT_EQ(m.scalar(empty), 0);
}

TEST(EvaluatorTools, ListsOperandsInOrder) {
  ArrayModel m;
  QVExpression* sum = m.make(QVOperator::Sum, 2.5, 7, 1);
  m.close();
  std::vector<ValueType> types = {kArray};
  std::vector<t_value> values = {99};
  EvaluatorTools::getOperands(sum, m.constantValues(), types, values);
  EXPECT_EQ(types, (std::vector<ValueType>{kDouble, kInteger, kBoolean}));
  EXPECT_EQ(values, (std::vector<t_value>{doubleToWord(2.5), 7, 1}));
}

}  // namespace
}  // namespace quvex
