#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "solver/kernel/mathdouble.h"
#include "solver/kernel/nodetypeutils.h"
#include "solver/kernel/random.h"
#include "support/graphbuilder.h"

namespace quvex {

/// What the operands of the operator under test may be.
enum class OperandKind : std::uint8_t {
  Booleans,        ///< decisions, "not", constants
  Integers,        ///< those, integer decisions, small weighted sums
  Doubles,         ///< those, double constants, small double sums
  IntegerFactors,  ///< mostly 0 and 1, so that products neither wrap nor vanish for long
  DoubleFactors,   ///< the same with halves and doubles
};

/// A random graph around one operator, and random moves on it.
///
/// The operator is the second objective; a first objective and a constraint over some of the same decisions make
/// levels. A move sets some decisions, is evaluated up to a random stage and committed or rolled back; now and then the
/// search optimises the first objective alone for some moves and catches up. After each move every node agrees with a
/// recomputation, and the operator with the oracle: the test says what is true, the harness does the rest.
class NodeHarness : public GraphBuilder {
 public:
  /// The operator's value from its operands and constants, all read as doubles.
  using Oracle = std::function<double(std::span<const double> operands, std::span<const double> constants)>;

  NodeHarness(NodeType type, OperandKind operandKind, std::uint32_t nbOperands, Oracle truth, RandomState seed = 1)
      : kind(operandKind), oracle(std::move(truth)), state(seed) {
    std::vector<NodeId> operands;
    for (std::uint32_t i = 0; i < nbOperands; ++i) operands.push_back(makeOperand(operands));
    node = add(type, operands, makeConstants(type, operands));
    while (decisions.size() < 3) decisions.push_back(boolean());
    const std::vector<NodeId> some(decisions.begin(), decisions.begin() + 3);
    constraint(add(NodeType::Leq, {add(NodeType::Sum, some), constant(4)}));
    minimise(add(NodeType::Sum, {decisions[0], decisions.back()}));
    minimise(node);
    build();
    hard = rand(state, 2) == 0;
    if (hard) dag->propagation.activateAllConstraints();
  }

  void run(int nbMoves) {
    expectConsistent();
    for (int i = 0; i < nbMoves && !testing::Test::HasFailure(); ++i) {
      if (rand(state, 8) == 0) {
        lagAndCatchUp();
      } else {
        (void)makeMove();
      }
      expectConsistent();
    }
  }

  NodeId node = 0;

 private:
  OperandKind kind;
  Oracle oracle;
  RandomState state;
  std::vector<NodeId> decisions;
  bool hard = false;  ///< whether the constraint is active, so that moves may break it

  [[nodiscard]] bool isFactor() const {
    return kind == OperandKind::IntegerFactors || kind == OperandKind::DoubleFactors;
  }
  std::int64_t between(std::int64_t low, std::int64_t high) {
    return low + rand(state, static_cast<std::uint32_t>(high - low + 1));
  }

  NodeId newDecision() {
    decisions.push_back(boolean());
    return decisions.back();
  }
  NodeId makeOperand(const std::vector<NodeId>& earlier) {
    if (!earlier.empty() && rand(state, 16) == 0)
      return earlier[rand(state, static_cast<std::uint32_t>(earlier.size()))];
    switch (kind) {
      case OperandKind::Booleans:
        return makeBoolean();
      case OperandKind::Integers:
        return makeInteger();
      case OperandKind::Doubles:
        return makeDouble();
      case OperandKind::IntegerFactors:
        return makeIntegerFactor(earlier.size());
      case OperandKind::DoubleFactors:
        return makeDoubleFactor(earlier.size());
    }
    return kNone;
  }
  NodeId makeBoolean() {
    switch (rand(state, 8)) {
      case 0:
        return constant(rand(state, 2));
      case 1:
      case 2:
        return add(NodeType::Not, {newDecision()});
      default:
        return newDecision();
    }
  }
  NodeId makeInteger() {
    switch (rand(state, 6)) {
      case 0:
        decisions.push_back(integer());
        return decisions.back();
      case 1:
        return constant(between(-5, 5));
      case 2:
      case 3:
        return add(NodeType::ScalarSum, std::vector<NodeId>{newDecision(), newDecision()},
                   {between(-6, 6), between(1, 3)});
      default:
        return makeBoolean();
    }
  }
  NodeId makeDouble() {
    switch (rand(state, 5)) {
      case 0:
        return constantDouble(static_cast<double>(between(-20, 20)) / 4);
      case 1:
        return makeInteger();
      default:
        return add(NodeType::DoubleScalarSum, std::vector<NodeId>{newDecision(), newDecision()},
                   {doubleToWord(static_cast<double>(between(-20, 20)) / 7), doubleToWord(0.25)});
    }
  }
  /// The first four may reach beyond 1; of the others most start at 1 and seldom leave it.
  NodeId makeIntegerFactor(std::size_t position) {
    if (position < 4) {
      return add(NodeType::ScalarSum, std::vector<NodeId>{newDecision(), newDecision(), constant(1)},
                 {between(-3, 3), between(-3, 3), between(-2, 2)});
    }
    return add(NodeType::Not, {newDecision()});
  }
  NodeId makeDoubleFactor(std::size_t position) {
    if (position < 4) {
      return add(NodeType::DoubleScalarSum, std::vector<NodeId>{newDecision(), newDecision(), constant(1)},
                 {doubleToWord(static_cast<double>(between(-3, 3)) / 2), doubleToWord(0.5), doubleToWord(1.0)});
    }
    return makeIntegerFactor(position);
  }

  std::vector<t_value> makeConstants(NodeType type, const std::vector<NodeId>& operands) {
    std::vector<t_value> constants;
    switch (type) {
      case NodeType::ScalarSum:
      case NodeType::ScalarMin:
      case NodeType::ScalarMax:
        for (const NodeId operand : operands) constants.push_back(makeCoefficient(operand));
        break;
      case NodeType::DoubleScalarSum:
      case NodeType::DoubleScalarMin:
      case NodeType::DoubleScalarMax:
        for (const NodeId operand : operands) {
          constants.push_back(doubleToWord(static_cast<double>(makeCoefficient(operand)) / 3));
        }
        break;
      case NodeType::ScalarProduct:
        constants.push_back(-3);
        break;
      case NodeType::DoubleScalarProduct:
        constants.push_back(doubleToWord(-1.5));
        break;
      default:
        break;
    }
    return constants;
  }
  /// Never 0 over the unlimited range of an integer decision: there the saturated bounds of the product hold no value.
  std::int64_t makeCoefficient(NodeId operand) {
    const std::int64_t c = between(-4, 4);
    return c == 0 && fixed.nodeTypes[operand] == NodeType::Integer ? 1 : c;
  }

  void setRandomDecision() {
    // Half of the changes hit the same few decisions, so that values come back and ties arise.
    const auto nbDecisions = static_cast<std::uint32_t>(decisions.size());
    const NodeId id = decisions[rand(state, rand(state, 2) == 0 ? std::min(nbDecisions, 12U) : nbDecisions)];
    t_value value = 1 - dag->nodeValue[id];
    if (fixed.nodeTypes[id] == NodeType::Integer) value = between(-6, 6);
    if (isFactor() && rand(state, 3) != 0) value = 0;
    dag->propagation.setTentativeValue(*dag, id, value);
  }

  /// One move, ended in one of the allowed ways. Whether it was committed.
  bool makeMove() {
    const std::vector<t_value> before = dag->nodeValue;
    Propagation& propagation = dag->propagation;
    std::uint32_t nbChanges = 1 + rand(state, 4);
    const auto nbDecisions = static_cast<std::uint32_t>(decisions.size());
    if (rand(state, 8) == 0) nbChanges = 1 + rand(state, std::min(nbDecisions, 100U));
    while (nbChanges-- > 0) setRandomDecision();

    const std::uint32_t nbStages = rand(state, 4);
    bool holds = nbStages == 0 ? !hard : propagation.evaluateConstraints(*dag);
    for (Level stage = 1; holds && stage < nbStages; ++stage) holds = propagation.evaluateUpTo(*dag, stage);
    if (holds && nbStages == 3 && propagation.optimizedLevel == 2) expectTruth(dag->tentativeValue);
    if (holds && rand(state, 2) == 0) {
      propagation.commitAll(*dag);
      return true;
    }
    propagation.rollbackAll(*dag);
    EXPECT_EQ(dag->nodeValue, before);
    EXPECT_EQ(dag->tentativeValue, before);
    return false;
  }

  /// Some moves for which only the first objective counts.
  void lagAndCatchUp() {
    dag->propagation.optimizedLevel = 1;
    for (int i = 0; i < 4; ++i) (void)makeMove();
    dag->propagation.catchUp(*dag);
    dag->propagation.optimizedLevel = 2;
  }

  void expectConsistent() {
    for (NodeId id = 0; id < fixed.nbNodes; ++id) {
      if (dag->nodes[id]->isInit(*dag, id)) continue;
      dag->nodes[id]->print(*dag, id);
      FAIL() << "node " << id << " of type " << NodeTypeUtils::toString(fixed.nodeTypes[id]);
    }
    expectTruth(dag->nodeValue);
  }
  void expectTruth(const std::vector<t_value>& cells) {
    std::vector<double> operands;
    for (const NodeId operand : fixed.childrenOf(node)) operands.push_back(fixed.asDouble(operand, cells[operand]));
    std::vector<double> constants;
    for (const t_value word : fixed.constantsOf(node)) {
      constants.push_back(fixed.isDouble(node) ? wordToDouble(word) : static_cast<double>(word));
    }
    const double expected = oracle(operands, constants);
    const double value = fixed.asDouble(node, cells[node]);
    EXPECT_TRUE(fixed.isDouble(node) ? MathDouble::isEqual(value, expected) : value == expected)
        << NodeTypeUtils::toString(fixed.nodeTypes[node]) << " is " << value << " instead of " << expected;
  }
};

/// The operand counts at which another container takes over, and some below.
inline constexpr std::uint32_t kOperandCounts[] = {1, 2, 8, 9, 16, 17, 32, 33, 64, 65, 1024, 1025};
/// The border between the two widths of the largest container: slow, for one or two operators.
inline constexpr std::uint32_t kLargestOperandCounts[] = {65534, 65535};

/// Runs the harness over all containers with several seeds. Large graphs get fewer moves, as each is checked in full.
inline void runOnAllContainers(NodeType type, OperandKind kind, const NodeHarness::Oracle& oracle) {
  for (const std::uint32_t n : kOperandCounts) {
    for (RandomState seed = 1; seed <= (n < 100 ? 8U : 2U); ++seed) {
      SCOPED_TRACE(testing::Message() << n << " operands, seed " << seed);
      NodeHarness(type, kind, n, oracle, seed * 1000 + n).run(n < 100 ? 300 : 40);
      if (testing::Test::HasFailure()) return;
    }
  }
}

inline void runOnLargestContainers(NodeType type, OperandKind kind, const NodeHarness::Oracle& oracle) {
  for (const std::uint32_t n : kLargestOperandCounts) {
    SCOPED_TRACE(testing::Message() << n << " operands");
    NodeHarness(type, kind, n, oracle, n).run(5);
  }
}

}  // namespace quvex
