#pragma once

#include <cstdint>

#include "solver/kernel/dag.h"
#include "solver/node/operandcells.h"
#include "solver/node/pickrequest.h"

/// Skeletons of the operators without incremental state. A class passes itself as `Derived` and gives static functions;
/// nothing here is virtual beyond what `Node` demands.
namespace quvex {

[[nodiscard]] inline t_value toWord(std::int64_t value) { return value; }
[[nodiscard]] inline t_value toWord(double value) { return doubleToWord(value); }

/// Turns the three picks into `Derived::pickToward(request, direction, id)`, so that a rule and its mirror image are
/// written once, and `Derived::pickOther(request, id)` for any change.
template <class Derived, class Base>
class PickingNode : public Base {
 public:
  bool pickDecrease(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const final {
    return Derived::pickToward(PickRequest{dag, state, decision, delta}, Direction::Down, id);
  }
  bool pickIncrease(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const final {
    return Derived::pickToward(PickRequest{dag, state, decision, delta}, Direction::Up, id);
  }
  bool pickChange(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const final {
    return Derived::pickOther(PickRequest{dag, state, decision, delta}, id);
  }

 protected:
  /// The rule of those that take any change of any operand.
  static bool pickAny(const PickRequest& request, NodeId id) {
    return Node::pickAnyChange(request.dag, request.state, request.decision, request.delta, id);
  }
};

/// An operator whose value is `Derived::value(cells)`, recomputed at every wake-up.
template <class Derived, class Base>
class PlainNode : public PickingNode<Derived, Base> {
 public:
  [[nodiscard]] auto computeValue(const Dag& dag, NodeId id) const
      -> decltype(static_cast<const Base*>(nullptr)->computeValue(dag, id)) final {
    return Derived::value(OperandCells::committed(dag, id));
  }
  void eval(Dag& dag, Propagation&, NodeId id) final {
    dag.tentativeValue[id] = toWord(Derived::value(OperandCells::tentative(dag, id)));
  }
};

}  // namespace quvex
