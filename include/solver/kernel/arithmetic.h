#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "solver/kernel/types.h"

/// Integer arithmetic with a named overflow rule: wrapping for values, saturating for bounds.
namespace quvex {

[[nodiscard]] constexpr std::int64_t wrapAdd(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
[[nodiscard]] constexpr std::int64_t wrapSub(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}
[[nodiscard]] constexpr std::int64_t wrapMul(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}
[[nodiscard]] constexpr std::int64_t wrapNeg(std::int64_t a) { return wrapSub(0, a); }
[[nodiscard]] constexpr std::int64_t wrapAbs(std::int64_t a) { return a < 0 ? wrapNeg(a) : a; }

/// The absolute value; the lowest integer gives the highest.
[[nodiscard]] constexpr std::int64_t saturatingAbs(std::int64_t a) {
  if (a == kLowestInt) return kHighestInt;
  return a < 0 ? -a : a;
}

/// The negative; the lowest integer gives the highest.
[[nodiscard]] constexpr std::int64_t saturatingNeg(std::int64_t a) { return a == kLowestInt ? kHighestInt : -a; }

/// The sum; two negatives that wrap give the lowest integer, two positives the highest.
[[nodiscard]] constexpr std::int64_t saturatingAdd(std::int64_t a, std::int64_t b) {
  const std::int64_t sum = wrapAdd(a, b);
  if (a < 0 && b < 0 && sum >= 0) return kLowestInt;
  if (a > 0 && b > 0 && sum <= 0) return kHighestInt;
  return sum;
}

/// The product, or an extreme integer as soon as the operands have 62 significant bits together (one bit of each is
/// not counted). A zero factor against a huge one therefore gives the lowest integer, as a bound too.
[[nodiscard]] constexpr std::int64_t saturatingMul(std::int64_t a, std::int64_t b) {
  const auto halfBits = [](std::int64_t x) {
    return std::bit_width(static_cast<std::uint64_t>(saturatingAbs(x)) >> 1U);
  };
  if (halfBits(a) + halfBits(b) < 62) return a * b;
  const bool sameSign = (a > 0 && b > 0) || (a < 0 && b < 0);
  return sameSign ? kHighestInt : kLowestInt;
}

}  // namespace quvex
