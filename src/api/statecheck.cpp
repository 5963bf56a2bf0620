#include "api/statecheck.h"

#include <cmath>

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "builder/operatortools.h"

namespace quvex {
namespace {

/// A refusal in two pieces: where the method may be called, and what that asks of the caller.
struct RuleText {
  const char* allowed;
  const char* reason;
};

RuleText textOf(StateRule rule) {
  switch (rule) {
    case StateRule::NotRunning:
      return {"This method cannot be called in state Running",
              " (the model must not be closed or the solver must be paused or stopped)."};
    case StateRule::StoppedOnly:
      return {"This method is only allowed in state Stopped",
              " (the model must be closed and the solver must be stopped)."};
    case StateRule::PausedOrStopped:
      return {"This method is only allowed in states Paused or Stopped",
              " (the model must be closed and the solver must be paused or stopped)."};
    case StateRule::ModelingOnly:
      break;
  }
  return {"This method is only allowed in state Modeling", " (the model must not be closed)."};
}

bool allows(StateRule rule, QVState state) {
  switch (rule) {
    case StateRule::NotRunning:
      return state != QVState::Running;
    case StateRule::StoppedOnly:
      return state == QVState::Stopped;
    case StateRule::PausedOrStopped:
      return state == QVState::Paused || state == QVState::Stopped;
    case StateRule::ModelingOnly:
      break;
  }
  return state == QVState::Modeling;
}

}  // namespace

void checkState(const Quvex& quvex, StateRule rule, const Place& place) {
  if (allows(rule, quvex.getState())) return;
  const RuleText text = textOf(rule);
  raise<QVException>(place, text.allowed, text.reason);
}

void checkIndex(std::string_view what, int index, std::size_t count, const Place& place) {
  if (index >= 0 && static_cast<std::size_t>(index) < count) return;
  raise<QVException>(place, "The ", what, " with index ", index, " does not exist.\n", "Only indices from 0 to ",
                     static_cast<std::int64_t>(count) - 1, " are currently allowed.");
}

void checkCount(std::string_view what, std::size_t count, const Place& place) {
  if (count >= kMaxCount) raise<QVException>(place, "Number of ", what, " cannot exceed ", kMaxCount, ".");
}

void checkTotalOperands(std::size_t count, const Place& place) {
  if (count < kMaxCount) return;
  raise<QVException>(place, "The total number of operands in the model cannot exceed ", kMaxCount, ".");
}

void checkNotNull(const QVExpression* expression, std::string_view argument, const Place& place) {
  if (expression == nullptr) raise<QVException>(place, "Argument ", argument, " cannot be null.");
}

void checkOwner(const Quvex& quvex, const QVExpression& expression, std::string_view argument, const Place& place) {
  if (ModelAccess::owner(expression) == &quvex) return;
  raise<QVException>(place, "Argument ", argument, " does not belong to this instance of Quvex.");
}

void checkOwner(const Quvex& quvex, const QVExpression& expression, const Place& place) {
  if (ModelAccess::owner(expression) != &quvex) checkOwner(quvex, expression, expression.toString(), place);
}

void checkExpr(const Quvex& quvex, const QVExpression* expression, std::string_view argument, const Place& place) {
  checkNotNull(expression, argument, place);
  checkOwner(quvex, *expression, argument, place);
}

void checkNotEmpty(const std::string& text, std::string_view argument, const Place& place) {
  if (text.empty()) raise<QVException>(place, "Argument ", argument, " cannot be an empty string.");
}

void checkType(ValueType type, ValueType allowed, const Place& place) {
  if ((type & allowed) != 0) return;
  raise<QVException>(place, "Cannot use this method. The given expression must be ",
                     OperatorTools::valueTypesToString(allowed), ".");
}

void checkNotNan(double value, const Place& place) {
  if (std::isnan(value)) raise<QVException>(place, "Cannot use NaN (Not a Number) as a double constant.");
}

void checkTooMany(int count, QVOperator op, const Place& place) {
  const int most = OperatorTools::getNbMaxOperands(op);
  if (count <= most) return;
  raise<QVException>(place, "Number of operands (", count, ") is too large: at most ", most,
                     " operands are expected for expression with type '", OperatorTools::getName(op), "'.");
}

void checkOperand(QVOperator op, int pos, const QVExpression& operand, const Place& place) {
  if (OperatorTools::isOperandCompatible(op, pos, ModelAccess::op(operand))) return;
  raise<QVException>(place, "Operand ", pos, " of expression with type '", OperatorTools::getName(op), "' must be ",
                     OperatorTools::valueTypesToString(OperatorTools::getOperandValueTypes(op, pos)));
}

}  // namespace quvex
