#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "solver/kernel/types.h"

namespace quvex {

class Dag;
class DagFixedFields;
class DagStructures;
class QVExpression;
class QVModel;
class QVSolution;
class Solution;

/// The compiled form of a closed model, and the bridge between the two: which node stands for which expression, which
/// decisions were fixed on the way, and how a solution of one side becomes a solution of the other.
/// Everything but the dags is read-only after construction. The dags outlive a solve, so that the next one starts
/// without building them again.
class DagBuilder {
 public:
  static constexpr const char* kName = "quvex::DagBuilder";

  /// Compiles the model, which must be closed. A constructor that fails leaves nothing behind.
  explicit DagBuilder(QVModel* model);
  virtual ~DagBuilder();
  DagBuilder(const DagBuilder&) = delete;
  DagBuilder& operator=(const DagBuilder&) = delete;

  [[nodiscard]] const DagFixedFields& getFixedFields() const { return *fixedFields; }
  [[nodiscard]] const DagStructures& getStructures() const { return *structures; }

  /// The main dag, initialised.
  [[nodiscard]] Dag& getDag() { return *dag; }
  /// A further dag on the same fixed fields, made and initialised when it is first asked for. Index 0 is the first
  /// one past the main dag, so search thread t > 0 works on index t - 1.
  [[nodiscard]] Dag& getExtraDag(std::size_t index);

  /// The node that stands for an expression, or kNone.
  [[nodiscard]] NodeId getNode(const QVExpression* expression) const;

  /// The range of an expression that has a value, as a word of the expression's type. Without a node: all of the type,
  /// but 0 to 0 for a boolean.
  [[nodiscard]] t_value getMinBound(const QVExpression* expression) const;
  [[nodiscard]] t_value getMaxBound(const QVExpression* expression) const;

  /// Whether no assignment of the decisions makes a constraint hold, as far as compilation can tell.
  [[nodiscard]] bool canNeverHold(const QVExpression* constraint) const;

  /// Copies decisions, satisfied constraints and objectives of the model's solution into a kernel snapshot. Fixed
  /// decisions take their values first, and all values are recomputed.
  void loadSolution(QVSolution& modelSolution, Solution& kernelSolution) const;
  /// Copies the decisions of a kernel snapshot into the model's solution. What follows from them is computed when it
  /// is next asked for.
  void storeSolution(const Solution& kernelSolution, QVSolution& modelSolution) const;

 private:
  void compile(bool simplify);
  [[nodiscard]] bool isKernelDecision(NodeId node) const;
  /// An entry of `minBounds` or `maxBounds` as a word of that type.
  [[nodiscard]] t_value boundAs(ValueType type, NodeId node, const std::vector<t_value>& bounds) const;
  void loadDecisions(const QVSolution& modelSolution, Solution& kernelSolution) const;
  void loadConstraints(const QVSolution& modelSolution, Solution& kernelSolution) const;
  void loadObjectives(const QVSolution& modelSolution, Solution& kernelSolution) const;
  void writeFixedDecisions(QVSolution& modelSolution) const;

  QVModel* model;
  std::unique_ptr<DagFixedFields> fixedFields;
  std::unique_ptr<Dag> dag;
  std::vector<std::unique_ptr<Dag>> extraDags;
  std::unique_ptr<DagStructures> structures;
  std::vector<NodeId> exprToNode;             ///< by expression, kNone without a node
  std::vector<std::uint32_t> fixedDecisions;  ///< the expressions of decisions that compilation has fixed
  std::vector<t_value> fixedValues;           ///< parallel to `fixedDecisions`
  std::vector<bool> alwaysHolds;              ///< by expression, constraints that are constant and not 0
};

}  // namespace quvex
