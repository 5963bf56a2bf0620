#pragma once

#include "solver/kernel/dag.h"
#include "solver/kernel/mathdouble.h"
#include "solver/kernel/node.h"

namespace quvex {

/// What never changes: a source that is no decision. It refuses picks and has nothing to do in a move.
class NodeUnchanging : public Node {
 public:
  bool pickDecrease(const Dag&, RandomState&, NodeId&, int&, NodeId) const final { return false; }
  bool pickIncrease(const Dag&, RandomState&, NodeId&, int&, NodeId) const final { return false; }
  bool pickChange(const Dag&, RandomState&, NodeId&, int&, NodeId) const final { return false; }

  void eval(Dag&, Propagation&, NodeId) final {}
  [[nodiscard]] bool hasChanged(const Dag&, NodeId) const final { return false; }
  void commit(Dag&, NodeId) final {}
  void rollback(Dag&, NodeId) final {}
};

/// A node whose value, and both whose bounds, are its one constant.
class NodeSingleConstant : public NodeUnchanging {
 public:
  [[nodiscard]] static Bounds computeBounds(const DagFixedFields& fixed, NodeId id) {
    return {fixed.constant(id, 0), fixed.constant(id, 0)};
  }
  void init(Dag& dag, NodeId id) final { dag.nodeValue[id] = dag.tentativeValue[id] = dag.fixed.constant(id, 0); }
};

/// An integer, or a boolean if it is 0 or 1.
class NodeConstant final : public NodeSingleConstant {
 public:
  static constexpr const char* kName = "quvex::NodeConstant";

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const override {
    const t_value value = dag.nodeValue[id];
    return value == dag.tentativeValue[id] && value == dag.fixed.minBounds[id] && value == dag.fixed.maxBounds[id];
  }
};

/// A double.
class NodeDoubleConstant final : public NodeSingleConstant {
 public:
  static constexpr const char* kName = "quvex::NodeDoubleConstant";

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const override {
    const double value = dag.committedDouble(id);
    return MathDouble::isEqual(value, dag.tentativeDouble(id)) && MathDouble::isEqual(value, dag.fixed.minDouble(id)) &&
           MathDouble::isEqual(value, dag.fixed.maxDouble(id));
  }
};

/// A run of constants to be indexed by "at" (as integers) or "double_at" (as doubles). Its own cells stay 0.
class NodeConstArray final : public NodeUnchanging {
 public:
  static constexpr const char* kName = "quvex::NodeConstArray";

  [[nodiscard]] static Bounds computeBounds(const DagFixedFields&, NodeId) { return {}; }
  [[nodiscard]] bool isInit(const Dag&, NodeId) const override { return true; }
  void init(Dag&, NodeId) override {}
};

}  // namespace quvex
