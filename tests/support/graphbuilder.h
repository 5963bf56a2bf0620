#pragma once

#include <initializer_list>
#include <memory>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/node.h"

namespace quvex {

/// Builds a small kernel graph by hand: add nodes, constraints and objectives, then `build`.
class GraphBuilder {
 public:
  DagFixedFields fixed;
  std::unique_ptr<Dag> dag;

  NodeId boolean() { return fixed.addBooleanDecision(); }
  NodeId integer() { return fixed.addIntegerDecision(); }
  NodeId constant(std::int64_t value) { return fixed.addConstant(value); }
  NodeId constantDouble(double value) { return fixed.addDoubleConstant(value); }
  std::vector<NodeId> booleans(std::uint32_t n) {
    std::vector<NodeId> ids;
    for (std::uint32_t i = 0; i < n; ++i) ids.push_back(boolean());
    return ids;
  }

  NodeId add(NodeType type, const std::vector<NodeId>& operands, const std::vector<t_value>& constants = {}) {
    return fixed.addNode(type, operands, constants);
  }
  NodeId add(NodeType type, std::initializer_list<NodeId> operands) { return add(type, std::vector<NodeId>(operands)); }
  void constraint(NodeId id) { fixed.addConstraint(id); }
  void minimise(NodeId id) { fixed.addObjective(id, 0); }
  void maximise(NodeId id) { fixed.addObjective(id, 1); }

  /// Completes the graph, with a constant objective if it has none, and initialises a `Dag` on it.
  Dag& build() {
    if (fixed.objectives.empty()) minimise(constant(0));
    fixed.init();
    dag = std::make_unique<Dag>(fixed);
    dag->init();
    return *dag;
  }
};

/// Sets decisions in one move, evaluates it whole, and commits it.
inline void commitValues(Dag& dag, std::initializer_list<std::pair<NodeId, t_value>> values) {
  for (const auto& [id, value] : values) dag.propagation.setTentativeValue(dag, id, value);
  dag.propagation.commitAll(dag);
}

/// Whether every node agrees with a recomputation.
inline bool isWholeGraphInit(const Dag& dag) {
  for (NodeId id = 0; id < dag.fixed.nbNodes; ++id) {
    if (!dag.nodes[id]->isInit(dag, id)) return false;
  }
  return true;
}

}  // namespace quvex
