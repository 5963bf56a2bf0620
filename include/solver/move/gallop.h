#pragma once

#include "solver/kernel/types.h"

/// Searches in ascending runs of operands. Runs may be out of order when preprocessing is off: the probes are spelled
/// out here, because then the answer depends on them.
namespace quvex {

/// First position of [lo, hi) whose operand is at least `value`, `hi` if there is none.
template <class Operands>
[[nodiscard]] OperandPos lowerBound(const Operands& operands, NodeId value, OperandPos lo, OperandPos hi) {
  while (lo < hi) {
    const OperandPos middle = lo + (hi - lo) / 2;
    if (operands[middle] < value) {
      lo = middle + 1;
    } else {
      hi = middle;
    }
  }
  return lo;
}

/// First position of [lo, hi] whose operand is at least `value`, kNone if `value` exceeds the operand at `hi`.
/// Costs the logarithm of the distance from `lo` (J. L. Bentley and A. C. Yao, An almost optimal algorithm for
/// unbounded searching, 1976), so that merging a short run with a long one costs little.
template <class Operands>
[[nodiscard]] OperandPos gallop(const Operands& operands, NodeId value, OperandPos lo, OperandPos hi) {
  if (operands[hi] < value) return kNone;
  if (operands[lo] >= value) return lo;
  OperandPos below = lo;
  OperandPos step = 1;
  while (hi - below > step && operands[below + step] < value) {
    below += step;
    step *= 2;
  }
  const OperandPos end = hi - below > step ? below + step : hi;
  return lowerBound(operands, value, below + 1, end);
}

}  // namespace quvex
