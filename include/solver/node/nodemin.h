#pragma once

#include "solver/node/integerextremumof.h"

namespace quvex {

/// "min": the lowest operand; the highest integer without operands.
template <class Set>
class NodeMinTemplate final : public IntegerExtremumOf<Set, Minimum, Plain<IntegerCells>> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeMinTemplate");

  explicit NodeMinTemplate(std::uint32_t nbOperands);
};

QUVEX_OVER_SUBSETS(extern template, NodeMinTemplate);

}  // namespace quvex
