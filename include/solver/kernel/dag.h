#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/changelog.h"
#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/nodepool.h"
#include "solver/kernel/propagation.h"
#include "solver/kernel/types.h"

namespace quvex {

class Node;

/// What the evaluation driver keeps of a node, so that it need not call it.
struct QueueMark {
  ChangeLog* changes = nullptr;              ///< where changed operands are noted, and forgotten at a rollback
  QueueSlot slot = 0;                        ///< the queue that it belongs to
  bool dirtyBit = false;                     ///< set from queueing until commit or rollback
  bool changesByCell = false;                ///< whether it has changed exactly when its two cells differ as words
  ChangeKind changeKind = ChangeKind::None;  ///< how `changes` is written
};

/// One thread's mutable state of the compiled model: node objects, committed and tentative cells, and the evaluation
/// driver. Two `Dag`s may exchange solutions exactly when their `fixed` is the same object.
///
/// Invariant between moves: `tentativeValue` equals `nodeValue` and all dirty bits are clear.
class Dag {
 public:
  static constexpr const char* kName = "quvex::Dag";

  const DagFixedFields& fixed;
  Propagation propagation;
  std::vector<Node*> nodes;      ///< by id, owned, memory from the pool
  std::vector<QueueMark> marks;  ///< by id
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

  [[nodiscard]] bool isDirty(NodeId id) const { return marks[id].dirtyBit; }
  void clearDirty(NodeId id) { marks[id].dirtyBit = false; }

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
  /// Sets a decision for the current move to the opposite of its tentative value.
  void flip(NodeId decision) { propagation.setTentativeValue(*this, decision, 1 - tentativeValue[decision]); }

 private:
  static constexpr std::uint32_t kNodesInNearCaches = 30000;  ///< at some hundred bytes each, all arrays together

  NodePool pool;
  ChangeLog noChanges;  ///< of the nodes that keep no log: writing it does no harm
  const bool liesInNearCaches;

  Node* createNode(NodeId id);
  void initMarks();
  void destroyNodes();
};

}  // namespace quvex
