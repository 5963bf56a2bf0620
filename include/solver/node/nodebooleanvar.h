#pragma once

#include "solver/kernel/nodedecision.h"

namespace quvex {

/// A boolean decision. It alone answers picks, unless the current move has set it already: so no move sets the same
/// decision twice.
class NodeBooleanVar final : public NodeDecision {
 public:
  static constexpr const char* kName = "quvex::NodeBooleanVar";

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields&, NodeId) { return {0, 1}; }

  bool pickDecrease(const Dag& dag, RandomState&, NodeId& decision, int& delta, NodeId id) const override {
    if (dag.isSet(id) || dag.nodeValue[id] == 0) return false;
    return answer(decision, delta, id, -1);
  }
  bool pickIncrease(const Dag& dag, RandomState&, NodeId& decision, int& delta, NodeId id) const override {
    if (dag.isSet(id) || dag.nodeValue[id] == 1) return false;
    return answer(decision, delta, id, +1);
  }
  bool pickChange(const Dag& dag, RandomState&, NodeId& decision, int& delta, NodeId id) const override {
    if (dag.isSet(id)) return false;
    return answer(decision, delta, id, dag.nodeValue[id] != 0 ? -1 : +1);
  }

 private:
  static bool answer(NodeId& decision, int& delta, NodeId id, int step) {
    decision = id;
    delta = step;
    return true;
  }
};

}  // namespace quvex
