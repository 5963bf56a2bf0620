#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "api/modelaccess.h"
#include "api/qvmodel.h"
#include "solver/kernel/types.h"

namespace quvex {

class DagFixedFields;
class NodeCreatorBase;

/// An expression by its index in the model.
using ExprId = std::uint32_t;

/// Whether an objective of that direction takes part in the search at all.
[[nodiscard]] constexpr bool isKnownDirection(QVObjectiveDirection direction) {
  return direction == QVObjectiveDirection::Minimize || direction == QVObjectiveDirection::Maximize;
}

/// One compilation of a closed model into `DagFixedFields`: folds constants, fixes decisions, and has a node creator
/// write the nodes. It lives only as long as that takes.
/// Invariant: `values` is meaningful exactly where `isConstant` is set, and only ever gains entries. An expression gets
/// at most one node.
class Preprocessor {
 public:
  static constexpr const char* kName = "quvex::Preprocessor";

  const QVModel& model;
  DagFixedFields& fixedFields;
  std::vector<NodeId> exprToNode;        ///< by expression, kNone without a node
  std::vector<t_value> values;           ///< by expression, as words of its type
  std::vector<bool> isConstant;          ///< by expression
  std::vector<ExprId> fixedDecisions;    ///< decisions that a constraint fixes
  std::vector<t_value> fixedValues;      ///< parallel to `fixedDecisions`
  std::vector<ExprId> roots;             ///< expressions that no expression uses, ascending
  std::vector<std::uint32_t> userCount;  ///< by expression, operand positions that name it
  std::map<t_value, NodeId> constantNodes;

  Preprocessor(const QVModel& closedModel, DagFixedFields& emptyFields);

  /// Fills `fixedFields`, its `init` included. Without `simplify`, every expression gets the node that is closest to
  /// it. Failures of the arithmetic on constants pass through.
  void run(bool simplify);

  [[nodiscard]] const QVExpression& expression(ExprId e) const { return *ModelAccess::expression(model, e); }
  [[nodiscard]] QVOperator op(ExprId e) const { return ModelAccess::op(expression(e)); }
  [[nodiscard]] ValueType type(ExprId e) const { return ModelAccess::valueType(expression(e)); }
  [[nodiscard]] std::span<const ExprId> operands(ExprId e) const { return ModelAccess::operandIndices(expression(e)); }
  [[nodiscard]] bool hasNode(ExprId e) const { return exprToNode[e] != kNone; }
  [[nodiscard]] bool isDouble(ExprId e) const { return type(e) == kDouble; }
  /// Whether every one of the operands is constant; so it is for no operands.
  [[nodiscard]] bool allConstant(std::span<const ExprId> expressions) const;
  [[nodiscard]] bool anyDouble(std::span<const ExprId> expressions) const;

  void recordConstant(ExprId e, t_value value);

 private:
  void countUsers();
  void collectRoots();
  void copyConstants();

  /// Folds what is constant, from the roots down, one root after the other.
  void propagateConstants();
  void propagateFrom(ExprId root);
  /// Folds one expression whose operands have been looked at.
  void foldExpression(ExprId e);
  void evaluateConstant(ExprId e);
  /// Whether some constant operand decides a "prod", "and" or "or" alone.
  [[nodiscard]] bool isAbsorbed(ExprId e) const;
  /// An "eq" that is a constraint, of a decision and a constant 0 or 1, fixes the decision.
  void fixDecision(ExprId eq);
  [[nodiscard]] std::optional<t_value> fixingValue(ExprId e) const;

  std::vector<bool> visited;
  std::vector<ExprId> stack;
  std::vector<ValueType> operandTypes;
  std::vector<t_value> operandValues;
};

}  // namespace quvex
