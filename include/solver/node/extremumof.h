#pragma once

#include <algorithm>
#include <utility>

#include "solver/node/aggregatenode.h"
#include "solver/node/weights.h"

namespace quvex {

/// What tells a minimum from a maximum: which of two values is the better one, that is, nearer to the extremum sought.
struct Minimum {
  static constexpr Direction kBetter = Direction::Down;
  static constexpr const char* kCandidatesLabel = "decreaseCandidates=";
  static constexpr const char* kCandidatesFlag = "isDecreaseCandidatesInit=";

  template <class Cells>
  [[nodiscard]] static constexpr typename Cells::Value worst() {
    return Cells::kHighest;
  }
  template <class Value>
  [[nodiscard]] static bool better(Value a, Value b) {
    return a < b;
  }
  template <class Value>
  [[nodiscard]] static Value bestOf(const std::pair<Value, Value>& range) {
    return range.first;
  }
  [[nodiscard]] static t_value bestBound(const DagFixedFields& fixed, NodeId id) { return fixed.minBounds[id]; }
};

struct Maximum {
  static constexpr Direction kBetter = Direction::Up;
  static constexpr const char* kCandidatesLabel = "increaseCandidates=";
  static constexpr const char* kCandidatesFlag = "isIncreaseCandidatesInit=";

  template <class Cells>
  [[nodiscard]] static constexpr typename Cells::Value worst() {
    return Cells::kLowest;
  }
  template <class Value>
  [[nodiscard]] static bool better(Value a, Value b) {
    return a > b;
  }
  template <class Value>
  [[nodiscard]] static Value bestOf(const std::pair<Value, Value>& range) {
    return range.second;
  }
  [[nodiscard]] static t_value bestBound(const DagFixedFields& fixed, NodeId id) { return fixed.maxBounds[id]; }
};

/// Base of the minima and maxima. "Better" is lower for a minimum and higher for a maximum.
/// Invariant: `candidates` (the decrease candidates of a minimum, the increase candidates of a maximum) holds exactly
/// the positions whose operand could, by moving alone, make the committed value better.
template <class Set, class Order, class Weight>
class ExtremumOf : public AggregateNode<Set, typename Weight::Cells::Inner, SearchableChangedSet<Set>> {
  using Base = AggregateNode<Set, typename Weight::Cells::Inner, SearchableChangedSet<Set>>;

 public:
  explicit ExtremumOf(std::uint32_t nbOperands) : Base(nbOperands), candidates(nbOperands) {}

  /// The extremum of the operands' minima, and that of their maxima.
  static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    Value min = Order::template worst<Cells>();
    Value max = Order::template worst<Cells>();
    for (OperandPos p = 0; p < fixed.nbChildren[id]; ++p) {
      const auto [a, b] = Weight::range(fixed, id, p);
      const auto [low, high] = std::minmax(a, b);
      if (Order::better(low, min)) min = low;
      if (Order::better(high, max)) max = high;
    }
    return Cells::bounds(min, max);
  }

 protected:
  using Cells = typename Weight::Cells;
  using Value = typename Cells::Value;

  Set candidates;

  [[nodiscard]] static Value committedTerm(const Dag& dag, NodeId id, OperandPos p) {
    return Weight::term(dag.fixed, id, p, Cells::committed(dag, dag.child(id, p)));
  }
  [[nodiscard]] static Value tentativeTerm(const Dag& dag, NodeId id, OperandPos p) {
    return Weight::term(dag.fixed, id, p, Cells::tentative(dag, dag.child(id, p)));
  }
  /// Only products can fail to be numbers; operands that are none are passed over.
  [[nodiscard]] static bool isNumber(Value term) { return !Weight::kScaled || !Cells::isNaN(term); }

  /// The extremum of all committed terms. False if a term is not a number.
  [[nodiscard]] static bool findExtremum(const Dag& dag, NodeId id, Value& best) {
    best = Order::template worst<Cells>();
    for (OperandPos p = 0; p < dag.fixed.nbChildren[id]; ++p) {
      const Value term = committedTerm(dag, id, p);
      if (!isNumber(term)) return false;
      if (Order::better(term, best)) best = term;
    }
    return true;
  }

  void initCandidates(const Dag& dag, NodeId id) {
    candidates.assign(dag.fixed.nbChildren[id], [&](OperandPos p) { return canImprove(dag, id, p); });
  }
  [[nodiscard]] bool areCandidatesInit(const Dag& dag, NodeId id) const {
    return candidates.agrees(dag.fixed.nbChildren[id], [&](OperandPos p) { return canImprove(dag, id, p); });
  }
  /// Follows the value to the tentative one, before it is committed. Candidates depend on the value alone, so a worse
  /// one can only add some and a better one only remove some; at the node's own bound none is left.
  void commitCandidates(const Dag& dag, NodeId id) {
    const std::uint32_t n = dag.fixed.nbChildren[id];
    const Value before = Cells::committed(dag, id);
    const Value after = Cells::tentative(dag, id);
    if (after == Cells::fromWord(Order::bestBound(dag.fixed, id))) {
      candidates.clear();
    } else if (Order::better(before, after)) {
      candidates.addIf(n, [&](OperandPos p) { return Order::better(bestTerm(dag.fixed, id, p), after); });
    } else if (Order::better(after, before)) {
      candidates.removeIf(n, [&](OperandPos p) { return !Order::better(bestTerm(dag.fixed, id, p), after); });
    }
  }

  /// The position of an operand that reaches the value, kNone if there is none.
  [[nodiscard]] virtual OperandPos pickSupport(RandomState& state, std::uint32_t n) const = 0;

  /// To make the value better one operand has to pass it; to make it worse, a support has to give way.
  bool pickToward(const PickRequest& request, Direction direction, NodeId id) const final {
    if (!canMove<Cells>(request.dag, id, direction)) return false;
    return direction == Order::kBetter ? pickCandidate(request, id) : moveSupport(request, direction, id);
  }
  bool pickCandidate(const PickRequest& request, NodeId id) const {
    const OperandPos p = candidates.randomMember(request.state, request.dag.fixed.nbChildren[id]);
    return this->template pickTerm<Weight>(request, Order::kBetter, id, p);
  }
  bool moveSupport(const PickRequest& request, Direction direction, NodeId id) const {
    const OperandPos p = pickSupport(request.state, request.dag.fixed.nbChildren[id]);
    return this->template pickTerm<Weight>(request, direction, id, p);
  }

 private:
  /// The best value that the operand's term can take.
  [[nodiscard]] static Value bestTerm(const DagFixedFields& fixed, NodeId id, OperandPos p) {
    return Order::bestOf(Weight::range(fixed, id, p));
  }
  [[nodiscard]] static bool canImprove(const Dag& dag, NodeId id, OperandPos p) {
    return Order::better(bestTerm(dag.fixed, id, p), Cells::committed(dag, id));
  }
};

}  // namespace quvex
