#include "solver/node/nodemodulo.h"

#include <algorithm>

#include "solver/kernel/checkeddivision.h"

namespace quvex {

Bounds NodeModulo::computeBounds(const DagFixedFields& fixed, NodeId id) {
  const NodeId a = fixed.child(id, 0);
  const NodeId b = fixed.child(id, 1);
  const std::int64_t a1 = fixed.minBounds[a];
  const std::int64_t a2 = fixed.maxBounds[a];
  const std::int64_t b1 = fixed.minBounds[b];
  const std::int64_t b2 = fixed.maxBounds[b];
  if (b1 == 0 && b2 == 0) raise<KernelException>(here<NodeModulo>(), "Division by zero.");

  if (a1 >= 0 && b1 >= 0) return {0, std::min(b2 - 1, a2)};
  const std::int64_t divisor = std::max(saturatingAbs(b1), saturatingAbs(b2));
  const std::int64_t dividend = std::max(saturatingAbs(a1), saturatingAbs(a2));
  return {std::max(1 - divisor, -dividend), std::min(divisor - 1, dividend)};
}

std::int64_t NodeModulo::computeValue(const Dag& dag, NodeId id) const {
  const auto cells = OperandCells::committed(dag, id);
  return checkedModulo(cells.word(0), cells.word(1), here<NodeModulo>());
}

void NodeModulo::eval(Dag& dag, Propagation&, NodeId id) {
  const auto cells = OperandCells::tentative(dag, id);
  dag.tentativeValue[id] = checkedModulo(cells.word(0), cells.word(1), here<NodeModulo>());
}

// A remainder jumps: only from a dividend of zero is it known where it goes.
bool NodeModulo::pickToward(const PickRequest& request, Direction d, NodeId id) {
  const NodeId a = request.operand(id, 0);
  if (request.dag.nodeValue[a] != 0) return pickAny(request, id);
  const bool positiveDivisor = request.dag.nodeValue[request.operand(id, 1)] >= 1;
  return request.toward(positiveDivisor ? d : opposite(d), a);
}

}  // namespace quvex
