#pragma once

#include <cmath>
#include <vector>

#include "solver/node/aggregatenode.h"
#include "solver/node/cancellation.h"
#include "solver/node/productbounds.h"

namespace quvex {

/// Base of the double products: a running product, moved by the ratio of the changed operands, and recomputed from
/// scratch where the ratio would lose the value.
template <class Set, class Factor>
class DoubleProductOf : public AggregateNode<Set, NodeDoubleInner> {
  using Base = AggregateNode<Set, NodeDoubleInner>;

 public:
  using Base::Base;

  [[nodiscard]] bool isInit(const Dag& dag, NodeId id) const final { return this->areCellsInit(dag, id); }
  void init(Dag& dag, NodeId id) final { this->initCells(dag, id); }
  void commit(Dag& dag, NodeId id) final { this->commitCells(dag, id); }

 protected:
  static constexpr const char* kZeroTimesInfinity = "Cannot compute the product of zero and infinity";

  /// The product of all operands, in their order, from `nodeValue` or `tentativeValue`.
  [[nodiscard]] static double total(const DagFixedFields& fixed, const std::vector<t_value>& cells, NodeId id) {
    double product = Factor::factor(fixed, id);
    for (const NodeId child : fixed.childrenOf(id)) product *= fixed.asDouble(child, cells[child]);
    return product;
  }

  /// Computes and stores the tentative value. False if the changed operands have no product.
  [[nodiscard]] bool evalProduct(Dag& dag, NodeId id) const {
    const NodeId* const children = dag.fixed.childrenOf(id).data();
    double before = 1;
    double after = 1;
    this->changedNodes(dag, id).forEach([&](OperandPos p) {
      before *= dag.committedDouble(children[p]);
      after *= dag.tentativeDouble(children[p]);
    });
    if (std::isnan(after)) return false;
    const bool leavesZero = before == 0 && after != 0;
    if (isCancellation(before, after) || leavesZero) {
      dag.tentativeValue[id] = doubleToWord(total(dag.fixed, dag.tentativeValue, id));
    } else if (before != after) {
      dag.tentativeValue[id] = doubleToWord(wordToDouble(dag.nodeValue[id]) * after / before);
    }
    return true;
  }

  bool pickToward(const PickRequest& request, Direction, NodeId id) const final { return this->pickAny(request, id); }
};

}  // namespace quvex
