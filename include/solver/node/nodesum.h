#pragma once

#include "solver/node/sumof.h"

namespace quvex {

/// "sum": the sum of boolean or integer operands.
template <class Set>
class NodeSumTemplate final : public SumOf<Set, Plain<IntegerCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeSumTemplate");

  explicit NodeSumTemplate(std::uint32_t nbOperands);

  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override {
    return this->total(dag.fixed, dag.nodeValue, id);
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    dag.tentativeValue[id] = wrapAdd(dag.nodeValue[id], this->change(dag, id));
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeSumTemplate);

}  // namespace quvex
