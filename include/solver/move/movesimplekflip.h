#pragma once

#include <cstdint>
#include <vector>

#include "solver/kernel/move.h"
#include "solver/move/autonomousstructure.h"

namespace quvex {

/// Changes `k` decisions among all boolean ones, whatever holds them: the move that every pool has, so that a search
/// can always go on. A decision that targeting proposes takes the place of one drawn member. Invariant: `sample` is
/// scratch of one attempt.
class MoveSimpleKFlip : public Move {
 public:
  MoveSimpleKFlip(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous,
                  Dag& moveDag);

  [[nodiscard]] bool apply() override;

 private:
  std::uint32_t k;
  std::uint32_t targetingRate;  ///< a percentage, not checked
  std::vector<std::uint32_t> sample;

  /// Changes `k` decisions, the target and drawn ones.
  void flipSample(NodeId target, std::uint32_t n);
};

}  // namespace quvex
