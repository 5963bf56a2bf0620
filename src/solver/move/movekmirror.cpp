#include "solver/move/movekmirror.h"

#include <algorithm>

namespace quvex {

MoveKMirror::MoveKMirror(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous)
    : MoveChain(size, weight, rate, autonomous) {
  name = moveName(k, "Mirror");
}

bool MoveKMirror::apply() {
  const std::uint32_t size = nbSums();
  const std::uint32_t slack = nbSlackSums();
  if (static_cast<int>(size - slack) < static_cast<int>(k)) return false;

  const std::uint32_t i = slack + rand(randomState, size - slack);
  const bool forward = coin(randomState);
  // Unsigned on purpose: a run that would begin before position 0 wraps to a huge number and so ends at the last sum,
  // which may make it longer than k. Searches are reproduced by their seed, so this must not be clipped at 0.
  std::uint32_t j = forward ? i + (k - 1) : i - (k - 1);
  if (j >= size) j = size - 1;
  j = std::max(j, slack);
  if (j == i) return false;

  std::uint32_t a = std::min(i, j);
  std::uint32_t b = std::max(i, j);
  if (rare(sums()[a]) || rare(sums()[b])) return false;
  nbFlips = 0;
  for (; a < b; ++a, --b) {
    if (!exchange(sums()[a], sums()[b])) return false;
  }
  return nbFlips > 0;
}

bool MoveKMirror::exchange(NodeId a, NodeId b) {
  const OperandPos fromA = randomCandidate({a, false});
  if (fromA == kNone) return false;
  flipOperand(a, fromA);
  const OperandPos fromB = randomCandidate({b, false});
  if (fromB == kNone) return false;
  flipOperand(b, fromB);

  ChainEnd nextA;
  ChainEnd nextB;
  if (!nextSum({a, false}, fromA, nextA)) return false;
  if (!nextSum({b, false}, fromB, nextB)) return false;

  const NodeId linkA = structure.findLink(randomState, a, nextB.sum, true, nextB.increase);
  if (linkA == kNone) return false;
  const NodeId linkB = structure.findLink(randomState, b, nextA.sum, true, nextA.increase);
  if (linkB == kNone) return false;
  flipDecision(linkA);
  flipDecision(linkB);
  return true;
}

}  // namespace quvex
