#pragma once

#include "solver/node/plainnode.h"

namespace quvex {

/// The negation of a boolean operand: 1 exactly where it is 0.
class NodeNot final : public PlainNode<NodeNot, NodeInner> {
 public:
  static constexpr const char* kName = "quvex::NodeNot";

  [[nodiscard]] static std::int64_t value(const OperandCells& cells) { return cells.word(0) == 0 ? 1 : 0; }

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const NodeId a = fixed.child(id, 0);
    if (fixed.maxBounds[a] == 0) return {1, 1};
    if (fixed.minBounds[a] == 1) return {0, 0};
    return {0, 1};
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    if (request.dag.nodeValue[id] == (d == Direction::Up ? 1 : 0)) return false;
    return request.toward(opposite(d), request.operand(id, 0));
  }
  static bool pickOther(const PickRequest& request, NodeId id) { return request.change(request.operand(id, 0)); }
};

}  // namespace quvex
