#include "api/qvphase.h"

#include <gtest/gtest.h>

#include "api/quvex.h"
#include "api/qvmodel.h"
#include "api/qvstatistics.h"
#include "support/failure.h"
#include "support/forcedstate.h"
#include "support/smallmodels.h"

namespace quvex {
namespace {

class QVPhaseOfTwoObjectives : public testing::Test {
 protected:
  Quvex quvex;
  QVPhase* phase = nullptr;

  void SetUp() override {
    QVModel& model = *quvex.getModel();
    const auto x = createDecisions(model, 2);
    model.addObjective(x[0], QVObjectiveDirection::Maximize);
    model.addObjective(x[1], QVObjectiveDirection::Maximize);
    model.close();
    phase = quvex.createPhase();
  }
};

TEST_F(QVPhaseOfTwoObjectives, StartsWithoutLimitsAtTheLastObjective) {
  EXPECT_EQ(phase->getQuvex(), &quvex);
  EXPECT_EQ(phase->getTimeLimit(), 2147483647);
  EXPECT_EQ(phase->getIterationLimit(), 9223372036854775807);
  EXPECT_EQ(phase->getOptimizedObjective(), 1);
  EXPECT_EQ(phase->toString(), "no time limit, no iteration limit, optimized objective = 1");
}

TEST_F(QVPhaseOfTwoObjectives, StoresItsLimits) {
  phase->setTimeLimit(1);
  phase->setIterationLimit(1);
  phase->setOptimizedObjective(0);
  EXPECT_EQ(phase->getTimeLimit(), 1);
  EXPECT_EQ(phase->getIterationLimit(), 1);
  EXPECT_EQ(phase->getOptimizedObjective(), 0);
  EXPECT_EQ(phase->toString(), "time limit = 1 sec, iteration limit = 1, optimized objective = 0");
}

TEST_F(QVPhaseOfTwoObjectives, RefusesLimitsBelowOne) {
  EXPECT_EQ(failureOf([&] { phase->setTimeLimit(0); }),
            refusal("QVPhase::setTimeLimit", "Argument timeLimit must be a strictly positive number."));
  EXPECT_EQ(failureOf([&] { phase->setIterationLimit(0); }),
            refusal("QVPhase::setIterationLimit", "Argument iterationLimit must be a strictly positive number."));
}

TEST_F(QVPhaseOfTwoObjectives, RefusesObjectivesThatDoNotExist) {
  EXPECT_EQ(failureOf([&] { phase->setOptimizedObjective(-1); }),
            refusal("QVPhase::setOptimizedObjective",
                    "The objective with index -1 does not exist.\nOnly indices from 0 to 1 are currently allowed."));
  EXPECT_EQ(failureOf([&] { phase->setOptimizedObjective(2); }),
            refusal("QVPhase::setOptimizedObjective",
                    "The objective with index 2 does not exist.\nOnly indices from 0 to 1 are currently allowed."));
  EXPECT_EQ(phase->getOptimizedObjective(), 1);
}

TEST_F(QVPhaseOfTwoObjectives, HasStatisticsOfItsOwn) {
  EXPECT_NE(phase->getStatistics(), quvex.getStatistics());
  EXPECT_EQ(phase->getStatistics()->getNbIterations(), 0);
  EXPECT_NE(quvex.createPhase()->getStatistics(), phase->getStatistics());
}

TEST_F(QVPhaseOfTwoObjectives, FollowsTheStateRules) {
  using enum StateRule;
  const auto expect = [this](StateRule rule, const std::string& method, const auto& call) {
    expectRule(quvex, rule, "quvex::QVPhase::" + method, call);
  };
  expect(StoppedOnly, "QVPhase", [&] { const QVPhase another(&quvex); });
  expect(StoppedOnly, "getQuvex", [&] { (void)phase->getQuvex(); });
  expect(StoppedOnly, "setTimeLimit", [&] { phase->setTimeLimit(1); });
  expect(StoppedOnly, "setIterationLimit", [&] { phase->setIterationLimit(1); });
  expect(StoppedOnly, "setOptimizedObjective", [&] { phase->setOptimizedObjective(0); });
  expect(PausedOrStopped, "getTimeLimit", [&] { (void)phase->getTimeLimit(); });
  expect(PausedOrStopped, "getIterationLimit", [&] { (void)phase->getIterationLimit(); });
  expect(PausedOrStopped, "getOptimizedObjective", [&] { (void)phase->getOptimizedObjective(); });
  expect(PausedOrStopped, "getStatistics", [&] { (void)phase->getStatistics(); });
}

TEST_F(QVPhaseOfTwoObjectives, DescribesItselfInEveryState) {
  for (const QVState state : {QVState::Modeling, QVState::Running, QVState::Paused, QVState::Stopped}) {
    const ForcedState forced(quvex, state);
    EXPECT_EQ(phase->toString(), "no time limit, no iteration limit, optimized objective = 1");
  }
}

}  // namespace
}  // namespace quvex
