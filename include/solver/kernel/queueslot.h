#pragma once

#include <cstdint>

#include "solver/kernel/types.h"

namespace quvex {

/// The queue of a node during evaluation: 2r for the constraints of rank r, 2r + 1 for its other nodes. Ascending slots
/// are the order of evaluation.
using QueueSlot = std::uint32_t;
[[nodiscard]] constexpr QueueSlot constraintSlot(Rank r) { return 2 * r; }
[[nodiscard]] constexpr QueueSlot ordinarySlot(Rank r) { return 2 * r + 1; }

}  // namespace quvex
