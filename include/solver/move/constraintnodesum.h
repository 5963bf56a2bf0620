#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include "api/qvexception.h"
#include "solver/kernel/subsetchoice.h"
#include "solver/move/constraintnodeinner.h"
#include "solver/move/staticaggregate.h"
#include "solver/node/weights.h"

namespace quvex {

/// The four sums: over integers or doubles, of operands as they are or each times a coefficient (`Weight`).
///
/// Invariant: `total` is the start value plus all changes since; `raisable` and `lowerable` hold the positions of the
/// operands that could move the sum up or down when they last told a change. A coefficient of (nearly) 0 moves nothing.
template <class Derived, class Set, class Weight>
class DynamicSumNode : public DynamicConstraintNodeAggregate {
 public:
  DynamicSumNode(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);

  void operandChanged(OperandPos position, std::int64_t oldValue, std::int64_t newValue, bool canRaise,
                      bool canLower) final;
  void operandChangedDouble(OperandPos position, double oldValue, double newValue, bool canRaise, bool canLower) final;
  [[nodiscard]] std::int64_t value() const final;
  [[nodiscard]] double valueDouble() const final { return static_cast<double>(total); }

  bool flip(RandomState& state, bool strict) final;
  bool raise(RandomState& state, bool strict) final { return moveSum(Direction::Up, state, strict); }
  bool lower(RandomState& state, bool strict) final { return moveSum(Direction::Down, state, strict); }
  [[nodiscard]] std::uint32_t nbRaisable() const final { return raisable.size(); }
  [[nodiscard]] std::uint32_t nbLowerable() const final { return lowerable.size(); }

  bool pickOperand(RandomState& state, Direction direction, StaticIndex& operand, Direction& operandDirection) final;
  void check() const final;

 private:
  using Cells = typename Weight::Cells;
  using Value = typename Cells::Value;
  static constexpr bool kIsDouble = std::is_same_v<Value, double>;

  Value total = 0;
  Set raisable;
  Set lowerable;

  [[nodiscard]] bool isPositive(OperandPos p) const;
  [[nodiscard]] bool isNegative(OperandPos p) const;
  /// How the operand must go for the sum to go in the direction.
  [[nodiscard]] Direction operandToward(Direction direction, OperandPos p) const {
    return isPositive(p) ? direction : opposite(direction);
  }
  /// Whether an operand of these abilities can move the sum.
  [[nodiscard]] bool canRaiseSum(OperandPos p, bool canRaise, bool canLower) const {
    return (isPositive(p) && canRaise) || (isNegative(p) && canLower);
  }
  [[nodiscard]] bool canLowerSum(OperandPos p, bool canRaise, bool canLower) const {
    return (isNegative(p) && canRaise) || (isPositive(p) && canLower);
  }
  [[nodiscard]] const Set& movers(Direction direction) const {
    return direction == Direction::Up ? raisable : lowerable;
  }

  /// What the operand adds to the total at creation.
  [[nodiscard]] Value startTerm(OperandPos p) const {
    return Weight::term(fixed(), self.nodeId, p, static_cast<Value>(operandValue(p)));
  }
  void setAbilities(OperandPos p, bool canRaise, bool canLower);
  void follow(OperandPos p, Value oldValue, Value newValue, bool canRaise, bool canLower);
  bool moveTerm(Direction direction, OperandPos p, RandomState& state, bool strict);
  bool moveSum(Direction direction, RandomState& state, bool strict);
  [[noreturn]] void failCheck(const Place& place, int number, bool isTotal) const;
};

/// The number or sum of integer operands in the simulation.
template <class Set>
class DynamicConstraintNodeSum final : public DynamicSumNode<DynamicConstraintNodeSum<Set>, Set, Plain<IntegerCells>> {
 public:
  static constexpr const char* kClass = "DynamicConstraintNodeSum";
  static constexpr bool kNamesItself = true;
  static inline const std::string kName = nameOver<Set>("quvex::DynamicConstraintNodeSum");

  DynamicConstraintNodeSum(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);
};

/// The sum of integer operands times their coefficients in the simulation.
template <class Set>
class DynamicConstraintNodeScalarSum final
    : public DynamicSumNode<DynamicConstraintNodeScalarSum<Set>, Set, Scaled<IntegerCells>> {
 public:
  static constexpr const char* kClass = "DynamicConstraintNodeScalarSum";
  static constexpr bool kNamesItself = false;
  static inline const std::string kName = nameOver<Set>("quvex::DynamicConstraintNodeScalarSum");

  DynamicConstraintNodeScalarSum(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);
};

/// The sum of operands as doubles in the simulation.
template <class Set>
class DynamicConstraintNodeDoubleSum final
    : public DynamicSumNode<DynamicConstraintNodeDoubleSum<Set>, Set, Plain<DoubleCells>> {
 public:
  static constexpr const char* kClass = "DynamicConstraintNodeDoubleSum";
  static constexpr bool kNamesItself = true;
  static inline const std::string kName = nameOver<Set>("quvex::DynamicConstraintNodeDoubleSum");

  DynamicConstraintNodeDoubleSum(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);
};

/// The sum of operands as doubles times their coefficients in the simulation.
template <class Set>
class DynamicConstraintNodeDoubleScalarSum final
    : public DynamicSumNode<DynamicConstraintNodeDoubleScalarSum<Set>, Set, Scaled<DoubleCells>> {
 public:
  static constexpr const char* kClass = "DynamicConstraintNodeDoubleScalarSum";
  static constexpr bool kNamesItself = true;
  static inline const std::string kName = nameOver<Set>("quvex::DynamicConstraintNodeDoubleScalarSum");

  DynamicConstraintNodeDoubleScalarSum(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);
};

QUVEX_OVER_SUBSETS(extern template, DynamicConstraintNodeSum);
QUVEX_OVER_SUBSETS(extern template, DynamicConstraintNodeScalarSum);
QUVEX_OVER_SUBSETS(extern template, DynamicConstraintNodeDoubleSum);
QUVEX_OVER_SUBSETS(extern template, DynamicConstraintNodeDoubleScalarSum);

/// The fixed half of "boolean_sum" and "sum".
class StaticConstraintNodeSum final : public StaticAggregate<StaticConstraintNodeSum, DynamicConstraintNodeSum> {
 public:
  static constexpr const char* kWord = "sum(";
  using StaticAggregate::StaticAggregate;
};

/// The fixed half of "scalar_sum".
class StaticConstraintNodeScalarSum final
    : public StaticAggregate<StaticConstraintNodeScalarSum, DynamicConstraintNodeScalarSum> {
 public:
  static constexpr const char* kWord = "scalarsum(";
  using StaticAggregate::StaticAggregate;
};

/// The fixed half of "double_sum".
class StaticConstraintNodeDoubleSum final
    : public StaticAggregate<StaticConstraintNodeDoubleSum, DynamicConstraintNodeDoubleSum> {
 public:
  static constexpr const char* kWord = "doublesum(";
  using StaticAggregate::StaticAggregate;
};

/// The fixed half of "double_scalar_sum".
class StaticConstraintNodeDoubleScalarSum final
    : public StaticAggregate<StaticConstraintNodeDoubleScalarSum, DynamicConstraintNodeDoubleScalarSum> {
 public:
  static constexpr const char* kWord = "doublescalarsum(";
  using StaticAggregate::StaticAggregate;
};

}  // namespace quvex
