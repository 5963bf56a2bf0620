#include "solver/move/simulatedrepair.h"

namespace quvex {

SimulatedRepair::SimulatedRepair(std::uint32_t steps, std::uint32_t flips, std::uint32_t slack,
                                 AutonomousStructure& autonomous)
    : maxSteps(steps), maxFlips(flips), violationSlack(slack), structure(autonomous) {
  common.reserve(4);
}

void SimulatedRepair::undoSurplusFlips(std::uint32_t nbViolatedAtStart) {
  while (flipped().count >= maxFlips && violated().count >= nbViolatedAtStart + violationSlack) {
    if (flipped().empty()) return;
    structure.undoRandomFlip(state());
  }
}

void SimulatedRepair::conclude(Outcome outcome) {
  if (outcome == Outcome::Rejected || outcome == Outcome::Infeasible) structure.undoFlips();
}

bool SimulatedRepair::handOver(std::uint32_t nbViolatedAtStart) const {
  if (flipped().empty() || violated().count > nbViolatedAtStart) return false;
  Dag& dag = structure.dag;
  for (const BooleanIndex b : flipped().members()) dag.flip(dag.fixed.decisionList[b]);
  return true;
}

bool SimulatedRepair::repairStep() {
  const std::uint32_t n = violated().count;
  std::uint32_t i = rand(state(), n);
  DynamicConstraintNode* best = nullptr;
  std::uint32_t fewestWays = 0;
  for (std::uint32_t k = 0; k < n; ++k) {
    DynamicConstraintNode* node = structure.dynamicNodes[violated()[i]].get();
    const std::uint32_t nbWays = node->nbRaisable();
    if (best == nullptr || nbWays < fewestWays) {
      best = node;
      fewestWays = nbWays;
    }
    if (++i == n) i = 0;
  }
  return fewestWays != 0 && best->raise(state(), true);
}

bool SimulatedRepair::descendToFlat(Descent& at) const {
  while (!at.node->staticNode().isFlat(structure.structures)) {
    StaticIndex operand = kNone;
    if (!at.node->pickOperand(state(), at.direction, operand, at.direction)) return false;
    at.node = structure.dynamicNodes[operand].get();
  }
  return true;
}

bool SimulatedRepair::collectShared(const Descent& x, const Descent& y) {
  common.clear();
  const std::vector<StaticIndex>& ofX = x.node->staticNode().flatOperands;
  const std::vector<StaticIndex>& ofY = y.node->staticNode().flatOperands;
  if (ofX.empty() && ofY.empty()) {  // two decisions
    if (x.node == y.node) common.push_back(x.node->staticNode().index);
  } else if (ofX.empty()) {
    x.node->collectSelf(x.direction, ofY, common, 1);
  } else if (ofY.empty()) {
    y.node->collectSelf(y.direction, ofX, common, 1);
  } else if (x.node->nbWays(x.direction) != 0 && y.node->nbWays(y.direction) != 0) {
    x.node->collectCommon(state(), ofY, common, 1);
  }
  return !common.empty();
}

bool SimulatedRepair::flipShared(Descent x, Descent y) {
  if (!descendToFlat(x) || !descendToFlat(y) || !collectShared(x, y)) return false;
  return structure.dynamicNodes[common.front()]->flip(state(), true);
}

}  // namespace quvex
