#pragma once

#include "api/qvexception.h"
#include "solver/node/doubleproductof.h"

namespace quvex {

/// "double_product": the product of operands of any kind, read as doubles. Zero times infinity is a failure.
template <class Set>
class NodeDoubleProductTemplate final : public DoubleProductOf<Set, NoFactor<DoubleCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeDoubleProductTemplate");

  explicit NodeDoubleProductTemplate(std::uint32_t nbOperands);

  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override {
    const double product = this->total(dag.fixed, dag.nodeValue, id);
    if (std::isnan(product)) raise<KernelException>(here<NodeDoubleProductTemplate>(), this->kZeroTimesInfinity);
    return product;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override {
    if (!this->evalProduct(dag, id))
      raise<KernelException>(here<NodeDoubleProductTemplate>(), this->kZeroTimesInfinity);
  }

  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    return productOfOperandBounds<DoubleCells>(fixed, id);
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeDoubleProductTemplate);

}  // namespace quvex
