#pragma once

#include "solver/kernel/node.h"

namespace quvex {

/// Base of the operators with a boolean or integer result.
class NodeInner : public virtual Node {
 public:
  /// The value from scratch, from the operands' committed values. Touches nothing.
  [[nodiscard]] virtual std::int64_t computeValue(const Dag& dag, NodeId id) const = 0;

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const override;
  void init(Dag& dag, NodeId id) override;
};

/// Base of the operators with a double result; comparisons with the recomputation are within tolerance.
class NodeDoubleInner : public virtual Node {
 public:
  [[nodiscard]] virtual double computeValue(const Dag& dag, NodeId id) const = 0;

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const override;
  void init(Dag& dag, NodeId id) override;
};

}  // namespace quvex
