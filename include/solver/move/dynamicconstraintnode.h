#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "solver/kernel/random.h"
#include "solver/kernel/types.h"
#include "solver/node/pickrequest.h"

namespace quvex {

class AutonomousStructure;
class StaticConstraintNode;

/// The live half of a vertex of the constraint tree, in one thread: its value in the simulation, what could move it,
/// and the ways down to a boolean decision that does.
///
/// Invariant: the value is that of the committed state with the simulated flips applied; it is kept by
/// `operandChanged` alone, never recomputed.
///
/// For those who derive:
/// - `flip`, `raise`, `lower` and `pickOperand` fail by returning false. A failed call may leave flips behind, which
/// the
///   move undoes with the rest.
/// - `strict` refuses at once when the node is already on the wanted side; otherwise the node is pushed further.
/// - every change of state ends in `notifyParents`.
/// - a refusal that needs no choice draws nothing, and a choice of one draws nothing.
class DynamicConstraintNode {
 public:
  AutonomousStructure& structure;

  explicit DynamicConstraintNode(AutonomousStructure& owner) : structure(owner) {}
  DynamicConstraintNode(const DynamicConstraintNode&) = delete;
  DynamicConstraintNode& operator=(const DynamicConstraintNode&) = delete;
  virtual ~DynamicConstraintNode() = default;

  /// An operand has a new value, and new abilities to rise and fall. Integer nodes override this one; double nodes
  /// inherit it, and it reaches them as doubles.
  virtual void operandChanged(OperandPos position, std::int64_t oldValue, std::int64_t newValue, bool canRaise,
                              bool canLower);
  /// The same from an operand whose value is a double. Integer nodes have none.
  virtual void operandChangedDouble(OperandPos position, double oldValue, double newValue, bool canRaise,
                                    bool canLower);

  [[nodiscard]] virtual const StaticConstraintNode& staticNode() const = 0;
  /// 0 for a sum of doubles, whose value is `valueDouble`.
  [[nodiscard]] virtual std::int64_t value() const = 0;
  [[nodiscard]] virtual double valueDouble() const { return static_cast<double>(value()); }

  /// Flips a decision below, so as to change, raise or lower the value.
  virtual bool flip(RandomState& state, bool strict) = 0;
  virtual bool raise(RandomState& state, bool strict) = 0;
  virtual bool lower(RandomState& state, bool strict) = 0;
  bool move(Direction direction, RandomState& state, bool strict) {
    return direction == Direction::Up ? raise(state, strict) : lower(state, strict);
  }

  /// How many immediate ways there are to raise or lower this node.
  [[nodiscard]] virtual std::uint32_t nbRaisable() const = 0;
  [[nodiscard]] virtual std::uint32_t nbLowerable() const = 0;
  [[nodiscard]] std::uint32_t nbWays(Direction direction) const {
    return direction == Direction::Up ? nbRaisable() : nbLowerable();
  }

  /// One step of descent: an operand that is in the tree, and the direction in which it moves this node as wanted.
  virtual bool pickOperand(RandomState& state, Direction direction, StaticIndex& operand,
                           Direction& operandDirection) = 0;
  /// A decision that can still go in the direction pushes itself on `out` if the sorted list holds it.
  virtual void collectSelf(Direction direction, std::span<const StaticIndex> list, std::vector<StaticIndex>& out,
                           std::uint32_t limit) const;
  /// Pushes what the sorted list and this node's `flatOperands` have in common, about `limit` of it.
  virtual void collectCommon(RandomState& state, std::span<const StaticIndex> list, std::vector<StaticIndex>& out,
                             std::uint32_t limit) const;

  /// Recomputes the state from the operands and raises on a difference. For debugging.
  virtual void check() const = 0;

 protected:
  /// Tells the simulation's violated set and the parents that serve a constraint. Nobody learns anything when the value
  /// stays the same, also when the abilities change. `self` is the kernel node of this one.
  void notifyParents(NodeId self, std::int64_t oldValue, std::int64_t newValue, bool canRaise, bool canLower);
  void notifyParents(NodeId self, double oldValue, double newValue, bool canRaise, bool canLower);

 private:
  /// Both forms; `tell` is the operation of the parents.
  template <class Value, class Tell>
  void spread(NodeId self, Value oldValue, Value newValue, Tell tell);
};

}  // namespace quvex
