#include "solver/move/constraintnodecomparison.h"

#include "api/qvexception.h"

namespace quvex {

template <class Derived, class Cells, class Relation>
DynamicComparisonNode<Derived, Cells, Relation>::DynamicComparisonNode(AutonomousStructure& owner,
                                                                       const StaticConstraintNode& fixedHalf)
    : DynamicConstraintNodeInner(owner, fixedHalf), difference(startDifference()) {}

template <class Derived, class Cells, class Relation>
void DynamicComparisonNode<Derived, Cells, Relation>::operandChanged(OperandPos position, std::int64_t oldValue,
                                                                     std::int64_t newValue, bool, bool) {
  follow(position, static_cast<Value>(oldValue), static_cast<Value>(newValue));
}

template <class Derived, class Cells, class Relation>
void DynamicComparisonNode<Derived, Cells, Relation>::operandChangedDouble([[maybe_unused]] OperandPos position,
                                                                           [[maybe_unused]] double oldValue,
                                                                           [[maybe_unused]] double newValue, bool,
                                                                           bool) {
  if constexpr (kIsDouble) follow(position, oldValue, newValue);
}

template <class Derived, class Cells, class Relation>
void DynamicComparisonNode<Derived, Cells, Relation>::follow(OperandPos p, Value oldValue, Value newValue) {
  const std::int64_t oldTruth = value();
  const Value change = Cells::subtract(newValue, oldValue);
  difference = p == 1 ? Cells::add(difference, change) : Cells::subtract(difference, change);
  const bool truth = holds();
  notifyParents(self.nodeId, oldTruth, std::int64_t{truth}, !truth, truth);
}

template <class Derived, class Cells, class Relation>
bool DynamicComparisonNode<Derived, Cells, Relation>::flip(RandomState& state, bool strict) {
  const OperandPos p = coin(state) ? 1 : 0;
  return flipOperand(p, state, strict) || flipOperand(1 - p, state, strict);
}

template <class Derived, class Cells, class Relation>
bool DynamicComparisonNode<Derived, Cells, Relation>::moveDifference(Direction direction, RandomState& state,
                                                                     bool strict) {
  if (coin(state) && moveOperand(direction, 1, state, strict)) return true;
  return moveOperand(opposite(direction), 0, state, strict);
}

template <class Derived, class Cells, class Relation>
bool DynamicComparisonNode<Derived, Cells, Relation>::raise(RandomState& state, bool strict) {
  if (holds() && (strict || Relation::kNeverPushed)) return false;
  return moveDifference(Relation::raising(difference), state, strict);
}

template <class Derived, class Cells, class Relation>
bool DynamicComparisonNode<Derived, Cells, Relation>::lower(RandomState& state, bool strict) {
  if (!holds() && (strict || Relation::kNeverPushed)) return false;
  const std::optional<Direction> direction = Relation::lowering();
  return direction ? moveDifference(*direction, state, strict) : flip(state, strict);
}

template <class Derived, class Cells, class Relation>
std::uint32_t DynamicComparisonNode<Derived, Cells, Relation>::nbRaisable() const {
  return holds() ? 0 : nbDifferenceWays(Relation::raising(difference));
}

template <class Derived, class Cells, class Relation>
std::uint32_t DynamicComparisonNode<Derived, Cells, Relation>::nbLowerable() const {
  if (!holds()) return 0;
  if (const std::optional<Direction> direction = Relation::lowering()) return nbDifferenceWays(*direction);
  return nbDifferenceWays(Direction::Up) + nbDifferenceWays(Direction::Down);
}

template <class Derived, class Cells, class Relation>
bool DynamicComparisonNode<Derived, Cells, Relation>::pickOperand(RandomState& state, Direction direction,
                                                                  StaticIndex& operand, Direction& operandDirection) {
  const bool up = direction == Direction::Up;
  if (holds() == up) return false;
  OperandPos p = coin(state) ? 1 : 0;
  if (!findOperand(p, operand)) {
    p = 1 - p;
    if (!findOperand(p, operand)) return false;
  }
  const std::optional<Direction> wanted = up ? Relation::raising(difference) : Relation::lowering();
  if (!wanted) {  // any change breaks an equality
    operandDirection = coin(state) ? Direction::Up : Direction::Down;
    return true;
  }
  operandDirection = p == 1 ? *wanted : opposite(*wanted);
  return true;
}

template <class Derived, class Cells, class Relation>
void DynamicComparisonNode<Derived, Cells, Relation>::check() const {
  if (Cells::equal(difference, startDifference())) return;
  quvex::raise<KernelException>(here<Derived>(), Derived::kClass, "::check : ", self.index);
}

template class DynamicComparisonNode<DynamicConstraintNodeLeq, IntegerCells, LeqRelation>;
template class DynamicComparisonNode<DynamicConstraintNodeGeq, IntegerCells, GeqRelation>;
template class DynamicComparisonNode<DynamicConstraintNodeEq, IntegerCells, EqRelation>;
template class DynamicComparisonNode<DynamicConstraintNodeDoubleLeq, DoubleCells, LeqRelation>;
template class DynamicComparisonNode<DynamicConstraintNodeDoubleGeq, DoubleCells, GeqRelation>;
template class DynamicComparisonNode<DynamicConstraintNodeDoubleEq, DoubleCells, EqRelation>;

}  // namespace quvex
