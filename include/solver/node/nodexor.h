#pragma once

#include <algorithm>

#include "solver/kernel/arithmetic.h"
#include "solver/node/onenodesaggregate.h"

namespace quvex {

/// "xor": 1 if an odd number of operands is 1. Any flip of any operand changes the value, so picks do not care for the
/// direction.
template <class Set>
class NodeXorTemplate final : public OneNodesAggregate<Set> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeXorTemplate");

  explicit NodeXorTemplate(std::uint32_t nbOperands);

  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override {
    std::int64_t sum = 0;
    for (const NodeId child : dag.fixed.childrenOf(id)) sum = wrapAdd(sum, dag.nodeValue[child]);
    return sum & 1;
  }
  /// Each changed operand has flipped, and with it the parity.
  void eval(Dag& dag, Propagation&, NodeId id) override {
    dag.tentativeValue[id] = dag.nodeValue[id] ^ static_cast<t_value>(this->changedNodes(dag, id).hasOddSize());
  }
  /// Folds the changes also where the parity stayed.
  void commit(Dag& dag, NodeId id) override {
    this->updateOneNodes(dag, id);
    this->commitCells(dag, id);
  }

  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const auto children = fixed.childrenOf(id);
    if (std::ranges::none_of(children, [&](NodeId child) { return fixed.maxBounds[child] == 1; })) return {0, 0};
    const t_value parity = static_cast<t_value>(children.size() & 1U);
    if (std::ranges::all_of(children, [&](NodeId child) { return fixed.minBounds[child] != 0; }))
      return {parity, parity};
    return {0, 1};
  }

 protected:
  bool pickToward(const PickRequest& request, Direction direction, NodeId id) const override {
    const t_value wanted = direction == Direction::Up ? 1 : 0;
    return request.dag.nodeValue[id] != wanted && this->pickAny(request, id);
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeXorTemplate);

}  // namespace quvex
