#include "api/qvstatistics.h"

#include <gtest/gtest.h>

#include "api/quvex.h"
#include "api/qvmodel.h"
#include "api/qvphase.h"
#include "support/apipeer.h"
#include "support/failure.h"
#include "support/forcedstate.h"
#include "support/smallmodels.h"

namespace quvex {
namespace {

/// A solver that has searched for 100 iterations on two threads, in one phase.
class QVStatisticsOfAKnapsack : public testing::Test {
 protected:
  Quvex quvex;
  QVPhase* phase = nullptr;
  QVStatistics* statistics = nullptr;

  void SetUp() override {
    const Knapsack knapsack(*quvex.getModel());
    phase = closeQuietly(quvex, 100, 2);
    statistics = quvex.getStatistics();
  }
};

TEST_F(QVStatisticsOfAKnapsack, StartAtZeroWithoutPercentages) {
  EXPECT_EQ(statistics->getQuvex(), &quvex);
  EXPECT_EQ(statistics->getRunningTime(), 0);
  EXPECT_EQ(statistics->getNbIterations(), 0);
  EXPECT_EQ(statistics->getNbMoves(), 0);
  EXPECT_EQ(statistics->getNbAcceptedMoves(), 0);
  EXPECT_EQ(statistics->getNbImprovingMoves(), 0);
  EXPECT_EQ(statistics->getNbInfeasibleMoves(), 0);
  EXPECT_EQ(statistics->getNbRejectedMoves(), 0);
  EXPECT_EQ(statistics->getPercentAcceptedMoves(), 0.0);
  EXPECT_EQ(statistics->getPercentImprovingMoves(), 0.0);
  EXPECT_EQ(statistics->getPercentRejectedMoves(), 0.0);
  EXPECT_EQ(statistics->getPercentInfeasibleMoves(), 0.0);
}

TEST_F(QVStatisticsOfAKnapsack, CountIterationsOfTheSlowestThreadAndMovesOfAll) {
  quvex.solve();
  for (const QVStatistics* each : {statistics, phase->getStatistics()}) {
    EXPECT_EQ(each->getNbIterations(), 100);
    EXPECT_EQ(each->getNbMoves(), 200);
    EXPECT_GT(each->getNbAcceptedMoves(), 0);
    EXPECT_GT(each->getNbImprovingMoves(), 0);
    EXPECT_GE(each->getNbAcceptedMoves(), each->getNbImprovingMoves());
    EXPECT_EQ(each->getNbRejectedMoves(), 200 - each->getNbAcceptedMoves());
    EXPECT_LE(each->getNbInfeasibleMoves(), each->getNbRejectedMoves());
  }
}

TEST_F(QVStatisticsOfAKnapsack, GlobalFiguresAreSumsOverPhases) {
  quvex.createPhase()->setIterationLimit(50);
  quvex.solve();
  const QVStatistics& first = *phase->getStatistics();
  const QVStatistics& second = *quvex.getPhase(1)->getStatistics();
  EXPECT_EQ(first.getNbIterations(), 100);
  EXPECT_EQ(second.getNbIterations(), 50);
  EXPECT_EQ(statistics->getNbIterations(), 150);
  EXPECT_EQ(statistics->getNbMoves(), 300);
  EXPECT_EQ(statistics->getNbAcceptedMoves(), first.getNbAcceptedMoves() + second.getNbAcceptedMoves());
  EXPECT_EQ(statistics->getNbImprovingMoves(), first.getNbImprovingMoves() + second.getNbImprovingMoves());
  EXPECT_EQ(statistics->getNbInfeasibleMoves(), first.getNbInfeasibleMoves() + second.getNbInfeasibleMoves());
}

TEST_F(QVStatisticsOfAKnapsack, StartAfreshWithEverySolve) {
  quvex.solve();
  quvex.solve();
  EXPECT_EQ(statistics->getNbIterations(), 100);
  EXPECT_EQ(statistics->getNbMoves(), 200);
}

TEST_F(QVStatisticsOfAKnapsack, PercentagesAreSharesOfAllMoves) {
  ApiPeer::setMoves(*statistics, 400, 100, 50, 25);
  EXPECT_EQ(statistics->getPercentAcceptedMoves(), 25.0);
  EXPECT_EQ(statistics->getPercentImprovingMoves(), 12.5);
  EXPECT_EQ(statistics->getPercentRejectedMoves(), 75.0);
  EXPECT_EQ(statistics->getPercentInfeasibleMoves(), 6.25);
  EXPECT_EQ(statistics->getNbRejectedMoves(), 300);
}

TEST_F(QVStatisticsOfAKnapsack, TextRepeatsTheAcceptedFigures) {
  ApiPeer::setMoves(*statistics, 300, 100, 50, 25);
  ApiPeer::setRunningTime(*statistics, 12);
  EXPECT_EQ(statistics->toString(),
            "running time = 12 sec, nb iterations = 0, nb moves = 300\n"
            "accepted = 100 (33.3333%), improving = 100 (33.3333%)\n"
            "rejected = 100 (33.3333%), infeasible = 100 (33.3333%)\n");
}

TEST_F(QVStatisticsOfAKnapsack, InfoRoundsUpToTenthsOfAPercent) {
  quvex.solve();
  ApiPeer::setMoves(*statistics, 680, 21, 15, 85);
  EXPECT_EQ(statistics->getInfo(), "mov = 680, inf = 12.5%, acc = 3.1%, imp = 15");
  ApiPeer::setMoves(*statistics, 10000, 11, 3, 10);
  EXPECT_EQ(statistics->getInfo(), "mov = 10000, inf < 0.1%, acc = 0.2%, imp = 3");
  ApiPeer::setMoves(*statistics, 10000, 1, 0, 0);
  EXPECT_EQ(statistics->getInfo(), "mov = 10000, inf < 0.1%, acc < 0.1%, imp = 0");
}

TEST_F(QVStatisticsOfAKnapsack, TheSmallestIterationCountIsChosenByItsLowBits) {
  quvex.solve();
  ApiPeer::heuristic(quvex, 0).iterations = 500;
  ApiPeer::heuristic(quvex, 1).iterations = (std::uint64_t{1} << 32U) + 7;
  ApiPeer::refresh(*phase->getStatistics());
  EXPECT_EQ(phase->getStatistics()->getNbIterations(), (std::int64_t{1} << 32U) + 7);
  EXPECT_EQ(phase->getStatistics()->getNbMoves(), (std::int64_t{1} << 32U) + 507);
}

TEST_F(QVStatisticsOfAKnapsack, WithoutASearchThereIsNoSmallestFigure) {
  ApiPeer::refresh(*phase->getStatistics());
  EXPECT_EQ(phase->getStatistics()->getRunningTime(), 2147483647);
  EXPECT_EQ(phase->getStatistics()->getNbIterations(), 9223372036854775807);
  EXPECT_EQ(phase->getStatistics()->getNbMoves(), 0);
}

TEST_F(QVStatisticsOfAKnapsack, InfoNeedsASolve) {
  const std::string notStarted = refusal(
      "QVStatistics::getInfo", "This method cannot be called if the solver has not been started at least once.");
  EXPECT_EQ(failureOf([&] { (void)statistics->getInfo(); }), notStarted);
  quvex.solve();
  EXPECT_EQ(failureOf([&] { (void)statistics->getInfo(); }), "no failure");
  quvex.getModel()->open();
  EXPECT_EQ(failureOf([&] { (void)statistics->getInfo(); }), notStarted);
}

TEST_F(QVStatisticsOfAKnapsack, FollowTheStateRule) {
  quvex.solve();
  const auto expect = [this](const std::string& method, const auto& call) {
    expectRule(quvex, StateRule::PausedOrStopped, "quvex::QVStatistics::" + method, call);
  };
  const QVStatistics& s = *statistics;
  expect("getQuvex", [&] { (void)s.getQuvex(); });
  expect("getRunningTime", [&] { (void)s.getRunningTime(); });
  expect("getNbIterations", [&] { (void)s.getNbIterations(); });
  expect("getNbMoves", [&] { (void)s.getNbMoves(); });
  expect("getNbAcceptedMoves", [&] { (void)s.getNbAcceptedMoves(); });
  expect("getNbImprovingMoves", [&] { (void)s.getNbImprovingMoves(); });
  expect("getNbInfeasibleMoves", [&] { (void)s.getNbInfeasibleMoves(); });
  expect("getNbRejectedMoves", [&] { (void)s.getNbRejectedMoves(); });
  expect("getPercentAcceptedMoves", [&] { (void)s.getPercentAcceptedMoves(); });
  expect("getPercentImprovingMoves", [&] { (void)s.getPercentImprovingMoves(); });
  expect("getPercentRejectedMoves", [&] { (void)s.getPercentRejectedMoves(); });
  expect("getPercentInfeasibleMoves", [&] { (void)s.getPercentInfeasibleMoves(); });
  expect("toString", [&] { (void)s.toString(); });
  expect("getInfo", [&] { (void)s.getInfo(); });
}

}  // namespace
}  // namespace quvex
