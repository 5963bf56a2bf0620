#include "builder/operatortools.h"

#include <gtest/gtest.h>

#include "api/modelaccess.h"
#include "support/failure.h"
#include "support/openmodel.h"

namespace quvex {
namespace {

constexpr int kMax = 2147483647;

struct Expected {
  const char* name;
  int min;
  int max;
  int results;
  int operand0;
  int operand1;
};

constexpr Expected kTable[] = {
    {"bool", 0, 0, 1, 1, 1},   {"const", 0, 0, 7, 7, 7},    {"sum", 1, kMax, 6, 7, 7}, {"prod", 1, kMax, 6, 7, 7},
    {"max", 1, kMax, 6, 7, 7}, {"min", 1, kMax, 6, 7, 7},   {"eq", 2, 2, 1, 7, 7},     {"neq", 2, 2, 1, 7, 7},
    {"geq", 2, 2, 1, 7, 7},    {"leq", 2, 2, 1, 7, 7},      {"gt", 2, 2, 1, 7, 7},     {"lt", 2, 2, 1, 7, 7},
    {"iif", 3, 3, 7, 1, 7},    {"not", 1, 1, 1, 1, 1},      {"and", 1, kMax, 1, 1, 1}, {"or", 1, kMax, 1, 1, 1},
    {"xor", 1, kMax, 1, 1, 1}, {"abs", 1, 1, 6, 7, 7},      {"dist", 2, 2, 6, 7, 7},   {"div", 2, 2, 6, 7, 7},
    {"mod", 2, 2, 2, 3, 3},    {"array", 0, kMax, 8, 7, 7}, {"at", 2, 2, 6, 8, 3},     {"scalar", 2, 2, 6, 8, 8},
    {"ceil", 1, 1, 2, 4, 4},   {"floor", 1, 1, 2, 4, 4},    {"round", 1, 1, 2, 4, 4},  {"sqrt", 1, 1, 4, 7, 7},
    {"log", 1, 1, 4, 7, 7},    {"exp", 1, 1, 4, 7, 7},      {"pow", 2, 2, 4, 7, 7},    {"cos", 1, 1, 4, 7, 7},
    {"sin", 1, 1, 4, 7, 7},    {"tan", 1, 1, 4, 7, 7},
};

QVOperator numbered(int number) { return static_cast<QVOperator>(number); }

TEST(OperatorTools, HoldsTheWholeTable) {
  ASSERT_EQ(std::size(kTable), static_cast<std::size_t>(OperatorTools::kNbOperators));
  for (int number = 0; number < OperatorTools::kNbOperators; ++number) {
    const Expected& expected = kTable[number];
    SCOPED_TRACE(expected.name);
    const QVOperator op = numbered(number);
    EXPECT_EQ(OperatorTools::getName(op), expected.name);
    EXPECT_EQ(OperatorTools::stringToOperator(expected.name), op);
    EXPECT_EQ(OperatorTools::getNbMinOperands(op), expected.min);
    EXPECT_EQ(OperatorTools::getNbMaxOperands(op), expected.max);
    EXPECT_EQ(OperatorTools::getValueTypes(op), expected.results);
    EXPECT_EQ(OperatorTools::getOperandValueTypes(op, 0), expected.operand0);
    EXPECT_EQ(OperatorTools::getOperandValueTypes(op, 1), expected.operand1);
    EXPECT_EQ(OperatorTools::getOperandValueTypes(op, 2), expected.operand1);
  }
}

TEST(OperatorTools, NumbersTheOperatorsInTheOrderOfTheTable) {
  EXPECT_EQ(static_cast<int>(QVOperator::Bool), 0);
  EXPECT_EQ(static_cast<int>(QVOperator::Iif), 12);
  EXPECT_EQ(static_cast<int>(QVOperator::Array), 21);
  EXPECT_EQ(static_cast<int>(QVOperator::Tan), 33);
}

TEST(OperatorTools, RefusesNumbersThatAreNoOperator) {
  for (const int number : {-1, 34, 300}) {
    const QVOperator op = numbered(number);
    const std::string text = "Unknown operator : " + std::to_string(number);
    EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getName(op); }), text);
    EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getNbMinOperands(op); }), text);
    EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getNbMaxOperands(op); }), text);
    EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getValueTypes(op); }), text);
    EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getOperandValueTypes(op, 0); }), text);
    EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getOperandValueTypes(op, kInteger, 0); }), text);
  }
  const Failure failure = failureOf([] { (void)OperatorTools::getName(numbered(34)); });
  EXPECT_EQ(failure.function, "quvex::OperatorTools::getName");
  EXPECT_TRUE(failure.file.ends_with("src/builder/operatortools.cpp")) << failure.file;
  EXPECT_TRUE(failure.isKernel);
}

TEST(OperatorTools, ReadsNamesExactly) {
  EXPECT_EQ(explanationOf([] { (void)OperatorTools::stringToOperator("Sum"); }), "Unknown operator : Sum");
  EXPECT_EQ(explanationOf([] { (void)OperatorTools::stringToOperator(""); }), "Unknown operator : ");
  EXPECT_EQ(explanationOf([] { (void)OperatorTools::stringToOperator("su"); }), "Unknown operator : su");
}

TEST(OperatorTools, AsksOperandsByTheConcreteTypeOfTheExpression) {
  for (int number = 0; number < OperatorTools::kNbOperators; ++number) {
    const QVOperator op = numbered(number);
    const std::string name = kTable[number].name;
    SCOPED_TRACE(name);
    const bool byOwnType = name == "sum" || name == "prod" || name == "max" || name == "min" || name == "abs" ||
                           name == "dist" || name == "div";
    if (byOwnType) {
      EXPECT_EQ(OperatorTools::getOperandValueTypes(op, kInteger, 0), 3);
      EXPECT_EQ(OperatorTools::getOperandValueTypes(op, kDouble, 1), 7);
      for (const ValueType type : {ValueType{0}, kBoolean, kArray}) {
        EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getOperandValueTypes(op, type, 0); }),
                  "ValueType not supported for this operator");
      }
    } else if (name == "const") {
      EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getOperandValueTypes(op, kInteger, 0); }),
                "Const operator cannot have operands");
    } else if (name != "iif") {
      EXPECT_EQ(OperatorTools::getOperandValueTypes(op, kBoolean, 0), kTable[number].operand0);
      EXPECT_EQ(OperatorTools::getOperandValueTypes(op, kDouble, 1), kTable[number].operand1);
    }
  }
}

TEST(OperatorTools, AsksTheBranchesOfAnIifByItsType) {
  EXPECT_EQ(OperatorTools::getOperandValueTypes(QVOperator::Iif, kDouble, 0), 1);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(QVOperator::Iif, kDouble, 1), 7);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(QVOperator::Iif, kInteger, 0), 1);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(QVOperator::Iif, kInteger, 2), 3);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(QVOperator::Iif, kBoolean, 1), 1);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(QVOperator::Iif, kArray, 0), 1);
  EXPECT_EQ(OperatorTools::getOperandValueTypes(QVOperator::Iif, kArray, 1), 0);
}

TEST(OperatorTools, ComparesWhatAnOperandsOperatorCanProduce) {
  EXPECT_TRUE(OperatorTools::isOperandCompatible(QVOperator::Sum, 0, QVOperator::Bool));
  EXPECT_TRUE(OperatorTools::isOperandCompatible(QVOperator::Not, 0, QVOperator::Iif));
  EXPECT_TRUE(OperatorTools::isOperandCompatible(QVOperator::And, 3, QVOperator::Const));
  EXPECT_TRUE(OperatorTools::isOperandCompatible(QVOperator::At, 0, QVOperator::Array));
  EXPECT_TRUE(OperatorTools::isOperandCompatible(QVOperator::Ceil, 0, QVOperator::Sum));
  EXPECT_FALSE(OperatorTools::isOperandCompatible(QVOperator::Not, 0, QVOperator::Sum));
  EXPECT_FALSE(OperatorTools::isOperandCompatible(QVOperator::Sum, 0, QVOperator::Array));
  EXPECT_FALSE(OperatorTools::isOperandCompatible(QVOperator::At, 1, QVOperator::Array));
  EXPECT_FALSE(OperatorTools::isOperandCompatible(QVOperator::Ceil, 0, QVOperator::Bool));
  EXPECT_FALSE(OperatorTools::isOperandCompatible(QVOperator::Mod, 1, QVOperator::Sqrt));
}

TEST(OperatorTools, NamesMasksOfTypes) {
  const char* const texts[] = {"boolean",           "integer",           "boolean or integer",         "double",
                               "boolean or double", "integer or double", "boolean, integer or double", "array"};
  for (ValueType types = 1; types <= 8; ++types) {
    EXPECT_EQ(OperatorTools::valueTypesToString(types), texts[types - 1]);
  }
  for (const ValueType types : {ValueType{0}, ValueType{9}, ValueType{255}}) {
    EXPECT_EQ(explanationOf([&] { (void)OperatorTools::valueTypesToString(types); }), "Argument type not supported");
  }
}

TEST(OperatorTools, KnowsAbsorbingElements) {
  for (const ValueType type : {kBoolean, kInteger}) {
    EXPECT_EQ(OperatorTools::getAbsorbingElement(QVOperator::Prod, type), 0);
    EXPECT_EQ(OperatorTools::getAbsorbingElement(QVOperator::And, type), 0);
    EXPECT_EQ(OperatorTools::getAbsorbingElement(QVOperator::Or, type), 1);
  }
  EXPECT_EQ(OperatorTools::getAbsorbingElement(QVOperator::Prod, kDouble), doubleToWord(0.0));
  EXPECT_EQ(OperatorTools::getAbsorbingElement(QVOperator::And, kDouble), doubleToWord(0.0));
  EXPECT_EQ(OperatorTools::getAbsorbingElement(QVOperator::Or, kDouble), doubleToWord(1.0));
  for (int number = -1; number <= OperatorTools::kNbOperators; ++number) {
    const QVOperator op = numbered(number);
    if (op == QVOperator::Prod || op == QVOperator::And || op == QVOperator::Or) continue;
    EXPECT_EQ(explanationOf([&] { (void)OperatorTools::getAbsorbingElement(op, kInteger); }),
              "This operator does not have an absorbing element");
  }
}

/// The concrete type of an expression over operands whose types are set.
ValueType fixedType(QVExpression* expression) {
  for (const std::uint32_t index : ModelAccess::operandIndices(*expression)) {
    QVExpression* operand = ModelAccess::expression(*ModelAccess::model(*expression), index);
    if (ModelAccess::valueType(*operand) == 0) fixedType(operand);
  }
  OperatorTools::fixValueType(expression);
  return ModelAccess::valueType(*expression);
}

struct Types : OpenModel {
  QVExpression* boolean = decision();
  QVExpression* integer = constant(std::int64_t{5});
  QVExpression* real = constant(1.5);
};

TEST(OperatorTools, TypesLogicAndComparisonsAsBoolean) {
  Types t;
  EXPECT_EQ(fixedType(t.boolean), kBoolean);
  for (const QVOperator op :
       {QVOperator::Eq, QVOperator::Neq, QVOperator::Geq, QVOperator::Leq, QVOperator::Gt, QVOperator::Lt}) {
    EXPECT_EQ(fixedType(t.make(op, t.integer, t.real)), kBoolean);
  }
  for (const QVOperator op : {QVOperator::Not, QVOperator::And, QVOperator::Or, QVOperator::Xor}) {
    EXPECT_EQ(fixedType(t.make(op, t.boolean)), kBoolean);
  }
}

TEST(OperatorTools, LeavesTheTypeOfAConstant) {
  Types t;
  EXPECT_EQ(fixedType(t.integer), kInteger);
  EXPECT_EQ(fixedType(t.real), kDouble);
  EXPECT_EQ(fixedType(t.constant(std::int64_t{1})), kBoolean);
}

TEST(OperatorTools, TypesAggregatesByTheirWidestOperandButNeverAsBoolean) {
  Types t;
  for (const QVOperator op :
       {QVOperator::Sum, QVOperator::Prod, QVOperator::Max, QVOperator::Min, QVOperator::Dist, QVOperator::Div}) {
    EXPECT_EQ(fixedType(t.make(op, t.boolean, t.boolean)), kInteger);
    EXPECT_EQ(fixedType(t.make(op, t.boolean, t.integer)), kInteger);
    EXPECT_EQ(fixedType(t.make(op, t.boolean, t.real)), kDouble);
  }
  EXPECT_EQ(fixedType(t.make(QVOperator::Abs, t.boolean)), kInteger);
  EXPECT_EQ(fixedType(t.make(QVOperator::Abs, t.real)), kDouble);
}

TEST(OperatorTools, TypesAnIifByItsBranchesOnly) {
  Types t;
  EXPECT_EQ(fixedType(t.make(QVOperator::Iif, t.boolean, t.boolean, t.boolean)), kBoolean);
  EXPECT_EQ(fixedType(t.make(QVOperator::Iif, t.boolean, t.boolean, t.integer)), kInteger);
  EXPECT_EQ(fixedType(t.make(QVOperator::Iif, t.boolean, t.real, t.boolean)), kDouble);
}

TEST(OperatorTools, TypesAnAtByTheElementsOfItsArray) {
  Types t;
  const auto at = [&](QVExpression* array) { return fixedType(t.make(QVOperator::At, array, t.integer)); };
  EXPECT_EQ(at(t.make(QVOperator::Array)), kInteger);
  EXPECT_EQ(at(t.make(QVOperator::Array, t.boolean)), kInteger);
  EXPECT_EQ(at(t.make(QVOperator::Array, t.integer, t.real)), kDouble);
}

TEST(OperatorTools, TypesAScalarByTheElementsOfBothArrays) {
  Types t;
  QVExpression* integers = t.make(QVOperator::Array, t.integer);
  QVExpression* reals = t.make(QVOperator::Array, t.boolean, t.real);
  EXPECT_EQ(fixedType(t.make(QVOperator::Scalar, integers, integers)), kInteger);
  EXPECT_EQ(fixedType(t.make(QVOperator::Scalar, integers, reals)), kDouble);
  EXPECT_EQ(fixedType(t.make(QVOperator::Scalar, reals, integers)), kDouble);
}

TEST(OperatorTools, TypesTheOtherOperatorsByTheirKind) {
  Types t;
  EXPECT_EQ(fixedType(t.make(QVOperator::Mod, t.integer, t.integer)), kInteger);
  EXPECT_EQ(fixedType(t.make(QVOperator::Array, t.real)), kArray);
  for (const QVOperator op : {QVOperator::Ceil, QVOperator::Floor, QVOperator::Round}) {
    EXPECT_EQ(fixedType(t.make(op, t.real)), kInteger);
  }
  for (const QVOperator op :
       {QVOperator::Sqrt, QVOperator::Log, QVOperator::Exp, QVOperator::Cos, QVOperator::Sin, QVOperator::Tan}) {
    EXPECT_EQ(fixedType(t.make(op, t.integer)), kDouble);
  }
  EXPECT_EQ(fixedType(t.make(QVOperator::Pow, t.integer, t.integer)), kDouble);
}

TEST(OperatorTools, TypesExpressionsThatStillLackOperands) {
  Types t;
  EXPECT_EQ(fixedType(t.make(QVOperator::Sum)), kInteger);
  EXPECT_EQ(fixedType(t.make(QVOperator::Iif)), kBoolean);
  EXPECT_EQ(fixedType(t.make(QVOperator::At)), kInteger);
  EXPECT_EQ(fixedType(t.make(QVOperator::Scalar)), kInteger);
}

}  // namespace
}  // namespace quvex
