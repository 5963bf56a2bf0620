#include "solver/move/moveklforkcycle.h"

namespace quvex {

MoveKLForkCycle::MoveKLForkCycle(std::uint32_t size, std::uint32_t nbForks, std::uint32_t weight, std::uint32_t rate,
                                 AutonomousStructure& autonomous)
    : MoveChain(size, weight, rate, autonomous), forks(nbForks) {
  name = moveName(k, forks, "ForkCycle");
}

bool MoveKLForkCycle::apply() {
  if (sums().empty()) return false;
  const ChainEnd start = drawCycleStart();
  nbFlips = 0;
  ChainEnd end;
  if (!walkChain(start, k - 2, end)) return false;
  for (std::uint32_t i = 0; i < forks; ++i) {
    if (!addBranch(end, {start.sum, !start.increase})) return false;
  }
  return nbFlips > 0;
}

bool MoveKLForkCycle::addBranch(ChainEnd from, ChainEnd close) {
  ChainEnd branch;
  walkChain(from, 1, branch);
  if (branch.sum == kNone) return false;
  const NodeId link = structure.findLink(randomState, close.sum, branch.sum, close.increase, branch.increase);
  return link != kNone && flipDecision(link);
}

}  // namespace quvex
