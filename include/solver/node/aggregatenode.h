#pragma once

#include <iostream>

#include "solver/kernel/changedset.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/nodeinner.h"
#include "solver/kernel/subsetchoice.h"
#include "solver/node/pickrequest.h"

namespace quvex {

/// Base of the operators with any number of operands, over `Inner` by the domain of the result.
/// Invariant: while the node is dirty, `changedNodes` holds the positions whose operand has a tentative value that
/// differs from its committed one, each told once. Otherwise there are none, and it must not be asked.
///
/// Constructors of the final classes are defined beside their instantiation, so that only that source compiles the
/// family's code.
template <class Set, class Inner, class Changes = ChangedSet<Set>>
class AggregateNode : public Inner {
 public:
  explicit AggregateNode(std::uint32_t nbOperands) : changeFlags(nbOperands) {}

  // The evaluation driver does these two by itself, but for a kind of changes that is `Called`.
  void rollback(Dag& dag, NodeId id) final {
    dag.tentativeValue[id] = dag.nodeValue[id];
    clearChanges(dag, id);
  }
  void notifyChildChanged(Dag& dag, OperandPos position, NodeId id) final {
    Changes::note(dag.records[id], dag.allLists, position);
    changeFlags.add(position);
  }
  [[nodiscard]] ChangeKind changeKind() const final { return Changes::kKind; }

  bool pickDecrease(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const final {
    return pickToward(PickRequest{dag, state, decision, delta}, Direction::Down, id);
  }
  bool pickIncrease(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const final {
    return pickToward(PickRequest{dag, state, decision, delta}, Direction::Up, id);
  }
  bool pickChange(const Dag& dag, RandomState& state, NodeId& decision, int& delta, NodeId id) const final {
    return pickOther(PickRequest{dag, state, decision, delta}, id);
  }

 protected:
  [[nodiscard]] Changes changedNodes(const Dag& dag, NodeId id) const { return {dag.changes(id), changeFlags}; }

  /// `pickDecrease` and `pickIncrease` as one, since they mostly mirror each other.
  virtual bool pickToward(const PickRequest& request, Direction direction, NodeId id) const = 0;
  /// `pickChange`: any change of any operand, unless a family knows better.
  virtual bool pickOther(const PickRequest& request, NodeId id) const { return pickAny(request, id); }

  static bool pickAny(const PickRequest& request, NodeId id) {
    return Node::pickAnyChange(request.dag, request.state, request.decision, request.delta, id);
  }
  /// Moves the term of the operand at `p`; under a negative coefficient the request turns round. A position of none
  /// comes from a candidate set that turned out empty, and fails.
  template <class Weight>
  static bool pickTerm(const PickRequest& request, Direction direction, NodeId id, OperandPos p) {
    if (p == kNone) return false;
    if (Weight::isNegative(request.dag.fixed, id, p)) direction = opposite(direction);
    return request.toward(direction, request.operand(id, p));
  }

  /// The first half of every `init`.
  void initCells(Dag& dag, NodeId id) {
    Inner::init(dag, id);
    clearChanges(dag, id);
  }
  /// The last step of every `commit`.
  void commitCells(Dag& dag, NodeId id) {
    clearChanges(dag, id);
    dag.nodeValue[id] = dag.tentativeValue[id];
  }
  /// The common tests of every `isInit`.
  [[nodiscard]] bool areCellsInit(const Dag& dag, NodeId id) const {
    return Inner::isInit(dag, id) && (!dag.isDirty(id) || changedNodes(dag, id).empty());
  }

  static void printFlag(const char* label, bool flag) { std::cout << label << flag << '\n'; }

 private:
  [[no_unique_address]] typename Changes::Flags changeFlags;

  void clearChanges(Dag& dag, NodeId id) {
    changeFlags.clear(dag.changes(id));
    dag.records[id].changes = 0;
  }
};

}  // namespace quvex
