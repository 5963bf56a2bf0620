#include "solver/move/movefilter.h"

#include <gtest/gtest.h>

#include <numeric>

#include "solver/kernel/heuristicdescent.h"
#include "support/searchgraph.h"

namespace quvex {
namespace {

/// A move that does nothing, with a cost factor of the test's choice.
class IdleMove : public Move {
 public:
  IdleMove(std::uint32_t weight, double factor, Dag& moveDag, RandomState& state)
      : Move(weight, moveDag, state), ownFactor(factor) {}
  bool apply() override { return false; }
  [[nodiscard]] double costFactor() const override { return ownFactor; }

 private:
  double ownFactor;
};

class FilterModel : public SearchGraph {
 public:
  std::unique_ptr<HeuristicDescent> heuristic;

  FilterModel() {
    booleans(2);
    heuristic = std::make_unique<HeuristicDescent>(start());
  }

  Move& add(std::uint32_t weight, double factor = 1.0) {
    heuristic->addMove(std::make_unique<IdleMove>(weight, factor, *dag, state()));
    return *heuristic->moves.back();
  }
  [[nodiscard]] std::vector<std::uint32_t> weights() const {
    std::vector<std::uint32_t> all;
    for (const auto& move : heuristic->moves) all.push_back(move->poolWeight);
    return all;
  }
  [[nodiscard]] std::uint32_t totalWeight() const {
    const std::vector<std::uint32_t> all = weights();
    return std::accumulate(all.begin(), all.end(), 0U);
  }
};

void setCounts(Move& move, std::uint32_t attempted, std::uint32_t accepted, std::uint32_t improved,
               std::uint32_t infeasible) {
  move.nbAttempted = attempted;
  move.nbAccepted = accepted;
  move.nbImprovements = improved;
  move.nbInfeasibles = infeasible;
}

using Weights = std::vector<std::uint32_t>;

TEST(MoveFilter, AdaptsEveryThousandIterations) {
  FilterModel model;
  setCounts(model.add(10), 100, 100, 100, 0);
  setCounts(model.add(10), 100, 1, 0, 0);
  MoveFilter filter(*model.heuristic, false);
  model.heuristic->iterations = 500;
  filter.onStart();
  model.heuristic->iterations = 1499;
  filter.onIteration();
  EXPECT_EQ(model.weights(), (Weights{10, 10}));
  EXPECT_TRUE(model.heuristic->pool.empty());
  model.heuristic->iterations = 1500;
  filter.onIteration();
  EXPECT_EQ(model.weights(), (Weights{11, 9}));
  EXPECT_EQ(model.heuristic->pool.size(), 20U) << "the pool follows at once";
  model.heuristic->iterations = 1501;
  filter.onIteration();
  model.heuristic->iterations = 2499;
  filter.onIteration();
  EXPECT_EQ(model.weights(), (Weights{11, 9}));
  model.heuristic->iterations = 2500;
  filter.onIteration();
  EXPECT_EQ(model.weights(), (Weights{12, 8}));
  filter.onEnd();
}

TEST(MoveFilter, ScoresByCostFactorsAloneWhenNoMoveImproved) {
  // Shares of 20: 1 / 1.5 and 0.5 / 1.5, whatever was accepted.
  FilterModel model;
  setCounts(model.add(10, 1.0), 100, 5, 0, 0);
  setCounts(model.add(10, 0.5), 100, 90, 0, 0);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  for (int i = 0; i < 50; ++i) filter.adapt();
  EXPECT_EQ(model.weights(), (Weights{13, 7})) << "of 13.3 and 6.7 they want 13 and 6: nobody goes up any longer";
}

TEST(MoveFilter, WeighsImprovementsThirtyAndAcceptancesTenTimes) {
  // Credits: 2 / 1 and 6 / 3 improved, 10 / 1 and 30 / 3 accepted: sums of 4 and 20.
  // Scores: 1 + 30 * 2 / 4 + 10 * 10 / 20 = 21 and 1 + 30 * 6 / 4 + 10 * 30 / 20 = 61; of a total of 82, that is 21
  // and 61.
  FilterModel model;
  setCounts(model.add(41), 100, 10, 2, 0);
  setCounts(model.add(41), 100, 30, 6, 2);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  for (int i = 0; i < 19; ++i) filter.adapt();
  EXPECT_EQ(model.weights(), (Weights{22, 60}));
  for (int i = 0; i < 10; ++i) filter.adapt();
  EXPECT_EQ(model.weights(), (Weights{21, 61}));
}

TEST(MoveFilter, GivesNoScoreToAMoveThatFailsAlmostAlways) {
  FilterModel model;
  setCounts(model.add(2), 1000, 0, 0, 991);
  setCounts(model.add(2), 1000, 0, 0, 990);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  for (int i = 0; i < 10; ++i) filter.adapt();
  EXPECT_EQ(model.weights(), (Weights{0, 4})) << "99 percent still score";
}

TEST(MoveFilter, LetsAMoveThatWasNeverTriedScore) {
  FilterModel model;
  model.add(0);
  setCounts(model.add(10), 100, 50, 0, 0);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  for (int i = 0; i < 10; ++i) filter.adapt();
  EXPECT_EQ(model.weights(), (Weights{5, 5}));
}

TEST(MoveFilter, KeepsAUnitForAMoveThatWasEverAccepted) {
  // A share below 1 of the total truncates to 0, but the move was accepted once.
  FilterModel model;
  setCounts(model.add(2), 100, 1, 0, 0);
  setCounts(model.add(3), 100, 100, 100, 0);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  for (int i = 0; i < 10; ++i) filter.adapt();
  EXPECT_EQ(model.weights(), (Weights{1, 4}));
}

TEST(MoveFilter, TakesNothingFromAUnitOfAMoveThatWasEverAccepted) {
  // It wants its unit although its share is none, and although it never improved: only the hopeless move pays.
  FilterModel model;
  setCounts(model.add(1), 100, 1, 0, 0);
  setCounts(model.add(3), 100, 100, 100, 0);
  setCounts(model.add(1), 1000, 0, 0, 1000);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  filter.adapt();
  EXPECT_EQ(model.weights(), (Weights{1, 4, 0}));
}

TEST(MoveFilter, KeepsOnlyAcceptedMovesWhenAllFail) {
  FilterModel model;
  setCounts(model.add(0), 1000, 2, 1, 998);
  setCounts(model.add(3), 1000, 0, 0, 1000);
  setCounts(model.add(4), 1000, 0, 0, 999);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  filter.adapt();
  EXPECT_EQ(model.weights()[0], 2U) << "it wants 1, and takes a unit from each of the two others";
  EXPECT_EQ(model.totalWeight(), 7U);
  const Weights after = model.weights();
  filter.adapt();
  EXPECT_EQ(model.weights(), after) << "it has more than it wants now: nobody goes up";
}

TEST(MoveFilter, DrawsReceiversThenGivers) {
  FilterModel model;
  for (int i = 0; i < 3; ++i) setCounts(model.add(2), 100, 50, 50, 0);
  for (int i = 0; i < 2; ++i) setCounts(model.add(1), 1000, 0, 0, 1000);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  // Of a total of 8 each of the first three wants 2: they are content.
  filter.adapt();
  EXPECT_EQ(model.weights(), (Weights{2, 2, 2, 1, 1}));

  model.heuristic->moves[0]->poolWeight = 1;
  model.heuristic->moves[1]->poolWeight = 1;
  model.heuristic->moves[3]->poolWeight = 2;
  model.heuristic->moves[4]->poolWeight = 2;
  Weights expected = model.weights();
  RandomState state = 0;
  for (int i = 0; i < 2; ++i) ++expected[rand(state, 2)];
  for (int taken = 0; taken < 2;) {
    std::uint32_t& giver = expected[3 + rand(state, 2)];
    if (giver == 0) continue;
    --giver;
    ++taken;
  }
  filter.adapt();
  EXPECT_EQ(model.weights(), expected);
}

TEST(MoveFilter, GivesAStarvedMoveAUnitOfTheHeaviest) {
  FilterModel model;
  model.add(3);
  model.add(0, 0.25);
  model.add(5);
  model.add(0, 1.0);
  model.add(5);
  model.add(0, 0.5);
  MoveFilter filter(*model.heuristic, true);
  filter.onStart();
  RandomState state = 0;
  const double x = rand(state, 2147483647U) / 2147483647.0;
  const std::size_t chosen = x <= 0.25 / 1.75 ? 1 : x <= 1.25 / 1.75 ? 3 : 5;
  filter.explore();
  Weights expected = {3, 0, 4, 0, 5, 0};
  expected[chosen] = 1;
  EXPECT_EQ(model.weights(), expected) << "the first of the two heaviest pays";
}

TEST(MoveFilter, ExploresNothingWhenNoMoveIsStarved) {
  FilterModel model;
  model.add(3);
  model.add(1);
  MoveFilter filter(*model.heuristic, true);
  filter.onStart();
  filter.explore();
  EXPECT_EQ(model.weights(), (Weights{3, 1}));
}

TEST(MoveFilter, BringsEveryStarvedMoveBackInTheLongRun) {
  FilterModel model;
  setCounts(model.add(20), 1000, 900, 500, 0);
  std::vector<Move*> starving;
  for (int i = 0; i < 4; ++i) {
    starving.push_back(&model.add(2, i == 0 ? 0.125 : 1.0));
    setCounts(*starving.back(), 1000, 0, 0, 1000);
  }
  MoveFilter filter(*model.heuristic, true);
  filter.onStart();
  std::vector<int> nbReturns(4, 0);
  for (int round = 1; round <= 2000; ++round) {
    std::vector<std::uint32_t> before;
    for (const Move* move : starving) before.push_back(move->poolWeight);
    model.heuristic->iterations = static_cast<std::uint64_t>(round) * 1000;
    filter.onIteration();
    EXPECT_EQ(model.totalWeight(), 28U);
    for (std::size_t i = 0; i < 4; ++i) {
      if (before[i] == 0 && starving[i]->poolWeight == 1) ++nbReturns[i];
    }
  }
  for (const int returns : nbReturns) EXPECT_GT(returns, 0);
  EXPECT_LT(nbReturns[0], nbReturns[1]) << "an expensive move returns more rarely";
}

TEST(MoveFilter, KeepsStarvedMovesAwayWithoutExploration) {
  FilterModel model;
  setCounts(model.add(20), 1000, 900, 500, 0);
  Move& starving = model.add(2);
  setCounts(starving, 1000, 0, 0, 1000);
  MoveFilter filter(*model.heuristic, false);
  filter.onStart();
  for (int round = 1; round <= 100; ++round) {
    model.heuristic->iterations = static_cast<std::uint64_t>(round) * 1000;
    filter.onIteration();
  }
  EXPECT_EQ(model.weights(), (Weights{22, 0}));
}

TEST(MoveFilter, KeepsTheSumOfWeightsWhateverTheCounts) {
  RandomState draws = 5;
  for (int round = 0; round < 50; ++round) {
    FilterModel model;
    const std::uint32_t nbMoves = 1 + rand(draws, 12);
    for (std::uint32_t i = 0; i < nbMoves; ++i) model.add(rand(draws, 9), 1.0 / (1 + rand(draws, 8)));
    model.add(1);
    MoveFilter filter(*model.heuristic, true);
    filter.onStart();
    const std::uint32_t total = model.totalWeight();
    for (int step = 1; step <= 100; ++step) {
      for (const auto& move : model.heuristic->moves) {
        const std::uint32_t attempted = rand(draws, 3) == 0 ? 0 : rand(draws, 1000);
        const std::uint32_t infeasible = rand(draws, 2) == 0 ? attempted : rand(draws, attempted + 1);
        const std::uint32_t accepted = rand(draws, attempted - infeasible + 1);
        setCounts(*move, attempted, accepted, rand(draws, accepted + 1), infeasible);
      }
      model.heuristic->iterations += 1000;
      filter.onIteration();
      ASSERT_EQ(model.totalWeight(), total);
      ASSERT_EQ(model.heuristic->pool.size(), total);
    }
  }
}

}  // namespace
}  // namespace quvex
