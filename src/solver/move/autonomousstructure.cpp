#include "solver/move/autonomousstructure.h"

#include "solver/kernel/node.h"
#include "solver/move/gallop.h"

namespace quvex {

void AutonomousStructure::onCommit() {
  if (structures.constraintTreeBuilt) tellSimulation();
  flippedDecisions.clear();
}

NodeId AutonomousStructure::findLink(RandomState& state, NodeId a, NodeId b, bool riseA, bool riseB) const {
  const std::uint32_t nbOperands = dag.fixed.nbChildren[a];
  if (a == b) return riseA == riseB ? dag.child(a, rand(state, nbOperands)) : kNone;

  if (const auto answer = tryCandidate(a, b, riseA, riseB)) return *answer;
  if (const auto answer = tryCandidate(b, a, riseB, riseA)) return *answer;

  // Starting at a random candidate and wrapping around spreads the choice when several links exist.
  const Node& node = *dag.nodes[a];
  const OperandPos p =
      riseA ? node.randomIncreaseCandidate(dag, state, a) : node.randomDecreaseCandidate(dag, state, a);
  if (p == kNone) return kNone;
  const NodeId link = scanForLink(p, nbOperands - 1, a, b, riseA, riseB);
  if (link != kNone || p == 0) return link;
  return scanForLink(0, p - 1, a, b, riseA, riseB);
}

std::optional<NodeId> AutonomousStructure::tryCandidate(NodeId a, NodeId b, bool riseA, bool riseB) const {
  // Both counts are asked of `a`, and the candidate is its first increase candidate whatever the flags. The search of
  // a given seed depends on this lopsided rule, so it stays.
  const Node& node = *dag.nodes[a];
  if (riseA && node.nbIncreaseCandidates(dag, a) != 1) return std::nullopt;
  if (riseB && node.nbDecreaseCandidates(dag, a) != 1) return std::nullopt;

  const OperandPos q = node.increaseCandidateAt(dag, a, 0);
  if (q >= dag.fixed.nbChildren[a]) return kNone;
  const NodeId candidate = dag.child(a, q);
  const std::span<const NodeId> operands = dag.fixed.childrenOf(b);
  const auto nbOperands = static_cast<OperandPos>(operands.size());
  const OperandPos r = lowerBound(operands, candidate, 0, nbOperands);
  if (r < nbOperands && operands[r] == candidate && fits(b, r, riseB)) return candidate;
  return kNone;
}

NodeId AutonomousStructure::scanForLink(OperandPos from, OperandPos to, NodeId a, NodeId b, bool riseA,
                                        bool riseB) const {
  if (from > to) return kNone;
  const std::span<const NodeId> operandsA = dag.fixed.childrenOf(a);
  const std::span<const NodeId> operandsB = dag.fixed.childrenOf(b);
  const auto n = static_cast<OperandPos>(operandsB.size());
  OperandPos i = from;
  OperandPos j = 0;
  while (j < n) {
    const NodeId x = operandsA[i];
    j = gallop(operandsB, x, j, n - 1);
    if (j == kNone) return kNone;
    if (operandsB[j] == x) {
      if (fits(a, i, riseA) && fits(b, j, riseB)) return x;
      ++j;
    }
    if (++i > to) return kNone;

    if (j < n) {
      const NodeId y = operandsB[j];
      i = gallop(operandsA, y, i, to);
      if (i == kNone) return kNone;
      if (operandsA[i] == y) {
        if (fits(b, j, riseB) && fits(a, i, riseA)) return y;
        ++i;
      }
      ++j;
    }
    if (i > to) return kNone;
  }
  return kNone;
}

bool AutonomousStructure::fits(NodeId sum, OperandPos p, bool rise) const {
  return dag.nodes[sum]->isIncreaseCandidate(dag, sum, p) == rise;
}

}  // namespace quvex
