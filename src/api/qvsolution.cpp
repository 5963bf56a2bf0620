#include "api/qvsolution.h"

#include <algorithm>

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvexpression.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/statecheck.h"
#include "builder/dagbuilder.h"
#include "builder/evaluatortools.h"
#include "builder/valuetools.h"

namespace quvex {

// The public operations.

Quvex* QVSolution::getQuvex() const {
  checkState(*owner, StateRule::NotRunning, here<QVSolution>());
  return owner;
}

void QVSolution::setValue(const QVExpression* expr, std::int64_t value) { setInteger(expr, value, here<QVSolution>()); }

void QVSolution::setIntValue(const QVExpression* expr, std::int64_t value) {
  setInteger(expr, value, here<QVSolution>());
}

void QVSolution::setDoubleValue(const QVExpression* expr, double value) {
  decisionCell(expr, kDouble, here<QVSolution>()) = doubleToWord(value);
  dirty = true;
}

std::int64_t QVSolution::getValue(const QVExpression* expr) {
  return computedCell(expr, kBoolean | kInteger, here<QVSolution>());
}

std::int64_t QVSolution::getIntValue(const QVExpression* expr) {
  return computedCell(expr, kBoolean | kInteger, here<QVSolution>());
}

double QVSolution::getDoubleValue(const QVExpression* expr) {
  return wordToDouble(computedCell(expr, kDouble, here<QVSolution>()));
}

QVSolutionStatus QVSolution::getStatus() {
  checkState(*owner, StateRule::PausedOrStopped, here<QVSolution>());
  recomputeIfDirty();
  return status;
}

void QVSolution::clear() {
  checkState(*owner, StateRule::StoppedOnly, here<QVSolution>());
  for (const QVExpression* expr : ModelAccess::expressions(*owner->getModel())) {
    const bool hasValue = (ModelAccess::valueType(*expr) & (kBoolean | kInteger | kDouble)) != 0;
    if (hasValue) values[ModelAccess::index(*expr)] = 0;
  }
  std::fill(evaluated.begin(), evaluated.end(), false);
  status = QVSolutionStatus::Infeasible;
  dirty = true;
}

// Cells.

void QVSolution::setInteger(const QVExpression* expr, std::int64_t value, const Place& place) {
  t_value& cell = decisionCell(expr, kBoolean | kInteger, place);
  if (ModelAccess::valueType(*expr) == kBoolean && value != 0 && value != 1) {
    raise<QVException>(place, "The only allowed values are 0 or 1");
  }
  cell = value;
  dirty = true;
}

t_value& QVSolution::decisionCell(const QVExpression* expr, ValueType allowed, const Place& place) {
  checkState(*owner, StateRule::PausedOrStopped, place);
  checkExpr(*owner, expr, "expr", place);
  checkType(ModelAccess::valueType(*expr), allowed, place);
  if (!ModelAccess::isDecision(*expr)) raise<QVException>(place, "Only decisions can be set.");
  return values[ModelAccess::index(*expr)];
}

t_value QVSolution::computedCell(const QVExpression* expr, ValueType allowed, const Place& place) {
  checkState(*owner, StateRule::PausedOrStopped, place);
  checkExpr(*owner, expr, "expr", place);
  checkType(ModelAccess::valueType(*expr), allowed, place);
  recomputeIfDirty();
  return values[ModelAccess::index(*expr)];
}

void QVSolution::initValues() {
  const std::vector<QVExpression*>& expressions = ModelAccess::expressions(*owner->getModel());
  values.assign(expressions.size(), 0);
  evaluated.assign(expressions.size(), false);
  for (const QVExpression* expr : expressions) {
    if (ModelAccess::isConstant(*expr)) values[ModelAccess::index(*expr)] = ModelAccess::constantValue(*expr);
  }
  status = QVSolutionStatus::Infeasible;
  dirty = true;
}

// Recomputation.

void QVSolution::recomputeIfDirty() {
  if (dirty) recompute();
}

void QVSolution::recompute() {
  dirty = true;
  markInputsEvaluated();
  for (const QVExpression* expr : ModelAccess::expressions(*owner->getModel())) evaluateFrom(expr);
  status = computeStatus();
  dirty = false;
}

void QVSolution::markInputsEvaluated() {
  for (const QVExpression* expr : ModelAccess::expressions(*owner->getModel())) {
    evaluated[ModelAccess::index(*expr)] = ModelAccess::isDecision(*expr) || ModelAccess::isConstant(*expr);
  }
}

void QVSolution::evaluateFrom(const QVExpression* root) {
  if (evaluated[ModelAccess::index(*root)]) return;
  visits.assign(1, {root, 0});
  while (!visits.empty()) {
    Visit& visit = visits.back();
    const std::span<const std::uint32_t> operands = ModelAccess::operandIndices(*visit.expr);
    while (visit.nextOperand < operands.size() && evaluated[operands[visit.nextOperand]]) ++visit.nextOperand;
    if (visit.nextOperand < operands.size()) {
      // A closed model has no cycle, but operands may be replaced behind the close.
      if (visits.size() >= values.size()) raise<QVException>(here<QVSolution>(), "A cycle was detected in the model.");
      visits.push_back({ModelAccess::operand(*visit.expr, visit.nextOperand), 0});
      continue;
    }
    evaluateOne(visit.expr);
    evaluated[ModelAccess::index(*visit.expr)] = true;
    visits.pop_back();
  }
}

void QVSolution::evaluateOne(const QVExpression* expr) {
  const QVOperator op = ModelAccess::op(*expr);
  t_value& cell = values[ModelAccess::index(*expr)];
  ValueType type = 0;
  switch (op) {
    case QVOperator::Array:  // no value of its own
      return;
    case QVOperator::At:
      return EvaluatorTools::atEval(expr, values, type, cell);
    case QVOperator::Scalar:
      return EvaluatorTools::scalarEval(expr, values, type, cell);
    default:
      EvaluatorTools::getOperands(expr, values, operandTypes, operandValues);
      EvaluatorTools::evaluate(op, operandTypes, operandValues, type, cell);
  }
}

// Status.

QVSolutionStatus QVSolution::computeStatus() const {
  if (isInconsistent()) return QVSolutionStatus::Inconsistent;
  for (const QVExpression* constraint : ModelAccess::constraints(*owner->getModel())) {
    if (values[ModelAccess::index(*constraint)] == 0) return QVSolutionStatus::Infeasible;
  }
  return isOptimal() ? QVSolutionStatus::Optimal : QVSolutionStatus::Feasible;
}

bool QVSolution::isInconsistent() const {
  const QVModel& model = *owner->getModel();
  const DagBuilder& builder = *ModelAccess::dagBuilder(model);
  return std::ranges::any_of(ModelAccess::constraints(model),
                             [&builder](const QVExpression* constraint) { return builder.canNeverHold(constraint); });
}

bool QVSolution::isOptimal() const {
  const auto nbObjectives = static_cast<int>(ModelAccess::objectives(*owner->getModel()).size());
  for (int i = 0; i < nbObjectives; ++i) {
    if (!isAtTarget(i)) return false;
  }
  return true;
}

/// Whether an objective is as good as its bound, or as good as the compiled model says it can become.
bool QVSolution::isAtTarget(int objective) const {
  const QVModel& model = *owner->getModel();
  const auto i = static_cast<std::size_t>(objective);
  const QVExpression* expr = ModelAccess::objectives(model)[i];
  const DagBuilder& builder = *ModelAccess::dagBuilder(model);
  const QVParam& param = *owner->getParam();
  const ValueType type = ModelAccess::valueType(*expr);
  const t_value cell = values[ModelAccess::index(*expr)];
  const t_value bound =
      type == kDouble ? doubleToWord(param.getDoubleObjectiveBound(objective)) : param.getIntObjectiveBound(objective);

  switch (ModelAccess::objectiveDirection(model, i)) {
    case QVObjectiveDirection::Maximize:
      return ValueTools::compare(type, cell, ValueTools::minValue(type, builder.getMaxBound(expr), bound)) >= 0;
    case QVObjectiveDirection::Minimize:
      return ValueTools::compare(type, cell, ValueTools::maxValue(type, builder.getMinBound(expr), bound)) <= 0;
  }
  return true;  // no other direction asks for anything
}

}  // namespace quvex
