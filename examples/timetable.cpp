// Timetabling, where feasibility is the hard part: lectures go to periods, no teacher and no group has two at a time,
// rooms are few, and a lecture in two parts takes two neighbouring periods of one day. The program solves the same
// model twice, with and without the moves that repair constraints in simulation, and shows the violated constraints on
// the way.
#include "support/example.h"

using namespace quvex;

class Timetable {
 public:
  explicit Timetable(QVModel& model) : in(kLectures) {
    for (int l = 0; l < kLectures; ++l) {
      teacher.push_back(l % kTeachers);
      group.push_back((l + random.between(0, 1)) % kGroups);
      for (int p = 0; p < kPeriods; ++p) in[l].push_back(model.createExpression(QVOperator::Bool));
    }
    for (int l = 0; l < kLectures; ++l) addPlace(model, l);
    for (int p = 0; p < kPeriods; ++p) {
      for (int t = 0; t < kTeachers; ++t) addAtMost(model, p, 1, [&](int l) { return teacher[l] == t; });
      for (int g = 0; g < kGroups; ++g) addAtMost(model, p, 1, [&](int l) { return group[l] == g; });
      addAtMost(model, p, kRooms, [](int) { return true; });
    }
    QVExpression* late = model.createExpression(QVOperator::Sum);
    for (int l = 0; l < kLectures; ++l) {
      for (int p = 0; p < kPeriods; ++p) {
        if (p % kPeriodsOfDay != 0) {
          late->addOperand(model.createExpression(QVOperator::Prod, p % kPeriodsOfDay, in[l][p]));
        }
      }
    }
    model.addObjective(late, QVObjectiveDirection::Minimize);
  }

  std::string findFault() const {
    for (int l = 0; l < kLectures; ++l) {
      const std::vector<int> periods = periodsOf(l);
      if (static_cast<int>(periods.size()) != length(l)) return "lecture " + std::to_string(l) + " has a wrong length";
      const bool together = length(l) == 1 || (periods[1] == periods[0] + 1 && periods[1] % kPeriodsOfDay != 0);
      if (!together) return "lecture " + std::to_string(l) + " is torn apart";
    }
    for (int p = 0; p < kPeriods; ++p) {
      int nbLectures = 0;
      for (int l = 0; l < kLectures; ++l) {
        nbLectures += example::isSet(in[l][p]) ? 1 : 0;
        for (int m = 0; m < l; ++m) {
          const bool clash = teacher[l] == teacher[m] || group[l] == group[m];
          if (clash && example::isSet(in[l][p]) && example::isSet(in[m][p])) return "somebody is in two places";
        }
      }
      if (nbLectures > kRooms) return "there are not enough rooms";
    }
    return "";
  }

 private:
  static constexpr int kLectures = 78;
  static constexpr int kTeachers = 8;
  static constexpr int kGroups = 7;
  static constexpr int kRooms = 6;
  static constexpr int kDays = 4;
  static constexpr int kPeriodsOfDay = 4;
  static constexpr int kPeriods = kDays * kPeriodsOfDay;

  example::Random random{9};
  std::vector<int> teacher;
  std::vector<int> group;
  std::vector<std::vector<QVExpression*>> in;

  /// Every fifth lecture has two parts.
  static int length(int l) { return l % 5 == 0 ? 2 : 1; }

  std::vector<int> periodsOf(int l) const {
    std::vector<int> periods;
    for (int p = 0; p < kPeriods; ++p) {
      if (example::isSet(in[l][p])) periods.push_back(p);
    }
    return periods;
  }

  void addPlace(QVModel& model, int l) const {
    QVExpression* periods = model.createExpression(QVOperator::Sum);
    for (QVExpression* period : in[l]) periods->addOperand(period);
    model.addConstraint(model.createExpression(QVOperator::Eq, periods, length(l)));
    if (length(l) == 1) return;
    QVExpression* somewhere = model.createExpression(QVOperator::Or);
    for (int p = 0; p + 1 < kPeriods; ++p) {
      if ((p + 1) % kPeriodsOfDay == 0) continue;
      somewhere->addOperand(model.createExpression(QVOperator::And, in[l][p], in[l][p + 1]));
    }
    model.addConstraint(somewhere);
  }

  template <class Belongs>
  void addAtMost(QVModel& model, int p, int most, Belongs belongs) const {
    QVExpression* sum = model.createExpression(QVOperator::Sum);
    for (int l = 0; l < kLectures; ++l) {
      if (belongs(l)) sum->addOperand(in[l][p]);
    }
    if (sum->getNbOperands() > most) model.addConstraint(model.createExpression(QVOperator::Leq, sum, most));
  }
};

namespace {

constexpr int kPortions = 10;
constexpr int kRuns = 5;

/// Runs one search in portions and adds how many constraints are violated after each. False when the check from the
/// data contradicts the solver.
bool addRun(bool repairing, int seed, std::int64_t iterations, std::vector<int>& violations) {
  Quvex solver;
  const Timetable timetable(*solver.getModel());
  solver.getParam()->setAdvancedParam("moveEjectionChainEnabled", repairing ? 1 : 0);
  solver.getParam()->setAdvancedParam("moveBinPackingEnabled", repairing ? 1 : 0);
  solver.getModel()->close();
  solver.getParam()->setVerbosity(0);
  solver.createPhase()->setIterationLimit(iterations / kPortions);
  bool consistent = true;
  for (int portion = 0; portion < kPortions; ++portion) {
    solver.getParam()->setSeed(kPortions * seed + portion);
    solver.solve();  // goes on from the solution of the portion before
    int nbViolated = 0;
    for (int i = 0; i < solver.getModel()->getNbConstraints(); ++i) {
      nbViolated += solver.getModel()->getConstraint(i)->getIntValue() == 0 ? 1 : 0;
    }
    violations[portion] += nbViolated;
    consistent = consistent && timetable.findFault().empty() == (nbViolated == 0);
  }
  return consistent;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) return example::run<Timetable>(argc, argv, 0);
  const std::int64_t iterations = argc > 1 ? std::atoll(argv[1]) : 60000;
  std::vector<int> with(kPortions, 0);
  std::vector<int> without(kPortions, 0);
  bool consistent = true;
  for (int seed = 0; seed < kRuns; ++seed) {
    consistent = addRun(true, seed, iterations, with) && consistent;
    consistent = addRun(false, seed, iterations, without) && consistent;
  }
  std::cout << "Violated constraints, mean of " << kRuns << " runs:\n  iterations   with repair   without repair\n";
  for (int portion = 0; portion < kPortions; ++portion) {
    std::cout << "  " << iterations / kPortions * (portion + 1) << "   " << with[portion] / double{kRuns} << "   "
              << without[portion] / double{kRuns} << '\n';
  }
  std::cout << (consistent ? "The check from the data agrees." : "The check from the data disagrees.") << std::endl;
  return consistent ? EXIT_SUCCESS : EXIT_FAILURE;
}
