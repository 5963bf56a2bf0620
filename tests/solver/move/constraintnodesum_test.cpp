#include "solver/move/constraintnodesum.h"

#include <gtest/gtest.h>

#include "support/capturedoutput.h"
#include "support/failure.h"
#include "support/flipreference.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

constexpr std::uint32_t kCounts[] = {1, 3, 8, 9, 17, 33, 64, 65, 1024, 1025, 65535};

/// One sum of each kind.
struct SumKind {
  NodeType type;
  const char* name;  ///< of the dynamic class
  const char* word;  ///< of the debug dump
  bool namesItself;  ///< in the messages of `check`
  bool isScaled;
  bool isDouble;
};

constexpr SumKind kKinds[] = {
    {NodeType::BooleanSum, "DynamicConstraintNodeSum", "sum(", true, false, false},
    {NodeType::Sum, "DynamicConstraintNodeSum", "sum(", true, false, false},
    {NodeType::ScalarSum, "DynamicConstraintNodeScalarSum", "scalarsum(", false, true, false},
    {NodeType::DoubleSum, "DynamicConstraintNodeDoubleSum", "doublesum(", true, false, true},
    {NodeType::DoubleScalarSum, "DynamicConstraintNodeDoubleScalarSum", "doublescalarsum(", true, true, true},
};

/// One sum over boolean decisions, below a comparison that is a constraint.
class SumGraph : public TreeGraph {
 public:
  SumKind kind;
  Ids x;
  NodeId sum;
  NodeId comparison;

  SumGraph(const SumKind& ownKind, std::uint32_t n) : kind(ownKind), x(booleans(n)) {
    std::vector<t_value> constants;
    for (OperandPos p = 0; kind.isScaled && p < n; ++p) {
      const double c = coefficient(p);
      constants.push_back(kind.isDouble ? doubleToWord(c) : static_cast<t_value>(c));
    }
    sum = add(kind.type, x, constants);
    comparison = kind.isDouble ? require(NodeType::DoubleLeq, {sum, constantDouble(1e9)})
                               : require(NodeType::Leq, {sum, constant(1000000000)});
  }

  /// Positive, negative, and without effect; the doubles also below 1 and nearly 0.
  [[nodiscard]] double coefficient(OperandPos p) const {
    if (!kind.isScaled) return 1;
    constexpr double kIntegers[] = {2, -3, 1, 0, -1};
    constexpr double kDoubles[] = {0.5, -0.25, 2.5, 1e-7, -1e-7};
    return kind.isDouble ? kDoubles[p % 5] : kIntegers[p % 5];
  }
  [[nodiscard]] bool isPositive(OperandPos p) const { return coefficient(p) > 1e-6; }
  [[nodiscard]] bool isNegative(OperandPos p) const { return coefficient(p) < -1e-6; }

  [[nodiscard]] DynamicConstraintNode& node() const { return at(sum); }

  /// The rules in plain words.
  struct Reference : FlipReference {
    const SumGraph& graph;

    Reference(const SumGraph& ownGraph, RandomState seed)
        : FlipReference(ownGraph, ownGraph.x, seed), graph(ownGraph) {}

    [[nodiscard]] double total() const {
      double result = 0;
      for (OperandPos p = 0; p < n(); ++p) result += value[p] ? graph.coefficient(p) : 0;
      return result;
    }
    [[nodiscard]] bool moves(bool up, OperandPos p) const {
      const bool rising = up == !value[p];
      return (graph.isPositive(p) && rising) || (graph.isNegative(p) && !rising);
    }
    [[nodiscard]] std::uint32_t nbMovers(bool up) const {
      std::uint32_t nb = 0;
      for (OperandPos p = 0; p < n(); ++p) nb += moves(up, p) ? 1 : 0;
      return nb;
    }
    bool moveTerm(bool up, OperandPos p) { return p != kNone && move(graph.isPositive(p) == up, p); }
    OperandPos randomMover(bool up) {
      return randomMember([this, up](OperandPos p) { return moves(up, p); });
    }
    bool moveSum(bool up, bool strict) {
      if (nbMovers(up) > 0) return threeTimes([this, up] { return moveTerm(up, randomMover(up)); });
      return !strict && moveTerm(up, randomPosition());
    }
    bool run(int operation, bool strict) {
      if (operation == 0) return flip(randomPosition());
      return moveSum(operation == 1, strict);
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
    EXPECT_NEAR(node().valueDouble(), expected.total(), 1e-9);
    EXPECT_EQ(node().value(), kind.isDouble ? 0 : static_cast<std::int64_t>(expected.total()));
    EXPECT_EQ(node().nbRaisable(), expected.nbMovers(true));
    EXPECT_EQ(node().nbLowerable(), expected.nbMovers(false));
    EXPECT_NO_THROW(node().check());
    restart();
    for (const NodeId id : before) simulate(id);
  }
};

class ConstraintNodeSum : public testing::TestWithParam<SumKind> {};

TEST_P(ConstraintNodeSum, FollowsTheRulesFromEveryState) {
  for (std::uint32_t bits = 0; bits < 256; ++bits) {
    SumGraph graph(GetParam(), 4);
    Values values;
    for (OperandPos p = 0; p < 4; ++p) values.emplace_back(graph.x[p], (bits >> p) & 1);
    graph.grow(values);
    for (OperandPos p = 0; p < 4; ++p) {
      if (((bits >> (4 + p)) & 1) != 0) graph.simulate(graph.x[p]);
    }
    for (const RandomState seed : someSeeds(5)) {
      for (const int operation : {0, 1, 2}) {
        graph.compare(operation, true, seed);
        graph.compare(operation, false, seed);
      }
    }
  }
}

TEST_P(ConstraintNodeSum, FollowsTheRulesInEveryContainer) {
  for (const std::uint32_t n : kCounts) {
    for (const int pattern : {0, 1, 2}) {
      SumGraph graph(GetParam(), n);
      Values values;
      for (OperandPos p = 0; p < n; ++p) {
        values.emplace_back(graph.x[p], pattern == 1 || (pattern == 2 && p % 3 == 1) ? 1 : 0);
      }
      graph.grow(values);
      for (const RandomState seed : someSeeds(n > 5000 ? 1 : 4)) {
        for (const int operation : {0, 1, 2}) {
          graph.compare(operation, true, seed);
          graph.compare(operation, false, seed);
        }
      }
    }
  }
}

TEST_P(ConstraintNodeSum, PicksAnOperandOneStepDown) {
  SumGraph graph(GetParam(), 9);
  graph.grow({{graph.x[0], 1}, {graph.x[1], 1}, {graph.x[6], 1}, {graph.x[7], 1}});
  for (const RandomState seed : someSeeds(20)) {
    for (const bool up : {true, false}) {
      SumGraph::Reference expected(graph, seed);
      const OperandPos p = expected.randomMover(up);
      RandomState state = seed;
      StaticIndex operand = kNone;
      Direction direction = Direction::Up;
      ASSERT_TRUE(graph.node().pickOperand(state, up ? Direction::Up : Direction::Down, operand, direction));
      EXPECT_EQ(operand, graph.staticIndex(graph.x[p]));
      EXPECT_EQ(direction == Direction::Up, graph.isPositive(p) == up);
      EXPECT_EQ(state, expected.state);
    }
  }
}

TEST_P(ConstraintNodeSum, PicksNothingFromAnEmptySet) {
  SumGraph graph(GetParam(), 1);
  graph.grow();
  RandomState state = 3;
  StaticIndex operand = kNone;
  Direction direction = Direction::Up;
  EXPECT_FALSE(graph.node().pickOperand(state, Direction::Down, operand, direction));
  EXPECT_EQ(operand, kNone);
  EXPECT_EQ(state, 3U);
}

TEST_P(ConstraintNodeSum, FollowsFlipsUndosAndCommits) {
  SumGraph graph(GetParam(), 7);
  Dag& dag = graph.grow({{graph.x[2], 1}});
  RandomState draws = 11;
  for (int i = 0; i < 300; ++i) {
    switch (rand(draws, 4)) {
      case 0:
        graph.structure->undoFlips();
        break;
      case 1: {
        graph.structure->undoFlips();
        const NodeId d = graph.x[rand(draws, 7)];
        graph.commit({{d, 1 - dag.nodeValue[d]}});
        break;
      }
      default:
        graph.simulate(graph.x[rand(draws, 7)]);
    }
    const SumGraph::Reference expected(graph, 0);
    EXPECT_NEAR(graph.node().valueDouble(), expected.total(), 1e-9);
    EXPECT_EQ(graph.node().nbRaisable(), expected.nbMovers(true));
    EXPECT_EQ(graph.node().nbLowerable(), expected.nbMovers(false));
    EXPECT_NO_THROW(graph.node().check());
  }
}

TEST_P(ConstraintNodeSum, ChecksMissingMembersAndTheTotal) {
  const SumKind& kind = GetParam();
  SumGraph graph(kind, 2);
  graph.grow({{graph.x[0], 1}});
  const std::string function = std::string(kind.name) + "<quvex::SubsetMASK<unsigned char>>::check";
  const std::string prefix = kind.namesItself ? std::string(kind.name) + "::" : "";
  const std::string suffix = kind.namesItself ? "" : " " + std::to_string(graph.staticIndex(graph.sum));
  const auto failure = [&] { return failureOf([&] { graph.node().check(); }); };
  EXPECT_NO_THROW(graph.node().check());

  // Operand 0 has a positive coefficient and is 1, so it can lower the sum. No value changes here, only abilities.
  graph.node().operandChanged(0, 1, 1, false, false);
  EXPECT_EQ(failure(), refusal(function, prefix + "check() : 2" + suffix));
  graph.node().operandChanged(0, 1, 1, true, true);
  EXPECT_NO_THROW(graph.node().check()) << "only missing members matter";

  // With a negative coefficient an operand at 0 can lower, else raise the sum.
  graph.node().operandChanged(1, 0, 0, false, false);
  EXPECT_EQ(failure(), refusal(function, prefix + (kind.isScaled ? "check() : 2" : "check() : 1") + suffix));
  graph.node().operandChanged(1, 0, 0, true, false);
  EXPECT_NO_THROW(graph.node().check());

  graph.node().operandChanged(1, 0, 1, true, false);
  EXPECT_EQ(failure(), refusal(function, prefix + "check() : 2"));
}

TEST_P(ConstraintNodeSum, ReadsDoublesOnlyAsASumOfDoubles) {
  SumGraph graph(GetParam(), 2);
  graph.grow();
  graph.node().operandChangedDouble(0, 0.0, 1.0, false, true);
  EXPECT_NEAR(graph.node().valueDouble(), GetParam().isDouble ? graph.coefficient(0) : 0.0, 1e-12);
  EXPECT_EQ(graph.node().nbLowerable(),
            GetParam().isDouble ? (GetParam().isScaled ? 2U : 1U) : (GetParam().isScaled ? 1U : 0U));
}

TEST_P(ConstraintNodeSum, PrintsItself) {
  SumGraph graph(GetParam(), 2);
  graph.grow();
  const CapturedOutput output;
  graph.structures.staticNodes[graph.staticIndex(graph.sum)]->printTree(graph.structures);
  EXPECT_EQ(output.text(), std::string(GetParam().word) + "bool{0} , bool{1})");
}

INSTANTIATE_TEST_SUITE_P(Types, ConstraintNodeSum, testing::ValuesIn(kKinds), [](const auto& kind) {
  return std::string(kind.param.type == NodeType::BooleanSum ? "Boolean" : kind.param.name);
});

TEST(ConstraintNodeScalarSum, FlipsItsFirstOperandWhenItIsNotFlat) {
  TreeGraph graph;
  const Ids x = graph.booleans(4);
  const NodeId a = graph.add(NodeType::And, {x[0], x[1]});
  const NodeId b = graph.add(NodeType::And, {x[2], x[3]});
  const NodeId sum = graph.add(NodeType::ScalarSum, {a, b}, {2, 3});
  graph.require(NodeType::Leq, {sum, graph.constant(3)});
  graph.grow();
  for (const RandomState seed : someSeeds(20)) {
    RandomState expected = seed;
    const NodeId drawn = x[rand(expected, 2)];
    RandomState state = seed;
    EXPECT_TRUE(graph.at(sum).flip(state, true));
    EXPECT_EQ(graph.flipped(), Ids{drawn}) << "below the first operand";
    EXPECT_EQ(state, expected) << "no draw for the operand";
    graph.structure->undoFlips();
  }
}

TEST(ConstraintNodeScalarSum, DrawsAFlippedOperandBelowTheNumberOfThoseInTheTree) {
  // Two decisions before a constant: the constant is never drawn.
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  const NodeId sum = graph.add(NodeType::ScalarSum, {x[0], x[1], graph.constant(4)}, {2, 3, 1});
  graph.require(NodeType::Leq, {sum, graph.constant(6)});
  graph.grow();
  EXPECT_EQ(graph.at(sum).value(), 4);
  for (const RandomState seed : someSeeds(20)) {
    RandomState expected = seed;
    const NodeId drawn = x[rand(expected, 2)];
    RandomState state = seed;
    EXPECT_TRUE(graph.at(sum).flip(state, true));
    EXPECT_EQ(graph.flipped(), Ids{drawn});
    EXPECT_EQ(state, expected);
    graph.structure->undoFlips();
  }
}

TEST(ConstraintNodeSumStart, CountsDoubleConstantsByTheirBitsAndNestedDoubleSumsAsNothing) {
  TreeGraph graph;
  const Ids x = graph.booleans(3);
  const NodeId inner = graph.add(NodeType::DoubleSum, {x[0], x[1]});
  const NodeId outer = graph.add(NodeType::DoubleScalarSum, {inner, x[2]}, {doubleToWord(2.0), doubleToWord(0.5)});
  const NodeId withConstant = graph.add(NodeType::DoubleSum, {x[2], graph.constantDouble(1.5)});
  graph.require(NodeType::DoubleLeq, {outer, withConstant});
  graph.grow({{x[0], 1}, {x[2], 1}});
  EXPECT_EQ(graph.at(inner).valueDouble(), 1.0);
  EXPECT_EQ(graph.at(outer).valueDouble(), 0.5);
  EXPECT_EQ(graph.at(outer).value(), 0);
  EXPECT_EQ(graph.at(withConstant).valueDouble(), 1.0 + static_cast<double>(doubleToWord(1.5)));
  graph.simulate(x[1]);
  EXPECT_EQ(graph.at(outer).valueDouble(), 2.5) << "from then on true changes are added";
  graph.simulate(x[0]);
  EXPECT_EQ(graph.at(outer).valueDouble(), 0.5);
}

TEST(ConstraintNodeSumStart, TakesAbilitiesFromAComparisonOnlyWhenItsTruthChanges) {
  // The comparison is false and has at first no way to rise: both sides are at their ends for it.
  TreeGraph graph;
  const Ids x = graph.booleans(3);
  const NodeId limited = graph.add(NodeType::BooleanSum, {x[0], x[1]});
  const NodeId isOne = graph.add(NodeType::Eq, {limited, graph.constant(1)});
  const NodeId sum = graph.add(NodeType::BooleanSum, {isOne, x[2]});
  graph.require(NodeType::Geq, {sum, graph.constant(1)});
  graph.grow();
  EXPECT_EQ(graph.at(sum).nbRaisable(), 2U);
  EXPECT_EQ(graph.at(sum).nbLowerable(), 0U);
  graph.simulate(x[0]);
  EXPECT_EQ(graph.at(isOne).value(), 1);
  EXPECT_EQ(graph.at(sum).nbRaisable(), 1U);
  EXPECT_EQ(graph.at(sum).nbLowerable(), 1U);
  graph.simulate(x[1]);
  EXPECT_EQ(graph.at(isOne).value(), 0);
  EXPECT_EQ(graph.at(sum).nbRaisable(), 2U);
  EXPECT_EQ(graph.at(sum).nbLowerable(), 0U);
}

TEST(ConstraintNodeSumStart, KeepsOldAbilitiesOfAComparisonWhoseTruthStays) {
  // Never true: one decision against 2. It can be raised as long as the decision is 0.
  for (const t_value start : {0, 1}) {
    TreeGraph graph;
    const NodeId x = graph.boolean();
    const NodeId never = graph.add(NodeType::Eq, {x, graph.constant(2)});
    const NodeId sum = graph.add(NodeType::BooleanSum, {never});
    graph.require(NodeType::Geq, {sum, graph.constant(1)});
    graph.grow({{x, start}});
    const std::uint32_t atStart = start == 0 ? 1 : 0;
    EXPECT_EQ(graph.at(never).nbRaisable(), atStart);
    EXPECT_EQ(graph.at(sum).nbRaisable(), atStart);
    graph.simulate(x);
    EXPECT_EQ(graph.at(never).nbRaisable(), 1 - atStart);
    EXPECT_EQ(graph.at(sum).nbRaisable(), atStart) << "a change of abilities alone does not travel";
    EXPECT_EQ(explanationOf([&] { graph.at(sum).check(); }),
              start == 0 ? Failure::kNothing : "DynamicConstraintNodeSum::check() : 1");
  }
}

TEST(ConstraintNodeSumLists, CollectWhatTheyShareWithASortedList) {
  TreeGraph graph;
  const Ids x = graph.booleans(8);
  const NodeId a = graph.add(NodeType::BooleanSum, {x[0], x[2], x[4], x[6]});
  const NodeId b = graph.add(NodeType::BooleanSum, {x[1], x[3], x[4], x[5], x[6], x[7]});
  const NodeId c = graph.add(NodeType::BooleanSum, {x[1], x[7]});
  for (const NodeId sum : {a, b, c}) graph.require(NodeType::Leq, {sum, graph.constant(2)});
  graph.grow();
  const auto common = [&](NodeId sum, NodeId other, std::uint32_t limit, RandomState& state) {
    std::vector<StaticIndex> out;
    graph.at(sum).collectCommon(state, graph.structures.staticNodes[graph.staticIndex(other)]->flatOperands, out,
                                limit);
    return out;
  };
  for (const RandomState seed : someSeeds(20)) {
    RandomState expected = seed;
    const bool isLast = rand(expected, 4) == 3;
    RandomState state = seed;
    const std::vector<StaticIndex> both = {graph.staticIndex(x[4]), graph.staticIndex(x[6])};
    EXPECT_EQ(common(a, b, 1, state), both) << "one more than the limit";
    EXPECT_EQ(state, expected) << "one draw, whatever it was";
    state = seed;
    EXPECT_EQ(common(a, b, 0, state), std::vector<StaticIndex>{both[0]});
    state = seed;
    EXPECT_GE(common(a, b, 9, state).size(), isLast ? 2U : 3U) << "the walk from a random place on repeats entries";
    state = seed;
    EXPECT_TRUE(common(a, c, 1, state).empty());
    EXPECT_EQ(state, expected);
  }
}

TEST(ConstraintNodeSumLists, IntersectInEveryOrder) {
  RandomState draws = 5;
  for (int i = 0; i < 2000; ++i) {
    std::vector<StaticIndex> a;
    std::vector<StaticIndex> b;
    std::vector<StaticIndex> expected;
    const std::uint32_t densityOfA = 1 + rand(draws, 10);
    const std::uint32_t densityOfB = 1 + rand(draws, 10);
    for (StaticIndex s = 0; s < 60; ++s) {
      const bool inA = rand(draws, 10) < densityOfA;
      const bool inB = rand(draws, 10) < densityOfB;
      if (inA) a.push_back(s);
      if (inB) b.push_back(s);
      if (inA && inB) expected.push_back(s);
    }
    std::vector<StaticIndex> out;
    collectIntersection(a, b, out, 100);
    EXPECT_EQ(out, expected);
    out.clear();
    collectIntersection(b, a, out, 2);
    expected.resize(std::min<std::size_t>(expected.size(), 3));
    EXPECT_EQ(out, expected);
  }
}

}  // namespace
}  // namespace quvex
