#include "solver/move/movechain.h"

#include "api/qvexception.h"
#include "solver/kernel/node.h"

namespace quvex {

std::uint32_t pickOtherSum(RandomState& state, std::span<const NodeId> list, std::uint32_t from, std::uint32_t to,
                           NodeId exclude) {
  if (to <= from) return kNone;
  std::uint32_t p = from + rand(state, to - from);
  for (std::uint32_t steps = to - from; steps > 0 && list[p] == exclude; --steps) {
    p = p + 1 < to ? p + 1 : from;
  }
  return list[p] == exclude ? kNone : p;
}

MoveChain::MoveChain(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous)
    : Move(weight, autonomous.dag, autonomous.randomState), k(size), targetingRate(rate), structure(autonomous) {
  if (k < 2) raise<KernelException>(here<MoveChain>(), "Invalid k-chain. k must be >= 2");
  name = moveName(k, "Path");
}

bool MoveChain::walkChain(ChainEnd start, std::uint32_t count, ChainEnd& end) {
  end = start;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (walkStep(end)) continue;
    end.sum = kNone;
    return false;
  }
  return true;
}

bool MoveChain::walkStep(ChainEnd& end) {
  const bool isGiven = nbFlips == 0 && firstOperand != kNone;
  const OperandPos p = isGiven ? firstOperand : randomCandidate(end);
  return p != kNone && flipOperand(end.sum, p) && nextSum(end, p, end);
}

bool MoveChain::nextSum(ChainEnd current, OperandPos position, ChainEnd& next) {
  const NodeId decision = dag.child(current.sum, position);
  if (dag.fixed.nodeTypes[decision] != NodeType::Boolean) return false;
  const Membership membership = structure.structures.membershipOf(decision);
  std::uint32_t j = pickOtherSum(randomState, membership.sums, membership.nbSlack, membership.size(), current.sum);
  if (j == kNone) j = pickOtherSum(randomState, membership.sums, 0, membership.nbSlack, current.sum);
  if (j == kNone) return false;
  const NodeId sum = membership.sums[j];
  // A decision that could lower the sum in the committed state has just done so: the next change must raise it.
  next = {sum, dag.nodes[sum]->isDecreaseCandidate(dag, sum, membership.positions[j])};
  return true;
}

bool MoveChain::flipDecision(NodeId decision) {
  if (!canFlip(decision)) return false;
  dag.flip(decision);
  ++nbFlips;
  return true;
}

OperandPos MoveChain::randomCandidate(ChainEnd end) {
  const Node& node = *dag.nodes[end.sum];
  return end.increase ? node.randomIncreaseCandidate(dag, randomState, end.sum)
                      : node.randomDecreaseCandidate(dag, randomState, end.sum);
}

bool MoveChain::isIncreaseCandidate(NodeId sum, OperandPos position) const {
  return dag.nodes[sum]->isIncreaseCandidate(dag, sum, position);
}

bool MoveChain::rare(NodeId sum) const {
  return std::uint64_t{2} * dag.nodes[sum]->nbIncreaseCandidates(dag, sum) <= dag.fixed.nbChildren[sum];
}

ChainEnd MoveChain::drawSlackStart() {
  firstOperand = kNone;
  if (const NodeId target = drawTarget(targetingRate); target != kNone) {
    const Membership membership = structure.structures.membershipOf(target);
    if (membership.nbSlack > 0) {
      const std::uint32_t j = rand(randomState, membership.nbSlack);
      firstOperand = membership.positions[j];
      return {membership.sums[j], isIncreaseCandidate(membership.sums[j], firstOperand)};
    }
  }
  const NodeId sum = sums()[rand(randomState, nbSlackSums())];
  const bool bit = coin(randomState);
  return {sum, !bit};
}

ChainEnd MoveChain::drawCycleStart() {
  firstOperand = kNone;
  if (const NodeId target = drawTarget(targetingRate); target != kNone) {
    const Membership membership = structure.structures.membershipOf(target);
    if (membership.size() > 0) {
      const std::uint32_t nbEquality = membership.nbEquality();
      const std::uint32_t j =
          nbEquality < 2 ? rand(randomState, membership.size()) : membership.nbSlack + rand(randomState, nbEquality);
      firstOperand = membership.positions[j];
      return {membership.sums[j], isIncreaseCandidate(membership.sums[j], firstOperand)};
    }
  }
  const NodeId sum = sums()[rand(randomState, nbSums())];
  return {sum, rare(sum)};
}

}  // namespace quvex
