#pragma once

#include <cstdint>
#include <vector>

#include "api/quvex.h"
#include "api/qvexpression.h"
#include "api/qvmodel.h"
#include "api/qvparam.h"
#include "api/qvphase.h"

namespace quvex {

/// n boolean decisions.
inline std::vector<QVExpression*> createDecisions(QVModel& model, int n) {
  std::vector<QVExpression*> decisions(static_cast<std::size_t>(n));
  for (QVExpression*& decision : decisions) decision = model.createExpression(QVOperator::Bool);
  return decisions;
}

/// The sum of weights[i] * decisions[i].
inline QVExpression* weightedSum(QVModel& model, const std::vector<QVExpression*>& decisions,
                                 const std::vector<std::int64_t>& weights) {
  QVExpression* sum = model.createExpression(QVOperator::Sum);
  for (std::size_t i = 0; i < decisions.size(); ++i) {
    sum->addOperand(model.createExpression(QVOperator::Prod, model.createConstant(weights[i]), decisions[i]));
  }
  return sum;
}

/// Eight items, capacity 24. The best value is 42, reached by one choice only: items 1, 3, 4 and 6 (weight 24).
struct Knapsack {
  std::vector<std::int64_t> weights = {7, 5, 9, 8, 4, 6, 7, 3};
  std::vector<std::int64_t> values = {9, 11, 12, 13, 8, 6, 10, 2};
  std::int64_t capacity = 24;
  std::vector<QVExpression*> decisions;
  QVExpression* weight = nullptr;
  QVExpression* value = nullptr;

  explicit Knapsack(QVModel& model) : decisions(createDecisions(model, 8)) {
    weight = weightedSum(model, decisions, weights);
    value = weightedSum(model, decisions, values);
    model.addConstraint(model.createExpression(QVOperator::Leq, weight, model.createConstant(capacity)));
    model.addObjective(value, QVObjectiveDirection::Maximize);
  }
};

/// Closes the model and makes a quiet solver of one phase.
inline QVPhase* closeQuietly(Quvex& quvex, std::int64_t iterationLimit, int nbThreads = 1) {
  quvex.getModel()->close();
  quvex.getParam()->setVerbosity(0);
  quvex.getParam()->setNbThreads(nbThreads);
  QVPhase* phase = quvex.createPhase();
  phase->setIterationLimit(iterationLimit);
  return phase;
}

}  // namespace quvex
