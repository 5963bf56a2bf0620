#pragma once

#include <algorithm>

#include "solver/node/plainnode.h"

namespace quvex {

/// The second operand where the first, a boolean, is non-zero, and the third elsewhere.
/// `Derived::flip(request, condition)` asks for the other branch.
template <class Derived, class Numbers>
class NodeIfOf : public PlainNode<NodeIfOf<Derived, Numbers>, typename Numbers::Inner> {
 public:
  [[nodiscard]] static typename Numbers::Value value(const OperandCells& cells) {
    return cells.get<Numbers>(cells.word(0) != 0 ? 1 : 2);
  }

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const NodeId condition = fixed.child(id, 0);
    const NodeId b = fixed.child(id, 1);
    const NodeId c = fixed.child(id, 2);
    if (fixed.minBounds[condition] == 1) return Numbers::bounds(Numbers::min(fixed, b), Numbers::max(fixed, b));
    if (fixed.maxBounds[condition] == 0) return Numbers::bounds(Numbers::min(fixed, c), Numbers::max(fixed, c));
    return Numbers::bounds(std::min(Numbers::min(fixed, b), Numbers::min(fixed, c)),
                           std::max(Numbers::max(fixed, b), Numbers::max(fixed, c)));
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    const Dag& dag = request.dag;
    const auto bound = d == Direction::Up ? Numbers::max(dag.fixed, id) : Numbers::min(dag.fixed, id);
    if (Numbers::equal(Numbers::committed(dag, id), bound)) return false;
    const Branches branches(dag, id);
    const auto taken = Numbers::committed(dag, branches.taken);
    const auto other = Numbers::committed(dag, branches.other);
    const bool otherIsBetter = d == Direction::Up ? Numbers::greater(other, taken) : Numbers::greater(taken, other);
    const bool canFlip = otherIsBetter && !isFixed<Integers>(dag.fixed, branches.condition);
    const bool canStep = canMove<Numbers>(dag, branches.taken, d);
    if (!canStep && !canFlip) return false;
    if (canStep && (!canFlip || coin(request.state))) return request.toward(d, branches.taken);
    return Derived::flip(request, branches.condition);
  }

  static bool pickOther(const PickRequest& request, NodeId id) {
    const Dag& dag = request.dag;
    const Branches branches(dag, id);
    const bool branchesDiffer =
        !Numbers::equal(Numbers::committed(dag, branches.taken), Numbers::committed(dag, branches.other));
    const bool canFlip = branchesDiffer && !isFixed<Integers>(dag.fixed, branches.condition);
    const bool canStep = !isFixed<Numbers>(dag.fixed, branches.taken);
    if (!canStep && !canFlip) return false;
    if (canStep && (!canFlip || coin(request.state))) return request.change(branches.taken);
    return request.change(branches.condition);
  }

 private:
  /// The operands by their role under the committed condition.
  struct Branches {
    Branches(const Dag& dag, NodeId id) : condition(dag.child(id, 0)) {
      const bool first = dag.nodeValue[condition] == 1;
      taken = dag.child(id, first ? 1 : 2);
      other = dag.child(id, first ? 2 : 1);
    }
    NodeId condition;
    NodeId taken;
    NodeId other;
  };
};

class NodeIf final : public NodeIfOf<NodeIf, Integers> {
 public:
  static constexpr const char* kName = "quvex::NodeIf";

  static bool flip(const PickRequest& request, NodeId condition) {
    return request.dag.nodeValue[condition] != 1 ? request.increase(condition) : request.decrease(condition);
  }
};

class NodeDoubleIf final : public NodeIfOf<NodeDoubleIf, Doubles> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleIf";

  static bool flip(const PickRequest& request, NodeId condition) { return request.change(condition); }
};

}  // namespace quvex
