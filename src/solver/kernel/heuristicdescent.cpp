#include "solver/kernel/heuristicdescent.h"

namespace quvex {

void HeuristicDescent::iterate() {
  if (attemptMove() == Outcome::Improved) recordBest();
}

Outcome HeuristicDescent::verdict(bool evaluated) {
  if (const auto outcome = constraintVerdict(evaluated)) return *outcome;
  for (std::uint32_t i = 0; i <= optimizedObjective; ++i) {
    if (const auto outcome = objectiveVerdict(i)) return *outcome;
  }
  return Outcome::Accepted;
}

}  // namespace quvex
