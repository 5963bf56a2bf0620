#pragma once

#include "api/qvexception.h"
#include "solver/node/doubleextremumof.h"

namespace quvex {

/// "double_scalar_max": the highest operand read as a double times its coefficient; negative infinity without operands.
/// Zero times infinity is a failure.
template <class Set>
class NodeDoubleScalarMaxTemplate final : public DoubleExtremumOf<Set, Maximum, Scaled<DoubleCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeDoubleScalarMaxTemplate");

  explicit NodeDoubleScalarMaxTemplate(std::uint32_t nbOperands);

  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override {
    double best = 0;
    if (!this->findExtremum(dag, id, best))
      raise<KernelException>(here<NodeDoubleScalarMaxTemplate>(), this->kZeroTimesInfinity);
    return best;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    if (!this->evalExtremum(dag, id))
      raise<KernelException>(here<NodeDoubleScalarMaxTemplate>(), this->kZeroTimesInfinity);
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeDoubleScalarMaxTemplate);

}  // namespace quvex
