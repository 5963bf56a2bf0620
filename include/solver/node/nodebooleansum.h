#pragma once

#include "solver/kernel/arithmetic.h"
#include "solver/node/onenodesaggregate.h"

namespace quvex {

/// "boolean_sum": the number of boolean operands at 1. An operand at 1 is a decrease candidate, one at 0 an increase
/// candidate. Picks need no test against the bounds: at a bound no operand is left, or none that would move.
template <class Set>
class NodeBooleanSumTemplate final : public OneNodesAggregate<Set> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeBooleanSumTemplate");

  explicit NodeBooleanSumTemplate(std::uint32_t nbOperands);

  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override {
    std::int64_t sum = 0;
    for (const NodeId child : dag.fixed.childrenOf(id)) sum = wrapAdd(sum, dag.nodeValue[child]);
    return sum;
  }
  /// A changed boolean has gone to 1 or to 0, so that its committed value need not be read.
  void eval(Dag& dag, Propagation&, NodeId id) override {
    const NodeId* const children = dag.fixed.childrenOf(id).data();
    std::int64_t sum = dag.tentativeValue[id];
    this->changedNodes(dag, id).forEachInAnyOrder(
        [&](OperandPos p) { sum += dag.tentativeValue[children[p]] != 0 ? 1 : -1; });
    dag.tentativeValue[id] = sum;
  }
  void commit(Dag& dag, NodeId id) override {
    this->updateOneNodes(dag, id);
    this->commitCells(dag, id);
  }

  [[nodiscard]] std::uint32_t nbIncreaseCandidates(const Dag& dag, NodeId id) const override {
    return dag.fixed.nbChildren[id] - this->oneNodes.size();
  }
  [[nodiscard]] std::uint32_t nbDecreaseCandidates(const Dag&, NodeId) const override { return this->oneNodes.size(); }
  [[nodiscard]] OperandPos increaseCandidateAt(const Dag& dag, NodeId id, std::uint32_t k) const override {
    return this->oneNodes.at(this->oneNodes.size() + k, dag.fixed.nbChildren[id]);
  }
  [[nodiscard]] OperandPos decreaseCandidateAt(const Dag& dag, NodeId id, std::uint32_t k) const override {
    return this->oneNodes.at(k, dag.fixed.nbChildren[id]);
  }
  [[nodiscard]] bool isIncreaseCandidate(const Dag&, NodeId, OperandPos p) const override {
    return !this->oneNodes.contains(p);
  }
  [[nodiscard]] bool isDecreaseCandidate(const Dag&, NodeId, OperandPos p) const override {
    return this->oneNodes.contains(p);
  }
  [[nodiscard]] OperandPos randomIncreaseCandidate(const Dag& dag, RandomState& state, NodeId id) const override {
    return this->oneNodes.randomNonMember(state, dag.fixed.nbChildren[id]);
  }
  [[nodiscard]] OperandPos randomDecreaseCandidate(const Dag& dag, RandomState& state, NodeId id) const override {
    return this->oneNodes.randomMember(state, dag.fixed.nbChildren[id]);
  }

  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    Bounds bounds{0, fixed.nbChildren[id]};
    for (const NodeId child : fixed.childrenOf(id)) {
      if (fixed.minBounds[child] == 1) ++bounds.min;
      if (fixed.maxBounds[child] == 0) --bounds.max;
    }
    return bounds;
  }

 protected:
  bool pickToward(const PickRequest& request, Direction direction, NodeId id) const override {
    const OperandPos p = direction == Direction::Up ? randomIncreaseCandidate(request.dag, request.state, id)
                                                    : randomDecreaseCandidate(request.dag, request.state, id);
    return p != kNone && request.toward(direction, request.operand(id, p));
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeBooleanSumTemplate);

}  // namespace quvex
