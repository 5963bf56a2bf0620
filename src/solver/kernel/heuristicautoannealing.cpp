#include "solver/kernel/heuristicautoannealing.h"

#include <cmath>

#include "solver/kernel/dag.h"
#include "solver/kernel/objectivecompare.h"

namespace quvex {

namespace {
/// Acceptance at the average of the last improvements.
constexpr double kAcceptanceAtAverage = 0.01;
}  // namespace

HeuristicAutoAnnealing::HeuristicAutoAnnealing(Dag& ownDag)
    : Heuristic(ownDag),
      recentSums(dag.fixed.nbObjectives(), 0.0),
      recentValues(dag.fixed.nbObjectives(), std::vector<double>(memorySize, 0.0)) {}

void HeuristicAutoAnnealing::setMemorySize(std::uint32_t size) {
  memorySize = size;
  for (auto& ring : recentValues) ring.resize(size, 0.0);
}

inline Outcome HeuristicAutoAnnealing::verdict(bool evaluated) {
  Outcome outcome = Outcome::Accepted;
  if (constraintsDecide(evaluated, outcome)) return outcome;
  const std::uint32_t i = optimizedObjective;
  for (std::uint32_t j = 0; j < i; ++j) {
    if (objectiveDecides(j, outcome)) return outcome;
  }
  currentMove->evaluateObjective(i);
  const t_value best = bestSolution.objectives[i];
  if (isBetter(dag, i, best)) return Outcome::Improved;
  if (!isWorse(dag, i, best)) return Outcome::Accepted;
  const bool accepted = annealing ? acceptByProbability() : !currentMove->isObjectiveWorse(i);
  return accepted ? Outcome::Accepted : Outcome::Rejected;
}

void HeuristicAutoAnnealing::iterate() {
  updateAnnealing();
  if (!buildMove()) return;
  const Outcome outcome = verdict(evaluateMove());
  concludeMove(outcome);
  if (outcome != Outcome::Improved) {
    ++stagnation;
    return;
  }
  ++nbImprovements;
  stagnation = 0;
  annealing = true;
  updateRecent();
  recordBest();
}

void HeuristicAutoAnnealing::updateAnnealing() {
  if (elapsedSeconds() > timeLimit / 2) {
    if (expectedIterations == 0) {
      const bool limited = iterationLimit < static_cast<std::uint64_t>(kNoIterationLimit);
      const auto elapsed = static_cast<std::uint64_t>(elapsedSeconds());
      expectedIterations = limited ? iterationLimit : (iterations / (elapsed + 1)) * timeLimit;
    }
    if (static_cast<double>(iterations) >= static_cast<double>(expectedIterations) * endRatio) annealing = false;
  }
  if (stagnation > maxStagnation) annealing = false;
  if (nbImprovements < memorySize) annealing = false;
}

void HeuristicAutoAnnealing::updateRecent() {
  const std::uint32_t slot = nbImprovements % memorySize;
  for (std::uint32_t j = 0; j < recentValues.size(); ++j) {
    const double old = recentValues[j][slot];
    const double value = dag.committedDouble(dag.fixed.objectives[j]);
    recentValues[j][slot] = value;
    recentSums[j] = (recentSums[j] - old) + value;
  }
}

bool HeuristicAutoAnnealing::acceptByProbability() {
  const std::uint32_t i = optimizedObjective;
  const NodeId objective = dag.fixed.objectives[i];
  const double average = recentSums[i] / memorySize;
  const double value = dag.tentativeDouble(objective);
  const double best = dag.fixed.asDouble(objective, bestSolution.objectives[i]);
  const std::uint32_t direction = dag.fixed.objectiveDirections[i];
  if (direction == kMinimise && MathDouble::isGreater(value, average)) return false;
  if (direction == kMaximise && MathDouble::isGreater(average, value)) return false;
  const double draw = realOf(randomStep(choiceState));
  const double ratio = (value - best) / (average - best);
  // Equal average and best give an infinity or a not-a-number; the test then fails, but for a draw of exactly 0.
  if (!(std::exp(std::abs(ratio) * std::log(kAcceptanceAtAverage)) >= draw)) return false;
  ++nbAnnealed;
  return true;
}

}  // namespace quvex
