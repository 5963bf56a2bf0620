#pragma once

#include "solver/node/integerproductof.h"

namespace quvex {

/// "scalar_product": a constant factor times the product of integer operands, wrapping.
template <class Set>
class NodeScalarProductTemplate final : public IntegerProductOf<Set, OneFactor<IntegerCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeScalarProductTemplate");

  explicit NodeScalarProductTemplate(std::uint32_t nbOperands);

  void eval(Dag& dag, Propagation&, NodeId id) override {
    this->evalProduct(dag, id, here<NodeScalarProductTemplate>());
  }
  void commit(Dag& dag, NodeId id) override { this->commitProduct(dag, id, here<NodeScalarProductTemplate>()); }

  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    return scaleIntegerBounds(productOfOperandBounds<IntegerCells>(fixed, id),
                              OneFactor<IntegerCells>::factor(fixed, id));
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeScalarProductTemplate);

}  // namespace quvex
