#pragma once

#include "solver/node/aggregatenode.h"

namespace quvex {

/// Base of the operators over booleans that count the operands at 1.
/// Invariant: `oneNodes` holds exactly the positions whose operand's committed value is 1.
template <class Set>
class OneNodesAggregate : public AggregateNode<Set, NodeInner> {
  using Base = AggregateNode<Set, NodeInner>;

 public:
  explicit OneNodesAggregate(std::uint32_t nbOperands) : Base(nbOperands), oneNodes(nbOperands) {}

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const final {
    return this->areCellsInit(dag, id) && areOneNodesInit(dag, id);
  }
  void init(Dag& dag, NodeId id) final {
    this->initCells(dag, id);
    oneNodes.assign(dag.fixed.nbChildren[id], [&](OperandPos p) { return dag.nodeValue[dag.child(id, p)] == 1; });
  }
  void print(const Dag& dag, NodeId id) const final {
    this->printCommon(dag, id);
    this->printFlag("isOneNodesInit= ", areOneNodesInit(dag, id));
    oneNodes.print(std::cout, "oneNodes=");
  }

 protected:
  Set oneNodes;

  /// Brings the changed positions in step with the tentative values.
  void updateOneNodes(const Dag& dag, NodeId id) {
    const auto children = dag.fixed.childrenOf(id);
    this->changedNodes(dag, id).forEach([&](OperandPos p) {
      oneNodes.set(p, static_cast<std::uint32_t>(children.size()), dag.tentativeValue[children[p]] == 1);
    });
  }

 private:
  [[nodiscard]] bool areOneNodesInit(const Dag& dag, NodeId id) const {
    return oneNodes.agrees(dag.fixed.nbChildren[id],
                           [&](OperandPos p) { return dag.nodeValue[dag.child(id, p)] == 1; });
  }
};

}  // namespace quvex
