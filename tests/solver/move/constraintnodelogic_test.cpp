#include "solver/move/constraintnodelogic.h"

#include <gtest/gtest.h>

#include "support/capturedoutput.h"
#include "support/failure.h"
#include "support/flipreference.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// Operand counts that reach every container.
constexpr std::uint32_t kCounts[] = {1, 3, 8, 9, 17, 33, 64, 65, 1024, 1025, 65535};

/// One "and" or "or" over boolean decisions, as a constraint.
class LogicGraph : public TreeGraph {
 public:
  Ids x;
  NodeId root;
  bool isAnd;

  LogicGraph(NodeType type, std::uint32_t n) : x(booleans(n)), root(require(type, x)), isAnd(type == NodeType::And) {}

  [[nodiscard]] DynamicConstraintNode& node() const { return at(root); }

  /// The rules in plain words. `rest` is the value of an operand that keeps the node at rest: 1 for "and", 0 for "or".
  struct Reference : FlipReference {
    bool rest;

    Reference(const LogicGraph& graph, RandomState seed) : FlipReference(graph, graph.x, seed), rest(graph.isAnd) {}

    [[nodiscard]] bool isOff(OperandPos p) const { return value[p] != rest; }
    [[nodiscard]] bool isResting() const {
      for (OperandPos p = 0; p < n(); ++p) {
        if (isOff(p)) return false;
      }
      return true;
    }
    OperandPos randomOff() {
      return randomMember([this](OperandPos p) { return isOff(p); });
    }
    bool moveOff() {
      const OperandPos p = randomOff();
      return p != kNone && move(rest, p);
    }
    bool turn() { return move(!rest, randomPosition()); }

    bool flipNode() { return isResting() ? turn() : moveOff(); }
    bool toRest(bool strict) {
      if (!isResting()) return threeTimes([this] { return moveOff(); });
      return !strict && move(rest, randomPosition());
    }
    bool fromRest(bool strict) {
      if (!isResting() && strict) return false;
      return threeTimes([this] { return turn(); });
    }
    bool run(int operation, bool strict) {
      if (operation == 0) return flipNode();
      const bool isUp = operation == 1;
      return isUp == rest ? toRest(strict) : fromRest(strict);
    }
  };

  [[nodiscard]] bool run(int operation, bool strict, RandomState& drawn) const {
    if (operation == 0) return node().flip(drawn, strict);
    return operation == 1 ? node().raise(drawn, strict) : node().lower(drawn, strict);
  }

  /// Runs an operation on the node and on the reference, compares all that can be seen, and undoes it.
  void compare(int operation, bool strict, RandomState seed) {
    Reference expected(*this, seed);
    const Ids before = flipped();
    const bool expectedResult = expected.run(operation, strict);
    RandomState drawn = seed;
    EXPECT_EQ(run(operation, strict, drawn), expectedResult);
    EXPECT_EQ(drawn, expected.state);
    Ids expectedFlips = before;
    for (const OperandPos p : expected.flips) expectedFlips.push_back(x[p]);
    EXPECT_EQ(flipped(), expectedFlips);
    EXPECT_EQ(node().value(), expected.isResting() == isAnd ? 1 : 0);
    EXPECT_EQ(violated(), node().value() == 0 ? Ids{root} : Ids{});
    EXPECT_NO_THROW(node().check());
    // A new simulation has its sets in ascending order again.
    restart();
    for (const NodeId id : before) simulate(id);
  }
};

class ConstraintNodeLogic : public testing::TestWithParam<NodeType> {};

TEST_P(ConstraintNodeLogic, FollowsTheRulesFromEveryState) {
  // All values of three operands, all subsets flipped before.
  for (std::uint32_t bits = 0; bits < 64; ++bits) {
    LogicGraph graph(GetParam(), 3);
    Values values;
    for (OperandPos p = 0; p < 3; ++p) values.emplace_back(graph.x[p], (bits >> p) & 1);
    graph.grow(values);
    for (OperandPos p = 0; p < 3; ++p) {
      if (((bits >> (3 + p)) & 1) != 0) graph.simulate(graph.x[p]);
    }
    for (const RandomState seed : someSeeds(6)) {
      for (const int operation : {0, 1, 2}) {
        graph.compare(operation, true, seed);
        graph.compare(operation, false, seed);
      }
    }
  }
}

TEST_P(ConstraintNodeLogic, FollowsTheRulesInEveryContainer) {
  for (const std::uint32_t n : kCounts) {
    for (const int pattern : {0, 1, 2}) {  // all 0, all 1, mixed
      LogicGraph graph(GetParam(), n);
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

TEST_P(ConstraintNodeLogic, CountsItsWays) {
  for (const std::uint32_t n : kCounts) {
    LogicGraph graph(GetParam(), n);
    const t_value rest = graph.isAnd ? 1 : 0;
    graph.grow(rest == 0 ? Values{} : Values{{graph.x[0], 1}});
    graph.commitAll(graph.x, rest);
    const Direction restSide = graph.isAnd ? Direction::Up : Direction::Down;
    EXPECT_EQ(graph.node().nbWays(restSide), 0U);
    EXPECT_EQ(graph.node().nbWays(opposite(restSide)), n) << "any operand turns it";
    graph.simulate(graph.x[n - 1]);
    EXPECT_EQ(graph.node().nbWays(restSide), 1U) << "also one that was flipped already";
    EXPECT_EQ(graph.node().nbWays(opposite(restSide)), 0U);
    graph.structure->undoFlips();
    EXPECT_EQ(graph.node().nbWays(restSide), 0U);
  }
}

TEST_P(ConstraintNodeLogic, PicksAnOperandOneStepDown) {
  LogicGraph graph(GetParam(), 4);
  const t_value rest = graph.isAnd ? 1 : 0;
  const Direction restSide = graph.isAnd ? Direction::Up : Direction::Down;
  graph.grow();
  graph.commitAll(graph.x, rest);
  for (const RandomState seed : someSeeds(10)) {
    StaticIndex operand = kNone;
    Direction direction = restSide;
    RandomState state = seed;
    EXPECT_FALSE(graph.node().pickOperand(state, restSide, operand, direction)) << "it rests already";
    EXPECT_EQ(state, seed);
    EXPECT_EQ(operand, kNone);
    RandomState expected = seed;
    ASSERT_TRUE(graph.node().pickOperand(state, opposite(restSide), operand, direction));
    EXPECT_EQ(operand, graph.staticIndex(graph.x[rand(expected, 4)]));
    EXPECT_EQ(direction, opposite(restSide));
    EXPECT_EQ(state, expected);

    graph.simulate(graph.x[1]);
    graph.simulate(graph.x[3]);
    state = expected = seed;
    EXPECT_FALSE(graph.node().pickOperand(state, opposite(restSide), operand, direction)) << "it is turned already";
    EXPECT_EQ(state, seed);
    ASSERT_TRUE(graph.node().pickOperand(state, restSide, operand, direction));
    EXPECT_EQ(operand, graph.staticIndex(graph.x[rand(expected, 2) == 0 ? 1 : 3]));
    EXPECT_EQ(direction, restSide);
    EXPECT_EQ(state, expected);
    graph.structure->undoFlips();
  }
}

TEST_P(ConstraintNodeLogic, CountsConstantsAmongTheWaysToTurnAndFailsOnThem) {
  const bool isAnd = GetParam() == NodeType::And;
  TreeGraph graph;
  const NodeId x = graph.boolean();
  const NodeId fixedOperand = graph.constant(isAnd ? 1 : 0);
  const NodeId root = graph.require(GetParam(), {x, fixedOperand});
  graph.grow({{x, isAnd ? 1 : 0}});
  const Direction turn = isAnd ? Direction::Down : Direction::Up;
  EXPECT_EQ(graph.at(root).nbWays(turn), 2U);
  std::uint32_t nbFailures = 0;
  for (const RandomState seed : someSeeds(40)) {
    RandomState expected = seed;
    const bool isConstant = rand(expected, 2) == 1;
    StaticIndex operand = kNone;
    Direction direction = turn;
    RandomState state = seed;
    EXPECT_EQ(graph.at(root).pickOperand(state, turn, operand, direction), !isConstant);
    EXPECT_EQ(state, expected);
    state = seed;
    EXPECT_EQ(graph.at(root).flip(state, true), !isConstant) << "one attempt";
    EXPECT_EQ(state, expected);
    graph.structure->undoFlips();
    nbFailures += isConstant ? 1 : 0;
  }
  EXPECT_GT(nbFailures, 0U);
}

TEST_P(ConstraintNodeLogic, FailsWithoutADrawWhenNothingCanReturn) {
  // The only operand off the resting side is a constant.
  const bool isAnd = GetParam() == NodeType::And;
  TreeGraph graph;
  const NodeId x = graph.boolean();
  const NodeId root = graph.require(GetParam(), {x, graph.constant(isAnd ? 0 : 1)});
  graph.grow({{x, isAnd ? 1 : 0}});
  RandomState state = 5;
  EXPECT_FALSE(graph.at(root).flip(state, false));
  EXPECT_FALSE(graph.at(root).move(isAnd ? Direction::Up : Direction::Down, state, false));
  StaticIndex operand = kNone;
  Direction direction = Direction::Up;
  EXPECT_FALSE(graph.at(root).pickOperand(state, isAnd ? Direction::Up : Direction::Down, operand, direction));
  EXPECT_EQ(state, 5U);
  EXPECT_TRUE(graph.flipped().empty());
}

TEST_P(ConstraintNodeLogic, TellsItsParentsAbilities) {
  // A sum over the node: its sets are what the node told at its last change of truth.
  const bool isAnd = GetParam() == NodeType::And;
  TreeGraph graph;
  const Ids x = graph.booleans(3);
  const NodeId inner = graph.add(GetParam(), x);
  const NodeId sum = graph.add(NodeType::BooleanSum, {inner, x[0]});
  graph.require(NodeType::Geq, {sum, graph.constant(2)});
  graph.grow();
  graph.commitAll(x, isAnd ? 1 : 0);
  const Direction restSide = isAnd ? Direction::Up : Direction::Down;
  const std::uint32_t nbWithX = graph.at(sum).nbWays(restSide);
  graph.simulate(x[1]);
  EXPECT_EQ(graph.at(sum).nbWays(restSide), nbWithX + 1) << "turned: the node can return";
  EXPECT_EQ(graph.at(sum).value(), 1);
  graph.simulate(x[2]);
  EXPECT_EQ(graph.at(sum).nbWays(restSide), nbWithX + 1) << "its truth stays, and nobody learns anything";
  graph.structure->undoFlips();
  EXPECT_EQ(graph.at(sum).nbWays(restSide), nbWithX);
}

TEST_P(ConstraintNodeLogic, ChecksMissingMembersAndTheCounter) {
  const bool isAnd = GetParam() == NodeType::And;
  const std::string name = isAnd ? "DynamicConstraintNodeAnd" : "DynamicConstraintNodeOr";
  const std::string function = name + "<quvex::SubsetMASK<unsigned char>>::check";
  const t_value off = isAnd ? 0 : 1;
  LogicGraph graph(GetParam(), 2);
  graph.grow();
  graph.commitAll(graph.x, off);
  EXPECT_NO_THROW(graph.node().check());
  // Back and forth, and in the end it seems unable to return.
  graph.node().operandChanged(1, off, 1 - off, true, true);
  graph.node().operandChanged(1, 1 - off, off, false, false);
  EXPECT_EQ(
      failureOf([&] { graph.node().check(); }),
      refusal(function, (isAnd ? "check() : 1 " : "check() : 2 ") + std::to_string(graph.staticIndex(graph.root))));
  graph.node().operandChanged(1, off, 1 - off, true, true);
  EXPECT_EQ(failureOf([&] { graph.node().check(); }), refusal(function, "check() : 2"));
  graph.node().operandChanged(1, 1 - off, off, true, true);
  EXPECT_NO_THROW(graph.node().check());
}

INSTANTIATE_TEST_SUITE_P(Types, ConstraintNodeLogic, testing::Values(NodeType::And, NodeType::Or),
                         [](const auto& type) { return type.param == NodeType::And ? "And" : "Or"; });

TEST(ConstraintNodeAnd, RefusesAStrictRaiseWhenTrue) {
  LogicGraph graph(NodeType::And, 3);
  graph.grow();
  graph.commitAll(graph.x, 1);
  RandomState state = 7;
  EXPECT_FALSE(graph.node().raise(state, true));
  EXPECT_EQ(state, 7U);
  EXPECT_FALSE(graph.node().raise(state, false)) << "the operand is 1 already and refuses";
  EXPECT_EQ(state, stepped(7, 1)) << "one operand was drawn";
  EXPECT_TRUE(graph.flipped().empty());
}

TEST(ConstraintNodeOr, CountsAllOperandsWhenFalse) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  const NodeId root = graph.require(NodeType::Or, {x[0], x[1], graph.constant(0)});
  graph.grow();
  EXPECT_EQ(graph.at(root).nbRaisable(), 3U);
}

TEST(ConstraintNodeLogicTree, PrintsItselfAsATree) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  const NodeId inner = graph.add(NodeType::And, x);
  const NodeId root = graph.require(NodeType::Or, {inner, x[1], graph.constant(1)});
  graph.grow();
  const CapturedOutput output;
  graph.structures.staticNodes[graph.staticIndex(root)]->printTree(graph.structures);
  EXPECT_EQ(output.text(), "or(and(bool{0} , bool{1}) , bool{1} , 1)");
}

}  // namespace
}  // namespace quvex
