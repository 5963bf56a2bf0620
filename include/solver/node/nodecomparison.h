#pragma once

#include <cstdint>

#include "solver/node/plainnode.h"

/// The skeleton of the twelve comparisons. What is special about one lies in a test policy of a few lines; the classes
/// themselves are in nodecomparisons.h.
namespace quvex {

/// A boolean node over two integers.
class NodeComparison : public NodeInner {
 public:
  [[nodiscard]] virtual bool test(std::int64_t a, std::int64_t b) const = 0;
};

/// A boolean node over two operands read as doubles, with tolerance.
class NodeDoubleComparison : public NodeInner {
 public:
  [[nodiscard]] virtual bool test(double a, double b) const = 0;
};

/// What differs between the integer and the double comparisons, apart from the numbers themselves.
template <class Numbers>
struct ComparisonKind;

/// Integers: the gap is 0 where the test holds, so it alone tells the violation. It wraps.
template <>
struct ComparisonKind<Integers> {
  using Base = NodeComparison;

  template <class Test>
  [[nodiscard]] static std::int64_t violation(std::int64_t a, std::int64_t b) {
    return Test::gap(a, b);
  }
  template <class Test>
  [[nodiscard]] static std::int64_t violationDelta(std::int64_t newA, std::int64_t newB, std::int64_t oldA,
                                                   std::int64_t oldB) {
    return wrapSub(Test::gap(newA, newB), Test::gap(oldA, oldB));
  }
};

/// Doubles: the gap is a signed distance, and truncated, so that less than 1.0 counts as nothing. Only `violation` asks
/// the test. A delta subtracts first and truncates then, so it may differ from the difference of two violations.
template <>
struct ComparisonKind<Doubles> {
  using Base = NodeDoubleComparison;

  template <class Test>
  [[nodiscard]] static std::int64_t violation(double a, double b) {
    return Test::holds(a, b) ? 0 : MathDouble::truncate(Test::gap(a, b));
  }
  template <class Test>
  [[nodiscard]] static std::int64_t violationDelta(double newA, double newB, double oldA, double oldB) {
    return MathDouble::truncate(counted(Test::gap(newA, newB)) - counted(Test::gap(oldA, oldB)));
  }

 private:
  /// A gap clearly below zero counts as none; one that is so by rounding only stays as it is.
  [[nodiscard]] static double counted(double gap) { return MathDouble::isGreater(0.0, gap) ? 0.0 : gap; }
};

/// The common part: the value, and the violations where `Test` measures a gap.
template <class Derived, class Test>
class NodeComparisonOf : public PickingNode<Derived, typename ComparisonKind<typename Test::Numbers>::Base> {
 public:
  using Numbers = typename Test::Numbers;
  using Value = typename Numbers::Value;
  using Kind = ComparisonKind<Numbers>;

  [[nodiscard]] bool test(Value a, Value b) const final { return Test::holds(a, b); }

  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const final {
    return holdsOn(OperandCells::committed(dag, id)) ? 1 : 0;
  }
  // Not through the virtual test: constraints are evaluated more often than anything else.
  void eval(Dag& dag, Propagation&, NodeId id) final {
    dag.tentativeValue[id] = holdsOn(OperandCells::tentative(dag, id)) ? 1 : 0;
  }

 protected:
  [[nodiscard]] static bool holdsOn(const OperandCells& cells) {
    return Test::holds(cells.get<Numbers>(0), cells.get<Numbers>(1));
  }
  /// The ends of the operands' intervals.
  struct Ends {
    Ends(const DagFixedFields& fixed, NodeId id)
        : minA(Numbers::min(fixed, fixed.child(id, 0))),
          maxA(Numbers::max(fixed, fixed.child(id, 0))),
          minB(Numbers::min(fixed, fixed.child(id, 1))),
          maxB(Numbers::max(fixed, fixed.child(id, 1))) {}
    Value minA;
    Value maxA;
    Value minB;
    Value maxB;
  };
};

/// A comparison whose violation grows with the distance from its truth.
template <class Derived, class Test>
class NodeMeasuredComparisonOf : public NodeComparisonOf<Derived, Test> {
 public:
  using typename NodeComparisonOf<Derived, Test>::Numbers;
  using typename NodeComparisonOf<Derived, Test>::Kind;

  [[nodiscard]] std::int64_t violation(const Dag& dag, NodeId id) const final {
    const auto cells = OperandCells::committed(dag, id);
    return Kind::template violation<Test>(cells.get<Numbers>(0), cells.get<Numbers>(1));
  }
  [[nodiscard]] std::int64_t violationDelta(const Dag& dag, NodeId id) const final {
    const auto after = OperandCells::tentative(dag, id);
    const auto before = OperandCells::committed(dag, id);
    return Kind::template violationDelta<Test>(after.get<Numbers>(0), after.get<Numbers>(1), before.get<Numbers>(0),
                                               before.get<Numbers>(1));
  }
};

/// Truth by equality: made true by closing the gap, made false by any change.
template <class Derived, class Test>
class NodeEqualityOf : public NodeMeasuredComparisonOf<Derived, Test> {
 public:
  using typename NodeComparisonOf<Derived, Test>::Numbers;

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const typename NodeComparisonOf<Derived, Test>::Ends ends(fixed, id);
    if (Numbers::greater(ends.minA, ends.maxB) || Numbers::greater(ends.minB, ends.maxA)) return {0, 0};
    // Equal at both far corners: all the values are the same.
    if (Numbers::equal(ends.minA, ends.maxB) && Numbers::equal(ends.maxA, ends.minB)) return {1, 1};
    return {0, 1};
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    if (request.dag.nodeValue[id] == (d == Direction::Up ? 1 : 0)) return false;
    return d == Direction::Up ? closeGap<Numbers>(request, id) : NodeEqualityOf::pickAny(request, id);
  }
  static bool pickOther(const PickRequest& request, NodeId id) {
    return request.dag.nodeValue[id] == 0 ? pickToward(request, Direction::Up, id)
                                          : NodeEqualityOf::pickAny(request, id);
  }
};

/// Truth by difference: the opposite of equality in everything, but without a measure of violation.
template <class Derived, class Test>
class NodeInequalityOf : public NodeComparisonOf<Derived, Test> {
 public:
  using typename NodeComparisonOf<Derived, Test>::Numbers;

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const typename NodeComparisonOf<Derived, Test>::Ends ends(fixed, id);
    if (Numbers::greater(ends.minA, ends.maxB) || Numbers::greater(ends.minB, ends.maxA)) return {1, 1};
    if (Numbers::equal(ends.minA, ends.maxB) && Numbers::equal(ends.maxA, ends.minB)) return {0, 0};
    return {0, 1};
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    if (request.dag.nodeValue[id] == (d == Direction::Up ? 1 : 0)) return false;
    return d == Direction::Down ? closeGap<Numbers>(request, id) : NodeInequalityOf::pickAny(request, id);
  }
  static bool pickOther(const PickRequest& request, NodeId id) {
    return request.dag.nodeValue[id] != 0 ? pickToward(request, Direction::Down, id)
                                          : NodeInequalityOf::pickAny(request, id);
  }
};

/// Truth by order. `Test::kTruthIsUp` tells whether a larger difference, first operand minus second, makes it true.
/// The picks look at the tentative value of the node, unlike those of the equalities.
template <class Derived, class Test>
class NodeOrderOf : public NodeMeasuredComparisonOf<Derived, Test> {
 public:
  using typename NodeComparisonOf<Derived, Test>::Numbers;

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    const typename NodeComparisonOf<Derived, Test>::Ends ends(fixed, id);
    const bool atLowest = Test::holds(ends.minA, ends.maxB);
    const bool atHighest = Test::holds(ends.maxA, ends.minB);
    if (atLowest == atHighest) return {atLowest ? 1 : 0, atLowest ? 1 : 0};
    return {0, 1};
  }

  static bool pickToward(const PickRequest& request, Direction d, NodeId id) {
    if (request.dag.tentativeValue[id] == (d == Direction::Up ? 1 : 0)) return false;
    return moveTruth(request, d, id);
  }
  static bool pickOther(const PickRequest& request, NodeId id) {
    return moveTruth(request, request.dag.tentativeValue[id] != 0 ? Direction::Down : Direction::Up, id);
  }

 private:
  static bool moveTruth(const PickRequest& request, Direction d, NodeId id) {
    return moveDifference<Numbers>(request, Test::kTruthIsUp ? d : opposite(d), id);
  }
};

}  // namespace quvex
