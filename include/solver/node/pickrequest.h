#pragma once

#include <cstdint>

#include "solver/kernel/dag.h"
#include "solver/kernel/node.h"
#include "solver/node/numbers.h"

/// How the operators of fixed arity look for a decision: the request that travels down, and the questions on operands
/// that their rules ask.
namespace quvex {

enum class Direction : std::uint8_t { Down, Up };

[[nodiscard]] constexpr Direction opposite(Direction d) { return d == Direction::Up ? Direction::Down : Direction::Up; }

/// The search for one decision, on its way from a node to an operand. It holds what all three picks share: where to
/// draw from, and where to put the answer. The answer is written only by the decision that is found.
struct PickRequest {
  const Dag& dag;
  RandomState& state;
  NodeId& decision;
  int& delta;

  bool decrease(NodeId operand) const { return dag.nodes[operand]->pickDecrease(dag, state, decision, delta, operand); }
  bool increase(NodeId operand) const { return dag.nodes[operand]->pickIncrease(dag, state, decision, delta, operand); }
  bool change(NodeId operand) const { return dag.nodes[operand]->pickChange(dag, state, decision, delta, operand); }
  bool toward(Direction d, NodeId operand) const { return d == Direction::Up ? increase(operand) : decrease(operand); }

  [[nodiscard]] NodeId operand(NodeId id, OperandPos p) const { return dag.child(id, p); }
};

/// Whether the committed value of a node is still away from its bound on that side.
template <class Numbers>
[[nodiscard]] bool canMove(const Dag& dag, NodeId id, Direction d) {
  const auto value = Numbers::committed(dag, id);
  return d == Direction::Up ? Numbers::greater(Numbers::max(dag.fixed, id), value)
                            : Numbers::greater(value, Numbers::min(dag.fixed, id));
}

/// Whether the bounds of a node leave it one value only.
template <class Numbers>
[[nodiscard]] bool isFixed(const DagFixedFields& fixed, NodeId id) {
  return Numbers::equal(Numbers::min(fixed, id), Numbers::max(fixed, id));
}

/// Raises one node or lowers the other; draws a coin only if both have room.
template <class Numbers>
bool pullApart(const PickRequest& request, NodeId upper, NodeId lower) {
  if (!canMove<Numbers>(request.dag, upper, Direction::Up)) return request.decrease(lower);
  if (canMove<Numbers>(request.dag, lower, Direction::Down) && coin(request.state)) return request.decrease(lower);
  return request.increase(upper);
}

/// Moves the difference of a binary node's operands, first minus second.
template <class Numbers>
bool moveDifference(const PickRequest& request, Direction d, NodeId id) {
  const NodeId a = request.operand(id, 0);
  const NodeId b = request.operand(id, 1);
  return d == Direction::Up ? pullApart<Numbers>(request, a, b) : pullApart<Numbers>(request, b, a);
}

/// Moves the operands of a binary node toward each other: raises the difference where the first is the lower one.
/// The order is exact for doubles too.
template <class Numbers>
bool closeGap(const PickRequest& request, NodeId id) {
  const bool firstIsLower =
      Numbers::committed(request.dag, request.operand(id, 0)) < Numbers::committed(request.dag, request.operand(id, 1));
  return moveDifference<Numbers>(request, firstIsLower ? Direction::Up : Direction::Down, id);
}

}  // namespace quvex
