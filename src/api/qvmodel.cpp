#include "api/qvmodel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

#include "api/expressionpool.h"
#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvparam.h"
#include "api/qvsolution.h"
#include "api/statecheck.h"
#include "builder/dagbuilder.h"
#include "builder/operatortools.h"

namespace quvex {
namespace {

void checkBoolean(bool canBeBoolean, const Place& place) {
  if (canBeBoolean) return;
  raise<QVException>(place,
                     "Only boolean expressions can be constrained "
                     "(0, 1, bool, and, or, xor, not, eq, neq, geq, leq, gt, lt, if).");
}

}  // namespace

QVModel::QVModel(Quvex* owningQuvex) : owner(owningQuvex), expressionPool(std::make_unique<ExpressionPool>()) {}

QVModel::~QVModel() = default;

Quvex* QVModel::getQuvex() const {
  checkState(*owner, StateRule::NotRunning, here<QVModel>());
  return owner;
}

QVExpression* QVModel::createConstant(std::int64_t value) {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::ModelingOnly, place);
  checkCount("expressions", expressions.size(), place);
  QVExpression*& constant = intConstants[value];
  if (constant != nullptr) return constant;
  constant = newExpression(QVOperator::Const);
  constant->operands.value = value;
  constant->valueType = value == 0 || value == 1 ? kBoolean : kInteger;
  return constant;
}

QVExpression* QVModel::createConstant(double value) {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::ModelingOnly, place);
  checkCount("expressions", expressions.size(), place);
  checkNotNan(value, place);
  if (std::isinf(value)) raise<QVException>(place, "Cannot use infinity as a double constant.");
  QVExpression* constant = newExpression(QVOperator::Const);
  constant->operands.value = doubleToWord(value);
  constant->valueType = kDouble;
  return constant;
}

QVExpression* QVModel::createExpression(QVOperator op) { return createFrom(op, {}, here<QVModel>()); }

QVExpression* QVModel::createExpression(QVOperator op, QVExpression* expr0) {
  return createFrom(op, {expr0}, here<QVModel>());
}

QVExpression* QVModel::createExpression(QVOperator op, QVExpression* expr0, QVExpression* expr1) {
  return createFrom(op, {expr0, expr1}, here<QVModel>());
}

QVExpression* QVModel::createExpression(QVOperator op, QVExpression* expr0, QVExpression* expr1, QVExpression* expr2) {
  return createFrom(op, {expr0, expr1, expr2}, here<QVModel>());
}

QVExpression* QVModel::createFrom(QVOperator op, std::initializer_list<QVExpression*> operands, const Place& place) {
  static constexpr std::array<const char*, 3> kArguments = {"expr0", "expr1", "expr2"};
  checkState(*owner, StateRule::ModelingOnly, place);
  checkCount("expressions", expressions.size(), place);
  if (op == QVOperator::Const) {
    raise<QVException>(place, "Cannot create constants with this method. Use 'createConstant' instead.");
  }
  int pos = 0;
  for (const QVExpression* operand : operands) {
    checkExpr(*owner, operand, kArguments.at(static_cast<std::size_t>(pos)), place);
    checkTooMany(pos + 1, op, place);
    checkOperand(op, pos, *operand, place);
    ++pos;
  }
  QVExpression* expression = newExpression(op);
  if (op == QVOperator::Bool) decisions.push_back(expression);
  for (QVExpression* operand : operands) expression->addOperand(operand);
  return expression;
}

QVExpression* QVModel::createFromMixed(QVOperator op, std::span<const Operand> operands) {
  std::array<QVExpression*, 3> converted{};
  for (std::size_t pos = operands.size(); pos-- > 0;) {
    const Operand& operand = operands[pos];
    if (const auto* given = std::get_if<QVExpression*>(&operand)) converted[pos] = *given;
    if (const auto* integer = std::get_if<std::int64_t>(&operand)) converted[pos] = createConstant(*integer);
    if (const auto* real = std::get_if<double>(&operand)) converted[pos] = createConstant(*real);
  }
  if (operands.size() == 1) return createExpression(op, converted[0]);
  if (operands.size() == 2) return createExpression(op, converted[0], converted[1]);
  return createExpression(op, converted[0], converted[1], converted[2]);
}

QVExpression* QVModel::newExpression(QVOperator op) {
  static_cast<void>(OperatorTools::getName(op));  // refuses a number that is no operator
  QVExpression* expression = expressionPool->create(this, op, static_cast<std::uint32_t>(expressions.size()));
  expressions.push_back(expression);
  return expression;
}

int QVModel::getNbExpressions() const {
  checkState(*owner, StateRule::NotRunning, here<QVModel>());
  return static_cast<int>(expressions.size());
}

QVExpression* QVModel::getExpression(int index) const {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::NotRunning, place);
  checkIndex("expression", index, expressions.size(), place);
  return expressions[static_cast<std::size_t>(index)];
}

QVExpression* QVModel::getExpression(const std::string& name) const {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::NotRunning, place);
  checkNotEmpty(name, "name", place);
  QVExpression* expression = ModelAccess::findByName(*this, name);
  if (expression == nullptr) raise<QVException>(place, "No operator found with name '", name, "'.");
  return expression;
}

int QVModel::getNbDecisions() const {
  checkState(*owner, StateRule::NotRunning, here<QVModel>());
  return static_cast<int>(decisions.size());
}

QVExpression* QVModel::getDecision(int index) const {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::NotRunning, place);
  checkIndex("decision", index, decisions.size(), place);
  return decisions[static_cast<std::size_t>(index)];
}

void QVModel::addConstraint(QVExpression* expr) {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::ModelingOnly, place);
  checkCount("constraints", constraints.size(), place);
  checkExpr(*owner, expr, "expr", place);
  checkBoolean(expr->canBeBoolean(), place);
  if (expr->constraint) return;
  constraints.push_back(expr);
  expr->constraint = true;
}

int QVModel::getNbConstraints() const {
  checkState(*owner, StateRule::NotRunning, here<QVModel>());
  return static_cast<int>(constraints.size());
}

QVExpression* QVModel::getConstraint(int index) const {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::NotRunning, place);
  checkIndex("constraint", index, constraints.size(), place);
  return constraints[static_cast<std::size_t>(index)];
}

void QVModel::addObjective(QVExpression* expr, QVObjectiveDirection direction) {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::ModelingOnly, place);
  checkCount("objectives", objectives.size(), place);
  checkExpr(*owner, expr, "expr", place);
  if (expr->op() == QVOperator::Array) {
    raise<QVException>(place, "Only expressions with a value can be added in the objectives list.");
  }
  objectives.push_back(expr);
  objectiveDirections.push_back(direction);
  expr->objective = true;
}

int QVModel::getNbObjectives() const {
  checkState(*owner, StateRule::NotRunning, here<QVModel>());
  return static_cast<int>(objectives.size());
}

QVExpression* QVModel::getObjective(int index) const {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::NotRunning, place);
  checkIndex("objective", index, objectives.size(), place);
  return objectives[static_cast<std::size_t>(index)];
}

QVObjectiveDirection QVModel::getObjectiveDirection(int index) const {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::NotRunning, place);
  checkIndex("objective", index, objectives.size(), place);
  return objectiveDirections[static_cast<std::size_t>(index)];
}

int QVModel::getNbOperands() const {
  checkState(*owner, StateRule::NotRunning, here<QVModel>());
  return nbTotalOperands;
}

void QVModel::close() {
  const Place place = here<QVModel>();
  checkState(*owner, StateRule::ModelingOnly, place);
  if (objectives.empty()) raise<QVException>(place, "At least one objective is required in the model.");
  for (const QVExpression* expr : expressions) checkOwner(*owner, *expr, place);
  detectCycles(place);
  fixValueTypes();
  for (const QVExpression* expr : expressions) checkOperands(*expr, place);
  for (const QVExpression* expr : constraints) checkBoolean(expr->canBeBoolean(), place);
  compile();
}

void QVModel::detectCycles(const Place& place) const {
  std::vector<bool> visited(expressions.size());
  std::vector<bool> onPath(expressions.size());
  std::vector<Visit> path;
  const auto enter = [&](std::uint32_t index) {
    if (visited[index]) return;
    visited[index] = true;
    onPath[index] = true;
    path.push_back({index, 0});
  };
  for (std::uint32_t start = 0; start < expressions.size(); ++start) {
    enter(start);
    while (!path.empty()) {
      Visit& top = path.back();
      const auto operands = expressions[top.index]->operandIndices();
      if (top.nextOperand == operands.size()) {
        onPath[top.index] = false;
        path.pop_back();
        continue;
      }
      const std::uint32_t operand = operands[top.nextOperand++];
      if (onPath[operand]) raiseCycle(path, operand, place);
      enter(operand);
    }
  }
}

void QVModel::raiseCycle(const std::vector<Visit>& path, std::uint32_t met, const Place& place) const {
  const auto first = std::ranges::find(path, met, &Visit::index);
  std::ostringstream cycle;
  for (auto step = first; step != path.end(); ++step) cycle << "\n  - " << expressions[step->index]->toString();
  raise<QVException>(place, "A cycle of length ", path.end() - first, " was detected in the model : ", cycle.str());
}

void QVModel::fixValueTypes() {
  std::vector<QVExpression*> waiting(expressions);
  while (!waiting.empty()) {
    QVExpression* top = waiting.back();
    if (top->valueType != 0) {
      waiting.pop_back();
      continue;
    }
    const std::size_t nbWaiting = waiting.size();
    for (const std::uint32_t index : top->operandIndices()) {
      if (expressions[index]->valueType == 0) waiting.push_back(expressions[index]);
    }
    if (waiting.size() > nbWaiting) continue;
    waiting.pop_back();
    OperatorTools::fixValueType(top);
  }
}

void QVModel::checkOperands(const QVExpression& expr, const Place& place) const {
  const QVOperator op = expr.op();
  const int least = OperatorTools::getNbMinOperands(op);
  if (expr.nbOperands < least) {
    raise<QVException>(place, "Number of operands (", expr.nbOperands, ") is too small: at least ", least,
                       " operands are expected for ", expr.toString(), ".");
  }
  const int most = OperatorTools::getNbMaxOperands(op);
  if (expr.nbOperands > most) {
    raise<QVException>(place, "Number of operands (", expr.nbOperands, ") is too large: at most ", most,
                       " operands are expected for ", expr.toString(), ".");
  }
  int pos = 0;
  for (const std::uint32_t index : expr.operandIndices()) {
    const QVExpression& operand = *expressions[index];
    checkOwner(*owner, operand, place);
    const ValueType expected = OperatorTools::getOperandValueTypes(op, expr.valueType, pos);
    if ((operand.valueType & expected) == 0) {
      raise<QVException>(place, "Operand ", pos, " of ", expr.toString(), " must be ",
                         OperatorTools::valueTypesToString(expected),
                         ". Type provided: ", OperatorTools::valueTypesToString(operand.valueType));
    }
    ++pos;
  }
}

void QVModel::compile() {
  closed = true;
  owner->setState(QVState::Stopped);
  try {
    owner->solution->initValues();
    owner->param->initObjectiveBounds();
    dagBuilder = std::make_unique<DagBuilder>(this);
  } catch (...) {
    closed = false;
    owner->setState(QVState::Modeling);
    throw;
  }
}

void QVModel::open() {
  checkState(*owner, StateRule::StoppedOnly, here<QVModel>());
  closed = false;
  owner->clearSearch();
  dagBuilder.reset();
  owner->setState(QVState::Modeling);
}

bool QVModel::isClosed() const {
  checkState(*owner, StateRule::NotRunning, here<QVModel>());
  return closed;
}

std::string QVModel::toString() const {
  checkState(*owner, StateRule::NotRunning, here<QVModel>());
  std::ostringstream text;
  text << "Model: \n";
  text << "  expressions = " << expressions.size() << ", operands = " << nbTotalOperands << "\n";
  text << "  decisions = " << decisions.size() << ", constraints = " << constraints.size()
       << ", objectives = " << objectives.size() << "\n";
  return text.str();
}

}  // namespace quvex
