#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "solver/kernel/dagfixedfields.h"
#include "solver/kernel/daglistener.h"
#include "solver/kernel/indexedset.h"
#include "solver/kernel/nodelist.h"
#include "solver/kernel/noderecord.h"
#include "solver/kernel/queueslot.h"
#include "solver/kernel/types.h"

namespace quvex {

class Dag;

/// Node ids queued in the current move at one slot, in arrival order, and how many of them have been evaluated. The
/// entries need no sorting among themselves, so a plain list beats a heap.
class RankQueue {
 public:
  explicit RankQueue(NodeId* room) : first(room), last(room), fresh(room) {}

  void push(NodeId id) { *last++ = id; }
  /// For those who push several in a row and keep the end at hand, so that no entry waits for the one before it to
  /// have been counted in memory.
  [[nodiscard]] NodeId* end() const { return last; }
  NodeId* pushAt(NodeId* end, NodeId id) {
    *end = id;
    return last = end + 1;
  }
  [[nodiscard]] std::span<const NodeId> list() const { return {first, last}; }
  [[nodiscard]] bool hasFresh() const { return fresh != last; }
  /// What has not been evaluated yet, and counts as evaluated from now on.
  std::span<const NodeId> takeFresh() { return {std::exchange(fresh, last), last}; }
  void clear() { last = fresh = first; }

 private:
  NodeId* first;  ///< room for every node of the slot: none is let in twice in a move
  NodeId* last;
  NodeId* fresh;
};

/// The evaluation driver of one `Dag`, and its treatment of constraints.
///
/// Evaluation: a move sets decisions tentatively, stage 0 evaluates everything that constraints depend on, stage k what
/// objective k - 1 adds; then exactly one of `commitAll` and `rollbackAll` ends the move. Ranks go up, so a node is
/// evaluated after all its changed operands.
///
/// Constraints: an active constraint is a hard barrier, its breaking stops the evaluation at once; an inactive one
/// adds to a count and a sum of violation. A committed count of 0 means feasible.
///
/// Invariant between moves: all queues are clear and no node is dirty, `doneLevel` is 0, tentative counters equal
/// committed ones, and `violatedConstraints` holds the inactive constraints that are false.
class Propagation {
 public:
  static constexpr const char* kName = "quvex::Propagation";

  std::int64_t tentativeNbViolated = 0;
  std::int64_t committedNbViolated = 0;
  std::int64_t tentativeViolation = 0;  ///< sum of `violation` over inactive constraints
  std::int64_t committedViolation = 0;
  std::uint64_t nbCommits = 0;         ///< moves committed so far
  MoveNumber moveNumber = kFirstMove;  ///< of the current move, or between moves of the next
  Level doneLevel = 0;                 ///< next stage to run: 0 nothing evaluated, k + 1 stage k is done
  Level optimizedLevel = 0;            ///< last stage that the search cares about
  NodeList touchedDecisions;           ///< in the order of setting
  IndexedSet activeConstraints;        ///< may no longer be violated
  IndexedSet violatedConstraints;      ///< inactive and now false
  IndexedSet laggingNodes;             ///< committed, with parents above `optimizedLevel` that were not told
  std::vector<t_value> laggingValues;  ///< for each of them, what those parents last saw

  Propagation() = default;
  Propagation(const Propagation&) = delete;
  Propagation& operator=(const Propagation&) = delete;

  /// Called once, when all nodes have their values.
  void init(const Dag& dag);

  /// Sets a decision for the current move. Its committed value, or a second set in the same move, is ignored.
  /// Allowed only before `evaluateConstraints`.
  void setTentativeValue(Dag& dag, NodeId id, t_value value);
  /// Stage 0. False if an active constraint broke: only `rollbackAll` may follow.
  /// The same again for a stage 0 that has failed or raised in this move.
  [[nodiscard]] bool evaluateConstraints(Dag& dag) { return doneLevel != 0 || runConstraintStage(dag); }
  /// Stages up to `stage`, after stage 0. Returns at once for a stage already done. Stages beyond `optimizedLevel` are
  /// reached one by one.
  [[nodiscard]] bool evaluateUpTo(Dag& dag, Level stage) {
    assert(stage <= std::max(optimizedLevel, doneLevel));
    if (stage >= doneLevel) runStage(dag, stage);
    return true;
  }
  void commitAll(Dag& dag);
  void rollbackAll(Dag& dag);
  /// Brings the levels above `optimizedLevel` up to the committed state.
  void catchUp(Dag& dag);

  /// No constraint active; `violatedConstraints` holds every constraint that is false.
  void initConstraints(const Dag& dag);
  /// Recounts the committed violation over all constraints.
  void computeViolation(const Dag& dag);
  void activateConstraint(const Dag& dag, NodeId id);
  void activateAllConstraints();
  void activateSatisfiedConstraints(const Dag& dag);
  /// The same behind a commit before which no inactive constraint was true: only what that commit repaired is looked
  /// at, in the same order, so that a greedy pass does not walk all constraints at each step.
  void activateRepairedConstraints(const Dag& dag);
  /// Makes every constraint inactive, so that none is a barrier.
  void deactivateAllConstraints() { activeConstraints.clear(); }
  [[nodiscard]] bool allConstraintsActive() const { return activeConstraints.count == activeConstraints.capacity; }
  /// Self-test of activeness and counts; raises "Check failed..." on a difference.
  void check(const Dag& dag) const;

  void addListener(DagListener* listener) { listeners.push_back(listener); }
  void removeListener(DagListener* listener);

  /// Rank 0 has no such list: its nodes are `touchedDecisions`.
  [[nodiscard]] std::span<const NodeId> queuedNodes(Rank r) const { return rankQueues[ordinarySlot(r)].list(); }
  [[nodiscard]] std::span<const NodeId> queuedConstraints(Rank r) const { return rankQueues[constraintSlot(r)].list(); }
  [[nodiscard]] const NodeList& currentDeferredNodes() const { return *deferredNodes; }

 private:
  std::vector<RankQueue> rankQueues;  ///< by slot
  std::vector<NodeId> queueRoom;      ///< what all queues lie in
  QueueSlot highestSlot = 0;          ///< no node is queued above
  NodeList movedBarriers;             ///< constraints evaluated as barriers whose cells may differ now
  bool broken = false;                ///< stage 0 of the current move has failed or raised
  bool constraintsAmongDecisions = false;
  bool constraintsCanBeBarriers = true;  ///< all are boolean
  bool constraintsAreBarriers = false;   ///< in the current move's stage 0: all of them are active, too
  bool nodesKeepChanges = false;         ///< some need their `Node::rollback`
  std::vector<std::uint32_t> repaired;   ///< inactive constraints that the last commit made true
  std::array<NodeList, 2> deferredLists;
  NodeList* deferredNodes = &deferredLists[0];      ///< changed nodes whose parents at later levels have not been told
  NodeList* nextDeferredNodes = &deferredLists[1];  ///< the same for the stage after the running one
  std::vector<DagListener*> listeners;

  /// Whether a decision is no constraint, as nearly all are.
  [[nodiscard]] bool isOrdinaryDecision(const DagFixedFields& fixed, NodeId id) const {
    return !constraintsAmongDecisions || !fixed.isConstraint(id);
  }
  void propagateToParents(Dag& dag, NodeId id, Level from, Level to);
  [[nodiscard]] bool countConstraint(const Dag& dag, NodeId id);
  [[nodiscard]] bool evaluateBarriers(Dag& dag, const RankQueue& queue);
  [[nodiscard]] bool evaluateConstraintQueue(Dag& dag, const RankQueue& queue);
  void evaluateDecisions(Dag& dag);
  void evaluateNodeQueue(Dag& dag, RankQueue& queue, Level from, Level to);
  void initQueues(const DagFixedFields& fixed);
  void initKinds(const Dag& dag);
  [[nodiscard]] bool runConstraintStage(Dag& dag);
  void runStage(Dag& dag, Level stage);
  void nextStage(Level stage);
  void commitNode(Dag& dag, NodeId id);
  void commitConstraint(const Dag& dag, NodeId id);
  void noteLagging(const Dag& dag, NodeId id);
  void commitConstraints(Dag& dag, RankQueue& queue);
  void commitDecisions(Dag& dag);
  void rollbackKeepers(Dag& dag);
  void endMove(Dag& dag);
  void restartMoveNumbers(Dag& dag);
};

}  // namespace quvex
