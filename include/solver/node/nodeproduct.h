#pragma once

#include "solver/node/integerproductof.h"

namespace quvex {

/// "product": the product of integer operands, wrapping.
template <class Set>
class NodeProductTemplate final : public IntegerProductOf<Set, NoFactor<IntegerCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeProductTemplate");

  explicit NodeProductTemplate(std::uint32_t nbOperands);

  void eval(Dag& dag, Propagation&, NodeId id) override { this->evalProduct(dag, id, here<NodeProductTemplate>()); }
  void commit(Dag& dag, NodeId id) override { this->commitProduct(dag, id, here<NodeProductTemplate>()); }

  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    return productOfOperandBounds<IntegerCells>(fixed, id);
  }
};

QUVEX_OVER_SUBSETS(extern template, NodeProductTemplate);

}  // namespace quvex
