#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "api/qvexception.h"
#include "api/qvoperator.h"
#include "solver/kernel/types.h"

namespace quvex {

class QVExpression;

/// What every operator of the model means, on given values. It serves the folding of constants and the recomputation
/// of a solution, and agrees with the kernel nodes to the last bit.
/// An operand list is two parallel sequences of equal length: concrete types and value words.
/// Stateless; every failure is a KernelException.
class EvaluatorTools {
 public:
  static constexpr const char* kName = "quvex::EvaluatorTools";

  EvaluatorTools() = delete;

  /// Evaluates any operator but "bool", "const", "array", "at" and "scalar". Operators with a fixed number of operands
  /// must get that number.
  static void evaluate(QVOperator op, std::span<const ValueType> types, std::span<const t_value> values,
                       ValueType& resultType, t_value& resultValue);

  /// Evaluates an "at" on the values of all expressions, by expression index. Elements of a double "at" are converted.
  static void atEval(const QVExpression* expression, std::span<const t_value> allValues, ValueType& resultType,
                     t_value& resultValue);

  /// Evaluates a "scalar" on the values of all expressions, by expression index.
  static void scalarEval(const QVExpression* expression, std::span<const t_value> allValues, ValueType& resultType,
                         t_value& resultValue);

  /// Replaces `types` and `values` by those of the operands, in order.
  static void getOperands(const QVExpression* expression, std::span<const t_value> allValues,
                          std::vector<ValueType>& types, std::vector<t_value>& values);

  /// The index of an "at" must lie in [0, size).
  static void checkArrayIndex(const QVExpression* at, t_value index, std::size_t size, const Place& place);
  /// A "scalar" goes by the length of its first array: the second must not be shorter.
  static void checkScalarLengths(std::size_t nbFirst, std::size_t nbSecond, const Place& place);
};

}  // namespace quvex
