#include "solver/node/nodedoubledivide.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "api/qvexception.h"

namespace quvex {

namespace {

double quotient(const OperandCells& cells) { return cells.get<Doubles>(0) / cells.get<Doubles>(1); }

}  // namespace

Bounds NodeDoubleDivide::computeBounds(const DagFixedFields& fixed, NodeId id) {
  const NodeId a = fixed.child(id, 0);
  const NodeId b = fixed.child(id, 1);
  const double a1 = fixed.minDouble(a);
  const double a2 = fixed.maxDouble(a);
  const double b1 = fixed.minDouble(b);
  const double b2 = fixed.maxDouble(b);
  if (b1 == 0 && b2 == 0) raise<KernelException>(here<NodeDoubleDivide>(), "Division by zero.");

  const Bounds anything = Bounds::ofDoubles(-kInfinity, kInfinity);
  if (b1 <= 0 && b2 >= 0) return anything;
  const std::array<double, 4> quotients = {a1 / b1, a1 / b2, a2 / b1, a2 / b2};
  if (std::any_of(quotients.begin(), quotients.end(), [](double q) { return std::isnan(q); })) return anything;
  const auto [min, max] = std::minmax_element(quotients.begin(), quotients.end());
  return Bounds::ofDoubles(*min, *max);
}

double NodeDoubleDivide::computeValue(const Dag& dag, NodeId id) const {
  return quotient(OperandCells::committed(dag, id));
}

void NodeDoubleDivide::eval(Dag& dag, Propagation&, NodeId id) {
  dag.tentativeValue[id] = doubleToWord(quotient(OperandCells::tentative(dag, id)));
}

bool NodeDoubleDivide::pickOther(const PickRequest& request, NodeId id) {
  const NodeId a = request.operand(id, 0);
  if (MathDouble::isNearlyZero(request.dag.committedDouble(a))) return request.change(a);
  return pickAny(request, id);
}

}  // namespace quvex
