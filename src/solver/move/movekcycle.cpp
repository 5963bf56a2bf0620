#include "solver/move/movekcycle.h"

namespace quvex {

MoveKCycle::MoveKCycle(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous)
    : MoveChain(size, weight, rate, autonomous) {
  name = moveName(k, "Cycle");
}

bool MoveKCycle::apply() {
  if (sums().empty()) return false;
  const ChainEnd start = drawCycleStart();
  nbFlips = 0;
  ChainEnd end;
  ChainEnd close;
  if (start.increase == rare(start.sum)) {
    walkChain(start, k - 1, end);
    close = {start.sum, !start.increase};
  } else {
    // A start against the rare side: the given decision comes first, and a step in the rare direction leaves the same
    // sum, so that the closing decision still meets what the sum needs.
    walkChain(start, k - 2, end);
    walkChain({start.sum, !start.increase}, 1, close);
    if (close.sum == kNone) return false;
  }
  if (end.sum == kNone) return false;
  const NodeId link = structure.findLink(randomState, close.sum, end.sum, close.increase, end.increase);
  if (link == kNone || !flipDecision(link)) return false;
  return nbFlips > 0;
}

}  // namespace quvex
