#pragma once

#include "solver/node/dividingnode.h"

namespace quvex {

/// The integer quotient, truncated toward zero. A zero divisor is a failure, at any evaluation.
class NodeDivide final : public DividingNode<NodeDivide, Integers> {
 public:
  static constexpr const char* kName = "quvex::NodeDivide";

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id);
  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override;
  void eval(Dag& dag, Propagation& propagation, NodeId id) override;

  static bool pickOther(const PickRequest& request, NodeId id) { return pickAny(request, id); }
};

}  // namespace quvex
