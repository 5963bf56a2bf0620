#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "api/quvex.h"
#include "api/qvexpression.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvphase.h"
#include "api/qvstate.h"
#include "solver/kernel/types.h"

namespace quvex {

/// The one door through which compilation, solution and model files read a model without the state rules of the public
/// methods: they run inside calls that have been let through already. Nothing here checks anything.
struct ModelAccess {
  // The model.
  static const std::vector<QVExpression*>& expressions(const QVModel& model) { return model.expressions; }
  static const std::vector<QVExpression*>& decisions(const QVModel& model) { return model.decisions; }
  static const std::vector<QVExpression*>& constraints(const QVModel& model) { return model.constraints; }
  static const std::vector<QVExpression*>& objectives(const QVModel& model) { return model.objectives; }
  static const std::vector<QVObjectiveDirection>& objectiveDirections(const QVModel& model) {
    return model.objectiveDirections;
  }
  static QVObjectiveDirection objectiveDirection(const QVModel& model, std::size_t i) {
    return model.objectiveDirections[i];
  }
  static QVExpression* expression(const QVModel& model, std::uint32_t i) { return model.expressions[i]; }
  static std::uint32_t nbExpressions(const QVModel& model) {
    return static_cast<std::uint32_t>(model.expressions.size());
  }
  static bool isClosed(const QVModel& model) { return model.closed; }
  /// Null while the model is open.
  static DagBuilder* dagBuilder(const QVModel& model) { return model.dagBuilder.get(); }
  static Quvex* owner(const QVModel& model) { return model.owner; }

  // One expression.
  static QVOperator op(const QVExpression& expr) { return expr.op(); }
  static ValueType valueType(const QVExpression& expr) { return expr.valueType; }
  static void setValueType(QVExpression& expr, ValueType type) { expr.valueType = type; }
  static std::uint32_t index(const QVExpression& expr) { return static_cast<std::uint32_t>(expr.index); }
  static QVModel* model(const QVExpression& expr) { return expr.model; }
  static Quvex* owner(const QVExpression& expr) { return expr.model->owner; }
  static std::uint32_t nbOperands(const QVExpression& expr) { return static_cast<std::uint32_t>(expr.nbOperands); }
  static std::span<const std::uint32_t> operandIndices(const QVExpression& expr) { return expr.operandIndices(); }
  static QVExpression* operand(const QVExpression& expr, std::uint32_t pos) {
    return expr.model->expressions[expr.operandIndices()[pos]];
  }
  static bool isConstant(const QVExpression& expr) { return expr.op() == QVOperator::Const; }
  static bool isDecision(const QVExpression& expr) { return expr.op() == QVOperator::Bool; }
  static bool isConstraint(const QVExpression& expr) { return expr.constraint; }
  static bool isObjective(const QVExpression& expr) { return expr.objective; }
  /// The word of a "const", to be read by its value type.
  static t_value constantValue(const QVExpression& expr) { return expr.operands.value; }

  // Names.
  /// Null when no expression has that name.
  static QVExpression* findByName(const QVModel& model, std::string_view name) {
    const auto found = model.expressionsByName.lower_bound(name);
    return found == model.expressionsByName.end() || found->first != name ? nullptr : found->second;
  }
  /// Empty for an unnamed expression.
  static std::string_view name(const QVExpression& expr) {
    const auto found = expr.model->namesByIndex.find(index(expr));
    return found == expr.model->namesByIndex.end() ? std::string_view() : std::string_view(found->second);
  }

  // Parameters.
  static const std::map<std::string, int>& advancedParams(const QVParam& param) { return param.advancedParams; }

  // The solver.
  /// Removes all phases. Pointers to them that a caller holds dangle.
  static void dropPhases(Quvex& quvex) { quvex.phases.clear(); }
};

}  // namespace quvex
