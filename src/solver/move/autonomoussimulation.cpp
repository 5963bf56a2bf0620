#include "solver/move/autonomousstructure.h"

namespace quvex {

/// A node of the simulation. A model without a tree has none.
class DynamicConstraintNode {
 public:
  virtual ~DynamicConstraintNode() = default;
};

AutonomousStructure::AutonomousStructure(Dag& threadDag, RandomState seed, const DagStructures& dagStructures)
    : dag(threadDag), structures(dagStructures), randomState(seed) {
  if (structures.constraintTreeBuilt) createDynamicNodes();
  dag.propagation.addListener(this);
}

AutonomousStructure::~AutonomousStructure() { dag.propagation.removeListener(this); }

void AutonomousStructure::createDynamicNodes() {}
void AutonomousStructure::tellSimulation() {}
void AutonomousStructure::undoFlips() { flippedDecisions.clear(); }
void AutonomousStructure::undoRandomFlip(RandomState&) {}

}  // namespace quvex
