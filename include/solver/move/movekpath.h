#pragma once

#include "solver/move/movechain.h"

namespace quvex {

/// A path of `k` changes that starts in a sum with slack; the sums between its ends stay as they are, its ends change
/// by one each.
class MoveKPath : public MoveChain {
 public:
  MoveKPath(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous);

  [[nodiscard]] bool apply() override;
};

}  // namespace quvex
