#include "solver/move/movesimplekflip.h"

namespace quvex {

MoveSimpleKFlip::MoveSimpleKFlip(std::uint32_t size, std::uint32_t weight, std::uint32_t rate,
                                 AutonomousStructure& autonomous, Dag& moveDag)
    : Move(weight, moveDag, autonomous.randomState), k(size), targetingRate(rate) {
  name = moveName(k, "SimpleFlip");
  sample.reserve(k);
}

bool MoveSimpleKFlip::apply() {
  const std::uint32_t n = dag.fixed.nbBooleans;
  if (k > n) return false;

  const NodeId target = drawTarget(targetingRate);
  resizeSample(target != kNone, n);
  if (target != kNone) dag.flip(target);
  for (const std::uint32_t position : sample) dag.flip(dag.fixed.decisionList[position]);
  return true;
}

}  // namespace quvex
