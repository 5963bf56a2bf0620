// Portfolio with double arithmetic: choose ventures so that the expected return less a multiple of the standard
// deviation is greatest, within a budget. Ventures of one sector move together.
#include <cmath>

#include "support/example.h"

using namespace quvex;

class Portfolio {
 public:
  explicit Portfolio(QVModel& model) {
    for (int i = 0; i < kVentures; ++i) {
      gain.push_back(random.between(100, 400) / 100.0);
      price.push_back(random.between(50, 250) / 100.0);
      deviation.push_back(gain[i] * random.between(20, 80) / 100.0);
      chosen.push_back(model.createExpression(QVOperator::Bool));
    }
    QVExpression* variance = model.createExpression(QVOperator::Sum);
    for (int s = 0; s < kSectors; ++s) {
      QVExpression* spread = weightedSum(model, deviation, s);
      variance->addOperand(model.createExpression(QVOperator::Prod, spread, spread));
    }
    QVExpression* risk = model.createExpression(QVOperator::Sqrt, variance);
    objective = model.createExpression(QVOperator::Sum, weightedSum(model, gain, kAllSectors),
                                       model.createExpression(QVOperator::Prod, -kAversion, risk));
    model.addConstraint(model.createExpression(QVOperator::Leq, weightedSum(model, price, kAllSectors), kBudget));
    model.addObjective(objective, QVObjectiveDirection::Maximize);
  }

  std::string findFault() const {
    double variance = 0;
    for (int s = 0; s < kSectors; ++s) variance += total(deviation, s) * total(deviation, s);
    const double worth = total(gain, kAllSectors) - kAversion * std::sqrt(variance);
    if (total(price, kAllSectors) > kBudget * (1 + 1e-6)) return "the budget is exceeded";
    return std::abs(worth - objective->getDoubleValue()) < 1e-6 * std::abs(worth) ? "" : "the worth is another one";
  }

 private:
  static constexpr int kVentures = 120;
  static constexpr int kSectors = 6;
  static constexpr int kAllSectors = -1;
  static constexpr double kAversion = 1.5;
  static constexpr double kBudget = 60.0;

  example::Random random{4};
  std::vector<double> gain;
  std::vector<double> price;
  std::vector<double> deviation;
  std::vector<QVExpression*> chosen;
  QVExpression* objective = nullptr;

  static bool belongs(int i, int sector) { return sector == kAllSectors || i % kSectors == sector; }

  QVExpression* weightedSum(QVModel& model, const std::vector<double>& weights, int sector) const {
    QVExpression* sum = model.createExpression(QVOperator::Sum);
    for (int i = 0; i < kVentures; ++i) {
      if (belongs(i, sector)) sum->addOperand(model.createExpression(QVOperator::Prod, weights[i], chosen[i]));
    }
    return sum;
  }

  double total(const std::vector<double>& weights, int sector) const {
    double sum = 0;
    for (int i = 0; i < kVentures; ++i) sum += belongs(i, sector) && example::isSet(chosen[i]) ? weights[i] : 0.0;
    return sum;
  }
};

int main(int argc, char** argv) { return example::run<Portfolio>(argc, argv, 300000); }
