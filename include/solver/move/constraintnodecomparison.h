#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>

#include "solver/move/constraintnodeinner.h"
#include "solver/node/cells.h"

namespace quvex {

/// The three relations of operand 0 to operand 1, as tests of the difference, operand 1 minus operand 0, and the
/// direction in which the difference must go to make the relation hold or break.
struct LeqRelation {
  /// Whether a node on the wanted side refuses also when it may be pushed further.
  static constexpr bool kNeverPushed = false;

  template <class Numbers>
  [[nodiscard]] static bool holds(typename Numbers::Value difference) {
    return Numbers::greaterOrEqual(difference, 0);
  }
  template <class Value>
  [[nodiscard]] static Direction raising(Value) {
    return Direction::Up;
  }
  /// None if either direction breaks the relation.
  [[nodiscard]] static std::optional<Direction> lowering() { return Direction::Down; }
};

struct GeqRelation {
  static constexpr bool kNeverPushed = false;

  template <class Numbers>
  [[nodiscard]] static bool holds(typename Numbers::Value difference) {
    return Numbers::greaterOrEqual(0, difference);
  }
  template <class Value>
  [[nodiscard]] static Direction raising(Value) {
    return Direction::Down;
  }
  [[nodiscard]] static std::optional<Direction> lowering() { return Direction::Up; }
};

struct EqRelation {
  static constexpr bool kNeverPushed = true;

  template <class Numbers>
  [[nodiscard]] static bool holds(typename Numbers::Value difference) {
    return Numbers::equal(difference, 0);
  }
  template <class Value>
  [[nodiscard]] static Direction raising(Value difference) {
    return difference < 0 ? Direction::Up : Direction::Down;
  }
  [[nodiscard]] static std::optional<Direction> lowering() { return std::nullopt; }
};

/// The six comparisons: a relation over integers or doubles (`Cells`). Doubles compare within the tolerance.
///
/// Invariant: `difference` is the start value plus all changes since. The start value of doubles is the integer
/// difference of what the operands show as integers: 0 for a sum, the bits for a constant.
template <class Derived, class Cells, class Relation>
class DynamicComparisonNode : public DynamicConstraintNodeInner {
 public:
  DynamicComparisonNode(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);

  void operandChanged(OperandPos position, std::int64_t oldValue, std::int64_t newValue, bool canRaise,
                      bool canLower) final;
  void operandChangedDouble(OperandPos position, double oldValue, double newValue, bool canRaise, bool canLower) final;
  [[nodiscard]] std::int64_t value() const final { return holds() ? 1 : 0; }

  bool flip(RandomState& state, bool strict) final;
  bool raise(RandomState& state, bool strict) final;
  bool lower(RandomState& state, bool strict) final;
  [[nodiscard]] std::uint32_t nbRaisable() const final;
  [[nodiscard]] std::uint32_t nbLowerable() const final;

  bool pickOperand(RandomState& state, Direction direction, StaticIndex& operand, Direction& operandDirection) final;
  void check() const final;

 private:
  using Value = typename Cells::Value;
  static constexpr bool kIsDouble = std::is_same_v<Value, double>;

  Value difference;

  [[nodiscard]] bool holds() const { return Relation::template holds<Cells>(difference); }
  [[nodiscard]] Value startDifference() const {
    return static_cast<Value>(IntegerCells::subtract(operandValue(1), operandValue(0)));
  }
  void follow(OperandPos p, Value oldValue, Value newValue);
  /// A coin decides whether operand 1 is tried before operand 0.
  bool moveDifference(Direction direction, RandomState& state, bool strict);
  [[nodiscard]] std::uint32_t nbDifferenceWays(Direction direction) const {
    return nbOperandWays(direction, 1) + nbOperandWays(opposite(direction), 0);
  }
};

/// The fixed half of a comparison. `Derived::kWord` begins the debug dump, `Dynamic` is the live half.
template <class Derived, class Dynamic>
class StaticComparison : public StaticConstraintNode {
 public:
  using StaticConstraintNode::StaticConstraintNode;

  [[nodiscard]] std::unique_ptr<DynamicConstraintNode> createDynamic(AutonomousStructure& structure) const final {
    return std::make_unique<Dynamic>(structure, *this);
  }
  void printTree(const DagStructures& structures) const final { printOperands(Derived::kWord, structures); }
};

/// One comparison: both halves, the live one with its name for failures.
#define QUVEX_COMPARISON(Name, Word, Cells, Relation)                                        \
  class DynamicConstraintNode##Name final                                                    \
      : public DynamicComparisonNode<DynamicConstraintNode##Name, Cells, Relation> {         \
   public:                                                                                   \
    static constexpr const char* kClass = "DynamicConstraintNode" #Name;                     \
    static constexpr const char* kName = "quvex::DynamicConstraintNode" #Name;               \
    using DynamicComparisonNode::DynamicComparisonNode;                                      \
  };                                                                                         \
  extern template class DynamicComparisonNode<DynamicConstraintNode##Name, Cells, Relation>; \
  class StaticConstraintNode##Name final                                                     \
      : public StaticComparison<StaticConstraintNode##Name, DynamicConstraintNode##Name> {   \
   public:                                                                                   \
    static constexpr const char* kWord = Word;                                               \
    using StaticComparison::StaticComparison;                                                \
  };

QUVEX_COMPARISON(Leq, "leq(", IntegerCells, LeqRelation)
QUVEX_COMPARISON(Geq, "geq(", IntegerCells, GeqRelation)
QUVEX_COMPARISON(Eq, "eq(", IntegerCells, EqRelation)
QUVEX_COMPARISON(DoubleLeq, "doubleleq(", DoubleCells, LeqRelation)
QUVEX_COMPARISON(DoubleGeq, "doublegeq(", DoubleCells, GeqRelation)
QUVEX_COMPARISON(DoubleEq, "doubleeq(", DoubleCells, EqRelation)

#undef QUVEX_COMPARISON

}  // namespace quvex
