#include "solver/move/autonomousstructure.h"
#include "solver/move/constraintnodebool.h"

namespace quvex {

AutonomousStructure::AutonomousStructure(Dag& threadDag, RandomState seed, const DagStructures& dagStructures)
    : dag(threadDag), structures(dagStructures), randomState(seed) {
  if (structures.constraintTreeBuilt) createDynamicNodes();
  dag.propagation.addListener(this);
}

AutonomousStructure::~AutonomousStructure() { dag.propagation.removeListener(this); }

void AutonomousStructure::createDynamicNodes() {
  const auto nbNodes = static_cast<std::uint32_t>(structures.staticNodes.size());
  violatedNodes.resize(nbNodes);
  flippedDecisions.resize(dag.fixed.nbBooleans);
  dynamicBooleans.assign(dag.fixed.nbBooleans, nullptr);

  dynamicNodes.reserve(nbNodes);
  for (const auto& node : structures.staticNodes) dynamicNodes.push_back(node->createDynamic(*this));
  for (BooleanIndex b = 0; b < dag.fixed.nbBooleans; ++b) {
    const StaticConstraintNodeBool* node = structures.staticNodeOfDecision[b];
    if (node != nullptr) dynamicBooleans[b] = static_cast<DynamicConstraintNodeBool*>(dynamicNodes[node->index].get());
  }
  for (StaticIndex s = 0; s < nbNodes; ++s) {
    if (dag.fixed.isConstraint(structures.staticNodes[s]->nodeId) && dynamicNodes[s]->value() == 0)
      violatedNodes.add(s);
  }
}

void AutonomousStructure::tellSimulation() {
  const DagFixedFields& fixed = dag.fixed;
  for (const NodeId d : dag.propagation.touchedDecisions) {
    if (fixed.nodeTypes[d] != NodeType::Boolean) continue;
    const BooleanIndex b = fixed.decisionPos[d];
    if (flippedDecisions.contains(b) || dynamicBooleans[b] == nullptr) continue;
    const bool isOne = dag.tentativeValue[d] != 0;
    if (isOne != (dag.nodeValue[d] != 0)) dynamicBooleans[b]->announce(isOne);
  }
}

void AutonomousStructure::undoFlip(BooleanIndex b) {
  dynamicBooleans[b]->announce(dag.nodeValue[dag.fixed.decisionList[b]] != 0);
}

void AutonomousStructure::undoFlips() {
  for (const BooleanIndex b : flippedDecisions.members()) undoFlip(b);
  flippedDecisions.clear();
}

void AutonomousStructure::undoRandomFlip(RandomState& state) {
  if (flippedDecisions.empty()) return;
  const BooleanIndex b = flippedDecisions[rand(state, flippedDecisions.count)];
  undoFlip(b);
  flippedDecisions.remove(b);
}

}  // namespace quvex
