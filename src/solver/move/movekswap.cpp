#include "solver/move/movekswap.h"

#include "solver/kernel/node.h"

namespace quvex {

MoveKSwap::MoveKSwap(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous,
                     Dag& moveDag)
    : MoveKFlip(size, weight, rate, autonomous, moveDag) {
  name = moveName(k, "Swap");
}

bool MoveKSwap::apply() {
  const std::vector<NodeId>& swappable = structure.structures.swappableDecisions;
  const auto n = static_cast<std::uint32_t>(swappable.size());
  if (std::uint64_t{2} * k > n) return false;

  const NodeId target = drawSwappableTarget();
  // The test is against node 0, not against "none": an attempt without a target draws one pair fewer (none at all for
  // k of 1), and one whose target is node 0 draws them all. Searches are reproduced by their seed, so this stays.
  resizeSample(target != 0, n);
  if (target != kNone) swap(target);
  for (const std::uint32_t position : sample) swap(swappable[position]);
  return true;
}

NodeId MoveKSwap::drawSwappableTarget() {
  const NodeId target = drawTarget(targetingRate);
  if (target == kNone) return kNone;
  return structure.structures.membershipOf(target).isSwappable() ? target : kNone;
}

void MoveKSwap::swap(NodeId decision) {
  dag.flip(decision);
  const Membership membership = structure.structures.membershipOf(decision);
  const std::uint32_t n = membership.size();
  const std::uint32_t j = n <= membership.nbSlack ? rand(randomState, n) : n - 1;
  const NodeId sum = membership.sums[j];
  const Node& node = *dag.nodes[sum];
  // Candidates are those of the committed state, so the decision itself is not among its partners.
  const OperandPos p = node.isIncreaseCandidate(dag, sum, membership.positions[j])
                           ? node.randomDecreaseCandidate(dag, randomState, sum)
                           : node.randomIncreaseCandidate(dag, randomState, sum);
  if (p == kNone) return;
  const NodeId partner = dag.child(sum, p);
  if (dag.fixed.nodeTypes[partner] == NodeType::Boolean) dag.flip(partner);
}

}  // namespace quvex
