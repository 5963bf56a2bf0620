#include "solver/move/movekflip.h"

#include "api/qvexception.h"

namespace quvex {

MoveKFlip::MoveKFlip(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous,
                     Dag& moveDag)
    : Move(weight, moveDag, autonomous.randomState), k(size), targetingRate(rate), structure(autonomous) {
  name = moveName(k, "Flip");
  if (targetingRate > 100) raise<KernelException>(here<MoveKFlip>(), "Targeting rate must be smaller than 100.");
  sample.reserve(k);
}

bool MoveKFlip::apply() {
  const DagStructures& structures = structure.structures;
  const auto n = static_cast<std::uint32_t>(structures.freeDecisions.size());
  if (k > n) return false;

  const NodeId target = drawTarget(targetingRate);
  const bool hasTarget = target != kNone && structures.membershipOf(target).isFree();
  if (k == 1) {
    dag.flip(hasTarget ? target : structures.freeDecisions[rand(randomState, n)]);
    return true;
  }
  resizeSample(hasTarget, n);
  if (hasTarget) dag.flip(target);
  // The target may be drawn once more: its second change is ignored, and the attempt changes one decision fewer.
  for (const std::uint32_t position : sample) dag.flip(structures.freeDecisions[position]);
  return true;
}

}  // namespace quvex
