#include "solver/kernel/propagation.h"

#include <algorithm>
#include <utility>

#include "api/qvexception.h"
#include "solver/kernel/arithmetic.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/mathdouble.h"
#include "solver/kernel/node.h"

namespace quvex {

void RankQueues::init(std::span<const std::uint32_t> capacities) {
  start.clear();
  std::uint32_t total = 0;
  for (const std::uint32_t capacity : capacities) {
    start.push_back(total);
    total += capacity;
  }
  entries.assign(total, 0);
  sizes.assign(capacities.size(), 0);
}

void Propagation::init(const Dag& dag) {
  const DagFixedFields& fixed = dag.fixed;
  doneLevel = 0;
  optimizedLevel = fixed.nbObjectives();
  deferredNodes.reserve(fixed.nbNodes);
  nextDeferredNodes.reserve(fixed.nbNodes);
  initConstraints(dag);
  std::vector<std::uint32_t> constraintsOfRank(fixed.nbRanks(), 0);
  std::vector<std::uint32_t> othersOfRank(fixed.nbRanks(), 0);
  for (NodeId id = 0; id < fixed.nbNodes; ++id) {
    ++(fixed.isConstraint(id) ? constraintsOfRank : othersOfRank)[fixed.nodeRanks[id]];
  }
  constraintRankQueues.init(constraintsOfRank);
  rankQueues.init(othersOfRank);
  rankCursors.assign(fixed.nbRanks(), 0);
  touchedDecisions.reserve(fixed.firstOperator);
  computeViolation(dag);
  laggingNodes.resize(fixed.nbNodes);
  laggingValues.assign(fixed.nbNodes, 0);
}

void Propagation::removeListener(DagListener* listener) {
  const auto found = std::find(listeners.begin(), listeners.end(), listener);
  if (found != listeners.end()) listeners.erase(found);
}

void Propagation::enqueue(const Dag& dag, NodeId id) {
  const Rank r = dag.fixed.nodeRanks[id];
  (dag.fixed.isConstraint(id) ? constraintRankQueues : rankQueues).push(r, id);
  lowestRank = std::min(lowestRank, r);
  highestRank = std::max(highestRank, r);
}

void Propagation::setTentativeValue(Dag& dag, NodeId id, t_value value) {
  if (dag.nodeValue[id] == value) return;
  if (dag.isDirty(id)) return;
  dag.tentativeValue[id] = value;
  dag.setDirty(id);
  enqueue(dag, id);
  touchedDecisions.push_back(id);
}

void Propagation::propagateToParents(Dag& dag, NodeId id, Level from, Level to) {
  const DagFixedFields& fixed = dag.fixed;
  const std::uint32_t first = from == 0 ? 0 : fixed.parentCountByLevel(from - 1, id);
  const std::uint32_t end = fixed.parentCountByLevel(to, id);
  const ParentLink* run = fixed.parents.data() + fixed.parentStart(id);
  for (std::uint32_t i = first; i < end; ++i) {
    const auto [parent, childPos] = run[i];
    if (!dag.isDirty(parent)) {
      enqueue(dag, parent);
      dag.setDirty(parent);
    }
    dag.nodes[parent]->notifyChildChanged(childPos, fixed, parent);
  }
  if (end < fixed.parentCountByLevel(optimizedLevel, id)) nextDeferredNodes.push_back(id);
}

/// An active constraint that turns false stops the evaluation; an inactive one is counted.
bool Propagation::evalConstraint(Dag& dag, NodeId id) {
  Node& node = *dag.nodes[id];
  node.eval(dag, *this, id);
  if (activeConstraints.contains(dag.fixed.posInConstraints[id])) return dag.tentativeValue[id] != 0;
  tentativeViolation = wrapAdd(tentativeViolation, node.violationDelta(dag, id));
  tentativeNbViolated += dag.nodeValue[id] - dag.tentativeValue[id];
  return true;
}

bool Propagation::evaluateConstraintQueue(Dag& dag, Rank r) {
  for (const NodeId id : constraintRankQueues.list(r)) {
    if (!evalConstraint(dag, id)) return false;
    if (dag.nodes[id]->hasChanged(dag, id)) propagateToParents(dag, id, 0, 0);
  }
  return true;
}

void Propagation::evaluateNodeQueue(Dag& dag, Rank r, Level from, Level to) {
  const std::uint32_t end = rankQueues.size(r);
  for (std::uint32_t i = rankCursors[r]; i < end; ++i) {
    const NodeId id = rankQueues.at(r, i);
    // Rank 0 holds decisions alone: nothing to evaluate, and a queued one has always changed.
    if (r != 0) {
      Node& node = *dag.nodes[id];
      node.eval(dag, *this, id);
      if (!node.hasChanged(dag, id)) continue;
    }
    propagateToParents(dag, id, from, to);
  }
  rankCursors[r] = end;
}

void Propagation::nextStage(Level stage) {
  std::swap(deferredNodes, nextDeferredNodes);
  nextDeferredNodes.clear();
  doneLevel = stage + 1;
}

bool Propagation::evaluateConstraints(Dag& dag) {
  if (doneLevel != 0) return true;
  // Evaluating a rank queues higher ranks only, so the upper end of the loop moves while it runs.
  for (Rank r = lowestRank; r <= highestRank; ++r) {
    if (!evaluateConstraintQueue(dag, r)) return false;
    evaluateNodeQueue(dag, r, 0, 0);
  }
  nextStage(0);
  return true;
}

bool Propagation::evaluateUpTo(Dag& dag, Level stage) {
  const Level done = doneLevel;
  if (stage < done) return true;
  for (const NodeId id : deferredNodes) {
    if (dag.nodes[id]->hasChanged(dag, id)) propagateToParents(dag, id, done, stage);
  }
  for (Rank r = lowestRank; r <= highestRank; ++r) evaluateNodeQueue(dag, r, done, stage);
  nextStage(stage);
  return true;
}

void Propagation::commitAll(Dag& dag) {
  if (evaluateConstraints(dag)) (void)evaluateUpTo(dag, optimizedLevel);
  for (DagListener* listener : listeners) listener->onCommit();
  if (lowestRank != kNone) {
    for (Rank r = highestRank + 1; r-- > lowestRank;) {
      for (const NodeId id : constraintRankQueues.list(r)) commitNode(dag, id);
      for (const NodeId id : rankQueues.list(r)) commitNode(dag, id);
    }
  }
  endMove();
  committedNbViolated = tentativeNbViolated;
  committedViolation = tentativeViolation;
}

void Propagation::rollbackAll(Dag& dag) {
  const auto undo = [&dag](NodeId id) {
    dag.clearDirty(id);
    dag.nodes[id]->rollback(dag, id);
  };
  for (Rank r = lowestRank; r <= highestRank; ++r) {
    for (const NodeId id : constraintRankQueues.list(r)) undo(id);
    for (const NodeId id : rankQueues.list(r)) undo(id);
  }
  endMove();
  tentativeNbViolated = committedNbViolated;
  tentativeViolation = committedViolation;
}

void Propagation::endMove() {
  for (Rank r = lowestRank; r <= highestRank; ++r) {
    constraintRankQueues.clear(r);
    rankQueues.clear(r);
    rankCursors[r] = 0;
  }
  lowestRank = kNone;
  highestRank = 0;
  touchedDecisions.clear();
  deferredNodes.clear();
  nextDeferredNodes.clear();  // a stage 0 that failed has left entries here too
  doneLevel = 0;
}

void Propagation::commitNode(Dag& dag, NodeId id) {
  noteLagging(dag, id);
  dag.clearDirty(id);
  dag.nodes[id]->commit(dag, id);
  const std::uint32_t constraint = dag.fixed.posInConstraints[id];
  if (constraint == kNone || activeConstraints.contains(constraint)) return;
  if (dag.nodeValue[id] != 0) {
    violatedConstraints.remove(constraint);
  } else {
    violatedConstraints.add(constraint);
  }
}

/// A node whose parents above `optimizedLevel` were not told keeps the value that they last saw.
void Propagation::noteLagging(const Dag& dag, NodeId id) {
  const DagFixedFields& fixed = dag.fixed;
  if (fixed.parentCountByLevel(optimizedLevel, id) == fixed.parentCount(id)) return;
  if (!laggingNodes.contains(id)) {
    if (!dag.nodes[id]->hasChanged(dag, id)) return;
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
