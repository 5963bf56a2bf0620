#pragma once

#include "solver/node/elementnode.h"

namespace quvex {

/// The element of an array of integers at an index.
class NodeAt final : public ElementNode<NodeAt, Integers> {
 public:
  static constexpr const char* kName = "quvex::NodeAt";
  static constexpr const char* kOperator = "at";

  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const override;
  void eval(Dag& dag, Propagation& propagation, NodeId id) override;
};

}  // namespace quvex
