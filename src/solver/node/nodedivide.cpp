#include "solver/node/nodedivide.h"

#include <algorithm>

#include "solver/kernel/checkeddivision.h"

namespace quvex {

Bounds NodeDivide::computeBounds(const DagFixedFields& fixed, NodeId id) {
  const NodeId a = fixed.child(id, 0);
  const NodeId b = fixed.child(id, 1);
  const std::int64_t a1 = fixed.minBounds[a];
  const std::int64_t a2 = fixed.maxBounds[a];
  std::int64_t b1 = fixed.minBounds[b];
  std::int64_t b2 = fixed.maxBounds[b];
  if (b1 == 0 && b2 == 0) raise<KernelException>(here<NodeDivide>(), "Division by zero.");

  // The divisor's interval is widened to the units next to zero; wider bounds do no harm.
  if (b1 >= 0) b1 = 1;
  if (b2 <= 0) b2 = -1;
  if (b1 < 0 && b2 > 0) {
    const std::int64_t largest = std::max(saturatingAbs(a1), saturatingAbs(a2));
    return {-largest, largest};
  }
  const auto quotient = [](std::int64_t x, std::int64_t y) { return y == -1 ? saturatingNeg(x) : x / y; };
  const auto [min, max] = std::minmax({quotient(a1, b1), quotient(a1, b2), quotient(a2, b1), quotient(a2, b2)});
  return {min, max};
}

std::int64_t NodeDivide::computeValue(const Dag& dag, NodeId id) const {
  const auto cells = OperandCells::committed(dag, id);
  return checkedDivide(cells.word(0), cells.word(1), here<NodeDivide>());
}

void NodeDivide::eval(Dag& dag, Propagation&, NodeId id) {
  const auto cells = OperandCells::tentative(dag, id);
  dag.tentativeValue[id] = checkedDivide(cells.word(0), cells.word(1), here<NodeDivide>());
}

}  // namespace quvex
