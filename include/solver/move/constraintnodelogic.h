#pragma once

#include <cstdint>
#include <string>

#include "api/qvexception.h"
#include "solver/kernel/subsetchoice.h"
#include "solver/move/constraintnodeinner.h"
#include "solver/move/staticaggregate.h"

namespace quvex {

/// "and" and "or" are each other's mirror image. Each rests on one side, true for "and", false for "or", as long as all
/// its operands are on that side; one operand off that side is enough to turn it. `RestSide` is the direction in which
/// it comes to rest.
///
/// Invariant: `nbOff` counts the operands off the resting side; `returnable` holds the positions of those operands that
/// could go back when they last told a change.
template <class Derived, class Set, Direction RestSide>
class DynamicLogicNode : public DynamicConstraintNodeAggregate {
 public:
  DynamicLogicNode(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);

  void operandChanged(OperandPos position, std::int64_t oldValue, std::int64_t newValue, bool canRaise,
                      bool canLower) final;
  [[nodiscard]] std::int64_t value() const final { return isResting() == kRestsTrue ? 1 : 0; }

  bool flip(RandomState& state, bool strict) final {
    return isResting() ? turn(state, strict) : returnOne(state, strict);
  }
  bool raise(RandomState& state, bool strict) final {
    return kRestsTrue ? moveToRest(state, strict) : moveFromRest(state, strict);
  }
  bool lower(RandomState& state, bool strict) final {
    return kRestsTrue ? moveFromRest(state, strict) : moveToRest(state, strict);
  }
  [[nodiscard]] std::uint32_t nbRaisable() const final { return kRestsTrue ? returnable.size() : nbTurning(); }
  [[nodiscard]] std::uint32_t nbLowerable() const final { return kRestsTrue ? nbTurning() : returnable.size(); }

  bool pickOperand(RandomState& state, Direction direction, StaticIndex& operand, Direction& operandDirection) final;
  void check() const final;

 private:
  static constexpr bool kRestsTrue = RestSide == Direction::Up;
  static constexpr Direction kTurnSide = opposite(RestSide);

  std::uint32_t nbOff = 0;  ///< of an "and" the false operands, of an "or" the true ones
  Set returnable;           ///< of an "and" those that can rise, of an "or" those that can fall

  [[nodiscard]] bool isResting() const { return nbOff == 0; }
  [[nodiscard]] static bool isOff(std::int64_t operandValue) { return (operandValue != 0) != kRestsTrue; }
  /// A resting node is turned by any operand, one that is turned already by none.
  [[nodiscard]] std::uint32_t nbTurning() const { return isResting() ? nbOperands() : 0; }

  bool returnOne(RandomState& state, bool strict) {
    return moveOperand(RestSide, returnable.randomMember(state, nbOperands()), state, strict);
  }
  bool turn(RandomState& state, bool strict) { return moveOperand(kTurnSide, randomPosition(state), state, strict); }
  bool moveToRest(RandomState& state, bool strict);
  bool moveFromRest(RandomState& state, bool strict);
};

/// "and" in the simulation.
template <class Set>
class DynamicConstraintNodeAnd final : public DynamicLogicNode<DynamicConstraintNodeAnd<Set>, Set, Direction::Up> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::DynamicConstraintNodeAnd");

  DynamicConstraintNodeAnd(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);
};

/// "or" in the simulation.
template <class Set>
class DynamicConstraintNodeOr final : public DynamicLogicNode<DynamicConstraintNodeOr<Set>, Set, Direction::Down> {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::DynamicConstraintNodeOr");

  DynamicConstraintNodeOr(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf);
};

QUVEX_OVER_SUBSETS(extern template, DynamicConstraintNodeAnd);
QUVEX_OVER_SUBSETS(extern template, DynamicConstraintNodeOr);

/// The fixed half of "and".
class StaticConstraintNodeAnd final : public StaticAggregate<StaticConstraintNodeAnd, DynamicConstraintNodeAnd> {
 public:
  static constexpr const char* kWord = "and(";
  using StaticAggregate::StaticAggregate;
};

/// The fixed half of "or".
class StaticConstraintNodeOr final : public StaticAggregate<StaticConstraintNodeOr, DynamicConstraintNodeOr> {
 public:
  static constexpr const char* kWord = "or(";
  using StaticAggregate::StaticAggregate;
};

}  // namespace quvex
