#include "api/qvexpression.h"

#include <algorithm>
#include <sstream>

#include "api/modelaccess.h"
#include "api/quvex.h"
#include "api/qvmodel.h"
#include "api/qvsolution.h"
#include "api/statecheck.h"
#include "builder/operatortools.h"

namespace quvex {

QVExpression::QVExpression(QVModel* owningModel, QVOperator ownOperator, std::uint32_t position)
    : model(owningModel),
      index(static_cast<std::int32_t>(position)),
      opNumber(static_cast<std::uint8_t>(ownOperator)) {}

QVExpression::~QVExpression() {
  if (!hasInlineOperands()) delete[] operands.heap;
}

Quvex* QVExpression::getQuvex() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return model->owner;
}

QVModel* QVExpression::getModel() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return model;
}

QVOperator QVExpression::getOperator() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return op();
}

int QVExpression::getIndex() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return index;
}

bool QVExpression::isConstant() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return op() == QVOperator::Const;
}

bool QVExpression::isDecision() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return op() == QVOperator::Bool;
}

bool QVExpression::isConstraint() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return constraint;
}

bool QVExpression::isObjective() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return objective;
}

bool QVExpression::isDouble() const {
  checkState(*model->owner, StateRule::PausedOrStopped, here<QVExpression>());
  return valueType == kDouble;
}

bool QVExpression::isInt() const {
  checkState(*model->owner, StateRule::PausedOrStopped, here<QVExpression>());
  return valueType == kInteger;
}

bool QVExpression::isBool() const {
  checkState(*model->owner, StateRule::PausedOrStopped, here<QVExpression>());
  return valueType == kBoolean;
}

void QVExpression::addOperand(QVExpression* expr) {
  const Place place = here<QVExpression>();
  checkState(*model->owner, StateRule::NotRunning, place);
  checkNotNull(expr, "expr", place);
  checkState(*model->owner, StateRule::ModelingOnly, place);
  checkTotalOperands(static_cast<std::size_t>(model->nbTotalOperands), place);
  checkOwner(*model->owner, *expr, place);
  checkTooMany(nbOperands + 1, op(), place);
  checkOperand(op(), nbOperands, *expr, place);
  appendOperand(static_cast<std::uint32_t>(expr->index));
  ++model->nbTotalOperands;
}

void QVExpression::addOperand(std::int64_t value) {
  checkState(*model->owner, StateRule::ModelingOnly, here<QVExpression>());
  addOperand(model->createConstant(value));
}

void QVExpression::addOperand(double value) {
  checkState(*model->owner, StateRule::ModelingOnly, here<QVExpression>());
  addOperand(model->createConstant(value));
}

void QVExpression::setOperand(int pos, QVExpression* expr) {
  const Place place = here<QVExpression>();
  checkState(*model->owner, StateRule::NotRunning, place);
  checkNotNull(expr, "expr", place);
  checkIndex("operands", pos, static_cast<std::size_t>(nbOperands), place);
  checkOwner(*model->owner, *expr, place);
  // The tests of an operand that is appended, although one is replaced: callers rely on these refusals.
  checkTooMany(nbOperands + 1, op(), place);
  checkOperand(op(), nbOperands, *expr, place);
  std::uint32_t* cells = hasInlineOperands() ? operands.inlined : operands.heap;
  cells[pos] = static_cast<std::uint32_t>(expr->index);
}

void QVExpression::setOperand(int pos, std::int64_t value) { setOperand(pos, model->createConstant(value)); }

void QVExpression::setOperand(int pos, double value) { setOperand(pos, model->createConstant(value)); }

QVExpression* QVExpression::getOperand(int pos) const {
  const Place place = here<QVExpression>();
  checkState(*model->owner, StateRule::NotRunning, place);
  checkIndex("operands", pos, static_cast<std::size_t>(nbOperands), place);
  return ModelAccess::operand(*this, static_cast<std::uint32_t>(pos));
}

int QVExpression::getNbOperands() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return nbOperands;
}

void QVExpression::checkReadable(ValueType allowed, const Place& place) const {
  checkState(*model->owner, StateRule::NotRunning, place);
  if (op() == QVOperator::Const) return checkType(valueType, allowed, place);
  checkState(*model->owner, StateRule::PausedOrStopped, place);
}

std::int64_t QVExpression::getValue() const {
  checkReadable(kBoolean | kInteger, here<QVExpression>());
  return op() == QVOperator::Const ? operands.value : model->owner->solution->getIntValue(this);
}

std::int64_t QVExpression::getIntValue() const {
  checkReadable(kBoolean | kInteger, here<QVExpression>());
  return op() == QVOperator::Const ? operands.value : model->owner->solution->getIntValue(this);
}

double QVExpression::getDoubleValue() const {
  checkReadable(kDouble, here<QVExpression>());
  return op() == QVOperator::Const ? wordToDouble(operands.value) : model->owner->solution->getDoubleValue(this);
}

void QVExpression::setValue(std::int64_t value) {
  checkState(*model->owner, StateRule::PausedOrStopped, here<QVExpression>());
  model->owner->solution->setValue(this, value);
}

void QVExpression::setIntValue(std::int64_t value) {
  checkState(*model->owner, StateRule::PausedOrStopped, here<QVExpression>());
  model->owner->solution->setIntValue(this, value);
}

void QVExpression::setDoubleValue(double value) {
  checkState(*model->owner, StateRule::PausedOrStopped, here<QVExpression>());
  model->owner->solution->setDoubleValue(this, value);
}

void QVExpression::setName(const std::string& name) {
  const Place place = here<QVExpression>();
  checkState(*model->owner, StateRule::ModelingOnly, place);
  checkNotEmpty(name, "name", place);
  if (ModelAccess::findByName(*model, name) != nullptr) {
    raise<QVException>(place, "An operator with name \"", name, "\" already exists.");
  }
  std::string& ownName = model->namesByIndex[static_cast<std::uint32_t>(index)];
  model->expressionsByName.erase(ownName);
  model->expressionsByName.emplace(name, this);
  ownName = name;
}

bool QVExpression::isNamed() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return !ModelAccess::name(*this).empty();
}

std::string QVExpression::getName() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  return std::string(ModelAccess::name(*this));
}

std::string QVExpression::toString() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  std::ostringstream text;
  text << "Expression " << index << " (type = " << OperatorTools::getName(op());
  if (const std::string_view name = ModelAccess::name(*this); !name.empty()) text << ", name = " << name;
  text << ")";
  return text.str();
}

std::string QVExpression::getInfo() const {
  checkState(*model->owner, StateRule::NotRunning, here<QVExpression>());
  std::ostringstream text;
  text << toString() << "\n";
  text << "  decision = " << (op() == QVOperator::Bool) << ", constraint = " << constraint
       << ", objective = " << objective << "\n";
  if (!hasKnownValue()) return text.str();
  text << "  value = ";
  if (valueType == kDouble) {
    text << getDoubleValue();
  } else {
    text << getIntValue();
  }
  text << "\n";
  return text.str();
}

bool QVExpression::hasKnownValue() const {
  if ((valueType & (kBoolean | kInteger | kDouble)) == 0) return false;
  if (op() == QVOperator::Const) return true;
  const QVState state = model->owner->getState();
  return model->owner->wasStarted() && (state == QVState::Paused || state == QVState::Stopped);
}

bool QVExpression::canBeBoolean() const {
  if (valueType != 0) return valueType == kBoolean;
  return (OperatorTools::getValueTypes(op()) & kBoolean) != 0;
}

void QVExpression::appendOperand(std::uint32_t operandIndex) {
  if (nbOperands < 2) {
    operands.inlined[nbOperands++] = operandIndex;
    return;
  }
  if (nbOperands == 2) {
    moveOperandsTo(4);
  } else if (operands.heap[nbOperands] == kNone) {
    moveOperandsTo(2 * static_cast<std::size_t>(nbOperands) + 2);
  }
  operands.heap[nbOperands++] = operandIndex;
}

void QVExpression::moveOperandsTo(std::size_t nbCells) {
  auto* cells = new std::uint32_t[nbCells]{};
  std::ranges::copy(operandIndices(), cells);
  cells[nbCells - 1] = kNone;
  if (!hasInlineOperands()) delete[] operands.heap;
  operands.heap = cells;
}

}  // namespace quvex
