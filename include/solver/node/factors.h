#pragma once

#include "solver/node/cells.h"

/// What a product starts from, as policies: 1, or the one factor that the node carries.
namespace quvex {

template <class CellPolicy>
struct NoFactor {
  using Cells = CellPolicy;
  static constexpr bool kScaled = false;

  [[nodiscard]] static typename Cells::Value factor(const DagFixedFields&, NodeId) { return 1; }
};

template <class CellPolicy>
struct OneFactor {
  using Cells = CellPolicy;
  static constexpr bool kScaled = true;

  /// `scalar`, the node's only constant.
  [[nodiscard]] static typename Cells::Value factor(const DagFixedFields& fixed, NodeId id) {
    return Cells::fromWord(fixed.constant(id, 0));
  }
};

}  // namespace quvex
