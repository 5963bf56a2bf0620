#pragma once

#include <bit>
#include <cstdint>
#include <limits>

/// The vocabulary of numbers: one alias per kind of index, and the untyped value word.
namespace quvex {

using NodeId = std::uint32_t;        ///< dense, in creation order
using OperandPos = std::uint32_t;    ///< index in a node's operand run
using BooleanIndex = std::uint32_t;  ///< a decision's place in `decisionList`
using StaticIndex = std::uint32_t;   ///< a place in `staticNodes`
using Rank = std::uint32_t;          ///< longest path from a source
using Level = std::uint32_t;         ///< 0 serves a constraint, i + 1 serves objective i

/// "None" for every index above.
inline constexpr std::uint32_t kNone = 0xFFFFFFFFU;

/// One untyped 64-bit value: a signed integer, or the bits of an IEEE 754 double. The type is kept beside it.
using t_value = std::int64_t;

[[nodiscard]] constexpr double wordToDouble(t_value word) { return std::bit_cast<double>(word); }
[[nodiscard]] constexpr t_value doubleToWord(double value) { return std::bit_cast<t_value>(value); }

inline constexpr std::int64_t kLowestInt = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t kHighestInt = std::numeric_limits<std::int64_t>::max();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Limits that mean "no limit".
inline constexpr int kNoTimeLimit = std::numeric_limits<int>::max();
inline constexpr std::int64_t kNoIterationLimit = kHighestInt;

/// Concrete value types have one bit; a mask of several means any one of them.
using ValueType = std::uint8_t;
inline constexpr ValueType kBoolean = 1;
inline constexpr ValueType kInteger = 2;
inline constexpr ValueType kDouble = 4;
inline constexpr ValueType kArray = 8;

}  // namespace quvex
