#pragma once

#include "solver/node/plainnode.h"

namespace quvex {

/// The remainder of the truncating division: it has the sign of the dividend. A zero divisor is a failure, at any
/// evaluation.
class NodeModulo final : public PickingNode<NodeModulo, NodeInner> {
 public:
  static constexpr const char* kName = "quvex::NodeModulo";

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id);
  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override;
  void eval(Dag& dag, Propagation& propagation, NodeId id) override;

  static bool pickToward(const PickRequest& request, Direction d, NodeId id);
  static bool pickOther(const PickRequest& request, NodeId id) { return pickAny(request, id); }
};

}  // namespace quvex
