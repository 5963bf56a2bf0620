#include "solver/move/moveejectionchain.h"

#include "solver/move/constraintnodebool.h"

namespace quvex {

MoveEjectionChain::MoveEjectionChain(std::uint32_t rate, std::uint32_t maxSteps, std::uint32_t maxFlips,
                                     std::uint32_t violationSlack, AutonomousStructure& autonomous, Dag& moveDag)
    : Move(1, moveDag, autonomous.randomState),
      targetingRate(rate),
      repair(maxSteps, maxFlips, violationSlack, autonomous),
      structure(autonomous) {
  name = moveName(maxSteps, "EjectionChain");
}

bool MoveEjectionChain::apply() {
  const std::uint32_t nbViolatedAtStart = structure.violatedNodes.count;
  targetedStart();
  if (structure.flippedDecisions.empty()) randomStart();
  return repair.run(nbViolatedAtStart, [this] { return transferStep(); });
}

/// Flips the target, and something under random parents of it.
void MoveEjectionChain::targetedStart() {
  const NodeId target = drawTarget(targetingRate);
  if (target == kNone) return;
  DynamicConstraintNodeBool* decision = structure.dynamicBooleanOf(target);
  if (decision == nullptr) return;
  decision->flip(randomState, true);

  const ParentRange parents = dag.fixed.parentsOf(target);
  if (parents.empty()) return;
  for (std::uint32_t i = 1; i < repair.maxFlips; ++i) {
    const ParentLink link = parents[rand(randomState, parents.size())];
    if (DynamicConstraintNode* parent = structure.dynamicNodeOf(link.parent)) parent->flip(randomState, true);
  }
}

void MoveEjectionChain::randomStart() {
  const auto nbNodes = static_cast<std::uint32_t>(structure.dynamicNodes.size());
  DynamicConstraintNode& node = *structure.dynamicNodes[rand(randomState, nbNodes)];
  for (std::uint32_t i = 0; i < repair.maxFlips; ++i) node.flip(randomState, true);
}

bool MoveEjectionChain::transferStep() {
  const IndexedSet& violated = structure.violatedNodes;
  const std::uint32_t n = violated.count;
  if (n < 2) return false;
  const std::uint32_t a = rand(randomState, n);
  std::uint32_t b = a + 1 + rand(randomState, n - 1);
  if (b >= n) b -= n;
  return repair.flipShared({structure.dynamicNodes[violated[a]].get()}, {structure.dynamicNodes[violated[b]].get()});
}

void MoveEjectionChain::conclude(Outcome outcome) {
  repair.conclude(outcome);
  Move::conclude(outcome);
}

}  // namespace quvex
