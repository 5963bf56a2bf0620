#include "solver/move/moveejectionchain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "support/treegraph.h"
#include "support/treeoracle.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// Decisions below limits that can never be broken.
class LooseModel : public TreeGraph {
 public:
  Ids x = booleans(3);
  NodeId sum = add(NodeType::BooleanSum, x);
  NodeId limit = require(NodeType::Leq, {sum, constant(3)});
};

TEST(MoveEjectionChain, IsNamedAfterItsSteps) {
  LooseModel model;
  Dag& dag = model.grow();
  const MoveEjectionChain move(50, 3, 2, 1, *model.structure, dag);
  EXPECT_EQ(move.name, "3-EjectionChain");
  EXPECT_EQ(move.poolWeight, 1U);
  EXPECT_EQ(move.costFactor(), 1.0 / 6.0);
}

TEST(MoveEjectionChain, HandsItsFlipsOverWhenNothingBreaks) {
  // The start flips under one random node, as often as flips are allowed.
  LooseModel model;
  Dag& dag = model.grow();
  MoveEjectionChain move(0, 2, 2, 1, *model.structure, dag);
  std::set<std::size_t> sizes;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = seed;
    const StaticIndex node = rand(expected, 5);
    Ids flips;
    if (node < 3) {
      flips = {model.x[node]};  // a decision flips once
    } else {
      for (int i = 0; i < 2; ++i) {
        if (node == 4) randomStep(expected);  // which side of the limit
        const NodeId drawn = model.x[rand(expected, 3)];
        if (std::ranges::count(flips, drawn) == 0) flips.push_back(drawn);
      }
    }
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(model.state(), expected) << "no percentage for a rate of 0";
    EXPECT_EQ(touched(dag), flips);
    EXPECT_EQ(model.flipped(), flips);
    move.conclude(Outcome::Rejected);
    EXPECT_TRUE(model.flipped().empty());
    EXPECT_EQ(model.at(model.sum).value(), 0);
    sizes.insert(flips.size());
  }
  EXPECT_EQ(sizes, (std::set<std::size_t>{1, 2}));
}

TEST(MoveEjectionChain, KeepsTheSimulationInStepWithEveryOutcome) {
  LooseModel model;
  Dag& dag = model.grow();
  TreeOracle oracle(*model.structure);
  MoveEjectionChain move(0, 2, 2, 1, *model.structure, dag);
  std::uint32_t nbAttempts = 0;
  for (const Outcome outcome : {Outcome::Rejected, Outcome::Infeasible, Outcome::Accepted, Outcome::Improved}) {
    for (int i = 0; i < 20; ++i) {
      const std::vector<t_value> before = dag.nodeValue;
      ASSERT_TRUE(move.apply());
      ASSERT_TRUE(move.evaluate());
      move.conclude(outcome);
      const bool isCommitted = outcome == Outcome::Accepted || outcome == Outcome::Improved;
      EXPECT_EQ(dag.nodeValue != before, isCommitted);
      EXPECT_TRUE(model.flipped().empty());
      oracle.expectAgreement();
      ++nbAttempts;
    }
  }
  EXPECT_EQ(move.nbAttempted, nbAttempts);
  EXPECT_EQ(move.nbRejected, 20U);
  EXPECT_EQ(move.nbInfeasibles, 20U);
  EXPECT_EQ(move.nbAccepted, 40U);
  EXPECT_EQ(move.nbImprovements, 20U);
}

TEST(MoveEjectionChain, IsBuiltWhenItRepairsOneConstraintAndBreaksNone) {
  // x0 must be 1; it is not. Wherever the chain starts, its repair ends there.
  TreeGraph model;
  const Ids x = model.booleans(2);
  const NodeId any = model.require(NodeType::Or, x);
  Dag& dag = model.grow();
  EXPECT_EQ(model.violated(), Ids{any});
  MoveEjectionChain move(0, 2, 2, 1, *model.structure, dag);
  for (const RandomState seed : someSeeds(30)) {
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_TRUE(model.violated().empty());
    EXPECT_FALSE(touched(dag).empty());
    move.conclude(Outcome::Rejected);
    EXPECT_EQ(model.violated(), Ids{any});
  }
}

TEST(MoveEjectionChain, IsNotBuiltWhenItWouldViolateMore) {
  // Any change breaks an equality that only the same decision can repair.
  TreeGraph model;
  const NodeId x = model.boolean();
  model.require(NodeType::Eq, {x, model.constant(0)});
  Dag& dag = model.grow();
  MoveEjectionChain move(0, 3, 3, 1, *model.structure, dag);
  for (const RandomState seed : someSeeds(30)) {
    model.state() = seed;
    EXPECT_FALSE(move.apply());
    EXPECT_TRUE(touched(dag).empty());
    move.conclude(Outcome::Infeasible);
    EXPECT_TRUE(model.flipped().empty());
    EXPECT_TRUE(model.violated().empty());
  }
}

TEST(MoveEjectionChain, IsNotBuiltWithoutAnyFlip) {
  TreeGraph model;
  model.require(NodeType::Geq, {model.constant(0), model.constant(1)});
  Dag& dag = model.grow();
  MoveEjectionChain move(50, 2, 2, 1, *model.structure, dag);
  EXPECT_FALSE(move.apply());
  move.conclude(Outcome::Infeasible);
  EXPECT_EQ(move.nbInfeasibles, 1U);
}

TEST(MoveEjectionChain, EjectsAndRepairsAlongAnAssignment) {
  // Three items, of each exactly one place, places hold one: a chain moves an item and ejects another.
  TreeGraph model;
  std::vector<Ids> x;
  for (int i = 0; i < 3; ++i) x.push_back(model.booleans(3));
  for (const Ids& row : x) model.tiedSum(row, 1);
  for (std::size_t j = 0; j < 3; ++j) model.limitedSum({x[0][j], x[1][j], x[2][j]}, 1);
  Dag& dag = model.grow({{x[0][0], 1}, {x[1][1], 1}});
  EXPECT_EQ(model.violated().size(), 1U) << "item 2 has no place";
  MoveEjectionChain move(50, 4, 4, 2, *model.structure, dag);
  std::uint32_t nbSolved = 0;
  for (const RandomState seed : someSeeds(200)) {
    model.state() = seed;
    if (!move.apply()) {
      move.conclude(Outcome::Infeasible);
      continue;
    }
    ASSERT_TRUE(move.evaluateLevel(0));
    EXPECT_EQ(dag.propagation.tentativeNbViolated, static_cast<std::int64_t>(model.violated().size()))
        << "the simulation knows all constraints of this model";
    EXPECT_LE(dag.propagation.tentativeNbViolated, 1);
    if (dag.propagation.tentativeNbViolated == 0) ++nbSolved;
    move.conclude(Outcome::Rejected);
  }
  EXPECT_GT(nbSolved, 10U);
}

TEST(MoveEjectionChain, StartsFromATargetAndItsParents) {
  // One violated constraint: the target lies below it. maxFlips - 1 flips follow under random parents of the target.
  TreeGraph model;
  const Ids x = model.booleans(2);
  const NodeId any = model.require(NodeType::Or, {x[0], x[1]});
  const NodeId limit = model.add(NodeType::BooleanSum, x);
  model.require(NodeType::Leq, {limit, model.constant(5)});
  model.minimise(model.add(NodeType::Not, {x[0]}));  // a parent outside of the tree
  Dag& dag = model.grow();
  MoveEjectionChain move(100, 2, 2, 1, *model.structure, dag);
  std::map<NodeId, int> starts;
  for (const RandomState seed : someSeeds(60)) {
    RandomState expected = stepped(seed, 1);  // the percentage
    NodeId target = kNone;
    ASSERT_TRUE(pickTarget(dag, expected, target));
    const auto parents = dag.fixed.parentsOf(target);
    const NodeId parent = parents[rand(expected, parents.size())].parent;
    Ids flips = {target};
    if (parent == any) {
      // The "or" is true by now, so it lowers its only true operand, which can't be flipped again.
    } else if (parent == limit) {
      const NodeId drawn = x[rand(expected, 2)];
      if (drawn != target) flips.push_back(drawn);
    } else {
      EXPECT_FALSE(model.isInTree(parent));
    }
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), flips);
    EXPECT_EQ(model.state(), expected);
    move.conclude(Outcome::Rejected);
    ++starts[target];
  }
  EXPECT_EQ(starts.size(), 2U);
}

TEST(MoveEjectionChain, FlipsATargetAloneWhenOneFlipIsAllowed) {
  LooseModel model;
  model.maximise(model.x[1]);
  Dag& dag = model.grow();
  MoveEjectionChain move(100, 1, 1, 1, *model.structure, dag);
  model.state() = 5;
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{model.x[1]});
  EXPECT_EQ(model.state(), stepped(5, 1)) << "the percentage alone";
}

TEST(MoveEjectionChain, FlipsATargetAloneThatHasNoParent) {
  TreeGraph model;
  const NodeId x = model.boolean();
  model.constraint(x);
  Dag& dag = model.grow();
  ASSERT_EQ(dag.fixed.parentCount(x), 0U);
  MoveEjectionChain move(100, 4, 4, 2, *model.structure, dag);
  model.state() = 5;
  ASSERT_TRUE(move.apply());
  EXPECT_EQ(touched(dag), Ids{x});
  EXPECT_EQ(model.state(), stepped(5, 1)) << "the percentage alone";
}

TEST(MoveEjectionChain, DropsATargetOutsideOfTheTree) {
  TreeGraph model;
  const NodeId inside = model.boolean();
  const NodeId outside = model.boolean();
  const NodeId whole = model.integer();
  model.require(NodeType::Leq, {inside, model.constant(1)});
  for (const NodeId objective : {outside, whole}) {
    DagFixedFields& fixed = model.fixed;
    if (objective == outside) {
      model.maximise(outside);
      model.maximise(model.add(NodeType::Min, {whole, model.constant(3)}));
      model.grow();
    } else {
      model.commit({{outside, 1}});  // the first objective is at its bound, so the second is targeted
    }
    ASSERT_FALSE(fixed.isConstraint(objective));
    MoveEjectionChain move(100, 2, 2, 1, *model.structure, *model.dag);
    for (const RandomState seed : someSeeds(20)) {
      model.state() = seed;
      ASSERT_TRUE(move.apply());
      EXPECT_EQ(touched(*model.dag), Ids{inside}) << "the random start";
      move.conclude(Outcome::Rejected);
    }
  }
}

TEST(MoveEjectionChain, RepairsOneByOneWhereNothingIsShared) {
  TreeGraph model;
  const Ids x = model.booleans(4);
  model.require(NodeType::Or, {x[0], x[1]});
  model.require(NodeType::Or, {x[2], x[3]});
  Dag& dag = model.grow();
  ASSERT_EQ(model.violated().size(), 2U);
  MoveEjectionChain move(0, 2, 3, 1, *model.structure, dag);
  for (const RandomState seed : someSeeds(50)) {
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_TRUE(model.violated().empty()) << "the start repaired one, a repair step the other";
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveEjectionChain, TakesARepairForCompleteThatADeepConstraintUndoes) {
  // The conjunction of rank 5 is not in the tree: the chain ends well, and the evaluation sees what it broke.
  TreeGraph model;
  const Ids x = model.booleans(6);
  NodeId deep = x[0];
  for (std::uint32_t r = 1; r <= 5; ++r) deep = model.add(NodeType::And, {deep, x[r]});
  model.constraint(deep);
  const NodeId sum = model.add(NodeType::BooleanSum, x);
  const NodeId limit = model.require(NodeType::Leq, {sum, model.constant(5)});
  Values values;
  for (const NodeId id : x) values.emplace_back(id, 1);
  Dag& dag = model.grow(values);
  ASSERT_EQ(model.violated(), Ids{limit});
  ASSERT_EQ(dag.propagation.committedNbViolated, 1);
  MoveEjectionChain move(0, 2, 2, 1, *model.structure, dag);
  for (const RandomState seed : someSeeds(20)) {
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_TRUE(model.violated().empty());
    ASSERT_TRUE(move.evaluateLevel(0));
    EXPECT_EQ(dag.propagation.tentativeNbViolated, 1) << "another one now";
    move.conclude(Outcome::Rejected);
  }
}

TEST(MoveEjectionChain, LeavesAConstraintAboveTheCutToTheEvaluation) {
  // The conjunction of rank 5 is violated before and after, which the simulation can't see: the chain counts as
  // complete, whether or not it had something to repair.
  TreeGraph model;
  const Ids x = model.booleans(2);
  const Ids y = model.booleans(6);
  const NodeId any = model.require(NodeType::Or, x);
  NodeId deep = y[0];
  for (std::uint32_t r = 1; r <= 5; ++r) deep = model.add(NodeType::And, {deep, y[r]});
  model.constraint(deep);
  Dag& dag = model.grow();
  ASSERT_FALSE(model.isInTree(deep));
  MoveEjectionChain move(0, 2, 2, 1, *model.structure, dag);
  for (const bool isRepair : {true, false}) {
    if (!isRepair) model.commit({{x[0], 1}, {x[1], 1}});
    ASSERT_EQ(model.violated(), isRepair ? Ids{any} : Ids{});
    ASSERT_EQ(dag.propagation.committedNbViolated, isRepair ? 2 : 1);
    for (const RandomState seed : someSeeds(20)) {
      model.state() = seed;
      ASSERT_TRUE(move.apply());
      EXPECT_TRUE(model.violated().empty());
      EXPECT_FALSE(touched(dag).empty());
      ASSERT_TRUE(move.evaluateLevel(0));
      EXPECT_EQ(dag.tentativeValue[deep], 0);
      EXPECT_EQ(dag.propagation.tentativeNbViolated, 1);
      EXPECT_EQ(move.constraintsBetter(), isRepair);
      EXPECT_FALSE(move.constraintsWorse());
      move.conclude(Outcome::Rejected);
    }
  }
}

TEST(MoveEjectionChain, TransfersBetweenTwoViolatedConstraints) {
  // The first step repairs the constraint with a single way out. The two that remain share one decision.
  TreeGraph model;
  const Ids x = model.booleans(6);
  const NodeId a = model.require(NodeType::Or, {x[0], x[1], x[2]});
  const NodeId b = model.require(NodeType::Or, {x[2], x[3], x[4]});
  const NodeId single = model.require(NodeType::Or, {x[5]});
  const NodeId outside = model.boolean();
  model.require(NodeType::Leq, {outside, model.constant(1)});
  Dag& dag = model.grow();
  ASSERT_EQ(model.violated(), (Ids{a, b, single}));
  const StaticIndex startOutside = model.staticIndex(outside);
  const auto nbNodes = static_cast<std::uint32_t>(model.structures.staticNodes.size());
  MoveEjectionChain move(0, 2, 9, 9, *model.structure, dag);
  int nbTransfers = 0;
  for (const RandomState seed : someSeeds(200)) {
    RandomState expected = seed;
    if (rand(expected, nbNodes) != startOutside) continue;
    (void)rand(expected, 3);  // where the round over the violated constraints begins
    (void)rand(expected, 2);  // which of the two left comes first
    (void)rand(expected, 3);  // where its list would be entered
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{outside, x[5], x[2]}));
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(model.violated().empty());
    move.conclude(Outcome::Rejected);
    ++nbTransfers;
  }
  EXPECT_GT(nbTransfers, 0);
}

TEST(MoveEjectionChain, DrawsTwoOfThreeViolatedConstraintsForATransfer) {
  // Any two of the three share one decision. The first step repairs the constraint with a single way out, the second
  // and last one transfers.
  TreeGraph model;
  const Ids x = model.booleans(7);
  const std::vector<Ids> operands = {{x[0], x[1], x[3]}, {x[1], x[2], x[4]}, {x[0], x[2], x[5]}};
  for (const Ids& ids : operands) model.require(NodeType::Or, ids);
  const NodeId single = model.require(NodeType::Or, {x[6]});
  const NodeId outside = model.boolean();
  model.require(NodeType::Leq, {outside, model.constant(1)});
  Dag& dag = model.grow();
  const auto nbNodes = static_cast<std::uint32_t>(model.structures.staticNodes.size());
  const auto sharedBy = [&](NodeId one, NodeId two) {
    Ids both;
    std::ranges::set_intersection(dag.fixed.childrenOf(one), dag.fixed.childrenOf(two), std::back_inserter(both));
    return both.at(0);
  };
  MoveEjectionChain move(0, 1, 9, 9, *model.structure, dag);
  std::set<std::pair<std::uint32_t, std::uint32_t>> pairs;
  for (const RandomState seed : someSeeds(1000)) {
    RandomState expected = seed;
    if (rand(expected, nbNodes) != model.staticIndex(outside)) continue;
    Ids left = model.violated();
    ASSERT_EQ(left.size(), 4U);
    *std::ranges::find(left, single) = left.back();
    left.pop_back();
    (void)rand(expected, 4);  // where the round over the violated constraints begins
    const std::uint32_t a = rand(expected, 3);
    const std::uint32_t b = (a + 1 + rand(expected, 2)) % 3;
    (void)rand(expected, 3);  // where the list of the first would be entered
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), (Ids{outside, x[6], sharedBy(left[a], left[b])}));
    EXPECT_EQ(model.state(), expected);
    EXPECT_EQ(model.violated().size(), 1U);
    move.conclude(Outcome::Rejected);
    pairs.insert({a, b});
  }
  EXPECT_EQ(pairs.size(), 6U);
}

/// Four violated disjunctions of two decisions each, which share none.
class Apart : public TreeGraph {
 public:
  Ids x = booleans(8);
  Ids roots;

  Apart() {
    for (std::size_t i = 0; i < 8; i += 2) roots.push_back(require(NodeType::Or, {x[i], x[i + 1]}));
    grow();
  }

  /// The flips of an attempt that starts at random and then repairs one disjunction a step, behind a vain transfer
  /// where two are left.
  [[nodiscard]] Ids attempt(RandomState& state) const {
    Ids left = violated();  // in the order of their set, whose last entry fills a gap
    const auto repair = [&](NodeId root, std::uint32_t operand) {
      *std::ranges::find(left, root) = left.back();
      left.pop_back();
      return fixed.childrenOf(root)[operand];
    };
    const std::uint32_t node = rand(state, 12);
    Ids flips = {node < 8 ? repair(roots[node / 2], node % 2) : repair(roots[node - 8], rand(state, 2))};
    while (!left.empty()) {
      const auto n = static_cast<std::uint32_t>(left.size());
      if (n == 2) state = stepped(state, 2);  // the first of the two, and where its list would be entered
      const NodeId root = left[rand(state, n)];
      flips.push_back(repair(root, rand(state, 2)));
    }
    return flips;
  }
};

TEST(MoveEjectionChain, FallsBackOnARepairWhereTwoViolatedConstraintsShareNothing) {
  Apart model;
  Dag& dag = *model.dag;
  ASSERT_EQ(model.violated().size(), 4U);
  MoveEjectionChain move(0, 2, 2, 1, *model.structure, dag);
  for (const RandomState seed : someSeeds(100)) {
    RandomState expected = seed;
    const Ids flips = model.attempt(expected);
    ASSERT_EQ(flips.size(), 4U);
    model.state() = seed;
    ASSERT_TRUE(move.apply());
    EXPECT_EQ(touched(dag), flips) << "the transfer that finds nothing costs no step";
    EXPECT_EQ(model.state(), expected);
    EXPECT_TRUE(model.violated().empty());
    ASSERT_TRUE(move.evaluateLevel(0));
    EXPECT_EQ(dag.propagation.tentativeNbViolated, 0);
    move.conclude(Outcome::Rejected);
    EXPECT_EQ(model.violated().size(), 4U);
  }
}

}  // namespace
}  // namespace quvex
