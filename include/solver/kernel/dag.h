#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/nodepool.h"
#include "solver/kernel/noderecord.h"
#include "solver/kernel/propagation.h"
#include "solver/kernel/types.h"

namespace quvex {

/// One thread's mutable state of the compiled model: node objects, committed and tentative cells, and the evaluation
/// driver. Two `Dag`s may exchange solutions exactly when their `fixed` is the same object.
///
/// Invariant between moves: `tentativeValue` equals `nodeValue`, no node is dirty and so none has changes.
class Dag {
 public:
  static constexpr const char* kName = "quvex::Dag";

  const DagFixedFields& fixed;
  Propagation propagation;
  std::vector<Node*> nodes;         ///< by id, owned, memory from the pool; the same stand in `records`
  std::vector<NodeRecord> records;  ///< by id
  OperandPos* allLists = nullptr;   ///< what the lists of changed operands lie in
  std::vector<t_value> nodeValue;
  std::vector<t_value> tentativeValue;
  bool initialized = false;

  /// Allocates all nodes, with every cell zero. `fixedFields` must be complete and must outlive the `Dag`.
  explicit Dag(const DagFixedFields& fixedFields);
  ~Dag();
  Dag(const Dag&) = delete;
  Dag& operator=(const Dag&) = delete;

  /// Computes every node from the decisions' cells. Raises on a second call, or without an objective.
  void init();
  /// The node step of `init` alone: brings every node up to the committed decisions.
  void reinitAllNodes();
  /// Changes the last level that the search cares about. Levels that it newly covers may be stale, so a rise recomputes
  /// every node; before a fall the levels that it leaves behind are brought up to date.
  void setOptimizedLevel(Level level);
  /// Size, types and objective bounds, on standard output.
  void printStats() const;

  /// Whether an operator is queued in the current move.
  [[nodiscard]] bool isDirty(NodeId id) const { return records[id].queuedIn == propagation.moveNumber; }
  /// Whether the current move has set a decision: never to its committed value, so that its cells tell.
  [[nodiscard]] bool isSet(NodeId decision) const { return nodeValue[decision] != tentativeValue[decision]; }
  /// The changed operands of a node that is dirty.
  [[nodiscard]] ChangeLog changes(NodeId id) const { return {records[id].changes, allLists + records[id].listStart}; }
  [[nodiscard]] NodeId child(NodeId id, OperandPos p) const { return fixed.child(id, p); }

  /// Cells read as doubles, whatever the domain.
  [[nodiscard]] double committedDouble(NodeId id) const { return fixed.asDouble(id, nodeValue[id]); }
  [[nodiscard]] double tentativeDouble(NodeId id) const { return fixed.asDouble(id, tentativeValue[id]); }

  /// Asks for what the evaluation of a node will read, where it can't be expected to lie in a near cache.
  void prefetchNode(NodeId id) const {
    if (liesInNearCaches) [[likely]]
      return;
    __builtin_prefetch(nodeValue.data() + id);
    __builtin_prefetch(tentativeValue.data() + id, 1);
    fixed.prefetchParents(id);
  }
  /// The same for a decision that is set, whose cells are being written.
  void prefetchParents(NodeId id) const {
    if (!liesInNearCaches) fixed.prefetchParents(id);
  }
  /// Sets a decision for the current move to the opposite of its committed value.
  void flip(NodeId decision) { propagation.setTentativeValue(*this, decision, 1 - nodeValue[decision]); }

 private:
  static constexpr std::uint32_t kNodesInNearCaches = 30000;  ///< at some hundred bytes each, all arrays together

  NodePool pool;
  std::vector<OperandPos> listRoom;
  const bool liesInNearCaches;

  Node* createNode(NodeId id);
  [[nodiscard]] TellKind tellKindOf(NodeId id) const;
  void layOutRecords();
  void destroyNodes();
};

inline void Propagation::setTentativeValue(Dag& dag, NodeId id, t_value value) {
  if (dag.nodeValue[id] == value) return;
  if (dag.isSet(id)) return;
  dag.prefetchParents(id);
  dag.tentativeValue[id] = value;
  touchedDecisions.push(id);
  if (!isOrdinaryDecision(dag.fixed, id)) rankQueues[constraintSlot(0)].push(id);
}

}  // namespace quvex
