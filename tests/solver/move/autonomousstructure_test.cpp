#include "solver/move/autonomousstructure.h"

#include <gtest/gtest.h>

#include <set>

#include "support/searchgraph.h"

namespace quvex {
namespace {

TEST(AutonomousStructure, OnlyForgetsFlipsAtACommitWithoutATree) {
  SearchGraph model;
  const std::vector<NodeId> x = model.booleans(3);
  Dag& dag = model.start(42);
  EXPECT_EQ(model.structure->randomState, 42U);
  model.structure->flippedDecisions.resize(3);
  model.structure->flippedDecisions.add(1);
  commitValues(dag, {{x[0], 1}});
  EXPECT_TRUE(model.structure->flippedDecisions.empty());
  model.structure.reset();
  commitValues(dag, {{x[0], 0}});
  EXPECT_EQ(dag.nodeValue[x[0]], 0);
}

TEST(AutonomousStructure, LinksASumToItselfWithoutAnyTest) {
  SearchGraph model;
  const std::vector<NodeId> x = model.booleans(5);
  const NodeId sum = model.tiedSum(x, 1);
  Dag& dag = model.start();
  commitValues(dag, {{x[3], 1}});
  std::set<NodeId> links;
  for (const RandomState seed : someSeeds(60)) {
    RandomState state = seed;
    RandomState expected = seed;
    const NodeId link = model.structure->findLink(state, sum, sum, true, true);
    EXPECT_EQ(link, x[rand(expected, 5)]);
    EXPECT_EQ(state, expected);
    links.insert(link);
  }
  EXPECT_TRUE(links.contains(x[3])) << "also an operand that goes the wrong way";
  RandomState state = 8;
  EXPECT_EQ(model.structure->findLink(state, sum, sum, true, false), kNone);
  EXPECT_EQ(state, 8U) << "no draw";
}

TEST(AutonomousStructure, AnswersFromTheOnlyCandidateWithoutADraw) {
  // Sum a has one operand at 0, so that the rise of both sums is decided by it.
  SearchGraph model;
  const std::vector<NodeId> x = model.booleans(6);
  const NodeId a = model.limitedSum({x[0], x[1]}, 2);
  const NodeId b = model.limitedSum({x[1], x[2], x[3]}, 3);
  const NodeId c = model.limitedSum({x[0], x[4], x[5]}, 3);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}});
  RandomState state = 8;
  EXPECT_EQ(model.structure->findLink(state, a, b, true, true), x[1]);
  EXPECT_EQ(model.structure->findLink(state, a, c, true, true), kNone) << "x[1] is not in c, and no scan is made";
  EXPECT_EQ(model.structure->findLink(state, b, a, true, true), x[1]) << "b declines, and the other sum is asked";
  EXPECT_EQ(state, 8U);
}

TEST(AutonomousStructure, ScansFromARandomCandidateAndWrapsAround) {
  SearchGraph model;
  const std::vector<NodeId> x = model.booleans(10);
  const NodeId a = model.limitedSum({x[0], x[1], x[2], x[3], x[4], x[5]}, 6);
  const NodeId b = model.limitedSum({x[1], x[4], x[6], x[7], x[8]}, 5);
  model.start();
  std::set<NodeId> links;
  for (const RandomState seed : someSeeds(60)) {
    RandomState state = seed;
    RandomState expected = seed;
    const OperandPos p = rand(expected, 6);
    const NodeId link = model.structure->findLink(state, a, b, true, true);
    EXPECT_EQ(link, p == 0 || p == 1 || p == 5 ? x[1] : x[4]) << "from position " << p;
    EXPECT_EQ(state, expected) << "one draw";
    links.insert(link);
  }
  EXPECT_EQ(links.size(), 2U);
}

TEST(AutonomousStructure, PassesOverSharedOperandsThatDoNotFit) {
  SearchGraph model;
  const std::vector<NodeId> x = model.booleans(8);
  const NodeId a = model.limitedSum({x[0], x[1], x[2], x[3]}, 4);
  const NodeId b = model.limitedSum({x[0], x[1], x[2], x[4], x[5]}, 5);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}, {x[1], 1}});
  RandomState state = 3;
  for (int i = 0; i < 20; ++i) EXPECT_EQ(model.structure->findLink(state, a, b, true, true), x[2]);
}

TEST(AutonomousStructure, FindsNothingWhereNoOperandIsShared) {
  SearchGraph model;
  const std::vector<NodeId> x = model.booleans(8);
  const NodeId a = model.limitedSum({x[0], x[2], x[4]}, 3);
  const NodeId b = model.limitedSum({x[1], x[3], x[5], x[7]}, 4);
  model.start();
  RandomState state = 3;
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(model.structure->findLink(state, a, b, true, true), kNone);
    EXPECT_EQ(model.structure->findLink(state, b, a, true, true), kNone);
  }
}

// The fast path tests both counts on its first sum and takes its first increase candidate whatever the flags. The next
// four hold this lopsided rule in place.

TEST(AutonomousStructure, MissesALinkOfTwoFallingSums) {
  const AssignmentGraph model(4);
  RandomState state = 3;
  // x[1][1] is at 1 in both sums; but x[1][0], the first operand at 0, answers for them.
  EXPECT_EQ(model.structure->findLink(state, model.itemSums[1], model.placeSums[1], false, false), kNone);
  EXPECT_EQ(state, 3U);
}

TEST(AutonomousStructure, GivesAnOperandThatRaisesTheFallingSum) {
  const AssignmentGraph model(4);
  RandomState state = 3;
  // x[0][1] is at 0: it can't lower item sum 0.
  EXPECT_EQ(model.structure->findLink(state, model.itemSums[0], model.placeSums[1], false, true), model.x[0][1]);
  EXPECT_EQ(model.structure->findLink(state, model.placeSums[1], model.itemSums[0], true, false), model.x[0][1]);
  EXPECT_EQ(state, 3U);
}

TEST(AutonomousStructure, AsksTheFirstSumWhetherTheSecondHasASingleCandidate) {
  SearchGraph model;
  const std::vector<NodeId> x = model.booleans(5);
  const NodeId a = model.limitedSum({x[0], x[1], x[2]}, 3);
  const NodeId b = model.limitedSum({x[2], x[3], x[4]}, 3);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}, {x[1], 1}, {x[3], 1}});
  RandomState state = 3;
  // One operand of b is at 1, but two of a: declined, and the scan draws and finds nothing.
  EXPECT_EQ(model.structure->findLink(state, a, b, false, true), kNone);
  EXPECT_EQ(state, stepped(3, 1));
}

TEST(AutonomousStructure, AnswersNoneForASumThatIsFull) {
  SearchGraph model;
  const std::vector<NodeId> x = model.booleans(4);
  const NodeId a = model.limitedSum({x[0], x[1]}, 2);
  const NodeId b = model.limitedSum({x[0], x[1], x[2]}, 3);
  Dag& dag = model.start();
  commitValues(dag, {{x[0], 1}, {x[1], 1}});
  RandomState state = 3;
  EXPECT_EQ(model.structure->findLink(state, a, b, false, false), kNone) << "there is no first increase candidate";
  EXPECT_EQ(state, 3U);
}

TEST(AutonomousStructure, FindsEveryLinkByScanThatExists) {
  // Against the plain definition, on flags that the fast path declines.
  RandomState draws = 17;
  for (int round = 0; round < 400; ++round) {
    SearchGraph model;
    const std::vector<NodeId> x = model.booleans(16);
    const auto someOf = [&](std::uint32_t chance) {
      std::vector<NodeId> chosen;
      for (const NodeId id : x) {
        if (rand(draws, 100) < chance) chosen.push_back(id);
      }
      if (chosen.size() < 4) chosen = {x[0], x[1], x[2], x[3]};
      return chosen;
    };
    const NodeId a = model.limitedSum(someOf(60), 16);
    const NodeId b = model.limitedSum(someOf(40), 16);
    Dag& dag = model.start();
    for (const NodeId id : x) dag.propagation.setTentativeValue(dag, id, rand(draws, 2));
    dag.propagation.commitAll(dag);
    const auto candidates = [&](NodeId sum, t_value value) {
      return std::ranges::count_if(dag.fixed.childrenOf(sum), [&](NodeId id) { return dag.nodeValue[id] == value; });
    };
    if (candidates(a, 0) == 1 || candidates(b, 0) == 1 || candidates(a, 1) == 1 || candidates(b, 1) == 1) continue;
    const auto isLink = [&](NodeId id) {
      const auto inB = dag.fixed.childrenOf(b);
      return dag.nodeValue[id] == 0 && std::ranges::find(inB, id) != inB.end();
    };
    const auto inA = dag.fixed.childrenOf(a);
    const bool exists = std::ranges::any_of(inA, isLink);
    RandomState state = randomStep(draws);
    const NodeId link = model.structure->findLink(state, a, b, true, true);
    EXPECT_EQ(link != kNone, exists) << "round " << round;
    if (link != kNone) {
      EXPECT_TRUE(isLink(link));
    }
  }
}

}  // namespace
}  // namespace quvex
