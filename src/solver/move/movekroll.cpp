#include "solver/move/movekroll.h"

#include <algorithm>

namespace quvex {

MoveKRoll::MoveKRoll(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous)
    : MoveChain(size, weight, rate, autonomous) {
  name = moveName(k, "Roll");
}

bool MoveKRoll::apply() {
  const int size = static_cast<int>(nbSums());
  const int slack = static_cast<int>(nbSlackSums());
  const int length = static_cast<int>(k);
  if (size - slack < length) return false;

  const int first = slack + static_cast<int>(rand(randomState, static_cast<std::uint32_t>(size - slack)));
  // A roll takes operands away, so it starts only where most of them are at rest.
  if (rare(sums()[static_cast<std::size_t>(first)])) return false;
  nbFlips = 0;
  const int direction = coin(randomState) ? 1 : -1;
  const int stop = std::max(std::min(first + direction * (length - 1), size - 1), slack);
  if (stop == first) return false;
  return roll(first, stop, direction) && nbFlips > 0;
}

bool MoveKRoll::roll(int first, int stop, int direction) {
  const auto sumAt = [this](int position) { return sums()[static_cast<std::size_t>(position)]; };
  ChainEnd current{sumAt(first), false};
  int position = first + direction;
  for (;;) {
    const OperandPos p = randomCandidate({current.sum, false});
    if (p == kNone) return false;
    flipOperand(current.sum, p);
    if (!nextSum(current, p, current)) return false;

    NodeId target = sumAt(position);
    NodeId link = structure.findLink(randomState, current.sum, target, current.increase, true);
    if (link == kNone) {  // close the rotation early
      position = first;
      target = sumAt(first);
      link = structure.findLink(randomState, current.sum, target, current.increase, true);
      if (link == kNone) return false;
    }
    flipDecision(link);  // one that has changed already is passed over in silence

    current = {target, false};
    if (position == first) return true;
    position = position == stop ? first : position + direction;
  }
}

}  // namespace quvex
