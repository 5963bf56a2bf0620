#pragma once

#include "solver/node/integerextremumof.h"

namespace quvex {

/// "scalar_min": the lowest operand times its coefficient; the highest integer without operands.
template <class Set>
class NodeScalarMinTemplate final : public IntegerExtremumOf<Set, Minimum, Scaled<IntegerCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeScalarMinTemplate");

  explicit NodeScalarMinTemplate(std::uint32_t nbOperands);
};

QUVEX_OVER_SUBSETS(extern template, NodeScalarMinTemplate);

}  // namespace quvex
