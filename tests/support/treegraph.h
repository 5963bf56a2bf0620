#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "solver/move/constraintnodebool.h"
#include "support/searchgraph.h"

namespace quvex {

using Values = std::vector<std::pair<NodeId, t_value>>;

/// A kernel graph with its constraint tree and the simulation on it. Add nodes, then `grow`.
class TreeGraph : public SearchGraph {
 public:
  /// The simulation is created at these committed values, all others 0.
  Dag& grow(const Values& values = {}, RandomState seed = 1) {
    Dag& built = build();
    commit(values);
    structures.build(fixed, true);
    restart(seed);
    return built;
  }
  /// A new simulation at the committed values.
  void restart(RandomState seed = 1) { structure = std::make_unique<AutonomousStructure>(*dag, seed, structures); }
  void commit(const Values& values) {
    for (const auto& [id, value] : values) dag->propagation.setTentativeValue(*dag, id, value);
    dag->propagation.commitAll(*dag);
  }
  void commitAll(const std::vector<NodeId>& ids, t_value value) {
    for (const NodeId id : ids) dag->propagation.setTentativeValue(*dag, id, value);
    dag->propagation.commitAll(*dag);
  }

  /// A constraint of the type over the operands.
  NodeId require(NodeType type, const std::vector<NodeId>& operands, const std::vector<t_value>& constants = {}) {
    const NodeId id = add(type, operands, constants);
    constraint(id);
    return id;
  }

  [[nodiscard]] bool isInTree(NodeId id) const { return structures.staticIndexOfNode[id] != kNone; }
  [[nodiscard]] StaticIndex staticIndex(NodeId id) const { return structures.staticIndexOfNode[id]; }
  [[nodiscard]] DynamicConstraintNode& at(NodeId id) const { return *structure->dynamicNodeOf(id); }

  /// Flips a decision in the simulation.
  bool simulate(NodeId decision) { return at(decision).flip(structure->randomState, true); }
  /// The decisions flipped in the simulation, in the order of their set.
  [[nodiscard]] std::vector<NodeId> flipped() const {
    std::vector<NodeId> ids;
    for (const BooleanIndex b : structure->flippedDecisions.members()) ids.push_back(fixed.decisionList[b]);
    return ids;
  }
  /// The kernel nodes of the violated set, in its order.
  [[nodiscard]] std::vector<NodeId> violated() const {
    std::vector<NodeId> ids;
    for (const StaticIndex s : structure->violatedNodes.members()) ids.push_back(structures.staticNodes[s]->nodeId);
    return ids;
  }
};

}  // namespace quvex
