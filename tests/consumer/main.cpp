#include <quvex.h>

#include <iostream>

// Three items of weight 3, 4 and 5 and a sack of 8: the best choice is the first and the last, worth 11.
int main() {
  quvex::Quvex solver;
  quvex::QVModel* model = solver.getModel();
  const int weights[] = {3, 4, 5};
  const int values[] = {4, 5, 7};
  quvex::QVExpression* weight = model->createExpression(quvex::QVOperator::Sum);
  quvex::QVExpression* value = model->createExpression(quvex::QVOperator::Sum);
  for (int i = 0; i < 3; ++i) {
    quvex::QVExpression* chosen = model->createExpression(quvex::QVOperator::Bool);
    const auto times = [&](int factor) { return model->createExpression(quvex::QVOperator::Prod, factor, chosen); };
    weight->addOperand(times(weights[i]));
    value->addOperand(times(values[i]));
  }
  model->addConstraint(model->createExpression(quvex::QVOperator::Leq, weight, 8));
  model->addObjective(value, quvex::QVObjectiveDirection::Maximize);
  model->close();

  solver.getParam()->setVerbosity(0);
  solver.createPhase()->setIterationLimit(1000);
  solver.solve();
  const std::int64_t best = solver.getSolution()->getIntValue(value);
  std::cout << "value " << best << '\n';
  return best == 11 ? 0 : 1;
}
