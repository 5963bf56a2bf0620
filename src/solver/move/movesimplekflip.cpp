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
  if (k == 1) {  // by far the most frequent size needs no sample
    dag.flip(target != kNone ? target : dag.fixed.decisionList[rand(randomState, n)]);
  } else {
    flipSample(target, n);
  }
  return true;
}

void MoveSimpleKFlip::flipSample(NodeId target, std::uint32_t n) {
  sampleDistinct(randomState, n, target != kNone ? k - 1 : k, sample);
  if (target != kNone) dag.flip(target);
  for (const std::uint32_t position : sample) dag.flip(dag.fixed.decisionList[position]);
}

}  // namespace quvex
