#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <tuple>

#include "solver/kernel/greedysolution.h"
#include "solver/kernel/heuristicdescent.h"
#include "solver/kernel/solution.h"
#include "solver/move/movebinpacking.h"
#include "solver/move/moveejectionchain.h"
#include "solver/move/movekflip.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesequence.h"
#include "solver/move/movesimplekflip.h"
#include "support/treegraph.h"
#include "support/treeoracle.h"

namespace quvex {
namespace {

using Ids = std::vector<NodeId>;

/// x0 or x1; x1 and x2; not both sums above 1.
class SmallTree : public TreeGraph {
 public:
  Ids x = booleans(4);
  NodeId any = require(NodeType::Or, {x[0], x[1]});
  NodeId all = require(NodeType::And, {x[1], x[2]});
  NodeId sum = add(NodeType::BooleanSum, {x[0], x[1], x[2]});
  NodeId limit = require(NodeType::Leq, {sum, constant(2)});
};

TEST(AutonomousSimulation, StartsFromTheCommittedState) {
  SmallTree graph;
  graph.grow({{graph.x[0], 1}});
  EXPECT_EQ(graph.at(graph.any).value(), 1);
  EXPECT_EQ(graph.at(graph.all).value(), 0);
  EXPECT_EQ(graph.at(graph.sum).value(), 1);
  EXPECT_EQ(graph.violated(), Ids{graph.all});
  EXPECT_EQ(graph.structure->violatedNodes.capacity, graph.structures.staticNodes.size());
  EXPECT_EQ(graph.structure->flippedDecisions.capacity, 4U);
  EXPECT_EQ(graph.structure->dynamicBooleans.size(), 4U);
  EXPECT_EQ(graph.structure->dynamicBooleans[3], nullptr);
}

TEST(AutonomousSimulation, SeesWhatFlipsBreakApartFromTheDag) {
  SmallTree graph;
  Dag& dag = graph.grow({{graph.x[0], 1}});
  graph.simulate(graph.x[1]);
  graph.simulate(graph.x[2]);
  EXPECT_EQ(graph.violated(), Ids{graph.limit});
  EXPECT_EQ(graph.at(graph.sum).value(), 3);
  EXPECT_EQ(dag.nodeValue[graph.sum], 1);
  EXPECT_TRUE(dag.propagation.touchedDecisions.empty());
}

TEST(AutonomousSimulation, UndoesAllFlips) {
  SmallTree graph;
  graph.grow({{graph.x[0], 1}});
  TreeOracle oracle(*graph.structure);
  for (const NodeId id : {graph.x[2], graph.x[0], graph.x[1]}) graph.simulate(id);
  oracle.expectAgreement();
  graph.structure->undoFlips();
  EXPECT_TRUE(graph.flipped().empty());
  oracle.expectAgreement();
  graph.structure->undoFlips();
  oracle.expectAgreement();
}

TEST(AutonomousSimulation, UndoesARandomFlip) {
  for (const RandomState seed : someSeeds(20)) {
    SmallTree graph;
    graph.grow();
    TreeOracle oracle(*graph.structure);
    RandomState state = seed;
    graph.structure->undoRandomFlip(state);
    EXPECT_EQ(state, seed) << "an empty set";

    const Ids order = {graph.x[2], graph.x[0], graph.x[1]};
    for (const NodeId id : order) graph.simulate(id);
    RandomState expected = seed;
    const NodeId undone = order[rand(expected, 3)];
    graph.structure->undoRandomFlip(state);
    EXPECT_EQ(state, expected);
    EXPECT_EQ(graph.flipped().size(), 2U);
    EXPECT_EQ(std::ranges::count(graph.flipped(), undone), 0);
    EXPECT_EQ(graph.at(undone).value(), 0);
    oracle.expectAgreement();
    graph.structure->undoRandomFlip(state);
    randomStep(expected);
    EXPECT_EQ(state, expected);
    graph.structure->undoRandomFlip(state);
    EXPECT_EQ(state, expected) << "the only one is no choice";
    EXPECT_TRUE(graph.flipped().empty());
    oracle.expectAgreement();
  }
}

TEST(AutonomousSimulation, FollowsCommitsOfOthers) {
  SmallTree graph;
  graph.grow();
  TreeOracle oracle(*graph.structure);
  graph.commit({{graph.x[1], 1}, {graph.x[2], 1}, {graph.x[3], 1}});
  oracle.expectAgreement();
  EXPECT_TRUE(graph.violated().empty());
  graph.commit({{graph.x[0], 1}});
  oracle.expectAgreement();
  EXPECT_EQ(graph.violated(), Ids{graph.limit});
}

TEST(AutonomousSimulation, IsToldNothingTwiceAtACommitOfItsOwnFlips) {
  SmallTree graph;
  Dag& dag = graph.grow();
  TreeOracle oracle(*graph.structure);
  graph.simulate(graph.x[1]);
  dag.flip(graph.x[1]);
  dag.flip(graph.x[2]);  // not simulated
  dag.propagation.commitAll(dag);
  EXPECT_TRUE(graph.flipped().empty());
  EXPECT_EQ(graph.at(graph.sum).value(), 2);
  oracle.expectAgreement();
}

TEST(AutonomousSimulation, IsToldNothingOfDecisionsOutsideOfTheTree) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  const NodeId i = graph.integer();
  graph.constraint(x[0]);
  graph.minimise(graph.add(NodeType::Sum, {x[1], i}));
  graph.grow();
  TreeOracle oracle(*graph.structure);
  graph.commit({{x[1], 1}, {i, 7}});
  oracle.expectAgreement();
  graph.commit({{x[0], 1}, {x[1], 0}, {i, 3}});
  oracle.expectAgreement();
  EXPECT_TRUE(graph.violated().empty());
}

TEST(AutonomousSimulation, TellsOnlyParentsThatServeAConstraint) {
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  const NodeId shared = graph.add(NodeType::And, x);
  const NodeId objective = graph.add(NodeType::Or, {shared, x[0]});
  const NodeId root = graph.require(NodeType::Geq, {shared, graph.constant(1)});
  graph.maximise(objective);
  graph.grow();
  EXPECT_FALSE(graph.isInTree(objective));
  graph.simulate(x[0]);
  graph.simulate(x[1]);
  EXPECT_EQ(graph.at(root).value(), 1);
}

TEST(AutonomousSimulation, LosesSightOfAConstraintThatIsAnObjectiveToo) {
  // Such a constraint counts as serving its objective, so its operands don't tell it anything.
  TreeGraph graph;
  const Ids x = graph.booleans(2);
  const NodeId root = graph.require(NodeType::And, x);
  graph.maximise(root);
  graph.grow();
  EXPECT_EQ(graph.violated(), Ids{root});
  graph.simulate(x[0]);
  graph.simulate(x[1]);
  EXPECT_EQ(graph.violated(), Ids{root});
}

/// Constraints of all types of the tree and a few others, over one another, up to rank 7.
class RandomTree : public TreeGraph {
 public:
  RandomState draws;
  Ids x;

  RandomTree(RandomState seed, bool withDoubles) : draws(seed) {
    x = booleans(4 + rand(draws, 20));
    truths = x;
    const std::uint32_t nbNodes = 5 + rand(draws, 30);
    for (std::uint32_t i = 0; i < nbNodes; ++i) addNode(withDoubles);
    std::set<NodeId> chosen;
    for (std::uint32_t i = 0; i < 3 + nbNodes / 3; ++i) chosen.insert(truths[rand(draws, size(truths))]);
    for (const NodeId id : chosen) constraint(id);
    Values values;
    for (const NodeId id : x) values.emplace_back(id, rand(draws, 2));
    grow(values, seed);
  }

 private:
  Ids truths;
  Ids numbers;
  Ids doubles;

  static std::uint32_t size(const Ids& ids) { return static_cast<std::uint32_t>(ids.size()); }
  NodeId anyOf(const Ids& ids) { return ids[rand(draws, size(ids))]; }

  Ids someOf(const Ids& ids) {
    Ids operands;
    for (std::uint32_t i = 1 + rand(draws, rand(draws, 8) == 0 ? 40 : 5); i > 0; --i) operands.push_back(anyOf(ids));
    if (rand(draws, 6) == 0) operands.push_back(constant(rand(draws, 2)));
    return operands;
  }

  void addNode(bool withDoubles) {
    switch (rand(draws, withDoubles ? 12 : 8)) {
      case 0:
        truths.push_back(add(NodeType::And, someOf(truths)));
        return;
      case 1:
        truths.push_back(add(NodeType::Or, someOf(truths)));
        return;
      case 2:
      case 3:
        numbers.push_back(add(NodeType::BooleanSum, someOf(x)));
        return;
      case 4: {
        const Ids operands = someOf(numbers.empty() || rand(draws, 2) == 0 ? truths : numbers);
        numbers.push_back(add(NodeType::Sum, operands));
        return;
      }
      case 5: {
        const Ids operands = someOf(rand(draws, 3) == 0 && !numbers.empty() ? numbers : truths);
        std::vector<t_value> coefficients;
        for (std::size_t i = 0; i < operands.size(); ++i)
          coefficients.push_back(static_cast<t_value>(rand(draws, 7)) - 3);
        numbers.push_back(add(NodeType::ScalarSum, operands, coefficients));
        return;
      }
      case 6:
        truths.push_back(add(rand(draws, 4) == 0 ? NodeType::Not : NodeType::Or, {anyOf(truths)}));
        return;
      case 8:
        doubles.push_back(add(NodeType::DoubleSum, someOf(doubles.empty() || rand(draws, 2) == 0 ? truths : doubles)));
        return;
      case 9:
      case 10: {
        const Ids operands = someOf(rand(draws, 3) == 0 && !doubles.empty() ? doubles : truths);
        std::vector<t_value> coefficients;
        for (std::size_t i = 0; i < operands.size(); ++i)
          coefficients.push_back(doubleToWord(0.5 * rand(draws, 9) - 2.0));
        doubles.push_back(add(NodeType::DoubleScalarSum, operands, coefficients));
        return;
      }
      case 11: {
        constexpr NodeType kTypes[] = {NodeType::DoubleLeq, NodeType::DoubleGeq, NodeType::DoubleEq};
        if (doubles.empty()) return;
        const NodeId other = rand(draws, 4) == 0   ? constantDouble(1.5)
                             : rand(draws, 2) == 0 ? constant(1)
                                                   : anyOf(doubles);
        truths.push_back(add(kTypes[rand(draws, 3)], {anyOf(doubles), other}));
        return;
      }
      default: {
        constexpr NodeType kTypes[] = {NodeType::Leq, NodeType::Geq, NodeType::Eq};
        if (numbers.empty()) return;
        const NodeId other =
            rand(draws, 2) == 0 ? constant(rand(draws, 4)) : anyOf(rand(draws, 2) == 0 ? numbers : truths);
        const NodeId one = anyOf(numbers);
        const bool isSwapped = rand(draws, 2) == 0;
        truths.push_back(add(kTypes[rand(draws, 3)], isSwapped ? Ids{other, one} : Ids{one, other}));
      }
    }
  }
};

TEST(AutonomousSimulation, AgreesWithARecomputationOnRandomTrees) {
  RandomState draws = 20250105;
  std::uint32_t nbDeep = 0;
  for (int i = 0; i < 400 && !HasFailure(); ++i) {
    RandomTree graph(randomStep(draws), i % 3 == 2);
    if (graph.fixed.nbRanks() > 5) ++nbDeep;
    TreeOracle oracle(*graph.structure);
    oracle.expectAgreement();
    AutonomousStructure& structure = *graph.structure;
    for (int step = 0; step < 60 && !HasFailure(); ++step) {
      const NodeId d = graph.x[rand(draws, static_cast<std::uint32_t>(graph.x.size()))];
      switch (rand(draws, 6)) {
        case 0:
          structure.undoFlips();
          break;
        case 1:
          structure.undoRandomFlip(draws);
          break;
        case 2: {  // what was simulated is committed, and one change more
          for (const NodeId id : graph.flipped()) graph.dag->flip(id);
          graph.dag->flip(d);
          graph.dag->propagation.commitAll(*graph.dag);
          break;
        }
        case 3: {
          if (structure.dynamicNodes.empty()) break;
          const auto n = static_cast<std::uint32_t>(structure.dynamicNodes.size());
          DynamicConstraintNode& node = *structure.dynamicNodes[rand(draws, n)];
          const bool strict = rand(draws, 2) == 0;
          const std::uint32_t operation = rand(draws, 3);
          if (operation == 0) node.flip(draws, strict);
          if (operation == 1) node.raise(draws, strict);
          if (operation == 2) node.lower(draws, strict);
          break;
        }
        default:
          if (graph.isInTree(d)) graph.simulate(d);
      }
      oracle.expectAgreement();
    }
  }
  EXPECT_GT(nbDeep, 20U) << "the cut is reached";
}

/// Assignments with capacities: every item on one place, loads limited, two pairs apart.
class AssignmentTree : public TreeGraph {
 public:
  std::vector<Ids> x;

  explicit AssignmentTree(std::uint32_t nbItems, std::uint32_t nbPlaces) {
    for (std::uint32_t i = 0; i < nbItems; ++i) x.push_back(booleans(nbPlaces));
    for (const Ids& row : x) tiedSum(row, 1);
    for (std::uint32_t j = 0; j < nbPlaces; ++j) {
      Ids column;
      std::vector<t_value> weights;
      for (std::uint32_t i = 0; i < nbItems; ++i) {
        column.push_back(x[i][j]);
        weights.push_back(1 + (i * 7) % 5);
      }
      const NodeId load = add(NodeType::ScalarSum, column, weights);
      require(NodeType::Leq, {load, constant(3 * nbItems / nbPlaces + 1)});
      const NodeId pair = add(NodeType::BooleanSum, {x[0][j], x[1][j]});
      require(NodeType::Leq, {pair, constant(1)});
      if (j == 0) minimise(load);
    }
    const NodeId somewhere = add(NodeType::And, {x[2][0], x[3][1]});
    require(NodeType::Or, {somewhere, x[4][1], x[5][0]});
    grow();
  }
};

TEST(AutonomousSimulation, StaysConsistentOverMixedRuns) {
  AssignmentTree graph(8, 3);
  Dag& dag = *graph.dag;
  AutonomousStructure& structure = *graph.structure;
  TreeOracle oracle(structure);
  HeuristicDescent heuristic(dag);
  std::vector<std::unique_ptr<Move>> moves;
  for (const std::uint32_t k : {1U, 2U, 3U})
    moves.push_back(std::make_unique<MoveSimpleKFlip>(k, 1, 50, structure, dag));
  moves.push_back(std::make_unique<MoveKSwap>(1, 1, 50, structure, dag));
  moves.push_back(std::make_unique<MoveSequence>(3, 1, 50, heuristic, structure, dag));
  for (const auto& [steps, flips, slack] : {std::tuple{2U, 2U, 1U}, std::tuple{3U, 3U, 1U}, std::tuple{4U, 4U, 2U}}) {
    moves.push_back(std::make_unique<MoveEjectionChain>(50, steps, flips, slack, structure, dag));
    moves.push_back(std::make_unique<MoveBinPacking>(50, steps, flips, slack, structure, dag));
  }
  Solution snapshot(dag);
  RandomState draws = 77;
  GreedySolution greedy(draws);
  for (int i = 0; i < 100000 && !HasFailure(); ++i) {
    Move& move = *moves[rand(draws, static_cast<std::uint32_t>(moves.size()))];
    if (!move.apply() || !move.evaluateLevel(1) || (move.referenceNbViolated() == 0 && move.constraintsWorse())) {
      move.conclude(Outcome::Infeasible);
    } else {
      constexpr Outcome kOutcomes[] = {Outcome::Rejected, Outcome::Accepted, Outcome::Improved};
      move.conclude(move.constraintsWorse() && rand(draws, 4) != 0 ? Outcome::Rejected : kOutcomes[rand(draws, 3)]);
    }
    EXPECT_TRUE(structure.flippedDecisions.empty());
    if (dag.propagation.committedNbViolated == 0) dag.propagation.activateAllConstraints();
    if (i % 997 == 0) snapshot.save();
    if (i % 1999 == 0) snapshot.restore(dag);
    if (i % 1000 == 0) {  // away from feasibility again
      dag.propagation.deactivateAllConstraints();
      for (Ids& row : graph.x) dag.flip(row[rand(draws, 3)]);
      dag.propagation.commitAll(dag);
    }
    if (i % 5000 == 0) (void)greedy.computeSolution(dag);
    if (i % 211 == 0) oracle.expectAgreement();
  }
  oracle.expectAgreement();
  for (const auto& move : moves) EXPECT_GT(move->nbAccepted, 0U) << move->name;
}

}  // namespace
}  // namespace quvex
