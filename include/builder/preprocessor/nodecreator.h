#pragma once

#include <cstddef>
#include <vector>

#include "builder/preprocessor/nodecreatorbase.h"

namespace quvex {

/// What the flattening of a group of operands into one node has gathered.
struct FlattenResult {
  ExprId expression = 0;              ///< the root of the flattening
  std::vector<t_value> constants;     ///< already multiplied by their coefficients
  std::vector<NodeId> nodeIds;        ///< the other terms
  std::vector<t_value> coefficients;  ///< one per entry of `nodeIds`
};

/// Makes nodes with rewriting: takes constants together, looks through expressions that only pass one operand on,
/// flattens nested groups, groups coefficients and splits off boolean decisions.
class NodeCreator : public NodeCreatorBase {
 public:
  static constexpr const char* kName = "quvex::NodeCreator";

  explicit NodeCreator(Preprocessor& owner);

  /// Behind the graph itself, an expression without a node takes over that of its representative.
  void createAll() override;

  /// Looks through groups of which only one operand counts.
  [[nodiscard]] ExprId getRepresentative(ExprId e) override;

  /// Whether a constant operand with that operator of its own, type and value adds nothing to a group.
  [[nodiscard]] static bool isNeutral(QVOperator op, ValueType type, t_value word);

 protected:
  NodeId lower(ExprId e, const Lowering& row, ExprStack& stack) override;

 private:
  struct Term {
    t_value coefficient;
    ExprId expression;
  };

  /// A group in the making. It stays open while nodes that it needs are made, and goes on where it stopped.
  struct OpenGroup : FlattenResult {
    std::vector<Term> pending;     ///< the next one is on top
    bool awaitsNode = false;       ///< the top of `pending` has been found to need a node of its own
    bool isDouble = false;         ///< of a "scalar": its arithmetic is double
    NodeId firstFactor = kNone;    ///< of a "scalar": the node of a's element that waits for b's
    std::vector<NodeId> products;  ///< of a "scalar" without a constant side

    void reset(ExprId root);
  };

  // Representatives.
  [[nodiscard]] ExprId reduceOnce(ExprId e) const;
  [[nodiscard]] ExprId onlyCountingOperand(ExprId e) const;

  // Open groups.
  OpenGroup* resumedGroup(ExprId e);
  OpenGroup& openGroup(ExprId e);
  void closeGroup() { --nbOpen; }
  NodeId nextNode(OpenGroup& group, ExprStack& stack);

  // Flattening.
  OpenGroup* flatten(ExprId e, bool keepSign, ExprStack& stack);
  [[nodiscard]] bool rewriteTop(OpenGroup& group, bool keepSign);
  [[nodiscard]] bool unwrapProduct(OpenGroup& group, const Term& term, bool keepSign);
  void pushOperands(OpenGroup& group, ExprId e, t_value coefficient);
  [[nodiscard]] t_value multiply(ExprId root, t_value coefficient, ValueType type, t_value word) const;
  [[nodiscard]] t_value fold(const FlattenResult& result, QVOperator op);
  void appendFoldedConstant(FlattenResult& result);
  void appendFoldedCoefficient(FlattenResult& result);
  [[nodiscard]] NodeId createFoldedNode(const FlattenResult& result);
  [[nodiscard]] bool hasUnitCoefficients(const FlattenResult& result) const;
  [[nodiscard]] bool isBooleanDecision(NodeId node) const;

  // One handler per rewriting.
  NodeId createSum(ExprId e, const Lowering& row, ExprStack& stack);
  NodeId createUnitSum(NodeType type, const std::vector<NodeId>& ids);
  NodeId createWeightedSum(NodeType type, const std::vector<NodeId>& ids, const std::vector<t_value>& coefficients);
  NodeId createProduct(ExprId e, const Lowering& row, ExprStack& stack);
  NodeId createMinMax(ExprId e, const Lowering& row, ExprStack& stack);
  NodeId createBooleanAggregate(ExprId e, const Lowering& row, ExprStack& stack);
  NodeId createIf(ExprId e, const Lowering& row, ExprStack& stack);
  NodeId createAt(ExprId e, const Lowering& row, ExprStack& stack);
  NodeId createArray(ExprId e, ExprStack& stack);
  NodeId createConstArray(ExprId e);
  NodeId createScalarArray(ExprId e, const Lowering& row, ExprStack& stack);
  NodeId createConstantScalar(ExprId e);
  OpenGroup& openScalar(ExprId e);
  [[nodiscard]] bool multiplyElements(OpenGroup& group, ExprStack& stack);
  [[nodiscard]] bool collectElements(OpenGroup& group, ExprStack& stack);
  NodeId passOn(ExprId e, ExprId chosen, ExprStack& stack);

  std::vector<ExprId> representatives;  ///< by expression, kNone as long as nobody asked
  std::vector<OpenGroup> groups;        ///< the first `nbOpen` are open, each needed by the one before
  std::size_t nbOpen = 0;
  std::vector<ExprId> path;
  std::vector<ValueType> types;
  std::vector<t_value> words;
};

}  // namespace quvex
