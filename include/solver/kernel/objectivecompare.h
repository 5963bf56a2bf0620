#pragma once

#include <cstdint>

#include "solver/kernel/dag.h"
#include "solver/kernel/mathdouble.h"

/// Which of two values of an objective is better: the one rule of heuristics, moves and bounds.
/// Doubles that are equal within the tolerance are a tie; everything else compares as signed integers.
namespace quvex {

inline constexpr std::uint32_t kMinimise = 0;
inline constexpr std::uint32_t kMaximise = 1;

/// Whether `a` lies strictly below `b`, both cells of node `id`.
[[nodiscard]] inline bool isCellBelow(const DagFixedFields& fixed, NodeId id, t_value a, t_value b) {
  if (!fixed.isDouble(id)) return a < b;
  return MathDouble::isGreater(wordToDouble(b), wordToDouble(a));
}

/// Whether `a` is strictly better than `b` as a value of objective `i`. An unknown direction prefers nothing.
[[nodiscard]] inline bool isCellBetter(const DagFixedFields& fixed, std::uint32_t i, t_value a, t_value b) {
  const NodeId id = fixed.objectives[i];
  const std::uint32_t direction = fixed.objectiveDirections[i];
  if (direction == kMinimise) return isCellBelow(fixed, id, a, b);
  return direction == kMaximise && isCellBelow(fixed, id, b, a);
}

/// Whether the tentative value of objective `i` is better than a reference cell.
[[nodiscard]] inline bool isBetter(const Dag& dag, std::uint32_t i, t_value reference) {
  return isCellBetter(dag.fixed, i, dag.tentativeValue[dag.fixed.objectives[i]], reference);
}

/// Whether the tentative value of objective `i` is worse than a reference cell.
[[nodiscard]] inline bool isWorse(const Dag& dag, std::uint32_t i, t_value reference) {
  return isCellBetter(dag.fixed, i, reference, dag.tentativeValue[dag.fixed.objectives[i]]);
}

/// The bound that objective `i` moves toward: its node's maximum or minimum.
[[nodiscard]] inline t_value bestBound(const DagFixedFields& fixed, std::uint32_t i) {
  const NodeId id = fixed.objectives[i];
  return fixed.objectiveDirections[i] == kMaximise ? fixed.maxBounds[id] : fixed.minBounds[id];
}

}  // namespace quvex
