#pragma once

#include "solver/move/movechain.h"

namespace quvex {

/// A cycle that splits: after `k - 2` changes, each of `forks` branches takes one more from the last sum and closes
/// with a decision that it shares with the first.
class MoveKLForkCycle : public MoveChain {
 public:
  MoveKLForkCycle(std::uint32_t size, std::uint32_t nbForks, std::uint32_t weight, std::uint32_t rate,
                  AutonomousStructure& autonomous);

  [[nodiscard]] bool apply() override;

 private:
  std::uint32_t forks;

  /// Takes one step from `from` and closes it on `close`.
  [[nodiscard]] bool addBranch(ChainEnd from, ChainEnd close);
};

}  // namespace quvex
