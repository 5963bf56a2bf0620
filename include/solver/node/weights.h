#pragma once

#include <iostream>
#include <utility>

#include "solver/node/cells.h"

/// The two ways in which an operand enters a family's value, as policies: as it is, or multiplied by the coefficient
/// that the node carries for its position. What enters is called the operand's term.
namespace quvex {

/// The smallest and the largest value of a term.
template <class Cells>
using TermRange = std::pair<typename Cells::Value, typename Cells::Value>;

template <class CellPolicy>
struct Plain {
  using Cells = CellPolicy;
  using Value = typename Cells::Value;
  static constexpr bool kScaled = false;

  [[nodiscard]] static Value term(const DagFixedFields&, NodeId, OperandPos, Value value) { return value; }
  [[nodiscard]] static bool isPositive(const DagFixedFields&, NodeId, OperandPos) { return true; }
  [[nodiscard]] static bool isNegative(const DagFixedFields&, NodeId, OperandPos) { return false; }
  [[nodiscard]] static TermRange<Cells> range(const DagFixedFields& fixed, NodeId id, OperandPos p) {
    const NodeId child = fixed.child(id, p);
    return {Cells::min(fixed, child), Cells::max(fixed, child)};
  }
};

template <class CellPolicy>
struct Scaled {
  using Cells = CellPolicy;
  using Value = typename Cells::Value;
  static constexpr bool kScaled = true;

  [[nodiscard]] static Value coefficient(const DagFixedFields& fixed, NodeId id, OperandPos p) {
    return Cells::fromWord(fixed.constant(id, p));
  }
  [[nodiscard]] static Value term(const DagFixedFields& fixed, NodeId id, OperandPos p, Value value) {
    return Cells::multiply(coefficient(fixed, id, p), value);
  }
  [[nodiscard]] static bool isPositive(const DagFixedFields& fixed, NodeId id, OperandPos p) {
    return coefficient(fixed, id, p) > 0;
  }
  [[nodiscard]] static bool isNegative(const DagFixedFields& fixed, NodeId id, OperandPos p) {
    return coefficient(fixed, id, p) < 0;
  }
  /// A coefficient that is not positive swaps the operand's bounds.
  [[nodiscard]] static TermRange<Cells> range(const DagFixedFields& fixed, NodeId id, OperandPos p) {
    const Value c = coefficient(fixed, id, p);
    const auto [min, max] = Plain<Cells>::range(fixed, id, p);
    if (c > 0) return {Cells::multiplyBounds(c, min), Cells::multiplyBounds(c, max)};
    return {Cells::multiplyBounds(c, max), Cells::multiplyBounds(c, min)};
  }
};

/// In the debug dump: the coefficients of a scaled node, nothing of a plain one.
template <class Weight>
void printCoefficients(const DagFixedFields& fixed, NodeId id) {
  if constexpr (Weight::kScaled) {
    const auto precision = std::cout.precision(16);
    std::cout << "coefficients";
    for (OperandPos p = 0; p < fixed.nbChildren[id]; ++p) std::cout << ' ' << Weight::coefficient(fixed, id, p);
    std::cout << '\n';
    std::cout.precision(precision);
  }
}

}  // namespace quvex
