#include "solver/kernel/solution.h"

#include "api/qvexception.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/objectivecompare.h"

namespace quvex {

Solution::Solution(Dag& ownDag) : dag(&ownDag) {
  if (!dag->initialized) {
    raise<KernelException>(here<Solution>(), "The dag must be initialized to create a Solution");
  }
  const DagFixedFields& fixed = dag->fixed;
  objectives.resize(fixed.nbObjectives());
  decisions.resize(fixed.firstOperator);
  changedDecisions.resize(fixed.firstOperator);
  satisfiedConstraints.resize(fixed.nbConstraints());
  dag->propagation.addListener(this);
  changedDecisions.fill();
  try {
    save();
  } catch (...) {
    dag->propagation.removeListener(this);
    throw;
  }
}

Solution::~Solution() { dag->propagation.removeListener(this); }

void Solution::onCommit() {
  for (const NodeId id : dag->propagation.touchedDecisions) {
    const std::uint32_t p = dag->fixed.decisionPos[id];
    if (dag->tentativeValue[id] == decisions[p]) {
      changedDecisions.remove(p);
    } else {
      changedDecisions.add(p);
    }
  }
}

void Solution::save() {
  dag->propagation.catchUp(*dag);
  nbViolated = static_cast<std::uint32_t>(dag->propagation.committedNbViolated);
  const DagFixedFields& fixed = dag->fixed;
  for (std::uint32_t i = 0; i < fixed.nbObjectives(); ++i) objectives[i] = dag->nodeValue[fixed.objectives[i]];
  for (const std::uint32_t p : changedDecisions.members()) decisions[p] = dag->nodeValue[fixed.decisionList[p]];
  saveSatisfiedConstraints();
  changedDecisions.clear();
}

/// The smaller side of active and inactive is walked.
void Solution::saveSatisfiedConstraints() {
  const IndexedSet& active = dag->propagation.activeConstraints;
  if (active.count <= active.capacity - active.count) {
    satisfiedConstraints.clear();
    for (const std::uint32_t c : active.members()) satisfiedConstraints.add(c);
    return;
  }
  satisfiedConstraints.fill();
  for (std::uint32_t i = active.count; i < active.capacity; ++i) satisfiedConstraints.remove(active[i]);
}

int Solution::compare(const Solution& other) const {
  if (&dag->fixed != &other.dag->fixed) {
    raise<KernelException>(here<Solution>(), "Solutions do no share the same dag structure.");
  }
  if (nbViolated != other.nbViolated) return nbViolated < other.nbViolated ? 1 : -1;
  const DagFixedFields& fixed = dag->fixed;
  for (std::uint32_t i = 0; i < fixed.nbObjectives(); ++i) {
    if (isCellBetter(fixed, i, objectives[i], other.objectives[i])) return 1;
    if (isCellBetter(fixed, i, other.objectives[i], objectives[i])) return -1;
  }
  return 0;
}

void Solution::restore(Dag& target) const {
  if (&dag->fixed != &target.fixed) {
    raise<KernelException>(here<Solution>(), "Solutions do no share the same dag structure.");
  }
  Propagation& propagation = target.propagation;
  propagation.deactivateAllConstraints();
  for (std::uint32_t p = 0; p < decisions.size(); ++p) {
    propagation.setTentativeValue(target, target.fixed.decisionList[p], decisions[p]);
  }
  const bool evaluated =
      propagation.evaluateConstraints(target) && propagation.evaluateUpTo(target, propagation.optimizedLevel);
  if (evaluated) {
    propagation.commitAll(target);
    propagation.catchUp(target);
  }
  if (satisfiedConstraints.count == satisfiedConstraints.capacity) {
    propagation.activateAllConstraints();
  } else {
    for (const std::uint32_t c : satisfiedConstraints.members()) {
      propagation.activateConstraint(target, target.fixed.constraints[c]);
    }
  }
  if (!evaluated) {
    raise<KernelException>(here<Solution>(), "Cannot restore the solution : evaluation failed");
  }
}

}  // namespace quvex
