// Quadratic assignment: facilities go to sites, one each; what flows between two facilities travels the distance
// between their sites.
#include "support/example.h"

using namespace quvex;

class QuadraticAssignment {
 public:
  explicit QuadraticAssignment(QVModel& model) : at(kSize) {
    for (int i = 0; i < kSize; ++i) {
      for (int j = 0; j < kSize; ++j) {
        flow[i][j] = i == j || random.between(0, 2) != 0 ? 0 : random.between(1, 9);
        distance[i][j] = std::abs(i % kWidth - j % kWidth) + std::abs(i / kWidth - j / kWidth);
        at[i].push_back(model.createExpression(QVOperator::Bool));
      }
    }
    for (int i = 0; i < kSize; ++i) addPermutationRow(model, i);
    objective = model.createExpression(QVOperator::Sum);
    for (int i = 0; i < kSize; ++i) {
      for (int j = 0; j < kSize; ++j) {
        if (flow[i][j] != 0) addTravel(model, i, j);
      }
    }
    model.addObjective(objective, QVObjectiveDirection::Minimize);
  }

  std::string findFault() const {
    std::vector<int> site(kSize, -1);
    std::vector<bool> taken(kSize, false);
    for (int i = 0; i < kSize; ++i) {
      for (int s = 0; s < kSize; ++s) {
        if (!example::isSet(at[i][s])) continue;
        if (site[i] >= 0 || taken[s]) return "facilities and sites do not match one to one";
        site[i] = s;
        taken[s] = true;
      }
      if (site[i] < 0) return "a facility has no site";
    }
    std::int64_t total = 0;
    for (int i = 0; i < kSize; ++i) {
      for (int j = 0; j < kSize; ++j) total += std::int64_t{flow[i][j]} * distance[site[i]][site[j]];
    }
    return total == objective->getIntValue() ? "" : "the travel is " + std::to_string(total);
  }

 private:
  static constexpr int kWidth = 4;
  static constexpr int kSize = 12;

  example::Random random{6};
  int flow[kSize][kSize] = {};
  int distance[kSize][kSize] = {};
  std::vector<std::vector<QVExpression*>> at;
  QVExpression* objective = nullptr;

  void addPermutationRow(QVModel& model, int i) const {
    QVExpression* sites = model.createExpression(QVOperator::Sum);
    QVExpression* facilities = model.createExpression(QVOperator::Sum);
    for (int s = 0; s < kSize; ++s) {
      sites->addOperand(at[i][s]);
      facilities->addOperand(at[s][i]);
    }
    model.addConstraint(model.createExpression(QVOperator::Eq, sites, 1));
    model.addConstraint(model.createExpression(QVOperator::Eq, facilities, 1));
  }

  void addTravel(QVModel& model, int i, int j) {
    for (int s = 0; s < kSize; ++s) {
      for (int t = 0; t < kSize; ++t) {
        if (distance[s][t] == 0) continue;
        QVExpression* both = model.createExpression(QVOperator::And, at[i][s], at[j][t]);
        objective->addOperand(model.createExpression(QVOperator::Prod, flow[i][j] * distance[s][t], both));
      }
    }
  }
};

int main(int argc, char** argv) { return example::run<QuadraticAssignment>(argc, argv, 100000); }
