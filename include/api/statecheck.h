#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "api/qvexception.h"
#include "api/qvoperator.h"
#include "solver/kernel/types.h"

/// Every refusal that several public classes share, with its one text. All raise QVException at the `Place` that the
/// caller hands in, so that the user reads the name of the method that was called.
namespace quvex {

class Quvex;
class QVExpression;

/// In which states of the solver a method may be called.
enum class StateRule {
  NotRunning,       ///< Modeling, Paused, Stopped
  StoppedOnly,      ///< Stopped
  PausedOrStopped,  ///< Paused, Stopped
  ModelingOnly,     ///< Modeling
};

/// No more than this many expressions, constraints, objectives, or operands over the whole model.
inline constexpr std::size_t kMaxCount = 2147483647;

void checkState(const Quvex& quvex, StateRule rule, const Place& place);

/// "The <what> with index <i> does not exist. ...": an index must lie in [0, count).
void checkIndex(std::string_view what, int index, std::size_t count, const Place& place);

/// "Number of <what> cannot exceed ...": there must be room for one entry behind the `count` present ones.
void checkCount(std::string_view what, std::size_t count, const Place& place);

/// The same for the sum of operand counts over the model.
void checkTotalOperands(std::size_t count, const Place& place);

/// "Argument <argument> cannot be null."
void checkNotNull(const QVExpression* expression, std::string_view argument, const Place& place);

/// "Argument <argument> does not belong to this instance of Quvex."
void checkOwner(const Quvex& quvex, const QVExpression& expression, std::string_view argument, const Place& place);

/// The same, where the expression's own text stands for the argument's name.
void checkOwner(const Quvex& quvex, const QVExpression& expression, const Place& place);

/// An argument must exist and belong to `quvex`.
void checkExpr(const Quvex& quvex, const QVExpression* expression, std::string_view argument, const Place& place);

/// "Argument <argument> cannot be an empty string."
void checkNotEmpty(const std::string& text, std::string_view argument, const Place& place);

/// "Cannot use this method. The given expression must be <types>.": `type` must share a bit with `allowed`.
void checkType(ValueType type, ValueType allowed, const Place& place);

/// "Cannot use NaN (Not a Number) as a double constant."
void checkNotNan(double value, const Place& place);

/// An expression of operator `op` must be allowed to have `count` operands.
void checkTooMany(int count, QVOperator op, const Place& place);

/// What `operand` can produce must suit position `pos` of an expression of operator `op`.
void checkOperand(QVOperator op, int pos, const QVExpression& operand, const Place& place);

}  // namespace quvex
