#pragma once

#include <string>
#include <string_view>

#include "api/qvoperator.h"
#include "solver/kernel/types.h"

namespace quvex {

class QVExpression;

/// The one table of what every operator of the model is: its name, how many operands it takes, which value types it may
/// produce and which it accepts at each operand position. Value types are masks, see `ValueType`.
/// Everything raises KernelException for a number that is no operator.
class OperatorTools {
 public:
  static constexpr const char* kName = "quvex::OperatorTools";
  static constexpr int kNbOperators = 34;
  /// The largest operand count of operators that take any number of operands.
  static constexpr int kUnbounded = 0x7fffffff;

  OperatorTools() = delete;

  /// The name under which model files and messages know the operator.
  [[nodiscard]] static std::string_view getName(QVOperator op);
  /// The inverse of `getName`, case-sensitive.
  [[nodiscard]] static QVOperator stringToOperator(const std::string& name);
  [[nodiscard]] static int getNbMinOperands(QVOperator op);
  [[nodiscard]] static int getNbMaxOperands(QVOperator op);
  /// The types that the operator may produce.
  [[nodiscard]] static ValueType getValueTypes(QVOperator op);
  /// The types that position `pos` may accept, as long as the type of the expression itself is not known.
  [[nodiscard]] static ValueType getOperandValueTypes(QVOperator op, int pos);
  /// The types that position `pos` accepts in an expression of concrete type `valueType`.
  [[nodiscard]] static ValueType getOperandValueTypes(QVOperator op, ValueType valueType, int pos);
  /// Whether `operandOp` can produce something that position `pos` of `op` may accept. It says nothing of the concrete
  /// type of an operand, and so refuses only what could never fit.
  [[nodiscard]] static bool isOperandCompatible(QVOperator op, int pos, QVOperator operandOp);
  /// Sets the concrete type of an expression, those of its operands (and of the elements of its arrays) being set.
  static void fixValueType(QVExpression* expression);
  /// The text of a mask from 1 to 8, such as "boolean or integer".
  [[nodiscard]] static std::string_view valueTypesToString(ValueType types);
  /// The value word that decides a "prod", "and" or "or" alone, as double bits when `valueType` is double.
  [[nodiscard]] static t_value getAbsorbingElement(QVOperator op, ValueType valueType);
};

}  // namespace quvex
