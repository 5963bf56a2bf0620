#pragma once

#include <cstdint>
#include <span>

#include "solver/kernel/move.h"
#include "solver/move/autonomousstructure.h"

namespace quvex {

/// Where a walk stands: a sum, and whether the next change in it must raise it.
struct ChainEnd {
  NodeId sum = kNone;
  bool increase = false;

  friend bool operator==(const ChainEnd&, const ChainEnd&) = default;
};

/// A position in [from, to) of the list that holds another value than `exclude`: a random one, or the next behind it in
/// a circle; kNone if there is none.
[[nodiscard]] std::uint32_t pickOtherSum(RandomState& state, std::span<const NodeId> list, std::uint32_t from,
                                         std::uint32_t to, NodeId exclude);

/// Base of the moves that walk from sum to sum through shared decisions: each change unbalances a sum, and the next one
/// restores it. Candidates are those of the committed state, so what a change did to the next sum is told by the set
/// that its decision is in.
/// Invariant: no decision changes twice in one attempt; `nbFlips` counts the changes of the running attempt. An operand
/// that is no boolean decision is never changed and ends a walk like one that has changed already.
class MoveChain : public Move {
 public:
  static constexpr const char* kName = "quvex::MoveChain";

  /// Raises when the size is below 2. The rate is a percentage and is not checked.
  MoveChain(std::uint32_t size, std::uint32_t weight, std::uint32_t rate, AutonomousStructure& autonomous);

 protected:
  std::uint32_t k;
  std::uint32_t targetingRate;
  OperandPos firstOperand = kNone;  ///< in the first sum, the decision to change first; kNone for a drawn one
  AutonomousStructure& structure;
  std::uint32_t nbFlips = 0;

  /// Changes up to `count` decisions from `start` on. True if all changed and the walk can go on from `end`; otherwise
  /// false, with no sum in `end`. A count of 0 succeeds at `start`.
  bool walkChain(ChainEnd start, std::uint32_t count, ChainEnd& end);
  /// After the change of the operand at `position` of `current.sum`: another sum of that decision, an equality sum if
  /// there is one, and the direction that restores it. `next` may be the same object as `current`.
  bool nextSum(ChainEnd current, OperandPos position, ChainEnd& next);
  /// Changes an operand, a decision. False if that is not possible any more in this attempt.
  bool flipOperand(NodeId sum, OperandPos position) { return flipDecision(dag.child(sum, position)); }
  bool flipDecision(NodeId decision);

  /// A random operand whose change raises (or lowers) the sum, kNone if there is none.
  [[nodiscard]] OperandPos randomCandidate(ChainEnd end);
  [[nodiscard]] bool isIncreaseCandidate(NodeId sum, OperandPos position) const;
  /// The rare direction of a sum: true if at most half of its operands can raise it.
  [[nodiscard]] bool rare(NodeId sum) const;
  [[nodiscard]] bool canFlip(NodeId decision) const {
    return dag.fixed.nodeTypes[decision] == NodeType::Boolean && !dag.isSet(decision);
  }

  /// The start of paths, which begin in a sum with slack: by targeting, or drawn.
  [[nodiscard]] ChainEnd drawSlackStart();
  /// The start of cycles, in any sum: by targeting, preferring the equality sums of a decision that has several, or
  /// drawn and then in its rare direction.
  [[nodiscard]] ChainEnd drawCycleStart();
  /// The sums of the model in their stable order, slack sums first.
  [[nodiscard]] const std::vector<NodeId>& sums() const { return structure.structures.sums; }
  [[nodiscard]] std::uint32_t nbSums() const { return static_cast<std::uint32_t>(sums().size()); }
  [[nodiscard]] std::uint32_t nbSlackSums() const { return structure.structures.nbSlackSums; }

 private:
  bool walkStep(ChainEnd& end);
};

}  // namespace quvex
