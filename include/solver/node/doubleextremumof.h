#pragma once

#include "solver/node/extremumof.h"

namespace quvex {

/// Base of the double minima and maxima. Which operands reach a rounded value is not worth keeping, so they know a
/// single support, and look at all operands again whenever it changes and no changed operand is better. Invariant: the
/// committed term at `supportNodePos` is the committed value. Among equals the last one looked at supports, which is
/// the highest position after a look at all.
template <class Set, class Order, class Weight>
class DoubleExtremumOf : public ExtremumOf<Set, Order, Weight> {
  using Base = ExtremumOf<Set, Order, Weight>;

 public:
  explicit DoubleExtremumOf(std::uint32_t nbOperands) : Base(nbOperands) {}

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const final {
    return this->areCellsInit(dag, id) && this->areCandidatesInit(dag, id) && isSupportInit(dag, id);
  }
  void init(Dag& dag, NodeId id) final {
    this->initCells(dag, id);
    this->initCandidates(dag, id);
    SupportScan scan;
    for (OperandPos p = 0; p < dag.fixed.nbChildren[id]; ++p) scan.look(this->committedTerm(dag, id, p), p);
    supportNodePos = scan.pos;
  }
  void commit(Dag& dag, NodeId id) final {
    commitSupport(dag, id);
    this->commitCandidates(dag, id);
    this->commitCells(dag, id);
  }

  void print(const Dag& dag, NodeId id) const final {
    this->printCommon(dag, id);
    this->printFlag(Order::kCandidatesFlag, this->areCandidatesInit(dag, id));
    this->candidates.print(std::cout, Order::kCandidatesLabel);
    this->printFlag("isSupportInit=", isSupportInit(dag, id));
    std::cout << "supportNodePos=" << supportNodePos << '\n';
    printCoefficients<Weight>(dag.fixed, id);
  }

 protected:
  static constexpr const char* kZeroTimesInfinity = "Cannot compute the product of zero and infinity";

  OperandPos supportNodePos = 0;  ///< without operands, 0 as well

  /// Computes and stores the tentative value. False if a term that it had to look at is not a number.
  [[nodiscard]] bool evalExtremum(Dag& dag, NodeId id) const {
    const double value = wordToDouble(dag.nodeValue[id]);
    double best = Order::template worst<DoubleCells>();
    bool areNumbers = true;
    const auto look = [&](OperandPos p) {
      const double term = this->tentativeTerm(dag, id, p);
      areNumbers = areNumbers && this->isNumber(term);
      if (Order::better(term, best)) best = term;
    };
    this->changedNodes(dag, id).forEach(look);
    if (!areNumbers) return false;
    if (Order::better(value, best)) {
      if (!this->changedNodes(dag, id).contains(supportNodePos)) return true;
      for (OperandPos p = 0; p < dag.fixed.nbChildren[id]; ++p) {
        if (!this->changedNodes(dag, id).contains(p)) look(p);
      }
      if (!areNumbers) return false;
    }
    dag.tentativeValue[id] = doubleToWord(best);
    return true;
  }

  [[nodiscard]] OperandPos pickSupport(RandomState&, std::uint32_t n) const final {
    return n == 0 ? kNone : supportNodePos;
  }

  /// With room on both sides a coin decides between a candidate and the support; else whichever has room. The support
  /// is asked to go down by minima and maxima alike, and without a look at the bounds.
  bool pickOther(const PickRequest& request, NodeId id) const final {
    if (canMove<DoubleCells>(request.dag, id, Order::kBetter)) {
      const bool takesSupport = canMove<DoubleCells>(request.dag, id, opposite(Order::kBetter)) && coin(request.state);
      if (!takesSupport) return this->pickCandidate(request, id);
    }
    return this->moveSupport(request, Direction::Down, id);
  }

 private:
  /// Remembers the last of the best terms that it was shown.
  struct SupportScan {
    double best = Order::template worst<DoubleCells>();
    OperandPos pos = 0;

    void look(double term, OperandPos p) {
      if (!Order::better(term, best) && term != best) return;
      best = term;
      pos = p;
    }
  };

  [[nodiscard]] bool isSupportInit(const Dag& dag, NodeId id) const {
    if (dag.fixed.nbChildren[id] == 0) return true;
    return this->committedTerm(dag, id, supportNodePos) == wordToDouble(dag.nodeValue[id]);
  }

  /// Follows the value to the tentative one, before it is committed. A better value is reached by changed operands
  /// alone.
  void commitSupport(const Dag& dag, NodeId id) {
    SupportScan scan;
    if (Order::better(wordToDouble(dag.tentativeValue[id]), wordToDouble(dag.nodeValue[id]))) {
      this->changedNodes(dag, id).forEach([&](OperandPos p) { scan.look(this->tentativeTerm(dag, id, p), p); });
    } else {
      for (OperandPos p = 0; p < dag.fixed.nbChildren[id]; ++p) scan.look(this->tentativeTerm(dag, id, p), p);
    }
    supportNodePos = scan.pos;
  }
};

}  // namespace quvex
