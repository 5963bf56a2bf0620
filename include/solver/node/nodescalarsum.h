#pragma once

#include "solver/node/sumof.h"

namespace quvex {

/// "scalar_sum": the sum of boolean or integer operands, each times its integer coefficient.
template <class Set>
class NodeScalarSumTemplate final : public SumOf<Set, Scaled<IntegerCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeScalarSumTemplate");

  explicit NodeScalarSumTemplate(std::uint32_t nbOperands);

  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override {
    return this->total(dag.fixed, dag.nodeValue, id);
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    dag.tentativeValue[id] = wrapAdd(dag.nodeValue[id], this->change(dag, id));
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeScalarSumTemplate);

}  // namespace quvex
