#include "solver/move/moveklforkpath.h"

namespace quvex {

MoveKLForkPath::MoveKLForkPath(std::uint32_t size, std::uint32_t nbForks, std::uint32_t weight, std::uint32_t rate,
                               AutonomousStructure& autonomous)
    : MoveChain(size, weight, rate, autonomous), forks(nbForks) {
  name = moveName(k, forks, "ForkPath");
}

bool MoveKLForkPath::apply() {
  if (nbSlackSums() == 0) return false;
  const ChainEnd start = drawSlackStart();
  nbFlips = 0;
  ChainEnd end;
  if (!walkChain(start, k - 2, end)) return false;
  for (std::uint32_t i = 0; i < forks; ++i) {
    if (!addBranch(end)) return false;
  }
  return nbFlips > 0;
}

bool MoveKLForkPath::addBranch(ChainEnd from) {
  ChainEnd branch;
  if (!walkChain(from, 1, branch) || branch.sum == kNone) return false;
  const OperandPos p = randomCandidate(branch);
  if (p == kNone) return false;
  flipOperand(branch.sum, p);  // a decision that has changed already leaves the branch open, and the attempt goes on
  return true;
}

}  // namespace quvex
