#pragma once

#include "solver/kernel/nodedecision.h"

namespace quvex {

/// An integer decision, any 64-bit value. No move goes through it, so it refuses all picks.
class NodeIntegerVar final : public NodeDecision {
 public:
  static constexpr const char* kName = "quvex::NodeIntegerVar";

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields&, NodeId) { return {kLowestInt, kHighestInt}; }

  void check(const Dag& dag, NodeId id) const override;
  void print(const Dag& dag, NodeId id) const override;

  bool pickDecrease(const Dag&, RandomState&, NodeId&, int&, NodeId) const override { return false; }
  bool pickIncrease(const Dag&, RandomState&, NodeId&, int&, NodeId) const override { return false; }
  bool pickChange(const Dag&, RandomState&, NodeId&, int&, NodeId) const override { return false; }
};

}  // namespace quvex
