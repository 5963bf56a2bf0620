#pragma once

#include <utility>

#include "solver/node/factors.h"

namespace quvex {

/// How bounds of a product are calculated where integers and doubles differ: integers saturate, doubles do not.
namespace productbounds {

[[nodiscard]] inline std::int64_t magnitude(std::int64_t a) { return saturatingAbs(a); }
[[nodiscard]] inline double magnitude(double a) { return std::abs(a); }

/// The lower end that follows from the upper one when the operand with these magnitudes changes its sign. A saturated
/// product says nothing more than "huge" and is not divided.
[[nodiscard]] inline std::int64_t flipped(std::int64_t high, std::int64_t small, std::int64_t big) {
  const std::int64_t product = saturatingMul(high, small);
  const bool saturated = product == kLowestInt || product == kHighestInt;
  return wrapNeg(saturated ? product : product / big);
}
[[nodiscard]] inline double flipped(double high, double small, double big) { return -(high * small / big); }

}  // namespace productbounds

/// The range of the product of all operands. `high` takes the end of larger magnitude of each operand, `low` the other;
/// where operands can change sign, the one with the highest ratio of small to large magnitude turns `high` round at
/// the least loss. Doubles without a finite range give all reals.
template <class Cells>
[[nodiscard]] Bounds productOfOperandBounds(const DagFixedFields& fixed, NodeId id) {
  using Value = typename Cells::Value;
  Value high = 1;
  Value low = 1;
  Value flipBig = 1;
  Value flipSmall = 0;
  for (const NodeId child : fixed.childrenOf(id)) {
    const Value a = Cells::min(fixed, child);
    const Value b = Cells::max(fixed, child);
    if (Cells::isInfinite(a) || Cells::isInfinite(b)) return Cells::bounds(Cells::kLowest, Cells::kHighest);
    Value small = productbounds::magnitude(a);
    Value big = productbounds::magnitude(b);
    const bool upperIsBig = big > small;
    high = Cells::multiplyBounds(high, upperIsBig ? b : a);
    low = Cells::multiplyBounds(low, upperIsBig ? a : b);
    if (!upperIsBig) std::swap(small, big);
    const bool canFlip = a < 0 && b > 0;
    if (canFlip && Cells::multiplyBounds(small, flipBig) > Cells::multiplyBounds(big, flipSmall)) {
      flipBig = big;
      flipSmall = small;
    }
  }
  if (flipSmall > 0) low = productbounds::flipped(high, flipSmall, flipBig);
  return low > high ? Cells::bounds(high, low) : Cells::bounds(low, high);
}

/// Bounds times the node's factor; they change places when the factor turns the sign.
[[nodiscard]] inline Bounds scaleIntegerBounds(const Bounds& bounds, std::int64_t scalar) {
  const Bounds scaled{wrapMul(bounds.min, scalar), wrapMul(bounds.max, scalar)};
  return scalar < 0 ? Bounds{scaled.max, scaled.min} : scaled;
}
[[nodiscard]] inline Bounds scaleDoubleBounds(const Bounds& bounds, double scalar) {
  const double min = wordToDouble(bounds.min) * scalar;
  const double max = wordToDouble(bounds.max) * scalar;
  return scalar > 0 ? Bounds::ofDoubles(min, max) : Bounds::ofDoubles(max, min);
}

}  // namespace quvex
