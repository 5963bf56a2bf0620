#pragma once

#include <array>
#include <cstdint>

/// How often a move of size k is drawn, relative to the others: its entries in the heuristic's pool.
namespace quvex {

/// Weights for k = 1 to 11.
using WeightsByK = std::array<std::uint32_t, 11>;
inline constexpr int kLargestWeightedSize = 11;

inline constexpr WeightsByK kBalanceWeights = {4, 2, 1, 1, 0, 0, 0, 0, 0, 0, 0};
inline constexpr WeightsByK kSwapWeights = {4, 2, 1, 1, 0, 0, 0, 0, 0, 0, 0};
inline constexpr WeightsByK kFlipWeights = {8, 8, 2, 1, 1, 1, 1, 1, 0, 0, 0};
inline constexpr WeightsByK kPathWeights = {0, 6, 6, 8, 8, 4, 2, 1, 0, 0, 0};
inline constexpr WeightsByK kCycleWeights = {0, 2, 4, 8, 8, 4, 2, 1, 0, 0, 0};
inline constexpr WeightsByK kRollWeights = {4, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8};
inline constexpr WeightsByK kMirrorWeights = {4, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8};
/// By k, for forks with two and with three extra branches.
inline constexpr WeightsByK kForkCycle2Weights = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0};
inline constexpr WeightsByK kForkCycle3Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
inline constexpr WeightsByK kForkPath2Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
inline constexpr WeightsByK kForkPath3Weights = {0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};

/// The weight of size k; sizes outside of the table have weight 0.
[[nodiscard]] constexpr std::uint32_t weightOf(const WeightsByK& weights, std::uint32_t k) {
  return k >= 1 && k <= weights.size() ? weights[k - 1] : 0;
}

}  // namespace quvex
