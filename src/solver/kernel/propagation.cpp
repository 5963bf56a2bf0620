#include "solver/kernel/propagation.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "api/qvexception.h"
#include "solver/kernel/arithmetic.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/mathdouble.h"
#include "solver/kernel/node.h"

namespace quvex {

namespace {

constexpr bool holdsConstraints(QueueSlot slot) { return slot % 2 == 0; }

/// The first slot of rank 1.
constexpr QueueSlot kFirstInnerSlot = constraintSlot(1);

/// `Node::hasChanged`, without the call where cells compare as they stand. One without parents has nobody to tell.
bool hasNews(const Dag& dag, const NodeRecord& record, NodeId id) {
  if (record.tellKind == TellKind::ByCell) [[likely]]
    return dag.nodeValue[id] != dag.tentativeValue[id];
  return record.tellKind == TellKind::Asked && record.node->hasChanged(dag, id);
}

// What follows runs for every operand that is told; it is laid out so that the usual case falls through.

/// `Node::notifyChildChanged`, without the call where the record is all; `before` are the changes so far.
void noteChange(Dag& dag, NodeRecord& record, std::uint64_t before, NodeId id, OperandPos position) {
  if (record.changeKind == ChangeKind::Bit) [[likely]] {
    record.noteBit(before, position);
  } else if (record.changeKind == ChangeKind::List) [[likely]] {
    record.noteInList(before, dag.allLists, position);
  } else if (record.changeKind == ChangeKind::Called) {
    assert(record.changes == before);
    record.node->notifyChildChanged(dag, position, id);
  }
}

}  // namespace

void Propagation::init(const Dag& dag) {
  const DagFixedFields& fixed = dag.fixed;
  doneLevel = 0;
  optimizedLevel = fixed.nbObjectives();
  for (NodeList& list : deferredLists) list.reserve(fixed.nbNodes);
  initConstraints(dag);
  initQueues(fixed);
  initKinds(dag);
  touchedDecisions.reserve(fixed.firstOperator);
  movedBarriers.reserve(fixed.nbConstraints());
  computeViolation(dag);
  laggingNodes.resize(fixed.nbNodes);
  laggingValues.assign(fixed.nbNodes, 0);
}

void Propagation::initQueues(const DagFixedFields& fixed) {
  const std::size_t nbSlots = 2 * std::size_t{fixed.nbRanks()};
  std::vector<std::uint32_t> capacities(nbSlots, 0);
  for (NodeId id = 0; id < fixed.nbNodes; ++id) ++capacities[fixed.slotOf(id)];
  queueRoom.assign(fixed.nbNodes, 0);
  NodeId* room = queueRoom.data();
  for (const std::uint32_t capacity : capacities) {
    rankQueues.emplace_back(room);
    room += capacity;
  }
  constraintsAmongDecisions =
      std::ranges::any_of(fixed.constraints, [&](NodeId id) { return fixed.nodeRanks[id] == 0; });
}

void Propagation::initKinds(const Dag& dag) {
  const DagFixedFields& fixed = dag.fixed;
  const auto keepsChanges = [&](const NodeRecord& record) { return record.changeKind == ChangeKind::Called; };
  nodesKeepChanges = std::ranges::any_of(dag.records, keepsChanges);
  constraintsCanBeBarriers =
      std::ranges::all_of(fixed.constraints, [&](NodeId id) { return fixed.nodeDomains[id] == Domain::Boolean; });
  // Only extrema do, whose domain is another: barriers are not rolled back.
  assert(!constraintsCanBeBarriers ||
         std::ranges::none_of(fixed.constraints, [&](NodeId id) { return keepsChanges(dag.records[id]); }));
}

void Propagation::removeListener(DagListener* listener) {
  const auto found = std::find(listeners.begin(), listeners.end(), listener);
  if (found != listeners.end()) listeners.erase(found);
}

/// A parent enters its queue once per move, however many of its operands change.
inline void Propagation::propagateToParents(Dag& dag, NodeId id, Level from, Level to) {
  const ParentRun run = dag.fixed.parentRun(id);
  if (run.end(to) < run.end(optimizedLevel)) nextDeferredNodes->push(id);
  const MoveNumber now = moveNumber;
  // Parents that follow one another mostly share a queue.
  QueueSlot slot = kNone;
  RankQueue* queue = nullptr;
  NodeId* end = nullptr;
  for (const auto [parent, childPos] : run.between(from, to)) {
    NodeRecord& record = dag.records[parent];
    std::uint64_t before = record.changes;
    if (record.queuedIn != now) [[likely]] {
      before = 0;
      record.queuedIn = now;
      dag.prefetchNode(parent);
      if (record.slot != slot) {
        slot = record.slot;
        highestSlot = std::max(highestSlot, slot);
        queue = rankQueues.data() + slot;
        end = queue->end();
      }
      end = queue->pushAt(end, parent);
    }
    noteChange(dag, record, before, parent, childPos);
  }
}

/// An active constraint that turns false stops the evaluation; an inactive one is counted.
inline bool Propagation::countConstraint(const Dag& dag, NodeId id) {
  if (activeConstraints.contains(dag.fixed.posInConstraints[id])) return dag.tentativeValue[id] != 0;
  tentativeViolation = wrapAdd(tentativeViolation, dag.nodes[id]->violationDelta(dag, id));
  tentativeNbViolated += dag.nodeValue[id] - dag.tentativeValue[id];
  return true;
}

/// While every constraint is active, one that is true now was true before the move, so it has no news. But for one over
/// doubles that a recomputation from scratch has made false.
inline bool Propagation::evaluateBarriers(Dag& dag, const RankQueue& queue) {
  for (const NodeId id : queue.list()) {
    const NodeRecord& record = dag.records[id];
    record.node->eval(dag, *this, id);
    if (dag.tentativeValue[id] == 0) {
      movedBarriers.push(id);
      return false;
    }
    if (dag.nodeValue[id] == 0) [[unlikely]] {
      movedBarriers.push(id);
      propagateToParents(dag, id, 0, 0);
    }
  }
  return true;
}

inline bool Propagation::evaluateConstraintQueue(Dag& dag, const RankQueue& queue) {
  if (constraintsAreBarriers) [[likely]]
    return evaluateBarriers(dag, queue);
  for (const NodeId id : queue.list()) {
    const NodeRecord& record = dag.records[id];
    record.node->eval(dag, *this, id);
    if (!countConstraint(dag, id)) return false;
    if (hasNews(dag, record, id)) propagateToParents(dag, id, 0, 0);
  }
  return true;
}

/// A decision that is set has changed, and has nothing to compute.
inline void Propagation::evaluateDecisions(Dag& dag) {
  for (const NodeId id : touchedDecisions) {
    if (isOrdinaryDecision(dag.fixed, id)) [[likely]]
      propagateToParents(dag, id, 0, 0);
  }
}

/// Evaluating a slot queues higher ranks only, so its list stays as it is meanwhile.
inline void Propagation::evaluateNodeQueue(Dag& dag, RankQueue& queue, Level from, Level to) {
  for (const NodeId id : queue.takeFresh()) {
    const NodeRecord& record = dag.records[id];
    record.node->eval(dag, *this, id);
    if (hasNews(dag, record, id)) [[likely]]
      propagateToParents(dag, id, from, to);
  }
}

void Propagation::nextStage(Level stage) {
  std::swap(deferredNodes, nextDeferredNodes);
  nextDeferredNodes->clear();
  doneLevel = stage + 1;
}

/// Run once per move: after a failure, a second run would tell operands twice.
bool Propagation::runConstraintStage(Dag& dag) {
  if (broken) return false;
  broken = true;  // until the end is reached
  constraintsAreBarriers = constraintsCanBeBarriers && allConstraintsActive();
  if (constraintsAmongDecisions) [[unlikely]] {
    if (!evaluateConstraintQueue(dag, rankQueues[constraintSlot(0)])) return false;
  }
  evaluateDecisions(dag);
  // The upper end moves while the loop runs.
  for (QueueSlot slot = kFirstInnerSlot; slot <= highestSlot; ++slot) {
    RankQueue& queue = rankQueues[slot];
    if (!queue.hasFresh()) continue;
    if (!holdsConstraints(slot)) {
      evaluateNodeQueue(dag, queue, 0, 0);
    } else if (!evaluateConstraintQueue(dag, queue)) {
      return false;
    }
  }
  broken = false;
  nextStage(0);
  return true;
}

/// All stages from the last one done to this one, as one.
void Propagation::runStage(Dag& dag, Level stage) {
  const Level done = doneLevel;
  // They had news when they were deferred, and none is evaluated twice.
  for (const NodeId id : *deferredNodes) propagateToParents(dag, id, done, stage);
  // Constraints are all of level 0 and finished.
  for (QueueSlot slot = ordinarySlot(1); slot <= highestSlot; slot += 2) {
    evaluateNodeQueue(dag, rankQueues[slot], done, stage);
  }
  nextStage(stage);
}

void Propagation::commitAll(Dag& dag) {
  if (evaluateConstraints(dag)) (void)evaluateUpTo(dag, optimizedLevel);
  for (DagListener* listener : listeners) listener->onCommit();
  repaired.clear();
  // Ranks go down, but within a rank the constraints still come first.
  for (Rank r = highestSlot / 2; r > 0; --r) {
    commitConstraints(dag, rankQueues[constraintSlot(r)]);
    RankQueue& others = rankQueues[ordinarySlot(r)];
    for (const NodeId id : others.list()) commitNode(dag, id);
    others.clear();
  }
  commitDecisions(dag);
  endMove(dag);
  ++nbCommits;
  committedNbViolated = tentativeNbViolated;
  committedViolation = tentativeViolation;
}

void Propagation::commitConstraints(Dag& dag, RankQueue& queue) {
  for (const NodeId id : queue.list()) {
    commitNode(dag, id);
    commitConstraint(dag, id);
  }
  queue.clear();
}

void Propagation::commitDecisions(Dag& dag) {
  if (constraintsAmongDecisions) commitConstraints(dag, rankQueues[constraintSlot(0)]);
  for (const NodeId id : touchedDecisions) {
    if (isOrdinaryDecision(dag.fixed, id)) commitNode(dag, id);
  }
}

/// `Node::rollback` where a node keeps more than its changed operands.
void Propagation::rollbackKeepers(Dag& dag) {
  for (QueueSlot slot = kFirstInnerSlot; slot <= highestSlot; ++slot) {
    for (const NodeId id : rankQueues[slot].list()) {
      if (dag.records[id].changeKind == ChangeKind::Called) dag.nodes[id]->rollback(dag, id);
    }
  }
}

/// What a node has noted of its operands is void with the move's number, so that mostly its cell is all there is to
/// take back. Barriers have moved none, but for those in their list.
void Propagation::rollbackAll(Dag& dag) {
  const auto takeBack = [tentative = dag.tentativeValue.data(), committed = dag.nodeValue.data()](const auto& ids) {
    for (const NodeId id : ids) tentative[id] = committed[id];
  };
  if (nodesKeepChanges) [[unlikely]]
    rollbackKeepers(dag);
  takeBack(touchedDecisions);
  takeBack(movedBarriers);
  for (QueueSlot slot = kFirstInnerSlot; slot <= highestSlot; slot += 2) {
    RankQueue& constraints = rankQueues[slot];
    RankQueue& others = rankQueues[slot + 1];
    if (!constraintsAreBarriers) takeBack(constraints.list());
    takeBack(others.list());
    constraints.clear();
    others.clear();
  }
  endMove(dag);
  tentativeNbViolated = committedNbViolated;
  tentativeViolation = committedViolation;
}

/// Numbers are used anew: what an old move has noted would look like the current one's.
void Propagation::restartMoveNumbers(Dag& dag) {
  for (NodeRecord& record : dag.records) record.queuedIn = kNoMove;
  moveNumber = kNoMove + 1;
}

void Propagation::endMove(Dag& dag) {
  rankQueues[constraintSlot(0)].clear();
  highestSlot = 0;
  touchedDecisions.clear();
  movedBarriers.clear();
  for (NodeList& list : deferredLists) list.clear();  // a stage 0 that failed has left entries in the next one too
  broken = false;
  doneLevel = 0;
  if (++moveNumber == kNoMove) [[unlikely]]
    restartMoveNumbers(dag);
}

void Propagation::commitNode(Dag& dag, NodeId id) {
  noteLagging(dag, id);
  dag.records[id].node->commit(dag, id);
}

void Propagation::commitConstraint(const Dag& dag, NodeId id) {
  const std::uint32_t constraint = dag.fixed.posInConstraints[id];
  if (activeConstraints.contains(constraint)) return;
  if (dag.nodeValue[id] != 0) {
    if (violatedConstraints.contains(constraint)) repaired.push_back(constraint);
    violatedConstraints.remove(constraint);
  } else {
    violatedConstraints.add(constraint);
  }
}

/// A node whose parents above `optimizedLevel` were not told keeps the value that they last saw.
void Propagation::noteLagging(const Dag& dag, NodeId id) {
  const DagFixedFields& fixed = dag.fixed;
  if (optimizedLevel == fixed.nbObjectives()) return;
  if (fixed.parentCountByLevel(optimizedLevel, id) == fixed.parentCount(id)) return;
  if (!laggingNodes.contains(id)) {
    if (!hasNews(dag, dag.records[id], id)) return;
    laggingNodes.add(id);
    laggingValues[id] = dag.nodeValue[id];
    return;
  }
  if (fixed.nodeDomains[id] == Domain::Array) return;  // its cells say nothing
  const bool back = fixed.isDouble(id)
                        ? MathDouble::isEqual(wordToDouble(dag.tentativeValue[id]), wordToDouble(laggingValues[id]))
                        : dag.tentativeValue[id] == laggingValues[id];
  if (back) laggingNodes.remove(id);
}

/// What an operator raises leaves everything as it was, those levels behind as before.
void Propagation::catchUp(Dag& dag) {
  if (laggingNodes.empty()) return;
  const Level last = dag.fixed.nbObjectives();
  // They are of lower levels than what is told here, so that their tentative cells keep what is committed.
  const auto restoreValues = [&] {
    for (const NodeId id : laggingNodes.members()) dag.nodeValue[id] = dag.tentativeValue[id];
  };
  for (const NodeId id : laggingNodes.members()) {
    dag.nodeValue[id] = laggingValues[id];
    propagateToParents(dag, id, optimizedLevel + 1, last);
  }
  doneLevel = optimizedLevel + 1;
  try {
    runStage(dag, last);
  } catch (...) {
    rollbackAll(dag);
    restoreValues();
    throw;
  }
  commitAll(dag);
  restoreValues();
  laggingNodes.clear();
}

void Propagation::initConstraints(const Dag& dag) {
  activeConstraints.resize(dag.fixed.nbConstraints());
  repaired.reserve(dag.fixed.nbConstraints());
  violatedConstraints.resize(dag.fixed.nbConstraints());
  for (std::uint32_t c = 0; c < dag.fixed.nbConstraints(); ++c) {
    if (dag.nodeValue[dag.fixed.constraints[c]] == 0) violatedConstraints.add(c);
  }
}

void Propagation::computeViolation(const Dag& dag) {
  committedNbViolated = 0;
  committedViolation = 0;
  for (const NodeId id : dag.fixed.constraints) {
    committedViolation = wrapAdd(committedViolation, dag.nodes[id]->violation(dag, id));
    if (dag.nodeValue[id] == 0) ++committedNbViolated;
  }
  tentativeNbViolated = committedNbViolated;
  tentativeViolation = committedViolation;
}

void Propagation::activateConstraint(const Dag& dag, NodeId id) {
  const std::uint32_t constraint = dag.fixed.posInConstraints[id];
  if (constraint == kNone) raise<KernelException>(here<Propagation>(), "The given node is not a constraint");
  if (dag.nodeValue[id] == 0) {
    raise<KernelException>(here<Propagation>(), "Cannot activate a violated constraint with nodeId #", id);
  }
  activeConstraints.add(constraint);
}

void Propagation::activateAllConstraints() {
  if (committedNbViolated > 0) raise<KernelException>(here<Propagation>(), "One or more constraints are violated");
  activeConstraints.fill();
}

void Propagation::activateSatisfiedConstraints(const Dag& dag) {
  if (committedNbViolated == 0) {
    activateAllConstraints();
    return;
  }
  // Walking forward is safe: an activated entry changes places with one already seen.
  for (std::uint32_t i = activeConstraints.count; i < activeConstraints.capacity; ++i) {
    const NodeId id = dag.fixed.constraints[activeConstraints[i]];
    if (dag.nodeValue[id] == 1) activateConstraint(dag, id);
  }
}

void Propagation::activateRepairedConstraints(const Dag& dag) {
  if (committedNbViolated == 0) {
    activateAllConstraints();
    return;
  }
  // By their places, as a walk over all inactive ones would meet them; activating one moves none of the later.
  std::ranges::sort(repaired, {}, [this](std::uint32_t c) { return activeConstraints.positions[c]; });
  for (const std::uint32_t c : repaired) activateConstraint(dag, dag.fixed.constraints[c]);
}

void Propagation::check(const Dag& dag) const {
  std::int64_t nbViolated = 0;
  for (std::uint32_t c = 0; c < dag.fixed.nbConstraints(); ++c) {
    if (dag.nodeValue[dag.fixed.constraints[c]] != 0) continue;
    if (activeConstraints.contains(c)) {
      raise<KernelException>(here<Propagation>(), "Check failed: one or more active constraints are violated");
    }
    ++nbViolated;
  }
  if (nbViolated != committedNbViolated) {
    raise<KernelException>(here<Propagation>(), "Check failed : number of violated constraints incorrect");
  }
}

}  // namespace quvex
