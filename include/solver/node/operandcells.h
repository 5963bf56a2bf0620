#pragma once

#include "solver/kernel/dag.h"
#include "solver/kernel/types.h"

namespace quvex {

/// The operands of one node, seen through either all committed or all tentative cells, so that one formula serves
/// `computeValue` and `eval`. A view: it lives for one computation.
class OperandCells {
 public:
  [[nodiscard]] static OperandCells committed(const Dag& dag, NodeId id) {
    return {dag.fixed, dag.nodeValue.data(), id};
  }
  [[nodiscard]] static OperandCells tentative(const Dag& dag, NodeId id) {
    return {dag.fixed, dag.tentativeValue.data(), id};
  }

  /// The operand at `p` as a number of this kind.
  template <class Numbers>
  [[nodiscard]] typename Numbers::Value get(OperandPos p) const {
    return Numbers::read(fixed, operands[p], cells[operands[p]]);
  }
  [[nodiscard]] t_value word(OperandPos p) const { return cells[operands[p]]; }
  [[nodiscard]] NodeId operand(OperandPos p) const { return operands[p]; }
  /// The cell of any node, of the same kind as those of the operands.
  [[nodiscard]] t_value wordOf(NodeId id) const { return cells[id]; }

  const DagFixedFields& fixed;

 private:
  OperandCells(const DagFixedFields& fixedFields, const t_value* allCells, NodeId id)
      : fixed(fixedFields), operands(fixedFields.children.data() + fixedFields.childStart[id]), cells(allCells) {}

  const NodeId* operands;
  const t_value* cells;
};

}  // namespace quvex
