#include <iostream>

#include "solver/move/constraintnodeinner.h"
#include "solver/move/dagstructures.h"
#include "solver/move/gallop.h"

namespace quvex {

// The fixed half.

void StaticConstraintNode::printOperands(const char* word, const DagStructures& structures) const {
  const DagFixedFields& fixed = *structures.fixed;
  const char* separator = word;
  for (const NodeId operand : fixed.childrenOf(nodeId)) {
    std::cout << separator;
    separator = " , ";
    const StaticIndex s = structures.staticIndexOfNode[operand];
    if (s != kNone) {
      structures.staticNodes[s]->printTree(structures);
    } else if (fixed.isDouble(operand)) {
      std::cout << fixed.constantDouble(operand, 0);
    } else {
      std::cout << fixed.constant(operand, 0);
    }
  }
  std::cout << ")";
}

bool StaticConstraintNode::isOverSources(const DagStructures& structures) const {
  return structures.fixed->nodeRanks[nodeId] == 1;
}

// The live half.

void DynamicConstraintNode::operandChanged(OperandPos position, std::int64_t oldValue, std::int64_t newValue,
                                           bool canRaise, bool canLower) {
  operandChangedDouble(position, static_cast<double>(oldValue), static_cast<double>(newValue), canRaise, canLower);
}

void DynamicConstraintNode::operandChangedDouble(OperandPos, double, double, bool, bool) {}

void DynamicConstraintNode::collectSelf(Direction, std::span<const StaticIndex>, std::vector<StaticIndex>&,
                                        std::uint32_t) const {}

void DynamicConstraintNode::collectCommon(RandomState&, std::span<const StaticIndex>, std::vector<StaticIndex>&,
                                          std::uint32_t) const {}

template <class Value, class Tell>
void DynamicConstraintNode::spread(NodeId self, Value oldValue, Value newValue, Tell tell) {
  if (oldValue == newValue) return;
  const DagFixedFields& fixed = structure.dag.fixed;
  if (fixed.isConstraint(self)) {
    const StaticIndex index = structure.structures.staticIndexOfNode[self];
    if (newValue != 0) {
      structure.violatedNodes.remove(index);
    } else {
      structure.violatedNodes.add(index);
    }
  }
  // The kernel's own runs, without a copy for the tree: an evaluation has just read them or will do so soon.
  for (const ParentLink link : fixed.parentRun(self).between(0, 0)) {
    if (DynamicConstraintNode* parent = structure.dynamicNodeOf(link.parent)) tell(*parent, link.childPos);
  }
}

void DynamicConstraintNode::notifyParents(NodeId self, std::int64_t oldValue, std::int64_t newValue, bool canRaise,
                                          bool canLower) {
  spread(self, oldValue, newValue, [=](DynamicConstraintNode& parent, OperandPos p) {
    parent.operandChanged(p, oldValue, newValue, canRaise, canLower);
  });
}

void DynamicConstraintNode::notifyParents(NodeId self, double oldValue, double newValue, bool canRaise, bool canLower) {
  spread(self, oldValue, newValue, [=](DynamicConstraintNode& parent, OperandPos p) {
    parent.operandChangedDouble(p, oldValue, newValue, canRaise, canLower);
  });
}

// Nodes with operands.

std::int64_t DynamicConstraintNodeInner::operandValue(OperandPos p) const {
  const DynamicConstraintNode* operand = dynamicOperand(p);
  return operand != nullptr ? operand->value() : structure.dag.nodeValue[fixed().child(self.nodeId, p)];
}

std::uint32_t DynamicConstraintNodeInner::nbOperandWays(Direction direction, OperandPos p) const {
  const DynamicConstraintNode* operand = dynamicOperand(p);
  return operand != nullptr ? operand->nbWays(direction) : 0;
}

bool DynamicConstraintNodeInner::flipOperand(OperandPos p, RandomState& state, bool strict) {
  DynamicConstraintNode* operand = dynamicOperand(p);
  return operand != nullptr && operand->flip(state, strict);
}

bool DynamicConstraintNodeInner::moveOperand(Direction direction, OperandPos p, RandomState& state, bool strict) {
  if (p == kNone) return false;
  DynamicConstraintNode* operand = dynamicOperand(p);
  return operand != nullptr && operand->move(direction, state, strict);
}

bool DynamicConstraintNodeInner::findOperand(OperandPos p, StaticIndex& operand) const {
  if (p == kNone) return false;
  const StaticIndex s = structure.structures.staticIndexOfNode[fixed().child(self.nodeId, p)];
  if (s == kNone) return false;
  operand = s;
  return true;
}

void DynamicConstraintNodeAggregate::collectCommon(RandomState& state, std::span<const StaticIndex> list,
                                                   std::vector<StaticIndex>& out, std::uint32_t limit) const {
  const std::span<const StaticIndex> operands = self.flatOperands;
  if (operands.empty()) return;
  const std::uint32_t r = rand(state, static_cast<std::uint32_t>(operands.size()));
  collectIntersection(operands, list, out, limit);
  // The walk from a random place on can only repeat what the first has found. Both stay, for the draw steps the state.
  if (out.size() < limit) collectIntersection(operands.subspan(r + 1), list, out, limit);
}

void collectIntersection(std::span<const StaticIndex> a, std::span<const StaticIndex> b, std::vector<StaticIndex>& out,
                         std::uint32_t limit) {
  // Each round looks for the present entry of one list in the other, and then the lists swap roles.
  OperandPos i = 0;
  OperandPos j = 0;
  while (i < a.size() && j < b.size()) {
    j = gallop(b, a[i], j, static_cast<OperandPos>(b.size() - 1));
    if (j == kNone) return;
    if (a[i] == b[j]) {
      out.push_back(a[i]);
      if (out.size() > limit) return;
      ++i;
      ++j;
    }
    std::swap(a, b);
    std::swap(i, j);
  }
}

}  // namespace quvex
