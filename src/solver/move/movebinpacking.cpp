#include "solver/move/movebinpacking.h"

#include "solver/move/constraintnodebool.h"

namespace quvex {

MoveBinPacking::MoveBinPacking(std::uint32_t rate, std::uint32_t maxSteps, std::uint32_t maxFlips,
                               std::uint32_t violationSlack, AutonomousStructure& autonomous, Dag& moveDag)
    : Move(1, moveDag, autonomous.randomState),
      targetingRate(rate),
      repair(maxSteps, maxFlips, violationSlack, autonomous),
      structure(autonomous) {
  name = moveName(maxSteps, "BinPacking");
}

bool MoveBinPacking::apply() {
  if (structure.structures.staticNodes.empty()) return false;
  const std::uint32_t nbViolatedAtStart = structure.violatedNodes.count;
  StaticIndex anchor = targetedStart();
  if (structure.flippedDecisions.empty()) anchor = randomStart();
  return repair.run(nbViolatedAtStart, [this, anchor] { return transferStep(anchor); });
}

/// Climbs from a target to the top of a random path of the tree, and pushes that node up. A node that is true already
/// is pushed further, which breaks or tightens what lies under it.
StaticIndex MoveBinPacking::targetedStart() {
  const NodeId target = drawTarget(targetingRate);
  if (target == kNone) return kNone;
  DynamicConstraintNode* top = structure.dynamicBooleanOf(target);
  if (top == nullptr) return kNone;
  for (;;) {
    const ParentRange parents = dag.fixed.parentsOf(top->staticNode().nodeId);
    if (parents.empty()) break;
    const ParentLink link = parents[rand(randomState, parents.size())];
    DynamicConstraintNode* parent = structure.dynamicNodeOf(link.parent);
    if (parent == nullptr) break;
    top = parent;
  }
  for (std::uint32_t i = 1; i < repair.maxFlips; ++i) top->raise(randomState, false);
  return top->staticNode().index;
}

StaticIndex MoveBinPacking::randomStart() {
  const StaticIndex anchor = rand(randomState, static_cast<std::uint32_t>(structure.dynamicNodes.size()));
  for (std::uint32_t i = 0; i < repair.maxFlips; ++i) structure.dynamicNodes[anchor]->flip(randomState, false);
  return anchor;
}

bool MoveBinPacking::transferStep(StaticIndex anchor) {
  const IndexedSet& violated = structure.violatedNodes;
  if (violated.empty()) return false;
  const StaticIndex other = violated[rand(randomState, violated.count)];
  return repair.flipShared({structure.dynamicNodes[anchor].get()}, {structure.dynamicNodes[other].get()});
}

void MoveBinPacking::conclude(Outcome outcome) {
  repair.conclude(outcome);
  Move::conclude(outcome);
}

}  // namespace quvex
