#include "builder/preprocessor/nodecreatorbase.h"

#include <algorithm>
#include <array>

#include "api/qvexception.h"
#include "solver/kernel/dagfixedfields.h"

namespace quvex {

NodeCreatorBase::NodeCreatorBase(Preprocessor& owner) : preprocessor(owner), fixedFields(owner.fixedFields) {}

void NodeCreatorBase::createAll() {
  createRoots();
  addConstraints();
  addObjectives();
}

void NodeCreatorBase::createRoots() {
  for (const ExprId root : preprocessor.roots) getNode(root);
}

/// Several constraints may come down to one node, which is entered once. A constraint that can never hold is entered
/// as the constant 0, and one that always holds is left out.
void NodeCreatorBase::addConstraints() {
  for (const QVExpression* constraint : ModelAccess::constraints(preprocessor.model)) {
    const ExprId e = ModelAccess::index(*constraint);
    if (preprocessor.isConstant[e] && preprocessor.values[e] == 1) continue;
    const NodeId node = getNode(e);
    if (node >= isConstraintNode.size()) isConstraintNode.resize(fixedFields.nbNodes, false);
    if (isConstraintNode[node]) continue;
    isConstraintNode[node] = true;
    fixedFields.addConstraint(node);
  }
}

void NodeCreatorBase::addObjectives() {
  const QVModel& model = preprocessor.model;
  const auto& objectives = ModelAccess::objectives(model);
  for (std::size_t i = 0; i < objectives.size(); ++i) {
    NodeId node = getNode(ModelAccess::index(*objectives[i]));
    const QVObjectiveDirection direction = ModelAccess::objectiveDirection(model, i);
    if (!isKnownDirection(direction)) continue;
    // A constraint must stay at level 0, so an objective on the same node gets a node of its own.
    const bool isConstraint = node < isConstraintNode.size() && isConstraintNode[node];
    if (isConstraint) node = fixedFields.addNode(NodeType::Sum, {&node, 1});
    fixedFields.addObjective(node, direction == QVObjectiveDirection::Maximize ? 1 : 0);
  }
}

NodeId NodeCreatorBase::getNode(ExprId e) {
  const ExprId representative = getRepresentative(e);
  ExprStack stack{representative};
  while (!stack.empty()) createNode(stack);
  return preprocessor.exprToNode[representative];
}

void NodeCreatorBase::createNode(ExprStack& stack) {
  const ExprId e = stack.back();
  if (preprocessor.hasNode(e)) return stack.pop_back();
  const NodeId node = preprocessor.isConstant[e] ? getConstantNode(preprocessor.type(e), preprocessor.values[e])
                                                 : lower(e, findLowering(e), stack);
  if (node == kNone) return;
  preprocessor.exprToNode[e] = node;
  stack.pop_back();
}

const Lowering& NodeCreatorBase::findLowering(ExprId e) const {
  const auto number = static_cast<unsigned>(preprocessor.op(e));
  if (number < kLowerings.size()) return kLowerings[number];
  raise<KernelException>(here<NodeCreatorBase>(), "Node type ", number, " not supported");
}

NodeId NodeCreatorBase::getConstantNode(ValueType type, t_value word) {
  if (type == kDouble) return fixedFields.addDoubleConstant(wordToDouble(word));
  const auto [entry, isNew] = preprocessor.constantNodes.try_emplace(word, kNone);
  if (isNew) entry->second = fixedFields.addConstant(word);
  return entry->second;
}

bool NodeCreatorBase::collectOperandNodes(ExprId e, ExprStack& stack) {
  const std::size_t before = stack.size();
  operandNodes.clear();
  for (const ExprId operand : preprocessor.operands(e)) {
    const ExprId representative = getRepresentative(operand);
    if (!preprocessor.hasNode(representative)) stack.push_back(representative);
    operandNodes.push_back(preprocessor.exprToNode[representative]);
  }
  return stack.size() == before;
}

NodeId NodeCreatorBase::createPlain(ExprId e, const Lowering& row, ExprStack& stack) {
  if (!collectOperandNodes(e, stack)) return kNone;
  const bool isDouble = std::ranges::any_of(
      preprocessor.operands(e), [this](ExprId operand) { return preprocessor.isDouble(getRepresentative(operand)); });
  return fixedFields.addNode(isDouble ? row.doubleNode : row.integerNode, operandNodes);
}

NodeId NodeCreatorBase::createElementProduct(NodeId a, NodeId b, bool isDouble) {
  const std::array<NodeId, 2> factors = {a, b};
  return fixedFields.addNode(isDouble ? NodeType::DoubleProduct : NodeType::Product, factors);
}

NodeId NodeCreatorBase::createElementSum(std::span<const NodeId> products, bool isDouble) {
  return fixedFields.addNode(isDouble ? NodeType::DoubleSum : NodeType::Sum, products);
}

bool NodeCreatorBase::hasDoubleElement(ExprId scalar) const {
  return std::ranges::any_of(preprocessor.operands(scalar),
                             [this](ExprId array) { return preprocessor.anyDouble(preprocessor.operands(array)); });
}

}  // namespace quvex
