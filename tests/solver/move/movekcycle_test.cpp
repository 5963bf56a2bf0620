#include "solver/move/movekcycle.h"

#include <gtest/gtest.h>

#include <set>

#include "support/searchgraph.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// The sum of an assignment that crosses `sum` at the decision.
NodeId crossing(const AssignmentGraph& model, NodeId sum, NodeId decision, std::uint32_t n) {
  const NodeId item = model.itemSums[decision / n];
  return sum == item ? model.placeSums[decision % n] : item;
}

TEST(MoveKCycle, ExchangesTwoPlacesOfAnAssignmentAtSize4) {
  AssignmentGraph model(4);
  Dag& dag = *model.dag;
  const std::vector<NodeId>& sums = model.structures.sums;
  MoveKCycle move(4, 8, 0, *model.structure);
  EXPECT_EQ(move.name, "4-Cycle");
  for (const RandomState seed : someSeeds(80)) {
    RandomState expected = seed;
    const NodeId s = sums[rand(expected, 8)];
    const NodeId first = drawOperandAt(dag, expected, s, 1);
    (void)rand(expected, 2);
    const NodeId second = drawOperandAt(dag, expected, crossing(model, s, first, 4), 0);
    (void)rand(expected, 2);
    const NodeId other = crossing(model, crossing(model, s, first, 4), second, 4);
    const NodeId third = drawOperandAt(dag, expected, other, 1);
    (void)rand(expected, 2);
    (void)rand(expected, 3);  // where the search for the closing decision starts in the first sum
    const std::uint32_t i = first / 4;
    const std::uint32_t j = third / 4;

    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{first, second, third, s == model.itemSums[i] ? model.x[i][j] : model.x[j][i]}));
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(move.evaluate());
    EXPECT_EQ(dag.propagation.tentativeNbViolated, 0) << "every sum stays as it is";
    EXPECT_EQ(model.placeOf(i), j);
    EXPECT_EQ(model.placeOf(j), i);
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveKCycle, IsNotBuiltWithoutSums) {
  SearchGraph model;
  model.booleans(3);
  model.start(5);
  MoveKCycle move(2, 8, 100, *model.structure);
  EXPECT_FALSE(move.apply());
  EXPECT_EQ(model.state(), 5U);
}

/// Two equality sums that share two decisions; targeting wants `shared[0]` to rise.
class CrossedSums : public SearchGraph {
 public:
  Ids shared = booleans(2);
  Ids others = booleans(4);
  NodeId a = tiedSum({shared[0], shared[1], others[0], others[1]}, 1);
  NodeId b = tiedSum({shared[0], shared[1], others[2], others[3]}, 1);

  CrossedSums() {
    maximise(shared[0]);
    Dag& built = start();
    commitValues(built, {{shared[1], 1}});
  }
};

TEST(MoveKCycle, LeavesTheTargetToTheSecondWalkWhenTheFirstHasLength0) {
  CrossedSums model;
  MoveKCycle move(2, 8, 100, *model.structure);
  for (const RandomState seed : someSeeds(20)) {
    // A rise in a sum whose rare side is the fall. The target is flipped by the walk in the other direction, and its
    // own sum is left as the end. The two sums then ask for a fall and a rise at once: the first operand at 0 answers,
    // which is the target again, and it has changed.
    RandomState expected = stepped(seed, 1);
    (void)rand(expected, 2);
    (void)rand(expected, 2);
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    EXPECT_EQ(touched(*model.dag), Ids{model.shared[0]});
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Infeasible);
  }
}

TEST(MoveKCycle, TakesAStepInTheRareDirectionFromTheSumOfATargetAgainstIt) {
  CrossedSums model;
  Dag& dag = *model.dag;
  MoveKCycle move(3, 8, 100, *model.structure);
  for (const RandomState seed : someSeeds(40)) {
    RandomState expected = stepped(seed, 1);
    (void)rand(expected, 2);  // which of the two sums starts
    (void)rand(expected, 2);  // where the walk of one step goes on
    (void)rand(expected, 2);  // where the walk in the rare direction goes on
    // Both walks end in the other sum: one asks it to fall, one to rise.
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{model.shared[0], model.shared[1]}));
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Infeasible);
  }
}

TEST(MoveKCycle, EndsWhereTheStepInTheRareDirectionLeadsToNoSum) {
  // The target falls, though its sum is one that should rise. What then rises in that sum lies in no other one, or it
  // leads to where the first walk has ended. The link between both sums that is at hand is not looked for.
  SearchGraph model;
  const Ids x = model.booleans(6);
  const NodeId from = model.limitedSum({x[0], x[1], x[2], x[3]}, 4);
  model.limitedSum({x[0], x[3], x[4], x[5]}, 4);
  model.minimise(x[0]);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}, {x[1], 1}});
  MoveKCycle move(3, 8, 100, *model.structure);
  std::set<NodeId> risen;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = stepped(seed, 1);
    if (rand(expected, 2) != 0) continue;  // the other sum starts
    (void)rand(expected, 2);               // where the search for another sum of the target begins
    const NodeId rising = drawOperandAt(dag, expected, from, 0);
    if (rising == x[3]) (void)rand(expected, 2);
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{x[0], rising}));
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Infeasible);
    risen.insert(rising);
  }
  EXPECT_EQ(risen, (std::set<NodeId>{x[2], x[3]}));
}

TEST(MoveKCycle, PrefersTheEqualitySumsOfATargetThatHasTwo) {
  SearchGraph model;
  const Ids x = model.booleans(8);
  const NodeId slack = model.limitedSum({x[0], x[1]}, 2);
  const NodeId first = model.tiedSum({x[0], x[2], x[3]}, 1);
  const NodeId second = model.tiedSum({x[0], x[4], x[5]}, 1);
  model.maximise(x[0]);
  Dag& dag = model.start();
  commitValues(dag, {{x[2], 1}, {x[4], 1}});
  ASSERT_EQ(model.structures.nbSlackSums, 1U);
  EXPECT_EQ(model.structures.sums[0], slack);

  MoveKCycle move(3, 8, 100, *model.structure);
  for (const RandomState seed : someSeeds(40)) {
    RandomState expected = stepped(seed, 1);
    const NodeId s = rand(expected, 2) == 0 ? first : second;
    (void)rand(expected, 2);  // where the search for its other equality sum begins
    model.state() = seed;
    (void)move.apply();
    // x[0] rises against the rare side; then the operand at 1 of the same sum falls.
    EXPECT_EQ(touched(dag), (Ids{x[0], s == first ? x[2] : x[4]}));
    EXPECT_EQ(model.state(), expected) << "x[2] and x[4] lie in no other sum";
    move.conclude(Outcome::Infeasible);
  }
}

TEST(MoveKCycle, DrawsAmongAllSumsOfATargetWithOneEqualitySum) {
  SearchGraph model;
  const Ids x = model.booleans(6);
  const NodeId slack = model.limitedSum({x[0], x[1], x[2]}, 3);
  const NodeId tied = model.tiedSum({x[0], x[3], x[4]}, 1);
  model.maximise(x[0]);
  Dag& dag = model.start();
  commitValues(dag, {{x[1], 1}, {x[3], 1}});
  MoveKCycle move(3, 8, 100, *model.structure);
  bool fromSlack = false;
  bool fromTied = false;
  for (const RandomState seed : someSeeds(40)) {
    RandomState expected = stepped(seed, 1);
    const NodeId s = rand(expected, 2) == 0 ? slack : tied;
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{x[0], s == slack ? x[1] : x[3]}));
    EXPECT_EQ(model.state(), expected);
    (s == slack ? fromSlack : fromTied) = true;
    move.conclude(Outcome::Infeasible);
  }
  EXPECT_TRUE(fromSlack && fromTied);
}

}  // namespace
}  // namespace quvex
