#pragma once

#include "solver/move/movekflip.h"

namespace quvex {

/// Changes decisions in pairs that share a sum, so that the sum stays as it is: each drawn decision with one partner of
/// the opposite side. Works on the decisions in a sum and in at most one equality sum.
class MoveKSwap : public MoveKFlip {
 public:
  /// Raises when the rate is above 100.
  MoveKSwap(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous,
            Dag& moveDag);

  [[nodiscard]] bool apply() override;

 private:
  [[nodiscard]] NodeId drawSwappableTarget();
  /// Changes the decision, then one that compensates it in the equality sum that holds it, or in a random sum if none
  /// does.
  void swap(NodeId decision);
};

}  // namespace quvex
