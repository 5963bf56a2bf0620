#pragma once

#include <type_traits>
#include <utility>

#include "solver/node/aggregatenode.h"
#include "solver/node/weights.h"

namespace quvex {

/// Base of the sums over cells other than booleans. A sum moves by the change of its changed operands, and keeps for
/// the moves which operands could still push it down or up. Invariant: `notMinNodes` holds exactly the positions whose
/// operand can lower the sum from its committed value, `notMaxNodes` those that can raise it. Bounds are compared
/// strictly, also between doubles.
template <class Set, class Weight>
class SumOf : public AggregateNode<Set, typename Weight::Cells::Inner> {
  using Base = AggregateNode<Set, typename Weight::Cells::Inner>;

 public:
  explicit SumOf(std::uint32_t nbOperands) : Base(nbOperands), notMinNodes(nbOperands), notMaxNodes(nbOperands) {}

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const final {
    return this->areCellsInit(dag, id) && areNotMinNodesInit(dag, id) && areNotMaxNodesInit(dag, id);
  }
  void init(Dag& dag, NodeId id) final {
    this->initCells(dag, id);
    const DagFixedFields& fixed = dag.fixed;
    notMinNodes.assign(fixed.nbChildren[id], [&](OperandPos p) { return canLower(fixed, id, p, operand(dag, id, p)); });
    notMaxNodes.assign(fixed.nbChildren[id], [&](OperandPos p) { return canRaise(fixed, id, p, operand(dag, id, p)); });
  }
  void commit(Dag& dag, NodeId id) final {
    const std::uint32_t n = dag.fixed.nbChildren[id];
    this->changedNodes(dag, id).forEach([&](OperandPos p) {
      const Value value = Cells::tentative(dag, dag.child(id, p));
      notMinNodes.set(p, n, canLower(dag.fixed, id, p, value));
      notMaxNodes.set(p, n, canRaise(dag.fixed, id, p, value));
    });
    this->commitCells(dag, id);
  }
  void print(const Dag& dag, NodeId id) const final {
    this->printCommon(dag, id);
    this->printFlag("isNotMinNodesInit=", areNotMinNodesInit(dag, id));
    this->printFlag("isNotMaxNodesInit=", areNotMaxNodesInit(dag, id));
    notMinNodes.print(std::cout, "notMinNodes=");
    notMaxNodes.print(std::cout, "notMaxNodes=");
    printCoefficients<Weight>(dag.fixed, id);
  }

  [[nodiscard]] std::uint32_t nbIncreaseCandidates(const Dag&, NodeId) const final { return notMaxNodes.size(); }
  [[nodiscard]] std::uint32_t nbDecreaseCandidates(const Dag&, NodeId) const final { return notMinNodes.size(); }
  [[nodiscard]] OperandPos increaseCandidateAt(const Dag& dag, NodeId id, std::uint32_t k) const final {
    return notMaxNodes.at(k, dag.fixed.nbChildren[id]);
  }
  [[nodiscard]] OperandPos decreaseCandidateAt(const Dag& dag, NodeId id, std::uint32_t k) const final {
    return notMinNodes.at(k, dag.fixed.nbChildren[id]);
  }
  [[nodiscard]] bool isIncreaseCandidate(const Dag&, NodeId, OperandPos p) const final {
    return notMaxNodes.contains(p);
  }
  [[nodiscard]] bool isDecreaseCandidate(const Dag&, NodeId, OperandPos p) const final {
    return notMinNodes.contains(p);
  }
  [[nodiscard]] OperandPos randomIncreaseCandidate(const Dag& dag, RandomState& state, NodeId id) const final {
    return notMaxNodes.randomMember(state, dag.fixed.nbChildren[id]);
  }
  [[nodiscard]] OperandPos randomDecreaseCandidate(const Dag& dag, RandomState& state, NodeId id) const final {
    return notMinNodes.randomMember(state, dag.fixed.nbChildren[id]);
  }

  /// The sum of the operands' ranges. An operand that is always infinite decides alone.
  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    Value min = 0;
    Value max = 0;
    for (OperandPos p = 0; p < fixed.nbChildren[id]; ++p) {
      const auto [low, high] = Weight::range(fixed, id, p);
      if (Cells::isInfinite(low) && low > 0) return Cells::bounds(low, low);
      if (Cells::isInfinite(high) && high < 0) return Cells::bounds(high, high);
      min = Cells::addBounds(min, low);
      max = Cells::addBounds(max, high);
    }
    return Cells::bounds(min, max);
  }

 protected:
  using Cells = typename Weight::Cells;
  using Value = typename Cells::Value;

  Set notMinNodes;
  Set notMaxNodes;

  /// A sum at its bound has no operand left that could move it further.
  bool pickToward(const PickRequest& request, Direction direction, NodeId id) const final {
    if (!canMove<Cells>(request.dag, id, direction)) return false;
    const Set& candidates = direction == Direction::Up ? notMaxNodes : notMinNodes;
    const OperandPos p = candidates.randomMember(request.state, request.dag.fixed.nbChildren[id]);
    return this->template pickTerm<Weight>(request, direction, id, p);
  }

  /// What the changed operands add to the committed value. Integers add up to the same in any order, doubles don't.
  [[nodiscard]] Value change(const Dag& dag, NodeId id) const {
    const NodeId* const children = dag.fixed.childrenOf(id).data();
    Value delta = 0;
    const auto addStep = [&](OperandPos p) {
      const NodeId child = children[p];
      const Value step = Cells::subtract(Cells::tentative(dag, child), Cells::committed(dag, child));
      delta = Cells::add(delta, Weight::term(dag.fixed, id, p, step));
    };
    if constexpr (std::is_integral_v<Value>) {
      this->changedNodes(dag, id).forEachInAnyOrder(addStep);
    } else {
      this->changedNodes(dag, id).forEach(addStep);
    }
    return delta;
  }

  /// The sum of all operands, in their order, from `nodeValue` or `tentativeValue`.
  [[nodiscard]] static Value total(const DagFixedFields& fixed, const std::vector<t_value>& cells, NodeId id) {
    const auto children = fixed.childrenOf(id);
    Value sum = 0;
    for (OperandPos p = 0; p < children.size(); ++p) {
      sum = Cells::add(sum, Weight::term(fixed, id, p, Cells::read(fixed, children[p], cells[children[p]])));
    }
    return sum;
  }

 private:
  static Value operand(const Dag& dag, NodeId id, OperandPos p) { return Cells::committed(dag, dag.child(id, p)); }

  /// A coefficient of 0 lets its operand do neither.
  static bool canLower(const DagFixedFields& fixed, NodeId id, OperandPos p, Value value) {
    const NodeId child = fixed.child(id, p);
    if (Weight::isPositive(fixed, id, p)) return value > Cells::min(fixed, child);
    return Weight::isNegative(fixed, id, p) && value < Cells::max(fixed, child);
  }
  static bool canRaise(const DagFixedFields& fixed, NodeId id, OperandPos p, Value value) {
    const NodeId child = fixed.child(id, p);
    if (Weight::isPositive(fixed, id, p)) return value < Cells::max(fixed, child);
    return Weight::isNegative(fixed, id, p) && value > Cells::min(fixed, child);
  }

  [[nodiscard]] bool areNotMinNodesInit(const Dag& dag, NodeId id) const {
    return notMinNodes.agrees(dag.fixed.nbChildren[id],
                              [&](OperandPos p) { return canLower(dag.fixed, id, p, operand(dag, id, p)); });
  }
  [[nodiscard]] bool areNotMaxNodesInit(const Dag& dag, NodeId id) const {
    return notMaxNodes.agrees(dag.fixed.nbChildren[id],
                              [&](OperandPos p) { return canRaise(dag.fixed, id, p, operand(dag, id, p)); });
  }
};

}  // namespace quvex
