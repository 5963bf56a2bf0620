#pragma once

#include "api/qvexception.h"
#include "solver/node/doublesumof.h"

namespace quvex {

/// "double_scalar_sum": the sum of operands of any kind, read as doubles, each times its coefficient.
/// Two opposite infinities have no sum.
template <class Set>
class NodeDoubleScalarSumTemplate final : public DoubleSumOf<Set, Scaled<DoubleCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeDoubleScalarSumTemplate");

  explicit NodeDoubleScalarSumTemplate(std::uint32_t nbOperands);

  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override {
    const double sum = this->total(dag.fixed, dag.nodeValue, id);
    if (std::isnan(sum)) raise<KernelException>(here<NodeDoubleScalarSumTemplate>(), this->kOppositeInfinities);
    return sum;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    if (!this->evalSum(dag, id)) raise<KernelException>(here<NodeDoubleScalarSumTemplate>(), this->kOppositeInfinities);
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeDoubleScalarSumTemplate);

}  // namespace quvex
