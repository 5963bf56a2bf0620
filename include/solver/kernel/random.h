#pragma once

#include <cstdint>

/// The one random generator: a 32-bit linear congruence (constants of Numerical Recipes, 2nd edition, section 7.1)
/// on a state that the caller owns. What draws and what does not is part of the behaviour: a run is a function of its
/// seed only as long as every choice steps the state exactly as often as before.
namespace quvex {

using RandomState = std::uint32_t;

inline std::uint32_t randomStep(RandomState& state) { return state = state * 1664525U + 1013904223U; }

/// The high 32 bits of state * n: a number in [0, n) without stepping.
[[nodiscard]] constexpr std::uint32_t scaleTo(RandomState state, std::uint32_t n) {
  return static_cast<std::uint32_t>((std::uint64_t{state} * n) >> 32U);
}

/// Uniform in [0, n). A choice that is certain (n of 0 or 1) gives 0 and draws nothing.
inline std::uint32_t rand(RandomState& state, std::uint32_t n) {
  if (n <= 1) return 0;
  return scaleTo(randomStep(state), n);
}

/// Steps and reads the top bit.
inline bool coin(RandomState& state) { return (randomStep(state) >> 31U) != 0; }

/// The real in [0, 1) of a state just stepped, through single precision.
[[nodiscard]] inline double realOf(RandomState state) {
  return static_cast<float>(scaleTo(state, 2147483647U) / 2147483647.0);
}

}  // namespace quvex
