#include "solver/node/nodeat.h"

#include <gtest/gtest.h>

#include "solver/node/nodedoubleat.h"
#include "support/failure.h"
#include "support/graphbuilder.h"
#include "support/nodestage.h"

namespace quvex {
namespace {

/// An "at" or "double_at" over an array of integer decisions or of constants, indexed by an integer decision.
/// Cells and bounds are set by hand, and spies answer for elements and index: the elements are named a, b, c, ...
class AtStage {
 public:
  AtStage(NodeType type, std::uint32_t n) : nbElements(n) {
    for (std::uint32_t i = 0; i < n; ++i) elements.push_back(graph.integer());
    index = graph.integer();
    array = graph.add(NodeType::Array, elements);
    build(type);
  }
  AtStage(NodeType type, const std::vector<t_value>& constants)
      : nbElements(static_cast<std::uint32_t>(constants.size())) {
    index = graph.integer();
    array = graph.add(NodeType::ConstArray, {}, constants);
    build(type);
  }
  ~AtStage() {
    for (NodeId id = 0; id < originals.size(); ++id) dag->nodes[id] = originals[id];
  }
  AtStage(const AtStage&) = delete;
  AtStage& operator=(const AtStage&) = delete;

  AtStage& setElement(std::uint32_t i, t_value value, t_value min, t_value max) {
    return setCells(elements[i], value, min, max);
  }
  AtStage& setIndex(t_value value, t_value min, t_value max) { return setCells(index, value, min, max); }

  Node& node() { return *dag->nodes[at]; }
  Bounds bounds() {
    Bounds bounds;
    NodeTypeUtils::computeBounds(graph.fixed, at, bounds.min, bounds.max);
    return bounds;
  }
  t_value value() {
    node().init(*dag, at);
    return dag->nodeValue[at];
  }
  t_value eval() {
    node().eval(*dag, dag->propagation, at);
    return dag->tentativeValue[at];
  }

  std::string pick(bool (Node::*rule)(const Dag&, RandomState&, NodeId&, int&, NodeId) const, RandomState state) {
    const RandomState before = state;
    NodeId decision = kNone;
    int delta = 7;
    if (!(node().*rule)(*dag, state, decision, delta, at)) return "none";
    const std::string who = decision == index ? "index" : std::string{static_cast<char>('a' + decision)};
    return who + (delta == 0 ? '~' : delta < 0 ? '-' : '+') + ' ' + std::to_string(drawsBetween(before, state));
  }
  std::string decrease(RandomState state = 0) { return pick(&Node::pickDecrease, state); }
  std::string increase(RandomState state = 0) { return pick(&Node::pickIncrease, state); }
  std::string change(RandomState state = 0) { return pick(&Node::pickChange, state); }

  GraphBuilder graph;
  std::unique_ptr<Dag> dag;
  std::vector<NodeId> elements;
  NodeId index = 0;
  NodeId array = 0;
  NodeId at = 0;
  std::uint32_t nbElements;

 private:
  OperandSpy spy;
  std::vector<Node*> originals;

  void build(NodeType type) {
    at = graph.add(type, {array, index});
    graph.fixed.init();
    dag = std::make_unique<Dag>(graph.fixed);
    for (NodeId id = 0; id < array; ++id) {
      originals.push_back(dag->nodes[id]);
      dag->nodes[id] = &spy;
    }
  }
  AtStage& setCells(NodeId id, t_value value, t_value min, t_value max) {
    dag->nodeValue[id] = dag->tentativeValue[id] = value;
    graph.fixed.minBounds[id] = min;
    graph.fixed.maxBounds[id] = max;
    return *this;
  }
};

TEST(NodeAt, ReadsConstantsAndElements) {
  AtStage constants(NodeType::At, {10, 20, 30});
  EXPECT_EQ(constants.setIndex(2, 0, 2).value(), 30);
  constants.dag->tentativeValue[constants.index] = 1;
  EXPECT_EQ(constants.eval(), 20);

  AtStage nodes(NodeType::At, 2);
  nodes.setElement(0, 5, 0, 9).setElement(1, 7, 0, 9);
  EXPECT_EQ(nodes.setIndex(1, 0, 1).value(), 7);
  nodes.dag->tentativeValue[nodes.elements[1]] = 8;
  EXPECT_EQ(nodes.eval(), 8);
  EXPECT_EQ(nodes.value(), 7) << "from committed cells";
}

TEST(NodeAt, AnIndexOutsideTheArrayFails) {
  AtStage at(NodeType::At, {10, 20});
  at.setIndex(-1, -1, 5);
  EXPECT_EQ(failureOf([&] { at.value(); }),
            refusal("NodeAt::computeValue", "Index out of bounds for 'at' operator (index: -1, array size: 2)."));
  at.setIndex(2, -1, 5);
  EXPECT_EQ(failureOf([&] { at.eval(); }),
            refusal("NodeAt::eval", "Index out of bounds for 'at' operator (index: 2, array size: 2)."));

  AtStage real(NodeType::DoubleAt, 1);
  real.setIndex(-1, -1, 5);
  EXPECT_EQ(failureOf([&] { real.value(); }),
            refusal("NodeDoubleAt::computeValue",
                    "Index out of bounds for 'double_at' operator (index: -1, array size: 1)."));
  EXPECT_EQ(failureOf([&] { real.eval(); }),
            refusal("NodeDoubleAt::eval", "Index out of bounds for 'double_at' operator (index: -1, array size: 1)."));
}

TEST(NodeAt, TheIndexIsReadModuloTwoToThe32) {
  AtStage at(NodeType::At, {10, 20});
  at.setIndex((std::int64_t{1} << 32) + 1, 0, kHighestInt);
  EXPECT_EQ(at.value(), 20);
  at.setIndex(kLowestInt, kLowestInt, 0);
  EXPECT_EQ(at.value(), 10) << "the low 32 bits of the lowest integer are zero";
  AtStage nodes(NodeType::At, 2);
  nodes.setElement(1, 7, 0, 9).setIndex((std::int64_t{1} << 32) + 1, 0, kHighestInt);
  EXPECT_EQ(nodes.value(), 7);
  at.setIndex((std::int64_t{1} << 32) + 2, 0, kHighestInt);
  EXPECT_EQ(failureOf([&] { at.eval(); }),
            refusal("NodeAt::eval", "Index out of bounds for 'at' operator (index: 4294967298, array size: 2)."));
}

TEST(NodeAt, BoundsAreTheHullOfTheReachableElements) {
  AtStage at(NodeType::At, {10, -20, 30, 5});
  const auto bounds = [&](t_value min, t_value max) { return at.setIndex(min, min, max).bounds(); };
  EXPECT_EQ(bounds(0, 3), (Bounds{-20, 30}));
  EXPECT_EQ(bounds(2, 3), (Bounds{5, 30}));
  EXPECT_EQ(bounds(-7, 0), (Bounds{10, 10}));
  EXPECT_EQ(bounds(1, 99), (Bounds{-20, 30}));
  EXPECT_EQ(bounds(3, kHighestInt), (Bounds{5, 5})) << "the index's maximum plus 1 does not wrap";
  EXPECT_EQ(bounds(4, 9), (Bounds{0, 0}));
  EXPECT_EQ(bounds(-9, -1), (Bounds{0, 0}));
  EXPECT_EQ(AtStage(NodeType::At, std::vector<t_value>{}).bounds(), (Bounds{0, 0}));

  AtStage nodes(NodeType::At, 3);
  nodes.setElement(0, 0, -9, 99).setElement(1, 0, -1, 1).setElement(2, 0, 0, 5);
  EXPECT_EQ(nodes.setIndex(1, 1, 2).bounds(), (Bounds{-1, 5}));
}

TEST(NodeAt, AnIndexRangeOutsideTheArrayFailsAtTheFirstEvaluation) {
  GraphBuilder graph;
  const NodeId array = graph.add(NodeType::ConstArray, {}, {10, 20});
  const NodeId at = graph.add(NodeType::At, {array, graph.constant(5)});
  graph.minimise(at);
  EXPECT_EQ(failureOf([&] { graph.build(); }),
            refusal("NodeAt::computeValue", "Index out of bounds for 'at' operator (index: 5, array size: 2)."));
  EXPECT_EQ(graph.fixed.minBounds[at], 0);
  EXPECT_EQ(graph.fixed.maxBounds[at], 0);
}

TEST(NodeAt, PicksChangeTheIndexOfConstants) {
  AtStage at(NodeType::At, {10, 20});
  at.setIndex(0, 0, 1);
  EXPECT_EQ(at.decrease(), "index~ 0");
  EXPECT_EQ(at.increase(), "index~ 0");
  EXPECT_EQ(at.change(), "index~ 0");
  at.setIndex(0, 0, 0);
  EXPECT_EQ(at.change(), "index~ 0") << "even a fixed one";
}

TEST(NodeAt, PicksGoToTheElementOfAFixedIndex) {
  AtStage at(NodeType::At, 1);
  at.setElement(0, 5, 5, 5).setIndex(0, 0, 0);
  EXPECT_EQ(at.decrease(), "a- 0") << "whether it has room or not";
  EXPECT_EQ(at.increase(), "a+ 0");
  EXPECT_EQ(at.change(), "a~ 0");
}

TEST(NodeAt, PicksTossBetweenIndexAndElement) {
  AtStage at(NodeType::At, 2);
  at.setElement(1, 5, 0, 9).setIndex(1, 0, 1);
  EXPECT_EQ(at.decrease(kCoinSet), "index~ 1");
  EXPECT_EQ(at.decrease(kCoinClear), "b- 1");
  EXPECT_EQ(at.increase(kCoinSet), "index~ 1");
  EXPECT_EQ(at.increase(kCoinClear), "b+ 1");
  EXPECT_EQ(at.change(kCoinSet), "index~ 1");
  EXPECT_EQ(at.change(kCoinClear), "b~ 1");
}

TEST(NodeAt, AnElementWithoutRoomLeavesTheIndex) {
  AtStage at(NodeType::At, 2);
  at.setElement(1, 5, 5, 9).setIndex(1, 0, 1);
  EXPECT_EQ(at.decrease(kCoinClear), "index~ 0");
  EXPECT_EQ(at.increase(kCoinClear), "b+ 1");
  EXPECT_EQ(at.change(kCoinClear), "b~ 1");
  at.setElement(1, 5, 0, 5);
  EXPECT_EQ(at.decrease(kCoinClear), "b- 1");
  EXPECT_EQ(at.increase(kCoinClear), "index~ 0");
  EXPECT_EQ(at.change(kCoinClear), "index~ 0") << "a change asks for room above, as an increase does";
}

TEST(NodeAt, PicksTakeTheElementOfTheTentativeIndex) {
  AtStage at(NodeType::At, 2);
  at.setElement(0, 5, 0, 9).setElement(1, 5, 0, 9).setIndex(1, 0, 1);
  at.dag->tentativeValue[at.index] = 0;
  EXPECT_EQ(at.decrease(kCoinClear), "a- 1");
  at.dag->tentativeValue[at.index] = 2;
  EXPECT_EQ(at.decrease(kCoinClear), "index~ 0") << "astray: no element to ask";
}

TEST(NodeDoubleAt, ReadsElementsAndConstantsAsDoubles) {
  AtStage constants(NodeType::DoubleAt, std::vector<t_value>{doubleToWord(0.5), doubleToWord(-1.5)});
  EXPECT_EQ(wordToDouble(constants.setIndex(1, 0, 1).value()), -1.5);
  EXPECT_EQ(wordToDouble(constants.eval()), -1.5);
  EXPECT_EQ(constants.bounds(), Bounds::ofDoubles(-1.5, 0.5));
  AtStage nodes(NodeType::DoubleAt, 2);
  nodes.setElement(0, 3, -4, 9).setElement(1, 3, 0, 10).setIndex(0, 0, 1);
  EXPECT_EQ(wordToDouble(nodes.value()), 3.0) << "an integer element is converted";
  EXPECT_EQ(nodes.bounds(), Bounds::ofDoubles(-4, 10));
}

TEST(NodeDoubleAt, RoomWithinToleranceIsNone) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId element = graph.add(NodeType::DoubleCast, {x});
  const NodeId array = graph.add(NodeType::Array, {element, element});
  const NodeId index = graph.boolean();
  const NodeId at = graph.add(NodeType::DoubleAt, {array, index});
  graph.maximise(at);
  Dag& dag = graph.build();
  commitValues(dag, {{x, 1}});
  graph.fixed.maxBounds[element] = doubleToWord(1.0000001);
  RandomState state = kCoinClear;
  NodeId decision = kNone;
  int delta = 0;
  EXPECT_TRUE(dag.nodes[at]->pickIncrease(dag, state, decision, delta, at));
  EXPECT_EQ(decision, index);
  EXPECT_EQ(state, kCoinClear);
  graph.fixed.maxBounds[element] = doubleToWord(2.0);
  EXPECT_FALSE(dag.nodes[at]->pickIncrease(dag, state, decision, delta, at)) << "the element refuses at 1";
  EXPECT_EQ(drawsBetween(kCoinClear, state), 1);
}

TEST(NodeAt, WakesForAnyElementAndStopsWhereNothingChanged) {
  GraphBuilder graph;
  const NodeId x = graph.boolean();
  const NodeId y = graph.boolean();
  const NodeId i = graph.boolean();
  const NodeId array = graph.add(NodeType::Array, {x, y});
  const NodeId at = graph.add(NodeType::At, {array, i});
  const NodeId above = graph.add(NodeType::Not, {at});
  graph.minimise(above);
  Dag& dag = graph.build();

  dag.flip(y);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
  ASSERT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_TRUE(dag.nodes[array]->hasChanged(dag, array));
  EXPECT_TRUE(dag.isDirty(at)) << "woken by the element that is not selected";
  EXPECT_FALSE(dag.nodes[at]->hasChanged(dag, at));
  EXPECT_FALSE(dag.isDirty(above)) << "the propagation stops there";
  dag.propagation.rollbackAll(dag);

  dag.flip(y);
  dag.flip(i);
  ASSERT_TRUE(dag.propagation.evaluateConstraints(dag));
  ASSERT_TRUE(dag.propagation.evaluateUpTo(dag, 1));
  EXPECT_EQ(dag.tentativeValue[at], 1) << "both changes are read";
  EXPECT_EQ(dag.tentativeValue[above], 0);
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(isWholeGraphInit(dag));
}

}  // namespace
}  // namespace quvex
