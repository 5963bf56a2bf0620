#pragma once

#include "solver/kernel/dag.h"
#include "solver/kernel/node.h"

namespace quvex {

/// What the decisions share. A decision's cell is set through `Propagation::setTentativeValue` alone, so there is
/// nothing to compute: the graph starts from whatever the cell holds.
class NodeDecision : public Node {
 public:
  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const final {
    const t_value value = dag.nodeValue[id];
    return value == dag.tentativeValue[id] && value >= dag.fixed.minBounds[id] && value <= dag.fixed.maxBounds[id];
  }
  void init(Dag& dag, NodeId id) final { dag.tentativeValue[id] = dag.nodeValue[id]; }
  void eval(Dag&, Propagation&, NodeId) final {}
};

}  // namespace quvex
