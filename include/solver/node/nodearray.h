#pragma once

#include <string>

#include "solver/kernel/changedset.h"
#include "solver/kernel/dag.h"
#include "solver/kernel/nodeinner.h"
#include "solver/kernel/subsetchoice.h"

namespace quvex {

/// A run of operands to be indexed by "at". It has no value: its cells stay 0, and bounds mean nothing. All it does is
/// pass on that an element has changed; no move can be asked of it.
class NodeArray : public NodeInner {
 public:
  [[nodiscard]] static Bounds computeBounds(const DagFixedFields&, NodeId) { return {}; }
  [[nodiscard]] std::int64_t computeValue(const Dag&, NodeId) const final { return 0; }
  [[nodiscard]] bool isInit(const Dag&, NodeId) const final { return true; }
  void eval(Dag&, Propagation&, NodeId) final {}

  bool pickDecrease(const Dag&, RandomState&, NodeId&, int&, NodeId) const final { return false; }
  bool pickIncrease(const Dag&, RandomState&, NodeId&, int&, NodeId) const final { return false; }
  bool pickChange(const Dag&, RandomState&, NodeId&, int&, NodeId) const final { return false; }

  // What depends on the set of changed elements.
  [[nodiscard]] bool hasChanged(const Dag& dag, NodeId id) const override = 0;
  void commit(Dag& dag, NodeId id) override = 0;
  void rollback(Dag& dag, NodeId id) override = 0;
  void notifyChildChanged(Dag& dag, OperandPos position, NodeId id) override = 0;
  [[nodiscard]] ChangeKind changeKind() const override = 0;
};

/// An array has changed as soon as one element has, though its own cells never do. That is what wakes the nodes above.
template <class Set>
class NodeArrayTemplate final : public NodeArray {
 public:
  static inline const std::string kName = nameOver<Set>("quvex::NodeArrayTemplate");

  explicit NodeArrayTemplate(std::uint32_t) {}

  void init(Dag& dag, NodeId id) override { clearChanges(dag, id); }
  [[nodiscard]] bool hasChanged(const Dag& dag, NodeId id) const override {
    return dag.isDirty(id) && dag.changes(id).word != 0;
  }
  void commit(Dag& dag, NodeId id) override { clearChanges(dag, id); }
  void rollback(Dag& dag, NodeId id) override { clearChanges(dag, id); }
  void notifyChildChanged(Dag& dag, OperandPos position, NodeId id) override {
    ChangedSet<Set>::note(dag.records[id], dag.allLists, position);
  }
  [[nodiscard]] ChangeKind changeKind() const override { return ChangedSet<Set>::kKind; }

 private:
  static void clearChanges(Dag& dag, NodeId id) { dag.records[id].changes = 0; }
};

}  // namespace quvex
