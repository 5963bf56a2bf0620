#pragma once

#include "api/quvex.h"
#include "api/qvmodel.h"

namespace quvex {

/// A solver with an empty model, and short words for what tests put into it.
struct OpenModel {
  Quvex quvex;
  QVModel* model = quvex.getModel();

  QVExpression* decision() { return model->createExpression(QVOperator::Bool); }
  QVExpression* constant(std::int64_t value) { return model->createConstant(value); }
  QVExpression* constant(double value) { return model->createConstant(value); }
  template <class... Operands>
  QVExpression* make(QVOperator op, Operands... operands) {
    return model->createExpression(op, operands...);
  }
  void maximize(QVExpression* expr) { model->addObjective(expr, QVObjectiveDirection::Maximize); }
  void minimize(QVExpression* expr) { model->addObjective(expr, QVObjectiveDirection::Minimize); }
  /// Adds a constant objective, for models that are not about objectives, and closes.
  void close() {
    if (model->getNbObjectives() == 0) minimize(model->createConstant(std::int64_t{0}));
    model->close();
  }
};

}  // namespace quvex
