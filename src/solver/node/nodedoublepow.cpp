#include "solver/node/nodedoublepow.h"

#include <algorithm>

namespace quvex {

Bounds NodeDoublePow::computeBounds(const DagFixedFields& fixed, NodeId id) {
  const NodeId a = fixed.child(id, 0);
  const NodeId b = fixed.child(id, 1);
  const double a1 = fixed.minDouble(a);
  const double a2 = fixed.maxDouble(a);
  const double b1 = fixed.minDouble(b);
  const double b2 = fixed.maxDouble(b);
  if (b1 == 0 && b2 == 0) return Bounds::ofDoubles(1.0, 1.0);
  if (b1 == 1 && b2 == 1) return Bounds::ofDoubles(a1, a2);
  // Nothing is known of negative bases, and any negative exponent gives an infinity.
  if (!(a1 >= 0 && b1 >= 0)) return Bounds::ofDoubles(-kInfinity, kInfinity);
  // Monotone in each operand for the other one fixed.
  const auto [min, max] =
      std::minmax({MathDouble::pow(a1, b1), MathDouble::pow(a1, b2), MathDouble::pow(a2, b1), MathDouble::pow(a2, b2)});
  return Bounds::ofDoubles(min, max);
}

bool NodeDoublePow::pickToward(const PickRequest& request, Direction d, NodeId id) {
  const Dag& dag = request.dag;
  const NodeId a = request.operand(id, 0);
  const NodeId b = request.operand(id, 1);
  if (coin(request.state)) {
    const double base = dag.committedDouble(a);
    if (base >= 1.0 && canMove<Doubles>(dag, b, d)) return request.toward(d, b);
    if (base < 1.0 && canMove<Doubles>(dag, b, opposite(d))) return request.toward(opposite(d), b);
  }
  return canMove<Doubles>(dag, a, d) && request.toward(d, a);
}

bool NodeDoublePow::pickOther(const PickRequest& request, NodeId id) {
  const DagFixedFields& fixed = request.dag.fixed;
  const NodeId a = request.operand(id, 0);
  const NodeId b = request.operand(id, 1);
  if (coin(request.state) && !isFixed<Doubles>(fixed, b)) return request.change(b);
  return !isFixed<Doubles>(fixed, a) && request.change(a);
}

}  // namespace quvex
