// Generalised assignment: every job goes to exactly one agent, agents have limited hours, the cost is to be least.
#include "support/example.h"

using namespace quvex;

class Assignment {
 public:
  explicit Assignment(QVModel& model) : cost(grid()), hours(grid()), assigned(kAgents) {
    for (int a = 0; a < kAgents; ++a) {
      for (int j = 0; j < kJobs; ++j) {
        cost[a][j] = random.between(10, 50);
        hours[a][j] = 60 - cost[a][j] + random.between(-5, 5);  // who is cheap is slow
        assigned[a].push_back(model.createExpression(QVOperator::Bool));
      }
    }
    for (int j = 0; j < kJobs; ++j) assignOnce(model, j);
    for (int a = 0; a < kAgents; ++a) {
      QVExpression* load = model.createExpression(QVOperator::Sum);
      addTerms(model, load, hours, a);
      model.addConstraint(model.createExpression(QVOperator::Leq, load, kCapacity));
    }
    objective = model.createExpression(QVOperator::Sum);
    for (int a = 0; a < kAgents; ++a) addTerms(model, objective, cost, a);
    model.addObjective(objective, QVObjectiveDirection::Minimize);
  }

  std::string findFault() const {
    std::int64_t total = 0;
    std::vector<int> load(kAgents, 0);
    for (int j = 0; j < kJobs; ++j) {
      int nbAgents = 0;
      for (int a = 0; a < kAgents; ++a) {
        if (!example::isSet(assigned[a][j])) continue;
        ++nbAgents;
        load[a] += hours[a][j];
        total += cost[a][j];
      }
      if (nbAgents != 1) return "job " + std::to_string(j) + " has " + std::to_string(nbAgents) + " agents";
    }
    for (const int hoursOfAgent : load) {
      if (hoursOfAgent > kCapacity) return "an agent works too long";
    }
    return total == objective->getIntValue() ? "" : "the cost is another one";
  }

 private:
  static constexpr int kAgents = 10;
  static constexpr int kJobs = 60;
  static constexpr int kCapacity = 200;
  using Grid = std::vector<std::vector<int>>;
  static Grid grid() { return Grid(kAgents, std::vector<int>(kJobs)); }

  example::Random random{2};
  Grid cost;
  Grid hours;
  std::vector<std::vector<QVExpression*>> assigned;
  QVExpression* objective = nullptr;

  void assignOnce(QVModel& model, int j) const {
    QVExpression* agents = model.createExpression(QVOperator::Sum);
    for (int a = 0; a < kAgents; ++a) agents->addOperand(assigned[a][j]);
    model.addConstraint(model.createExpression(QVOperator::Eq, agents, 1));
  }

  void addTerms(QVModel& model, QVExpression* sum, const Grid& weights, int a) const {
    for (int j = 0; j < kJobs; ++j) {
      sum->addOperand(model.createExpression(QVOperator::Prod, weights[a][j], assigned[a][j]));
    }
  }
};

int main(int argc, char** argv) { return example::run<Assignment>(argc, argv, 500000); }
