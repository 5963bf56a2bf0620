#include <gtest/gtest.h>

#include <algorithm>

#include "allocationcounter.h"
#include "api/quvex.h"
#include "api/qvparam.h"
#include "solver/kernel/heuristic.h"
#include "solver/kernel/heuristiccallback.h"
#include "support/apipeer.h"
#include "support/smallmodels.h"

namespace quvex {
namespace {

/// Notes the number of allocations when a thousand iterations have warmed every buffer up, and at the end.
struct AllocationWatch final : HeuristicCallback {
  explicit AllocationWatch(const Heuristic& watched) : heuristic(watched) {}
  void onStart() override {}
  void onEnd() override { atEnd = allocationCount(); }
  void onIteration() override {
    if (heuristic.iterations == 1000) afterWarmUp = allocationCount();
  }
  const Heuristic& heuristic;
  std::size_t afterWarmUp = 0;
  std::size_t atEnd = 0;
};

/// Solves once to have the search built, then runs its heuristic again under the watch.
std::size_t allocationsAfterWarmUp(Quvex& quvex) {
  quvex.getParam()->setTimeBetweenDisplays(65535);
  quvex.solve();
  Heuristic& heuristic = ApiPeer::heuristic(quvex, 0);
  AllocationWatch watch(heuristic);
  heuristic.addCallback(&watch);
  ApiPeer::detachParallelizer(quvex, 0);
  heuristic.setIterationLimit(11000);
  heuristic.run();
  EXPECT_EQ(heuristic.iterations, 11000U);
  return watch.atEnd - watch.afterWarmUp;
}

TEST(MoveLoop, AllocatesNothingOnAKnapsack) {
  Quvex quvex;
  // Two more decisions than any subset holds in one word, so that the larger containers work too.
  const auto x = createDecisions(*quvex.getModel(), 200);
  std::vector<std::int64_t> weights;
  for (int i = 0; i < 200; ++i) weights.push_back(3 + i * 7 % 41);
  QVModel& model = *quvex.getModel();
  model.addConstraint(model.createExpression(QVOperator::Leq, weightedSum(model, x, weights), 1500));
  std::reverse(weights.begin(), weights.end());
  model.addObjective(weightedSum(model, x, weights), QVObjectiveDirection::Maximize);
  quvex.getParam()->setAdvancedParam("advancedMovesEnabled", 0);
  closeQuietly(quvex, 1);
  EXPECT_EQ(allocationsAfterWarmUp(quvex), 0U);
}

TEST(MoveLoop, AllocatesNothingOnAnAssignmentWithEveryMove) {
  constexpr int kSize = 12;
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  const auto x = createDecisions(model, kSize * kSize);
  QVExpression* cost = model.createExpression(QVOperator::Sum);
  for (int i = 0; i < kSize; ++i) {
    QVExpression* row = model.createExpression(QVOperator::Sum);
    QVExpression* column = model.createExpression(QVOperator::Sum);
    for (int j = 0; j < kSize; ++j) {
      row->addOperand(x[i * kSize + j]);
      column->addOperand(x[j * kSize + i]);
      cost->addOperand(model.createExpression(QVOperator::Prod, 1 + (i * 17 + j * 31) % 23, x[i * kSize + j]));
    }
    model.addConstraint(model.createExpression(QVOperator::Eq, row, 1));
    model.addConstraint(model.createExpression(QVOperator::Eq, column, 1));
  }
  model.addObjective(cost, QVObjectiveDirection::Minimize);
  closeQuietly(quvex, 1);
  EXPECT_EQ(allocationsAfterWarmUp(quvex), 0U);
}

}  // namespace
}  // namespace quvex
