#include "solver/kernel/heuristicdescent.h"

namespace quvex {

inline Outcome HeuristicDescent::verdict(bool evaluated) const {
  Outcome outcome = Outcome::Accepted;
  if (constraintsDecide(evaluated, outcome)) return outcome;
  for (std::uint32_t i = 0; i <= optimizedObjective; ++i) {
    if (objectiveDecides(i, outcome)) return outcome;
  }
  return Outcome::Accepted;
}

void HeuristicDescent::iterate() {
  if (!buildMove()) return;
  const Outcome outcome = verdict(evaluateMove());
  concludeMove(outcome);
  if (outcome == Outcome::Improved) recordBest();
}

}  // namespace quvex
