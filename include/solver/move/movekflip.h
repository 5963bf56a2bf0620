#pragma once

#include <cstdint>
#include <vector>

#include "solver/kernel/move.h"
#include "solver/move/autonomousstructure.h"

namespace quvex {

/// Changes `k` decisions among those that no equality sum holds, so that they can change alone. A free decision that
/// targeting proposes takes the place of one drawn member.
/// Invariant: `sample` is scratch of one attempt; `targetingRate` is a percentage.
class MoveKFlip : public Move {
 public:
  static constexpr const char* kName = "quvex::MoveKFlip";

  /// Raises when the rate is above 100.
  MoveKFlip(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous,
            Dag& moveDag);

  [[nodiscard]] bool apply() override;

 protected:
  std::uint32_t k;
  std::vector<std::uint32_t> sample;
  std::uint32_t targetingRate;
  AutonomousStructure& structure;

  /// Draws `k` positions of [0, n), one fewer if a target takes the place of one.
  void resizeSample(bool useTarget, std::uint32_t n) {
    sampleDistinct(randomState, n, k - static_cast<std::uint32_t>(useTarget), sample);
  }
};

}  // namespace quvex
