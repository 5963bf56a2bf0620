#pragma once

#include "solver/node/extremumof.h"

namespace quvex {

/// Base of the integer minima and maxima: they know every operand that reaches the value, and look at all operands
/// again only when the very last of these gives way. Invariant: `supports` holds exactly the positions whose committed
/// term equals the committed value.
template <class Set, class Order, class Weight>
class IntegerExtremumOf : public ExtremumOf<Set, Order, Weight> {
  using Base = ExtremumOf<Set, Order, Weight>;

 public:
  explicit IntegerExtremumOf(std::uint32_t nbOperands) : Base(nbOperands), supports(nbOperands) {}

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const final {
    return this->areCellsInit(dag, id) && areSupportsInit(dag, id) && this->areCandidatesInit(dag, id);
  }
  void init(Dag& dag, NodeId id) final {
    this->initCells(dag, id);
    supports.assign(dag.fixed.nbChildren[id], [&](OperandPos p) { return isSupport(dag, id, p); });
    this->initCandidates(dag, id);
  }
  [[nodiscard]] std::int64_t computeValue(const Dag& dag, NodeId id) const final {
    std::int64_t best = 0;
    static_cast<void>(this->findExtremum(dag, id, best));  // integers are always numbers
    return best;
  }

  void eval(Dag& dag, Propagation&, NodeId id) final {
    const std::int64_t value = dag.nodeValue[id];
    std::uint32_t nbSupports = supports.size();
    std::int64_t best = Order::template worst<IntegerCells>();
    this->changedNodes(dag, id).forEach([&](OperandPos p) {
      if (this->committedTerm(dag, id, p) == value) --nbSupports;
      improve(best, this->tentativeTerm(dag, id, p));
    });
    // Unchanged operands are no better than the value. While the changed ones end up worse, it takes an unchanged
    // support to hold it.
    if (Order::better(value, best)) {
      if (nbSupports != 0) return;
      for (OperandPos p = 0; p < dag.fixed.nbChildren[id]; ++p) {
        if (!this->changedNodes(dag, id).contains(p)) improve(best, this->tentativeTerm(dag, id, p));
      }
    }
    dag.tentativeValue[id] = best;
  }

  void commit(Dag& dag, NodeId id) final {
    commitSupports(dag, id);
    this->commitCandidates(dag, id);
    this->commitCells(dag, id);
  }

  void print(const Dag& dag, NodeId id) const final {
    this->printCommon(dag, id);
    this->printFlag("isSupportsInit=", areSupportsInit(dag, id));
    this->printFlag(Order::kCandidatesFlag, this->areCandidatesInit(dag, id));
    supports.print(std::cout, "supports=");
    this->candidates.print(std::cout, Order::kCandidatesLabel);
    printCoefficients<Weight>(dag.fixed, id);
  }

 protected:
  Set supports;

  [[nodiscard]] OperandPos pickSupport(RandomState& state, std::uint32_t n) const final {
    return supports.randomMember(state, n);
  }

  /// Down with the coin set, up otherwise, or the only direction that is left. The same for minima and maxima.
  bool pickOther(const PickRequest& request, NodeId id) const final {
    const bool canRise = canMove<IntegerCells>(request.dag, id, Direction::Up);
    const bool goesDown = !canRise || (canMove<IntegerCells>(request.dag, id, Direction::Down) && coin(request.state));
    return this->pickToward(request, goesDown ? Direction::Down : Direction::Up, id);
  }

 private:
  static void improve(std::int64_t& best, std::int64_t term) {
    if (Order::better(term, best)) best = term;
  }
  [[nodiscard]] static bool isSupport(const Dag& dag, NodeId id, OperandPos p) {
    return Base::committedTerm(dag, id, p) == dag.nodeValue[id];
  }
  [[nodiscard]] bool areSupportsInit(const Dag& dag, NodeId id) const {
    return supports.agrees(dag.fixed.nbChildren[id], [&](OperandPos p) { return isSupport(dag, id, p); });
  }

  /// Follows the value to the tentative one, before it is committed. A better value is reached by changed operands
  /// alone.
  void commitSupports(const Dag& dag, NodeId id) {
    const std::uint32_t n = dag.fixed.nbChildren[id];
    const std::int64_t before = dag.nodeValue[id];
    const std::int64_t after = dag.tentativeValue[id];
    const auto reaches = [&](OperandPos p) { return this->tentativeTerm(dag, id, p) == after; };
    if (Order::better(before, after)) {
      supports.assign(n, reaches);
      return;
    }
    if (Order::better(after, before)) supports.clear();
    this->changedNodes(dag, id).forEach([&](OperandPos p) { supports.set(p, n, reaches(p)); });
  }
};

}  // namespace quvex
