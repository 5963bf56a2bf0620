#pragma once

#include "solver/node/operandchooser.h"
#include "solver/node/zeronodesaggregate.h"

namespace quvex {

/// "and": 1 unless an operand is 0; 1 without operands. Works on the fact that a changed boolean operand has flipped.
template <class Set>
class NodeAndTemplate final : public ZeroNodesAggregate<Set> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeAndTemplate");

  explicit NodeAndTemplate(std::uint32_t nbOperands);

  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override {
    for (const NodeId child : dag.fixed.childrenOf(id)) {
      if (dag.nodeValue[child] == 0) return 0;
    }
    return 1;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    dag.tentativeValue[id] = isTrueAfterChanges(dag, id) ? 1 : 0;
  }
  void commit(Dag& dag, NodeId id) override {
    updateZeroNodes(dag, id);
    this->commitCells(dag, id);
  }

  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    Bounds bounds{1, 1};
    for (const NodeId child : fixed.childrenOf(id)) {
      if (fixed.minBounds[child] == 0) bounds.min = 0;
      if (fixed.maxBounds[child] == 0) bounds.max = 0;
    }
    return bounds;
  }

 protected:
  /// Downward it asks an operand of a true "and" to rise, which no operand at 1 can: such a request fails on decisions.
  bool pickToward(const PickRequest& request, Direction direction, NodeId id) const override {
    const bool isTrue = request.dag.nodeValue[id] == 1;
    if (direction == Direction::Down) return isTrue && increaseChosenOperand(request, id);
    if (isTrue) return false;
    const OperandPos p = this->zeroNodes.randomMember(request.state, request.dag.fixed.nbChildren[id]);
    return p != kNone && request.increase(request.operand(id, p));
  }
  bool pickOther(const PickRequest& request, NodeId id) const override {
    if (request.dag.nodeValue[id] != 1) return pickToward(request, Direction::Up, id);
    return this->pickAny(request, id);
  }

 private:
  /// A true "and" has no operand at 0, so each change took one there. A false one turns true only if exactly the
  /// operands at 0 have changed.
  [[nodiscard]] bool isTrueAfterChanges(const Dag& dag, NodeId id) const {
    return dag.nodeValue[id] != 1 && this->changedNodes(dag, id).isSameAs(this->zeroNodes);
  }

  void updateZeroNodes(const Dag& dag, NodeId id) {
    const std::uint32_t n = dag.fixed.nbChildren[id];
    const t_value before = dag.nodeValue[id];
    const t_value after = dag.tentativeValue[id];
    if (before < after) {
      this->zeroNodes.clear();
    } else if (before > after) {
      this->changedNodes(dag, id).forEach([&](OperandPos p) { this->zeroNodes.add(p, n); });
    } else {
      this->changedNodes(dag, id).forEach(
          [&](OperandPos p) { this->zeroNodes.set(p, n, dag.tentativeValue[dag.child(id, p)] != 1); });
    }
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeAndTemplate);

}  // namespace quvex
