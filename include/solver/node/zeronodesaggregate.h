#pragma once

#include "solver/node/aggregatenode.h"

namespace quvex {

/// Base of the operators that one operand at 0 decides: "and", and the integer products.
/// Invariant: `zeroNodes` holds exactly the positions whose operand's committed value is 0.
template <class Set>
class ZeroNodesAggregate : public AggregateNode<Set, NodeInner> {
  using Base = AggregateNode<Set, NodeInner>;

 public:
  explicit ZeroNodesAggregate(std::uint32_t nbOperands) : Base(nbOperands), zeroNodes(nbOperands) {}

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const override {
    return this->areCellsInit(dag, id) && areZeroNodesInit(dag, id);
  }
  void init(Dag& dag, NodeId id) override {
    this->initCells(dag, id);
    zeroNodes.assign(dag.fixed.nbChildren[id], [&](OperandPos p) { return dag.nodeValue[dag.child(id, p)] == 0; });
  }
  void print(const Dag& dag, NodeId id) const override {
    this->printCommon(dag, id);
    this->printFlag("isZeroNodesInit= ", areZeroNodesInit(dag, id));
    zeroNodes.print(std::cout, "zeroNodes=");
  }

 protected:
  Set zeroNodes;

 private:
  [[nodiscard]] bool areZeroNodesInit(const Dag& dag, NodeId id) const {
    return zeroNodes.agrees(dag.fixed.nbChildren[id],
                            [&](OperandPos p) { return dag.nodeValue[dag.child(id, p)] == 0; });
  }
};

}  // namespace quvex
