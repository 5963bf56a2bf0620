#include "solver/kernel/greedysolution.h"

#include "api/qvexception.h"
#include "solver/kernel/dag.h"

namespace quvex {

bool GreedySolution::computeSolution(Dag& dag) {
  if (!dag.initialized) {
    raise<KernelException>(here<GreedySolution>(), "Cannot compute a solution on a uninitialized dag");
  }
  Propagation& propagation = dag.propagation;
  propagation.activateSatisfiedConstraints(dag);
  if (propagation.committedNbViolated == 0 && !alwaysRun) return true;
  const std::uint32_t nbBooleans = dag.fixed.nbBooleans;
  IndexedSet positions(nbBooleans);  // the first `visited` entries are done
  for (std::uint32_t visited = 0; visited < nbBooleans; ++visited) {
    positions.exchange(visited, visited + rand(seedState, nbBooleans - visited));
    const NodeId id = dag.fixed.decisionList[positions[visited]];
    if (dag.tentativeValue[id] != 1) tryToSet(dag, id);
  }
  propagation.check(dag);
  return propagation.allConstraintsActive();
}

void GreedySolution::tryToSet(Dag& dag, NodeId id) {
  Propagation& propagation = dag.propagation;
  propagation.setTentativeValue(dag, id, 1);
  const bool kept = propagation.evaluateConstraints(dag) && propagation.evaluateUpTo(dag, propagation.optimizedLevel) &&
                    propagation.tentativeNbViolated <= propagation.committedNbViolated;
  if (!kept) {
    propagation.rollbackAll(dag);
    return;
  }
  propagation.commitAll(dag);
  propagation.activateRepairedConstraints(dag);
}

}  // namespace quvex
