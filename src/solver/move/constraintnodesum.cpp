#include "solver/move/constraintnodesum.h"

namespace quvex {

template <class Derived, class Set, class Weight>
DynamicSumNode<Derived, Set, Weight>::DynamicSumNode(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf)
    : DynamicConstraintNodeAggregate(owner, fixedHalf), raisable(nbOperands()), lowerable(nbOperands()) {
  const std::uint32_t n = nbOperands();
  for (OperandPos p = 0; p < n; ++p) {
    total = Cells::add(total, startTerm(p));
    setAbilities(p, canMoveOperand(Direction::Up, p), canMoveOperand(Direction::Down, p));
  }
}

template <class Derived, class Set, class Weight>
bool DynamicSumNode<Derived, Set, Weight>::isPositive(OperandPos p) const {
  if constexpr (Weight::kScaled) {
    return Cells::greater(Weight::coefficient(fixed(), self.nodeId, p), 0);
  } else {
    return true;
  }
}

template <class Derived, class Set, class Weight>
bool DynamicSumNode<Derived, Set, Weight>::isNegative(OperandPos p) const {
  if constexpr (Weight::kScaled) {
    return Cells::greater(0, Weight::coefficient(fixed(), self.nodeId, p));
  } else {
    return false;
  }
}

template <class Derived, class Set, class Weight>
std::int64_t DynamicSumNode<Derived, Set, Weight>::value() const {
  if constexpr (kIsDouble) {
    return 0;
  } else {
    return total;
  }
}

template <class Derived, class Set, class Weight>
void DynamicSumNode<Derived, Set, Weight>::operandChanged(OperandPos position, std::int64_t oldValue,
                                                          std::int64_t newValue, bool canRaise, bool canLower) {
  follow(position, static_cast<Value>(oldValue), static_cast<Value>(newValue), canRaise, canLower);
}

template <class Derived, class Set, class Weight>
void DynamicSumNode<Derived, Set, Weight>::operandChangedDouble([[maybe_unused]] OperandPos position,
                                                                [[maybe_unused]] double oldValue,
                                                                [[maybe_unused]] double newValue,
                                                                [[maybe_unused]] bool canRaise,
                                                                [[maybe_unused]] bool canLower) {
  if constexpr (kIsDouble) follow(position, oldValue, newValue, canRaise, canLower);
}

template <class Derived, class Set, class Weight>
void DynamicSumNode<Derived, Set, Weight>::follow(OperandPos p, Value oldValue, Value newValue, bool canRaise,
                                                  bool canLower) {
  const Value oldTotal = total;
  total = Cells::add(total, Weight::term(fixed(), self.nodeId, p, Cells::subtract(newValue, oldValue)));
  setAbilities(p, canRaise, canLower);
  notifyParents(self.nodeId, oldTotal, total, !raisable.empty(), !lowerable.empty());
}

template <class Derived, class Set, class Weight>
void DynamicSumNode<Derived, Set, Weight>::setAbilities(OperandPos p, bool canRaise, bool canLower) {
  const std::uint32_t n = nbOperands();
  raisable.set(p, n, canRaiseSum(p, canRaise, canLower));
  lowerable.set(p, n, canLowerSum(p, canRaise, canLower));
}

template <class Derived, class Set, class Weight>
bool DynamicSumNode<Derived, Set, Weight>::flip(RandomState& state, bool strict) {
  if constexpr (Weight::kScaled) {
    // Without a list of flat operands this is always the first operand. The search of a given seed depends on it.
    return flipOperand(rand(state, static_cast<std::uint32_t>(self.flatOperands.size())), state, strict);
  } else {
    return flipOperand(randomPosition(state), state, strict);
  }
}

template <class Derived, class Set, class Weight>
bool DynamicSumNode<Derived, Set, Weight>::moveTerm(Direction direction, OperandPos p, RandomState& state,
                                                    bool strict) {
  return p != kNone && moveOperand(operandToward(direction, p), p, state, strict);
}

template <class Derived, class Set, class Weight>
bool DynamicSumNode<Derived, Set, Weight>::moveSum(Direction direction, RandomState& state, bool strict) {
  const Set& candidates = movers(direction);
  if (!candidates.empty()) {
    return tryRepeatedly(
        [&] { return moveTerm(direction, candidates.randomMember(state, nbOperands()), state, strict); });
  }
  return !strict && moveTerm(direction, randomPosition(state), state, strict);
}

template <class Derived, class Set, class Weight>
bool DynamicSumNode<Derived, Set, Weight>::pickOperand(RandomState& state, Direction direction, StaticIndex& operand,
                                                       Direction& operandDirection) {
  const OperandPos p = movers(direction).randomMember(state, nbOperands());
  if (!findOperand(p, operand)) return false;
  operandDirection = operandToward(direction, p);
  return true;
}

template <class Derived, class Set, class Weight>
void DynamicSumNode<Derived, Set, Weight>::check() const {
  Value expected = 0;
  for (OperandPos p = 0; p < nbOperands(); ++p) {
    expected = Cells::add(expected, startTerm(p));
    const bool canRaise = canMoveOperand(Direction::Up, p);
    const bool canLower = canMoveOperand(Direction::Down, p);
    if (canRaiseSum(p, canRaise, canLower) && !raisable.contains(p)) failCheck(here<Derived>(), 1, false);
    if (canLowerSum(p, canRaise, canLower) && !lowerable.contains(p)) failCheck(here<Derived>(), 2, false);
  }
  if (!Cells::equal(expected, total)) failCheck(here<Derived>(), 2, true);
}

template <class Derived, class Set, class Weight>
void DynamicSumNode<Derived, Set, Weight>::failCheck(const Place& place, int number, bool isTotal) const {
  if constexpr (Derived::kNamesItself) {
    quvex::raise<KernelException>(place, Derived::kClass, "::check() : ", number);
  } else if (isTotal) {
    quvex::raise<KernelException>(place, "check() : ", number);
  } else {
    quvex::raise<KernelException>(place, "check() : ", number, " ", self.index);
  }
}

template <class Set>
DynamicConstraintNodeSum<Set>::DynamicConstraintNodeSum(AutonomousStructure& owner,
                                                        const StaticConstraintNode& fixedHalf)
    : DynamicSumNode<DynamicConstraintNodeSum<Set>, Set, Plain<IntegerCells>>(owner, fixedHalf) {}

template <class Set>
DynamicConstraintNodeScalarSum<Set>::DynamicConstraintNodeScalarSum(AutonomousStructure& owner,
                                                                    const StaticConstraintNode& fixedHalf)
    : DynamicSumNode<DynamicConstraintNodeScalarSum<Set>, Set, Scaled<IntegerCells>>(owner, fixedHalf) {}

template <class Set>
DynamicConstraintNodeDoubleSum<Set>::DynamicConstraintNodeDoubleSum(AutonomousStructure& owner,
                                                                    const StaticConstraintNode& fixedHalf)
    : DynamicSumNode<DynamicConstraintNodeDoubleSum<Set>, Set, Plain<DoubleCells>>(owner, fixedHalf) {}

template <class Set>
DynamicConstraintNodeDoubleScalarSum<Set>::DynamicConstraintNodeDoubleScalarSum(AutonomousStructure& owner,
                                                                                const StaticConstraintNode& fixedHalf)
    : DynamicSumNode<DynamicConstraintNodeDoubleScalarSum<Set>, Set, Scaled<DoubleCells>>(owner, fixedHalf) {}

QUVEX_OVER_SUBSETS(template, DynamicConstraintNodeSum);
QUVEX_OVER_SUBSETS(template, DynamicConstraintNodeScalarSum);
QUVEX_OVER_SUBSETS(template, DynamicConstraintNodeDoubleSum);
QUVEX_OVER_SUBSETS(template, DynamicConstraintNodeDoubleScalarSum);

}  // namespace quvex
