#pragma once

#include <span>
#include <vector>

#include "builder/preprocessor/lowering.h"
#include "builder/preprocessor/preprocessor.h"
#include "solver/kernel/types.h"

namespace quvex {

/// Makes the nodes of a model, operands before users, and registers constraints and objectives.
/// Derived classes decide which nodes stand for one expression.
/// Invariant: nothing here descends the model by recursion: what is missing goes on a stack, and the expression that
/// needs it is processed again when it is done.
class NodeCreatorBase {
 public:
  static constexpr const char* kName = "quvex::NodeCreatorBase";

  using ExprStack = std::vector<ExprId>;

  explicit NodeCreatorBase(Preprocessor& owner);
  virtual ~NodeCreatorBase() = default;
  NodeCreatorBase(const NodeCreatorBase&) = delete;
  NodeCreatorBase& operator=(const NodeCreatorBase&) = delete;

  /// The whole graph: the roots, the constraints, the objectives.
  virtual void createAll();

  /// Processes the top of the stack: either pops it, with its node made, or pushes what its node needs.
  void createNode(ExprStack& stack);

  /// The node of the representative of an expression, made if need be.
  NodeId getNode(ExprId e);

  /// The expression that really stands for this one.
  [[nodiscard]] virtual ExprId getRepresentative(ExprId e) { return e; }

  /// A node for a constant. Integer constants are shared, doubles are not.
  NodeId getConstantNode(ValueType type, t_value word);

 protected:
  /// The new node of `e`, or kNone when something that it needs was pushed on the stack first.
  virtual NodeId lower(ExprId e, const Lowering& row, ExprStack& stack) = 0;

  /// Fills `operandNodes` with the nodes of the operands' representatives. False, with all those that have no node yet
  /// pushed on the stack, if there are any.
  [[nodiscard]] bool collectOperandNodes(ExprId e, ExprStack& stack);
  /// One node over the operands, double when some representative is.
  NodeId createPlain(ExprId e, const Lowering& row, ExprStack& stack);

  /// The product of one element of each array of a "scalar".
  NodeId createElementProduct(NodeId a, NodeId b, bool isDouble);
  NodeId createElementSum(std::span<const NodeId> products, bool isDouble);
  /// Whether the two arrays of a "scalar" hold any double.
  [[nodiscard]] bool hasDoubleElement(ExprId scalar) const;

  Preprocessor& preprocessor;
  DagFixedFields& fixedFields;
  std::vector<NodeId> operandNodes;

 private:
  void createRoots();
  void addConstraints();
  void addObjectives();
  [[nodiscard]] const Lowering& findLowering(ExprId e) const;

  std::vector<bool> isConstraintNode;  ///< by node id
};

}  // namespace quvex
