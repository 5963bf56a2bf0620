// Indexing: each pumping station runs at a level, which is the number of its pumps that are on; tables give what a
// station of that level delivers and consumes. Enough water at the least consumption is wanted.
#include "support/example.h"

using namespace quvex;

class Pumps {
 public:
  explicit Pumps(QVModel& model) : delivers(kStations), consumes(kStations), on(kStations) {
    QVExpression* water = model.createExpression(QVOperator::Sum);
    objective = model.createExpression(QVOperator::Sum);
    for (int s = 0; s < kStations; ++s) {
      makeTables(s);
      QVExpression* level = model.createExpression(QVOperator::Sum);
      for (int p = 0; p < kPumps; ++p) {
        on[s].push_back(model.createExpression(QVOperator::Bool));
        level->addOperand(on[s][p]);
      }
      water->addOperand(lookUp(model, delivers[s], level));
      objective->addOperand(lookUp(model, consumes[s], level));
    }
    model.addConstraint(model.createExpression(QVOperator::Geq, water, kDemand));
    model.addObjective(objective, QVObjectiveDirection::Minimize);
  }

  std::string findFault() const {
    std::int64_t water = 0;
    std::int64_t power = 0;
    for (int s = 0; s < kStations; ++s) {
      int level = 0;
      for (QVExpression* pump : on[s]) level += example::isSet(pump) ? 1 : 0;
      water += delivers[s][level];
      power += consumes[s][level];
    }
    if (water < kDemand) return "there is too little water";
    return power == objective->getIntValue() ? "" : "the consumption is " + std::to_string(power);
  }

 private:
  static constexpr int kStations = 30;
  static constexpr int kPumps = 5;
  static constexpr int kDemand = 2200;

  example::Random random{8};
  std::vector<std::vector<int>> delivers;
  std::vector<std::vector<int>> consumes;
  std::vector<std::vector<QVExpression*>> on;
  QVExpression* objective = nullptr;

  /// Each further pump delivers less than the one before, and consumes more.
  void makeTables(int s) {
    delivers[s] = {0};
    consumes[s] = {random.between(5, 15)};
    for (int level = 1; level <= kPumps; ++level) {
      delivers[s].push_back(delivers[s].back() + random.between(20, 50) / level + 5);
      consumes[s].push_back(consumes[s].back() + random.between(10, 20) + 3 * level);
    }
  }

  static QVExpression* lookUp(QVModel& model, const std::vector<int>& table, QVExpression* level) {
    QVExpression* array = model.createExpression(QVOperator::Array);
    for (const int entry : table) array->addOperand(entry);
    return model.createExpression(QVOperator::At, array, level);
  }
};

int main(int argc, char** argv) { return example::run<Pumps>(argc, argv, 300000); }
