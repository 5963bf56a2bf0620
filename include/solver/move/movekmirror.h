#pragma once

#include "solver/move/movechain.h"

namespace quvex {

/// Reverses what about `k` consecutive equality sums hold, pair by pair from the outside in. In an assignment of items
/// to places it mirrors the places of consecutive items.
class MoveKMirror : public MoveChain {
 public:
  MoveKMirror(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous);

  [[nodiscard]] bool apply() override;

 private:
  /// Two sums exchange the operands that they hold.
  [[nodiscard]] bool exchange(NodeId a, NodeId b);
};

}  // namespace quvex
