#pragma once

#include "solver/move/movechain.h"

namespace quvex {

/// Rotates what `k` consecutive equality sums hold. In an assignment of items to places, with one equality sum per
/// item, it rotates the places of consecutive items. Consecutive means in list order, which is stable.
class MoveKRoll : public MoveChain {
 public:
  MoveKRoll(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous);

  [[nodiscard]] bool apply() override;

 private:
  /// One rotation from the sum at `first` to that at `stop`, back to `first`.
  [[nodiscard]] bool roll(int first, int stop, int direction);
};

}  // namespace quvex
