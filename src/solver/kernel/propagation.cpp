#include "solver/kernel/propagation.h"

#include <algorithm>
#include <utility>

#include "api/qvexception.h"
#include "solver/kernel/arithmetic.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/mathdouble.h"
#include "solver/kernel/node.h"

namespace quvex {

namespace {

/// Rank 0 holds decisions alone: nothing to evaluate, a queued one has always changed, and its commit or rollback is a
/// copy of one cell. They are most of what a move queues, so they are spared the calls.
constexpr bool holdsDecisions(QueueSlot slot) { return slot <= 1; }
constexpr bool holdsConstraints(QueueSlot slot) { return slot % 2 == 0; }

/// `Node::hasChanged`, without the call where cells compare as they stand.
bool hasChanged(const Dag& dag, NodeId id) {
  if (dag.fixed.nodeDomains[id] <= Domain::Integer) return dag.nodeValue[id] != dag.tentativeValue[id];
  return dag.nodes[id]->hasChanged(dag, id);
}

}  // namespace

void Propagation::init(const Dag& dag) {
  const DagFixedFields& fixed = dag.fixed;
  doneLevel = 0;
  optimizedLevel = fixed.nbObjectives();
  deferredNodes.reserve(fixed.nbNodes);
  nextDeferredNodes.reserve(fixed.nbNodes);
  initConstraints(dag);
  initQueues(fixed);
  touchedDecisions.reserve(fixed.firstOperator);
  computeViolation(dag);
  laggingNodes.resize(fixed.nbNodes);
  laggingValues.assign(fixed.nbNodes, 0);
}

void Propagation::initQueues(const DagFixedFields& fixed) {
  const std::size_t nbSlots = 2 * std::size_t{fixed.nbRanks()};
  std::vector<std::uint32_t> capacities(nbSlots, 0);
  slotOfNode.resize(fixed.nbNodes);
  for (NodeId id = 0; id < fixed.nbNodes; ++id) {
    const Rank r = fixed.nodeRanks[id];
    slotOfNode[id] = fixed.isConstraint(id) ? constraintSlot(r) : ordinarySlot(r);
    ++capacities[slotOfNode[id]];
  }
  queueRoom.assign(fixed.nbNodes, 0);
  NodeId* room = queueRoom.data();
  for (const std::uint32_t capacity : capacities) {
    rankQueues.emplace_back(room);
    room += capacity;
  }
}

void Propagation::removeListener(DagListener* listener) {
  const auto found = std::find(listeners.begin(), listeners.end(), listener);
  if (found != listeners.end()) listeners.erase(found);
}

inline void Propagation::enqueue(NodeId id) {
  const QueueSlot slot = slotOfNode[id];
  rankQueues[slot].push(id);
  lowestSlot = std::min(lowestSlot, slot);
  highestSlot = std::max(highestSlot, slot);
}

void Propagation::setTentativeValue(Dag& dag, NodeId id, t_value value) {
  if (dag.nodeValue[id] == value) return;
  if (!dag.markDirty(id)) return;
  dag.tentativeValue[id] = value;
  enqueue(id);
  touchedDecisions.push_back(id);
}

inline void Propagation::propagateToParents(Dag& dag, NodeId id, Level from, Level to) {
  const DagFixedFields& fixed = dag.fixed;
  const ParentRun run = fixed.parentRun(id);
  const ParentLink* const links = fixed.parents.data() + run.start();
  const std::uint32_t end = run.count(to);
  for (std::uint32_t i = from == 0 ? 0 : run.count(from - 1); i < end; ++i) {
    const auto [parent, childPos] = links[i];
    if (dag.markDirty(parent)) enqueue(parent);
    dag.nodes[parent]->notifyChildChanged(childPos, fixed, parent);
  }
  if (end < run.count(optimizedLevel)) nextDeferredNodes.push_back(id);
}

/// An active constraint that turns false stops the evaluation; an inactive one is counted.
inline bool Propagation::evalConstraint(Dag& dag, NodeId id) {
  Node& node = *dag.nodes[id];
  node.eval(dag, *this, id);
  if (activeConstraints.contains(dag.fixed.posInConstraints[id])) return dag.tentativeValue[id] != 0;
  tentativeViolation = wrapAdd(tentativeViolation, node.violationDelta(dag, id));
  tentativeNbViolated += dag.nodeValue[id] - dag.tentativeValue[id];
  return true;
}

bool Propagation::evaluateConstraintQueue(Dag& dag, QueueSlot slot) {
  for (const NodeId id : rankQueues[slot].list()) {
    if (!evalConstraint(dag, id)) return false;
    if (hasChanged(dag, id)) propagateToParents(dag, id, 0, 0);
  }
  return true;
}

/// Evaluating a slot queues higher ranks only, so its list stays as it is meanwhile.
void Propagation::evaluateNodeQueue(Dag& dag, QueueSlot slot, Level from, Level to) {
  const std::span<const NodeId> fresh = rankQueues[slot].takeFresh();
  if (holdsDecisions(slot)) {
    for (const NodeId id : fresh) propagateToParents(dag, id, from, to);
    return;
  }
  for (const NodeId id : fresh) {
    dag.nodes[id]->eval(dag, *this, id);
    if (hasChanged(dag, id)) propagateToParents(dag, id, from, to);
  }
}

void Propagation::nextStage(Level stage) {
  std::swap(deferredNodes, nextDeferredNodes);
  nextDeferredNodes.clear();
  doneLevel = stage + 1;
}

bool Propagation::evaluateConstraints(Dag& dag) {
  if (doneLevel != 0) return true;
  // The upper end moves while the loop runs.
  for (QueueSlot slot = lowestSlot; slot <= highestSlot; ++slot) {
    if (!rankQueues[slot].hasFresh()) continue;
    if (!holdsConstraints(slot)) {
      evaluateNodeQueue(dag, slot, 0, 0);
    } else if (!evaluateConstraintQueue(dag, slot)) {
      return false;
    }
  }
  nextStage(0);
  return true;
}

bool Propagation::evaluateUpTo(Dag& dag, Level stage) {
  const Level done = doneLevel;
  if (stage < done) return true;
  for (const NodeId id : deferredNodes) {
    if (hasChanged(dag, id)) propagateToParents(dag, id, done, stage);
  }
  // Constraints are all of level 0 and finished.
  for (QueueSlot slot = lowestSlot | 1U; slot <= highestSlot; slot += 2) {
    if (rankQueues[slot].hasFresh()) evaluateNodeQueue(dag, slot, done, stage);
  }
  nextStage(stage);
  return true;
}

void Propagation::commitAll(Dag& dag) {
  if (evaluateConstraints(dag)) (void)evaluateUpTo(dag, optimizedLevel);
  for (DagListener* listener : listeners) listener->onCommit();
  if (lowestSlot != kNone) {
    // Ranks go down, but within a rank the constraints still come first.
    for (Rank r = highestSlot / 2 + 1; r-- > lowestSlot / 2;) {
      for (const NodeId id : rankQueues[constraintSlot(r)].list()) {
        commitNode(dag, id);
        commitConstraint(dag, id);
      }
      for (const NodeId id : rankQueues[ordinarySlot(r)].list()) commitNode(dag, id);
    }
  }
  endMove();
  committedNbViolated = tentativeNbViolated;
  committedViolation = tentativeViolation;
}

void Propagation::rollbackAll(Dag& dag) {
  for (QueueSlot slot = lowestSlot; slot <= highestSlot; ++slot) {
    for (const NodeId id : rankQueues[slot].list()) {
      dag.clearDirty(id);
      if (holdsDecisions(slot)) {
        dag.tentativeValue[id] = dag.nodeValue[id];
      } else {
        dag.nodes[id]->rollback(dag, id);
      }
    }
  }
  endMove();
  tentativeNbViolated = committedNbViolated;
  tentativeViolation = committedViolation;
}

void Propagation::endMove() {
  for (QueueSlot slot = lowestSlot; slot <= highestSlot; ++slot) rankQueues[slot].clear();
  lowestSlot = kNone;
  highestSlot = 0;
  touchedDecisions.clear();
  deferredNodes.clear();
  nextDeferredNodes.clear();  // a stage 0 that failed has left entries here too
  doneLevel = 0;
}

void Propagation::commitNode(Dag& dag, NodeId id) {
  noteLagging(dag, id);
  dag.clearDirty(id);
  dag.nodes[id]->commit(dag, id);
}

void Propagation::commitConstraint(const Dag& dag, NodeId id) {
  const std::uint32_t constraint = dag.fixed.posInConstraints[id];
  if (activeConstraints.contains(constraint)) return;
  if (dag.nodeValue[id] != 0) {
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
    if (!hasChanged(dag, id)) return;
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

void Propagation::catchUp(Dag& dag) {
  if (laggingNodes.empty()) return;
  const Level last = dag.fixed.nbObjectives();
  for (const NodeId id : laggingNodes.members()) {
    dag.nodeValue[id] = laggingValues[id];
    propagateToParents(dag, id, optimizedLevel + 1, last);
  }
  doneLevel = optimizedLevel + 1;
  (void)evaluateUpTo(dag, last);
  commitAll(dag);
  for (const NodeId id : laggingNodes.members()) dag.nodeValue[id] = dag.tentativeValue[id];
  laggingNodes.clear();
}

void Propagation::initConstraints(const Dag& dag) {
  activeConstraints.resize(dag.fixed.nbConstraints());
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
