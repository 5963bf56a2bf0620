#pragma once

#include "solver/move/dynamicconstraintnode.h"
#include "solver/move/staticconstraintnode.h"

namespace quvex {

/// A boolean decision: a leaf of the constraint tree.
class StaticConstraintNodeBool final : public StaticConstraintNode {
 public:
  BooleanIndex decisionIndex;

  StaticConstraintNodeBool(StaticIndex ownIndex, NodeId kernelNode, BooleanIndex ownDecision)
      : StaticConstraintNode(ownIndex, kernelNode), decisionIndex(ownDecision) {}

  [[nodiscard]] std::unique_ptr<DynamicConstraintNode> createDynamic(AutonomousStructure& structure) const override;
  /// "bool{" and the index.
  void printTree(const DagStructures& structures) const override;
  [[nodiscard]] bool isFlat(const DagStructures&) const override { return true; }
};

/// A boolean decision in the simulation, where every descent ends.
/// Invariant: no state but its place in the tree. The value is the committed one, inverted if the decision is among the
/// simulated flips, so a commit that empties that set leaves all values right at once. A decision flips at most once
/// per simulation.
class DynamicConstraintNodeBool final : public DynamicConstraintNode {
 public:
  static constexpr const char* kName = "quvex::DynamicConstraintNodeBool";

  DynamicConstraintNodeBool(AutonomousStructure& owner, const StaticConstraintNodeBool& fixedHalf)
      : DynamicConstraintNode(owner),
        index(fixedHalf.index),
        nodeId(fixedHalf.nodeId),
        decisionIndex(fixedHalf.decisionIndex) {}

  /// Tells the tree that the decision goes to `newValue` in the simulation.
  void announce(bool newValue) {
    notifyParents(nodeId, std::int64_t{!newValue}, std::int64_t{newValue}, !newValue, newValue);
  }

  [[nodiscard]] const StaticConstraintNode& staticNode() const override;
  [[nodiscard]] std::int64_t value() const override { return isOne() ? 1 : 0; }

  bool flip(RandomState& state, bool strict) override;
  bool raise(RandomState& state, bool strict) override { return !isOne() && flip(state, strict); }
  bool lower(RandomState& state, bool strict) override { return isOne() && flip(state, strict); }
  [[nodiscard]] std::uint32_t nbRaisable() const override { return isOne() ? 0 : 1; }
  [[nodiscard]] std::uint32_t nbLowerable() const override { return isOne() ? 1 : 0; }

  bool pickOperand(RandomState&, Direction, StaticIndex&, Direction&) override { return false; }
  void collectSelf(Direction direction, std::span<const StaticIndex> list, std::vector<StaticIndex>& out,
                   std::uint32_t limit) const override;
  void collectCommon(RandomState& state, std::span<const StaticIndex> list, std::vector<StaticIndex>& out,
                     std::uint32_t limit) const override;
  /// There is nothing to check.
  void check() const override {}

 private:
  // Copies from the fixed half, since a flip of one of very many decisions mostly waits for memory.
  StaticIndex index;
  NodeId nodeId;
  BooleanIndex decisionIndex;

  [[nodiscard]] bool isOne() const;
};

}  // namespace quvex
