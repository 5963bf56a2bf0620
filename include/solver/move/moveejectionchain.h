#pragma once

#include <cstdint>

#include "solver/kernel/move.h"
#include "solver/move/simulatedrepair.h"

namespace quvex {

/// Flips a few decisions in the simulation, repairs the constraints that broke by further flips, which may eject
/// others, and hands the whole over: the ejection chains of F. Glover, Ejection chains, reference structures and
/// alternating path methods for traveling salesman problems (1996), over arbitrary constraints. Invariant: between
/// attempts nothing is flipped in the simulation. The rate is a percentage and is not checked.
class MoveEjectionChain : public Move {
 public:
  static constexpr const char* kName = "quvex::MoveEjectionChain";

  /// The structure must have a constraint tree with at least one node.
  MoveEjectionChain(std::uint32_t rate, std::uint32_t maxSteps, std::uint32_t maxFlips, std::uint32_t violationSlack,
                    AutonomousStructure& autonomous, Dag& moveDag);

  [[nodiscard]] bool apply() override;
  /// Undoes the simulation of what is not committed.
  void conclude(Outcome outcome) override;
  [[nodiscard]] double costFactor() const override { return repair.costFactor(); }

 private:
  std::uint32_t targetingRate;
  SimulatedRepair repair;
  AutonomousStructure& structure;

  void targetedStart();
  void randomStart();
  /// Looks for a decision that two violated constraints share.
  bool transferStep();
};

}  // namespace quvex
