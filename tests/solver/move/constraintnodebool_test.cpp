#include "solver/move/constraintnodebool.h"

#include <gtest/gtest.h>

#include "support/capturedoutput.h"
#include "support/treegraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// Two decisions that are constraints themselves.
class BoolGraph : public TreeGraph {
 public:
  Ids x = booleans(2);

  explicit BoolGraph(t_value first) {
    for (const NodeId id : x) constraint(id);
    grow({{x[0], first}});
  }

  [[nodiscard]] DynamicConstraintNode& node() const { return at(x[0]); }
};

TEST(ConstraintNodeBool, FlipsOncePerSimulation) {
  for (const t_value start : {0, 1}) {
    for (const bool strict : {true, false}) {
      BoolGraph graph(start);
      RandomState state = 4;
      EXPECT_EQ(graph.node().value(), start);
      EXPECT_TRUE(graph.node().flip(state, strict));
      EXPECT_EQ(graph.node().value(), 1 - start);
      EXPECT_EQ(graph.node().valueDouble(), static_cast<double>(1 - start));
      EXPECT_EQ(graph.flipped(), Ids{graph.x[0]});
      EXPECT_FALSE(graph.node().flip(state, strict));
      EXPECT_FALSE(graph.node().raise(state, strict));
      EXPECT_FALSE(graph.node().lower(state, strict));
      EXPECT_EQ(graph.node().value(), 1 - start);
      EXPECT_EQ(state, 4U) << "no draw";
      EXPECT_NO_THROW(graph.node().check());
    }
  }
}

TEST(ConstraintNodeBool, RisesFromZeroAndFallsFromOne) {
  for (const bool strict : {true, false}) {
    RandomState state = 4;
    BoolGraph atZero(0);
    EXPECT_FALSE(atZero.node().lower(state, strict));
    EXPECT_TRUE(atZero.flipped().empty());
    EXPECT_TRUE(atZero.node().raise(state, strict));
    EXPECT_EQ(atZero.node().value(), 1);

    BoolGraph atOne(1);
    EXPECT_FALSE(atOne.node().raise(state, strict));
    EXPECT_TRUE(atOne.node().lower(state, strict));
    EXPECT_EQ(atOne.node().value(), 0);
    EXPECT_EQ(state, 4U);
  }
}

TEST(ConstraintNodeBool, HasOneWayToTheOtherValue) {
  BoolGraph graph(0);
  EXPECT_EQ(graph.node().nbRaisable(), 1U);
  EXPECT_EQ(graph.node().nbLowerable(), 0U);
  graph.simulate(graph.x[0]);
  EXPECT_EQ(graph.node().nbRaisable(), 0U);
  EXPECT_EQ(graph.node().nbLowerable(), 1U) << "though it can't be flipped again";
}

TEST(ConstraintNodeBool, CountsAsAConstraint) {
  BoolGraph graph(1);
  EXPECT_EQ(graph.violated(), Ids{graph.x[1]});
  graph.simulate(graph.x[0]);
  EXPECT_EQ(graph.violated(), (Ids{graph.x[1], graph.x[0]}));
  graph.simulate(graph.x[1]);
  EXPECT_EQ(graph.violated(), Ids{graph.x[0]});
}

TEST(ConstraintNodeBool, IsALeaf) {
  BoolGraph graph(0);
  const auto& fixedHalf = static_cast<const StaticConstraintNodeBool&>(graph.node().staticNode());
  EXPECT_EQ(fixedHalf.decisionIndex, graph.fixed.decisionPos[graph.x[0]]);
  EXPECT_EQ(fixedHalf.nodeId, graph.x[0]);
  EXPECT_TRUE(fixedHalf.isFlat(graph.structures));
  EXPECT_TRUE(fixedHalf.flatOperands.empty());
  StaticIndex operand = kNone;
  Direction direction = Direction::Up;
  RandomState state = 4;
  EXPECT_FALSE(graph.node().pickOperand(state, Direction::Up, operand, direction));
  EXPECT_FALSE(graph.node().pickOperand(state, Direction::Down, operand, direction));
  EXPECT_EQ(state, 4U);
}

TEST(ConstraintNodeBool, CollectsItselfIfItCanGoThatWay) {
  BoolGraph graph(0);
  const StaticIndex own = graph.staticIndex(graph.x[0]);
  const std::vector<StaticIndex> with = {own, own + 5};
  const std::vector<StaticIndex> without = {own + 1, own + 5};
  const auto collect = [&](Direction direction, const std::vector<StaticIndex>& list) {
    std::vector<StaticIndex> out;
    graph.node().collectSelf(direction, list, out, 1);
    return out;
  };
  EXPECT_EQ(collect(Direction::Up, with), std::vector<StaticIndex>{own});
  EXPECT_TRUE(collect(Direction::Up, without).empty());
  EXPECT_TRUE(collect(Direction::Up, {}).empty());
  EXPECT_TRUE(collect(Direction::Down, with).empty());
  graph.simulate(graph.x[0]);
  EXPECT_TRUE(collect(Direction::Up, with).empty());
  EXPECT_EQ(collect(Direction::Down, with), std::vector<StaticIndex>{own});

  RandomState state = 4;
  std::vector<StaticIndex> out;
  graph.node().collectCommon(state, with, out, 1);
  EXPECT_EQ(out, std::vector<StaticIndex>{own}) << "whatever its value";
  graph.node().collectCommon(state, without, out, 1);
  EXPECT_EQ(out.size(), 1U);
  EXPECT_EQ(state, 4U);
}

TEST(ConstraintNodeBool, DoesNothingWhenToldOfAnOperand) {
  BoolGraph graph(0);
  graph.node().operandChanged(0, 0, 1, true, true);
  graph.node().operandChangedDouble(0, 0.0, 1.0, true, true);
  EXPECT_EQ(graph.node().value(), 0);
}

TEST(ConstraintNodeBool, PrintsItsIndex) {
  BoolGraph graph(0);
  const CapturedOutput output;
  graph.structures.staticNodes[1]->printTree(graph.structures);
  EXPECT_EQ(output.text(), "bool{1}");
}

TEST(ConstraintNodeBool, CollectsOnlyAsALeaf) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  const NodeId sum = graph.add(NodeType::BooleanSum, x);
  const NodeId root = graph.require(NodeType::Leq, {sum, graph.constant(1)});
  graph.grow();
  const std::vector<StaticIndex> all = {0, 1, 2, 3};
  std::vector<StaticIndex> out;
  graph.at(sum).collectSelf(Direction::Up, all, out, 1);
  graph.at(root).collectSelf(Direction::Up, all, out, 1);
  RandomState state = 4;
  graph.at(root).collectCommon(state, all, out, 1);
  EXPECT_TRUE(out.empty());
  EXPECT_EQ(state, 4U);
}

}  // namespace
}  // namespace quvex
