#pragma once

#include "solver/move/movechain.h"

namespace quvex {

/// A path that splits: after `k - 2` changes, each of `forks` branches hangs two more from the last sum.
class MoveKLForkPath : public MoveChain {
 public:
  MoveKLForkPath(std::uint32_t size, std::uint32_t nbForks, std::uint32_t weight, std::uint32_t rate,
                 AutonomousStructure& autonomous);

  [[nodiscard]] bool apply() override;

 private:
  std::uint32_t forks;

  [[nodiscard]] bool addBranch(ChainEnd from);
};

}  // namespace quvex
