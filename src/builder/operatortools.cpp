#include "builder/operatortools.h"

#include <map>
#include <optional>

#include "api/modelaccess.h"
#include "api/qvexception.h"

namespace quvex {
namespace {

constexpr ValueType kWhole = kBoolean | kInteger;
constexpr ValueType kNumeric = kInteger | kDouble;
constexpr ValueType kAnyValue = kBoolean | kInteger | kDouble;

/// How an expression gets its concrete type, and what that type then asks of its operands.
enum class Typing {
  Fixed,     ///< the operator has one type only
  Given,     ///< constants: the type was set with the value
  Widest,    ///< double if any operand is double, else integer
  Branches,  ///< the widest of all operands but the first
  Elements,  ///< double if any element of an array operand is double, else integer
};

struct Row {
  std::string_view name;
  int min;
  int max;
  ValueType results;
  ValueType firstOperand;   ///< accepted at position 0
  ValueType otherOperands;  ///< accepted at all others
  Typing typing;
  std::optional<int> absorbing = std::nullopt;
};

constexpr int kMany = OperatorTools::kUnbounded;

constexpr Row kRows[] = {
    {"bool", 0, 0, kBoolean, kBoolean, kBoolean, Typing::Fixed},
    {"const", 0, 0, kAnyValue, kAnyValue, kAnyValue, Typing::Given},
    {"sum", 1, kMany, kNumeric, kAnyValue, kAnyValue, Typing::Widest},
    {"prod", 1, kMany, kNumeric, kAnyValue, kAnyValue, Typing::Widest, 0},
    {"max", 1, kMany, kNumeric, kAnyValue, kAnyValue, Typing::Widest},
    {"min", 1, kMany, kNumeric, kAnyValue, kAnyValue, Typing::Widest},
    {"eq", 2, 2, kBoolean, kAnyValue, kAnyValue, Typing::Fixed},
    {"neq", 2, 2, kBoolean, kAnyValue, kAnyValue, Typing::Fixed},
    {"geq", 2, 2, kBoolean, kAnyValue, kAnyValue, Typing::Fixed},
    {"leq", 2, 2, kBoolean, kAnyValue, kAnyValue, Typing::Fixed},
    {"gt", 2, 2, kBoolean, kAnyValue, kAnyValue, Typing::Fixed},
    {"lt", 2, 2, kBoolean, kAnyValue, kAnyValue, Typing::Fixed},
    {"iif", 3, 3, kAnyValue, kBoolean, kAnyValue, Typing::Branches},
    {"not", 1, 1, kBoolean, kBoolean, kBoolean, Typing::Fixed},
    {"and", 1, kMany, kBoolean, kBoolean, kBoolean, Typing::Fixed, 0},
    {"or", 1, kMany, kBoolean, kBoolean, kBoolean, Typing::Fixed, 1},
    {"xor", 1, kMany, kBoolean, kBoolean, kBoolean, Typing::Fixed},
    {"abs", 1, 1, kNumeric, kAnyValue, kAnyValue, Typing::Widest},
    {"dist", 2, 2, kNumeric, kAnyValue, kAnyValue, Typing::Widest},
    {"div", 2, 2, kNumeric, kAnyValue, kAnyValue, Typing::Widest},
    {"mod", 2, 2, kInteger, kWhole, kWhole, Typing::Fixed},
    {"array", 0, kMany, kArray, kAnyValue, kAnyValue, Typing::Fixed},
    {"at", 2, 2, kNumeric, kArray, kWhole, Typing::Elements},
    {"scalar", 2, 2, kNumeric, kArray, kArray, Typing::Elements},
    {"ceil", 1, 1, kInteger, kDouble, kDouble, Typing::Fixed},
    {"floor", 1, 1, kInteger, kDouble, kDouble, Typing::Fixed},
    {"round", 1, 1, kInteger, kDouble, kDouble, Typing::Fixed},
    {"sqrt", 1, 1, kDouble, kAnyValue, kAnyValue, Typing::Fixed},
    {"log", 1, 1, kDouble, kAnyValue, kAnyValue, Typing::Fixed},
    {"exp", 1, 1, kDouble, kAnyValue, kAnyValue, Typing::Fixed},
    {"pow", 2, 2, kDouble, kAnyValue, kAnyValue, Typing::Fixed},
    {"cos", 1, 1, kDouble, kAnyValue, kAnyValue, Typing::Fixed},
    {"sin", 1, 1, kDouble, kAnyValue, kAnyValue, Typing::Fixed},
    {"tan", 1, 1, kDouble, kAnyValue, kAnyValue, Typing::Fixed},
};
static_assert(std::size(kRows) == OperatorTools::kNbOperators);

bool isOperator(QVOperator op) {
  return static_cast<int>(op) >= 0 && static_cast<int>(op) < OperatorTools::kNbOperators;
}

const Row& rowOf(QVOperator op, const Place& place) {
  if (!isOperator(op)) raise<KernelException>(place, "Unknown operator : ", static_cast<int>(op));
  return kRows[static_cast<std::size_t>(op)];
}

ValueType operandTypes(const Row& row, int pos) { return pos == 0 ? row.firstOperand : row.otherOperands; }

/// The types that occur among the operands from position `first` on. An expression may have fewer operands than its
/// operator needs: the model counts them only after the types are fixed.
ValueType typesOfOperands(const QVExpression& expression, std::uint32_t first = 0) {
  ValueType types = 0;
  for (std::uint32_t pos = first; pos < ModelAccess::nbOperands(expression); ++pos) {
    types |= ModelAccess::valueType(*ModelAccess::operand(expression, pos));
  }
  return types;
}

ValueType typesOfElements(const Row& row, const QVExpression& expression) {
  ValueType types = 0;
  for (std::uint32_t pos = 0; pos < ModelAccess::nbOperands(expression); ++pos) {
    if (operandTypes(row, static_cast<int>(pos)) != kArray) continue;
    types |= typesOfOperands(*ModelAccess::operand(expression, pos));
  }
  return types;
}

ValueType doubleOrInteger(ValueType types) { return (types & kDouble) != 0 ? kDouble : kInteger; }

ValueType concreteType(const Row& row, const QVExpression& expression) {
  switch (row.typing) {
    case Typing::Fixed:
      return row.results;
    case Typing::Widest:
      return doubleOrInteger(typesOfOperands(expression));
    case Typing::Branches: {
      const ValueType types = typesOfOperands(expression, 1);
      return (types & kNumeric) != 0 ? doubleOrInteger(types) : kBoolean;
    }
    case Typing::Elements:
      return doubleOrInteger(typesOfElements(row, expression));
    case Typing::Given:
      break;
  }
  return ModelAccess::valueType(expression);
}

}  // namespace

std::string_view OperatorTools::getName(QVOperator op) { return rowOf(op, here<OperatorTools>()).name; }

QVOperator OperatorTools::stringToOperator(const std::string& name) {
  static const auto kOperators = [] {
    std::map<std::string_view, QVOperator> operators;
    for (int number = 0; number < kNbOperators; ++number) {
      operators.emplace(kRows[number].name, static_cast<QVOperator>(number));
    }
    return operators;
  }();
  const auto found = kOperators.find(name);
  if (found == kOperators.end()) raise<KernelException>(here<OperatorTools>(), "Unknown operator : ", name);
  return found->second;
}

int OperatorTools::getNbMinOperands(QVOperator op) { return rowOf(op, here<OperatorTools>()).min; }

int OperatorTools::getNbMaxOperands(QVOperator op) { return rowOf(op, here<OperatorTools>()).max; }

ValueType OperatorTools::getValueTypes(QVOperator op) { return rowOf(op, here<OperatorTools>()).results; }

ValueType OperatorTools::getOperandValueTypes(QVOperator op, int pos) {
  return operandTypes(rowOf(op, here<OperatorTools>()), pos);
}

ValueType OperatorTools::getOperandValueTypes(QVOperator op, ValueType valueType, int pos) {
  const Row& row = rowOf(op, here<OperatorTools>());
  switch (row.typing) {
    case Typing::Given:
      raise<KernelException>(here<OperatorTools>(), "Const operator cannot have operands");
    case Typing::Widest:
      if (valueType == kInteger) return kWhole;
      if (valueType == kDouble) return kAnyValue;
      raise<KernelException>(here<OperatorTools>(), "ValueType not supported for this operator");
    case Typing::Branches:
      if (pos == 0 || valueType == kBoolean) return kBoolean;
      if (valueType == kInteger) return kWhole;
      return valueType == kDouble ? kAnyValue : ValueType{0};
    case Typing::Fixed:
    case Typing::Elements:
      break;
  }
  return operandTypes(row, pos);
}

bool OperatorTools::isOperandCompatible(QVOperator op, int pos, QVOperator operandOp) {
  return (getOperandValueTypes(op, pos) & getValueTypes(operandOp)) != 0;
}

void OperatorTools::fixValueType(QVExpression* expression) {
  const QVOperator op = ModelAccess::op(*expression);
  if (!isOperator(op)) raise<KernelException>(here<OperatorTools>(), "ValueType not supported");
  ModelAccess::setValueType(*expression, concreteType(kRows[static_cast<std::size_t>(op)], *expression));
}

std::string_view OperatorTools::valueTypesToString(ValueType types) {
  static constexpr std::string_view kTexts[] = {
      "boolean",           "integer",           "boolean or integer",         "double",
      "boolean or double", "integer or double", "boolean, integer or double", "array"};
  if (types < 1 || types > std::size(kTexts)) {
    raise<KernelException>(here<OperatorTools>(), "Argument type not supported");
  }
  return kTexts[types - 1];
}

t_value OperatorTools::getAbsorbingElement(QVOperator op, ValueType valueType) {
  if (!isOperator(op) || !kRows[static_cast<std::size_t>(op)].absorbing) {
    raise<KernelException>(here<OperatorTools>(), "This operator does not have an absorbing element");
  }
  const int element = *kRows[static_cast<std::size_t>(op)].absorbing;
  return valueType == kDouble ? doubleToWord(element) : element;
}

}  // namespace quvex
