// Multidimensional knapsack: choose projects for the greatest profit within several budgets.
#include "support/example.h"

using namespace quvex;

class MultiKnapsack {
 public:
  explicit MultiKnapsack(QVModel& model) {
    for (int& profit : profits) profit = random.between(10, 100);
    for (int i = 0; i < kProjects; ++i) chosen.push_back(model.createExpression(QVOperator::Bool));
    for (int r = 0; r < kBudgets; ++r) addBudget(model, r);
    objective = weightedSum(model, profits);
    model.addObjective(objective, QVObjectiveDirection::Maximize);
  }

  std::string findFault() const {
    for (int r = 0; r < kBudgets; ++r) {
      if (total(costs[r]) > budgets[r]) return "budget " + std::to_string(r) + " is exceeded";
    }
    if (total(profits) != objective->getIntValue()) return "the profit is another one";
    return "";
  }

 private:
  static constexpr int kProjects = 500;
  static constexpr int kBudgets = 10;

  example::Random random{1};
  std::vector<int> profits = std::vector<int>(kProjects);
  std::vector<std::vector<int>> costs = std::vector<std::vector<int>>(kBudgets, std::vector<int>(kProjects));
  std::vector<int> budgets = std::vector<int>(kBudgets, 0);
  std::vector<QVExpression*> chosen;
  QVExpression* objective = nullptr;

  /// A quarter of all projects fits.
  void addBudget(QVModel& model, int r) {
    for (int i = 0; i < kProjects; ++i) {
      costs[r][i] = random.between(1, 60) + profits[i] / 2;
      budgets[r] += costs[r][i];
    }
    budgets[r] /= 4;
    model.addConstraint(model.createExpression(QVOperator::Leq, weightedSum(model, costs[r]), budgets[r]));
  }

  QVExpression* weightedSum(QVModel& model, const std::vector<int>& weights) const {
    QVExpression* sum = model.createExpression(QVOperator::Sum);
    for (int i = 0; i < kProjects; ++i)
      sum->addOperand(model.createExpression(QVOperator::Prod, weights[i], chosen[i]));
    return sum;
  }

  std::int64_t total(const std::vector<int>& weights) const {
    std::int64_t sum = 0;
    for (int i = 0; i < kProjects; ++i) sum += example::isSet(chosen[i]) ? weights[i] : 0;
    return sum;
  }
};

int main(int argc, char** argv) { return example::run<MultiKnapsack>(argc, argv, 2000000); }
