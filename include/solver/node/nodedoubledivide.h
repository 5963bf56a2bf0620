#pragma once

#include "solver/node/dividingnode.h"

namespace quvex {

/// The quotient in double arithmetic: a zero divisor gives an infinity, or no number for zero by zero. Only a divisor
/// that can be nothing but zero is refused.
class NodeDoubleDivide final : public DividingNode<NodeDoubleDivide, Doubles> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleDivide";

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id);
  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override;
  void eval(Dag& dag, Propagation& propagation, NodeId id) override;

  static bool pickOther(const PickRequest& request, NodeId id);
};

}  // namespace quvex
