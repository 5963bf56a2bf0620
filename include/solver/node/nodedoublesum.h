#pragma once

#include "api/qvexception.h"
#include "solver/node/doublesumof.h"

namespace quvex {

/// "double_sum": the sum of operands of any kind, read as doubles. Two opposite infinities have no sum.
template <class Set>
class NodeDoubleSumTemplate final : public DoubleSumOf<Set, Plain<DoubleCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeDoubleSumTemplate");

  explicit NodeDoubleSumTemplate(std::uint32_t nbOperands);

  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override {
    const double sum = this->total(dag.fixed, dag.nodeValue, id);
    if (std::isnan(sum)) raise<KernelException>(here<NodeDoubleSumTemplate>(), this->kOppositeInfinities);
    return sum;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    if (!this->evalSum(dag, id)) raise<KernelException>(here<NodeDoubleSumTemplate>(), this->kOppositeInfinities);
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeDoubleSumTemplate);

}  // namespace quvex
