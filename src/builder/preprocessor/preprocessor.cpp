#include "builder/preprocessor/preprocessor.h"

#include <algorithm>

#include "api/qvexpression.h"
#include "builder/evaluatortools.h"
#include "builder/operatortools.h"
#include "builder/preprocessor/dummynodecreator.h"
#include "builder/preprocessor/nodecreator.h"
#include "builder/valuetools.h"
#include "solver/kernel/dagfixedfields.h"

namespace quvex {

Preprocessor::Preprocessor(const QVModel& closedModel, DagFixedFields& emptyFields)
    : model(closedModel), fixedFields(emptyFields) {
  const std::uint32_t size = ModelAccess::nbExpressions(model);
  exprToNode.assign(size, kNone);
  values.assign(size, 0);
  isConstant.assign(size, false);
  userCount.assign(size, 0);
  countUsers();
  collectRoots();
  copyConstants();
}

void Preprocessor::countUsers() {
  for (const QVExpression* user : ModelAccess::expressions(model)) {
    for (const ExprId operand : ModelAccess::operandIndices(*user)) ++userCount[operand];
  }
}

void Preprocessor::collectRoots() {
  for (ExprId e = 0; e < userCount.size(); ++e) {
    if (userCount[e] == 0) roots.push_back(e);
  }
}

void Preprocessor::copyConstants() {
  for (const QVExpression* expr : ModelAccess::expressions(model)) {
    if (ModelAccess::isConstant(*expr)) recordConstant(ModelAccess::index(*expr), ModelAccess::constantValue(*expr));
  }
}

void Preprocessor::run(bool simplify) {
  if (simplify) {
    propagateConstants();
    NodeCreator(*this).createAll();
  } else {
    DummyNodeCreator(*this).createAll();
  }
  fixedFields.init();
}

bool Preprocessor::allConstant(std::span<const ExprId> expressions) const {
  return std::ranges::all_of(expressions, [this](ExprId e) { return isConstant[e]; });
}

bool Preprocessor::anyDouble(std::span<const ExprId> expressions) const {
  return std::ranges::any_of(expressions, [this](ExprId e) { return isDouble(e); });
}

void Preprocessor::recordConstant(ExprId e, t_value value) {
  values[e] = value;
  isConstant[e] = true;
}

void Preprocessor::propagateConstants() {
  visited.assign(exprToNode.size(), false);
  for (const ExprId root : roots) propagateFrom(root);
}

void Preprocessor::propagateFrom(ExprId root) {
  stack.push_back(root);
  while (!stack.empty()) {
    const ExprId e = stack.back();
    if (visited[e]) {
      stack.pop_back();
      continue;
    }
    if (op(e) == QVOperator::Const || op(e) == QVOperator::Array) {
      visited[e] = true;
      stack.pop_back();
      continue;
    }
    const std::size_t before = stack.size();
    for (const ExprId operand : operands(e)) {
      if (!visited[operand]) stack.push_back(operand);
    }
    if (stack.size() != before) continue;
    stack.pop_back();
    visited[e] = true;
    foldExpression(e);
  }
}

void Preprocessor::foldExpression(ExprId e) {
  const std::span<const ExprId> own = operands(e);
  if (own.empty()) return;
  if (allConstant(own)) return evaluateConstant(e);
  if (isAbsorbed(e)) return recordConstant(e, OperatorTools::getAbsorbingElement(op(e), type(e)));
  if (op(e) == QVOperator::Eq && ModelAccess::isConstraint(expression(e))) fixDecision(e);
}

void Preprocessor::evaluateConstant(ExprId e) {
  EvaluatorTools::getOperands(&expression(e), values, operandTypes, operandValues);
  ValueType resultType = 0;
  t_value result = 0;
  EvaluatorTools::evaluate(op(e), operandTypes, operandValues, resultType, result);
  recordConstant(e, result);
}

bool Preprocessor::isAbsorbed(ExprId e) const {
  const QVOperator absorber = op(e);
  if (absorber != QVOperator::Prod && absorber != QVOperator::And && absorber != QVOperator::Or) return false;
  const double absorbing = absorber == QVOperator::Or ? 1.0 : 0.0;
  return std::ranges::any_of(operands(e), [&](ExprId operand) {
    return isConstant[operand] && ValueTools::toDouble(type(operand), values[operand]) == absorbing;
  });
}

void Preprocessor::fixDecision(ExprId eq) {
  const std::span<const ExprId> sides = operands(eq);
  for (const std::size_t side : {0U, 1U}) {
    const ExprId decision = sides[side];
    const std::optional<t_value> value = fixingValue(sides[1 - side]);
    if (op(decision) != QVOperator::Bool || !value) continue;
    recordConstant(decision, *value);
    fixedDecisions.push_back(decision);
    fixedValues.push_back(*value);
    return recordConstant(eq, 1);
  }
}

/// The word of a "max" is read as a double and every other one as an integer, whatever the type. So a double constant
/// 1.0 fixes nothing, and the "eq" stays an ordinary constraint.
std::optional<t_value> Preprocessor::fixingValue(ExprId e) const {
  if (!isConstant[e]) return std::nullopt;
  const bool readAsDouble = op(e) == QVOperator::Max;
  for (const t_value candidate : {t_value{1}, t_value{0}}) {
    if (readAsDouble ? wordToDouble(values[e]) == static_cast<double>(candidate) : values[e] == candidate) {
      return candidate;
    }
  }
  return std::nullopt;
}

}  // namespace quvex
