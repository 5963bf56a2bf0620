#pragma once

#include <cstdint>
#include <vector>

#include "solver/kernel/move.h"
#include "solver/kernel/random.h"
#include "solver/kernel/types.h"
#include "solver/move/autonomousstructure.h"

namespace quvex {

/// A constraint node under inspection, and the direction in which it should move.
struct Descent {
  DynamicConstraintNode* node;
  Direction direction = Direction::Up;
};

/// What the moves that repair by simulation share: they flip decisions in the `AutonomousStructure`, let it show which
/// constraints broke, flip further ones, and hand the flips to the `Dag` only if no more constraints are violated than
/// before. A full evaluation costs far more than a step here, so dead ends cost almost nothing.
///
/// Invariant: holds no state between attempts; the flips of the running one are in the structure.
class SimulatedRepair {
 public:
  std::uint32_t maxSteps;  ///< last step number of the loop
  std::uint32_t firstTransferStep = 1;
  std::uint32_t maxFlips;        ///< with this many flips, flips are undone
  std::uint32_t violationSlack;  ///< excess of violated constraints that keeps undoing
  std::uint32_t maxFailures = 10;
  AutonomousStructure& structure;
  std::vector<StaticIndex> common;  ///< scratch: what two nodes have in common

  SimulatedRepair(std::uint32_t steps, std::uint32_t flips, std::uint32_t slack, AutonomousStructure& autonomous);

  /// Runs the steps of an attempt that began with `nbViolatedAtStart` violated constraints, then hands the flips over.
  /// A step is a transfer, or when that fails a repair. False if there is nothing worth handing over.
  template <class TransferStep>
  [[nodiscard]] bool run(std::uint32_t nbViolatedAtStart, TransferStep transferStep);

  /// Raises the violated constraint with the fewest ways out, the most constrained first; ties go to the first on one
  /// round from a random place. False also if one of them has no way out at all.
  [[nodiscard]] bool repairStep();
  /// Descends from both nodes to flat ones, and flips a decision that lies under both. False at a dead end.
  [[nodiscard]] bool flipShared(Descent x, Descent y);

  /// At the end of an attempt: undoes the simulation of what will not be committed. A commit tells the structure
  /// itself.
  void conclude(Outcome outcome);

  /// One attempt runs several steps and must not be credited as if it were one move.
  [[nodiscard]] double costFactor() const { return 1.0 / (2.0 * maxSteps); }

 private:
  [[nodiscard]] RandomState& state() const { return structure.randomState; }
  [[nodiscard]] const IndexedSet& flipped() const { return structure.flippedDecisions; }
  [[nodiscard]] const IndexedSet& violated() const { return structure.violatedNodes; }

  void undoSurplusFlips(std::uint32_t nbViolatedAtStart);
  [[nodiscard]] bool handOver(std::uint32_t nbViolatedAtStart) const;
  [[nodiscard]] bool descendToFlat(Descent& at) const;
  [[nodiscard]] bool collectShared(const Descent& x, const Descent& y);
};

template <class TransferStep>
bool SimulatedRepair::run(std::uint32_t nbViolatedAtStart, TransferStep transferStep) {
  std::uint32_t nbFailures = 0;
  for (std::uint32_t step = 0; step <= maxSteps; ++step) {
    if (nbFailures > maxFailures || violated().empty()) break;
    undoSurplusFlips(nbViolatedAtStart);
    if (flipped().empty()) return false;
    if (violated().empty()) break;
    if (step >= firstTransferStep && transferStep()) continue;
    if (!repairStep()) ++nbFailures;
  }
  return handOver(nbViolatedAtStart);
}

}  // namespace quvex
