#pragma once

#include "solver/node/elementnode.h"

namespace quvex {

/// The element of an array at an index, read as a double. Constants of the array are doubles.
class NodeDoubleAt final : public ElementNode<NodeDoubleAt, Doubles> {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleAt";
  static constexpr const char* kOperator = "double_at";

  [[nodiscard]] double computeValue(const Dag& dag, NodeId id) const override;
  void eval(Dag& dag, Propagation& propagation, NodeId id) override;
};

}  // namespace quvex
