#pragma once

#include "api/qvexception.h"
#include "solver/node/doubleextremumof.h"

namespace quvex {

/// "double_scalar_min": the lowest operand read as a double times its coefficient; positive infinity without operands.
/// Zero times infinity is a failure.
template <class Set>
class NodeDoubleScalarMinTemplate final : public DoubleExtremumOf<Set, Minimum, Scaled<DoubleCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeDoubleScalarMinTemplate");

  explicit NodeDoubleScalarMinTemplate(std::uint32_t nbOperands);

  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override {
    double best = 0;
    if (!this->findExtremum(dag, id, best))
      raise<KernelException>(here<NodeDoubleScalarMinTemplate>(), this->kZeroTimesInfinity);
    return best;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    if (!this->evalExtremum(dag, id))
      raise<KernelException>(here<NodeDoubleScalarMinTemplate>(), this->kZeroTimesInfinity);
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeDoubleScalarMinTemplate);

}  // namespace quvex
