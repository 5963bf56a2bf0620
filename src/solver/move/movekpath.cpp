#include "solver/move/movekpath.h"

namespace quvex {

MoveKPath::MoveKPath(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous)
    : MoveChain(size, weight, rate, autonomous) {
  name = moveName(k, "Path");
}

bool MoveKPath::apply() {
  if (nbSlackSums() == 0) return false;
  const ChainEnd start = drawSlackStart();
  nbFlips = 0;
  ChainEnd end;
  if (!walkChain(start, k - 1, end) || end.sum == kNone) return false;
  const OperandPos p = randomCandidate(end);
  if (p == kNone) return false;
  flipOperand(end.sum, p);
  return nbFlips > 0;
}

}  // namespace quvex
