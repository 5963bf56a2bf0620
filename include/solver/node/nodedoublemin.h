#pragma once

#include "solver/node/doubleextremumof.h"

namespace quvex {

/// "double_min": the lowest operand read as a double; positive infinity without operands.
template <class Set>
class NodeDoubleMinTemplate final : public DoubleExtremumOf<Set, Minimum, Plain<DoubleCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeDoubleMinTemplate");

  explicit NodeDoubleMinTemplate(std::uint32_t nbOperands);

  // Without products nothing can fail.
  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override {
    double best = 0;
    static_cast<void>(this->findExtremum(dag, id, best));
    return best;
  }
  void eval(Dag& dag, Propagation&, NodeId id) override { static_cast<void>(this->evalExtremum(dag, id)); }
};

QUVEX_OVER_SUBSETS(extern template, NodeDoubleMinTemplate);

}  // namespace quvex
