// Car sequencing: cars of several classes share a line. A station that fits an option can serve only so many cars of
// each window; every car above that costs one. The order of the cars is to be found.
#include <algorithm>

#include "support/example.h"

using namespace quvex;

class CarSequencing {
 public:
  explicit CarSequencing(QVModel& model) : demand(kClasses, kCars / kClasses), isClass(kCars) {
    for (int c = 0; c < kClasses; ++c) {
      for (int o = 0; o < kOptions; ++o) needs[c][o] = random.between(1, 100) <= 100 * kMost[o] / kWindow[o] - 15;
    }
    for (auto& classes : isClass) {
      for (int c = 0; c < kClasses; ++c) classes.push_back(model.createExpression(QVOperator::Bool));
    }
    for (int p = 0; p < kCars; ++p) addEquality(model, isClass[p], 1);
    for (int c = 0; c < kClasses; ++c) {
      std::vector<QVExpression*> places;
      for (int p = 0; p < kCars; ++p) places.push_back(isClass[p][c]);
      addEquality(model, places, demand[c]);
    }
    objective = model.createExpression(QVOperator::Sum);
    for (int o = 0; o < kOptions; ++o) {
      for (int first = 0; first + kWindow[o] <= kCars; ++first) objective->addOperand(excess(model, o, first));
    }
    model.addObjective(objective, QVObjectiveDirection::Minimize);
  }

  std::string findFault() const {
    std::vector<int> line(kCars, -1);
    std::vector<int> built(kClasses, 0);
    for (int p = 0; p < kCars; ++p) {
      for (int c = 0; c < kClasses; ++c) {
        if (!example::isSet(isClass[p][c])) continue;
        if (line[p] >= 0) return "two cars stand in one place";
        line[p] = c;
        ++built[c];
      }
      if (line[p] < 0) return "a place is empty";
    }
    if (built != demand) return "the wrong cars are built";
    std::int64_t total = 0;
    for (int o = 0; o < kOptions; ++o) {
      for (int first = 0; first + kWindow[o] <= kCars; ++first) {
        int served = 0;
        for (int p = first; p < first + kWindow[o]; ++p) served += needs[line[p]][o];
        total += std::max(served - kMost[o], 0);
      }
    }
    return total == objective->getIntValue() ? "" : "the excess is " + std::to_string(total);
  }

 private:
  static constexpr int kCars = 100;
  static constexpr int kClasses = 10;
  static constexpr int kOptions = 5;
  static constexpr int kMost[kOptions] = {1, 2, 1, 2, 1};
  static constexpr int kWindow[kOptions] = {2, 3, 3, 5, 5};

  example::Random random{5};
  std::vector<int> demand;
  int needs[kClasses][kOptions] = {};
  std::vector<std::vector<QVExpression*>> isClass;
  QVExpression* objective = nullptr;

  static void addEquality(QVModel& model, const std::vector<QVExpression*>& terms, int value) {
    QVExpression* sum = model.createExpression(QVOperator::Sum);
    for (QVExpression* term : terms) sum->addOperand(term);
    model.addConstraint(model.createExpression(QVOperator::Eq, sum, value));
  }

  QVExpression* excess(QVModel& model, int o, int first) const {
    QVExpression* served = model.createExpression(QVOperator::Sum, -kMost[o]);
    for (int p = first; p < first + kWindow[o]; ++p) {
      for (int c = 0; c < kClasses; ++c) {
        if (needs[c][o] != 0) served->addOperand(isClass[p][c]);
      }
    }
    return model.createExpression(QVOperator::Max, served, 0);
  }
};

int main(int argc, char** argv) { return example::run<CarSequencing>(argc, argv, 200000); }
