#pragma once

#include "solver/node/plainnode.h"

namespace quvex {

/// What the quotients of integers and of doubles share: their picks go by the divisor's sign. A divisor that is not
/// positive turns the dividend's direction around; a dividend of zero is moved itself, as the divisor has no effect.
template <class Derived, class Numbers>
class DividingNode : public PickingNode<Derived, typename Numbers::Inner> {
 public:
  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    const NodeId a = request.operand(id, 0);
    const NodeId b = request.operand(id, 1);
    const Direction along = Numbers::greater(Numbers::committed(request.dag, b), 0) ? d : opposite(d);
    if (Numbers::equal(Numbers::committed(request.dag, a), 0)) return request.toward(along, a);
    return moveDifference<Numbers>(request, along, id);
  }
};

}  // namespace quvex
