#pragma once

#include "solver/node/plainnode.h"

namespace quvex {

/// The first operand to the power of the second, as `MathDouble::pow` has it.
class NodeDoublePow final : public PlainNode<NodeDoublePow, NodeDoubleInner> {
 public:
  static constexpr const char* kName = "quvex::NodeDoublePow";

  [[nodiscard]] static double value(const OperandCells& cells) {
    return MathDouble::pow(cells.get<Doubles>(0), cells.get<Doubles>(1));
  }
  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id);

  static bool pickToward(const PickRequest& request, Direction d, NodeId id);
  static bool pickOther(const PickRequest& request, NodeId id);
};

}  // namespace quvex
