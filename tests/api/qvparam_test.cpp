#include "api/qvparam.h"

#include <gtest/gtest.h>

#include <limits>

#include "api/quvex.h"
#include "api/qvmodel.h"
#include "api/qvphase.h"
#include "support/failure.h"
#include "support/forcedstate.h"
#include "support/smallmodels.h"

namespace quvex {
namespace {

constexpr const char* kIntegerOnly = "Cannot use this method. The given expression must be boolean or integer.";
constexpr const char* kDoubleOnly = "Cannot use this method. The given expression must be double.";

/// Objective 0 is an integer to maximise, objective 1 a double to minimise, objective 2 a boolean.
class QVParamOfClosedModel : public testing::Test {
 protected:
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  QVParam& param = *quvex.getParam();

  void SetUp() override {
    const auto x = createDecisions(model, 2);
    model.addObjective(model.createExpression(QVOperator::Sum, x[0], x[1]), QVObjectiveDirection::Maximize);
    model.addObjective(model.createExpression(QVOperator::Prod, model.createConstant(0.5), x[1]),
                       QVObjectiveDirection::Minimize);
    model.addObjective(x[0], QVObjectiveDirection::Minimize);
    model.close();
  }
};

TEST_F(QVParamOfClosedModel, StartsWithTheDefaults) {
  EXPECT_EQ(param.getQuvex(), &quvex);
  EXPECT_EQ(param.getSeed(), 0);
  EXPECT_EQ(param.getNbThreads(), 2);
  EXPECT_EQ(param.getAnnealingLevel(), 1);
  EXPECT_EQ(param.getTimeBetweenDisplays(), 1);
  EXPECT_EQ(param.getVerbosity(), 1);
}

TEST_F(QVParamOfClosedModel, KeepsTimeBetweenDisplaysInItsRange) {
  param.setTimeBetweenDisplays(65535);
  EXPECT_EQ(param.getTimeBetweenDisplays(), 65535);
  EXPECT_EQ(failureOf([&] { param.setTimeBetweenDisplays(65536); }),
            refusal("QVParam::setTimeBetweenDisplays", "The time between displays cannot exceed 65535."));
  EXPECT_EQ(
      failureOf([&] { param.setTimeBetweenDisplays(0); }),
      refusal("QVParam::setTimeBetweenDisplays", "Argument timeBetweenDisplays must be a strictly positive number."));
  EXPECT_EQ(param.getTimeBetweenDisplays(), 65535);
}

TEST_F(QVParamOfClosedModel, RefusesNegativeSeeds) {
  param.setSeed(0);
  param.setSeed(17);
  EXPECT_EQ(param.getSeed(), 17);
  EXPECT_EQ(failureOf([&] { param.setSeed(-1); }),
            refusal("QVParam::setSeed", "Argument seed must be a positive number."));
}

TEST_F(QVParamOfClosedModel, KeepsTheNumberOfThreadsInItsRange) {
  param.setNbThreads(1024);
  EXPECT_EQ(param.getNbThreads(), 1024);
  EXPECT_EQ(failureOf([&] { param.setNbThreads(1025); }),
            refusal("QVParam::setNbThreads", "The number of threads cannot exceed 1024."));
  EXPECT_EQ(failureOf([&] { param.setNbThreads(0); }),
            refusal("QVParam::setNbThreads", "Argument nbThreads must be a strictly positive number."));
}

TEST_F(QVParamOfClosedModel, KeepsTheAnnealingLevelInItsRange) {
  param.setAnnealingLevel(0);
  param.setAnnealingLevel(9);
  EXPECT_EQ(param.getAnnealingLevel(), 9);
  const std::string text =
      refusal("QVParam::setAnnealingLevel", "The annealing level size must be an integer between 0 and 9.");
  EXPECT_EQ(failureOf([&] { param.setAnnealingLevel(10); }), text);
  EXPECT_EQ(failureOf([&] { param.setAnnealingLevel(-1); }), text);
}

TEST_F(QVParamOfClosedModel, RefusesNegativeVerbosity) {
  param.setVerbosity(0);
  EXPECT_EQ(param.getVerbosity(), 0);
  EXPECT_EQ(failureOf([&] { param.setVerbosity(-1); }),
            refusal("QVParam::setVerbosity", "Argument verbosity must be a positive number."));
}

TEST_F(QVParamOfClosedModel, StartsWithBoundsOutOfReach) {
  EXPECT_EQ(param.getObjectiveBound(0), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(param.getDoubleObjectiveBound(1), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(param.getIntObjectiveBound(2), std::numeric_limits<std::int64_t>::min());
}

TEST_F(QVParamOfClosedModel, StoresBoundsByType) {
  param.setObjectiveBound(0, 3);
  EXPECT_EQ(param.getIntObjectiveBound(0), 3);
  param.setIntObjectiveBound(0, 4);
  EXPECT_EQ(param.getObjectiveBound(0), 4);
  param.setDoubleObjectiveBound(1, 0.25);
  EXPECT_EQ(param.getDoubleObjectiveBound(1), 0.25);
  param.setDoubleObjectiveBound(1, std::numeric_limits<double>::infinity());
  EXPECT_EQ(param.getDoubleObjectiveBound(1), std::numeric_limits<double>::infinity());
}

TEST_F(QVParamOfClosedModel, RefusesBoundsOfTheWrongType) {
  EXPECT_EQ(failureOf([&] { param.setIntObjectiveBound(1, 1); }),
            refusal("QVParam::setIntObjectiveBound", kIntegerOnly));
  EXPECT_EQ(failureOf([&] { param.setObjectiveBound(1, 1); }), refusal("QVParam::setObjectiveBound", kIntegerOnly));
  EXPECT_EQ(failureOf([&] { (void)param.getObjectiveBound(1); }), refusal("QVParam::getObjectiveBound", kIntegerOnly));
  EXPECT_EQ(failureOf([&] { (void)param.getIntObjectiveBound(1); }),
            refusal("QVParam::getIntObjectiveBound", kIntegerOnly));
  EXPECT_EQ(failureOf([&] { param.setDoubleObjectiveBound(0, 1.0); }),
            refusal("QVParam::setDoubleObjectiveBound", kDoubleOnly));
  EXPECT_EQ(failureOf([&] { (void)param.getDoubleObjectiveBound(2); }),
            refusal("QVParam::getDoubleObjectiveBound", kDoubleOnly));
  EXPECT_EQ(failureOf([&] { param.setDoubleObjectiveBound(1, std::numeric_limits<double>::quiet_NaN()); }),
            refusal("QVParam::setDoubleObjectiveBound", "Cannot use NaN (Not a Number) as a double constant."));
}

TEST_F(QVParamOfClosedModel, RefusesBoundsOfObjectivesThatDoNotExist) {
  const std::string text =
      "The objective with index 3 does not exist.\nOnly indices from 0 to 2 are currently allowed.";
  EXPECT_EQ(failureOf([&] { param.setObjectiveBound(3, 0); }), refusal("QVParam::setObjectiveBound", text));
  EXPECT_EQ(failureOf([&] { param.setIntObjectiveBound(3, 0); }), refusal("QVParam::setIntObjectiveBound", text));
  EXPECT_EQ(failureOf([&] { param.setDoubleObjectiveBound(3, 0.0); }),
            refusal("QVParam::setDoubleObjectiveBound", text));
  EXPECT_EQ(failureOf([&] { (void)param.getDoubleObjectiveBound(3); }),
            refusal("QVParam::getDoubleObjectiveBound", text));
  EXPECT_EQ(failureOf([&] { (void)param.getObjectiveBound(-1); }),
            refusal("QVParam::getObjectiveBound",
                    "The objective with index -1 does not exist.\nOnly indices from 0 to 2 are currently allowed."));
}

TEST_F(QVParamOfClosedModel, KeepsBoundsOverAReopening) {
  param.setObjectiveBound(0, 2);
  model.open();
  model.addObjective(model.getExpression(1), QVObjectiveDirection::Maximize);
  model.close();
  EXPECT_EQ(param.getObjectiveBound(0), 2);
  EXPECT_EQ(param.getObjectiveBound(3), std::numeric_limits<std::int64_t>::max());
}

TEST_F(QVParamOfClosedModel, AnyAdvancedKeyIsStoredButOnlyStoredKeysAreFound) {
  EXPECT_EQ(failureOf([&] { (void)param.getAdvancedParam("targetingLevel"); }),
            refusal("QVParam::getAdvancedParam", "Advanced parameter 'targetingLevel' does not exist."));
  EXPECT_EQ(param.getAdvancedParam("targetingLevel", 5), 5);
  param.setAdvancedParam("targetingLevel", 3);
  EXPECT_EQ(param.getAdvancedParam("targetingLevel"), 3);
  EXPECT_EQ(param.getAdvancedParam("targetingLevel", 5), 3);
  param.setAdvancedParam("no such switch", -7);
  EXPECT_EQ(param.getAdvancedParam("no such switch"), -7);
}

TEST_F(QVParamOfClosedModel, DescribesItself) {
  EXPECT_EQ(param.toString(),
            "Param: \n"
            "  no time limit, no iteration limit\n"
            "  seed = 0, nb threads = 2, annealing level = 1\n\n"
            "Objectives:\n"
            "  Obj 0: maximize, no bound\n"
            "  Obj 1: minimize, no bound\n"
            "  Obj 2: minimize, no bound\n");

  param.setSeed(4);
  param.setNbThreads(3);
  param.setAnnealingLevel(0);
  param.setObjectiveBound(0, 12);
  param.setDoubleObjectiveBound(1, 0.5);
  param.setAdvancedParam("unknown", 9);
  param.setAdvancedParam("moveFlipEnabled", 0);
  quvex.createPhase()->setTimeLimit(10);
  quvex.createPhase()->setTimeLimit(20);
  quvex.getPhase(0)->setIterationLimit(100);
  EXPECT_EQ(param.toString(),
            "Param: \n"
            "  time limit = 30 sec, no iteration limit\n"
            "  seed = 4, nb threads = 3, annealing level = 0\n\n"
            "Objectives:\n"
            "  Obj 0: maximize, bound = 12\n"
            "  Obj 1: minimize, bound = 0.5\n"
            "  Obj 2: minimize, no bound\n\n"
            "Advanced params:\n"
            "  moveFlipEnabled = 0\n"
            "  unknown = 9\n");
  quvex.getPhase(1)->setIterationLimit(50);
  EXPECT_NE(param.toString().find("  time limit = 30 sec, iteration limit = 150\n"), std::string::npos);
}

TEST_F(QVParamOfClosedModel, LimitsThatOverflowAreNoLimits) {
  quvex.createPhase()->setTimeLimit(2147483646);
  quvex.createPhase()->setTimeLimit(2147483646);
  quvex.createPhase()->setTimeLimit(2147483646);
  quvex.getPhase(0)->setIterationLimit(9223372036854775806);
  EXPECT_NE(param.toString().find("  no time limit, no iteration limit\n"), std::string::npos);
}

TEST(QVParam, SetsTheBoundOfAConstantObjectiveToItsValue) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  model.addObjective(model.createConstant(7), QVObjectiveDirection::Maximize);
  model.addObjective(model.createConstant(1.5), QVObjectiveDirection::Minimize);
  model.close();
  EXPECT_EQ(quvex.getParam()->getObjectiveBound(0), 7);
  EXPECT_EQ(quvex.getParam()->getDoubleObjectiveBound(1), 1.5);
}

TEST_F(QVParamOfClosedModel, FollowsTheStateRules) {
  using enum StateRule;
  const auto expect = [this](StateRule rule, const std::string& method, const auto& call) {
    expectRule(quvex, rule, "quvex::QVParam::" + method, call);
  };
  expect(StoppedOnly, "setTimeBetweenDisplays", [&] { param.setTimeBetweenDisplays(1); });
  expect(StoppedOnly, "setSeed", [&] { param.setSeed(1); });
  expect(StoppedOnly, "setNbThreads", [&] { param.setNbThreads(1); });
  expect(StoppedOnly, "setAnnealingLevel", [&] { param.setAnnealingLevel(1); });
  expect(StoppedOnly, "setVerbosity", [&] { param.setVerbosity(1); });
  expect(StoppedOnly, "setObjectiveBound", [&] { param.setObjectiveBound(0, 1); });
  expect(StoppedOnly, "setIntObjectiveBound", [&] { param.setIntObjectiveBound(0, 1); });
  expect(StoppedOnly, "setDoubleObjectiveBound", [&] { param.setDoubleObjectiveBound(1, 1); });
  expect(PausedOrStopped, "getTimeBetweenDisplays", [&] { (void)param.getTimeBetweenDisplays(); });
  expect(PausedOrStopped, "getSeed", [&] { (void)param.getSeed(); });
  expect(PausedOrStopped, "getNbThreads", [&] { (void)param.getNbThreads(); });
  expect(PausedOrStopped, "getAnnealingLevel", [&] { (void)param.getAnnealingLevel(); });
  expect(PausedOrStopped, "getVerbosity", [&] { (void)param.getVerbosity(); });
  expect(PausedOrStopped, "getObjectiveBound", [&] { (void)param.getObjectiveBound(0); });
  expect(PausedOrStopped, "getIntObjectiveBound", [&] { (void)param.getIntObjectiveBound(0); });
  expect(PausedOrStopped, "getDoubleObjectiveBound", [&] { (void)param.getDoubleObjectiveBound(1); });
  expect(PausedOrStopped, "getAdvancedParam", [&] { (void)param.getAdvancedParam("a"); });
  expect(PausedOrStopped, "getAdvancedParam", [&] { (void)param.getAdvancedParam("a", 1); });
  expect(NotRunning, "setAdvancedParam", [&] { param.setAdvancedParam("a", 1); });
  expect(NotRunning, "getQuvex", [&] { (void)param.getQuvex(); });
  expect(NotRunning, "toString", [&] { (void)param.toString(); });
}

TEST(QVParam, TakesAdvancedParametersAndDescribesItselfWhileModeling) {
  Quvex quvex;
  QVModel& model = *quvex.getModel();
  quvex.getParam()->setAdvancedParam("preprocessEnabled", 0);
  model.addObjective(model.createExpression(QVOperator::Bool), QVObjectiveDirection::Maximize);
  EXPECT_EQ(quvex.getParam()->toString(),
            "Param: \n"
            "  no time limit, no iteration limit\n"
            "  seed = 0, nb threads = 2, annealing level = 1\n\n"
            "Objectives:\n"
            "  Obj 0: maximize, no bound\n\n"
            "Advanced params:\n"
            "  preprocessEnabled = 0\n");
}

}  // namespace
}  // namespace quvex
