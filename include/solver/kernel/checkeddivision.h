#pragma once

#include <cstdint>

#include "api/qvexception.h"
#include "solver/kernel/types.h"

/// The machine's signed division, with a failure of our own where the processor would trap.
namespace quvex {

/// Raises for a zero divisor, and for the one quotient that has no 64-bit value.
inline void checkDivision(std::int64_t a, std::int64_t b, const Place& place) {
  if (b == 0) raise<KernelException>(place, "Division by zero.");
  if (a == kLowestInt && b == -1) raise<KernelException>(place, "Integer overflow in the division of ", a, " by -1.");
}

/// a / b, truncating toward zero.
[[nodiscard]] inline std::int64_t checkedDivide(std::int64_t a, std::int64_t b, const Place& place) {
  checkDivision(a, b, place);
  return a / b;
}

/// a % b, with the sign of a.
[[nodiscard]] inline std::int64_t checkedModulo(std::int64_t a, std::int64_t b, const Place& place) {
  checkDivision(a, b, place);
  return a % b;
}

}  // namespace quvex
