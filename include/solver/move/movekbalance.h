#pragma once

#include <cstdint>
#include <vector>

#include "solver/kernel/move.h"
#include "solver/move/autonomousstructure.h"

namespace quvex {

/// Keeps quantities steady: for each of `k` drawn operators, one decision that should lower it and one that should
/// raise it both change. Operators that matter to no objective under optimisation are passed over. Invariant: `sample`
/// is scratch of one attempt.
class MoveKBalance : public Move {
 public:
  MoveKBalance(std::uint32_t size, std::uint32_t weight, AutonomousStructure& autonomous, Dag& moveDag);

  [[nodiscard]] bool apply() override;

 private:
  std::uint32_t k;
  std::vector<std::uint32_t> sample;

  /// Changes one pair for the operator; false if there is none.
  bool balance(NodeId id);
};

}  // namespace quvex
