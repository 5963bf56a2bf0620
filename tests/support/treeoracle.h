#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "solver/kernel/mathdouble.h"
#include "solver/move/autonomousstructure.h"

namespace quvex {

/// Recomputes the values of the simulation from its decisions. What a sum of doubles or a comparison of doubles showed
/// at creation stays in its value; so the oracle must be made right after the simulation, and adds true changes to
/// that.
class TreeOracle {
 public:
  explicit TreeOracle(const AutonomousStructure& ownStructure) : structure(ownStructure) {
    const std::size_t n = structure.dynamicNodes.size();
    values.assign(n, 0);
    offsets.assign(n, 0);
    for (StaticIndex s = 0; s < n; ++s) {
      offsets[s] = startValue(s) - raw(s);
      compute(s);
    }
  }

  /// All values, and the violated set.
  void expectAgreement() {
    const DagFixedFields& fixed = structure.dag.fixed;
    for (StaticIndex s = 0; s < values.size(); ++s) {
      compute(s);
      const DynamicConstraintNode& node = *structure.dynamicNodes[s];
      EXPECT_NEAR(node.valueDouble(), values[s], 1e-6) << "static node " << s;
      EXPECT_EQ(node.value(), isDoubleSum(idOf(s)) ? 0 : std::llround(values[s]));
      if (fixed.isConstraint(idOf(s))) {
        EXPECT_EQ(structure.violatedNodes.contains(s), values[s] == 0) << "static node " << s;
      } else {
        EXPECT_FALSE(structure.violatedNodes.contains(s));
      }
      if (hasReliableCheck(s)) {
        EXPECT_NO_THROW(node.check());
      }
    }
  }

 private:
  const AutonomousStructure& structure;
  std::vector<double> values;   ///< by static index
  std::vector<double> offsets;  ///< of doubles: what creation made of the operands, less what they were

  [[nodiscard]] NodeId idOf(StaticIndex s) const { return structure.structures.staticNodes[s]->nodeId; }
  [[nodiscard]] NodeType typeOf(NodeId id) const { return structure.dag.fixed.nodeTypes[id]; }
  [[nodiscard]] bool isDoubleSum(NodeId id) const {
    return typeOf(id) == NodeType::DoubleSum || typeOf(id) == NodeType::DoubleScalarSum;
  }
  [[nodiscard]] bool isDoubleComparison(NodeId id) const {
    return typeOf(id) == NodeType::DoubleLeq || typeOf(id) == NodeType::DoubleGeq || typeOf(id) == NodeType::DoubleEq;
  }

  [[nodiscard]] double operand(NodeId id) const {
    const StaticIndex s = structure.structures.staticIndexOfNode[id];
    return s != kNone ? values[s] : structure.dag.committedDouble(id);
  }
  /// As creation sees an operand.
  [[nodiscard]] double operandAtStart(NodeId id) const {
    const StaticIndex s = structure.structures.staticIndexOfNode[id];
    if (s == kNone) return static_cast<double>(structure.dag.nodeValue[id]);
    return isDoubleSum(id) ? 0.0 : values[s];
  }
  [[nodiscard]] double coefficient(NodeId id, OperandPos p) const {
    if (typeOf(id) == NodeType::ScalarSum) return static_cast<double>(structure.dag.fixed.constant(id, p));
    return typeOf(id) == NodeType::DoubleScalarSum ? structure.dag.fixed.constantDouble(id, p) : 1.0;
  }

  /// The sum, the difference, or the number of true operands.
  template <class Read>
  [[nodiscard]] double combine(StaticIndex s, Read read) const {
    const NodeId id = idOf(s);
    const auto operands = structure.dag.fixed.childrenOf(id);
    switch (typeOf(id)) {
      case NodeType::Boolean:
        return (structure.dag.nodeValue[id] != 0) !=
                       structure.flippedDecisions.contains(structure.dag.fixed.decisionPos[id])
                   ? 1
                   : 0;
      case NodeType::Leq:
      case NodeType::Geq:
      case NodeType::Eq:
      case NodeType::DoubleLeq:
      case NodeType::DoubleGeq:
      case NodeType::DoubleEq:
        return read(operands[1]) - read(operands[0]);
      case NodeType::And:
      case NodeType::Or: {
        double nbTrue = 0;
        for (const NodeId o : operands) nbTrue += read(o) != 0 ? 1 : 0;
        return nbTrue;
      }
      default: {
        double sum = 0;
        for (OperandPos p = 0; p < operands.size(); ++p) sum += coefficient(id, p) * read(operands[p]);
        return sum;
      }
    }
  }
  [[nodiscard]] double raw(StaticIndex s) const {
    return combine(s, [this](NodeId id) { return operand(id); });
  }
  [[nodiscard]] double startValue(StaticIndex s) const {
    if (!isDoubleSum(idOf(s)) && !isDoubleComparison(idOf(s))) return raw(s);
    return combine(s, [this](NodeId id) { return operandAtStart(id); });
  }

  void compute(StaticIndex s) {
    const double x = raw(s) + offsets[s];
    const NodeId id = idOf(s);
    switch (typeOf(id)) {
      case NodeType::And:
        values[s] = x == structure.dag.fixed.nbChildren[id] ? 1 : 0;
        break;
      case NodeType::Or:
        values[s] = x > 0 ? 1 : 0;
        break;
      case NodeType::Leq:
      case NodeType::DoubleLeq:
        values[s] = x >= 0 || MathDouble::isNearlyZero(x) ? 1 : 0;
        break;
      case NodeType::Geq:
      case NodeType::DoubleGeq:
        values[s] = x <= 0 || MathDouble::isNearlyZero(x) ? 1 : 0;
        break;
      case NodeType::Eq:
      case NodeType::DoubleEq:
        values[s] = MathDouble::isNearlyZero(x) ? 1 : 0;
        break;
      default:
        values[s] = x;
    }
  }

  /// Sets of abilities above other inner nodes may lag, since a change of abilities alone does not travel; and what a
  /// nested sum of doubles shows is lost on a recomputation.
  [[nodiscard]] bool hasReliableCheck(StaticIndex s) const {
    const NodeId id = idOf(s);
    if (isDoubleComparison(id)) {
      for (const NodeId o : structure.dag.fixed.childrenOf(id)) {
        if (isDoubleSum(o)) return false;
      }
      return true;
    }
    const bool isComparison = typeOf(id) == NodeType::Leq || typeOf(id) == NodeType::Geq || typeOf(id) == NodeType::Eq;
    return isComparison || structure.structures.staticNodes[s]->isFlat(structure.structures);
  }
};

}  // namespace quvex
