#pragma once

#include "solver/node/integerextremumof.h"

namespace quvex {

/// "scalar_max": the highest operand times its coefficient; the lowest integer without operands.
template <class Set>
class NodeScalarMaxTemplate final : public IntegerExtremumOf<Set, Maximum, Scaled<IntegerCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeScalarMaxTemplate");

  explicit NodeScalarMaxTemplate(std::uint32_t nbOperands);
};

QUVEX_OVER_SUBSETS(extern template, NodeScalarMaxTemplate);

}  // namespace quvex
