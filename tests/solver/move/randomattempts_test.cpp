#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "solver/kernel/heuristicdescent.h"
#include "solver/move/movebinpacking.h"
#include "solver/move/moveejectionchain.h"
#include "solver/move/movekbalance.h"
#include "solver/move/movekcycle.h"
#include "solver/move/movekflip.h"
#include "solver/move/moveklforkcycle.h"
#include "solver/move/moveklforkpath.h"
#include "solver/move/movekmirror.h"
#include "solver/move/movekpath.h"
#include "solver/move/movekroll.h"
#include "solver/move/movekswap.h"
#include "solver/move/movesequence.h"
#include "solver/move/movesimplekflip.h"
#include "support/searchgraph.h"
#include "support/treeoracle.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QUVEX_SANITIZED_BUILD 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QUVEX_SANITIZED_BUILD 1
#endif
#endif

namespace quvex {
namespace {

#ifdef QUVEX_SANITIZED_BUILD
constexpr int kAttempts = 10000;
#else
constexpr int kAttempts = 100000;
#endif
constexpr int kModels = 25;

/// Sums of all kinds over random operands, some tied, some limited, some as objectives; some hold operands that are no
/// boolean decisions. One model in four has operands out of order, as models without preprocessing may.
class RandomModel : public SearchGraph {
 public:
  RandomState draws;
  std::vector<NodeId> x;
  std::vector<NodeId> extra;
  std::unique_ptr<HeuristicDescent> heuristic;
  std::unique_ptr<TreeOracle> oracle;

  explicit RandomModel(RandomState seed) : draws(seed) {
    x = booleans(8 + rand(draws, 40));
    for (std::uint32_t i = rand(draws, 3); i > 0; --i) extra.push_back(integer());
    for (std::uint32_t i = rand(draws, 3); i > 0; --i) extra.push_back(add(NodeType::Not, {x[i]}));
    const bool isSorted = rand(draws, 4) != 0;
    const std::uint32_t nbSums = 3 + rand(draws, 10);
    for (std::uint32_t i = 0; i < nbSums; ++i) addSum(isSorted);
    limitedSum({x[0], x[1], x[2]}, 3);  // so that there is a constraint tree
    minimise(add(NodeType::Or, {x[0], x[1], x[2]}));
    Dag& built = start(seed, true);
    oracle = std::make_unique<TreeOracle>(*structure);
    for (const NodeId id : x) built.propagation.setTentativeValue(built, id, rand(draws, 4) == 0 ? 1 : 0);
    built.propagation.commitAll(built);
    heuristic = std::make_unique<HeuristicDescent>(built);
  }

 private:
  void addSum(bool isSorted) {
    std::vector<NodeId> operands;
    for (const NodeId id : x) {
      if (rand(draws, 3) == 0) operands.push_back(id);
    }
    if (operands.size() < 3) operands = {x[3], x[4], x[5]};
    const bool isPure = rand(draws, 3) != 0;
    if (!isPure) operands.insert(operands.end(), extra.begin(), extra.end());
    if (!isSorted) shuffle(operands);
    addUse(isPure && rand(draws, 2) == 0 ? booleanSum(operands) : addWideSum(operands));
  }

  NodeId addWideSum(const std::vector<NodeId>& operands) {
    std::vector<t_value> coefficients;
    std::vector<t_value> reals;
    for (const NodeId operand : operands) {
      // An unbounded operand gets no coefficient of 0, for which integer bounds are not meant.
      const bool isBoolean = fixed.nodeTypes[operand] != NodeType::Integer;
      coefficients.push_back(isBoolean ? static_cast<t_value>(rand(draws, 7)) - 2 : 1);
      reals.push_back(doubleToWord(0.25 * rand(draws, 9) - 0.5));
    }
    switch (rand(draws, 4)) {
      case 0:
        return add(NodeType::Sum, operands);
      case 1:
        return add(NodeType::ScalarSum, operands, coefficients);
      case 2:
        return add(NodeType::DoubleSum, operands);
      default:
        return add(NodeType::DoubleScalarSum, operands, reals);
    }
  }

  void addUse(NodeId sum) {
    const NodeType type = fixed.nodeTypes[sum];
    const bool isDouble = type == NodeType::DoubleSum || type == NodeType::DoubleScalarSum;
    const std::uint32_t use = rand(draws, 5);
    if (use == 0) return rand(draws, 2) == 0 ? minimise(sum) : maximise(sum);
    if (isDouble) return constraint(add(NodeType::DoubleLeq, {sum, constantDouble(1.0 + rand(draws, 5))}));
    if (use == 1) return constraint(add(NodeType::Leq, {sum, constant(rand(draws, 6))}));
    constraint(add(NodeType::Eq, {sum, constant(1 + rand(draws, 2))}));
  }

  void shuffle(std::vector<NodeId>& ids) {
    for (auto i = static_cast<std::uint32_t>(ids.size()); i > 1; --i) std::swap(ids[i - 1], ids[rand(draws, i)]);
  }
};

/// Runs the loop of a search with random verdicts among those that the rules allow.
class Runner {
 public:
  Runner(RandomModel& ownModel, Move& ownMove) : model(ownModel), move(ownMove), dag(*ownModel.dag) {}

  void run(int nbAttempts) {
    for (int i = 0; i < nbAttempts && !testing::Test::HasFailure(); ++i) {
      attempt();
      if (i % 499 == 0) checkState();
    }
    checkState();
  }

 private:
  RandomModel& model;
  Move& move;
  Dag& dag;

  void attempt() {
    if (!move.apply()) {
      checkTouched();
      move.conclude(Outcome::Infeasible);
      return;
    }
    checkTouched();
    move.conclude(verdict());
    if (dag.propagation.committedNbViolated == 0 && !dag.propagation.allConstraintsActive()) {
      dag.propagation.activateAllConstraints();
    }
  }

  Outcome verdict() {
    if (!move.evaluateLevel(0)) return Outcome::Infeasible;
    if (move.referenceNbViolated() == 0 && move.constraintsWorse()) return Outcome::Infeasible;
    for (Level stage = 1; stage <= model.fixed.nbObjectives(); ++stage) {
      if (rand(model.draws, 3) == 0) break;
      EXPECT_TRUE(move.evaluateLevel(stage));
    }
    constexpr Outcome kOutcomes[] = {Outcome::Rejected, Outcome::Accepted, Outcome::Improved};
    return kOutcomes[rand(model.draws, 3)];
  }

  /// Boolean decisions alone, each of them once.
  void checkTouched() {
    std::vector<NodeId> ids = touchedSorted(dag);
    EXPECT_EQ(std::ranges::adjacent_find(ids), ids.end());
    for (const NodeId id : ids) {
      EXPECT_EQ(dag.fixed.nodeTypes[id], NodeType::Boolean);
      EXPECT_EQ(dag.tentativeValue[id], 1 - dag.nodeValue[id]);
    }
  }

  void checkState() {
    for (NodeId id = 0; id < dag.fixed.nbNodes; ++id) EXPECT_NO_THROW(dag.nodes[id]->check(dag, id));
    EXPECT_NO_THROW(dag.propagation.check(dag));
    const Propagation& propagation = dag.propagation;
    std::int64_t violation = 0;
    bool isExact = true;  // distances of doubles are truncated one by one, so that their sum may drift
    for (std::uint32_t c = 0; c < dag.fixed.nbConstraints(); ++c) {
      const NodeId id = dag.fixed.constraints[c];
      violation += dag.nodes[id]->violation(dag, id);
      if (dag.fixed.nodeTypes[id] == NodeType::DoubleLeq) isExact = false;
      EXPECT_EQ(propagation.violatedConstraints.contains(c), dag.nodeValue[id] == 0);
    }
    if (isExact) {
      EXPECT_EQ(propagation.committedViolation, violation);
    }
    EXPECT_EQ(propagation.tentativeViolation, propagation.committedViolation);
    EXPECT_EQ(propagation.tentativeNbViolated, propagation.committedNbViolated);
    EXPECT_TRUE(propagation.touchedDecisions.empty());
    EXPECT_TRUE(model.structure->flippedDecisions.empty());
    model.oracle->expectAgreement();
  }
};

struct MoveCase {
  const char* name;
  std::function<std::unique_ptr<Move>(RandomModel& model, std::uint32_t k)> make;
};

template <class Flip>
std::unique_ptr<Move> makeFlip(RandomModel& model, std::uint32_t k) {
  return std::make_unique<Flip>(k, 1, 50, *model.structure, *model.dag);
}
template <class Chain>
std::unique_ptr<Move> makeChain(RandomModel& model, std::uint32_t k) {
  return std::make_unique<Chain>(k + 1, 1, 50, *model.structure);
}
template <class Fork>
std::unique_ptr<Move> makeFork(RandomModel& model, std::uint32_t k) {
  return std::make_unique<Fork>(k + 1, 1 + k % 3, 1, 50, *model.structure);
}
std::unique_ptr<Move> makeBalance(RandomModel& model, std::uint32_t k) {
  return std::make_unique<MoveKBalance>(k, 1, *model.structure, *model.dag);
}
std::unique_ptr<Move> makeSequence(RandomModel& model, std::uint32_t k) {
  return std::make_unique<MoveSequence>(k + 1, k - 1, 50, *model.heuristic, *model.structure, *model.dag);
}
template <class Repair>
std::unique_ptr<Move> makeRepair(RandomModel& model, std::uint32_t k) {
  return std::make_unique<Repair>(50, k, k, 1, *model.structure, *model.dag);
}

class RandomAttempts : public testing::TestWithParam<MoveCase> {};

TEST_P(RandomAttempts, KeepTheGraphConsistentAndChangeNoDecisionTwice) {
  RandomState draws = 20240611;
  std::uint32_t nbBuilt = 0;
  for (int i = 0; i < kModels && !HasFailure(); ++i) {
    RandomModel model(randomStep(draws));
    const std::unique_ptr<Move> move = GetParam().make(model, 1 + static_cast<std::uint32_t>(i) % 5);
    Runner(model, *move).run(kAttempts / kModels);
    EXPECT_EQ(move->nbAttempted, static_cast<std::uint32_t>(kAttempts / kModels));
    EXPECT_EQ(move->nbAttempted, move->nbAccepted + move->nbRejected + move->nbInfeasibles);
    nbBuilt += move->nbAccepted;
  }
  EXPECT_GT(nbBuilt, 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Moves, RandomAttempts,
    testing::Values(MoveCase{"Flip", makeFlip<MoveKFlip>}, MoveCase{"SimpleFlip", makeFlip<MoveSimpleKFlip>},
                    MoveCase{"Swap", makeFlip<MoveKSwap>},  //
                    MoveCase{"Balance", makeBalance},       //
                    MoveCase{"Path", makeChain<MoveKPath>}, MoveCase{"Cycle", makeChain<MoveKCycle>},
                    MoveCase{"ForkPath", makeFork<MoveKLForkPath>}, MoveCase{"ForkCycle", makeFork<MoveKLForkCycle>},
                    MoveCase{"Roll", makeChain<MoveKRoll>}, MoveCase{"Mirror", makeChain<MoveKMirror>},
                    MoveCase{"Sequence", makeSequence}, MoveCase{"EjectionChain", makeRepair<MoveEjectionChain>},
                    MoveCase{"BinPacking", makeRepair<MoveBinPacking>}),
    [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace quvex
