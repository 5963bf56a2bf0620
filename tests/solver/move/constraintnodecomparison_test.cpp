#include "solver/move/constraintnodecomparison.h"

#include <gtest/gtest.h>

#include "support/capturedoutput.h"
#include "support/failure.h"
#include "support/flipreference.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

struct ComparisonKind {
  NodeType type;
  const char* name;  ///< of the dynamic class
  const char* word;  ///< of the debug dump
  char relation;     ///< <, > or =, of operand 0 to operand 1
};

constexpr ComparisonKind kKinds[] = {
    {NodeType::Leq, "DynamicConstraintNodeLeq", "leq(", '<'},
    {NodeType::Geq, "DynamicConstraintNodeGeq", "geq(", '>'},
    {NodeType::Eq, "DynamicConstraintNodeEq", "eq(", '='},
    {NodeType::DoubleLeq, "DynamicConstraintNodeDoubleLeq", "doubleleq(", '<'},
    {NodeType::DoubleGeq, "DynamicConstraintNodeDoubleGeq", "doublegeq(", '>'},
    {NodeType::DoubleEq, "DynamicConstraintNodeDoubleEq", "doubleeq(", '='},
};

/// A comparison of two boolean decisions, as a constraint.
class ComparisonGraph : public TreeGraph {
 public:
  ComparisonKind kind;
  Ids x = booleans(2);
  NodeId root;

  explicit ComparisonGraph(const ComparisonKind& ownKind) : kind(ownKind), root(require(kind.type, x)) {}

  [[nodiscard]] DynamicConstraintNode& node() const { return at(root); }

  /// The rules in plain words; `difference` is operand 1 less operand 0.
  struct Reference : FlipReference {
    char relation;

    Reference(const ComparisonGraph& graph, RandomState seed)
        : FlipReference(graph, graph.x, seed), relation(graph.kind.relation) {}

    [[nodiscard]] int difference() const { return int{value[1]} - int{value[0]}; }
    [[nodiscard]] bool holds() const {
      if (relation == '<') return difference() >= 0;
      if (relation == '>') return difference() < 1;
      return difference() == 0;
    }
    bool flipEither() {
      const OperandPos c = coin(state) ? 1 : 0;
      return flip(c) || flip(1 - c);
    }
    bool raiseNode(bool strict) {
      if (relation == '=') {
        if (holds()) return false;
        const bool isSet = coin(state);
        if (difference() < 0) return (isSet && raise(1)) || lower(0);
        return (isSet && lower(1)) || raise(0);
      }
      if (holds() && strict) return false;
      const bool isSet = coin(state);
      if (relation == '<') return (isSet && raise(1)) || lower(0);
      return (isSet && lower(1)) || raise(0);
    }
    bool lowerNode(bool strict) {
      if (relation == '=') return holds() && flipEither();
      if (!holds() && strict) return false;
      const bool isSet = coin(state);
      if (relation == '<') return (isSet && lower(1)) || raise(0);
      return (isSet && raise(1)) || lower(0);
    }
    bool run(int operation, bool strict) {
      if (operation == 0) return flipEither();
      return operation == 1 ? raiseNode(strict) : lowerNode(strict);
    }

    [[nodiscard]] std::uint32_t canRaise(OperandPos p) const { return value[p] ? 0 : 1; }
    [[nodiscard]] std::uint32_t canLower(OperandPos p) const { return value[p] ? 1 : 0; }
    [[nodiscard]] std::uint32_t nbUp() const { return canRaise(1) + canLower(0); }
    [[nodiscard]] std::uint32_t nbDown() const { return canLower(1) + canRaise(0); }
    [[nodiscard]] std::uint32_t nbRaisable() const {
      if (holds()) return 0;
      if (relation == '<') return nbUp();
      if (relation == '>') return nbDown();
      return difference() < 0 ? nbUp() : nbDown();
    }
    [[nodiscard]] std::uint32_t nbLowerable() const {
      if (!holds()) return 0;
      if (relation == '<') return nbDown();
      if (relation == '>') return nbUp();
      return nbUp() + nbDown();
    }

    struct Pick {
      OperandPos p = kNone;
      bool up = false;
    };
    Pick pick(bool up) {
      if (up == holds()) return {};
      const OperandPos c = coin(state) ? 1 : 0;
      if (relation == '<') return {c, up == (c == 1)};
      if (relation == '>') return {c, up == (c == 0)};
      if (up) return {c, (difference() < 0) == (c == 1)};
      return {c, coin(state)};
    }
  };

  void compare(int operation, bool strict, RandomState seed) {
    Reference expected(*this, seed);
    const Ids before = flipped();
    const bool expectedResult = expected.run(operation, strict);
    RandomState drawn = seed;
    const bool result = operation == 0   ? node().flip(drawn, strict)
                        : operation == 1 ? node().raise(drawn, strict)
                                         : node().lower(drawn, strict);
    EXPECT_EQ(result, expectedResult);
    EXPECT_EQ(drawn, expected.state);
    Ids expectedFlips = before;
    for (const OperandPos p : expected.flips) expectedFlips.push_back(x[p]);
    EXPECT_EQ(flipped(), expectedFlips);
    expectState(expected);
    restart();
    for (const NodeId id : before) simulate(id);
  }

  void expectState(const Reference& expected) {
    EXPECT_EQ(node().value(), expected.holds() ? 1 : 0);
    EXPECT_EQ(node().valueDouble(), expected.holds() ? 1.0 : 0.0);
    EXPECT_EQ(node().nbRaisable(), expected.nbRaisable());
    EXPECT_EQ(node().nbLowerable(), expected.nbLowerable());
    EXPECT_EQ(violated(), expected.holds() ? Ids{} : Ids{root});
    EXPECT_NO_THROW(node().check());
  }

  /// Calls `visit` at every pair of values, and every subset flipped before.
  template <class Visit>
  static void forEachState(const ComparisonKind& kind, Visit visit) {
    for (std::uint32_t bits = 0; bits < 16; ++bits) {
      ComparisonGraph graph(kind);
      graph.grow({{graph.x[0], bits & 1}, {graph.x[1], (bits >> 1) & 1}});
      for (OperandPos p = 0; p < 2; ++p) {
        if (((bits >> (2 + p)) & 1) != 0) graph.simulate(graph.x[p]);
      }
      visit(graph);
    }
  }
};

class ConstraintNodeComparison : public testing::TestWithParam<ComparisonKind> {};

TEST_P(ConstraintNodeComparison, FollowsTheRulesFromEveryState) {
  ComparisonGraph::forEachState(GetParam(), [](ComparisonGraph& graph) {
    graph.expectState(ComparisonGraph::Reference(graph, 0));
    for (const RandomState seed : someSeeds(8)) {
      for (const int operation : {0, 1, 2}) {
        graph.compare(operation, true, seed);
        graph.compare(operation, false, seed);
      }
    }
  });
}

TEST_P(ConstraintNodeComparison, PicksAnOperandOneStepDown) {
  ComparisonGraph::forEachState(GetParam(), [](ComparisonGraph& graph) {
    for (const RandomState seed : someSeeds(16)) {
      for (const bool up : {true, false}) {
        ComparisonGraph::Reference expected(graph, seed);
        const auto [p, operandUp] = expected.pick(up);
        RandomState state = seed;
        StaticIndex operand = kNone;
        Direction direction = Direction::Up;
        ASSERT_EQ(graph.node().pickOperand(state, up ? Direction::Up : Direction::Down, operand, direction),
                  p != kNone);
        EXPECT_EQ(state, expected.state) << "a refusal draws nothing";
        if (p == kNone) continue;
        EXPECT_EQ(operand, graph.staticIndex(graph.x[p]));
        EXPECT_EQ(direction == Direction::Up, operandUp);
      }
    }
  });
}

TEST_P(ConstraintNodeComparison, TakesTheOtherOperandWhenOneIsConstant) {
  for (const OperandPos constantAt : {0U, 1U}) {
    for (const t_value value : {0, 1, 2}) {
      for (const t_value start : {0, 1}) {
        TreeGraph graph;
        const NodeId x = graph.boolean();
        const NodeId c = graph.constant(value);
        const NodeId root = graph.require(GetParam().type, constantAt == 0 ? Ids{c, x} : Ids{x, c});
        graph.grow({{x, start}});
        DynamicConstraintNode& node = graph.at(root);
        for (const RandomState seed : someSeeds(8)) {
          RandomState state = seed;
          EXPECT_TRUE(node.flip(state, true)) << "on failure the other one";
          EXPECT_EQ(graph.flipped(), Ids{x});
          EXPECT_EQ(state, stepped(seed, 1));
          graph.structure->undoFlips();

          // Operand 1 is tried only when the coin is set, operand 0 always.
          const bool holds = node.value() != 0;
          const t_value difference = constantAt == 0 ? start - value : value - start;
          if (!holds) {
            const bool wantsRise = difference < 0 ? constantAt == 0 : constantAt == 1;
            RandomState expected = seed;
            const bool isSet = coin(expected);
            const bool isTried = constantAt == 1 || isSet;
            state = seed;
            EXPECT_EQ(node.raise(state, true), isTried && wantsRise == (start == 0));
            EXPECT_EQ(state, expected);
            graph.structure->undoFlips();
          }

          StaticIndex operand = kNone;
          Direction direction = Direction::Up;
          state = seed;
          ASSERT_TRUE(node.pickOperand(state, holds ? Direction::Down : Direction::Up, operand, direction));
          EXPECT_EQ(operand, graph.staticIndex(x));
        }
      }
    }
  }
}

TEST_P(ConstraintNodeComparison, FailsWithoutOperandsInTheTree) {
  TreeGraph graph;
  const NodeId root = graph.require(GetParam().type, {graph.constant(1), graph.constant(1)});
  graph.grow();
  DynamicConstraintNode& node = graph.at(root);
  EXPECT_EQ(node.value(), 1);
  EXPECT_EQ(node.nbLowerable(), 0U);
  StaticIndex operand = kNone;
  Direction direction = Direction::Up;
  RandomState state = 5;
  EXPECT_FALSE(node.pickOperand(state, Direction::Down, operand, direction));
  EXPECT_EQ(state, stepped(5, 1)) << "the first coin alone";
  EXPECT_FALSE(node.flip(state, false));
  EXPECT_FALSE(node.lower(state, false));
  EXPECT_EQ(state, stepped(5, 3));
  EXPECT_FALSE(node.staticNode().isFlat(graph.structures));
}

TEST_P(ConstraintNodeComparison, ChecksItsDifference) {
  ComparisonGraph graph(GetParam());
  graph.grow();
  EXPECT_NO_THROW(graph.node().check());
  graph.node().operandChanged(1, 0, 1, false, true);
  const std::string name = GetParam().name;
  EXPECT_EQ(failureOf([&] { graph.node().check(); }),
            refusal(name + "::check", name + "::check : " + std::to_string(graph.staticIndex(graph.root))));
}

TEST_P(ConstraintNodeComparison, PrintsItself) {
  TreeGraph graph;
  const NodeId x = graph.boolean();
  const NodeId root = graph.require(GetParam().type, {x, graph.constant(-3)});
  graph.grow();
  const CapturedOutput output;
  graph.structures.staticNodes[graph.staticIndex(root)]->printTree(graph.structures);
  EXPECT_EQ(output.text(), std::string(GetParam().word) + "bool{0} , -3)");
}

INSTANTIATE_TEST_SUITE_P(Types, ConstraintNodeComparison, testing::ValuesIn(kKinds),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST(ConstraintNodeEq, NeverRisesWhenItHolds) {
  for (const NodeType type : {NodeType::Eq, NodeType::DoubleEq}) {
    TreeGraph graph;
    const Ids x = graph.booleans(2);
    const NodeId root = graph.require(type, x);
    graph.grow();
    RandomState state = 9;
    EXPECT_FALSE(graph.at(root).raise(state, true));
    EXPECT_FALSE(graph.at(root).raise(state, false));
    graph.simulate(x[0]);
    EXPECT_FALSE(graph.at(root).lower(state, false)) << "nor falls when it is broken";
    EXPECT_EQ(state, 9U);
  }
}

TEST(ConstraintNodeDouble, StartsFromWhatItsOperandsShowAsIntegers) {
  TreeGraph graph;
  const Ids x = graph.booleans(3);
  const NodeId a = graph.add(NodeType::DoubleSum, {x[0], x[1]});
  const NodeId b = graph.add(NodeType::DoubleScalarSum, {x[1], x[2]}, {doubleToWord(0.5), doubleToWord(0.5)});
  const NodeId leq = graph.require(NodeType::DoubleLeq, {a, b});
  const NodeId withConstant = graph.require(NodeType::DoubleGeq, {a, graph.constantDouble(1.0)});
  graph.grow({{x[0], 1}, {x[1], 1}});
  EXPECT_EQ(graph.dag->nodeValue[leq], 0) << "2 is above 0.5";
  EXPECT_EQ(graph.at(leq).value(), 1) << "both sums show 0";
  EXPECT_EQ(graph.dag->nodeValue[withConstant], 1);
  EXPECT_EQ(graph.at(withConstant).value(), 0) << "the bits of 1.0 are a huge integer";
  EXPECT_EQ(graph.violated(), Ids{withConstant});

  graph.simulate(x[2]);
  EXPECT_EQ(graph.at(leq).value(), 1) << "b rises by 0.5";
  graph.simulate(x[1]);
  EXPECT_EQ(graph.at(leq).value(), 1) << "a falls by 1, b by 0.5";
  graph.structure->undoFlips();
  graph.commit({{x[1], 0}, {x[0], 0}});
  EXPECT_EQ(graph.at(leq).value(), 1);
  graph.commit({{x[1], 1}, {x[0], 1}});
  EXPECT_EQ(graph.at(leq).value(), 1);
  EXPECT_NO_THROW(graph.at(leq).check());

  graph.restart();
  graph.commit({{x[2], 1}});
  graph.commit({{x[2], 0}});
  EXPECT_EQ(graph.at(leq).value(), 1) << "back at the start, whose difference is kept";
}

TEST(ConstraintNodeDouble, ForgivesWhatIsNearlyZero) {
  for (const auto& [type, coefficient, expected] :
       {std::tuple{NodeType::DoubleLeq, 5e-7, 1}, std::tuple{NodeType::DoubleLeq, 2e-6, 0},
        std::tuple{NodeType::DoubleGeq, -5e-7, 1}, std::tuple{NodeType::DoubleGeq, -2e-6, 0},
        std::tuple{NodeType::DoubleEq, 5e-7, 1}, std::tuple{NodeType::DoubleEq, -2e-6, 0}}) {
    TreeGraph graph;
    const Ids x = graph.booleans(2);
    const NodeId sum = graph.add(NodeType::DoubleScalarSum, x, {doubleToWord(coefficient), doubleToWord(coefficient)});
    const NodeId root = graph.require(type, {sum, graph.constant(0)});
    graph.grow();
    graph.simulate(x[0]);
    EXPECT_EQ(graph.at(root).value(), expected) << coefficient;
    RandomState state = 1;
    EXPECT_EQ(graph.at(root).nbRaisable() != 0, expected == 0 && std::abs(coefficient) > 1e-6);
    if (expected == 1) {
      EXPECT_FALSE(graph.at(root).raise(state, true));
      EXPECT_EQ(state, 1U);
    }
  }
}

TEST(ConstraintNodeLeq, MovesWideSumsOnBothSides) {
  // 3 of a on the left, 1 of b on the right: leq is false; either a sum on the left falls or one on the right rises.
  TreeGraph graph;
  const Ids a = graph.booleans(4);
  const Ids b = graph.booleans(3);
  const NodeId left = graph.add(NodeType::BooleanSum, a);
  const NodeId right = graph.add(NodeType::BooleanSum, b);
  const NodeId root = graph.require(NodeType::Leq, {left, right});
  graph.grow({{a[0], 1}, {a[1], 1}, {a[3], 1}, {b[2], 1}});
  EXPECT_EQ(graph.at(root).nbRaisable(), 2U + 3U);
  EXPECT_EQ(graph.at(root).nbLowerable(), 0U);
  for (const RandomState seed : someSeeds(20)) {
    RandomState expected = seed;
    const Ids ones = {a[0], a[1], a[3]};
    const NodeId drawn = coin(expected) ? b[rand(expected, 2)] : ones[rand(expected, 3)];
    RandomState state = seed;
    EXPECT_TRUE(graph.at(root).raise(state, true));
    EXPECT_EQ(graph.flipped(), Ids{drawn});
    EXPECT_EQ(state, expected);
    EXPECT_EQ(graph.at(root).value(), 0) << "a difference of -1";
    EXPECT_EQ(graph.violated(), Ids{root});
    graph.structure->undoFlips();
  }
}

}  // namespace
}  // namespace quvex
