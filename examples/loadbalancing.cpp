// Packing with minimum and maximum: items go to bins of limited size, and the fullest and the emptiest bin shall differ
// as little as possible.
#include <algorithm>

#include "support/example.h"

using namespace quvex;

class LoadBalancing {
 public:
  explicit LoadBalancing(QVModel& model) : inBin(kItems) {
    std::vector<QVExpression*> loads;
    for (int b = 0; b < kBins; ++b) loads.push_back(model.createExpression(QVOperator::Sum));
    for (int i = 0; i < kItems; ++i) {
      size.push_back(random.between(20, 100));
      QVExpression* bins = model.createExpression(QVOperator::Sum);
      for (int b = 0; b < kBins; ++b) {
        inBin[i].push_back(model.createExpression(QVOperator::Bool));
        bins->addOperand(inBin[i][b]);
        loads[b]->addOperand(model.createExpression(QVOperator::Prod, size[i], inBin[i][b]));
      }
      model.addConstraint(model.createExpression(QVOperator::Eq, bins, 1));
    }
    QVExpression* fullest = model.createExpression(QVOperator::Max);
    QVExpression* emptiest = model.createExpression(QVOperator::Min);
    for (QVExpression* load : loads) {
      fullest->addOperand(load);
      emptiest->addOperand(load);
    }
    model.addConstraint(model.createExpression(QVOperator::Leq, fullest, kBinSize));
    objective = model.createExpression(QVOperator::Dist, fullest, emptiest);
    model.addObjective(objective, QVObjectiveDirection::Minimize);
  }

  std::string findFault() const {
    std::vector<int> load(kBins, 0);
    for (int i = 0; i < kItems; ++i) {
      int nbBins = 0;
      for (int b = 0; b < kBins; ++b) {
        if (!example::isSet(inBin[i][b])) continue;
        ++nbBins;
        load[b] += size[i];
      }
      if (nbBins != 1) return "item " + std::to_string(i) + " is in " + std::to_string(nbBins) + " bins";
    }
    const auto [least, most] = std::minmax_element(load.begin(), load.end());
    if (*most > kBinSize) return "a bin overflows";
    return *most - *least == objective->getIntValue() ? "" : "the difference is another one";
  }

 private:
  static constexpr int kItems = 60;
  static constexpr int kBins = 8;
  static constexpr int kBinSize = 500;

  example::Random random{7};
  std::vector<int> size;
  std::vector<std::vector<QVExpression*>> inBin;
  QVExpression* objective = nullptr;
};

int main(int argc, char** argv) { return example::run<LoadBalancing>(argc, argv, 300000); }
