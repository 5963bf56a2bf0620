#pragma once

#include "solver/node/doubleextremumof.h"

namespace quvex {

/// "double_max": the highest operand read as a double; negative infinity without operands.
template <class Set>
class NodeDoubleMaxTemplate final : public DoubleExtremumOf<Set, Maximum, Plain<DoubleCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeDoubleMaxTemplate");

  explicit NodeDoubleMaxTemplate(std::uint32_t nbOperands);

  // Without products nothing can fail.
  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override {
    double best = 0;
    static_cast<void>(this->findExtremum(dag, id, best));
    return best;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override { static_cast<void>(this->evalExtremum(dag, id)); }
};

QUVEX_OVER_SUBSETS(extern template, NodeDoubleMaxTemplate);

}  // namespace quvex
