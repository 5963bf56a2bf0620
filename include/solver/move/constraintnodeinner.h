#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/dag.h"
#include "solver/move/autonomousstructure.h"
#include "solver/move/dynamicconstraintnode.h"
#include "solver/move/staticconstraintnode.h"

namespace quvex {

/// A live constraint node above others: its fixed half, and the questions to its operands. An operand outside of the
/// tree, a constant, has a value but can't be moved.
class DynamicConstraintNodeInner : public DynamicConstraintNode {
 public:
  DynamicConstraintNodeInner(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf)
      : DynamicConstraintNode(owner), self(fixedHalf) {}

  [[nodiscard]] const StaticConstraintNode& staticNode() const final { return self; }

 protected:
  const StaticConstraintNode& self;

  [[nodiscard]] const DagFixedFields& fixed() const { return structure.dag.fixed; }
  [[nodiscard]] std::uint32_t nbOperands() const { return fixed().nbChildren[self.nodeId]; }
  /// Null for an operand outside of the tree.
  [[nodiscard]] DynamicConstraintNode* dynamicOperand(OperandPos p) const {
    return structure.dynamicNodeOf(fixed().child(self.nodeId, p));
  }
  /// The operand's value, or the raw cell of one outside of the tree. A nested sum of doubles counts 0 and a double
  /// constant as its bits: only values at creation suffer, since afterwards true differences are added.
  [[nodiscard]] std::int64_t operandValue(OperandPos p) const;
  [[nodiscard]] std::uint32_t nbOperandWays(Direction direction, OperandPos p) const;
  [[nodiscard]] bool canMoveOperand(Direction direction, OperandPos p) const { return nbOperandWays(direction, p) > 0; }

  /// False for an operand outside of the tree, and for no position at all.
  bool flipOperand(OperandPos p, RandomState& state, bool strict);
  bool moveOperand(Direction direction, OperandPos p, RandomState& state, bool strict);
  /// Puts the static index of the operand at `p` in `operand`. False as above.
  bool findOperand(OperandPos p, StaticIndex& operand) const;

  /// Up to three attempts, each with a choice of its own; true at the first success.
  template <class Attempt>
  static bool tryRepeatedly(Attempt attempt) {
    bool succeeded = false;
    for (int i = 0; i < 3 && !succeeded; ++i) succeeded = attempt();
    return succeeded;
  }
};

/// A live constraint node over any number of operands.
class DynamicConstraintNodeAggregate : public DynamicConstraintNodeInner {
 public:
  using DynamicConstraintNodeInner::DynamicConstraintNodeInner;

  void collectCommon(RandomState& state, std::span<const StaticIndex> list, std::vector<StaticIndex>& out,
                     std::uint32_t limit) const final;

 protected:
  [[nodiscard]] OperandPos randomPosition(RandomState& state) const { return rand(state, nbOperands()); }
};

/// Pushes the common entries of two sorted lists on `out`, until it holds more than `limit`.
void collectIntersection(std::span<const StaticIndex> a, std::span<const StaticIndex> b, std::vector<StaticIndex>& out,
                         std::uint32_t limit);

}  // namespace quvex
