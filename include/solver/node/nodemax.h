#pragma once

#include "solver/node/integerextremumof.h"

namespace quvex {

/// "max": the highest operand; the lowest integer without operands.
template <class Set>
class NodeMaxTemplate final : public IntegerExtremumOf<Set, Maximum, Plain<IntegerCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeMaxTemplate");

  explicit NodeMaxTemplate(std::uint32_t nbOperands);
};

QUVEX_OVER_SUBSETS(extern template, NodeMaxTemplate);

}  // namespace quvex
