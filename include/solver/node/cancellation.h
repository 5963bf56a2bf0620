#pragma once

#include <cmath>

namespace quvex {

/// Whether a step from `before` to `after` loses so many digits that a value carried along by differences or ratios can
/// no longer be trusted: it collapses, crosses zero, or jumps far. Where either side is zero the distance counts as it
/// is, so that almost any step from or to a value near zero qualifies; the pass over all operands that follows is the
/// price for running values that do not drift.
[[nodiscard]] inline bool isCancellation(double before, double after) {
  constexpr double kThreshold = 0.999999;
  const double distance = std::abs(before - after);
  if (before * after == 0) return distance > kThreshold;
  return distance / (std::abs(before) + std::abs(after)) > kThreshold;
}

}  // namespace quvex
