#pragma once

#include "solver/node/onenodesaggregate.h"
#include "solver/node/operandchooser.h"

namespace quvex {

/// "or": 0 unless an operand is 1; 0 without operands. Works on the fact that a changed boolean operand has flipped.
template <class Set>
class NodeOrTemplate final : public OneNodesAggregate<Set> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeOrTemplate");

  explicit NodeOrTemplate(std::uint32_t nbOperands);

  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override {
    for (const NodeId child : dag.fixed.childrenOf(id)) {
      if (dag.nodeValue[child] == 1) return 1;
    }
    return 0;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    dag.tentativeValue[id] = isTrueAfterChanges(dag, id) ? 1 : 0;
  }
  void commit(Dag& dag, NodeId id) override {
    updateOneNodesByValue(dag, id);
    this->commitCells(dag, id);
  }

  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    Bounds bounds{0, 0};
    for (const NodeId child : fixed.childrenOf(id)) {
      if (fixed.minBounds[child] == 1) bounds.min = 1;
      if (fixed.maxBounds[child] == 1) bounds.max = 1;
    }
    return bounds;
  }

 protected:
  bool pickToward(const PickRequest& request, Direction direction, NodeId id) const override {
    const t_value value = request.dag.nodeValue[id];
    if (direction == Direction::Up) return value != 1 && increaseChosenOperand(request, id);
    return value != 0 && decreaseOne(request, id);
  }
  bool pickOther(const PickRequest& request, NodeId id) const override {
    return request.dag.nodeValue[id] != 1 ? increaseChosenOperand(request, id) : decreaseOne(request, id);
  }

 private:
  bool decreaseOne(const PickRequest& request, NodeId id) const {
    const OperandPos p = this->oneNodes.randomMember(request.state, request.dag.fixed.nbChildren[id]);
    return p != kNone && request.decrease(request.operand(id, p));
  }

  /// A false "or" has no operand at 1, so each change took one there. A true one turns false only if exactly the
  /// operands at 1 have changed.
  [[nodiscard]] bool isTrueAfterChanges(const Dag& dag, NodeId id) const {
    return dag.nodeValue[id] == 0 || !this->changedNodes(dag, id).isSameAs(this->oneNodes);
  }

  void updateOneNodesByValue(const Dag& dag, NodeId id) {
    const t_value before = dag.nodeValue[id];
    const t_value after = dag.tentativeValue[id];
    if (before > after) {
      this->oneNodes.clear();
    } else if (before < after) {
      this->changedNodes(dag, id).forEach([&](OperandPos p) { this->oneNodes.add(p, dag.fixed.nbChildren[id]); });
    } else {
      this->updateOneNodes(dag, id);
    }
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeOrTemplate);

}  // namespace quvex
