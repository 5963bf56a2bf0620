#pragma once

#include <cstdint>

#include "solver/kernel/move.h"
#include "solver/move/simulatedrepair.h"

namespace quvex {

/// For models where a constraint must take something from another: starts at one node of the constraint tree, the
/// anchor, and moves flips between it and violated constraints in the simulation, until that is repaired.
/// Invariant: between attempts nothing is flipped in the simulation. The rate is a percentage and is not checked.
class MoveBinPacking : public Move {
 public:
  static constexpr const char* kName = "quvex::MoveBinPacking";

  MoveBinPacking(std::uint32_t rate, std::uint32_t maxSteps, std::uint32_t maxFlips, std::uint32_t violationSlack,
                 AutonomousStructure& autonomous, Dag& moveDag);

  [[nodiscard]] bool apply() override;
  /// Undoes the simulation of what is not committed.
  void conclude(Outcome outcome) override;
  [[nodiscard]] double costFactor() const override { return repair.costFactor(); }

 private:
  std::uint32_t targetingRate;
  SimulatedRepair repair;
  AutonomousStructure& structure;

  /// Both give the anchor; the first gives kNone when it finds none.
  StaticIndex targetedStart();
  StaticIndex randomStart();
  /// Looks for a decision that the anchor shares with a violated constraint.
  bool transferStep(StaticIndex anchor);
};

}  // namespace quvex
