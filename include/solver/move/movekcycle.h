#pragma once

#include "solver/move/movechain.h"

namespace quvex {

/// A cycle of `k` changes that returns to the sum where it began, so that every sum it meets stays as it is.
class MoveKCycle : public MoveChain {
 public:
  MoveKCycle(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous);

  [[nodiscard]] bool apply() override;
};

}  // namespace quvex
