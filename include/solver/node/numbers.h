#pragma once

#include <cstdint>

#include "solver/kernel/arithmetic.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/mathdouble.h"
#include "solver/kernel/nodeinner.h"
#include "solver/kernel/nodetypeutils.h"

/// The two kinds of numbers that an operator may work on. Operators that exist for both are templates over one of
/// these policies: what differs is how a cell is read, the base of the class, and whether comparisons are exact.
namespace quvex {

/// Signed 64-bit integers with exact comparisons. Bounds saturate.
struct Integers {
  using Value = std::int64_t;
  using Inner = NodeInner;

  [[nodiscard]] static Value fromWord(t_value word) { return word; }
  [[nodiscard]] static Value read(const DagFixedFields&, NodeId, t_value cell) { return cell; }
  [[nodiscard]] static Value committed(const Dag& dag, NodeId id) { return dag.nodeValue[id]; }
  [[nodiscard]] static Value min(const DagFixedFields& fixed, NodeId id) { return fixed.minBounds[id]; }
  [[nodiscard]] static Value max(const DagFixedFields& fixed, NodeId id) { return fixed.maxBounds[id]; }
  [[nodiscard]] static Bounds bounds(Value min, Value max) { return {min, max}; }

  [[nodiscard]] static bool equal(Value a, Value b) { return a == b; }
  [[nodiscard]] static bool greater(Value a, Value b) { return a > b; }
  [[nodiscard]] static bool greaterOrEqual(Value a, Value b) { return a >= b; }

  /// The negative of a bound.
  [[nodiscard]] static Value negative(Value a) { return saturatingNeg(a); }
  /// How far `to` lies above `from`, at most the highest integer; 0 if it does not.
  [[nodiscard]] static Value rise(Value from, Value to) {
    if (to <= from) return 0;
    const Value difference = wrapSub(to, from);
    return difference < 0 ? kHighestInt : difference;
  }
};

/// Doubles, whatever the domain of the cell. What is equal within the tolerance is equal, and neither is greater.
struct Doubles {
  using Value = double;
  using Inner = NodeDoubleInner;

  [[nodiscard]] static Value fromWord(t_value word) { return wordToDouble(word); }
  [[nodiscard]] static Value read(const DagFixedFields& fixed, NodeId id, t_value cell) {
    return fixed.asDouble(id, cell);
  }
  [[nodiscard]] static Value committed(const Dag& dag, NodeId id) { return dag.committedDouble(id); }
  [[nodiscard]] static Value min(const DagFixedFields& fixed, NodeId id) { return fixed.minDouble(id); }
  [[nodiscard]] static Value max(const DagFixedFields& fixed, NodeId id) { return fixed.maxDouble(id); }
  [[nodiscard]] static Bounds bounds(Value min, Value max) { return Bounds::ofDoubles(min, max); }

  [[nodiscard]] static bool equal(Value a, Value b) { return MathDouble::isEqual(a, b); }
  [[nodiscard]] static bool greater(Value a, Value b) { return MathDouble::isGreater(a, b); }
  [[nodiscard]] static bool greaterOrEqual(Value a, Value b) { return MathDouble::isGreaterOrEqual(a, b); }

  [[nodiscard]] static Value negative(Value a) { return -a; }
  /// How far `to` lies above `from`; 0 if it does not.
  [[nodiscard]] static Value rise(Value from, Value to) { return to <= from ? 0.0 : to - from; }
};

}  // namespace quvex
