#include "solver/move/constraintnodelogic.h"

namespace quvex {

template <class Derived, class Set, Direction RestSide>
DynamicLogicNode<Derived, Set, RestSide>::DynamicLogicNode(AutonomousStructure& owner,
                                                           const StaticConstraintNode& fixedHalf)
    : DynamicConstraintNodeAggregate(owner, fixedHalf), returnable(nbOperands()) {
  const std::uint32_t n = nbOperands();
  for (OperandPos p = 0; p < n; ++p) {
    if (isOff(operandValue(p))) ++nbOff;
    if (canMoveOperand(RestSide, p)) returnable.add(p, n);
  }
}

template <class Derived, class Set, Direction RestSide>
void DynamicLogicNode<Derived, Set, RestSide>::operandChanged(OperandPos position, std::int64_t, std::int64_t newValue,
                                                              bool canRaise, bool canLower) {
  const std::int64_t oldTruth = value();
  if (isOff(newValue)) {
    ++nbOff;
  } else {
    --nbOff;
  }
  returnable.set(position, nbOperands(), kRestsTrue ? canRaise : canLower);
  const bool canReturn = !returnable.empty();
  const bool canTurn = isResting();
  notifyParents(self.nodeId, oldTruth, value(), kRestsTrue ? canReturn : canTurn, kRestsTrue ? canTurn : canReturn);
}

template <class Derived, class Set, Direction RestSide>
bool DynamicLogicNode<Derived, Set, RestSide>::moveToRest(RandomState& state, bool strict) {
  if (!isResting()) return tryRepeatedly([&] { return returnOne(state, strict); });
  return !strict && moveOperand(RestSide, randomPosition(state), state, strict);
}

template <class Derived, class Set, Direction RestSide>
bool DynamicLogicNode<Derived, Set, RestSide>::moveFromRest(RandomState& state, bool strict) {
  if (!isResting() && strict) return false;
  return tryRepeatedly([&] { return turn(state, strict); });
}

template <class Derived, class Set, Direction RestSide>
bool DynamicLogicNode<Derived, Set, RestSide>::pickOperand(RandomState& state, Direction direction,
                                                           StaticIndex& operand, Direction& operandDirection) {
  const bool toRest = direction == RestSide;
  if (toRest == isResting()) return false;
  const OperandPos p = toRest ? returnable.randomMember(state, nbOperands()) : randomPosition(state);
  if (!findOperand(p, operand)) return false;
  operandDirection = direction;
  return true;
}

template <class Derived, class Set, Direction RestSide>
void DynamicLogicNode<Derived, Set, RestSide>::check() const {
  std::uint32_t expected = 0;
  for (OperandPos p = 0; p < nbOperands(); ++p) {
    if (isOff(operandValue(p))) ++expected;
    if (canMoveOperand(RestSide, p) && !returnable.contains(p)) {
      quvex::raise<KernelException>(here<Derived>(), kRestsTrue ? "check() : 1 " : "check() : 2 ", self.index);
    }
  }
  if (expected != nbOff) quvex::raise<KernelException>(here<Derived>(), "check() : 2");
}

template <class Set>
DynamicConstraintNodeAnd<Set>::DynamicConstraintNodeAnd(AutonomousStructure& owner,
                                                        const StaticConstraintNode& fixedHalf)
    : DynamicLogicNode<DynamicConstraintNodeAnd<Set>, Set, Direction::Up>(owner, fixedHalf) {}

template <class Set>
DynamicConstraintNodeOr<Set>::DynamicConstraintNodeOr(AutonomousStructure& owner, const StaticConstraintNode& fixedHalf)
    : DynamicLogicNode<DynamicConstraintNodeOr<Set>, Set, Direction::Down>(owner, fixedHalf) {}

QUVEX_OVER_SUBSETS(template, DynamicConstraintNodeAnd);
QUVEX_OVER_SUBSETS(template, DynamicConstraintNodeOr);

}  // namespace quvex
