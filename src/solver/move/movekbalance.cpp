#include "solver/move/movekbalance.h"

#include "solver/kernel/node.h"

namespace quvex {

MoveKBalance::MoveKBalance(std::uint32_t size, std::uint32_t weight, AutonomousStructure& autonomous, Dag& moveDag)
    : Move(weight, moveDag, autonomous.randomState), k(size) {
  name = moveName(k, "Balance");
  sample.reserve(k);
}

bool MoveKBalance::apply() {
  const DagFixedFields& fixed = dag.fixed;
  const std::uint32_t n = fixed.nbOperators;
  if (k > n) return false;

  sampleDistinct(randomState, n, k, sample);
  bool changed = false;
  for (const std::uint32_t position : sample) {
    if (balance(fixed.decisionList[fixed.firstOperator + position])) changed = true;
  }
  return changed;
}

bool MoveKBalance::balance(NodeId id) {
  if (dag.fixed.nodeLevel[id] > dag.propagation.optimizedLevel) return false;
  const Node& node = *dag.nodes[id];
  NodeId lowering = kNone;
  NodeId raising = kNone;
  int delta = 0;
  if (!node.pickDecrease(dag, randomState, lowering, delta, id)) return false;
  if (!node.pickIncrease(dag, randomState, raising, delta, id)) return false;
  if (lowering == raising) return false;
  dag.flip(lowering);
  dag.flip(raising);
  return true;
}

}  // namespace quvex
