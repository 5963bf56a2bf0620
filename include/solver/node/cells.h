#pragma once

#include <cmath>
#include <cstdint>

#include "solver/node/numbers.h"

/// What the aggregates need of their numbers beyond reading them. Values of integers wrap at 64 bits and their bounds
/// saturate; doubles do neither.
namespace quvex {

struct IntegerCells : Integers {
  static constexpr Value kLowest = kLowestInt;
  static constexpr Value kHighest = kHighestInt;

  [[nodiscard]] static Value tentative(const Dag& dag, NodeId id) { return dag.tentativeValue[id]; }
  [[nodiscard]] static t_value toWord(Value value) { return value; }

  [[nodiscard]] static Value add(Value a, Value b) { return wrapAdd(a, b); }
  [[nodiscard]] static Value subtract(Value a, Value b) { return wrapSub(a, b); }
  [[nodiscard]] static Value multiply(Value a, Value b) { return wrapMul(a, b); }
  [[nodiscard]] static Value addBounds(Value a, Value b) { return saturatingAdd(a, b); }
  [[nodiscard]] static Value multiplyBounds(Value a, Value b) { return saturatingMul(a, b); }
  [[nodiscard]] static bool isInfinite(Value) { return false; }
  [[nodiscard]] static bool isNaN(Value) { return false; }
};

struct DoubleCells : Doubles {
  static constexpr Value kLowest = -kInfinity;
  static constexpr Value kHighest = kInfinity;

  [[nodiscard]] static Value tentative(const Dag& dag, NodeId id) { return dag.tentativeDouble(id); }
  [[nodiscard]] static t_value toWord(Value value) { return doubleToWord(value); }

  [[nodiscard]] static Value add(Value a, Value b) { return a + b; }
  [[nodiscard]] static Value subtract(Value a, Value b) { return a - b; }
  [[nodiscard]] static Value multiply(Value a, Value b) { return a * b; }
  [[nodiscard]] static Value addBounds(Value a, Value b) { return a + b; }
  [[nodiscard]] static Value multiplyBounds(Value a, Value b) { return a * b; }
  [[nodiscard]] static bool isInfinite(Value value) { return std::isinf(value); }
  [[nodiscard]] static bool isNaN(Value value) { return std::isnan(value); }
};

}  // namespace quvex
